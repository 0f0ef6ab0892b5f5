#include "PointingInForce.h"
#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "telescope.h"

#include <array>
#include <gtest/gtest.h>

using namespace pos;

namespace {

class PointingInForceTest : public ProcessWideState {};

/** A place on the plate, and the sky behind another one, to the bit. */
using Bits = std::array<double, 4>;

Bits conversionsOf(const FocalPlane& pointing) {
    const PlateCoordinates plate = pointing.cirsToXy(pointing.xyToCirs({12.5, -40.25}));
    const CIRS sky = pointing.xyToCirs({-3.75, 81.0});
    return {plate.x, plate.y, sky.ra, sky.dec};
}

/** A pointing that shares nothing with the other one; the rotation of its plates is not that of the plate in use. */
FocalPlane southern() {
    const Telescope telescope{.eastLongitude = 2.6, .latitude = -0.55, .height = 1165.0, .horizonLimit = 0.1};
    const Optics optics{5000.0, 5100.0, 88.0, 1.0, -0.05};
    const PlateGeometry plates{{{{1.0, 2.0, 0.1}, {3.0, 4.0, 0.2}, {5.0, 6.0, 0.3}}}, PLATE_B, 0.3};
    return {telescope, optics, plates, {1.0, -0.5}, 100.0, kWinterNight};
}

FocalPlane northern() {
    return {telescopeConfig(), VEKO, {1.1, 0.4}, 0.7, kWinterNight};
}

} // namespace

TEST_F(PointingInForceTest, TwoPointingsInTurnGiveTheBitsOfEachAlone) {
    FocalPlane south = southern();
    const Bits southAlone = conversionsOf(south);
    south.setFieldCentre(Astrometric{1.02, -0.51}, -100.0);
    const Bits turnedAlone = conversionsOf(south);

    south.setFieldCentre(Astrometric{1.0, -0.5}, 100.0);
    const FocalPlane north = northern();
    const Bits northAlone = conversionsOf(north);
    ASSERT_NE(conversionsOf(south), southAlone);
    for (int turn = 0; turn < 2; ++turn) {
        {
            const PointingInForce inForce(south);
            EXPECT_EQ(conversionsOf(south), southAlone);
            {
                const PointingInForce nested(north);
                EXPECT_EQ(conversionsOf(north), northAlone);
            }
            south.setFieldCentre(Astrometric{1.02, -0.51}, -100.0);
            EXPECT_EQ(conversionsOf(south), turnedAlone);
            south.setFieldCentre(Astrometric{1.0, -0.5}, 100.0);
        }
        EXPECT_EQ(conversionsOf(north), northAlone);
    }
}

TEST_F(PointingInForceTest, RestoresWhatWasSetClassWide) {
    const FocalPlane south = southern();
    FocalPlaneCoordinates::setFocalLength(7000.0);
    FocalPlaneCoordinates::setRotation(0.25);
    PlateCoordinates::setPlatePosition(9.0, 8.0, 0.7); // the rotation counts from the next setPlate on
    const Bits before = conversionsOf(south);
    {
        const PointingInForce inForce(south);
        EXPECT_NE(conversionsOf(south), before);
        EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).x0, 3.0);
    }
    EXPECT_EQ(conversionsOf(south), before);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).r0, 0.7);
}
