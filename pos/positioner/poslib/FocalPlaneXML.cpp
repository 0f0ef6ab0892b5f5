#include "FocalPlaneXML.h"

#include "FocalPlane.h"
#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

namespace pos {

namespace {

void saveTelescope(const FocalPlane& focalPlane, QDomElement telescope) {
    telescope.setAttribute(attr::eastLongitude, fixedText(radiansToDegrees(focalPlane.eastLongitude()), 6));
    telescope.setAttribute(attr::latitude, fixedText(radiansToDegrees(focalPlane.latitude()), 5));
    telescope.setAttribute(attr::height, fixedText(focalPlane.height(), 1));
}

void savePlate(const OpticalAxis& axis, const QString& name, QDomDocument document, QDomElement map,
               QDomElement opticalAxis) {
    QDomElement element = map.firstChildElement(name);
    if (element.isNull()) {
        element = document.createElement(name);
        opticalAxis.appendChild(element);
    }
    element.setAttribute(attr::x0, fixedText(axis.x0, 3));
    element.setAttribute(attr::y0, fixedText(axis.y0, 3));
    element.setAttribute(attr::r0, fixedText(axis.r0, 3));
}

void saveDistortion(const Optics& optics, QDomElement coefficients) {
    coefficients.setAttribute(attr::c1, optics.c1);
    coefficients.setAttribute(attr::c3, optics.c3);
    coefficients.setAttribute(attr::c5, optics.c5);
    coefficients.setAttribute(attr::c7, 0.0);
}

} // namespace

void saveFocalPlaneXML(const FocalPlane& focalPlane, QDomDocument document, QDomElement parent) {
    saveTelescope(focalPlane, findOrCreateChild(document, parent, tag::telescope));

    QDomElement map = findOrCreateChild(document, parent, tag::focalPlaneMap);
    const Optics optics = FocalPlaneCoordinates::optics();
    map.setAttribute(attr::focalLength, fixedText(optics.focalLength, 1));
    map.setAttribute(attr::nominalFocalLength, fixedText(optics.nominalFocalLength, 1));

    const QDomElement opticalAxis = findOrCreateChild(document, map, tag::opticalAxis);
    const PlateGeometry plates = PlateCoordinates::geometry();
    savePlate(plates.axes.at(PLATE_A), tag::plateA, document, map, opticalAxis);
    savePlate(plates.axes.at(PLATE_B), tag::plateB, document, map, opticalAxis);
    savePlate(plates.axes.at(VEKO), tag::veko, document, map, opticalAxis);

    saveDistortion(optics, findOrCreateChild(document, map, tag::distortionCoefficients));
}

} // namespace pos
