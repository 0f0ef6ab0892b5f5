#include "instrumentFiles.h"

#include "fileAccess.h"

#include <filesystem>
#include <stdexcept>

namespace pos {

std::vector<std::pair<InstrumentPart, const InstrumentValue*>> filesNamed(const InstrumentDocument& document) {
    std::vector<std::pair<InstrumentPart, const InstrumentValue*>> files;
    for (const InstrumentPart part :
         {InstrumentPart::FocalPlaneMap, InstrumentPart::Bundle, InstrumentPart::PlateA, InstrumentPart::PlateB}) {
        const InstrumentValue* value = document.value(factsOf(part).key);
        if (value != nullptr && value->text) {
            files.emplace_back(part, value);
        }
    }
    return files;
}

std::string fileBeside(const std::string& configuration, const std::string& name) {
    return name.starts_with(":") ? name : (std::filesystem::path(configuration).parent_path() / name).string();
}

bool isPlainFile(const std::string& name) {
    std::error_code notThere;
    return std::filesystem::is_regular_file(name, notThere);
}

void requireFile(const std::string& name) {
    std::error_code notThere;
    const std::filesystem::file_type type = std::filesystem::status(name, notThere).type();
    const bool isStream = type == std::filesystem::file_type::fifo || type == std::filesystem::file_type::character;
    if (!isStream) {
        static_cast<void>(loadFile(name));
    }
}

} // namespace pos
