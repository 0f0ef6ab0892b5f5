#include "SatelliteFibre.h"

#include "tolerances.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace pos;

namespace {

constexpr double kHalfTurn = 3.141592653589793;

struct Centre {
    double x;
    double y;
    double orientation;
};

SatelliteFibre<Centre> fibreAt(const Centre& centre, double dx, double dy) {
    return {0, 7, &centre, dx, dy, FibreStatus::Enabled};
}

} // namespace

TEST(SatelliteFibre, WithCentreAndOrientationZeroThePositionIsTheOffset) {
    const Centre centre{0.0, 0.0, 0.0};
    const PlateCoordinates position = fibreAt(centre, -8.058, -28.085).platePosition();
    EXPECT_EQ(position.x, -8.058);
    EXPECT_EQ(position.y, -28.085);
}

TEST(SatelliteFibre, TheCentreMovesTheFibre) {
    const Centre centre{5.0, -7.0, 0.0};
    const PlateCoordinates position = fibreAt(centre, 1.0, 3.0).platePosition();
    EXPECT_EQ(position.x, 6.0);
    EXPECT_EQ(position.y, -4.0);
}

TEST(SatelliteFibre, AnOrientationTurnsXTowardsY) {
    struct Case {
        double orientation;
        double x;
        double y;
    };
    // The offset (1, 3) turned, about (5, -7).
    for (const Case& c : {Case{kHalfTurn / 2, 5.0 - 3.0, -7.0 + 1.0}, Case{kHalfTurn, 5.0 - 1.0, -7.0 - 3.0},
                          Case{-kHalfTurn / 2, 5.0 + 3.0, -7.0 - 1.0},
                          Case{kHalfTurn / 6, 5.0 + std::sqrt(3.0) / 2 - 1.5, -7.0 + 0.5 + 1.5 * std::sqrt(3.0)}}) {
        const Centre centre{5.0, -7.0, c.orientation};
        const PlateCoordinates position = fibreAt(centre, 1.0, 3.0).platePosition();
        EXPECT_NEAR(position.x, c.x, kPlateToleranceMm);
        EXPECT_NEAR(position.y, c.y, kPlateToleranceMm);
    }
}

TEST(SatelliteFibre, FollowsALaterChangeOfItsCentre) {
    Centre centre{0.0, 0.0, 0.0};
    const SatelliteFibre<Centre> fibre = fibreAt(centre, 2.0, 0.0);
    centre = {10.0, 20.0, kHalfTurn / 2};
    EXPECT_NEAR(fibre.platePosition().x, 10.0, kPlateToleranceMm);
    EXPECT_NEAR(fibre.platePosition().y, 22.0, kPlateToleranceMm);
}
