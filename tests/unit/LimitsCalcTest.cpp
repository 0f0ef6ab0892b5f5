#include "LimitsCalc.h"
#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "telescope.h"
#include "thrown.h"
#include "tolerances.h"

#include <boost/property_tree/exceptions.hpp>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

using namespace pos;

namespace {

class LimitsCalcTest : public ProcessWideState {};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/** atan(1/2) in degrees: the parallactic angle, at latitude 45, of an equatorial field 30 and 150 degrees west. */
constexpr double kHalfTangentDeg = 26.56505117707799;

TelescopeSettings telescopeAt(double latitudeDeg) {
    TelescopeSettings telescope;
    telescope.latitude = latitudeDeg;
    return telescope;
}

/** A field that is seen at an hour angle and a declination, degrees. */
FocalPlane seenAt(double hourAngleDeg, double decDeg, const TelescopeSettings& telescope, double paDeg = 0.0) {
    const Astrometric centre = placeObservedAt("H", rad(hourAngleDeg), rad(decDeg), telescope, kAirlessNight);
    return {telescopeConfig(telescope), VEKO, centre, rad(paDeg), kAirlessNight};
}

/** The largest zenith distance for an altitude limit of which the sine is known, radians. */
double zenithDistanceOfSine(double sineOfAltitude) {
    return kTestPi / 2 - std::asin(sineOfAltitude);
}

std::pair<double, double> limits(FocalPlane focalPlane, const TelescopeSettings& telescope, double zenithDistance) {
    return LimitsCalc(telescopeConfig(telescope), focalPlane, zenithDistance).hourAngleLimits();
}

void expectLimits(std::pair<double, double> actual, double earliestDeg, double latestDeg, const std::string& label) {
    EXPECT_NEAR(actual.first, rad(earliestDeg), kHourOfParallacticAngle) << label;
    EXPECT_NEAR(actual.second, rad(latestDeg), kHourOfParallacticAngle) << label;
}

/** From the pole the parallactic angle is nothing but 6e-17 times the hour angle: lost beside any other angle. */
FocalPlane withoutParallacticAngle(const TelescopeSettings& telescope, double positionAngle) {
    const Astrometric centre = placeObservedAt("H", 1e-3, 0.5, telescope, kAirlessNight);
    FocalPlane focalPlane(telescopeConfig(telescope), VEKO, centre, positionAngle, kAirlessNight);
    EXPECT_LT(std::fabs(focalPlane.parallacticAngle()), 1e-18);
    return focalPlane;
}

/** A rotator limit, degrees, that is reached at the field's present hour angle to the last bit, if there is one. */
std::optional<double> limitMetNow(const FocalPlane& focalPlane) {
    double limit = -focalPlane.parallacticAngle() * 180 / kTestPi * (1 - 1e-13);
    for (int step = 0; step < 2000; ++step) {
        limit = std::nextafter(limit, std::copysign(180.0, limit));
        const auto [first, second] = focalPlane.parallacticToHour(-rad(limit));
        if (first == focalPlane.hourAngle() || second == focalPlane.hourAngle()) {
            return limit;
        }
    }
    return std::nullopt;
}

} // namespace

TEST_F(LimitsCalcTest, TheFieldMustBeTrulyAboveTheHorizonLimit) {
    FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, 0.0, kWinterNight);
    const double now = focalPlane.zenithDistance();
    const auto isAbove = [&](double largest) {
        return LimitsCalc(telescopeConfig(), focalPlane, largest).checkHorizon();
    };
    EXPECT_FALSE(isAbove(now));
    EXPECT_TRUE(isAbove(std::nextafter(now, 4.0)));
    EXPECT_FALSE(isAbove(std::nextafter(now, 0.0)));
}

TEST_F(LimitsCalcTest, TheRotatorAngleIsOffsetLessParallacticAngleAndPositionAngle) {
    // A parallactic angle of 26.565 degrees, an offset of 7 and a position angle of 20: a rotator angle of 0.435.
    TelescopeSettings telescope = telescopeAt(45.0);
    telescope.rotatorOffset = 7.0;
    const double rotatorDeg = 7.0 - kHalfTangentDeg + 20.0;
    const auto isInside = [&](double lowDeg, double highDeg, double paDeg) {
        telescope.rotatorLowLimit = lowDeg;
        telescope.rotatorHighLimit = highDeg;
        FocalPlane focalPlane = seenAt(30.0, 0.0, telescope, paDeg);
        return LimitsCalc(telescopeConfig(telescope), focalPlane, 1.0).checkRotator();
    };
    EXPECT_TRUE(isInside(rotatorDeg - 1e-6, rotatorDeg + 1e-6, 20.0));
    EXPECT_FALSE(isInside(rotatorDeg + 1e-6, 180.0, 20.0));
    EXPECT_FALSE(isInside(-180.0, rotatorDeg - 1e-6, 20.0));
    // The constructor of the pointing does not wrap its position angle; the rotator angle is wrapped.
    EXPECT_TRUE(isInside(rotatorDeg - 1e-6, rotatorDeg + 1e-6, 20.0 + 720.0));
    EXPECT_TRUE(isInside(-180.0 + 5.0, -180.0 + 6.0, 205.0 - 7.0 + kHalfTangentDeg - 19.5));
}

TEST_F(LimitsCalcTest, ARotatorAngleAtALimitIsOutside) {
    const TelescopeSettings telescope = telescopeAt(90.0);
    const double low = rad(-135.0);
    const double high = rad(135.0);
    const auto isInside = [&](double rotatorAngle) {
        FocalPlane focalPlane = withoutParallacticAngle(telescope, rotatorAngle);
        return LimitsCalc(telescopeConfig(telescope), focalPlane, 1.0).checkRotator();
    };
    EXPECT_FALSE(isInside(high));
    EXPECT_TRUE(isInside(std::nextafter(high, 0.0)));
    EXPECT_FALSE(isInside(low));
    EXPECT_TRUE(isInside(std::nextafter(low, 0.0)));
}

TEST_F(LimitsCalcTest, AnEquatorialFieldIsLimitedByTheHorizon) {
    // cos H = sin a / cos(latitude): a quarter over a half. The rotator stays within 30 degrees and limits nothing.
    const TelescopeSettings telescope = telescopeAt(60.0);
    for (const double hourDeg : {-59.0, 0.0, 30.0, 59.0}) {
        expectLimits(limits(seenAt(hourDeg, 0.0, telescope), telescope, zenithDistanceOfSine(0.25)), -60.0, 60.0,
                     std::to_string(hourDeg));
    }
}

TEST_F(LimitsCalcTest, AFieldOffTheEquatorIsLimitedByTheHorizon) {
    // sin a = sin(dec) sin(latitude) + cos(dec) cos(latitude) cos H with an H of 75 degrees.
    const TelescopeSettings telescope = telescopeAt(28.760583);
    for (const double decDeg : {-20.0, 15.0}) {
        const double sine = std::sin(rad(decDeg)) * std::sin(rad(28.760583)) +
                            std::cos(rad(decDeg)) * std::cos(rad(28.760583)) * std::cos(rad(75.0));
        expectLimits(limits(seenAt(-20.0, decDeg, telescope), telescope, zenithDistanceOfSine(sine)), -75.0, 75.0,
                     std::to_string(decDeg));
    }
}

TEST_F(LimitsCalcTest, AFieldThatNeverRisesHasNoLimits) {
    // At its best it stands 30 degrees high.
    const TelescopeSettings telescope = telescopeAt(60.0);
    EXPECT_EQ(limits(seenAt(0.0, 0.0, telescope), telescope, rad(59.9)), std::make_pair(0.0, 0.0));
    EXPECT_NE(limits(seenAt(0.0, 0.0, telescope), telescope, rad(60.1)), std::make_pair(0.0, 0.0));
}

TEST_F(LimitsCalcTest, AFieldThatIsBelowTheLimitNowHasNoLimits) {
    const TelescopeSettings telescope = telescopeAt(60.0);
    for (const double hourDeg : {-179.0, -60.1, 60.1, 179.0}) {
        EXPECT_EQ(limits(seenAt(hourDeg, 0.0, telescope), telescope, zenithDistanceOfSine(0.25)),
                  std::make_pair(0.0, 0.0))
            << hourDeg;
    }
}

TEST_F(LimitsCalcTest, AFieldAtTheHorizonLimitItselfStillHasItsLimits) {
    const TelescopeSettings telescope = telescopeAt(30.0);
    const PosConfig config = telescopeConfig(telescope);
    const auto canMeetItsLimit = [&](double hourDeg) {
        FocalPlane focalPlane = seenAt(hourDeg, 25.0, telescope);
        const double now = std::fabs(focalPlane.hourAngle());
        const double dec = focalPlane.tangentDec();
        double zenithDistance = zenithDistanceOfSine(std::sin(dec) * std::sin(rad(30.0)) +
                                                     std::cos(dec) * std::cos(rad(30.0)) * std::cos(now));
        zenithDistance -= 2e-14;
        bool met = false;
        // The limit is moved bit by bit until the field rises, or sets, at its own hour.
        for (int step = 0; step < 400 && !met; ++step) {
            zenithDistance = std::nextafter(zenithDistance, 4.0);
            met = LimitsCalc(config, focalPlane, zenithDistance).hourAngleLimits() == std::make_pair(-now, now);
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

TEST_F(LimitsCalcTest, ADateThatTheLibraryRefusesHasNoLimits) {
    FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, 0.0, {kNaN, 283.15, 770.0, 0.2});
    const LimitsCalc calculator(telescopeConfig(), focalPlane, 1.0);
    EXPECT_FALSE(calculator.checkHorizon());
    EXPECT_FALSE(calculator.checkRotator());
    EXPECT_EQ(calculator.hourAngleLimits(), std::make_pair(0.0, 0.0));
}

TEST_F(LimitsCalcTest, TheRotatorNarrowsTheHourAngles) {
    // An equatorial field at latitude 45, where the horizon of sin a = cos(45) cos(154) is met at 154 degrees.
    // A limit of -26.565 degrees is reached at 30 and 150 degrees, one of 26.565 at -150 and -30.
    constexpr double kNone = 90.0;
    struct Row {
        double lowDeg;
        double highDeg;
        double hourDeg;
        double earliestDeg;
        double latestDeg;
    };
    const std::vector<Row> rows = {
        {-kHalfTangentDeg, kHalfTangentDeg, 0, -30, 30},
        {-kHalfTangentDeg, kHalfTangentDeg, 100, 30, 150},
        {-kHalfTangentDeg, kHalfTangentDeg, -100, -150, -30},
        {-kHalfTangentDeg, kHalfTangentDeg, 152, 150, 154},
        {-kHalfTangentDeg, kHalfTangentDeg, -152, -154, -150},
        {-kHalfTangentDeg, kNone, 0, -154, 30},
        {-kHalfTangentDeg, kNone, 31, 30, 150},
        {-kNone, kHalfTangentDeg, 0, -30, 154},
        {-kNone, kHalfTangentDeg, -31, -150, -30},
        {-kNone, kNone, 0, -154, 154},
    };
    const double zenithDistance = zenithDistanceOfSine(std::cos(rad(45.0)) * std::cos(rad(154.0)));
    TelescopeSettings telescope = telescopeAt(45.0);
    for (const Row& row : rows) {
        telescope.rotatorLowLimit = row.lowDeg;
        telescope.rotatorHighLimit = row.highDeg;
        expectLimits(limits(seenAt(row.hourDeg, 0.0, telescope), telescope, zenithDistance), row.earliestDeg,
                     row.latestDeg, std::to_string(row.hourDeg));
    }
}

TEST_F(LimitsCalcTest, LimitsOfTheRotatorBeyondTheHorizonDoNotCount) {
    TelescopeSettings telescope = telescopeAt(45.0);
    telescope.rotatorLowLimit = -kHalfTangentDeg;
    telescope.rotatorHighLimit = kHalfTangentDeg;
    const double zenithDistance = zenithDistanceOfSine(std::cos(rad(45.0)) * std::cos(rad(29.0)));
    expectLimits(limits(seenAt(0.0, 0.0, telescope), telescope, zenithDistance), -29.0, 29.0, "horizon first");
}

TEST_F(LimitsCalcTest, TheLimitsSubtractThePositionAngleThatTheCheckAdds) {
    TelescopeSettings telescope = telescopeAt(45.0);
    telescope.rotatorOffset = 3.0;
    // offset - limit - position angle = 26.565 degrees for the low limit, -26.565 for the high one.
    telescope.rotatorLowLimit = 3.0 - 10.0 - kHalfTangentDeg;
    telescope.rotatorHighLimit = 3.0 - 10.0 + kHalfTangentDeg;
    const double zenithDistance = zenithDistanceOfSine(std::cos(rad(45.0)) * std::cos(rad(80.0)));
    FocalPlane focalPlane = seenAt(0.0, 0.0, telescope, 10.0);
    const LimitsCalc calculator(telescopeConfig(telescope), focalPlane, zenithDistance);
    expectLimits(calculator.hourAngleLimits(), -30.0, 30.0, "subtracted");
    // The rotator angle now is 3 + 10 = 13 degrees, within -33.6 and 19.6; with the sign of the limits it were -7.
    EXPECT_TRUE(calculator.checkRotator());
    FocalPlane early = seenAt(-29.0, 0.0, telescope, 10.0);
    EXPECT_FALSE(LimitsCalc(telescopeConfig(telescope), early, zenithDistance).checkRotator());
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
    const std::vector<Row> rows = {
        {-50, 20, 70, 70 - 360, 20},  // now < L < U
        {-50, 70, 20, 70 - 360, 20},  // now < U < L
        {20, -50, 70, -50, 70},       // L < now < U
        {20, 70, -50, -50, 70},       // U < now < L
        {70, -50, 20, 20, -50 + 360}, // L < U < now
        {70, 20, -50, 20, -50 + 360}, // U < L < now
        {120, 40, -40, 40, 320},      // the latest hour lies 200 degrees ahead
    };
    constexpr double kDecDeg = 80.0;
    TelescopeSettings telescope = telescopeAt(28.760583);
    const auto rotatorAngleDeg = [](double hourDeg) {
        return -eraHd2pa(rad(hourDeg), rad(kDecDeg), rad(28.760583)) * 180 / kTestPi;
    };
    for (const Row& row : rows) {
        telescope.rotatorLowLimit = rotatorAngleDeg(row.lowDeg);
        telescope.rotatorHighLimit = rotatorAngleDeg(row.highDeg);
        // At its lowest the field stands 18.8 degrees high.
        expectLimits(
            limits(seenAt(row.hourDeg, kDecDeg, telescope), telescope, rad(75.0)), row.earliestDeg, row.latestDeg,
            std::to_string(row.hourDeg) + ' ' + std::to_string(row.lowDeg) + ' ' + std::to_string(row.highDeg));
    }
}

TEST_F(LimitsCalcTest, TheLimitThatTheRotatorIsAtNarrowsNothing) {
    // As in the tests before: equatorial fields at latitude 45, and circumpolar ones at 28.8.
    const double zenithDistance = zenithDistanceOfSine(std::cos(rad(45.0)) * std::cos(rad(154.0)));
    const double otherLimit = -eraHd2pa(rad(70.0), rad(80.0), rad(28.760583)) * 180 / kTestPi;
    int setting = 0;
    int circumpolar = 0;
    // Not every hour is one that some limit meets to the last bit: of several, some are.
    for (const double hourDeg : {15.0, 16.0, 17.0, 18.0, 19.0, 20.0, 21.0, 22.0, 23.0, 24.0, 25.0}) {
        TelescopeSettings telescope = telescopeAt(45.0);
        const FocalPlane equatorial = seenAt(hourDeg, 0.0, telescope);
        if (const auto limit = limitMetNow(equatorial)) {
            ++setting;
            telescope.rotatorLowLimit = *limit;
            // The parallactic angle comes again at 180 degrees less the hour angle: beyond the horizon limit.
            expectLimits(limits(equatorial, telescope, zenithDistance), -154.0, 154.0, "setting");
        }
        telescope = telescopeAt(28.760583);
        const FocalPlane high = seenAt(hourDeg, 80.0, telescope);
        if (const auto limit = limitMetNow(high)) {
            ++circumpolar;
            telescope.rotatorLowLimit = *limit;
            telescope.rotatorHighLimit = otherLimit;
            expectLimits(limits(high, telescope, rad(75.0)), 70.0 - 360.0, 70.0, "circumpolar, low limit");
            std::swap(telescope.rotatorLowLimit, telescope.rotatorHighLimit);
            expectLimits(limits(high, telescope, rad(75.0)), 70.0 - 360.0, 70.0, "circumpolar, high limit");
        }
    }
    EXPECT_GE(setting, 1);
    EXPECT_GE(circumpolar, 1);
}

TEST_F(LimitsCalcTest, ACircumpolarFieldOnceItSetsIsLimitedByTheHorizonToo) {
    const TelescopeSettings telescope;
    // 18.76 degrees is the lowest altitude of this field: from there on the horizon counts.
    const auto earliest = [&](double altitudeDeg) {
        return limits(seenAt(120.0, 80.0, telescope), telescope, rad(90.0 - altitudeDeg)).second;
    };
    EXPECT_GT(earliest(18.7), kTestPi);
    EXPECT_LT(earliest(18.8), kTestPi);
    EXPECT_GT(earliest(18.8), rad(120.0));
}

TEST_F(LimitsCalcTest, ACircumpolarFieldSouthOfTheZenithUsesTheFirstHourOfEachLimit) {
    // From latitude 70 a declination of 50 never sets, and its parallactic angle stays within 33 degrees.
    TelescopeSettings telescope = telescopeAt(70.0);
    const double q = eraHd2pa(rad(40.0), rad(50.0), rad(70.0));
    telescope.rotatorLowLimit = -q * 180 / kTestPi;
    // The high limit is out of reach. The low one is reached twice; its second hour has no effect.
    expectLimits(limits(seenAt(10.0, 50.0, telescope), telescope, rad(80.0)), 40.0 - 360.0, 40.0, "before");
    expectLimits(limits(seenAt(170.0, 50.0, telescope), telescope, rad(80.0)), 40.0, 40.0 + 360.0, "after");

    // With neither in reach there is nothing to tell.
    telescope.rotatorLowLimit = -135.0;
    const auto [earliest, latest] = limits(seenAt(10.0, 50.0, telescope), telescope, rad(80.0));
    EXPECT_TRUE(std::isnan(earliest));
    EXPECT_TRUE(std::isnan(latest));
}

TEST_F(LimitsCalcTest, ThePositionAngleBringsTheRotatorNearestToThePlatesOptimum) {
    // A parallactic angle of 12 degrees and an offset of 1: the rotator stands at -11 without a position angle.
    TelescopeSettings telescope = telescopeAt(45.0);
    telescope.rotatorOffset = 1.0;
    const double hourDeg = std::asin(std::tan(rad(12.0))) * 180 / kTestPi;
    FocalPlane focalPlane = seenAt(hourDeg, 0.0, telescope, 33.0);
    const Astrometric centre = focalPlane.fieldCentre();
    LimitsCalc calculator(telescopeConfig(telescope), focalPlane, 1.0);
    struct Row {
        PlateName plate;
        double steps; // of 5 degrees
    };
    // -25 + 11 = -14, 25 + 11 = 36, 0 + 11 = 11 degrees.
    for (const Row& row : std::vector<Row>{{PLATE_A, -3}, {PLATE_B, 7}, {VEKO, 2}}) {
        calculator.setPositionAngle(row.plate);
        const double positionAngle = 5 * row.steps / 180 * kTestPi;
        EXPECT_EQ(focalPlane.positionAngle(), positionAngle);
        EXPECT_EQ(focalPlane.fieldCentre().ra, centre.ra);
        EXPECT_EQ(focalPlane.fieldCentre().dec, centre.dec);
        // The optics are turned with it.
        const auto [px, py] = FocalPlaneCoordinates(0, 0).project(0.0, 0.01);
        EXPECT_EQ(FocalPlaneCoordinates(StandardCoordinates{0.0, 0.01}).x,
                  std::cos(positionAngle) * -px - std::sin(-positionAngle) * py);
    }
}

TEST_F(LimitsCalcTest, WithVekoTheRotatorComesWithinHalfAStepOfZero) {
    for (const double hourDeg : {-60.0, -17.0, 3.0, 44.0}) {
        const TelescopeSettings telescope;
        FocalPlane focalPlane = seenAt(hourDeg, 40.0, telescope);
        LimitsCalc(telescopeConfig(telescope), focalPlane, 1.0).setPositionAngle(VEKO);
        const double rotatorAngle = focalPlane.positionAngle() - focalPlane.parallacticAngle();
        EXPECT_LE(std::fabs(std::remainder(rotatorAngle, 2 * kTestPi)), rad(2.5 + 1e-9)) << hourDeg;
    }
}

TEST_F(LimitsCalcTest, HalfwayBetweenTwoPositionAnglesTheOneAwayFromZeroIsTaken) {
    ASSERT_EQ(2.5 / 180 * kTestPi * 180 / kTestPi / 5.0, 0.5);
    ASSERT_EQ(12.5 / 180 * kTestPi * 180 / kTestPi / 5.0, 2.5);
    TelescopeSettings telescope = telescopeAt(90.0);
    FocalPlane focalPlane = withoutParallacticAngle(telescope, 0.0);
    const auto positionAngleFor = [&](double optimumDeg) {
        telescope.optimumPlateA = optimumDeg;
        LimitsCalc(telescopeConfig(telescope), focalPlane, 1.0).setPositionAngle(PLATE_A);
        return focalPlane.positionAngle();
    };
    EXPECT_EQ(positionAngleFor(2.5), rad(5.0));
    EXPECT_EQ(positionAngleFor(-2.5), rad(-5.0));
    EXPECT_EQ(positionAngleFor(12.5), rad(15.0));
    EXPECT_EQ(positionAngleFor(-12.5), rad(-15.0));
    EXPECT_EQ(positionAngleFor(2.4), 0.0);
}

TEST_F(LimitsCalcTest, LatitudeAndOffsetAreTheCalculatorsOwnExceptInTheRotatorCheck) {
    FocalPlane focalPlane = seenAt(0.0, 0.0, telescopeAt(45.0));
    TelescopeSettings own = telescopeAt(60.0);
    own.rotatorOffset = 135.0 - kHalfTangentDeg;
    own.rotatorHighLimit = 135.0;
    own.rotatorLowLimit = -10.0;
    LimitsCalc calculator(telescopeConfig(own), focalPlane, zenithDistanceOfSine(0.25));
    // The calculator's horizon of latitude 60, and its offset of 108 degrees with which the pointing's own relation
    // between hour and parallactic angle meets the high limit at -30.
    expectLimits(calculator.hourAngleLimits(), -30.0, 60.0, "own latitude and offset");
    // The check takes the pointing's offset, which is 0.
    EXPECT_TRUE(calculator.checkRotator());
    own.rotatorLowLimit = 10.0;
    EXPECT_FALSE(LimitsCalc(telescopeConfig(own), focalPlane, 1.0).checkRotator());
    // -108.4 degrees are nearest to 22 steps of 5.
    calculator.setPositionAngle(VEKO);
    EXPECT_EQ(focalPlane.positionAngle(), 5 * -22.0 / 180 * kTestPi);
}

TEST_F(LimitsCalcTest, MissingKeysAreToldInTheOrderOfReading) {
    FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, 0.0, kWinterNight);
    const std::vector<std::pair<std::string, std::string>> keys = {
        {"telescope.rotator_low_limit", "<rotator_low_limit>-1</rotator_low_limit>"},
        {"telescope.rotator_high_limit", "<rotator_high_limit>1</rotator_high_limit>"},
        {"telescope.rotator_offset", "<rotator_offset>0</rotator_offset>"},
        {"telescope.optimum_rotator_angle.plate_a",
         "<optimum_rotator_angle><plate_a>1</plate_a></optimum_rotator_angle>"},
        {"telescope.optimum_rotator_angle.plate_b",
         "<optimum_rotator_angle><plate_a>1</plate_a><plate_b>1</plate_b></optimum_rotator_angle>"},
        {"telescope.latitude", ""},
    };
    const TemporaryFolder folder;
    std::string present;
    for (const auto& [key, element] : keys) {
        const PosConfig config(
            folder.write("c.xml", "<configure datamver='8.00'><telescope>" + present + "</telescope></configure>")
                .c_str(),
            PosConfig::XML);
        EXPECT_EQ(messageOf<boost::property_tree::ptree_bad_path>([&] { LimitsCalc(config, focalPlane, 1.0); }),
                  "No such node (" + key + ")");
        // The two optimum angles share one element: the second takes the place of the first.
        present = key.ends_with("plate_b") ? present.substr(0, present.find("<optimum")) + element : present + element;
    }
}
