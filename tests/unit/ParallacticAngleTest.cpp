#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "telescope.h"
#include "tolerances.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using namespace pos;

namespace {

class ParallacticAngleTest : public ProcessWideState {};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/** A field that is seen at an hour angle and a declination, radians, from a latitude, degrees. */
FocalPlane seenAt(double hourAngle, double dec, double latitudeDeg) {
    TelescopeSettings telescope;
    telescope.latitude = latitudeDeg;
    return {telescopeConfig(telescope), VEKO, placeObservedAt("H", hourAngle, dec, telescope, kAirlessNight), 0.0,
            kAirlessNight};
}

void expectHours(std::pair<double, double> hours, double firstDeg, double secondDeg) {
    const auto expectHour = [](double hour, double expectedDeg) {
        if (std::isnan(expectedDeg)) {
            EXPECT_TRUE(std::isnan(hour)) << hour;
        } else {
            EXPECT_NEAR(hour, rad(expectedDeg), kHourOfParallacticAngle);
        }
    };
    expectHour(hours.first, firstDeg);
    expectHour(hours.second, secondDeg);
}

} // namespace

TEST_F(ParallacticAngleTest, ZeroIsReachedOnTheMeridian) {
    // South of the zenith at both culminations, north of it at the lower one only.
    EXPECT_EQ(seenAt(0.4, 0.2, 45.0).parallacticToHour(0.0), std::make_pair(0.0, kTestPi));
    const FocalPlane north = seenAt(0.4, 1.2, 45.0);
    EXPECT_EQ(north.parallacticToHour(0.0).first, kTestPi);
    EXPECT_TRUE(std::isnan(north.parallacticToHour(0.0).second));
    EXPECT_EQ(north.parallacticToHour(2 * kTestPi).first, kTestPi);
}

TEST_F(ParallacticAngleTest, AFieldThatCulminatesInTheZenithCountsAsNorthOfItForZeroAndAsSouthForHalfATurn) {
    // The place is moved until its declination is the latitude to the last bit; not at every hour does that succeed.
    int met = 0;
    for (double hour = 0.1; hour < 1.0 && met == 0; hour += 0.05) {
        double dec = rad(45.0);
        for (int step = 0; step < 10 && met == 0; ++step) {
            const FocalPlane zenith = seenAt(hour, dec, 45.0);
            dec += zenith.latitude() - zenith.tangentDec();
            if (zenith.latitude() == zenith.tangentDec()) {
                ++met;
                expectHours(zenith.parallacticToHour(0.0), 180.0, kNaN);
                expectHours(zenith.parallacticToHour(kTestPi), kNaN, kNaN);
            }
        }
    }
    EXPECT_EQ(met, 1);
}

TEST_F(ParallacticAngleTest, HalfATurnIsReachedAtTheUpperCulminationNorthOfTheZenith) {
    for (const double q : {kTestPi, -kTestPi}) {
        const auto north = seenAt(0.4, 1.2, 45.0).parallacticToHour(q);
        EXPECT_EQ(north.first, 0.0);
        EXPECT_TRUE(std::isnan(north.second));
        const auto south = seenAt(0.4, 0.2, 45.0).parallacticToHour(q);
        EXPECT_TRUE(std::isnan(south.first));
        EXPECT_TRUE(std::isnan(south.second));
    }
}

TEST_F(ParallacticAngleTest, OnlyTheLastBitCountsAsZeroOrHalfATurn) {
    const FocalPlane south = seenAt(0.4, 0.2, 45.0);
    EXPECT_EQ(south.parallacticToHour(-2.2e-16), std::make_pair(0.0, kTestPi));
    // The next larger angle is in the east, at negative hour angles.
    const auto [early, late] = south.parallacticToHour(-2.3e-16);
    EXPECT_NEAR(early, -kTestPi, kAngleTolerance);
    EXPECT_LT(early, 0.0);
    EXPECT_LT(late, 0.0);
    const auto nearHalf = seenAt(0.4, 1.2, 45.0).parallacticToHour(std::nextafter(kTestPi, 0.0));
    EXPECT_GT(nearHalf.first, 0.0);
    EXPECT_NEAR(nearHalf.first, 0.0, kAngleTolerance);
}

TEST_F(ParallacticAngleTest, OnTheEquatorTheHourAngleHasAClosedForm) {
    // sin h = tan(latitude) tan q. At a latitude of 45 degrees, tan q = 1/2 is met at 30 and at 150 degrees.
    const FocalPlane field = seenAt(0.4, 0.0, 45.0);
    const double q = std::atan(0.5);
    expectHours(field.parallacticToHour(q), 30, 150);
    expectHours(field.parallacticToHour(-q), -150, -30);
    expectHours(field.parallacticToHour(q + 2 * kTestPi), 30, 150);
    expectHours(field.parallacticToHour(q - 2 * kTestPi), 30, 150);
    // The same tangent on the other side of the zenith, and a larger one, are never met.
    expectHours(field.parallacticToHour(kTestPi - q), kNaN, kNaN);
    expectHours(field.parallacticToHour(q - kTestPi), kNaN, kNaN);
    expectHours(field.parallacticToHour(rad(60.0)), kNaN, kNaN);
    expectHours(field.parallacticToHour(rad(-60.0)), kNaN, kNaN);
}

TEST_F(ParallacticAngleTest, SouthOfTheEquatorTheFieldCulminatesInTheNorth) {
    const FocalPlane field = seenAt(0.4, 0.0, -45.0);
    const double q = kTestPi - std::atan(0.5);
    expectHours(field.parallacticToHour(q), 30, 150);
    expectHours(field.parallacticToHour(-q), -150, -30);
    expectHours(field.parallacticToHour(std::atan(0.5)), kNaN, kNaN);
}

TEST_F(ParallacticAngleTest, BetweenZenithAndPoleEveryAngleIsReachedOnce) {
    // The declination of 70 degrees, seen from 45: the library tells the angle at each hour.
    const FocalPlane field = seenAt(0.4, rad(70.0), 45.0);
    for (double hourDeg = -175.0; hourDeg <= 175.0; hourDeg += 10.0) {
        expectHours(field.parallacticToHour(eraHd2pa(rad(hourDeg), rad(70.0), rad(45.0))), hourDeg, kNaN);
    }
}

TEST_F(ParallacticAngleTest, BelowTheZenithAnglesAreReachedTwiceInAscendingOrder) {
    for (const double decDeg : {20.0, -20.0}) {
        const FocalPlane field = seenAt(0.4, rad(decDeg), 45.0);
        for (double hourDeg = -175.0; hourDeg <= 175.0; hourDeg += 10.0) {
            const double q = eraHd2pa(rad(hourDeg), rad(decDeg), rad(45.0));
            const auto [first, second] = field.parallacticToHour(q);
            EXPECT_LT(first, second);
            // Both are true, one is the hour that the angle came from.
            EXPECT_NEAR(eraHd2pa(first, rad(decDeg), rad(45.0)), q, kHourOfParallacticAngle);
            EXPECT_NEAR(eraHd2pa(second, rad(decDeg), rad(45.0)), q, kHourOfParallacticAngle);
            EXPECT_NEAR(std::min(std::fabs(first - rad(hourDeg)), std::fabs(second - rad(hourDeg))), 0.0,
                        kHourOfParallacticAngle);
        }
    }
}

TEST_F(ParallacticAngleTest, ThePresentAngleLeadsBackToThePresentHour) {
    for (const double dec : {-0.4, 0.1, 0.45, 0.55, 1.2}) {
        for (const double hour : {-2.0, -0.7, 0.3, 1.9}) {
            const FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, dec}, 0.0, kWinterNight, hour);
            const auto [first, second] = focalPlane.parallacticToHour(focalPlane.parallacticAngle());
            const double now = focalPlane.hourAngle();
            EXPECT_TRUE(std::fabs(first - now) < kHourOfParallacticAngle ||
                        std::fabs(second - now) < kHourOfParallacticAngle)
                << dec << ' ' << hour << ": " << first << ' ' << second;
        }
    }
}

TEST_F(ParallacticAngleTest, AnAngleThatIsNoNumberIsReachedNowhere) {
    const auto [first, second] = seenAt(0.4, 0.2, 45.0).parallacticToHour(kNaN);
    EXPECT_TRUE(std::isnan(first));
    EXPECT_TRUE(std::isnan(second));
}
