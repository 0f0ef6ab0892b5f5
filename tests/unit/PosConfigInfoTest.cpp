#include "PosConfig.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "Version.h"
#include "fieldDefinition.h"
#include "surroundings.h"
#include "thrown.h"

#include <boost/property_tree/info_parser.hpp>
#include <sstream>

using namespace pos;

using boost::property_tree::info_parser_error;
using boost::property_tree::ptree_bad_path;

namespace {

const char* const kInfo = "; the site\n"
                          "configure_version 3.3.5\n"
                          "telescope ; with a comment\n"
                          "{\n"
                          "    latitude 28.5\n"
                          "    \"focal plane map\" \"a map.xml\"\n"
                          "    plain map.xml\n"
                          "    resource :/focal_plane_map.xml\n"
                          "}\n";

class PosConfigInfoTest : public ProcessWideState {
protected:
    PosConfig load(const std::string& content) const {
        return {folder_.write("site.info", content).c_str(), PosConfig::INFO};
    }

    const TemporaryFolder folder_;
};

/** What the parser itself says about a text. */
std::string infoErrorOf(const std::string& content) {
    return messageOf<info_parser_error>([&] {
        std::istringstream text(content);
        boost::property_tree::ptree tree;
        boost::property_tree::read_info(text, tree);
    });
}

} // namespace

TEST_F(PosConfigInfoTest, KeysStartAtTheTopOfTheFile) {
    const PosConfig config = load(kInfo);
    EXPECT_EQ(config.get<std::string>("configure_version"), "3.3.5");
    EXPECT_EQ(config.get<double>("telescope.latitude"), 28.5);
    EXPECT_EQ(config.get<std::string>("telescope.focal plane map"), "a map.xml");
    EXPECT_EQ(config.getAngle("telescope.latitude"), 28.5 / 180 * 3.141592653589793);
}

TEST_F(PosConfigInfoTest, FileNamesAreRelativeToTheFilesFolder) {
    const PosConfig config = load(kInfo);
    EXPECT_EQ(config.getFilename("telescope.plain"), folder_.path("map.xml"));
    EXPECT_EQ(config.getFilename("telescope.focal plane map"), folder_.path("a map.xml"));
    EXPECT_EQ(config.getFilename("telescope.resource"), ":/focal_plane_map.xml");
}

TEST_F(PosConfigInfoTest, DataModelVersionIsNeitherSetNorChecked) {
    load("datamver 7.00\n<xmlattr>\n{\n    datamver 7.00\n}\n");
    EXPECT_EQ(datamver, "");
    datamver = "8.00";
    EXPECT_NO_THROW(load("datamver 7.00\n<xmlattr>\n{\n    datamver 7.00\n}\n"));
    EXPECT_EQ(datamver, "8.00");
}

TEST_F(PosConfigInfoTest, VersionIsCheckedAsForXml) {
    const std::string name = folder_.write("site.info", kInfo);
    EXPECT_NO_THROW(PosConfig("configure_version", "3.3.5", name.c_str(), PosConfig::INFO));
    EXPECT_EQ(messageOf([&] { PosConfig("configure_version", "3.3.4", name.c_str(), PosConfig::INFO); }),
              "config file version mismatch");
}

TEST_F(PosConfigInfoTest, MalformedTextIsRefusedWithTheParsersMessage) {
    const std::pair<const char*, const char*> rows[] = {
        {"a\n{\n", "<unspecified file>(3): unmatched {"},
        {"}\n", "<unspecified file>(1): unmatched }"},
        {"a 1\nb \"c\n", "<unspecified file>(2): unexpected end of line"},
        {"{\n}\n", "<unspecified file>(1): unexpected {"},
        {"a \"\\q\"\n", "<unspecified file>(1): unknown escape sequence"},
    };
    for (const auto& [content, message] : rows) {
        EXPECT_EQ(infoErrorOf(content), message);
        EXPECT_EQ(messageOf<info_parser_error>([text = content, this] { load(text); }), message);
    }
}

TEST_F(PosConfigInfoTest, FileMayHave16KiBHoweverItIsNested) {
    EXPECT_EQ(load(repeated(1001, "k { v \"y\" }\n")).get<std::string>("k.v"), "y");
    EXPECT_NO_THROW(load(repeated(2'730, "a\n{") + repeated(2'730, "}\n")));
    EXPECT_EQ(messageOf<info_parser_error>([&] { load(repeated(5'460, "a\n{")); }),
              "<unspecified file>(5461): unmatched {");
    EXPECT_EQ(messageOf([&] { load(std::string(16'385, ';')); }), folder_.path("site.info") + " is larger than 16 KiB");
}

TEST_F(PosConfigInfoTest, EnvironmentVariableNamesTheFile) {
    const EnvironmentVariable variable("VANTE_POS_CONFIG", folder_.write("site.info", "f map.xml\n"));
    EXPECT_EQ(PosConfig(nullptr, PosConfig::INFO).getFilename("f"), folder_.path("map.xml"));
}

TEST_F(PosConfigInfoTest, FileOfAnyOtherFormatIsOpenedButNotParsed) {
    const std::string malformed = folder_.write("malformed", "{ <");
    for (const int number : {2, -1, 1000}) {
        const auto other = static_cast<PosConfig::format>(number);
        EXPECT_NO_THROW(PosConfig(malformed.c_str(), other));
        EXPECT_EQ(messageOf<ptree_bad_path>([&] { PosConfig("configure_version", "3.3.5", ":/configure.xml", other); }),
                  "No such node (configure_version)");
        EXPECT_EQ(messageOf([&] { const PosConfig missing("/nonexistent", other); }),
                  "Unable to open config file: /nonexistent");
        EXPECT_EQ(datamver, "");
    }
}
