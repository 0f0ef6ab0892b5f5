/**
 * @file
 * The optical model between the tangent plane and the focal plane.
 */
#ifndef POS_OPTICS_H
#define POS_OPTICS_H

namespace pos {

/** Focal lengths, and the polynomial by which FocalPlaneCoordinates turns a field angle into a radius. */
struct Optics {
    double nominalFocalLength; ///< the focal length for which the polynomial holds, mm
    double focalLength;        ///< the focal length in use, mm
    double c1;                 ///< mm/degree
    double c3;                 ///< mm/degree³
    double c5;                 ///< mm/degree⁵
};

} // namespace pos

#endif
