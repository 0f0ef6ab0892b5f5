/**
 * @file
 * A region of the sky to be avoided.
 */
#ifndef POS_SKYMASK_H
#define POS_SKYMASK_H

#include "CelestialPosition.h"

namespace pos {

/** A circular region in which no fibre should look at the sky. */
struct SkyMask {
    Astrometric centre{}; ///< as the document states it
    double radius = 3.0;  ///< as the document states it; no range is enforced
};

} // namespace pos

#endif
