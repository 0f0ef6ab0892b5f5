/**
 * @file
 * Numbers and times as a page shows them.
 */
#ifndef POS_PAGETEXT_H
#define POS_PAGETEXT_H

#include <string>

namespace pos {

/** A number with so many decimals, with a minus sign of typography; never "−0". */
std::string numberText(double value, int decimals);

/** A number for a picture: no more decimals than it needs, at most so many. */
std::string pictureText(double value, int decimals);

/** A length in a picture. */
std::string pixels(double value);

/** An angle in degrees with so many decimals. @param radians the angle */
std::string degreesText(double radians, int decimals);

/** A small angle in arcseconds, or in arcminutes from one on: "42.0″", "7.4′". */
std::string smallAngleText(double radians);

/** The time of day in UTC, to the nearest minute: "21:04". */
std::string clockText(double mjdTai);

/** Hours as "−01:00:00". @param radians an hour angle */
std::string hourAngleText(double radians);

} // namespace pos

#endif
