/**
 * @file
 * The plate on which the targets of a field are placed.
 */
#ifndef POS_PLATE_H
#define POS_PLATE_H

#include "FocalPlane.h"

#include <string>
#include <vector>

namespace pos {

/** A fibre, or a whole bundle of fibres, of a plate. */
struct PlateFibre {
    double positionAngle; ///< radians
};

/** What a target's record needs to know about its plate. */
struct Plate {
    double observationTime;           ///< MJD, TAI
    FocalPlane focalPlane;            ///< the pointing
    std::vector<std::string> spaxels; ///< spaxel names, 37 for each mini bundle, in fibre order
    std::vector<PlateFibre> fibres;   ///< fibre records by number; 1008 to 1027 are the mini bundles
};

} // namespace pos

#endif
