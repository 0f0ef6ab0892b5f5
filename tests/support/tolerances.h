#ifndef POS_TESTS_TOLERANCES_H
#define POS_TESTS_TOLERANCES_H

#include <limits>

/** No number at all. */
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
/** Rounding of doubles in plate coordinates of up to 300 mm, mm. */
inline constexpr double kPlateToleranceMm = 1e-9;
/** Rounding of doubles in angles of a few radians. */
inline constexpr double kAngleTolerance = 1e-13;
/** The inverse distortion ends with a step of at most 1e-10 degrees of field angle, radians. */
inline constexpr double kFieldAngleTolerance = 1.745e-12;
/** One microarcsecond, radians: the sky conversions' own iteration ends within it. */
inline constexpr double kMicroarcsecond = 4.84813681109536e-12;
/** From an observed place to the sky and back: the sky conversions' own iteration and rounding, radians. */
inline constexpr double kObservedAngleTolerance = 2e-11;
/** The same on the plate, at about 11.7 m per radian, mm. */
inline constexpr double kObservedPlaceMm = 2.5e-7;
/** An hour angle found from the parallactic angle of a field seen at such a place, radians. */
inline constexpr double kHourOfParallacticAngle = 1e-9;
/** Beside the zenith, where angles come from the arc cosine of nearly 1 and lose half their digits, radians. */
inline constexpr double kNearZenith = 1e-7;
/** The library undoes refraction with a first-order formula: what is left over 200 mm of plate, mm. */
inline constexpr double kRefractionRoundTripMm = 1e-4;
/** One second of time, radians: how near the hour-angle solve comes. */
inline constexpr double kSecondOfTime = 7.27220521664304e-05;
/** The field-centre solve ends when the target is this near to its place, mm. */
inline constexpr double kPlacementToleranceMm = 1e-4;
/** Relative change of the plate scale at the zenith by refraction, aberration and distortion. */
inline constexpr double kPlateScaleTolerance = 2e-3;
/**
 * Relative: by how much precession since 2000 (at most 0.2 degrees of turn), refraction, aberration and the document's
 * six decimals change a small offset in the field.
 */
inline constexpr double kCelestialNorthTolerance = 4e-3;
/** Ten microarcseconds, radians: the whole chain from the sky to the plate and back, where no air is in the way. */
inline constexpr double kRoundTripSky = 10 * kMicroarcsecond;
/** One nanometre, mm: the same chain from the plate to the sky and back. */
inline constexpr double kRoundTripPlateMm = 1e-6;
/** Where a field has its greatest parallactic angle, half of the digits of the hour angle are lost, radians. */
inline constexpr double kHourAtGreatestAngle = 1e-6;
/**
 * How near the hour-angle solve brings a field to an altitude, radians: its second of time, and the two arcseconds or
 * so by which aberration and precession move a place in the hours that it goes back or ahead.
 */
inline constexpr double kAltitudeAtALimit = kSecondOfTime + 1e-5;
/** A second of time, and what aberration and precession add to an hour angle in half a day up to 80 degrees, days. */
inline constexpr double kHourAngleDays = 3e-5;

/** Rounding of degrees that were radians. */
inline constexpr double kDegreesTolerance = 1e-12;
/**
 * Places in degrees are compared with texts of fixed decimals, in units of the last: rounding takes half a unit, and
 * the field-centre solve, which may stop 1e-4 mm or half a microdegree short, takes the other half.
 */
inline constexpr double kUnitsOfLastPlace = 1.0;

/** A date of 60,000 days as a double resolves 0.6 µs, in which the Earth turns by 9 µas; in units of radians. */
inline constexpr double kDateResolution = 10 * kMicroarcsecond;
/** TT and TDB differ by 1.7 ms, in which 10 arcsec/yr make 0.0005 µas; the rest is rounding. Radians. */
inline constexpr double kSpaceMotionTolerance = 0.01 * kMicroarcsecond;
/**
 * Without a parallax the astronomy library takes a star for one at 1/100 of the speed of light, and whether the star's
 * radial speed rounds to 0 or to almost 0 decides whether it counts relativity in: (1/100)² of the motion.
 */
inline constexpr double kRelativeMotionWithoutParallax = 1e-4;
/** More than any place of a field has, mm per radian: the polynomial rises by 213 mm per degree at 1.1 degrees. */
inline constexpr double kSteepestPlateScale = 15000.0;
/** Rounding on two ways from the sky to the plate, more where north turns fast, at declination 89.9 degrees; mm. */
inline constexpr double kChainToleranceMm = 1e-8;
/** The aim of the model above 30 degrees of altitude: 0.3 µm, in mm. */
inline constexpr double kFieldToleranceMm = 3e-4;

/**
 * How well the astronomy library takes refraction off again, radians, at an altitude in degrees. The library's own
 * statement is 0.05 arcsec at 5 degrees; cold and dense air (1010 mbar, 272 K) makes it three times that.
 */
constexpr double refractionInverseTolerance(double altitudeDeg) {
    const double microarcseconds = altitudeDeg < 10   ? 200'000
                                   : altitudeDeg < 20 ? 4'000
                                   : altitudeDeg < 30 ? 400
                                   : altitudeDeg < 60 ? 100
                                                      : 1;
    return microarcseconds * kMicroarcsecond;
}

#endif
