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
 * Puts optical model, rotation and plate geometry of one pointing in force, until the object goes: then what was in
 * force before is so again. What is set class-wide meanwhile is lost; what is set on the pointing stays.
 */
class PointingInForce {
public:
    explicit PointingInForce(const FocalPlane& pointing);
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
