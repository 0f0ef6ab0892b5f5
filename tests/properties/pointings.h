#ifndef POS_TESTS_POINTINGS_H
#define POS_TESTS_POINTINGS_H

#include "generators.h"
#include "pointing.h"

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
inline pos::Telescope anySite() {
    pos::Telescope telescope = kTelescope;
    telescope.eastLongitude = rad(*between(-180.0, 180.0).as("east longitude"));
    telescope.latitude = rad(*between(-70.0, 70.0).as("latitude"));
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
    pointing.centre = placeObservedAt("A", azimuth, zenithDistance, pointing.conditions, pointing.telescope);
    pointing.positionAngle = *anyAngle().as("position angle");
    pointing.plate = {*between(-20.0, 20.0).as("x0"), *between(-20.0, 20.0).as("y0"),
                      rad(*between(-180.0, 180.0).as("r0"))};
    return pointing;
}

/** A place within a degree of a pointing's centre. */
inline pos::Astrometric placeInField(const pos::Astrometric& centre) {
    const auto [xi, eta] = inDisc(std::tan(rad(1.0)));
    pos::Astrometric place{};
    eraTpsts(xi, eta, centre.ra, centre.dec, &place.ra, &place.dec);
    return place;
}

#endif
