#include "PointedPlate.h"

#include "Field.h"
#include "PointingInForce.h"
#include "Target.h"
#include "TelescopeConfig.h"
#include "VekoXML.h"
#include "Version.h"
#include "angles.h"
#include "placeVeko.h"

namespace pos {

PosConfig openConfig(const std::string& file) {
    return {"configure_version", configure_version, file.c_str(), PosConfig::XML};
}

PointedPlate::PointedPlate(const std::string& configFile, Astrometric centre, double positionAngle,
                           const Conditions& conditions, std::optional<double> hourAngle)
    : config_(openConfig(configFile)), telescope_(readTelescope(config_)),
      veko_(createVekoXML(config_, config_.getFilename("veko_definition"), Field(centre), conditions)) {
    veko_->focalPlane.setFieldCentre(centre, wrapAngle(positionAngle));
    if (hourAngle) {
        veko_->focalPlane.setHourAngle(*hourAngle);
    }
}

void PointedPlate::place(const ICRS& place, std::uint32_t fibre) {
    const FocalPlane before = veko_->focalPlane;
    const PointingInForce inForce(before);
    Target target;
    target.position = place;
    try {
        placeVeko(*veko_, target, fibre);
    } catch (...) {
        veko_->focalPlane = before;
        throw;
    }
}

LimitsCalc PointedPlate::limits(double largestZenithDistance) const {
    return {telescope_, veko_->focalPlane, largestZenithDistance};
}

} // namespace pos
