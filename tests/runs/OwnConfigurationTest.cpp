#include "ownConfiguration.h"
#include "Program.h"
#include "angles.h"
#include "fieldDefinition.h"
#include "outputRun.h"
#include "tolerances.h"
#include "xml.h"

#include <cmath>
#include <gtest/gtest.h>

// Runs with a configuration on disk: relative data files, moved and turned plates, a moved, turned and thinned bundle.

namespace {

/** The output of a run on the ordinary field, or another, with this configuration. */
QDomDocument configuredWith(const OwnConfiguration& configuration, FieldDefinition definition = {},
                            const std::vector<std::string>& arguments = {}) {
    const TemporaryFolder folder;
    definition.rootAttributes = "datamver=\"" + configuration.datamver + "\"";
    std::vector<std::string> all = {"-c", configuration.write(folder)};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return configured(definition.text(), all);
}

/** The error stream of a run that must fail with this configuration. "FOLDER" stands for that of the configuration. */
void expectFailure(const OwnConfiguration& configuration, const std::string& message,
                   const std::string& datamver = "9.50") {
    const TemporaryFolder folder;
    FieldDefinition definition;
    definition.rootAttributes = "datamver=\"" + datamver + "\"";
    const ProgramResult result =
        runVekoConfigure({"-c", configuration.write(folder), "-i", folder.write("in.xml", definition.text()), "-o",
                          folder.path("out.xml")});
    expectEnd(result, 1,
              message.find("FOLDER") == std::string::npos ? message : replaced(message, "FOLDER", folder.path("conf")));
    EXPECT_FALSE(folder.contains("out.xml"));
}

/** The ordinary field with its science target on a fibre and its guide star this far north of it, degrees. */
FieldDefinition fieldWithGuideStar(double north) {
    const std::string declination = QString::number(20.1 + north, 'f', 8).toStdString();
    FieldDefinition definition;
    definition.fields = {fieldXml(scienceTargetXml() + targetXml("G", "Star", "150.10000000", declination))};
    return definition;
}

struct Place {
    double x;
    double y;
};

Place placeOf(const QDomElement& target) {
    return {number(target, "targx"), number(target, "targy")};
}

/** Where the guide star is on the plate, seen from the science target. */
Place guideFromScience(const QDomDocument& output) {
    const std::vector<QDomElement> targets = elements(output, "target");
    const Place science = placeOf(targets.at(0));
    const Place guide = placeOf(targets.at(1));
    return {guide.x - science.x, guide.y - science.y};
}

/** Right ascension and declination of every target, one a line. */
std::string skyOf(const QDomDocument& output) {
    std::string sky;
    for (const QDomElement& target : elements(output, "target")) {
        sky += attributeText(target, "targra") + " " + attributeText(target, "targdec") + "\n";
    }
    return sky;
}

/** Seven fibres in another order than that of their identifiers, with every kind of status and name. */
constexpr const char* kThinnedBundle = R"(
    <fibre id="600" pos_x="8.058" pos_y="0.1" fibre_name="S52" status="enabled"/>
    <fibre id="304" pos_x="0.25" pos_y="-0.5" fibre_name="C14" status="Enabled"/>
    <fibre id="5" pos_x="-1.5" pos_y="2.25" fibre_name="1E"/>
    <fibre id="10" pos_x="3" pos_y="4" fibre_name="1I" status="absent"/>
    <fibre id="11" pos_x="-3" pos_y="4" fibre_name="1K" status="disabled"/>
    <fibre id="305" pos_x="0.5" pos_y="-0.5" fibre_name="&#x3b1;1" status="no such word"/>
    <other id="306" pos_x="9" pos_y="9" fibre_name="X"/>
    <fibre id="5" pos_x="99" pos_y="99" fibre_name="5th" status="absent"/>)";

} // namespace

TEST(OwnConfiguration, PutsATurnedAndThinnedBundleWhereItsDefinitionSays) {
    OwnConfiguration configuration;
    configuration.bundle = R"(centre_x="12.5" centre_y="-7.25" orientation="30")";
    configuration.fibres = kThinnedBundle;
    const QDomDocument output = configuredWith(configuration);
    const struct {
        const char* configid;
        const char* fibreid;
        const char* spaxel;
        const char* use;
        double x;
        double y;
    } expected[] = {{"304", "304", "C14", "T", 0.25, -0.5}, {"0", "", "", "G", 0.0, 0.0},
                    {"5", "5", "5th", "T", -1.5, 2.25},     {"11", "-11", "1K", "T", -3.0, 4.0},
                    {"305", "-305", "α1", "T", 0.5, -0.5},  {"600", "600", "S52", "S", 8.058, 0.1}};
    const std::vector<QDomElement> targets = elements(output, "target");
    ASSERT_EQ(targets.size(), std::size(expected));
    const double cosine = std::sqrt(0.75); // cos 30°; sin 30° is 1/2
    for (std::size_t i = 0; i < targets.size(); ++i) {
        SCOPED_TRACE(expected[i].configid);
        EXPECT_EQ(attributeText(targets[i], "configid"), expected[i].configid);
        EXPECT_EQ(attributeText(targets[i], "fibreid"), expected[i].fibreid);
        EXPECT_EQ(attributeText(targets[i], "ifu_spaxel"), expected[i].spaxel);
        EXPECT_EQ(attributeText(targets[i], "targuse"), expected[i].use);
        if (attributeText(targets[i], "targuse") != "G") {
            const Place place = placeOf(targets[i]);
            EXPECT_NEAR(place.x, 12.5 + expected[i].x * cosine - expected[i].y / 2, kPlateToleranceMm);
            EXPECT_NEAR(place.y, -7.25 + expected[i].x / 2 + expected[i].y * cosine, kPlateToleranceMm);
        }
    }
}

TEST(OwnConfiguration, PutsTheScienceTargetOnItsFibreWhateverThePlateAndTheBundleAre) {
    // The guide star stands in the same place of the sky, and so shows where on the plate the sky is.
    for (const char* veko :
         {R"(x0="0" y0="0" r0="0")", R"(x0="3.5" y0="-2" r0="10")", R"(x0="-40" y0="25" r0="-75")"}) {
        for (const char* positionAngle : {"0", "30", "-120"}) {
            SCOPED_TRACE(std::string(veko) + " at " + positionAngle);
            OwnConfiguration configuration;
            configuration.veko = veko;
            configuration.bundle = R"(centre_x="12.5" centre_y="-7.25" orientation="30")";
            configuration.fibres = kThinnedBundle;
            FieldDefinition definition = fieldWithGuideStar(0.0);
            definition.observationAttributes = "pa=\"" + std::string(positionAngle) + "\"";
            const Place difference = guideFromScience(configuredWith(configuration, definition));
            EXPECT_LE(std::hypot(difference.x, difference.y), kPlacementToleranceMm);
        }
    }
}

TEST(OwnConfiguration, TurnsThePlateAgainstTheSkyByThePositionAngleAndThePlatesOwnRotation) {
    // A star to the north appears along +y of an unturned plate; the position angle turns it clockwise, the plate's own
    // rotation counterclockwise. Precession since 2000 turns the sky by about 0.05 degrees here.
    constexpr double kPrecessionDeg = 0.1;
    for (const double positionAngle : {0.0, 30.0, -120.0}) {
        for (const double plate : {0.0, 10.0, -75.0}) {
            SCOPED_TRACE(positionAngle);
            SCOPED_TRACE(plate);
            OwnConfiguration configuration;
            configuration.veko = "x0=\"0\" y0=\"0\" r0=\"" + std::to_string(plate) + "\"";
            FieldDefinition definition = fieldWithGuideStar(0.1);
            definition.observationAttributes = "pa=\"" + std::to_string(positionAngle) + "\"";
            const Place star = guideFromScience(configuredWith(configuration, definition));
            const double clockwiseFromUp = std::atan2(star.x, star.y);
            EXPECT_NEAR(pos::wrapAngle(clockwiseFromUp - pos::degreesToRadians(positionAngle - plate)), 0.0,
                        pos::degreesToRadians(kPrecessionDeg));
        }
    }
}

TEST(OwnConfiguration, MeasuresTheDistortionFromTheOpticalAxisOfTheVekoPlate) {
    // The science target stands on the optical axis, and the star 0.5 degrees away from it. Without refraction (a
    // pressure of next to nothing) its distance is P(0.5) = 200 × 0.5 + 40 × 0.125 - 8 × 0.03125 = 104.75 mm, but for
    // aberration, which changes angles on the sky by up to 1 part in 10000.
    OwnConfiguration configuration;
    configuration.distortion = R"(c1="200" c3="40" c5="-8" c7="1000")";
    configuration.veko = R"(x0="60" y0="-45" r0="25")";
    configuration.plateA = R"(x0="-30" y0="10" r0="1")";
    configuration.plateB = R"(x0="80" y0="90" r0="-2")";
    configuration.bundle = R"(centre_x="60" centre_y="-45" orientation="0")";
    const QDomDocument output = configuredWith(configuration, fieldWithGuideStar(0.5), {"--pressure", "1e-9"});
    const Place star = guideFromScience(output);
    constexpr double kAberrationMm = 0.012;
    EXPECT_NEAR(std::hypot(star.x, star.y), 104.75, kAberrationMm);
}

TEST(OwnConfiguration, IgnoresTheOffsetsOfTheOtherPlates) {
    OwnConfiguration configuration;
    configuration.fibres = kThinnedBundle;
    configuration.veko = R"(x0="60" y0="-45" r0="25")";
    const std::string sky = skyOf(configuredWith(configuration));
    configuration.plateA = R"(x0="-30" y0="10" r0="90")";
    configuration.plateB = R"(x0="80" y0="90" r0="-90")";
    EXPECT_EQ(skyOf(configuredWith(configuration)), sky);
    configuration.veko = R"(x0="60" y0="-45" r0="26")";
    EXPECT_NE(skyOf(configuredWith(configuration)), sky);
}

TEST(OwnConfiguration, FindsItsDataFilesBesideItselfFromAnyWorkingDirectory) {
    const TemporaryFolder folder;
    OwnConfiguration().write(folder);
    FieldDefinition definition;
    definition.rootAttributes = R"(datamver="9.50")";
    folder.write("work/in.xml", definition.text());
    ProgramOptions options;
    options.folder = folder.path("work");
    expectSilentSuccess(runVekoConfigure({"-c", "../conf/own.xml", "-i", "in.xml", "-o", "out.xml"}, options));
    options.folder = folder.path("conf");
    expectSilentSuccess(runVekoConfigure({"-c", "own.xml", "-i", "../work/in.xml", "-o", "../out.xml"}, options));
    EXPECT_EQ(folder.read("work/out.xml"), folder.read("out.xml"));
}

TEST(OwnConfiguration, WithoutADefaultEpochFailsBeforeTheInputIsRead) {
    OwnConfiguration configuration;
    configuration.defaultEpoch = "";
    expectFailure(configuration, "No such node (default_epoch)\n", "1.00");
}

TEST(OwnConfiguration, FailsWhereItsDataFilesDo) {
    OwnConfiguration configuration;
    configuration.vekoDefinition = "<veko_definition>:/VEKO.xml</veko_definition>";
    expectFailure(configuration, "Data model version mismatch\n");
    configuration = {};
    configuration.mapName = "none.xml";
    expectFailure(configuration, "FOLDER/none.xml could not be opened\n");
    configuration = {};
    configuration.fibres = "";
    expectFailure(configuration, "fibre assigned to science target does not exist\n");
    configuration = {};
    expectFailure(configuration, "Error parsing field definition file: Data model version mismatch\n", "8.00");
}

TEST(OwnConfiguration, TellsOfAFibreThatIsNowhereBeforeTheGuideStarAndTheNextField) {
    OwnConfiguration own;
    own.datamver = "8.00";
    own.fibres += R"(<fibre id="305" pos_x="nan" pos_y="0" fibre_name="nowhere"/>)";
    const std::string nowhere = "Inverse distortion not converging at a radius of nan mm\n";
    const std::string farGuideStar = fieldXml(scienceTargetXml() + targetXml("G", "far", "330.000000", "-20.000000"));
    const std::string withoutTargets = fieldXml("");
    for (const auto& [fields, message] :
         {std::pair{std::vector{ordinaryFieldXml()}, nowhere},
          {std::vector{farGuideStar}, nowhere},
          {std::vector{ordinaryFieldXml(), withoutTargets}, nowhere},
          {std::vector{withoutTargets, ordinaryFieldXml()}, std::string("No science target in field\n")}}) {
        const TemporaryFolder folder;
        const ProgramResult result =
            runVekoConfigure({"-c", own.write(folder), "-i", folder.write("in.xml", documentWithFields(fields)), "-o",
                              folder.path("out.xml")});
        expectEnd(result, 1, message);
        EXPECT_FALSE(folder.contains("out.xml"));
    }
}
