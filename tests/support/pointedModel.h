#ifndef POS_TESTS_POINTEDMODEL_H
#define POS_TESTS_POINTEDMODEL_H

#include "telescope.h"

/** Where the optical axis meets a plate, and how the plate is turned, as a focal-plane map states it. */
struct PlateShift {
    double x0 = 0.0;    ///< mm
    double y0 = 0.0;    ///< mm
    double r0Deg = 0.0; ///< degrees
};

/** A pointing in the terms of a test: what the sky and the mount look like, not what the model stores. */
struct Pointing {
    TelescopeSettings telescope;
    pos::Conditions conditions = kAirlessNight;
    pos::Astrometric centre{};
    double positionAngle = 0.0; ///< radians
    PlateShift plate;
};

/** The model of a pointing, all three plates shifted and turned alike. */
inline pos::FocalPlane focalPlaneOf(const Pointing& pointing) {
    const pos::OpticalAxis axis = {pointing.plate.x0, pointing.plate.y0, rad(pointing.plate.r0Deg)};
    return pointedAt(pointing.centre, pointing.positionAngle, pointing.conditions, telescopeConfig(pointing.telescope),
                     {{axis, axis, axis}, pos::VEKO, axis.r0});
}

inline pos::PlateCoordinates onPlate(const pos::FocalPlane& focalPlane, pos::CIRS place) {
    return focalPlane.cirsToXy(place);
}

/** The angle between two directions, radians. */
template <typename Place> double separation(const Place& a, const Place& b) {
    return eraSeps(a.ra, a.dec, b.ra, b.dec);
}

#endif
