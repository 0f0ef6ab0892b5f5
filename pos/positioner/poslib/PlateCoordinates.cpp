#include "PlateCoordinates.h"

#include "PosConfig.h"
#include "angles.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <cmath>
#include <stdexcept>

namespace pos {

namespace {

/** Stores an attribute's number, then fails with the message if it was none. */
void readNumber(const QDomElement& element, const QString& name, double& value, const char* message) {
    bool ok = false;
    value = element.attribute(name).toDouble(&ok);
    if (!ok) {
        throw std::runtime_error(message);
    }
}

} // namespace

std::array<double, kPlateCount> PlateCoordinates::x0_ = {0.0, 0.0, 0.0};
std::array<double, kPlateCount> PlateCoordinates::y0_ = {0.0, 0.0, 0.0};
std::array<double, kPlateCount> PlateCoordinates::r0_ = {0.0, 0.0, 0.0};
PlateName PlateCoordinates::plate_ = PLATE_A;
double PlateCoordinates::cos_r_ = 1.0;
double PlateCoordinates::sin_r_ = 0.0;

PlateCoordinates::PlateCoordinates(FocalPlaneCoordinates f)
    : x(cos_r_ * f.x - sin_r_ * f.y + x0_.at(plate_)), y(cos_r_ * f.y + sin_r_ * f.x + y0_.at(plate_)) {}

PlateCoordinates::operator FocalPlaneCoordinates() const {
    const double dx = x - x0_.at(plate_);
    const double dy = y - y0_.at(plate_);
    return {cos_r_ * dx + sin_r_ * dy, cos_r_ * dy - sin_r_ * dx};
}

QDomDocument PlateCoordinates::initialise(const PosConfig& config, PlateName plate) {
    const QDomDocument map = loadXmlFile(config.getFilename("telescope.focal_plane_map"));
    initialise(map, plate);
    return map;
}

void PlateCoordinates::initialise(const QDomDocument& map, PlateName plate) {
    plate_ = plate;
    const QDomElement axes = findFocalPlaneMapElement(map).firstChildElement(tag::opticalAxis);
    const std::array<QString, kPlateCount> names = {tag::plateA, tag::plateB, tag::veko};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const QDomElement axis = axes.firstChildElement(names.at(i));
        readNumber(axis, attr::x0, x0_.at(i), "Bad optical axis in focal plane map");
        readNumber(axis, attr::y0, y0_.at(i), "Bad optical axis in focal plane map");
        bool ok = false;
        r0_.at(i) = degreesToRadians(axis.attribute(attr::r0).toDouble(&ok));
        if (!ok) {
            throw std::runtime_error("Bad plate rotation in focal plane map");
        }
        cos_r_ = std::cos(r0_.at(i));
        sin_r_ = std::sin(r0_.at(i));
    }
}

void PlateCoordinates::setPlate(PlateName plate) {
    plate_ = plate;
    cos_r_ = std::cos(r0_.at(plate));
    sin_r_ = std::sin(r0_.at(plate));
}

void PlateCoordinates::setPlatePosition(double x0, double y0, double r0) {
    x0_.at(plate_) = x0;
    y0_.at(plate_) = y0;
    r0_.at(plate_) = r0;
}

OpticalAxis PlateCoordinates::opticalAxis(PlateName plate) {
    return {x0_.at(plate), y0_.at(plate), r0_.at(plate)};
}

} // namespace pos
