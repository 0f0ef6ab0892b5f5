#include "Pointing.h"

#include "Conditions.h"
#include "FocalPlane.h"
#include "LimitsCalc.h"
#include "angles.h"
#include "xmlKeywords.h"

#include <cmath>
#include <erfa.h>
#include <stdexcept>

namespace pos {

std::optional<double> resolveDate(double epoch, const Conditions& conditions) {
    if (epoch != kNotGiven) {
        double mjdZero = 0.0;
        double date = 0.0;
        eraEpj2jd(epoch, &mjdZero, &date);
        return date;
    }
    if (conditions.epoch == 0.0) {
        return std::nullopt;
    }
    return conditions.epoch;
}

std::optional<double> resolveHourAngle(double hours, const QDomElement& conditions) {
    if (hours != kHourAngleNotGiven) {
        return hoursToRadians(hours);
    }
    const QString text = conditions.attribute(attr::ha, kMissingValue);
    if (text == kMissingValue) {
        return 0.0;
    }
    bool ok = false;
    const double documentHours = text.toDouble(&ok);
    // The library reads "nan" and "inf" as numbers, but nothing can be pointed at them.
    return ok && std::isfinite(documentHours) ? std::optional(hoursToRadians(documentHours)) : std::nullopt;
}

double resolvePressure(double pressure, const Conditions& conditions) {
    return pressure != kNotGiven ? pressure : conditions.pressure;
}

void pointFocalPlane(FocalPlane& focalPlane, double positionAngle, double hourAngle) {
    focalPlane.setFieldCentre(focalPlane.fieldCentre(), positionAngle);
    focalPlane.setHourAngle(hourAngle);
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
