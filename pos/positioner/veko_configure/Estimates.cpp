#include "Estimates.h"

#include "Conditions.h"
#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"

#include <cmath>
#include <erfa.h>

namespace pos {

double resolveDate(double epoch, const Conditions& conditions) {
    if (epoch != kNotGiven) {
        double mjdZero = 0.0;
        double date = 0.0;
        eraEpj2jd(epoch, &mjdZero, &date);
        return date;
    }
    if (conditions.epoch == 0.0) {
        throw NoEpoch();
    }
    return conditions.epoch;
}

double resolveHourAngle(double hours, const QDomElement& conditions) {
    if (hours != kHourAngleNotGiven) {
        return hoursToRadians(hours);
    }
    const QString text = conditions.attribute(attr::ha, kMissingValue);
    if (text == kMissingValue) {
        return 0.0;
    }
    const std::optional<double> documentHours = numberOf(text);
    // "nan" and "inf" count as numbers, but nothing can be pointed at them.
    if (!documentHours || !std::isfinite(*documentHours)) {
        throw BadHourAngle();
    }
    return hoursToRadians(*documentHours);
}

double resolvePressure(double pressure, const Conditions& conditions) {
    return pressure != kNotGiven ? pressure : conditions.pressure;
}

} // namespace pos
