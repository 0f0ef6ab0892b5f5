#include "PosConfig.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "surroundings.h"

#include <filesystem>

using namespace pos;

namespace {

constexpr double kPiOfTheText = 3.141592653589793;

class PosConfigValuesTest : public ProcessWideState {};

using PosConfigFilenameTest = PosConfigValuesTest;

/** The content of a configuration file whose key "file" holds a name. */
std::string naming(const std::string& file) {
    return "<c datamver='8.00'><file>" + file + "</file></c>";
}

std::string filenameOf(const std::string& configurationFile) {
    return PosConfig(configurationFile.c_str(), PosConfig::XML).getFilename("file");
}

} // namespace

TEST_F(PosConfigValuesTest, EmbeddedConfigurationHoldsItsVersionsAndFileNames) {
    const PosConfig config(":/configure.xml", PosConfig::XML);
    const std::pair<const char*, const char*> texts[] = {
        {"<xmlattr>.datamver", "8.00"},
        {"configure_version", "3.3.5"},
        {"default_epoch", "2016.0"},
        {"telescope.focal_plane_map", ":/focal_plane_map.xml"},
        {"plate_a_definition", ":/PLATE_A.xml"},
        {"plate_b_definition", ":/PLATE_B.xml"},
        {"veko_definition", ":/VEKO.xml"},
    };
    for (const auto& [key, text] : texts) {
        EXPECT_EQ(config.get<std::string>(key), text) << key;
    }
}

TEST_F(PosConfigValuesTest, EmbeddedConfigurationHoldsTheDitherPatterns) {
    const PosConfig config(":/configure.xml", PosConfig::XML);
    for (const std::string table : {"mifu_dither", "veko_dither"}) {
        for (const std::string pattern : {"3", "4", "5", "6", "-3"}) {
            EXPECT_TRUE(config.get<std::string>(table + ".pattern_" + pattern + ".x").starts_with("0.00 ")) << pattern;
            EXPECT_TRUE(config.get<std::string>(table + ".pattern_" + pattern + ".y").starts_with("0.00 ")) << pattern;
        }
    }
}

TEST_F(PosConfigValuesTest, AnglesAreDividedBeforeTheyAreMultiplied) {
    const TemporaryFolder folder;
    const std::string name = folder.write("c.xml", "<c datamver='8.00'><a>6.5</a><b>-1.1</b><d>720</d></c>");
    const PosConfig config(name.c_str(), PosConfig::XML);
    // With a precomputed pi / 180, or multiplied by pi first, these end in ...43 and ...27.
    EXPECT_EQ(config.getAngle("a"), 0.11344640137963141);
    EXPECT_EQ(config.getAngle("b"), -0.019198621771937624);
    EXPECT_EQ(config.getAngle("d"), 4 * kPiOfTheText); // not wrapped
}

TEST_F(PosConfigValuesTest, CopyKeepsValuesAndFolder) {
    const TemporaryFolder folder;
    const auto original = std::make_unique<PosConfig>(folder.write("c.xml", naming("map.xml")).c_str(), PosConfig::XML);
    const PosConfig copy = *original;
    EXPECT_EQ(copy.getFilename("file"), folder.path("map.xml"));
}

TEST_F(PosConfigFilenameTest, RelativeNameIsRelativeToTheConfigurationFilesFolder) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    const WorkingFolder here(elsewhere.name());
    EXPECT_EQ(filenameOf(folder.write("configure.xml", naming("map.xml"))), folder.path("map.xml"));
    EXPECT_EQ(filenameOf(folder.write("configure.xml", naming("maps/map.xml"))), folder.path("maps/map.xml"));
    EXPECT_EQ(filenameOf(folder.write("configure.xml", naming("a:/b"))), folder.path("a:/b"));
}

TEST_F(PosConfigFilenameTest, ResourceAndAbsoluteNamesAreUnchanged) {
    const TemporaryFolder folder;
    for (const std::string name : {":/focal_plane_map.xml", ":", ":map.xml", "/etc/x/map.xml", "/", "//x/../map.xml"}) {
        EXPECT_EQ(filenameOf(folder.write("configure.xml", naming(name))), name);
    }
}

TEST_F(PosConfigFilenameTest, ConfigurationFileWithoutAFolderMeansTheWorkingDirectory) {
    const TemporaryFolder folder;
    folder.write("configure.xml", naming("map.xml"));
    const WorkingFolder here(folder.name());
    EXPECT_EQ(filenameOf("configure.xml"), std::filesystem::current_path().string() + "/map.xml");
}

TEST_F(PosConfigFilenameTest, RelativeConfigurationFileIsRelativeToTheWorkingDirectoryOfTheMoment) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    folder.write("site/configure.xml", naming("map.xml"));
    const WorkingFolder here(folder.name());
    const PosConfig config("site/configure.xml", PosConfig::XML);
    EXPECT_EQ(config.getFilename("file"), std::filesystem::current_path().string() + "/site/map.xml");
    const WorkingFolder there(elsewhere.name());
    EXPECT_EQ(config.getFilename("file"), std::filesystem::current_path().string() + "/site/map.xml");
}

TEST_F(PosConfigFilenameTest, RelativeNameInTheEmbeddedConfigurationIsBelowAFolderNamedColon) {
    const PosConfig config(":/configure.xml", PosConfig::XML);
    // The embedded file's folder is ":", which is no absolute path. The embedded file holds no relative name of a file;
    // any text without a colon or slash at its start stands for one.
    EXPECT_EQ(config.getFilename("configure_version"), std::filesystem::current_path().string() + "/:/3.3.5");
}
