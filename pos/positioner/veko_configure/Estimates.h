/**
 * @file
 * Values for an observation from outside its document, and when they count instead of the document's.
 */
#ifndef POS_ESTIMATES_H
#define POS_ESTIMATES_H

#include "angles.h"

#include <QDomElement>
#include <stdexcept>

namespace pos {

struct Conditions;

/** An epoch, Julian years, or a pressure, millibar, that is not given. */
inline constexpr double kNotGiven = 0.0;
/** An hour angle, hours, that is not given: no real one has this value. */
inline constexpr double kHourAngleNotGiven = 100.0;
/** The lowest elevation of a field where none is given, degrees. */
inline constexpr double kHorizonLimitDeg = 25.0;

/** The zenith distance of an elevation in degrees, radians. */
constexpr double zenithDistanceOf(double elevationDeg) {
    return degreesToRadians(90 - elevationDeg);
}

/** Values for the observation from outside its document. */
struct Estimates {
    double epoch = kNotGiven;              ///< Julian epoch of the observation, years; kNotGiven for the document's
    double hourAngle = kHourAngleNotGiven; ///< of the first field's centre, hours; kHourAngleNotGiven: the document's
    double pressure = kNotGiven;           ///< millibar; kNotGiven for the document's
    /** The field must be nearer to the zenith than this, radians. */
    double zenithDistanceLimit = zenithDistanceOf(kHorizonLimitDeg);
};

/** Neither the estimates nor the document has a date. */
struct NoEpoch : std::runtime_error {
    NoEpoch() : std::runtime_error("No epoch specified") {}
};

/** The run needs the document's hour angle, which is not a finite number. */
struct BadHourAngle : std::runtime_error {
    BadHourAngle() : std::runtime_error("Bad hour angle in XML") {}
};

/**
 * The date of the observation, MJD, TAI: the estimated epoch if given, else the document's date.
 *
 * Only a document's date of exactly 0 counts as missing. A document without an epoch has the date of Julian epoch 0,
 * with which the run goes on.
 *
 * @param epoch the estimate, Julian years
 * @param conditions the document's
 * @throw NoEpoch "No epoch specified"
 */
double resolveDate(double epoch, const Conditions& conditions);

/**
 * The hour angle to point at, radians: the estimate if given, else the conditions' "ha" in hours, else 0.
 *
 * @param hours the estimate
 * @param conditions the document's conditions element
 * @throw BadHourAngle "Bad hour angle in XML", where "ha" is present, not "%%%", and not a finite number
 */
double resolveHourAngle(double hours, const QDomElement& conditions);

/** The pressure, millibar: the estimate if given, else the document's. */
double resolvePressure(double pressure, const Conditions& conditions);

} // namespace pos

#endif
