#include "repeatedField.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

std::string repeatedField(int fields) {
    std::ostringstream example;
    example << std::ifstream(POS_SOURCE_FOLDER "/examples/sombrero_south.xml").rdbuf();
    const std::string text = example.str();
    const std::size_t begin = text.find("   <field ");
    const std::size_t end = text.find("  </fields>");
    if (begin == std::string::npos || end == std::string::npos) {
        throw std::runtime_error("examples/sombrero_south.xml holds no field");
    }
    std::string repeated = text.substr(0, begin);
    for (int field = 0; field < fields; ++field) {
        repeated += text.substr(begin, end - begin);
    }
    return repeated + text.substr(end);
}
