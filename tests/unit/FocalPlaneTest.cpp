#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "angles.h"
#include "pointing.h"
#include "thrown.h"
#include "tolerances.h"

#include <cmath>
#include <limits>

using namespace pos;

namespace {

class FocalPlaneTest : public ProcessWideState {};

} // namespace

TEST_F(FocalPlaneTest, TelescopeCentreConditionsAndPositionAngleAreKeptAsGiven) {
    const Telescope telescope{.eastLongitude = 2.6, .latitude = -0.55, .height = 1164.5, .rotatorOffset = 0.25};
    const FocalPlane pointing = pointedAt({7.5, -0.25}, 4.0, kWinterNight, telescope);
    EXPECT_EQ(pointing.eastLongitude(), 2.6);
    EXPECT_EQ(pointing.latitude(), -0.55);
    EXPECT_EQ(pointing.height(), 1164.5);
    EXPECT_EQ(pointing.rotatorOffset(), 0.25);
    EXPECT_EQ(pointing.fieldCentre().ra, 7.5);
    EXPECT_EQ(pointing.fieldCentre().dec, -0.25);
    EXPECT_EQ(pointing.positionAngle(), 4.0); // the constructor does not wrap
    EXPECT_EQ(pointing.date(), kWinterNight.epoch);
    EXPECT_EQ(pointing.conditions(), kWinterNight);
}

TEST_F(FocalPlaneTest, SettingTheCentreWrapsThePositionAngleButTurnsTheOpticsByItAsItIs) {
    FocalPlane pointing = pointedAt({1.0, 0.5}, 100.0);
    EXPECT_EQ(FocalPlaneCoordinates::rotation(), 100.0);
    for (const double angle : {0.5, 4.0, -4.0, kTestPi, -kTestPi, 100.0, -100.0}) {
        pointing.setFieldCentre(Astrometric{1.1, 0.4}, angle);
        EXPECT_EQ(pointing.positionAngle(), wrapAngle(angle));
        EXPECT_EQ(FocalPlaneCoordinates::rotation(), angle);
    }
    EXPECT_EQ(pointing.fieldCentre().ra, 1.1);
    EXPECT_EQ(pointing.fieldCentre().dec, 0.4);
}

TEST_F(FocalPlaneTest, TheHorizonLimitIsComparedWithTheRefractedZenithDistanceOfTheCentre) {
    // At five degrees of elevation, the limit, the air of this night lifts by more than three arcminutes.
    const Astrometric lifted = placeObservedAt("A", kTestPi, rad(85.05));
    const FocalPlane above = pointedAt(lifted, kTestPi);
    EXPECT_LT(above.zenithDistance(), rad(85.0));
    EXPECT_EQ(derivedValues(above), libraryValues(lifted, kWinterNight));

    const Astrometric low = placeObservedAt("A", kTestPi, rad(85.2));
    const FocalPlane below = pointedAt(low, kTestPi);
    EXPECT_NEAR(below.zenithDistance(), rad(85.2), kObservedAngleTolerance);
    EXPECT_EQ(derivedValues(below), libraryValues(low, kWinterNight));
    // Towards the south, and upside down, the place on the plate is above the limit.
    EXPECT_LT(libraryObserved(below.xyToCirs(kPlatePlace), libraryContext(kAirlessNight)).zenithDistance, rad(85.0));
}

TEST_F(FocalPlaneTest, ATargetThatCannotBeProjectedIsRefused) {
    const FocalPlane pointing = pointedAt({1.0, 0.5});
    const std::string message = "celestial position not in the tangent plane";
    for (const CIRS& place :
         {CIRS{1.0 + kTestPi, -0.5}, CIRS{1.0, 0.5 - rad(91.0)}, CIRS{std::numeric_limits<double>::quiet_NaN(), 0.5}}) {
        EXPECT_EQ(messageOf([&] { pointing.cirsToStd(place); }), message);
        EXPECT_EQ(messageOf([&] { pointing.cirsToXy(place); }), message);
    }
    EXPECT_NO_THROW(pointing.cirsToStd({1.0, 0.5 - rad(85.0)}));
}

TEST_F(FocalPlaneTest, EachPointingReplacesTheOpticsAndThePlates) {
    const Optics optics = {5000.0, 5100.0, 100.0, 10.0, 1.0};
    const PlateGeometry plates = {{{{1.0, 2.0, 0.1}, {3.0, 4.0, 0.2}, {5.0, 6.0, 0.3}}}, PLATE_B, 0.4};
    const FocalPlane pointing(kTelescope, optics, plates, {1.0, 0.5}, 0.0, kWinterNight);
    EXPECT_EQ(FocalPlaneCoordinates::nominalFocalLength(), 5000.0);
    EXPECT_EQ(FocalPlaneCoordinates::focalLength(), 5100.0);
    EXPECT_EQ(FocalPlaneCoordinates::save().c5, 1.0);
    EXPECT_EQ(PlateCoordinates::geometry().plate, PLATE_B);
    EXPECT_EQ(PlateCoordinates::geometry().rotation, 0.4);
    EXPECT_EQ(PlateCoordinates::opticalAxis(VEKO).y0, 6.0);
    pointedAt({1.0, 0.5});
    EXPECT_EQ(FocalPlaneCoordinates::focalLength(), kOptics.focalLength);
    EXPECT_EQ(PlateCoordinates::geometry().plate, VEKO);
}
