#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "angles.h"
#include "pointing.h"
#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using namespace pos;

namespace {

class FocalPlaneSolvesTest : public ProcessWideState {};

constexpr Astrometric kCentre{1.0, 0.5};
const std::string kNotConverging = "Field centre not converging";
const std::string kNotInThePlane = "celestial position not in the tangent plane";

/** The last Julian Date that the library's calendar takes, as an MJD. */
constexpr double kEndOfTheCalendar = 1e9 - 2400000.5;

/** The ordinary field and weather on another date. */
FocalPlane pointedOn(double date) {
    return pointedAt(kCentre, 0.0, {date, 283.15, 770.0, 0.2});
}

/** A step of the hour-angle solve, by setting the date. */
void stepOfHourAngle(FocalPlane& focalPlane, double h) {
    focalPlane.setDate(focalPlane.date() - wrapAngle(focalPlane.hourAngle() - h) * 12 / kTestPi / 24 / 1.00273790934);
}

/** The hour-angle solve by setting dates one after the other. @return the number of steps */
int stepToHourAngle(FocalPlane& focalPlane, double h) {
    int steps = 0;
    while (std::fabs(wrapAngle(focalPlane.hourAngle() - h)) > 7.27220521664304e-05) {
        stepOfHourAngle(focalPlane, h);
        ++steps;
    }
    return steps;
}

/** A pointing this near to the celestial pole, in degrees. */
FocalPlane nearThePole(double distance, const Telescope& telescope = kTelescope) {
    const Conditions conditions{57389.0, 283.15, 770.0, 0.2};
    const Astrometric centre = CIRS{1.0, rad(90.0 - distance)}.toAstrometric(conditions.epoch);
    return pointedAt(centre, 0.0, conditions, telescope);
}

double squaredDistance(PlateCoordinates a, PlateCoordinates b) {
    return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

/** What a solve says that gives up at a date. */
std::string notConvergingAt(double date) {
    return "Hour angle not converging at MJD " + fixedPointText(date, 2);
}

/** The field-centre solve by setting centres one after the other. @return the number of centres tried */
int stepToFieldCentre(FocalPlane& focalPlane, Astrometric target, PlateCoordinates wanted) {
    const double date = focalPlane.date();
    const double positionAngle = focalPlane.positionAngle();
    const CIRS t = target.toCirs(date);
    focalPlane.setFieldCentre(target, positionAngle);
    const PlateCoordinates p0 = focalPlane.cirsToXy(target.toCirs(date));
    PlateCoordinates p = focalPlane.cirsToXy(t);
    int steps = 0;
    while (squaredDistance(p, wanted) > 1e-8) {
        const PlateCoordinates q(p0.x - (wanted.x - p.x), p0.y - (wanted.y - p.y));
        focalPlane.setFieldCentre(focalPlane.xyToCirs(q).toAstrometric(date), positionAngle);
        p = focalPlane.cirsToXy(t);
        ++steps;
    }
    return steps;
}

/** Away from the target, on a plate that is shifted and turned. */
FocalPlane onShiftedPlate() {
    return pointedAt({1.3, 0.1}, 0.9, kWinterNight, kTelescope, {{{{}, {}, {-4.0, 5.0, 0.5}}}, VEKO, 0.5});
}

} // namespace

TEST_F(FocalPlaneSolvesTest, TheDatesOfTheHourAngleSolveFollowTheirFormula) {
    for (const Astrometric& centre : std::vector<Astrometric>{{1.0, 0.5}, {4.0, -0.3}, {2.0, 1.55}}) {
        for (const double h : {0.0, 1.5, -3.1, kTestPi, 4.0, -10.0}) {
            FocalPlane stepped = pointedAt(centre);
            EXPECT_GT(stepToHourAngle(stepped, h), 0);
            FocalPlane solved = pointedAt(centre);
            solved.setHourAngle(h);
            Conditions expected = kWinterNight;
            expected.epoch = stepped.date();
            EXPECT_EQ(solved.conditions(), expected);
            EXPECT_EQ(solved.hourAngle(), stepped.hourAngle());
        }
    }
}

TEST_F(FocalPlaneSolvesTest, AnHourAngleWithinASecondIsLeftAsItIs) {
    FocalPlane focalPlane = pointedAt(kCentre);
    const double now = focalPlane.hourAngle();
    for (const double h : {now, now + 0.99 * kSecondOfTime, now - 0.99 * kSecondOfTime, now + 2 * kTestPi}) {
        focalPlane.setHourAngle(h);
        EXPECT_EQ(focalPlane.date(), kWinterNight.epoch);
    }
    focalPlane.setHourAngle(now + 1.01 * kSecondOfTime);
    EXPECT_GT(focalPlane.date(), kWinterNight.epoch);
}

TEST_F(FocalPlaneSolvesTest, NearTheCelestialPoleTheSolveTakesThousandsOfStepsAndIsNotCutShort) {
    // Refraction moves the place by more than its distance from the pole: the solve creeps.
    const FocalPlane start = nearThePole(0.01);
    FocalPlane stepped = start;
    EXPECT_GT(stepToHourAngle(stepped, 1.5), 5000);
    FocalPlane solved = start;
    solved.setHourAngle(1.5);
    EXPECT_EQ(solved.date(), stepped.date());
    EXPECT_NEAR(solved.hourAngle(), 1.5, kSecondOfTime);
}

TEST_F(FocalPlaneSolvesTest, AnHourAngleThatTakesNearly50000StepsIsReached) {
    // At the horizon limit of this site, where refraction comes and goes with the hour angle: 45,613 steps.
    FocalPlane focalPlane = nearThePole(0.006, telescopeAt(5.0));
    focalPlane.setHourAngle(-1.0);
    EXPECT_NEAR(focalPlane.hourAngle(), -1.0, kSecondOfTime);
}

TEST_F(FocalPlaneSolvesTest, AnHourAngleThatIsNotReachedIn50000StepsIsGivenUp) {
    // No date of these steps comes again.
    FocalPlane focalPlane = nearThePole(0.006, telescopeAt(5.0));
    const std::string message = messageOf([&] { focalPlane.setHourAngle(0.5); });
    EXPECT_EQ(message, notConvergingAt(focalPlane.date()));
}

TEST_F(FocalPlaneSolvesTest, ADateThatComesAgainEndsTheHourAngleSolve) {
    const FocalPlane start = nearThePole(0.0001);
    for (const double h : {-2.0, -2.5}) {
        FocalPlane stepped = start;
        std::vector<double> dates;
        do {
            dates.push_back(stepped.date());
            stepOfHourAngle(stepped, h);
            ASSERT_LT(dates.size(), 50000U);
        } while (std::find(dates.begin(), dates.end(), stepped.date()) == dates.end());
        // Not the date before: several take turns.
        EXPECT_NE(stepped.date(), dates.back());
        FocalPlane solved = start;
        EXPECT_EQ(messageOf([&] { solved.setHourAngle(h); }), notConvergingAt(dates.back()));
        EXPECT_EQ(solved.date(), dates.back());
    }
}

TEST_F(FocalPlaneSolvesTest, ADateThatTheLibraryRefusesEndsTheHourAngleSolveAtOnce) {
    struct Row {
        double date;
        std::string text;
    };
    for (const Row& row : std::vector<Row>{{1e10, "10000000000.00"},
                                           {-3e6, "-3000000.00"},
                                           {kEndOfTheCalendar + 1.0, "997600000.50"},
                                           {kNaN, "nan"},
                                           {std::numeric_limits<double>::infinity(), "inf"},
                                           {-std::numeric_limits<double>::infinity(), "-inf"}}) {
        FocalPlane focalPlane = pointedOn(row.date);
        EXPECT_TRUE(std::isnan(focalPlane.hourAngle()));
        EXPECT_TRUE(std::isnan(focalPlane.zenithDistance()));
        EXPECT_TRUE(std::isnan(focalPlane.tangentDec()));
        EXPECT_TRUE(std::isnan(focalPlane.parallacticAngle()));
        EXPECT_EQ(messageOf([&] { focalPlane.setHourAngle(0.0); }), "Hour angle not converging at MJD " + row.text);
    }
}

TEST_F(FocalPlaneSolvesTest, ADateThatIsRefusedOnTheWayEndsTheHourAngleSolve) {
    // The last date that the library takes, to a hundredth of a day.
    double accepted = kEndOfTheCalendar - 10.0;
    double utc1 = 0.0;
    double utc2 = 0.0;
    while (eraTaiutc(2400000.5, accepted + 0.01, &utc1, &utc2) >= 0) {
        accepted += 0.01;
    }
    FocalPlane focalPlane = pointedOn(accepted);
    ASSERT_FALSE(std::isnan(focalPlane.hourAngle()));
    // An hour angle of one radian ahead lies 0.16 days later, where nothing can be computed.
    const double next = accepted + 1.0 * 12 / kTestPi / 24 / 1.00273790934;
    const std::string message = messageOf([&] { focalPlane.setHourAngle(focalPlane.hourAngle() + 1.0); });
    EXPECT_EQ(message, notConvergingAt(focalPlane.date()));
    EXPECT_NEAR(focalPlane.date(), next, 1e-6);
    EXPECT_TRUE(std::isnan(focalPlane.hourAngle()));
}

TEST_F(FocalPlaneSolvesTest, AGoodDateMakesARefusedOneGood) {
    FocalPlane focalPlane = pointedOn(kNaN);
    focalPlane.setDate(kWinterNight.epoch);
    EXPECT_EQ(derivedValues(focalPlane), libraryValues(kCentre, kWinterNight));
    // What was computed for a good date is not left standing for a refused one.
    focalPlane.setDate(1e10);
    EXPECT_TRUE(std::isnan(focalPlane.hourAngle()));
    EXPECT_EQ(messageOf([&] { focalPlane.cirsToStd({1.0, 0.5}); }), kNotInThePlane);
}

TEST_F(FocalPlaneSolvesTest, DatesBeforeLeapSecondsAreTakenWithTheLibrarysWarning) {
    FocalPlane focalPlane = pointedOn(-678955.5);
    focalPlane.setHourAngle(0.0);
    EXPECT_NEAR(focalPlane.hourAngle(), 0.0, kSecondOfTime);
}

TEST_F(FocalPlaneSolvesTest, NumbersThatAreNoneEndTheHourAngleSolveWithoutAStep) {
    // A comparison with NaN is false: the loop has nothing to do.
    FocalPlane focalPlane = pointedAt(kCentre);
    focalPlane.setHourAngle(kNaN);
    EXPECT_EQ(focalPlane.date(), kWinterNight.epoch);
    FocalPlane nowhere = pointedAt({kNaN, 0.5});
    nowhere.setHourAngle(0.0);
    EXPECT_EQ(nowhere.date(), kWinterNight.epoch);
}

TEST_F(FocalPlaneSolvesTest, TheCentresOfTheSolveFollowTheirFormula) {
    const FocalPlane start = onShiftedPlate();
    for (const PlateCoordinates& wanted : std::vector<PlateCoordinates>{{0, 0}, {3, -20}, {150, 90}, {-210, 160}}) {
        FocalPlane stepped = start;
        EXPECT_GT(stepToFieldCentre(stepped, kCentre, wanted), 0);
        FocalPlane solved = start;
        solved.setFieldCentre(kCentre, wanted);
        EXPECT_EQ(solved.fieldCentre().ra, stepped.fieldCentre().ra);
        EXPECT_EQ(solved.fieldCentre().dec, stepped.fieldCentre().dec);
        EXPECT_EQ(solved.positionAngle(), 0.9);
        EXPECT_EQ(derivedValues(solved), derivedValues(stepped));
    }
}

TEST_F(FocalPlaneSolvesTest, ATargetThatIsThereAlreadyIsPointedAt) {
    FocalPlane focalPlane = onShiftedPlate();
    // Pointed at itself, a target lies at the optical axis: (-4, 5) on this plate. A tenth of a micrometre is let be.
    for (const double off : {0.0, 0.99e-4, -0.99e-4}) {
        focalPlane.setFieldCentre(Astrometric{1.3, 0.1}, 0.9);
        focalPlane.setFieldCentre(kCentre, PlateCoordinates(-4.0 + off, 5.0));
        EXPECT_EQ(focalPlane.fieldCentre().ra, kCentre.ra) << off;
        EXPECT_EQ(focalPlane.fieldCentre().dec, kCentre.dec) << off;
    }
    focalPlane.setFieldCentre(kCentre, PlateCoordinates(-4.0, 5.0 + 1.01e-4));
    EXPECT_NE(focalPlane.fieldCentre().dec, kCentre.dec);
}

TEST_F(FocalPlaneSolvesTest, APlaceFarOffThePlateDoesNotConverge) {
    FocalPlane focalPlane = pointedAt({1.3, 0.1});
    EXPECT_EQ(messageOf([&] { focalPlane.setFieldCentre(kCentre, PlateCoordinates(5000.0, 0.0)); }), kNotConverging);
    // The model keeps the trial centre that brought no improvement, and all that follows from it.
    EXPECT_NE(focalPlane.fieldCentre().ra, kCentre.ra);
    EXPECT_NE(focalPlane.fieldCentre().ra, 1.3);
    EXPECT_EQ(derivedValues(focalPlane), libraryValues(focalPlane.fieldCentre(), kWinterNight));
}

TEST_F(FocalPlaneSolvesTest, ASolveThatComesNearerAtEachOfAMillionStepsIsGivenUp) {
    // At 0.22359155 degrees from the pole the steps turn from ones that arrive into ones that do not: the nearer to
    // that distance, the smaller the gain of each. The first target takes 650,000 steps, the second would take two
    // million.
    const PlateCoordinates wanted(-11.0, -22.0);
    const auto target = [](double distance) {
        return CIRS{1.0, rad(90.0 - distance)}.toAstrometric(kAirlessNight.epoch);
    };
    FocalPlane focalPlane = pointedAt(target(1.0), 0.0, kAirlessNight);
    const Astrometric slow = target(0.2235926);
    focalPlane.setFieldCentre(slow, wanted);
    const PlateCoordinates landed = focalPlane.cirsToXy(slow.toCirs(kAirlessNight.epoch));
    EXPECT_LE(std::sqrt(squaredDistance(landed, wanted)), kPlacementToleranceMm);

    const Astrometric slower = target(0.2235918);
    EXPECT_EQ(messageOf([&] { focalPlane.setFieldCentre(slower, wanted); }), kNotConverging);
    // It has come within a millimetre, and would have gone on.
    const PlateCoordinates last = focalPlane.cirsToXy(slower.toCirs(kAirlessNight.epoch));
    EXPECT_LE(std::sqrt(squaredDistance(last, wanted)), 1.0);
}

TEST_F(FocalPlaneSolvesTest, AWantedPlaceThatIsNoNumberDoesNotConverge) {
    FocalPlane focalPlane = pointedAt({1.3, 0.1});
    for (const PlateCoordinates& wanted : {PlateCoordinates(kNaN, 0.0), PlateCoordinates(0.0, kNaN)}) {
        EXPECT_EQ(messageOf([&] { focalPlane.setFieldCentre(kCentre, wanted); }), kNotConverging);
        EXPECT_EQ(focalPlane.fieldCentre().ra, kCentre.ra);
    }
}

TEST_F(FocalPlaneSolvesTest, WithATargetOrADateThatIsNoneNothingCanBeProjected) {
    FocalPlane focalPlane = pointedAt(kCentre);
    const PlateCoordinates wanted(0.0, -20.0);
    EXPECT_EQ(messageOf([&] { focalPlane.setFieldCentre(Astrometric{kNaN, 0.5}, wanted); }), kNotInThePlane);
    focalPlane.setDate(1e10);
    EXPECT_EQ(messageOf([&] { focalPlane.setFieldCentre(kCentre, wanted); }), kNotInThePlane);
}
