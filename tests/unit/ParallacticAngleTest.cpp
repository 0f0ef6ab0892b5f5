#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "pointing.h"
#include "tolerances.h"

#include <cmath>

using namespace pos;

namespace {

class ParallacticAngleTest : public ProcessWideState {};

/** Halfway between the equator and a pole, where the tangent of the latitude is 1. */
constexpr Telescope kNorth = telescopeAt(45.0);
constexpr Telescope kSouth = telescopeAt(-45.0);

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
    EXPECT_EQ(seenAt(0.4, 0.2, kNorth).parallacticToHour(0.0), std::make_pair(0.0, kTestPi));
    for (const double q : {0.0, 2 * kTestPi}) {
        const auto [first, second] = seenAt(0.4, 1.2, kNorth).parallacticToHour(q);
        EXPECT_EQ(first, kTestPi);
        EXPECT_TRUE(std::isnan(second));
    }
}

TEST_F(ParallacticAngleTest, AFieldThatCulminatesInTheZenithCountsAsNorthOfItForZeroAndAsSouthForHalfATurn) {
    // The place is moved until its declination is the latitude to the last bit; not at every hour does that succeed.
    int met = 0;
    for (double hour = 0.1; hour < 1.0 && met == 0; hour += 0.05) {
        double dec = rad(45.0);
        for (int step = 0; step < 10 && met == 0; ++step) {
            const FocalPlane zenith = seenAt(hour, dec, kNorth);
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
        const auto [first, second] = seenAt(0.4, 1.2, kNorth).parallacticToHour(q);
        EXPECT_EQ(first, 0.0);
        EXPECT_TRUE(std::isnan(second));
        expectHours(seenAt(0.4, 0.2, kNorth).parallacticToHour(q), kNaN, kNaN);
    }
}

TEST_F(ParallacticAngleTest, OnlyTheLastBitCountsAsZeroOrHalfATurn) {
    const FocalPlane south = seenAt(0.4, 0.2, kNorth);
    EXPECT_EQ(south.parallacticToHour(-2.2e-16), std::make_pair(0.0, kTestPi));
    // The next larger angle is in the east, at negative hour angles.
    const auto [early, late] = south.parallacticToHour(-2.3e-16);
    EXPECT_NEAR(early, -kTestPi, kAngleTolerance);
    EXPECT_LT(early, 0.0);
    EXPECT_LT(late, 0.0);
    const auto nearHalf = seenAt(0.4, 1.2, kNorth).parallacticToHour(std::nextafter(kTestPi, 0.0));
    EXPECT_GT(nearHalf.first, 0.0);
    EXPECT_NEAR(nearHalf.first, 0.0, kAngleTolerance);
}

TEST_F(ParallacticAngleTest, OnTheEquatorTheHourAngleHasAClosedForm) {
    // sin h = tan(latitude) tan q. At a latitude of 45 degrees, tan q = 1/2 is met at 30 and at 150 degrees.
    const FocalPlane field = seenAt(0.4, 0.0, kNorth);
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
    // South of the equator the field culminates in the north.
    const FocalPlane southern = seenAt(0.4, 0.0, kSouth);
    expectHours(southern.parallacticToHour(kTestPi - q), 30, 150);
    expectHours(southern.parallacticToHour(q - kTestPi), -150, -30);
    expectHours(southern.parallacticToHour(q), kNaN, kNaN);
}

TEST_F(ParallacticAngleTest, AnAngleThatIsNoNumberIsReachedNowhere) {
    expectHours(seenAt(0.4, 0.2, kNorth).parallacticToHour(kNaN), kNaN, kNaN);
}
