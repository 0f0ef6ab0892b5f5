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

TEST_F(PosConfigValuesTest, EmbeddedConfigurationHoldsItsDefaults) {
    const PosConfig config(":/configure.xml", PosConfig::XML);
    const std::pair<const char*, const char*> texts[] = {
        {"<xmlattr>.datamver", "8.00"},
        {"configure_version", "3.3.5"},
        {"default_epoch", "2016.0"},
        {"telescope.east_longitude", "-17.881639"},
        {"telescope.latitude", "28.760583"},
        {"telescope.height", "2332.0"},
        {"telescope.horizon_limit", "5.0"},
        {"telescope.focal_plane_map", ":/focal_plane_map.xml"},
        {"telescope.rotator_low_limit", "-135.0"},
        {"telescope.rotator_high_limit", "135.0"},
        {"telescope.optimum_rotator_angle.plate_a", "-25.0"},
        {"telescope.optimum_rotator_angle.plate_b", "25.0"},
        {"telescope.rotator_offset", "0.0"},
        {"plate_a_definition", ":/PLATE_A.xml"},
        {"plate_b_definition", ":/PLATE_B.xml"},
        {"veko_definition", ":/VEKO.xml"},
    };
    for (const auto& [key, text] : texts) {
        EXPECT_EQ(config.get<std::string>(key), text) << key;
    }
    EXPECT_EQ(config.get<double>("default_epoch"), 2016.0);
    EXPECT_EQ(config.get<double>("telescope.height"), 2332.0);
}

TEST_F(PosConfigValuesTest, EmbeddedConfigurationHoldsTheDitherPatterns) {
    const PosConfig config(":/configure.xml", PosConfig::XML);
    for (const std::string table : {"mifu_dither", "veko_dither"}) {
        for (const std::string pattern : {"pattern_3", "pattern_4", "pattern_5", "pattern_6", "pattern_-3"}) {
            for (const std::string axis : {"x", "y"}) {
                const std::string key = table + "." + pattern + "." + axis;
                EXPECT_EQ(config.get<std::string>(key).substr(0, 5), "0.00 ") << key;
            }
        }
    }
}

TEST_F(PosConfigValuesTest, AnglesAreDegreesInTheFileAndRadiansInTheProgram) {
    const PosConfig config(":/configure.xml", PosConfig::XML);
    EXPECT_EQ(config.getAngle("telescope.rotator_high_limit"), 2.356194490192345);
    EXPECT_EQ(config.getAngle("telescope.rotator_low_limit"), -2.356194490192345);
    EXPECT_EQ(config.getAngle("telescope.east_longitude"), -17.881639 / 180 * kPiOfTheText);
    EXPECT_EQ(config.getAngle("telescope.latitude"), 28.760583 / 180 * kPiOfTheText);
    EXPECT_EQ(config.getAngle("telescope.horizon_limit"), 5.0 / 180 * kPiOfTheText);
    EXPECT_EQ(config.getAngle("telescope.rotator_offset"), 0.0);
    EXPECT_EQ(config.getAngle("telescope.optimum_rotator_angle.plate_a"), -25.0 / 180 * kPiOfTheText);
    EXPECT_EQ(config.getAngle("telescope.optimum_rotator_angle.plate_b"), 25.0 / 180 * kPiOfTheText);
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
