/**
 * @file
 * Where Sun and Moon stand, and how much air is in the way.
 */
#ifndef POS_SUNANDMOON_H
#define POS_SUNANDMOON_H

#include "CelestialPosition.h"

namespace pos {

struct Telescope;

/** A body of the sky as a site sees it, without refraction. */
struct BodyPlace {
    CIRS place;      ///< its apparent place, from the site
    double azimuth;  ///< radians, from north through east, 0 to 2π
    double altitude; ///< radians above the horizon
};

/**
 * The middle of the Sun.
 *
 * Where the Earth's place in the context puts it (ERFA eraEpv00), with aberration and the parallax of the site: good to
 * an arcsecond from 1900 to 2100.
 *
 * @param site longitude, latitude and height are used; UT1 is taken for UTC, and the pole does not move
 * @param context the date
 */
BodyPlace sunFrom(const Telescope& site, const DateContext& context);

/**
 * The middle of the Moon.
 *
 * ERFA eraMoon98 for the Moon from the Earth's centre, then from the site, which is up to one degree. The second that
 * its light takes is left out, together with the aberration that makes up for most of it: good to some 10 arcsec (the
 * ephemeris's own limit) from 1900 to 2100.
 *
 * @param site longitude, latitude and height are used; UT1 is taken for UTC, and the pole does not move
 * @param context the date
 */
BodyPlace moonFrom(const Telescope& site, const DateContext& context);

/**
 * The airmass, by the formula of K. A. Pickering, DIO 12, 1, 20 (2002), that holds down to the horizon.
 *
 * @param altitude observed, radians
 * @return some 38 at 0, 1 at π/2; NaN below 0
 */
double airmass(double altitude);

} // namespace pos

#endif
