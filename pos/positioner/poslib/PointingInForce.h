/**
 * @file
 * Using several pointings in one process.
 */
#ifndef POS_POINTINGINFORCE_H
#define POS_POINTINGINFORCE_H

#include "Optics.h"
#include "PlateGeometry.h"

namespace pos {

class FocalPlane;

/**
 * Puts the optical model, rotation and plate geometry of one pointing in force until the object is destroyed; then the
 * earlier ones are in force again. Class-wide settings made meanwhile are lost; settings of the pointing stay.
 */
class PointingInForce {
public:
    /** @param pointing the pointing whose model and geometry come into force */
    explicit PointingInForce(const FocalPlane& pointing);
    /** Puts the earlier model and geometry in force again. */
    ~PointingInForce();
    PointingInForce(const PointingInForce&) = delete;
    PointingInForce& operator=(const PointingInForce&) = delete;
    PointingInForce(PointingInForce&&) = delete;
    PointingInForce& operator=(PointingInForce&&) = delete;

private:
    Optics optics_;
    double rotation_;
    PlateGeometry plates_;
};

} // namespace pos

#endif
