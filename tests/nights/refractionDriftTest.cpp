#include "refractionDrift.h"

#include "ProcessWideState.h"
#include "pointing.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace pos;

namespace {

class RefractionDrift : public ProcessWideState {};

/** The refractivity of dry air by B. Edlén, J. Opt. Soc. Am. 43, 339 (1953), as in PASP 94, 715 (1982). */
double refractivity(double micrometres, const Conditions& air) {
    const double wavenumber = 1 / (micrometres * micrometres);
    const double standard = 64.328 + 29498.1 / (146 - wavenumber) + 255.4 / (41 - wavenumber);
    const double mmOfMercury = air.pressure * 0.750062;
    const double celsius = air.temperature - 273.15;
    return standard * 1e-6 * mmOfMercury * (1 + (1.049 - 0.0157 * celsius) * 1e-6 * mmOfMercury) /
           (720.883 * (1 + 0.003661 * celsius));
}

} // namespace

TEST_F(RefractionDrift, ColoursAreApartAsThroughAFlatAtmosphere) {
    for (const double hourDeg : {-50.0, -30.0, 0.0, 45.0}) {
        const FocalPlane pointing =
            pointedAt(placeObservedAt("H", rad(hourDeg), rad(10.0), kWinterNight), 0.0, kWinterNight);
        const std::vector<ColourShift> shifts = colourShifts(pointing, 0.0);
        ASSERT_EQ(shifts.size(), 3U);
        const double expected =
            (refractivity(0.4, kWinterNight) - refractivity(0.8, kWinterNight)) * std::tan(pointing.zenithDistance());
        EXPECT_NEAR(shifts.front().shift / expected, 1.0, 0.01) << hourDeg;
        EXPECT_EQ(shifts.back().drift, 0.0);
    }
}

TEST_F(RefractionDrift, IsWhatTheShiftsOfTwoMomentsDifferBy) {
    constexpr double kTwoHours = 2.0 / 24;
    FocalPlane pointing = pointedAt(placeObservedAt("H", rad(-20.0), rad(10.0), kWinterNight), 0.0, kWinterNight);
    const std::vector<ColourShift> shifts = colourShifts(pointing, kTwoHours);
    ASSERT_EQ(shifts.size(), 3U);
    pointing.setDate(kWinterNight.epoch + kTwoHours);
    const ColourShift& first = shifts.front();
    const ColourShift& last = shifts.back();
    EXPECT_EQ(last.parallacticAngle, pointing.parallacticAngle());
    EXPECT_EQ(last.altitude, kTestPi / 2 - pointing.zenithDistance());
    // By the law of cosines.
    const double turn = last.parallacticAngle - first.parallacticAngle;
    EXPECT_GT(std::fabs(turn), 0.3);
    EXPECT_NEAR(
        last.drift,
        std::sqrt(first.shift * first.shift + last.shift * last.shift - 2 * first.shift * last.shift * std::cos(turn)),
        1e-12);
}

TEST_F(RefractionDrift, IsNotToldAtTheHorizon) {
    const FocalPlane pointing =
        pointedAt(placeObservedAt("A", rad(90.0), rad(89.5), kAirlessNight), 0.0, kAirlessNight);
    EXPECT_TRUE(colourShifts(pointing, 0.0).empty());
}
