#include "VekoXML.h"

#include "Field.h"
#include "PosConfig.h"
#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <limits>
#include <stdexcept>

namespace pos {

namespace {

void require(const QDomElement& element, const QString& attribute, const char* who) {
    if (!element.hasAttribute(attribute)) {
        throw std::runtime_error(std::string(who) + " has no " + attribute.toStdString() + " attribute");
    }
}

double readNumber(const QDomElement& element, const QString& attribute, const char* message) {
    const std::optional<double> value = numberOf(element.attribute(attribute));
    if (!value) {
        throw std::runtime_error(message);
    }
    return *value;
}

} // namespace

Veko::VekoCentre createVekoCentreXML(const QDomElement& root) {
    constexpr const char* kWho = "plate definition";
    Veko::VekoCentre centre{};
    // The conversion reports a missing centre_y, not a check of its own.
    require(root, attr::centreX, kWho);
    centre.x = readNumber(root, attr::centreX, "plate definition has a bad centre x");
    centre.y = readNumber(root, attr::centreY, "plate definition has a bad centre y");
    require(root, attr::orientation, kWho);
    centre.orientation =
        degreesToRadians(readNumber(root, attr::orientation, "plate definition has a bad orientation"));
    return centre;
}

SatelliteFibre<Veko::VekoCentre> createFibreXML(const QDomElement& element, const Veko::VekoCentre& centre) {
    constexpr const char* kWho = "fibre";
    require(element, attr::id, kWho);
    const std::optional<std::uint32_t> id = unsignedOf(element.attribute(attr::id));
    // A target's fibre id is signed: it negates the identifier of a fibre that is not enabled.
    if (!id || *id > std::numeric_limits<std::int32_t>::max()) {
        throw std::runtime_error("fibre element has a bad identifier");
    }
    require(element, attr::posX, kWho);
    const double dx = readNumber(element, attr::posX, "fibre element has a bad pos x");
    require(element, attr::posY, kWho);
    const double dy = readNumber(element, attr::posY, "fibre element has a bad pos y");
    require(element, attr::fibreName, kWho);
    const FibreStatus status = element.hasAttribute(attr::status)
                                   ? FibreStatus(element.attribute(attr::status).toStdString())
                                   : FibreStatus(FibreStatus::Enabled);
    return {0, *id, &centre, dx, dy, status};
}

std::unique_ptr<Veko> createVekoXML(const PosConfig& config, const QDomElement& root, const Field& field,
                                    const Conditions& conditions) {
    const Veko::VekoCentre centre = createVekoCentreXML(root);
    auto veko = std::make_unique<Veko>(centre, FocalPlane(config, VEKO, field.centre, 0.0, conditions));
    for (QDomElement element = root.firstChildElement(tag::fibre); !element.isNull();
         element = element.nextSiblingElement(tag::fibre)) {
        const SatelliteFibre<Veko::VekoCentre> fibre = createFibreXML(element, veko->centre);
        veko->fibres.try_emplace(fibre.id, fibre);
        veko->names.insert_or_assign(fibre.id, element.attribute(attr::fibreName).toStdString());
    }
    return veko;
}

std::unique_ptr<Veko> createVekoXML(const PosConfig& config, const std::string& filename, const Field& field,
                                    const Conditions& conditions) {
    return createVekoXML(config, loadXmlFile(filename).documentElement(), field, conditions);
}

} // namespace pos
