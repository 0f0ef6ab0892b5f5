/**
 * @file
 * Conversions between radians and the degrees and hours of documents, configuration and command line.
 *
 * Every conversion is written out in its stated order of operations, never through a precomputed factor, so that the
 * same input gives the same bits everywhere in the program.
 */
#ifndef POS_ANGLES_H
#define POS_ANGLES_H

#include <cmath>

namespace pos {

/** π, the nearest double. */
inline constexpr double kPi = 3.141592653589793;

/** Degrees to radians: (degrees / 180) × π. */
constexpr double degreesToRadians(double degrees) {
    return degrees / 180 * kPi;
}

/** Radians to degrees: (radians × 180) / π. */
constexpr double radiansToDegrees(double radians) {
    return radians * 180 / kPi;
}

/** Hours to radians: (hours / 12) × π. */
constexpr double hoursToRadians(double hours) {
    return hours / 12 * kPi;
}

/** Radians to hours: (radians × 12) / π. */
constexpr double radiansToHours(double radians) {
    return radians * 12 / kPi;
}

/**
 * Wraps an angle into [−π, π].
 *
 * The remainder of a division by 2π keeps the sign of the angle; where its magnitude still exceeds π, 2π with the
 * sign of the angle is subtracted. Both −π and π stay as they are. NaN and the infinities give NaN.
 *
 * @param angle any angle, radians
 * @return the same direction in [−π, π], radians
 */
inline double wrapAngle(double angle) {
    const double remainder = std::fmod(angle, 2 * kPi);
    return std::fabs(remainder) > kPi ? remainder - std::copysign(2 * kPi, angle) : remainder;
}

} // namespace pos

#endif
