/**
 * @file
 * A field, Sun and Moon in the course of a night.
 */
#ifndef POS_NIGHTCURVES_H
#define POS_NIGHTCURVES_H

#include "FieldTrack.h"
#include "Night.h"

#include <vector>

namespace pos {

/** Where a field, Sun and Moon stand at an instant. Angles are radians. */
struct NightSample {
    double mjdTai;
    double altitude;         ///< observed
    double rotatorAngle;     ///< −π to π
    double parallacticAngle; ///< −π to π
    double sunAltitude;      ///< of its middle, without refraction, as the Moon's
    double moonAltitude;
};

/** The dark part of a night with half an hour of day on both sides; all of it where the Sun does not set. MJD, TAI. */
std::pair<double, double> darkPart(const Telescope& site, const DateContexts& contexts, const Night& night);

/** Samples of a span of time at each ten minutes of UTC. @param contexts of a span that holds it */
std::vector<NightSample> sampleNight(FieldTrack& track, const DateContexts& contexts, double begin, double end);

} // namespace pos

#endif
