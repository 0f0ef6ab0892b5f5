#include "ReportedFibre.h"

#include "Veko.h"
#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"

#include <cstdlib>
#include <map>

namespace pos {

namespace {

FibreKind kindThatSees(const std::string& spaxel) {
    return spaxel.starts_with('S') ? FibreKind::Sky : FibreKind::Science;
}

FibreKind kindOf(FibreStatus status, const std::string& spaxel) {
    switch (status.value()) {
    case FibreStatus::Enabled:
        return kindThatSees(spaxel);
    case FibreStatus::Disabled:
        return FibreKind::Disabled;
    case FibreStatus::Absent:
        return FibreKind::Absent;
    default:
        return FibreKind::Broken;
    }
}

/** The targets of the fibres by identifier. */
std::map<std::uint32_t, QDomElement> targetsOnFibres(const QDomElement& field) {
    std::map<std::uint32_t, QDomElement> targets;
    for (QDomElement child = field.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        const std::optional<std::uint32_t> fibre = fibreOf(child);
        if (isOnFibre(child) && fibre) {
            targets.emplace(*fibre, child);
        }
    }
    return targets;
}

double numberIn(const QDomElement& target, const QString& attribute) {
    return target.attribute(attribute).toDouble();
}

} // namespace

const char* wordOf(FibreKind kind) {
    switch (kind) {
    case FibreKind::Science:
        return "science";
    case FibreKind::Sky:
        return "sky";
    case FibreKind::Broken:
        return "broken";
    case FibreKind::Disabled:
        return "disabled";
    case FibreKind::Absent:
        return "absent";
    }
    return "";
}

std::optional<std::uint32_t> fibreOf(const QDomElement& target) {
    const std::optional<std::int32_t> id = integerOf(target.attribute(attr::fibreid));
    const std::int64_t fibre = std::abs(std::int64_t{id.value_or(0)});
    return fibre == 0 ? std::nullopt : std::optional(static_cast<std::uint32_t>(fibre));
}

bool isOnFibre(const QDomElement& target) {
    return target.tagName() == tag::target && !target.attribute(attr::ifuSpaxel).isEmpty() &&
           target.attribute(attr::ifuSpaxel) != kMissingValue;
}

FibreKind kindOfTarget(const QDomElement& target, FibreStatus status) {
    const std::string spaxel = target.attribute(attr::ifuSpaxel).toStdString();
    if (!isGenerated(target)) {
        return kindOf(status, spaxel); // the science target's fibre has no minus sign
    }
    if (!target.attribute(attr::fibreid).startsWith('-')) {
        return kindThatSees(spaxel);
    }
    return status == FibreStatus::Disabled ? FibreKind::Disabled : FibreKind::Broken;
}

std::vector<ReportedFibre> reportedFibres(const QDomElement& field, const Veko& veko) {
    const std::map<std::uint32_t, QDomElement> targets = targetsOnFibres(field);
    const FocalPlane& pointing = veko.focalPlane;
    std::vector<ReportedFibre> all;
    for (const auto& [id, fibre] : veko.fibres) {
        const std::string& spaxel = veko.names.at(id);
        const auto found = targets.find(id);
        if (found != targets.end()) {
            const QDomElement& target = found->second;
            all.push_back({id,
                           target.attribute(attr::ifuSpaxel).toStdString(),
                           kindOfTarget(target, fibre.status),
                           {numberIn(target, attr::targx), numberIn(target, attr::targy)},
                           numberIn(target, attr::targra),
                           numberIn(target, attr::targdec)});
        } else {
            const PlateCoordinates plate = fibre.platePosition();
            const Astrometric sky = pointing.xyToCirs(plate).toAstrometric(pointing.dateContext());
            all.push_back(
                {id, spaxel, kindOf(fibre.status, spaxel), plate, radiansToDegrees(sky.ra), radiansToDegrees(sky.dec)});
        }
    }
    return all;
}

bool isGenerated(const QDomElement& target) {
    return isOnFibre(target) && target.attribute(attr::automatic).toInt() != 0;
}

bool hasGeneratedTargets(const QDomElement& field) {
    for (QDomElement child = field.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        if (isGenerated(child)) {
            return true;
        }
    }
    return false;
}

} // namespace pos
