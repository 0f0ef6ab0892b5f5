/**
 * @file
 * The "conditions" element: epoch, weather and hour angle of the observation.
 */
#ifndef POS_CONDITIONSXML_H
#define POS_CONDITIONSXML_H

#include "Conditions.h"

#include <QDomDocument>
#include <QDomElement>

namespace pos {

/**
 * Reads the conditions. An attribute that is absent or "%%%" takes its default, as all do for a null element.
 *
 * "epoch" is a Julian epoch in years, default 0.0, which gives MJD −678955.5; "temperature" is in kelvin, default
 * 283.0; "pressure" in millibar, default 660.0; "relative_humidity" from 0 to 1, default 0.2.
 *
 * @throw std::runtime_error "bad epoch attribute in conditions element" (or "temperature", "pressure", "humidity")
 */
Conditions createConditionsXML(const QDomElement& element);

/**
 * Writes the conditions into the "conditions" child of the parent, which is created when there is none: "epoch" as a
 * Julian epoch with 2 decimals, "ha" in hours with 4, and a tropospheric lapse rate "tlr" that is always 0.0065 K/m.
 *
 * @param conditions date and weather; temperature, pressure and humidity are written as they are
 * @param hourAngle radians
 * @param document creates the element
 * @param parent holds, or gets, the "conditions" element
 */
void saveConditionsXML(const Conditions& conditions, double hourAngle, QDomDocument document, QDomElement parent);

} // namespace pos

#endif
