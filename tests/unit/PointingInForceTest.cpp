#include "PointingInForce.h"
#include "ProcessWideState.h"
#include "pointing.h"

using namespace pos;

namespace {

class PointingInForceTest : public ProcessWideState {};

/** A pointing that shares nothing with the other one; the rotation of its plates is not that of the plate in use. */
FocalPlane southern() {
    const Telescope telescope{.eastLongitude = 2.6, .latitude = -0.55, .height = 1165.0, .horizonLimit = 0.1};
    const Optics optics{5000.0, 5100.0, 88.0, 1.0, -0.05};
    const PlateGeometry plates{{{{1.0, 2.0, 0.1}, {3.0, 4.0, 0.2}, {5.0, 6.0, 0.3}}}, PLATE_B, 0.3};
    return {telescope, optics, plates, {1.0, -0.5}, 100.0, kWinterNight};
}

} // namespace

TEST_F(PointingInForceTest, TwoPointingsInTurnGiveTheBitsOfEachAlone) {
    FocalPlane south = southern();
    const std::vector<double> southAlone = derivedValues(south);
    south.setFieldCentre(Astrometric{1.02, -0.51}, -100.0);
    const std::vector<double> turnedAlone = derivedValues(south);

    south.setFieldCentre(Astrometric{1.0, -0.5}, 100.0);
    const FocalPlane north = pointedAt({1.1, 0.4}, 0.7);
    const std::vector<double> northAlone = derivedValues(north);
    ASSERT_NE(derivedValues(south), southAlone);
    for (int turn = 0; turn < 2; ++turn) {
        {
            const PointingInForce inForce(south);
            EXPECT_EQ(derivedValues(south), southAlone);
            {
                const PointingInForce nested(north);
                EXPECT_EQ(derivedValues(north), northAlone);
            }
            south.setFieldCentre(Astrometric{1.02, -0.51}, -100.0);
            EXPECT_EQ(derivedValues(south), turnedAlone);
            south.setFieldCentre(Astrometric{1.0, -0.5}, 100.0);
        }
        EXPECT_EQ(derivedValues(north), northAlone);
    }
}

TEST_F(PointingInForceTest, RestoresWhatWasSetClassWide) {
    const FocalPlane south = southern();
    FocalPlaneCoordinates::setFocalLength(7000.0);
    FocalPlaneCoordinates::setRotation(0.25);
    PlateCoordinates::setPlatePosition(9.0, 8.0, 0.7); // the rotation counts from the next setPlate on
    const std::vector<double> before = derivedValues(south);
    {
        const PointingInForce inForce(south);
        EXPECT_NE(derivedValues(south), before);
        EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).x0, 3.0);
    }
    EXPECT_EQ(derivedValues(south), before);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).r0, 0.7);
}
