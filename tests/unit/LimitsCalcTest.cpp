#include "LimitsCalc.h"
#include "ProcessWideState.h"
#include "pointing.h"
#include "tolerances.h"

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

// That the limits are where altitude or rotator reach their own, and that nothing is reached between them, is tried on
// random fields in tests/properties/HourAngleLimitsTest.cpp.

using namespace pos;

namespace {

class LimitsCalcTest : public ProcessWideState {};

/** atan(1/2) in degrees: the parallactic angle, at latitude 45, of an equatorial field 30 and 150 degrees west. */
constexpr double kHalfTangentDeg = 26.56505117707799;
/** A circumpolar field of the site, which at its lowest stands 18.8 degrees high. */
constexpr double kCircumpolarDec = rad(80.0);
constexpr double kBelowCircumpolar = rad(75.0);

/** The embedded telescope, or one at another latitude, with limits of the rotator, degrees. */
Telescope withLimits(double lowDeg, double highDeg, Telescope telescope = telescopeAt(45.0)) {
    telescope.rotatorLowLimit = rad(lowDeg);
    telescope.rotatorHighLimit = rad(highDeg);
    return telescope;
}

/** The largest zenith distance with which a field of declination 0 sets, at latitude 45, at an hour angle in degrees.
 */
double settingAt(double hourDeg) {
    return kTestPi / 2 - std::asin(std::cos(rad(45.0)) * std::cos(rad(hourDeg)));
}

/** The rotator angle of the circumpolar field at an hour angle, degrees. */
double circumpolarRotatorDeg(double hourDeg) {
    return -eraHd2pa(rad(hourDeg), kCircumpolarDec, kTelescope.latitude) * 180 / kTestPi;
}

std::pair<double, double> limits(FocalPlane focalPlane, const Telescope& telescope, double zenithDistance) {
    return LimitsCalc(telescope, focalPlane, zenithDistance).hourAngleLimits();
}

void expectLimits(std::pair<double, double> actual, double earliestDeg, double latestDeg) {
    EXPECT_NEAR(actual.first, rad(earliestDeg), kHourOfParallacticAngle);
    EXPECT_NEAR(actual.second, rad(latestDeg), kHourOfParallacticAngle);
}

/** From the pole the parallactic angle is nothing but 6e-17 times the hour angle: lost beside any other angle. */
FocalPlane withoutParallacticAngle(double positionAngle) {
    const FocalPlane focalPlane = seenAt(1e-3, 0.5, telescopeAt(90.0), positionAngle);
    EXPECT_LT(std::fabs(focalPlane.parallacticAngle()), 1e-18);
    return focalPlane;
}

/** A rotator limit, radians, that is reached at the field's present hour angle to the last bit, if there is one. */
std::optional<double> limitMetNow(const FocalPlane& focalPlane) {
    double limit = -focalPlane.parallacticAngle() * (1 - 1e-13);
    for (int step = 0; step < 2000; ++step) {
        limit = std::nextafter(limit, std::copysign(kTestPi, limit));
        const auto [first, second] = focalPlane.parallacticToHour(-limit);
        if (first == focalPlane.hourAngle() || second == focalPlane.hourAngle()) {
            return limit;
        }
    }
    return std::nullopt;
}

} // namespace

TEST_F(LimitsCalcTest, TheFieldMustBeTrulyAboveTheHorizonLimit) {
    FocalPlane focalPlane = pointedAt(kHighField);
    const double now = focalPlane.zenithDistance();
    const auto isAbove = [&](double largest) { return LimitsCalc(kTelescope, focalPlane, largest).checkHorizon(); };
    EXPECT_FALSE(isAbove(now));
    EXPECT_TRUE(isAbove(std::nextafter(now, 4.0)));
}

TEST_F(LimitsCalcTest, TheRotatorAngleIsOffsetLessParallacticAngleAndPositionAngleWrapped) {
    // A parallactic angle of 26.565 degrees, an offset of 7 and a position angle of 20: a rotator angle of 0.435.
    const double rotatorDeg = 7.0 - kHalfTangentDeg + 20.0;
    const auto isInside = [](double lowDeg, double highDeg, double paDeg) {
        Telescope telescope = withLimits(lowDeg, highDeg);
        telescope.rotatorOffset = rad(7.0);
        FocalPlane focalPlane = seenAt(rad(30.0), 0.0, telescope, rad(paDeg));
        return LimitsCalc(telescope, focalPlane, 1.0).checkRotator();
    };
    EXPECT_TRUE(isInside(rotatorDeg - 1e-6, rotatorDeg + 1e-6, 20.0));
    EXPECT_FALSE(isInside(rotatorDeg + 1e-6, 180.0, 20.0));
    EXPECT_FALSE(isInside(-180.0, rotatorDeg - 1e-6, 20.0));
    // The constructor of the pointing does not wrap its position angle; the rotator angle is wrapped.
    EXPECT_TRUE(isInside(rotatorDeg - 1e-6, rotatorDeg + 1e-6, 20.0 + 720.0));
    EXPECT_TRUE(isInside(-175.0, -174.0, 185.5 - rotatorDeg + 20.0));
}

TEST_F(LimitsCalcTest, ARotatorAngleAtALimitIsOutside) {
    const auto isInside = [](double rotatorAngle) {
        FocalPlane focalPlane = withoutParallacticAngle(rotatorAngle);
        return LimitsCalc(kTelescope, focalPlane, 1.0).checkRotator();
    };
    for (const double limit : {kTelescope.rotatorLowLimit, kTelescope.rotatorHighLimit}) {
        EXPECT_FALSE(isInside(limit));
        EXPECT_TRUE(isInside(std::nextafter(limit, 0.0)));
    }
}

TEST_F(LimitsCalcTest, HorizonAndRotatorNarrowTheHourAngles) {
    // A limit of -26.565 degrees is reached at 30 and 150 degrees, one of 26.565 at -150 and -30.
    constexpr double kNone = 90.0;
    struct Row {
        double lowDeg;
        double highDeg;
        double settingDeg;
        double hourDeg;
        double earliestDeg;
        double latestDeg;
    };
    for (const Row& row : {
             Row{-kHalfTangentDeg, kHalfTangentDeg, 154, 0, -30, 30},
             Row{-kHalfTangentDeg, kHalfTangentDeg, 154, 100, 30, 150},
             Row{-kHalfTangentDeg, kHalfTangentDeg, 154, -100, -150, -30},
             Row{-kHalfTangentDeg, kHalfTangentDeg, 154, 152, 150, 154},
             Row{-kHalfTangentDeg, kHalfTangentDeg, 154, -152, -154, -150},
             Row{-kHalfTangentDeg, kNone, 154, 0, -154, 30},
             Row{-kHalfTangentDeg, kNone, 154, 31, 30, 150},
             Row{-kNone, kHalfTangentDeg, 154, 0, -30, 154},
             Row{-kNone, kHalfTangentDeg, 154, -31, -150, -30},
             Row{-kNone, kNone, 154, 0, -154, 154},
             // What the rotator reaches beyond the horizon does not count.
             Row{-kHalfTangentDeg, kHalfTangentDeg, 29, 0, -29, 29},
             // Below the horizon limit now.
             Row{-kNone, kNone, 60, 60.1, 0, 0},
             Row{-kNone, kNone, 60, -179, 0, 0},
         }) {
        SCOPED_TRACE(row.hourDeg);
        const Telescope telescope = withLimits(row.lowDeg, row.highDeg);
        expectLimits(limits(seenAt(rad(row.hourDeg), 0.0, telescope), telescope, settingAt(row.settingDeg)),
                     row.earliestDeg, row.latestDeg);
    }
}

TEST_F(LimitsCalcTest, AFieldThatNeverRisesHasNoLimits) {
    // At its best it stands 30 degrees high.
    const Telescope telescope = telescopeAt(60.0);
    EXPECT_EQ(limits(seenAt(0.0, 0.0, telescope), telescope, rad(59.9)), std::make_pair(0.0, 0.0));
    EXPECT_NE(limits(seenAt(0.0, 0.0, telescope), telescope, rad(60.1)), std::make_pair(0.0, 0.0));
}

TEST_F(LimitsCalcTest, AFieldAtTheHorizonLimitItselfStillHasItsLimits) {
    const Telescope telescope = telescopeAt(30.0);
    const auto canMeetItsLimit = [&](double hourDeg) {
        FocalPlane focalPlane = seenAt(rad(hourDeg), rad(25.0), telescope);
        const double now = std::fabs(focalPlane.hourAngle());
        double zenithDistance = focalPlane.zenithDistance() - 2e-14;
        bool met = false;
        // The limit is moved bit by bit until the field rises, or sets, at its own hour.
        for (int step = 0; step < 400 && !met; ++step) {
            zenithDistance = std::nextafter(zenithDistance, 4.0);
            met = limits(focalPlane, telescope, zenithDistance) == std::make_pair(-now, now);
        }
        return met;
    };
    // Not every hour is one that the limits can come to, to the last bit: of some, a few are.
    for (const double side : {-1.0, 1.0}) {
        int met = 0;
        for (const double hourDeg : {56.0, 57.0, 58.0, 59.0, 60.0, 61.0, 62.0, 63.0}) {
            met += canMeetItsLimit(side * hourDeg) ? 1 : 0;
        }
        EXPECT_GE(met, 1) << side;
    }
}

TEST_F(LimitsCalcTest, AFieldThatTouchesTheHorizonLimitIsNotCircumpolar) {
    // From the equator a field on the equator is seen to pass the nadir, where it touches a limit of 180 degrees. A
    // circumpolar one had the rotator's limits alone, the later of which is a turn away.
    const Telescope telescope = withLimits(-30.0, -10.0, telescopeAt(0.0));
    expectLimits(limits(seenAt(0.5, -1e-12, telescope), telescope, kTestPi), 0.0, 180.0);
}

TEST_F(LimitsCalcTest, ADateThatTheLibraryRefusesHasNoLimits) {
    FocalPlane focalPlane = pointedAt(kHighField, 0.0, {std::numeric_limits<double>::quiet_NaN(), 283.15, 770.0, 0.2});
    const LimitsCalc calculator(kTelescope, focalPlane, 1.0);
    EXPECT_FALSE(calculator.checkHorizon());
    EXPECT_FALSE(calculator.checkRotator());
    EXPECT_EQ(calculator.hourAngleLimits(), std::make_pair(0.0, 0.0));
}

TEST_F(LimitsCalcTest, TheLimitsSubtractThePositionAngleThatTheCheckAdds) {
    // Offset - limit - position angle = 26.565 degrees for the low limit, -26.565 for the high one.
    Telescope telescope = withLimits(3.0 - 10.0 - kHalfTangentDeg, 3.0 - 10.0 + kHalfTangentDeg);
    telescope.rotatorOffset = rad(3.0);
    FocalPlane focalPlane = seenAt(0.0, 0.0, telescope, rad(10.0));
    const LimitsCalc calculator(telescope, focalPlane, settingAt(80.0));
    expectLimits(calculator.hourAngleLimits(), -30.0, 30.0);
    // The rotator angle now is 3 + 10 = 13 degrees, within -33.6 and 19.6; with the sign of the limits it were -7.
    EXPECT_TRUE(calculator.checkRotator());
    FocalPlane early = seenAt(rad(-29.0), 0.0, telescope, rad(10.0));
    EXPECT_FALSE(LimitsCalc(telescope, early, settingAt(80.0)).checkRotator());
}

TEST_F(LimitsCalcTest, ACircumpolarFieldIsLimitedByTheRotatorAlone) {
    // L and U are the hour angles at which the rotator reaches its low and its high limit; a turn is 360 degrees.
    struct Row {
        double hourDeg;
        double lowDeg;
        double highDeg;
        double earliestDeg;
        double latestDeg;
    };
    for (const Row& row : {
             Row{-50, 20, 70, 70 - 360, 20},  // now < L < U
             Row{-50, 70, 20, 70 - 360, 20},  // now < U < L
             Row{20, -50, 70, -50, 70},       // L < now < U
             Row{20, 70, -50, -50, 70},       // U < now < L
             Row{70, -50, 20, 20, -50 + 360}, // L < U < now
             Row{70, 20, -50, 20, -50 + 360}, // U < L < now
             Row{120, 40, -40, 40, 320},      // the latest hour lies 200 degrees ahead
         }) {
        SCOPED_TRACE(testing::Message() << row.hourDeg << ' ' << row.lowDeg << ' ' << row.highDeg);
        const Telescope telescope =
            withLimits(circumpolarRotatorDeg(row.lowDeg), circumpolarRotatorDeg(row.highDeg), kTelescope);
        expectLimits(limits(seenAt(rad(row.hourDeg), kCircumpolarDec, telescope), telescope, kBelowCircumpolar),
                     row.earliestDeg, row.latestDeg);
    }
}

TEST_F(LimitsCalcTest, TheLimitThatTheRotatorIsAtNarrowsNothing) {
    const double otherLimit = rad(circumpolarRotatorDeg(70.0));
    int setting = 0;
    int circumpolar = 0;
    // Not every hour is one that some limit meets to the last bit: of several, some are.
    for (double hourDeg = 15.0; hourDeg <= 25.0; hourDeg += 1.0) {
        Telescope telescope = telescopeAt(45.0);
        const FocalPlane equatorial = seenAt(rad(hourDeg), 0.0, telescope);
        if (const auto limit = limitMetNow(equatorial)) {
            ++setting;
            telescope.rotatorLowLimit = *limit;
            // The parallactic angle comes again at 180 degrees less the hour angle: beyond the horizon limit.
            expectLimits(limits(equatorial, telescope, settingAt(154.0)), -154.0, 154.0);
        }
        telescope = kTelescope;
        const FocalPlane high = seenAt(rad(hourDeg), kCircumpolarDec, telescope);
        if (const auto limit = limitMetNow(high)) {
            ++circumpolar;
            telescope.rotatorLowLimit = *limit;
            telescope.rotatorHighLimit = otherLimit;
            expectLimits(limits(high, telescope, kBelowCircumpolar), 70.0 - 360.0, 70.0);
            std::swap(telescope.rotatorLowLimit, telescope.rotatorHighLimit);
            expectLimits(limits(high, telescope, kBelowCircumpolar), 70.0 - 360.0, 70.0);
        }
    }
    EXPECT_GE(setting, 1);
    EXPECT_GE(circumpolar, 1);
}

TEST_F(LimitsCalcTest, ACircumpolarFieldSouthOfTheZenithUsesTheFirstHourOfEachLimit) {
    // From latitude 70 a declination of 50 never sets, and its parallactic angle stays within 33 degrees.
    Telescope telescope = telescopeAt(70.0);
    const auto limitsAt = [&](double hourDeg) {
        return limits(seenAt(rad(hourDeg), rad(50.0), telescope), telescope, rad(80.0));
    };
    telescope.rotatorLowLimit = -eraHd2pa(rad(40.0), rad(50.0), rad(70.0));
    // The high limit is out of reach. The low one is reached twice; its second hour has no effect.
    expectLimits(limitsAt(10.0), 40.0 - 360.0, 40.0);
    expectLimits(limitsAt(170.0), 40.0, 40.0 + 360.0);

    // With neither in reach there is nothing to tell.
    telescope.rotatorLowLimit = rad(-135.0);
    EXPECT_TRUE(std::isnan(limitsAt(10.0).first));
    EXPECT_TRUE(std::isnan(limitsAt(10.0).second));
}

TEST_F(LimitsCalcTest, ThePositionAngleBringsTheRotatorNearestToThePlatesOptimum) {
    // A parallactic angle of 12 degrees and an offset of 1: the rotator stands at -11 without a position angle.
    Telescope telescope = telescopeAt(45.0);
    telescope.rotatorOffset = rad(1.0);
    FocalPlane focalPlane = seenAt(std::asin(std::tan(rad(12.0))), 0.0, telescope, rad(33.0));
    const Astrometric centre = focalPlane.fieldCentre();
    LimitsCalc calculator(telescope, focalPlane, 1.0);
    // -25 + 11 = -14, 25 + 11 = 36, 0 + 11 = 11 degrees, to the nearest 5.
    for (const auto& [plate, positionAngleDeg] : {std::pair{PLATE_A, -15.0}, {PLATE_B, 35.0}, {VEKO, 10.0}}) {
        calculator.setPositionAngle(plate);
        EXPECT_EQ(focalPlane.positionAngle(), rad(positionAngleDeg));
        EXPECT_EQ(focalPlane.fieldCentre().ra, centre.ra);
        EXPECT_EQ(focalPlane.fieldCentre().dec, centre.dec);
        EXPECT_EQ(FocalPlaneCoordinates::rotation(), rad(positionAngleDeg));
    }
}

TEST_F(LimitsCalcTest, HalfwayBetweenTwoPositionAnglesTheOneAwayFromZeroIsTaken) {
    FocalPlane focalPlane = withoutParallacticAngle(0.0);
    for (const auto& [optimumDeg, positionAngleDeg] :
         {std::pair{2.5, 5.0}, {-2.5, -5.0}, {12.5, 15.0}, {-12.5, -15.0}, {2.4, 0.0}}) {
        Telescope telescope = kTelescope;
        telescope.optimumPlateA = rad(optimumDeg);
        LimitsCalc(telescope, focalPlane, 1.0).setPositionAngle(PLATE_A);
        EXPECT_EQ(focalPlane.positionAngle(), rad(positionAngleDeg));
    }
}

TEST_F(LimitsCalcTest, LatitudeAndOffsetAreTheCalculatorsOwnExceptInTheRotatorCheck) {
    FocalPlane focalPlane = seenAt(0.0, 0.0, telescopeAt(45.0));
    Telescope own = withLimits(-10.0, 135.0, telescopeAt(60.0));
    own.rotatorOffset = rad(135.0 - kHalfTangentDeg);
    // From latitude 60 an altitude whose sine is a quarter is reached at 60 degrees.
    LimitsCalc calculator(own, focalPlane, kTestPi / 2 - std::asin(0.25));
    // With the offset of 108 degrees the pointing's relation of hour and parallactic angle meets the high limit at -30.
    expectLimits(calculator.hourAngleLimits(), -30.0, 60.0);
    // The check takes the pointing's offset, which is 0.
    EXPECT_TRUE(calculator.checkRotator());
    own.rotatorLowLimit = rad(10.0);
    EXPECT_FALSE(LimitsCalc(own, focalPlane, 1.0).checkRotator());
    // -108.4 degrees are nearest to 22 steps of 5.
    calculator.setPositionAngle(VEKO);
    EXPECT_EQ(focalPlane.positionAngle(), rad(-110.0));
}
