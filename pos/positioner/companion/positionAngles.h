/**
 * @file
 * The position angles that the rotator allows.
 */
#ifndef POS_POSITIONANGLES_H
#define POS_POSITIONANGLES_H

#include <string>
#include <vector>

namespace pos {

struct Telescope;

/**
 * The position angles, in whole degrees, at which the rotator is between its limits: `pa="…", the nearest of the
 * position angles from … to … degrees`; empty where there are none.
 *
 * @param parallacticAngles with each of which they must do, radians
 * @param present the position angle to be near to, radians
 */
std::string positionAnglesInWords(const Telescope& telescope, const std::vector<double>& parallacticAngles,
                                  double present);

/** Degrees with two decimals. */
std::string degreesText(double radians);

/** A number with no more decimals than it needs. */
std::string shortText(double value);

} // namespace pos

#endif
