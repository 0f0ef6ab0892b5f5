#include "FocalPlaneCoordinates.h"

#include "angles.h"
#include "numberText.h"

#include <cmath>
#include <stdexcept>

namespace pos {

namespace {

/** Below this radius, radians, the projection is linear. */
constexpr double kLinearRadius = 1e-9;
/** Below this radius, mm, a position counts as the optical axis. */
constexpr double kAxisRadius = 1e-10;
/** The iteration of the inverse distortion ends with a step no larger than this, degrees. */
constexpr double kAngleTolerance = 1e-10;
/** A handful of steps is usual; more than this never converges. */
constexpr int kMaxSteps = 1000;

} // namespace

double FocalPlaneCoordinates::nominal_fl_ = 0.0;
double FocalPlaneCoordinates::focal_length_ = 0.0;
std::array<double, 3> FocalPlaneCoordinates::coeffs_ = {0.0, 0.0, 0.0};
double FocalPlaneCoordinates::r_ = 0.0;
double FocalPlaneCoordinates::cos_r_ = 1.0;
double FocalPlaneCoordinates::sin_r_ = 0.0;

FocalPlaneCoordinates::FocalPlaneCoordinates(StandardCoordinates sc) {
    // The focal plane is a mirror image of the sky: east-positive xi changes its sign.
    const auto [px, py] = project(-sc.xi, sc.eta);
    x = cos_r_ * px - sin_r_ * py;
    y = cos_r_ * py + sin_r_ * px;
}

FocalPlaneCoordinates::operator StandardCoordinates() const {
    const double xr = cos_r_ * x + sin_r_ * y;
    const double yr = cos_r_ * y - sin_r_ * x;
    const auto [xi, eta] = unproject(xr, yr);
    return {-xi, eta};
}

std::pair<double, double> FocalPlaneCoordinates::project(double xi, double eta) const {
    const double r = std::sqrt(xi * xi + eta * eta);
    if (r < kLinearRadius) {
        return {focal_length_ * xi, focal_length_ * eta};
    }
    const double theta = radiansToDegrees(r);
    const double s = (focal_length_ / nominal_fl_) * func(0.0, theta);
    return {xi * s / r, eta * s / r};
}

std::pair<double, double> FocalPlaneCoordinates::unproject(double xMm, double yMm) const {
    const double xn = xMm * nominal_fl_ / focal_length_;
    const double yn = yMm * nominal_fl_ / focal_length_;
    const double rho = std::sqrt(xn * xn + yn * yn);
    if (rho < kAxisRadius) {
        return {0.0, 0.0};
    }
    double theta = radiansToDegrees(rho / focal_length_);
    double step = func(rho, theta) / derivFunc(theta);
    // A first step within the tolerance is not taken; every later one is. NaN counts as too large.
    for (int steps = 0; !(std::fabs(step) <= kAngleTolerance); ++steps) {
        if (steps == kMaxSteps) {
            throw std::runtime_error("Inverse distortion not converging at a radius of " +
                                     fixedText(rho, 3).toStdString() + " mm");
        }
        step = func(rho, theta) / derivFunc(theta);
        theta = theta - step;
    }
    const double thetaRadians = degreesToRadians(theta);
    return {xn * thetaRadians / rho, yn * thetaRadians / rho};
}

double FocalPlaneCoordinates::func(double r, double theta) const {
    const double theta2 = theta * theta;
    return coeffs_[0] * theta + coeffs_[1] * theta * theta2 + coeffs_[2] * theta * theta2 * theta2 - r;
}

double FocalPlaneCoordinates::derivFunc(double theta) const {
    const double theta2 = theta * theta;
    return coeffs_[0] + 3 * coeffs_[1] * theta2 + 5 * coeffs_[2] * theta2 * theta2;
}

double FocalPlaneCoordinates::focalLength() {
    return focal_length_;
}

double FocalPlaneCoordinates::nominalFocalLength() {
    return nominal_fl_;
}

void FocalPlaneCoordinates::setFocalLength(double mm) {
    focal_length_ = mm;
}

void FocalPlaneCoordinates::setDistortion(double c1, double c3, double c5) {
    coeffs_ = {c1, c3, c5};
}

void FocalPlaneCoordinates::setRotation(double angle) {
    r_ = -angle;
    cos_r_ = std::cos(angle);
    sin_r_ = std::sin(-angle);
}

double FocalPlaneCoordinates::rotation() {
    return -r_;
}

Optics FocalPlaneCoordinates::optics() {
    return {nominal_fl_, focal_length_, coeffs_[0], coeffs_[1], coeffs_[2]};
}

void FocalPlaneCoordinates::setOptics(const Optics& optics) {
    nominal_fl_ = optics.nominalFocalLength;
    focal_length_ = optics.focalLength;
    setDistortion(optics.c1, optics.c3, optics.c5);
}

FocalPlaneCoordinates::params FocalPlaneCoordinates::save() {
    return {focal_length_, coeffs_[0], coeffs_[1], coeffs_[2]};
}

void FocalPlaneCoordinates::restore(const params& saved) {
    focal_length_ = saved.focalLength;
    setDistortion(saved.c1, saved.c3, saved.c5);
}

} // namespace pos
