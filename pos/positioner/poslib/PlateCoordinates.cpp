#include "PlateCoordinates.h"

#include <cmath>

namespace pos {

std::array<double, kPlateCount> PlateCoordinates::x0_ = {0.0, 0.0, 0.0};
std::array<double, kPlateCount> PlateCoordinates::y0_ = {0.0, 0.0, 0.0};
std::array<double, kPlateCount> PlateCoordinates::r0_ = {0.0, 0.0, 0.0};
PlateName PlateCoordinates::plate_ = PLATE_A;
double PlateCoordinates::rotation_ = 0.0;
double PlateCoordinates::cos_r_ = 1.0;
double PlateCoordinates::sin_r_ = 0.0;

PlateCoordinates::PlateCoordinates(FocalPlaneCoordinates f)
    : x(cos_r_ * f.x - sin_r_ * f.y + x0_.at(plate_)), y(cos_r_ * f.y + sin_r_ * f.x + y0_.at(plate_)) {}

PlateCoordinates::operator FocalPlaneCoordinates() const {
    const double dx = x - x0_.at(plate_);
    const double dy = y - y0_.at(plate_);
    return {cos_r_ * dx + sin_r_ * dy, cos_r_ * dy - sin_r_ * dx};
}

void PlateCoordinates::setPlate(PlateName plate) {
    plate_ = plate;
    setPlateRotation(r0_.at(plate));
}

void PlateCoordinates::setPlateRotation(double angle) {
    rotation_ = angle;
    cos_r_ = std::cos(angle);
    sin_r_ = std::sin(angle);
}

void PlateCoordinates::setPlatePosition(double x0, double y0, double r0) {
    x0_.at(plate_) = x0;
    y0_.at(plate_) = y0;
    r0_.at(plate_) = r0;
}

OpticalAxis PlateCoordinates::opticalAxis(PlateName plate) {
    return {x0_.at(plate), y0_.at(plate), r0_.at(plate)};
}

PlateGeometry PlateCoordinates::geometry() {
    return {{opticalAxis(PLATE_A), opticalAxis(PLATE_B), opticalAxis(VEKO)}, plate_, rotation_};
}

void PlateCoordinates::setGeometry(const PlateGeometry& geometry) {
    for (std::size_t i = 0; i < geometry.axes.size(); ++i) {
        const OpticalAxis& axis = geometry.axes.at(i);
        x0_.at(i) = axis.x0;
        y0_.at(i) = axis.y0;
        r0_.at(i) = axis.r0;
    }
    plate_ = geometry.plate;
    setPlateRotation(geometry.rotation);
}

} // namespace pos
