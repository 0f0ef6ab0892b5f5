/**
 * @file
 * Times of the conversions between sky and plate, and of the solves that are made of them.
 */
#include "pointing.h"

#include "CelestialPosition.h"
#include "FocalPlane.h"
#include "FocalPlaneCoordinates.h"
#include "LimitsCalc.h"
#include "PlateCoordinates.h"
#include "angles.h"

#include <benchmark/benchmark.h>

namespace {

using namespace pos;

/** A pointing of the VEKO near the zenith, and one place in its several forms. */
struct Chain {
    PosConfig config = embeddedConfig();
    FocalPlane focalPlane{config, VEKO, kHighField, degreesToRadians(30.0), kWinterNight, 0.0};
    double date = focalPlane.date();
    ICRS catalogue{degreesToRadians(150.1), degreesToRadians(30.1), 2016.0, 12.0, -7.0, 0.001, 15.0};
    Astrometric astrometric = catalogue.toAstrometric(date);
    CIRS cirs = astrometric.toCirs(date);
    StandardCoordinates standard = focalPlane.cirsToStd(cirs);
    FocalPlaneCoordinates focal{standard};
    PlateCoordinates plate{focal};
};

/** Times a conversion, which is given the chain. */
template <typename Conversion> void timeConversion(benchmark::State& state, Conversion conversion) {
    Chain chain;
    for (auto iteration : state) {
        benchmark::DoNotOptimize(chain);
        benchmark::DoNotOptimize(conversion(chain));
    }
}

/** Times a change of the pointing, which leaves nothing to look at but the pointing. */
template <typename Change> void timeChange(benchmark::State& state, Change change) {
    Chain chain;
    for (auto iteration : state) {
        change(chain);
        benchmark::DoNotOptimize(chain);
    }
}

BENCHMARK_CAPTURE(timeConversion, CatalogueToAstrometric, [](Chain& c) { return c.catalogue.toAstrometric(c.date); });
BENCHMARK_CAPTURE(timeConversion, AstrometricToCirs, [](Chain& c) { return c.astrometric.toCirs(c.date); });
BENCHMARK_CAPTURE(timeConversion, CirsToStandard, [](Chain& c) { return c.focalPlane.cirsToStd(c.cirs); });
BENCHMARK_CAPTURE(timeConversion, StandardToFocalPlane, [](Chain& c) { return FocalPlaneCoordinates(c.standard); });
BENCHMARK_CAPTURE(timeConversion, FocalPlaneToPlate, [](Chain& c) { return PlateCoordinates(c.focal); });
BENCHMARK_CAPTURE(timeConversion, PlateToFocalPlane,
                  [](Chain& c) { return static_cast<FocalPlaneCoordinates>(c.plate); });
BENCHMARK_CAPTURE(timeConversion, FocalPlaneToStandard,
                  [](Chain& c) { return static_cast<StandardCoordinates>(c.focal); });
BENCHMARK_CAPTURE(timeConversion, PlateToCirs, [](Chain& c) { return c.focalPlane.xyToCirs(c.plate); });
BENCHMARK_CAPTURE(timeConversion, CirsToAstrometric, [](Chain& c) { return c.cirs.toAstrometric(c.date); });
BENCHMARK_CAPTURE(timeConversion, PlateToAstrometric,
                  [](Chain& c) { return c.focalPlane.xyToCirs(c.plate).toAstrometric(c.date); });

BENCHMARK_CAPTURE(timeChange, SetFieldCentre, [](Chain& c) { c.focalPlane.setFieldCentre(kHighField, 0.5); });
// A date of its own in every iteration: nothing kept from the last one serves.
BENCHMARK_CAPTURE(timeChange, SetDate, [](Chain& c) { c.focalPlane.setDate(c.date += 0.001); });
BENCHMARK_CAPTURE(timeChange, SolveFieldCentre,
                  [](Chain& c) { c.focalPlane.setFieldCentre(c.astrometric, PlateCoordinates(0.0, -20.0)); });
BENCHMARK_CAPTURE(timeChange, SolveHourAngle, [](Chain& c) {
    c.focalPlane.setConditions(kWinterNight);
    c.focalPlane.setHourAngle(hoursToRadians(1.0));
});
BENCHMARK_CAPTURE(timeConversion, HourAngleLimits, [](Chain& c) {
    return LimitsCalc(c.config, c.focalPlane, degreesToRadians(65.0)).hourAngleLimits();
});

} // namespace
