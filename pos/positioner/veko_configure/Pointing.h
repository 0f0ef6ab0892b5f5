/**
 * @file
 * When and where a run points the telescope, between the command line and the document, and whether it may.
 */
#ifndef POS_POINTING_H
#define POS_POINTING_H

#include <QDomElement>
#include <optional>

namespace pos {

struct Conditions;
class FocalPlane;
class LimitsCalc;

/** The command line's mark for an epoch, Julian years, or a pressure, millibar, that was not given. */
inline constexpr double kNotGiven = 0.0;
/** The command line's mark for an hour angle, hours, that was not given: no real one has this value. */
inline constexpr double kHourAngleNotGiven = 100.0;

/**
 * The date of the observation, MJD, TAI: the command line's epoch if given, else the document's date.
 *
 * Only a document's date of exactly 0 counts as missing. A document without an epoch has the date of Julian epoch 0,
 * with which the run goes on.
 *
 * @param epoch the command line's Julian epoch, years
 * @param conditions the document's
 * @return the date; nothing where neither has one
 */
std::optional<double> resolveDate(double epoch, const Conditions& conditions);

/**
 * The hour angle to point at, radians: the command line's if given, else the conditions' "ha" in hours, else 0.
 *
 * @param hours the command line's hour angle
 * @param conditions the document's conditions element
 * @return the hour angle; nothing where "ha" is present, not "%%%", and not a finite number
 */
std::optional<double> resolveHourAngle(double hours, const QDomElement& conditions);

/** The pressure, millibar: the command line's if given, else the document's. */
double resolvePressure(double pressure, const Conditions& conditions);

/**
 * Gives the pointing, at its present centre, a position angle and then an hour angle, both radians.
 *
 * @throw std::runtime_error "Hour angle not converging at MJD …", from FocalPlane::setHourAngle
 */
void pointFocalPlane(FocalPlane& focalPlane, double positionAngle, double hourAngle);

/**
 * @throw std::runtime_error "field is below the horizon limit", or else "field position angle is outside the rotator
 *     limits"
 */
void checkLimits(const LimitsCalc& limits);

} // namespace pos

#endif
