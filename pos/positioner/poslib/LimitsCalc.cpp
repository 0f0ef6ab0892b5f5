#include "LimitsCalc.h"

#include "FocalPlane.h"
#include "angles.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace pos {

LimitsCalc::LimitsCalc(const Telescope& telescope, FocalPlane& focalPlane, double largestZenithDistance)
    : focalPlane_(focalPlane), largestZenithDistance_(largestZenithDistance), telescope_(telescope) {}

bool LimitsCalc::checkHorizon() const {
    return largestZenithDistance_ > focalPlane_.zenithDistance();
}

double LimitsCalc::rotatorAngle() const {
    return wrapAngle(focalPlane_.rotatorOffset() - focalPlane_.parallacticAngle() + focalPlane_.positionAngle());
}

bool LimitsCalc::checkRotator() const {
    const double angle = rotatorAngle();
    return telescope_.rotatorLowLimit < angle && angle < telescope_.rotatorHighLimit;
}

std::pair<double, double> LimitsCalc::hourAngleLimits() const {
    const double altitudeLimit = kPi / 2 - largestZenithDistance_;
    const double dec = focalPlane_.tangentDec();
    const double k = (std::sin(altitudeLimit) - std::sin(dec) * std::sin(telescope_.latitude)) /
                     (std::cos(dec) * std::cos(telescope_.latitude));
    if (k < -1) {
        return circumpolarLimits();
    }
    if (k <= 1) {
        return setAndRiseLimits(std::acos(k));
    }
    return {0.0, 0.0};
}

/** @param horizonHourAngle hour angle at which the field sets below the horizon limit, 0 to π */
std::pair<double, double> LimitsCalc::setAndRiseLimits(double horizonHourAngle) const {
    const double now = focalPlane_.hourAngle();
    if (now > horizonHourAngle || now < -horizonHourAngle) {
        return {0.0, 0.0};
    }
    double earliest = -horizonHourAngle;
    double latest = horizonHourAngle;
    const auto [low1, low2] = hourAnglesAtRotator(telescope_.rotatorLowLimit);
    const auto [high1, high2] = hourAnglesAtRotator(telescope_.rotatorHighLimit);
    // A comparison with NaN is false, so a missing value narrows nothing.
    for (const double limit : {low1, low2, high1, high2}) {
        if (earliest < limit && limit < now) {
            earliest = limit;
        } else if (now < limit && limit < latest) {
            latest = limit;
        }
    }
    return {earliest, latest};
}

std::pair<double, double> LimitsCalc::circumpolarLimits() const {
    constexpr double kTurn = 2 * kPi;
    const double now = focalPlane_.hourAngle();
    const double low = hourAnglesAtRotator(telescope_.rotatorLowLimit).first;
    const double high = hourAnglesAtRotator(telescope_.rotatorHighLimit).first;

    double earliest = now > low ? low : low - kTurn;
    if (now > high && high > earliest) {
        earliest = high;
    } else if (now > high - kTurn) {
        earliest = std::max(high - kTurn, earliest);
    }

    double latest = low > now ? low : low + kTurn;
    if (high > now && latest > high) {
        latest = high;
    } else if (high + kTurn > now) {
        latest = std::min(high + kTurn, latest);
    }
    return {earliest, latest};
}

std::pair<double, double> LimitsCalc::hourAnglesAtRotator(double limit) const {
    return focalPlane_.parallacticToHour(telescope_.rotatorOffset - limit - focalPlane_.positionAngle());
}

void LimitsCalc::setPositionAngle(PlateName plate) {
    double optimum = 0.0;
    if (plate == PLATE_A) {
        optimum = telescope_.optimumPlateA;
    } else if (plate == PLATE_B) {
        optimum = telescope_.optimumPlateB;
    }
    const double base = telescope_.rotatorOffset - focalPlane_.parallacticAngle();
    const double fives = std::round(radiansToDegrees(optimum - base) / 5.0);
    focalPlane_.setFieldCentre(focalPlane_.fieldCentre(), degreesToRadians(5 * fives));
}

void checkLimits(const LimitsCalc& limits) {
    if (!limits.checkHorizon()) {
        throw std::runtime_error("field is below the horizon limit");
    }
    if (!limits.checkRotator()) {
        throw std::runtime_error("field position angle is outside the rotator limits");
    }
}

} // namespace pos
