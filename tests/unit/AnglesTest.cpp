#include "angles.h"

#include <gtest/gtest.h>
#include <limits>

using namespace pos;

TEST(Angles, HoursAndDegreesConvertInTheStatedOrder) {
    EXPECT_EQ(degreesToRadians(135.0), 2.356194490192345);
    EXPECT_EQ(hoursToRadians(1.5), 0.39269908169872414);
    EXPECT_EQ(radiansToDegrees(kPi), 180.0);
    EXPECT_EQ(radiansToHours(kPi / 12), 1.0);
    EXPECT_EQ(degreesToRadians(65.0), 65.0 / 180 * 3.141592653589793);
}

TEST(Angles, WrappingKeepsTheClosedIntervalFromMinusPiToPi) {
    EXPECT_EQ(wrapAngle(kPi), kPi);
    EXPECT_EQ(wrapAngle(-kPi), -kPi);
    EXPECT_EQ(wrapAngle(0.5), 0.5);
    EXPECT_EQ(wrapAngle(2 * kPi), 0.0);
}

TEST(Angles, WrappingOfWhatIsNotFiniteIsNaN) {
    EXPECT_TRUE(std::isnan(wrapAngle(std::numeric_limits<double>::quiet_NaN())));
    EXPECT_TRUE(std::isnan(wrapAngle(std::numeric_limits<double>::infinity())));
}
