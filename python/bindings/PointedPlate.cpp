#include "PointedPlate.h"

#include "LibraryCall.h"

#include "Field.h"
#include "PointingInForce.h"
#include "Target.h"
#include "TelescopeConfig.h"
#include "VekoXML.h"
#include "angles.h"
#include "placeVeko.h"

#include <filesystem>

namespace pos {

namespace {

std::string nameInEveryFolder(const std::string& name) {
    return name.starts_with(":") ? name : std::filesystem::absolute(name).string();
}

} // namespace

PointedPlate::PointedPlate(const std::string& configFile, Astrometric centre, double positionAngle,
                           const Conditions& conditions, std::optional<double> hourAngle)
    : PointedPlate(openConfig(configFile), centre, positionAngle, conditions, hourAngle) {}

PointedPlate::PointedPlate(const PosConfig& config, Astrometric centre, double positionAngle,
                           const Conditions& conditions, std::optional<double> hourAngle)
    : configFile_(nameInEveryFolder(config.name())), telescope_(readTelescope(config)),
      bundle_(createVekoXML(config, config.getFilename("veko_definition"), Field(centre), conditions)),
      pointing_(bundle_->focalPlane) {
    pointing_.setFieldCentre(centre, wrapAngle(positionAngle));
    if (hourAngle) {
        pointing_.setHourAngle(*hourAngle);
    }
}

void PointedPlate::place(const ICRS& place, std::uint32_t fibre) {
    const PointingInForce inForce(pointing_);
    Target target;
    target.position = place;
    bundle_->focalPlane = pointing_;
    placeVeko(*bundle_, target, fibre);
    pointing_ = bundle_->focalPlane;
}

LimitsCalc PointedPlate::limits(double largestZenithDistance) {
    return {telescope_, pointing_, largestZenithDistance};
}

} // namespace pos
