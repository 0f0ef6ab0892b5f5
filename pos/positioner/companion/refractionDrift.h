/**
 * @file
 * How refraction moves the colours of an image over the spaxels.
 */
#ifndef POS_REFRACTIONDRIFT_H
#define POS_REFRACTIONDRIFT_H

#include "FocalPlane.h"

#include <vector>

namespace pos {

/** An image of 400 nm beside the same of 800 nm, which is nearer to the horizon. Angles are radians. */
struct ColourShift {
    double mjdTai;
    double altitude;         ///< observed
    double parallacticAngle; ///< the direction of the shift, from north through east
    double shift;            ///< from the image of 800 nm to that of 400 nm, towards the zenith
    double drift;            ///< how far the former has moved on the spaxels since the first moment
};

/**
 * The shifts at the beginning, the middle and the end of an exposure (ERFA eraRefco). The position angle on the plate
 * stays, so that what the parallactic angle does is what the spaxels see.
 *
 * @param pointing at the beginning of the exposure
 * @param exposure days
 * @return nothing where the field comes within a degree of the horizon
 */
std::vector<ColourShift> colourShifts(FocalPlane pointing, double exposure);

} // namespace pos

#endif
