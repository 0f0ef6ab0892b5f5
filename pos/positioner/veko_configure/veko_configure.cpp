#include "veko_configure.h"

#include "OutputFile.h"
#include "Pointing.h"

#include "CelestialPositionXML.h"
#include "ConditionsXML.h"
#include "FibreTargets.h"
#include "FieldXML.h"
#include "FocalPlaneXML.h"
#include "LimitsCalc.h"
#include "PosConfig.h"
#include "TargetXML.h"
#include "Veko.h"
#include "VekoTargets.h"
#include "VekoXML.h"
#include "Version.h"
#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <vector>

namespace {

using namespace pos;

/** The document, unless it cannot be loaded; then the error stream has said so. */
std::optional<QDomDocument> loadDocument(const std::string& input) {
    try {
        return loadXmlFile(input);
    } catch (const std::runtime_error& error) {
        std::cerr << "Error parsing field definition file: " << error.what() << std::endl;
        return std::nullopt;
    }
}

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

/** A field of the document on which the bundle has been placed. */
struct PlacedField {
    QDomElement element;
    QDomElement science;
    std::uint32_t fibre;  ///< for the science target
    Astrometric pointing; ///< the field centre that puts the science target on the fibre
};

/**
 * Places the bundle on a field.
 *
 * @param observation receives the field centre too; a null element for every field but the first
 */
PlacedField placeOnField(Veko& veko, const FibreTargets& fibres, const QDomElement& field, const VekoTargets& targets,
                         const Target& science, const QDomElement& observation) {
    const std::uint32_t fibre = scienceFibre(science);
    placeVeko(veko, science, fibre);
    const Astrometric centre = vekoFieldCentre(veko);
    saveAstrometricXML(centre, field);
    saveAstrometricXML(centre, observation);
    fibres.requirePlaces(fibre);
    saveGuideStar(veko, targets.guide);
    return {field, targets.science, fibre, veko.focalPlane.fieldCentre()};
}

/**
 * Configures the bundle on every field. On all of them it is placed before the first of their many targets is written:
 * a field that cannot be configured costs neither time nor memory for those before it.
 *
 * @param defaultEpoch Julian epoch of generated positions, years
 */
void configureFields(Veko& veko, const QDomElement& root, QDomElement observation, double defaultEpoch) {
    const FibreTargets fibres(veko, defaultEpoch);
    const qint64 newTargets = countNewTargets(veko);
    std::vector<PlacedField> fields;
    for (QDomElement element = findFieldElement(root, QDomElement()); !element.isNull();
         element = findFieldElement(root, element)) {
        const VekoTargets targets = findVekoTargets(element);
        const Target science = createTargetXML(targets.science);
        checkOutputSize(static_cast<qint64>(fields.size() + 1) * newTargets * kMinTargetSize);
        fields.push_back(placeOnField(veko, fibres, element, targets, science, observation));
        observation.clear();
    }
    for (const PlacedField& field : fields) {
        veko.focalPlane.setFieldCentre(field.pointing, veko.focalPlane.positionAngle());
        fibres.save(field.element, field.science, field.fibre);
    }
}

/** @param file a file of the configuration, or an embedded resource, which no output can be */
void refuseIfSame(const std::string& output, const std::string& file, const std::string& what) {
    std::error_code notThere;
    if (!file.starts_with(":") && std::filesystem::equivalent(output, file, notThere)) {
        throw std::runtime_error("The output file " + output + " is the " + what + " in use");
    }
}

/** Refuses an output that would take the place of what every run needs. */
void checkOutput(const PosConfig& config, const std::string& output) {
    refuseIfSame(output, config.name(), "configuration file");
    refuseIfSame(output, config.getFilename("telescope.focal_plane_map"), "focal-plane map");
    refuseIfSame(output, config.getFilename("veko_definition"), "bundle definition");
}

/** Writes the document. @return the exit status; where it is 1, the error stream has said why */
int saveDocument(const std::string& output, const QDomDocument& document) {
    try {
        writeFile(output, serialiseXml(document));
        return 0;
    } catch (const std::runtime_error& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
}

} // namespace

int veko_configure(const PosConfig& config, const std::string& input, const std::string& output, double epoch,
                   double hourAngle, double pressure, double zenithDistanceLimit, QDomDocument* kept) {
    const auto defaultEpoch = config.get<double>("default_epoch");
    const std::optional<QDomDocument> loaded = loadDocument(input);
    if (!loaded) {
        return 1;
    }
    const QDomDocument& document = *loaded;
    if (kept != nullptr) {
        *kept = document;
    }
    const QDomElement root = document.documentElement();
    const QDomElement observation = findObservationElement(root);
    const double positionAngle = degreesToRadians(observation.attribute(attr::pa).toDouble());

    QDomElement configure = requireConfigureElement(root);
    const QDomElement conditionsElement = findOrCreateConditionsElement(configure);
    Conditions conditions = createConditionsXML(conditionsElement);
    const std::optional<double> date = resolveDate(epoch, conditions);
    if (!date) {
        std::cerr << "No epoch specified" << std::endl;
        return 1;
    }
    const std::optional<double> wantedHourAngle = resolveHourAngle(hourAngle, conditionsElement);
    if (!wantedHourAngle) {
        std::cerr << "Bad hour angle in XML" << std::flush;
        return 1;
    }
    conditions.epoch = *date;
    conditions.pressure = resolvePressure(pressure, conditions);
    configure.setAttribute(attr::configureVersion, QString::fromStdString(configure_version));

    const std::unique_ptr<Field> firstField = createFieldXML(findFieldElement(root, QDomElement()));
    const std::unique_ptr<Veko> veko =
        createVekoXML(config, config.getFilename("veko_definition"), *firstField, conditions);
    FocalPlane& focalPlane = veko->focalPlane;
    pointFocalPlane(focalPlane, positionAngle, *wantedHourAngle);
    const LimitsCalc limits(config, focalPlane, zenithDistanceLimit);
    checkLimits(limits);

    saveConditionsXML(focalPlane.conditions(), focalPlane.hourAngle(), document, configure);
    saveHourAngleLimits(limits.hourAngleLimits(), document, configure);
    saveFocalPlaneXML(focalPlane, document, configure);
    configureFields(*veko, root, observation, defaultEpoch);
    checkOutput(config, output);
    return saveDocument(output, document);
}
