#include "FibreTargets.h"

#include "CelestialPositionXML.h"
#include "TargetXML.h"
#include "Veko.h"
#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"

namespace pos {

namespace {

/** The least size of a new target, bytes: its own attributes take as much with the shortest values. */
constexpr qint64 kLeastTargetSize = 256;

} // namespace

FibreTargets::FibreTargets(const Veko& veko, double epoch) : veko_(veko), epoch_(epoch) {
    records_.reserve(veko.fibres.size());
    for (const auto& [id, fibre] : veko.fibres) {
        if (fibre.status == FibreStatus::Absent) {
            continue;
        }
        const std::string& spaxel = veko.names.at(id);
        const QString idText = QString::number(id);
        const PlateCoordinates position = fibre.platePosition();
        records_.push_back({id, position, spaxel.starts_with('S'), idText,
                            fibre.status == FibreStatus::Enabled ? idText : QString::number(-qint64{id}),
                            generalText(position.x), generalText(position.y), QString::fromStdString(spaxel)});
    }
}

qint64 FibreTargets::leastSize() const {
    return (static_cast<qint64>(records_.size()) - 1) * kLeastTargetSize;
}

void FibreTargets::requirePlaces(std::uint32_t scienceFibre) const {
    for (const Record& record : records_) {
        if (record.id != scienceFibre) {
            // Nothing else can fail on the way back to the sky.
            const FocalPlaneCoordinates position = record.position;
            static_cast<void>(StandardCoordinates(position));
        }
    }
}

/**
 * What the new targets of one use have in common. It lacks what differs from fibre to fibre: to set an attribute that
 * an element has is dearer than to give it one more.
 */
QDomElement FibreTargets::commonTarget(TargetUse use, const QDomElement& science) const {
    Target target;
    target.position.epoch = epoch_;
    target.use = use;
    target.automatic = true;
    QDomElement element = saveTargetXML(target, science.ownerDocument().createElement(tag::field), science);
    element.setAttribute(attr::ifuPa, radiansToDegrees(veko_.focalPlane.positionAngle()));
    for (const QString& attribute :
         {attr::targra, attr::targdec, attr::fibreid, attr::targx, attr::targy, attr::ifuSpaxel}) {
        element.removeAttribute(attribute);
    }
    // Every copy reverses the attributes that share a bucket of the XML library's table; two copies keep their order.
    return element.cloneNode().toElement();
}

void FibreTargets::save(QDomElement field, QDomElement science, std::uint32_t scienceFibre) const {
    const FocalPlane& focalPlane = veko_.focalPlane;
    const QDomElement skyTarget = commonTarget(TargetUse::S, science);
    const QDomElement otherTarget = commonTarget(TargetUse::T, science);
    for (const Record& record : records_) {
        QDomElement element = science;
        if (record.id == scienceFibre) {
            element.setAttribute(attr::fibreid, record.configid);
            element.setAttribute(attr::ifuPa, radiansToDegrees(focalPlane.positionAngle()));
        } else {
            const Astrometric sky = focalPlane.xyToCirs(record.position).toAstrometric(focalPlane.dateContext());
            element = (record.isSky ? skyTarget : otherTarget).cloneNode().toElement();
            element.setAttribute(attr::fibreid, record.fibreid);
            saveCataloguePlaceXML(sky.ra, sky.dec, element);
            field.appendChild(element);
        }
        element.setAttribute(attr::targx, record.targx);
        element.setAttribute(attr::targy, record.targy);
        element.setAttribute(attr::ifuSpaxel, record.spaxel);
        element.setAttribute(attr::configid, record.configid);
    }
}

} // namespace pos
