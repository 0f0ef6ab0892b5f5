#include "TelescopeConfig.h"

#include "FocalPlane.h"
#include "LimitsCalc.h"
#include "PosConfig.h"
#include "xmlStructure.h"

#include <QDomDocument>

namespace pos {

namespace {

/** What a pointing needs. */
void readSite(const PosConfig& config, Telescope& telescope) {
    telescope.eastLongitude = config.getAngle("telescope.east_longitude");
    telescope.latitude = config.getAngle("telescope.latitude");
    telescope.height = config.get<double>("telescope.height");
    telescope.horizonLimit = config.getAngle("telescope.horizon_limit");
    telescope.rotatorOffset = config.getAngle("telescope.rotator_offset");
}

/** What the limits need. */
void readLimits(const PosConfig& config, Telescope& telescope) {
    telescope.rotatorLowLimit = config.getAngle("telescope.rotator_low_limit");
    telescope.rotatorHighLimit = config.getAngle("telescope.rotator_high_limit");
    telescope.rotatorOffset = config.getAngle("telescope.rotator_offset");
    telescope.optimumPlateA = config.getAngle("telescope.optimum_rotator_angle.plate_a");
    telescope.optimumPlateB = config.getAngle("telescope.optimum_rotator_angle.plate_b");
    telescope.latitude = config.getAngle("telescope.latitude");
}

/** Puts optics and plates of the configured focal-plane map in force, then reads what else a pointing needs. */
Telescope initialise(const PosConfig& config, PlateName plate, double positionAngle) {
    const QDomDocument map = loadXmlFile(config.getFilename("telescope.focal_plane_map"));
    FocalPlaneCoordinates::initialise(map);
    PlateCoordinates::initialise(map, plate);
    FocalPlaneCoordinates::setRotation(positionAngle);
    Telescope telescope;
    readSite(config, telescope);
    return telescope;
}

Telescope limitsOnly(const PosConfig& config) {
    Telescope telescope;
    readLimits(config, telescope);
    return telescope;
}

} // namespace

Telescope readTelescope(const PosConfig& config) {
    Telescope telescope;
    readSite(config, telescope);
    readLimits(config, telescope);
    return telescope;
}

// The braces fix the order: the map is in force before its values are read.
FocalPlane::FocalPlane(const PosConfig& config, PlateName plate, Astrometric centre, double positionAngle,
                       const Conditions& conditions)
    : FocalPlane{initialise(config, plate, positionAngle),
                 FocalPlaneCoordinates::optics(),
                 PlateCoordinates::geometry(),
                 centre,
                 positionAngle,
                 conditions} {}

LimitsCalc::LimitsCalc(const PosConfig& config, FocalPlane& focalPlane, double largestZenithDistance)
    : LimitsCalc(limitsOnly(config), focalPlane, largestZenithDistance) {}

} // namespace pos
