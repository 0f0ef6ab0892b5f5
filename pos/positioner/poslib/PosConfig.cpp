#include "PosConfig.h"

#include "EmbeddedResources.h"
#include "Version.h"
#include "angles.h"
#include "configNesting.h"
#include "fileAccess.h"

#include <algorithm>
#include <array>
#include <boost/filesystem.hpp>
#include <boost/property_tree/info_parser.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace pos {

namespace {

/**
 * The resource collections register themselves, but a linker leaves an object out of a program that refers to nothing
 * in it. Whoever uses the configuration store needs its default file.
 */
[[gnu::used]] constexpr std::array kKeepResources = {&qInitResources_config_files, &qInitResources_plate_files};

/** Largest configuration file, bytes: its tree takes some 200 times its size. */
constexpr qint64 kMaxConfigSize = qint64{1024} * 1024;

std::string nameOrEnvironment(const char* filename) {
    if (filename != nullptr) {
        return filename;
    }
    const char* const fromEnvironment = std::getenv("VANTE_POS_CONFIG");
    if (fromEnvironment == nullptr) {
        throw std::runtime_error("VANTE_POS_CONFIG environment variable not set");
    }
    return fromEnvironment;
}

void checkNesting(int depth, const std::string& name) {
    if (depth > kMaxConfigDepth) {
        throw std::runtime_error("The configuration file " + name + " is nested more than " +
                                 std::to_string(kMaxConfigDepth) + " levels deep");
    }
}

} // namespace

PosConfig::PosConfig(const char* filename, format fileFormat) {
    const std::string name = nameOrEnvironment(filename);
    const std::optional<QByteArray> content = readFile(name, QIODevice::Text, kMaxConfigSize);
    if (!content) {
        throw std::runtime_error("Unable to open config file: " + name);
    }
    const std::string bytes = content->toStdString();
    std::istringstream text(bytes);
    if (fileFormat == INFO) {
        checkNesting(infoNesting(bytes), name);
        boost::property_tree::read_info(text, tree_);
    } else if (fileFormat == XML) {
        checkNesting(xmlNesting(bytes), name);
        loadXml(text);
    }
    directory_ = boost::filesystem::path(name).parent_path().string();
}

PosConfig::PosConfig(const std::string& versionKey, const std::string& expectedVersion, const char* filename,
                     format fileFormat)
    : PosConfig(filename, fileFormat) {
    if (get<std::string>(versionKey) != expectedVersion) {
        throw std::runtime_error("config file version mismatch");
    }
}

void PosConfig::loadXml(std::istream& text) {
    boost::property_tree::ptree document;
    boost::property_tree::read_xml(text, document);
    const auto root =
        std::find_if(document.begin(), document.end(), [](const auto& child) { return child.first != "<xmlcomment>"; });
    if (root != document.end()) {
        tree_ = root->second;
    }
    const auto version = get<std::string>("<xmlattr>.datamver");
    if (datamver.empty()) {
        datamver = version;
    } else if (version != datamver) {
        throw std::runtime_error("data model version mismatch");
    }
}

double PosConfig::getAngle(const std::string& key) const {
    return degreesToRadians(get<double>(key));
}

std::string PosConfig::getFilename(const std::string& key) const {
    auto value = get<std::string>(key);
    if (value.starts_with(":") || value.starts_with("/")) {
        return value;
    }
    return boost::filesystem::absolute(boost::filesystem::path(directory_) / value).string();
}

} // namespace pos
