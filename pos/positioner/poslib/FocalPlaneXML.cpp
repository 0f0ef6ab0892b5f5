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

void savePlate(PlateName plate, const QString& name, QDomDocument document, QDomElement map, QDomElement opticalAxis) {
    QDomElement element = map.firstChildElement(name);
    if (element.isNull()) {
        element = document.createElement(name);
        opticalAxis.appendChild(element);
    }
    const OpticalAxis axis = PlateCoordinates::opticalAxis(plate);
    element.setAttribute(attr::x0, fixedText(axis.x0, 3));
    element.setAttribute(attr::y0, fixedText(axis.y0, 3));
    element.setAttribute(attr::r0, fixedText(axis.r0, 3));
}

void saveDistortion(QDomElement coefficients) {
    const FocalPlaneCoordinates::params model = FocalPlaneCoordinates::save();
    coefficients.setAttribute(attr::c1, model.c1);
    coefficients.setAttribute(attr::c3, model.c3);
    coefficients.setAttribute(attr::c5, model.c5);
    coefficients.setAttribute(attr::c7, 0.0);
}

} // namespace

void saveFocalPlaneXML(const FocalPlane& focalPlane, QDomDocument document, QDomElement parent) {
    saveTelescope(focalPlane, findOrCreateChild(document, parent, tag::telescope));

    QDomElement map = findOrCreateChild(document, parent, tag::focalPlaneMap);
    map.setAttribute(attr::focalLength, fixedText(FocalPlaneCoordinates::focalLength(), 1));
    map.setAttribute(attr::nominalFocalLength, fixedText(FocalPlaneCoordinates::nominalFocalLength(), 1));

    const QDomElement opticalAxis = findOrCreateChild(document, map, tag::opticalAxis);
    savePlate(PLATE_A, tag::plateA, document, map, opticalAxis);
    savePlate(PLATE_B, tag::plateB, document, map, opticalAxis);
    savePlate(VEKO, tag::veko, document, map, opticalAxis);

    saveDistortion(findOrCreateChild(document, map, tag::distortionCoefficients));
}

} // namespace pos
