#include "configureDocument.h"

#include "CelestialPositionXML.h"
#include "ConditionsXML.h"
#include "FibreTargets.h"
#include "FieldTargets.h"
#include "FieldXML.h"
#include "FocalPlaneXML.h"
#include "LimitsCalc.h"
#include "PosConfig.h"
#include "TargetXML.h"
#include "Veko.h"
#include "VekoXML.h"
#include "Version.h"
#include "angles.h"
#include "numberText.h"
#include "placeVeko.h"
#include "xmlKeywords.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <memory>
#include <vector>

namespace pos {

namespace {

QDomElement requireConfigureElement(const QDomElement& root) {
    QDomElement configure = findConfigureElement(root);
    if (configure.isNull()) {
        throw std::runtime_error("Configure element not found");
    }
    return configure;
}

void saveHourAngleLimits(std::pair<double, double> limits, QDomDocument document, QDomElement configure) {
    QDomElement element = findOrCreateChild(document, configure, tag::hourAngleLimits);
    element.setAttribute(attr::latest, fixedText(radiansToHours(limits.first), 4));
    element.setAttribute(attr::earliest, fixedText(radiansToHours(limits.second), 4));
}

/**
 * Places the bundle on a field.
 *
 * @param observation receives the field centre too; a null element for every field but the first
 */
PlacedField placeOnField(Instrument& instrument, Veko& veko, const QDomElement& field, const FieldTargets& targets,
                         const Target& science, const QDomElement& observation) {
    const std::uint32_t fibre = scienceFibre(science);
    placeVeko(veko, science, fibre);
    const Astrometric centre = vekoFieldCentre(veko);
    saveAstrometricXML(centre, field);
    saveAstrometricXML(centre, observation);
    instrument.requirePlaces(fibre);
    saveGuideStar(veko, targets.guide);
    return {field, targets.science, fibre, veko.focalPlane.fieldCentre()};
}

/**
 * Places the bundle on every field. Nothing writes the first of their many targets before that, so a field that cannot
 * be configured costs no time and memory for the targets of those before it.
 */
std::vector<PlacedField> placeOnFields(Instrument& instrument, Veko& veko, const QDomElement& root,
                                       QDomElement observation) {
    std::vector<PlacedField> fields;
    for (QDomElement element = findFieldElement(root, QDomElement()); !element.isNull();
         element = findFieldElement(root, element)) {
        const FieldTargets targets = findFieldTargets(element);
        const Target science = createTargetXML(targets.science);
        checkOutputSize(static_cast<qint64>(fields.size() + 1) * instrument.fibreTargets().leastSize());
        fields.push_back(placeOnField(instrument, veko, element, targets, science, observation));
        observation.clear();
    }
    return fields;
}

} // namespace

PlacedDocument placeDocument(Instrument& instrument, QDomDocument document, const Estimates& estimates) {
    // A configuration that lacks it is told first.
    static_cast<void>(instrument.config().get<double>("default_epoch"));
    const QDomElement root = document.documentElement();
    const QDomElement observation = findObservationElement(root);
    const double positionAngle = degreesToRadians(observation.attribute(attr::pa).toDouble());

    QDomElement configure = requireConfigureElement(root);
    const QDomElement conditionsElement = findOrCreateConditionsElement(configure);
    Conditions conditions = createConditionsXML(conditionsElement);
    conditions.epoch = resolveDate(estimates.epoch, conditions);
    const double hourAngle = resolveHourAngle(estimates.hourAngle, conditionsElement);
    conditions.pressure = resolvePressure(estimates.pressure, conditions);
    configure.setAttribute(attr::configureVersion, QString::fromStdString(configure_version));

    const std::unique_ptr<Field> firstField = createFieldXML(findFieldElement(root, QDomElement()));
    Veko& veko = instrument.pointedVeko(*firstField, conditions);
    veko.focalPlane.setFieldCentre(veko.focalPlane.fieldCentre(), positionAngle);
    veko.focalPlane.setHourAngle(hourAngle);
    const LimitsCalc limits = instrument.limits(estimates.zenithDistanceLimit);
    checkLimits(limits);

    saveConditionsXML(veko.focalPlane.conditions(), veko.focalPlane.hourAngle(), document, configure);
    saveHourAngleLimits(limits.hourAngleLimits(), document, configure);
    saveFocalPlaneXML(veko.focalPlane, document, configure);
    const FibreTargets& fibres = instrument.fibreTargets();
    return {veko, fibres, placeOnFields(instrument, veko, root, observation)};
}

void saveTargets(const PlacedDocument& placed) {
    for (const PlacedField& field : placed.fields) {
        placed.veko.focalPlane.setFieldCentre(field.pointing, placed.veko.focalPlane.positionAngle());
        placed.fibres.save(field.element, field.science, field.fibre);
    }
}

void configureDocument(const PosConfig& config, const QDomDocument& document, const Estimates& estimates) {
    Instrument instrument(config);
    saveTargets(placeDocument(instrument, document, estimates));
}

} // namespace pos
