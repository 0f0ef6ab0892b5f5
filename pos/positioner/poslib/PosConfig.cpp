#include "PosConfig.h"

#include "EmbeddedResources.h"
#include "Version.h"
#include "angles.h"
#include "fileAccess.h"
#include "xmlEncoding.h"
#include "xmlParse.h"

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

/** Largest XML configuration file, bytes: its tree takes some 200 times its size. */
constexpr qint64 kMaxXmlSize = qint64{1024} * 1024;
/** Largest INFO file, bytes: its tree, nested as deep as it can be, is taken apart within half of a stack of 512 KiB.
 */
constexpr qint64 kMaxInfoSize = qint64{16} * 1024;

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

/**
 * The result of the property tree's own reader for an XML file, after the reader of all documents has seen it: the
 * former calls itself for every level, and misreads a document type.
 *
 * @throw boost::property_tree::ptree_error for a malformed file; MalformedXml for one that it must not read
 * @throw std::runtime_error as parseXml
 */
boost::property_tree::ptree readXml(const QByteArray& bytes, const std::string& name) {
    QByteArray text = decodeXml(bytes, name).replace('\r', "");
    try {
        text.remove(0, parseXml(text, name).contentBegin);
    } catch (const MalformedXml&) {
        // The other reader reports the fault, unless it may find too many levels: each takes a "<".
        if (text.count('<') - text.count("</") > kMaxElementDepth) {
            throw;
        }
    }
    std::istringstream stream(text.toStdString());
    boost::property_tree::ptree document;
    boost::property_tree::read_xml(stream, document);
    return document;
}

} // namespace

PosConfig::PosConfig(const char* filename, format fileFormat) {
    const std::string name = nameOrEnvironment(filename);
    const std::optional<QByteArray> content = readFile(name, fileFormat == INFO ? kMaxInfoSize : kMaxXmlSize);
    if (!content) {
        throw std::runtime_error("Unable to open config file: " + name);
    }
    if (fileFormat == INFO) {
        std::istringstream text(QByteArray(*content).replace('\r', "").toStdString());
        boost::property_tree::read_info(text, tree_);
    } else if (fileFormat == XML) {
        takeRoot(readXml(*content, name));
    }
    name_ = name;
    directory_ = boost::filesystem::path(name).parent_path().string();
}

PosConfig::PosConfig(const std::string& versionKey, const std::string& expectedVersion, const char* filename,
                     format fileFormat)
    : PosConfig(filename, fileFormat) {
    if (get<std::string>(versionKey) != expectedVersion) {
        throw std::runtime_error("config file version mismatch");
    }
}

void PosConfig::takeRoot(const boost::property_tree::ptree& document) {
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
    return filenameOf(get<std::string>(key));
}

std::string PosConfig::filenameOf(const std::string& name) const {
    if (name.starts_with(":") || name.starts_with("/")) {
        return name;
    }
    return boost::filesystem::absolute(boost::filesystem::path(directory_) / name).string();
}

} // namespace pos
