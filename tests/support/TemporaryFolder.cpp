#include "TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() : name_((fs::temp_directory_path() / "veko-test-XXXXXX").string()) {
    if (::mkdtemp(name_.data()) == nullptr) {
        throw std::runtime_error("no temporary folder could be made");
    }
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(name_, ignored);
}

std::string TemporaryFolder::path(const std::string& file) const {
    return name_ + "/" + file;
}

std::string TemporaryFolder::write(const std::string& file, const std::string& content) const {
    const std::string target = path(file);
    fs::create_directories(fs::path(target).parent_path());
    std::ofstream stream(target, std::ios::binary);
    stream << content;
    stream.close();
    EXPECT_TRUE(stream.good()) << target;
    return target;
}

std::string TemporaryFolder::read(const std::string& file) const {
    return readBytes(path(file));
}

bool TemporaryFolder::contains(const std::string& file) const {
    struct stat status {};
    return ::lstat(path(file).c_str(), &status) == 0;
}

std::string readBytes(const std::string& name) {
    const std::ifstream stream(name, std::ios::binary);
    EXPECT_TRUE(stream.good()) << name;
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}
