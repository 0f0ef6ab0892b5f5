#ifndef POS_TESTS_POINTEDMODEL_H
#define POS_TESTS_POINTEDMODEL_H

#include "FocalPlane.h"
#include "FocalPlaneCoordinates.h"
#include "TemporaryFolder.h"
#include "telescope.h"

#include <erfa.h>
#include <iomanip>
#include <sstream>
#include <string>

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

/** The distortion of the embedded map, and all three plates shifted and turned alike. */
inline std::string shiftedMap(const PlateShift& plate) {
    std::ostringstream axis;
    axis << std::setprecision(17) << " x0='" << plate.x0 << "' y0='" << plate.y0 << "' r0='" << plate.r0Deg << "'/>";
    return "<focal_plane_map datamver='8.00' focal_length='11724.24'><optical_axis><PLATE_A" + axis.str() + "<PLATE_B" +
           axis.str() + "<VEKO" + axis.str() +
           "</optical_axis><distortion_coefficients c1='202.841' c3='3.0191' c5='-0.0995944'/></focal_plane_map>";
}

/** The model of a pointing, and with it the process-wide optics and plates. */
inline pos::FocalPlane focalPlaneOf(const Pointing& pointing) {
    const TemporaryFolder folder;
    TelescopeSettings telescope = pointing.telescope;
    telescope.focalPlaneMap = folder.write("map.xml", shiftedMap(pointing.plate));
    return {telescopeConfig(telescope), pos::VEKO, pointing.centre, pointing.positionAngle, pointing.conditions};
}

/** The plate position of an apparent place, by the conversions one after the other. */
inline pos::PlateCoordinates onPlate(const pos::FocalPlane& focalPlane, pos::CIRS place) {
    return pos::PlateCoordinates(pos::FocalPlaneCoordinates(focalPlane.cirsToStd(place)));
}

/** The angle between two directions, radians. */
template <typename Place> double separation(const Place& a, const Place& b) {
    return eraSeps(a.ra, a.dec, b.ra, b.dec);
}

#endif
