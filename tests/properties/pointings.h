#ifndef POS_TESTS_POINTINGS_H
#define POS_TESTS_POINTINGS_H

#include "FocalPlane.h"
#include "TemporaryFolder.h"
#include "generators.h"
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

/** Nights from 2000 to 2022, in which the library knows all leap seconds; airless or with air as at a mountain site. */
inline pos::Conditions anyConditions(bool airless) {
    const double date = *between(51545.0, 59580.0).as("MJD");
    if (airless) {
        return {date, 283.15, 0.0, 0.0};
    }
    return {date, *between(265.0, 295.0).as("kelvin"), *between(600.0, 1000.0).as("millibar"),
            *between(0.0, 1.0).as("humidity")};
}

/** Sites between 70 degrees south and north. */
inline TelescopeSettings anySite() {
    TelescopeSettings telescope;
    telescope.eastLongitude = *between(-180.0, 180.0).as("east longitude");
    telescope.latitude = *between(-70.0, 70.0).as("latitude");
    telescope.height = *between(0.0, 5000.0).as("height");
    return telescope;
}

/** A pointing at an altitude of 30 degrees or more, of any position angle, on a plate that is shifted and turned. */
inline Pointing anyPointing(bool airless) {
    Pointing pointing;
    pointing.telescope = anySite();
    pointing.conditions = anyConditions(airless);
    const double azimuth = *anyAngle().as("azimuth");
    const double zenithDistance = *between(0.0, rad(60.0)).as("zenith distance");
    pointing.centre = placeObservedAt("A", azimuth, zenithDistance, pointing.telescope, pointing.conditions);
    pointing.positionAngle = *anyAngle().as("position angle");
    pointing.plate = {*between(-20.0, 20.0).as("x0"), *between(-20.0, 20.0).as("y0"), *between(-180.0, 180.0).as("r0")};
    return pointing;
}

/** A field that is seen at an hour angle and a declination, radians, in a night without air. */
inline pos::FocalPlane seenAt(double hourAngle, double dec, const TelescopeSettings& telescope) {
    Pointing pointing;
    pointing.telescope = telescope;
    pointing.centre = placeObservedAt("H", hourAngle, dec, telescope, kAirlessNight);
    return focalPlaneOf(pointing);
}

/** A place within a degree of a pointing's centre. */
inline pos::Astrometric placeInField(const pos::Astrometric& centre) {
    const auto [xi, eta] = inDisc(std::tan(rad(1.0)));
    pos::Astrometric place{};
    eraTpsts(xi, eta, centre.ra, centre.dec, &place.ra, &place.dec);
    return place;
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
