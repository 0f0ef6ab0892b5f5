/**
 * @file
 * What the rules of pointing find.
 */
#ifndef POS_POINTINGFINDERS_H
#define POS_POINTINGFINDERS_H

#include "CheckedDocument.h"
#include "Problem.h"

namespace pos {

/** Whether a pointing is above the horizon limit, in the run's own words; NaN is not. */
inline bool isHighEnough(const CheckedDocument& document, const FieldPointing& pointing) {
    return document.options.estimates.zenithDistanceLimit > pointing.zenithDistance;
}

/** The value that makes a field stand where it does: of the first field's centre, of the others' science targets. */
Span placeOfPointing(const CheckedDocument& document, const FieldPointing& pointing, const QString& ofCentre,
                     const QString& ofTarget);

// Horizon and rotator, in limitsOfPointing.cpp.

/** Finds fields below the horizon limit. */
void findFieldsBelowHorizon(const Rule& rule, const CheckedDocument& document, Problems& problems);
/** Finds fields that are below it at every hour angle. */
void findFieldsThatNeverRise(const Rule& rule, const CheckedDocument& document, Problems& problems);
/** Finds fields that the rotator cannot follow. */
void findFieldsBeyondRotator(const Rule& rule, const CheckedDocument& document, Problems& problems);

// What the run looks for in steps, in solvesOfPointing.cpp.

/** Finds an hour angle that leads to no date. */
void findUnreachableHourAngle(const Rule& rule, const CheckedDocument& document, Problems& problems);
/** Finds fields on which the bundle has no place. */
void findFieldsWithoutPlace(const Rule& rule, const CheckedDocument& document, Problems& problems);
/** Finds guide stars that are not in front of the telescope. */
void findGuideStarsBehind(const Rule& rule, const CheckedDocument& document, Problems& problems);

// Sun, Moon and air, in skyOfPointing.cpp.

/** Finds a Sun that is up, or hardly down. */
void findSunlight(const Rule& rule, const CheckedDocument& document, Problems& problems);
/** Finds fields near the Moon. */
void findMoonlight(const Rule& rule, const CheckedDocument& document, Problems& problems);
/** Finds fields behind much air. */
void findMuchAir(const Rule& rule, const CheckedDocument& document, Problems& problems);

} // namespace pos

#endif
