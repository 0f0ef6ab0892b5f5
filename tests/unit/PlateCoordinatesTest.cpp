#include "PlateCoordinates.h"
#include "ProcessWideState.h"
#include "pointing.h"
#include "tolerances.h"

#include <cmath>

using namespace pos;

namespace {

/** Three plates that differ in everything, with PLATE_A in use and the rotation of VEKO in force. */
class PlateCoordinatesTest : public ProcessWideState {
protected:
    void SetUp() override {
        ProcessWideState::SetUp();
        PlateCoordinates::setGeometry(
            {{{{1.5, -2.5, 0.0}, {10.0, 20.0, rad(-45.0)}, {-3.0, 4.0, rad(90.0)}}}, PLATE_A, rad(90.0)});
    }
};

void expectPlate(FocalPlaneCoordinates focal, double x, double y) {
    const PlateCoordinates plate = focal;
    EXPECT_NEAR(plate.x, x, kPlateToleranceMm);
    EXPECT_NEAR(plate.y, y, kPlateToleranceMm);
}

} // namespace

TEST_F(PlateCoordinatesTest, TheConversionsFollowTheirFormulas) {
    PlateCoordinates::setPlate(PLATE_B);
    const double c = std::cos(-45.0 / 180 * kTestPi);
    const double s = std::sin(-45.0 / 180 * kTestPi);
    const PlateCoordinates plate(FocalPlaneCoordinates(31.7, -12.9));
    EXPECT_EQ(plate.x, c * 31.7 - s * -12.9 + 10.0);
    EXPECT_EQ(plate.y, c * -12.9 + s * 31.7 + 20.0);
    const FocalPlaneCoordinates focal(PlateCoordinates(31.7, -12.9));
    const double dx = 31.7 - 10.0;
    const double dy = -12.9 - 20.0;
    EXPECT_EQ(focal.x, c * dx + s * dy);
    EXPECT_EQ(focal.y, c * dy - s * dx);
}

TEST_F(PlateCoordinatesTest, TheOffsetsAreThoseOfThePlateInUseButTheRotationIsTheOneInForce) {
    // A quarter turn brings x to y.
    expectPlate({1.0, 0.0}, 1.5, -1.5);
    expectPlate({0.0, 1.0}, 0.5, -2.5);
    const FocalPlaneCoordinates focal(PlateCoordinates(1.5, -1.5));
    EXPECT_NEAR(focal.x, 1.0, kPlateToleranceMm);
    EXPECT_NEAR(focal.y, 0.0, kPlateToleranceMm);
}

TEST_F(PlateCoordinatesTest, SettingAPlateBringsItsOffsetsAndItsRotation) {
    PlateCoordinates::setPlate(PLATE_B);
    expectPlate({1.0, 0.0}, 10.0 + std::sqrt(0.5), 20.0 - std::sqrt(0.5));
    PlateCoordinates::setPlate(VEKO);
    expectPlate({1.0, 0.0}, -3.0, 5.0);
    PlateCoordinates::setPlate(PLATE_A);
    expectPlate({1.0, 0.0}, 2.5, -2.5);
}

TEST_F(PlateCoordinatesTest, ANewPlatePositionMovesTheOriginAtOnceAndTurnsWithTheNextSetPlate) {
    PlateCoordinates::setPlatePosition(1.0, 2.0, 0.1);
    expectPlate({10.0, 0.0}, 1.0, 12.0);
    PlateCoordinates::setPlate(PLATE_A);
    // The rotation is in radians.
    expectPlate({10.0, 0.0}, 1.0 + 10.0 * std::cos(0.1), 2.0 + 10.0 * std::sin(0.1));
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_A).r0, 0.1);
    // The other plates are as they were.
    PlateCoordinates::setPlate(VEKO);
    expectPlate({10.0, 0.0}, -3.0, 14.0);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).x0, 10.0);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).y0, 20.0);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).r0, rad(-45.0));
}
