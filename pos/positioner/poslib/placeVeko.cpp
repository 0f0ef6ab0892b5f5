#include "placeVeko.h"

#include "TargetXML.h"
#include "Veko.h"
#include "angles.h"
#include "xmlKeywords.h"

#include <stdexcept>

namespace pos {

namespace {

/** The middle of the bundle. */
constexpr std::uint32_t kDefaultScienceFibre = 304;

} // namespace

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
    const FocalPlaneCoordinates fibrePosition = found->second.platePosition();
    const PlateCoordinates wanted = fibrePosition;
    focalPlane.setFieldCentre(science.position.toAstrometric(focalPlane.date()), wanted);
}

Astrometric vekoFieldCentre(const Veko& veko) {
    return veko.focalPlane.xyToCirs({0.0, 0.0}).toAstrometric(veko.focalPlane.dateContext());
}

void saveGuideStar(const Veko& veko, QDomElement guide) {
    const FocalPlane& focalPlane = veko.focalPlane;
    const Astrometric place = createTargetXML(guide).position.toAstrometric(focalPlane.date());
    const PlateCoordinates position = focalPlane.cirsToXy(place.toCirs(focalPlane.dateContext()));
    guide.setAttribute(attr::targx, position.x);
    guide.setAttribute(attr::targy, position.y);
    guide.setAttribute(attr::ifuPa, radiansToDegrees(focalPlane.positionAngle()));
    guide.setAttribute(attr::ifuSpaxel, QString());
    guide.setAttribute(attr::fibreid, QString());
    guide.setAttribute(attr::configid, 0);
}

} // namespace pos
