#include "FocalPlaneMapXML.h"

#include "FocalPlaneCoordinates.h"
#include "PlateCoordinates.h"
#include "PosConfig.h"
#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <stdexcept>

namespace pos {

namespace {

const char* const kBadAxis = "Bad optical axis in focal plane map";

/** Stores an attribute's number; if it is none, stores 0 and fails with the message. */
void readNumber(const QDomElement& element, const QString& name, double& value, const char* message) {
    const std::optional<double> number = numberOf(element.attribute(name));
    value = number.value_or(0.0);
    if (!number) {
        throw std::runtime_error(message);
    }
}

/** What was read before a failure stays stored. */
void readOptics(const QDomDocument& map, double& nominalFocalLength, std::array<double, 3>& coefficients) {
    const QDomElement root = findFocalPlaneMapElement(map);
    readNumber(root, attr::focalLength, nominalFocalLength, "Bad focal length in focal plane map");
    const QDomElement element = root.firstChildElement(tag::distortionCoefficients);
    const std::array<QString, 3> names = {attr::c1, attr::c3, attr::c5};
    for (std::size_t i = 0; i < names.size(); ++i) {
        readNumber(element, names.at(i), coefficients.at(i), "Bad coefficient in focal plane map");
    }
}

/** What was read before a failure stays stored. */
void readAxis(const QDomDocument& map, std::size_t plate, double& x0, double& y0, double& r0) {
    const std::array<QString, kPlateCount> names = {tag::plateA, tag::plateB, tag::veko};
    const QDomElement axis =
        findFocalPlaneMapElement(map).firstChildElement(tag::opticalAxis).firstChildElement(names.at(plate));
    readNumber(axis, attr::x0, x0, kBadAxis);
    readNumber(axis, attr::y0, y0, kBadAxis);
    readNumber(axis, attr::r0, r0, "Bad plate rotation in focal plane map");
    r0 = degreesToRadians(r0);
}

} // namespace

Optics createOpticsXML(const QDomDocument& map) {
    double focalLength = 0.0;
    std::array<double, 3> coefficients{};
    readOptics(map, focalLength, coefficients);
    return {focalLength, focalLength, coefficients[0], coefficients[1], coefficients[2]};
}

PlateGeometry createPlateGeometryXML(const QDomDocument& map, PlateName plate) {
    PlateGeometry geometry{{}, plate, 0.0};
    for (std::size_t i = 0; i < geometry.axes.size(); ++i) {
        OpticalAxis& axis = geometry.axes.at(i);
        readAxis(map, i, axis.x0, axis.y0, axis.r0);
        geometry.rotation = axis.r0;
    }
    return geometry;
}

void FocalPlaneCoordinates::initialise(const PosConfig& config) {
    initialise(loadXmlFile(config.getFilename("telescope.focal_plane_map")));
}

void FocalPlaneCoordinates::initialise(const QDomDocument& map) {
    readOptics(map, nominal_fl_, coeffs_);
    focal_length_ = nominal_fl_;
    setRotation(0.0);
}

QDomDocument PlateCoordinates::initialise(const PosConfig& config, PlateName plate) {
    const QDomDocument map = loadXmlFile(config.getFilename("telescope.focal_plane_map"));
    initialise(map, plate);
    return map;
}

void PlateCoordinates::initialise(const QDomDocument& map, PlateName plate) {
    plate_ = plate;
    for (std::size_t i = 0; i < r0_.size(); ++i) {
        readAxis(map, i, x0_.at(i), y0_.at(i), r0_.at(i));
        setPlateRotation(r0_.at(i));
    }
}

} // namespace pos
