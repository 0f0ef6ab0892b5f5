#include "SatelliteFibre.h"

#include "tolerances.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace pos;

namespace {

struct Centre {
    double x;
    double y;
    double orientation;
};

} // namespace

TEST(SatelliteFibre, FollowsItsCentreAndIsTurnedFromXTowardsY) {
    constexpr double kHalfTurn = 3.141592653589793;
    Centre centre{0.0, 0.0, 0.0};
    const SatelliteFibre<Centre> fibre{0, 7, &centre, 1.0, 3.0, FibreStatus::Enabled};
    struct Row {
        Centre centre;
        double x;
        double y;
    };
    for (const Row& row : {Row{{0.0, 0.0, 0.0}, 1.0, 3.0}, Row{{5.0, -7.0, 0.0}, 5.0 + 1.0, -7.0 + 3.0},
                           Row{{5.0, -7.0, kHalfTurn / 2}, 5.0 - 3.0, -7.0 + 1.0},
                           Row{{5.0, -7.0, -kHalfTurn / 2}, 5.0 + 3.0, -7.0 - 1.0},
                           Row{{0.0, 0.0, kHalfTurn / 6}, std::sqrt(3.0) / 2 - 1.5, 0.5 + 1.5 * std::sqrt(3.0)}}) {
        centre = row.centre;
        EXPECT_NEAR(fibre.platePosition().x, row.x, kPlateToleranceMm) << row.centre.orientation;
        EXPECT_NEAR(fibre.platePosition().y, row.y, kPlateToleranceMm) << row.centre.orientation;
    }
}
