#include "VekoTargets.h"

#include "TargetXML.h"
#include "Veko.h"
#include "angles.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <stdexcept>

namespace pos {

namespace {

/** The middle of the bundle. */
constexpr std::uint32_t kDefaultScienceFibre = 304;

} // namespace

VekoTargets findVekoTargets(const QDomElement& field) {
    VekoTargets found;
    for (QDomElement target = field.firstChildElement(tag::target);
         !target.isNull() && (found.science.isNull() || found.guide.isNull());
         target = target.nextSiblingElement(tag::target)) {
        const QString use = target.attribute(attr::targuse);
        if (use == QLatin1String("T")) {
            found.science = target;
        } else if (use == QLatin1String("G")) {
            found.guide = target;
        }
    }
    if (found.science.isNull() || found.guide.isNull()) {
        throw std::runtime_error("No science target in field");
    }
    return found;
}

std::uint32_t scienceFibre(const Target& science) {
    return science.fibreid == kNoFibre ? kDefaultScienceFibre : static_cast<std::uint32_t>(science.fibreid);
}

void placeVeko(Veko& veko, const Target& science, std::uint32_t fibre) {
    FocalPlane& focalPlane = veko.focalPlane;
    focalPlane.setFieldCentre(science.position.toAstrometric(focalPlane.date()), focalPlane.positionAngle());
    const auto found = veko.fibres.find(fibre);
    if (found == veko.fibres.end()) {
        throw std::runtime_error("fibre assigned to science target does not exist");
    }
    const PlateCoordinates wanted(static_cast<FocalPlaneCoordinates>(found->second.platePosition()));
    focalPlane.setFieldCentre(science.position.toAstrometric(focalPlane.date()), wanted);
}

qint64 countNewTargets(const Veko& veko) {
    return std::count_if(veko.fibres.begin(), veko.fibres.end(),
                         [](const auto& fibre) { return fibre.second.status != FibreStatus::Absent; }) -
           1;
}

Astrometric vekoFieldCentre(const Veko& veko) {
    return veko.focalPlane.xyToCirs({0.0, 0.0}).toAstrometric(veko.focalPlane.dateContext());
}

void saveGuideStar(const Veko& veko, QDomElement guide) {
    const FocalPlane& focalPlane = veko.focalPlane;
    const Astrometric place = createTargetXML(guide).position.toAstrometric(focalPlane.date());
    const StandardCoordinates standard = focalPlane.cirsToStd(place.toCirs(focalPlane.dateContext()));
    const PlateCoordinates position{FocalPlaneCoordinates(standard)};
    guide.setAttribute(attr::targx, position.x);
    guide.setAttribute(attr::targy, position.y);
    guide.setAttribute(attr::ifuPa, radiansToDegrees(focalPlane.positionAngle()));
    guide.setAttribute(attr::ifuSpaxel, QString());
    guide.setAttribute(attr::fibreid, QString());
    guide.setAttribute(attr::configid, 0);
}

} // namespace pos
