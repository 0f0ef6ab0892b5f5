#include "ConditionsXML.h"

#include "CelestialPosition.h"
#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <erfa.h>
#include <stdexcept>

namespace pos {

namespace {

/** Written whatever the input says, K/m. */
constexpr double kLapseRate = 0.0065;

/** A number, or its default if the attribute is absent or marked as missing. @param what its name in the message */
double readNumber(const QDomElement& element, const QString& attribute, const char* what, double absent) {
    const QString text = element.attribute(attribute, kMissingValue);
    if (text == kMissingValue) {
        return absent;
    }
    const std::optional<double> value = numberOf(text);
    if (!value) {
        throw std::runtime_error(std::string("bad ") + what + " attribute in conditions element");
    }
    return *value;
}

} // namespace

Conditions createConditionsXML(const QDomElement& element) {
    Conditions conditions{};
    double mjdZero = 0.0;
    eraEpj2jd(readNumber(element, attr::epoch, "epoch", 0.0), &mjdZero, &conditions.epoch);
    conditions.temperature = readNumber(element, attr::temperature, "temperature", 283.0);
    conditions.pressure = readNumber(element, attr::pressure, "pressure", 660.0);
    conditions.relativeHumidity = readNumber(element, attr::relativeHumidity, "humidity", 0.2);
    return conditions;
}

void saveConditionsXML(const Conditions& conditions, double hourAngle, QDomDocument document, QDomElement parent) {
    QDomElement element = findOrCreateChild(document, parent, tag::conditions);
    element.setAttribute(attr::epoch, fixedText(eraEpj(kMjdZero, conditions.epoch), 2));
    element.setAttribute(attr::temperature, conditions.temperature);
    element.setAttribute(attr::pressure, conditions.pressure);
    element.setAttribute(attr::relativeHumidity, conditions.relativeHumidity);
    element.setAttribute(attr::tlr, kLapseRate);
    element.setAttribute(attr::ha, fixedText(radiansToHours(hourAngle), 4));
}

} // namespace pos
