#include "LimitsCalc.h"

#include "FocalPlane.h"
#include "PosConfig.h"
#include "angles.h"

#include <algorithm>
#include <cmath>

namespace pos {

LimitsCalc::LimitsCalc(const PosConfig& config, FocalPlane& focalPlane, double largestZenithDistance)
    : focalPlane_(focalPlane), largestZenithDistance_(largestZenithDistance),
      rotatorLowLimit_(degreesToRadians(config.get<double>("telescope.rotator_low_limit"))),
      rotatorHighLimit_(degreesToRadians(config.get<double>("telescope.rotator_high_limit"))),
      rotatorOffset_(degreesToRadians(config.get<double>("telescope.rotator_offset"))),
      optimumPlateA_(degreesToRadians(config.get<double>("telescope.optimum_rotator_angle.plate_a"))),
      optimumPlateB_(degreesToRadians(config.get<double>("telescope.optimum_rotator_angle.plate_b"))),
      latitude_(degreesToRadians(config.get<double>("telescope.latitude"))) {}

bool LimitsCalc::checkHorizon() const {
    return largestZenithDistance_ > focalPlane_.zenithDistance();
}

bool LimitsCalc::checkRotator() const {
    const double angle =
        wrapAngle(focalPlane_.rotatorOffset() - focalPlane_.parallacticAngle() + focalPlane_.positionAngle());
    return rotatorLowLimit_ < angle && angle < rotatorHighLimit_;
}

std::pair<double, double> LimitsCalc::hourAngleLimits() const {
    const double altitudeLimit = kPi / 2 - largestZenithDistance_;
    const double dec = focalPlane_.tangentDec();
    const double k =
        (std::sin(altitudeLimit) - std::sin(dec) * std::sin(latitude_)) / (std::cos(dec) * std::cos(latitude_));
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
    const auto [low1, low2] = hourAnglesAtRotator(rotatorLowLimit_);
    const auto [high1, high2] = hourAnglesAtRotator(rotatorHighLimit_);
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
    const double low = hourAnglesAtRotator(rotatorLowLimit_).first;
    const double high = hourAnglesAtRotator(rotatorHighLimit_).first;

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
    return focalPlane_.parallacticToHour(rotatorOffset_ - limit - focalPlane_.positionAngle());
}

void LimitsCalc::setPositionAngle(PlateName plate) {
    double optimum = 0.0;
    if (plate == PLATE_A) {
        optimum = optimumPlateA_;
    } else if (plate == PLATE_B) {
        optimum = optimumPlateB_;
    }
    const double base = rotatorOffset_ - focalPlane_.parallacticAngle();
    const double fives = std::round(radiansToDegrees(optimum - base) / 5.0);
    focalPlane_.setFieldCentre(focalPlane_.fieldCentre(), degreesToRadians(5 * fives));
}

} // namespace pos
