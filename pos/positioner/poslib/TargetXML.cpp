#include "TargetXML.h"

#include "CelestialPositionXML.h"
#include "Plate.h"
#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"

#include <stdexcept>

namespace pos {

namespace {

/** Fibre ids that stand for a whole mini bundle. */
constexpr std::int32_t kFirstBundle = 1008;
constexpr std::int32_t kLastBundle = 1027;
/** Id of the central fibre of the first mini bundle; those of the next follow by hundreds. */
constexpr std::int32_t kFirstCentralFibre = 1119;
/** Fibres in a mini bundle. */
constexpr std::int32_t kBundleSize = 37;

[[noreturn]] void failTarget(const Target& target, const char* what, const QString& text) {
    throw std::runtime_error("Target " + target.name + " has an invalid " + what + " '" + text.toStdString() + "'");
}

double readPriority(const Target& target, const QDomElement& element) {
    if (!element.hasAttribute(attr::targprio)) {
        return target.priority;
    }
    const QString text = element.attribute(attr::targprio);
    const std::optional<double> priority = numberOf(text);
    if (!priority || *priority < 0.0) {
        failTarget(target, "priority", text);
    }
    return *priority;
}

/** A 32-bit integer. @param what its name in the message */
std::int32_t readInteger(const Target& target, const char* what, const QString& text) {
    const std::optional<std::int32_t> value = integerOf(text);
    if (!value) {
        failTarget(target, what, text);
    }
    return *value;
}

std::int32_t readFibreId(const Target& target, const QDomElement& element) {
    const QString text = element.attribute(attr::fibreid);
    return text.isEmpty() || text == kMissingValue ? kNoFibre : readInteger(target, "fibre id", text);
}

void setDefault(QDomElement& element, const QString& attribute, const QString& value) {
    if (!element.hasAttribute(attribute)) {
        element.setAttribute(attribute, value);
    }
}

/** A text that, when empty, does not replace one that is there. */
void setUnlessEmpty(QDomElement& element, const QString& attribute, const std::string& text) {
    if (!text.empty() || !element.hasAttribute(attribute)) {
        element.setAttribute(attribute, QString::fromStdString(text));
    }
}

/** Space motion that the element lacks, or that a generated target must not take over from its template. */
void setZeroMotion(QDomElement& element, bool automatic) {
    for (const QString& attribute : {attr::targparal, attr::targpmra, attr::targpmdec}) {
        if (automatic || !element.hasAttribute(attribute)) {
            element.setAttribute(attribute, QStringLiteral("0"));
        }
    }
}

QString configidText(std::uint64_t configid) {
    return QString::number(static_cast<std::int32_t>(configid));
}

/** The "fibreid" to be written: for a mini bundle its central fibre. */
std::int32_t centralFibre(std::int32_t fibreid) {
    if (fibreid < kFirstBundle || fibreid > kLastBundle) {
        return fibreid;
    }
    return (fibreid - kFirstBundle) * 100 + kFirstCentralFibre;
}

void updatePlatePosition(const Target& target, QDomElement& element, const Plate& plate) {
    const double time = plate.observationTime;
    const CIRS place = target.position.toAstrometric(time).toCirs(time);
    const PlateCoordinates position = plate.focalPlane.cirsToXy(place);
    element.setAttribute(attr::targx, fixedText(position.x, 3));
    element.setAttribute(attr::targy, fixedText(position.y, 3));
}

/** @param fibreid a fibre of a mini bundle: hundreds count the bundles from 11, the rest the fibres from 1 */
void updateSpaxel(QDomElement& element, const Plate& plate, std::int32_t fibreid) {
    const std::int32_t bundle = fibreid / 100;
    const std::int32_t fibre = fibreid - 100 * bundle;
    const std::int32_t spaxel = kBundleSize * (bundle - 11) + (fibre - 1);
    element.setAttribute(attr::ifuSpaxel, QString::fromStdString(plate.spaxels.at(static_cast<std::size_t>(spaxel))));
    const PlateFibre& record = plate.fibres.at(static_cast<std::size_t>(bundle) + 997);
    element.setAttribute(attr::ifuPa, fixedText(radiansToDegrees(record.positionAngle), 1));
}

} // namespace

Target createTargetXML(const QDomElement& element) {
    Target target;
    target.name = element.attribute(attr::targname).toStdString();
    target.survey = element.attribute(attr::targsrvy).toStdString();
    target.priority = readPriority(target, element);
    if (element.hasAttribute(attr::targuse)) {
        target.use = TargetUse(element.attribute(attr::targuse).toStdString());
    }
    target.fibreid = readFibreId(target, element);
    if (element.hasAttribute(attr::configid)) {
        const std::int64_t configid = readInteger(target, "configure target id", element.attribute(attr::configid));
        target.configid = static_cast<std::uint64_t>(configid);
    }
    target.position = createIcrsXML("Target " + target.name, element);
    if (element.hasAttribute(attr::automatic)) {
        target.automatic = readInteger(target, "automatic flag", element.attribute(attr::automatic)) != 0;
    }
    return target;
}

QDomElement saveTargetXML(const Target& target, QDomNode parent, const QDomElement& templ) {
    QDomElement element =
        templ.isNull() ? parent.ownerDocument().createElement(tag::target) : templ.cloneNode().toElement();
    setUnlessEmpty(element, attr::targname, target.name);
    setUnlessEmpty(element, attr::targsrvy, target.survey);
    if (!element.hasAttribute(attr::targprio)) {
        element.setAttribute(attr::targprio, target.priority);
    }
    element.setAttribute(attr::targuse, QString::fromStdString(std::string(target.use)));
    element.setAttribute(attr::fibreid, target.fibreid == kNoFibre ? kMissingValue : QString::number(target.fibreid));
    element.setAttribute(attr::configid, target.configid == 0 ? kMissingValue : configidText(target.configid));
    element.setAttribute(attr::automatic, target.automatic ? QStringLiteral("1") : QStringLiteral("0"));

    setDefault(element, attr::cname, kMissingValue);
    setDefault(element, attr::ifuPa, QString());
    setDefault(element, attr::ifuSpaxel, QString());
    setDefault(element, attr::targcat, QString());
    setDefault(element, attr::targclass, target.use == TargetUse::S ? QString() : QStringLiteral("UNKNOWN"));
    setDefault(element, attr::targprog, QString());
    setDefault(element, attr::targid, QString());

    setZeroMotion(element, target.automatic);
    saveIcrsXML(target.position, element);

    if (!templ.isNull() && target.use == TargetUse::C) {
        element.setAttribute(attr::cname, kMissingValue);
        element.setAttribute(attr::targclass, kMissingValue);
        element.removeChild(element.firstChildElement(tag::photometry));
    }
    parent.appendChild(element);
    return element;
}

void updateTargetXML(const Target& target, QDomElement element, const Plate* plate) {
    const std::int32_t fibreid = centralFibre(target.fibreid);
    if (fibreid < 0) {
        element.removeAttribute(attr::fibreid);
    } else {
        element.setAttribute(attr::fibreid, fibreid);
    }
    if (plate == nullptr) {
        return;
    }
    updatePlatePosition(target, element, *plate);
    if (fibreid >= kFirstBundle) {
        updateSpaxel(element, *plate, fibreid);
    }
}

void updateTargetIdXML(QDomElement element, std::uint64_t configid) {
    element.setAttribute(attr::configid, configidText(configid));
}

} // namespace pos
