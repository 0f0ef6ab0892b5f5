/**
 * @file
 * The telescope: its site, and the limits of its mount.
 */
#ifndef POS_TELESCOPE_H
#define POS_TELESCOPE_H

namespace pos {

/** Site, limits and offsets of the telescope. Angles are radians; elevations are above the horizon. */
struct Telescope {
    double eastLongitude = 0.0;    ///< east positive
    double latitude = 0.0;         ///< north positive
    double height = 0.0;           ///< metres above mean sea level
    double horizonLimit = 0.0;     ///< elevation below which there is no refraction
    double rotatorOffset = 0.0;    ///< rotator angle at position angle 0 and parallactic angle 0
    double rotatorLowLimit = 0.0;  ///< the rotator angle must be larger
    double rotatorHighLimit = 0.0; ///< the rotator angle must be smaller
    double optimumPlateA = 0.0;    ///< rotator angle of best image quality on PLATE_A
    double optimumPlateB = 0.0;    ///< the same on PLATE_B
};

} // namespace pos

#endif
