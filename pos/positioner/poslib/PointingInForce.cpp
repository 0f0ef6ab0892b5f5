#include "PointingInForce.h"

#include "FocalPlane.h"

namespace pos {

PointingInForce::PointingInForce(const FocalPlane& pointing)
    : optics_(FocalPlaneCoordinates::optics()), rotation_(FocalPlaneCoordinates::rotation()),
      plates_(PlateCoordinates::geometry()) {
    pointing.putInForce();
}

PointingInForce::~PointingInForce() {
    FocalPlaneCoordinates::setOptics(optics_);
    FocalPlaneCoordinates::setRotation(rotation_);
    PlateCoordinates::setGeometry(plates_);
}

} // namespace pos
