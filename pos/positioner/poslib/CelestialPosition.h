/**
 * @file
 * Positions on the sky in their reference systems, and the conversions between them.
 *
 * All angles are radians. All types are plain values: nothing is checked on construction, and values outside their
 * usual range reach the astronomy library as they are. A date is a Modified Julian Date on the TAI scale; the
 * conversions turn it into the two-part TT Julian Date that the library takes.
 */
#ifndef POS_CELESTIALPOSITION_H
#define POS_CELESTIALPOSITION_H

#include <erfa.h>
#include <utility>

namespace pos {

/** Zero point of the Modified Julian Date, as a Julian Date: the first part of every two-part date. */
inline constexpr double kMjdZero = 2400000.5;

/** Tangent-plane (gnomonic) standard coordinates about the tangent point of a pointing. */
struct StandardCoordinates {
    double xi;  ///< east-positive coordinate, radians
    double eta; ///< north-positive coordinate, radians
};

struct CIRS;

/**
 * The part of the conversions between astrometric and CIRS places that depends on nothing but the date: precession,
 * nutation, the Earth's position and velocity (ERFA eraApci13). Computing it takes a hundred times as long as a
 * conversion.
 */
struct DateContext {
    /** @param mjdTai MJD, TAI */
    explicit DateContext(double mjdTai);

    double date;        ///< MJD, TAI
    eraASTROM astrom{}; ///< the library's context for the Earth's centre, without a site or an atmosphere
};

/** An astrometric place: ICRS axes, space motion applied up to the date of observation. */
struct Astrometric {
    double ra;  ///< right ascension, radians
    double dec; ///< declination, radians

    /**
     * The apparent place at a date: light deflection, aberration, precession-nutation (ERFA eraAtci13, with no
     * proper motion, parallax or radial velocity).
     *
     * @param date date of observation, MJD, TAI
     * @return the CIRS place; right ascension in [0, 2π)
     */
    CIRS toCirs(double date) const;

    /** The same, to the bit, at the date of a context. */
    CIRS toCirs(const DateContext& context) const;
};

/** A place in the Celestial Intermediate Reference System: apparent, with the CIO as origin of right ascension. */
struct CIRS {
    double ra;  ///< right ascension from the CIO, radians
    double dec; ///< declination, radians

    /**
     * The inverse of Astrometric::toCirs (ERFA eraAtic13, an iteration good to about a microarcsecond).
     *
     * @param date date of observation, MJD, TAI
     * @return the astrometric place; right ascension in [0, 2π)
     */
    Astrometric toAstrometric(double date) const;

    /** The same, to the bit, at the date of a context. */
    Astrometric toAstrometric(const DateContext& context) const;
};

/** A catalogue position with its space motion. */
struct ICRS {
    double ra;       ///< right ascension, radians
    double dec;      ///< declination, radians
    double epoch;    ///< Julian epoch of the position, years; 0 or less means none, and no space motion is applied
    double pmRa;     ///< proper motion in right ascension, including cos(declination), mas/yr
    double pmDec;    ///< proper motion in declination, mas/yr
    double parallax; ///< arcsec
    double rv;       ///< radial velocity, km/s, positive receding

    /**
     * The proper motion in the form that the library's space-motion routines take.
     *
     * @return rates of change of right ascension (not times cos(declination)) and of declination, radians per Julian
     *     year. Within a milliarcsecond of a pole the rate of right ascension is exactly 0.
     */
    std::pair<double, double> pmAsRadYr() const;

    /**
     * The astrometric place at a date (ERFA eraPmsafe): space motion alone.
     *
     * Parallax and radial velocity count only through the change of the proper motion with the distance; the annual
     * parallax, which follows the Earth along its orbit, is left out here and in toCirs. A position without an epoch is
     * returned unchanged, whatever its motions.
     *
     * @param date date of observation, MJD, TAI
     * @return the place with the space motion from the position's epoch to the date applied; its right ascension in
     *     [0, 2π), unless the position has no epoch
     */
    Astrometric toAstrometric(double date) const;
};

} // namespace pos

#endif
