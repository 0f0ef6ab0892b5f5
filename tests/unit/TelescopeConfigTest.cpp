#include "TelescopeConfig.h"
#include "LimitsCalc.h"
#include "PosConfig.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "fieldDefinition.h"
#include "pointing.h"
#include "thrown.h"

#include <boost/property_tree/exceptions.hpp>
#include <functional>

using namespace pos;

namespace {

/** A configuration file, and a focal-plane map beside it, that have no value in common with the embedded ones. */
class TelescopeConfigTest : public ProcessWideState {
protected:
    PosConfig config() const {
        return {folder_.write("site.info", text_).c_str(), PosConfig::INFO};
    }
    FocalPlane pointed() const {
        return {config(), PLATE_B, kHighField, 100.0, kWinterNight};
    }
    /** Takes keys away, the last one first, and each time fails the test unless the action tells the one taken last. */
    void expectMissing(std::vector<std::string> keys, const std::function<void()>& action) {
        for (; !keys.empty(); keys.pop_back()) {
            const std::string& key = keys.back();
            text_ = replaced(text_, " " + key.substr(key.rfind('.') + 1) + " ", " other ");
            EXPECT_EQ(messageOf<boost::property_tree::ptree_bad_path>(action), "No such node (telescope." + key + ")");
        }
    }

    const TemporaryFolder folder_;
    std::string text_ = "telescope\n{\n"
                        " east_longitude 10\n latitude 20\n height 1164.5\n horizon_limit 30\n rotator_offset 40\n"
                        " rotator_low_limit 50\n rotator_high_limit 160\n"
                        " optimum_rotator_angle\n {\n plate_a 70\n plate_b 90\n }\n"
                        " focal_plane_map map.xml\n}\n";
    const std::string map_ =
        folder_.write("map.xml", "<focal_plane_map focal_length='5000'><optical_axis>"
                                 "<PLATE_A x0='1' y0='2' r0='180'/><PLATE_B x0='3' y0='4' r0='45'/>"
                                 "<VEKO x0='5' y0='6' r0='90'/></optical_axis>"
                                 "<distortion_coefficients c1='100' c3='10' c5='1'/></focal_plane_map>");
    const Telescope telescope_{rad(10), rad(20), 1164.5, rad(30), rad(40), rad(50), rad(160), rad(70), rad(90)};
    const Optics optics_{5000.0, 5000.0, 100.0, 10.0, 1.0};
    const PlateGeometry plates_{{{{1.0, 2.0, rad(180)}, {3.0, 4.0, rad(45)}, {5.0, 6.0, rad(90)}}}, PLATE_B, rad(90)};
};

void expectEqual(const Telescope& actual, const Telescope& expected) {
    EXPECT_EQ(actual.eastLongitude, expected.eastLongitude);
    EXPECT_EQ(actual.latitude, expected.latitude);
    EXPECT_EQ(actual.height, expected.height);
    EXPECT_EQ(actual.horizonLimit, expected.horizonLimit);
    EXPECT_EQ(actual.rotatorOffset, expected.rotatorOffset);
    EXPECT_EQ(actual.rotatorLowLimit, expected.rotatorLowLimit);
    EXPECT_EQ(actual.rotatorHighLimit, expected.rotatorHighLimit);
    EXPECT_EQ(actual.optimumPlateA, expected.optimumPlateA);
    EXPECT_EQ(actual.optimumPlateB, expected.optimumPlateB);
}

} // namespace

TEST_F(TelescopeConfigTest, DegreesBecomeRadiansAndMetresStay) {
    expectEqual(readTelescope(config()), telescope_);
    expectEqual(readTelescope(PosConfig(":/configure.xml", PosConfig::XML)), kTelescope);
}

TEST_F(TelescopeConfigTest, MissingKeysAreToldInTheOrderOfReading) {
    expectMissing({"east_longitude", "latitude", "height", "horizon_limit", "rotator_offset", "rotator_low_limit",
                   "rotator_high_limit", "optimum_rotator_angle.plate_a", "optimum_rotator_angle.plate_b"},
                  [&] { readTelescope(config()); });
}

TEST_F(TelescopeConfigTest, PointsTheTelescopeWithTheMapThatTheConfigurationNames) {
    const FocalPlane pointing = pointed();
    EXPECT_EQ(pointing.eastLongitude(), telescope_.eastLongitude);
    EXPECT_EQ(pointing.latitude(), telescope_.latitude);
    EXPECT_EQ(pointing.height(), telescope_.height);
    EXPECT_EQ(pointing.rotatorOffset(), telescope_.rotatorOffset);
    EXPECT_EQ(FocalPlaneCoordinates::rotation(), 100.0);
    const std::vector<double> derived = derivedValues(pointing);
    EXPECT_EQ(derivedValues({telescope_, optics_, plates_, kHighField, 100.0, kWinterNight}), derived);
}

TEST_F(TelescopeConfigTest, PointsTheTelescopeAtAnHourAngle) {
    FocalPlane solved = pointed();
    solved.setHourAngle(-1.25);
    const FocalPlane pointing(config(), PLATE_B, kHighField, 100.0, kWinterNight, -1.25);
    EXPECT_EQ(pointing.date(), solved.date());
    EXPECT_EQ(pointing.positionAngle(), 100.0);
    EXPECT_EQ(derivedValues(pointing), derivedValues(solved));
}

TEST_F(TelescopeConfigTest, APointingsMissingKeysAreToldInTheOrderOfReading) {
    expectMissing({"focal_plane_map", "east_longitude", "latitude", "height", "horizon_limit", "rotator_offset"},
                  [&] { pointed(); });
}

TEST_F(TelescopeConfigTest, OpticsAndPlatesAreInForceBeforeTheSiteIsRead) {
    expectMissing({"east_longitude"}, [&] { pointed(); });
    EXPECT_EQ(FocalPlaneCoordinates::focalLength(), optics_.focalLength);
    EXPECT_EQ(FocalPlaneCoordinates::rotation(), 100.0);
    EXPECT_EQ(PlateCoordinates::geometry().plate, PLATE_B);
    EXPECT_EQ(PlateCoordinates::geometry().rotation, plates_.rotation);
}

TEST_F(TelescopeConfigTest, TheMapsErrorsPassThroughOpticsBeforePlates) {
    const auto refusal = [&](const std::string& map) {
        folder_.write("map.xml", map);
        return messageOf([&] { pointed(); });
    };
    EXPECT_EQ(refusal("<focal_plane_map/>"), "Bad focal length in focal plane map");
    EXPECT_EQ(refusal("<focal_plane_map focal_length='1'><distortion_coefficients c1='1' c3='1' c5='1'/>"
                      "</focal_plane_map>"),
              "Bad optical axis in focal plane map");
    EXPECT_EQ(refusal("<focal_plane_map>"), map_ + " is not valid XML");
}

TEST_F(TelescopeConfigTest, LimitsAreThoseOfTheTelescopeRead) {
    FocalPlane pointing = pointedAt(kHighField);
    pointing.setHourAngle(0.3);
    LimitsCalc fromFile(config(), pointing, 1.0);
    LimitsCalc fromValues(telescope_, pointing, 1.0);
    EXPECT_EQ(fromFile.hourAngleLimits(), fromValues.hourAngleLimits());
    for (const PlateName plate : {PLATE_A, PLATE_B}) {
        fromValues.setPositionAngle(plate);
        const double positionAngle = pointing.positionAngle();
        pointing.setFieldCentre(kHighField, 0.0);
        fromFile.setPositionAngle(plate);
        EXPECT_EQ(pointing.positionAngle(), positionAngle);
    }
}

TEST_F(TelescopeConfigTest, MissingLimitsAreToldInTheOrderOfReading) {
    FocalPlane pointing = pointedAt(kHighField);
    expectMissing({"rotator_low_limit", "rotator_high_limit", "rotator_offset", "optimum_rotator_angle.plate_a",
                   "optimum_rotator_angle.plate_b", "latitude"},
                  [&] { LimitsCalc(config(), pointing, 1.0); });
}
