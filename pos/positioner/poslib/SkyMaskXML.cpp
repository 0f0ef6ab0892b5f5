#include "SkyMaskXML.h"

#include "CelestialPositionXML.h"
#include "numberText.h"
#include "xmlKeywords.h"

#include <QDomDocument>
#include <stdexcept>

namespace pos {

SkyMask createSkyMaskXML(const QDomElement& mask) {
    SkyMask result;
    result.centre = createAstrometricXML("Sky mask", mask);
    if (mask.hasAttribute(attr::radius)) {
        const QString text = mask.attribute(attr::radius);
        const std::optional<double> radius = numberOf(text);
        if (!radius) {
            throw std::runtime_error("Sky mask has an invalid radius '" + text.toStdString() + "'");
        }
        result.radius = *radius;
    }
    return result;
}

std::vector<SkyMask> createSkyMasksXML(const QDomElement& list) {
    std::vector<SkyMask> masks;
    for (QDomElement mask = list.firstChildElement(tag::mask); !mask.isNull();
         mask = mask.nextSiblingElement(tag::mask)) {
        masks.push_back(createSkyMaskXML(mask));
    }
    return masks;
}

void saveSkyMaskXML(const SkyMask& mask, QDomNode parent) {
    QDomElement element = parent.ownerDocument().createElement(tag::mask);
    element.setAttribute(attr::radius, mask.radius);
    saveAstrometricXML(mask.centre, element);
    parent.appendChild(element);
}

} // namespace pos
