/**
 * A pointing from values: the telescope, the optics and the plates of the embedded configuration, and what the
 * astronomy library makes of the same values.
 */
#ifndef POS_TESTS_POINTING_H
#define POS_TESTS_POINTING_H

#include "FocalPlane.h"
#include "PosConfig.h"

#include <erfa.h>
#include <vector>

/** π, written out so that no expected value depends on the constant under test. */
inline constexpr double kTestPi = 3.141592653589793;

/** Degrees to radians, in the order of the configuration's readers. */
constexpr double rad(double degrees) {
    return degrees / 180 * kTestPi;
}

/** The embedded configuration. */
inline pos::PosConfig embeddedConfig() {
    return {":/configure.xml", pos::PosConfig::XML};
}

/** The telescope of the embedded configuration. */
inline constexpr pos::Telescope kTelescope = {.eastLongitude = rad(-17.881639),
                                              .latitude = rad(28.760583),
                                              .height = 2332.0,
                                              .horizonLimit = rad(5.0),
                                              .rotatorLowLimit = rad(-135.0),
                                              .rotatorHighLimit = rad(135.0),
                                              .optimumPlateA = rad(-25.0),
                                              .optimumPlateB = rad(25.0)};

/** The same at another latitude, degrees. */
constexpr pos::Telescope telescopeAt(double latitudeDeg) {
    pos::Telescope telescope = kTelescope;
    telescope.latitude = rad(latitudeDeg);
    return telescope;
}

/** The optical model of the embedded focal-plane map. */
inline constexpr pos::Optics kOptics = {11724.24, 11724.24, 202.841, 3.0191, -0.0995944};

/** Its plates, neither shifted nor turned, with VEKO in use. */
inline constexpr pos::PlateGeometry kPlates = {{}, pos::VEKO, 0.0};

/** A winter night: MJD (TAI), kelvin, millibar, relative humidity. */
inline constexpr pos::Conditions kWinterNight = {57389.125, 283.15, 770.0, 0.2};
/** The same without air. */
inline constexpr pos::Conditions kAirlessNight = {57389.125, 283.15, 0.0, 0.0};

/** A field centre that culminates near the zenith of the site. */
inline constexpr pos::Astrometric kHighField = {rad(150.0), rad(30.0)};

/** A pointing; with it, optics and plates are in force. @param positionAngle radians */
inline pos::FocalPlane pointedAt(pos::Astrometric centre, double positionAngle = 0.0,
                                 const pos::Conditions& conditions = kWinterNight,
                                 const pos::Telescope& telescope = kTelescope,
                                 const pos::PlateGeometry& plates = kPlates) {
    return {telescope, kOptics, plates, centre, positionAngle, conditions};
}

/** The library's own context for all conversions at once. */
inline eraASTROM libraryContext(const pos::Conditions& conditions, const pos::Telescope& telescope = kTelescope) {
    double utc1 = 0.0;
    double utc2 = 0.0;
    eraTaiutc(2400000.5, conditions.epoch, &utc1, &utc2);
    eraASTROM context{};
    double equationOfOrigins = 0.0;
    eraApco13(utc1, utc2, 0.0, telescope.eastLongitude, telescope.latitude, telescope.height, 0.0, 0.0,
              conditions.pressure, conditions.temperature - 273.15, conditions.relativeHumidity, 0.6, &context,
              &equationOfOrigins);
    return context;
}

/** An observed place in the library's terms, radians. */
struct ObservedPlace {
    double azimuth = 0.0;
    double zenithDistance = 0.0;
    double hourAngle = 0.0;
    double dec = 0.0;
    double ra = 0.0;
};

inline ObservedPlace libraryObserved(pos::CIRS place, eraASTROM context) {
    ObservedPlace seen;
    eraAtioq(place.ra, place.dec, &context, &seen.azimuth, &seen.zenithDistance, &seen.hourAngle, &seen.dec, &seen.ra);
    return seen;
}

/** The apparent place of an astrometric one by the library: TT from TAI, no space motion. */
inline pos::CIRS libraryCirs(pos::Astrometric place, double mjdTai) {
    double tt1 = 0.0;
    double tt2 = 0.0;
    eraTaitt(2400000.5, mjdTai, &tt1, &tt2);
    pos::CIRS cirs{};
    double equationOfOrigins = 0.0;
    eraAtci13(place.ra, place.dec, 0.0, 0.0, 0.0, 0.0, tt1, tt2, &cirs.ra, &cirs.dec, &equationOfOrigins);
    return cirs;
}

/** And back. */
inline pos::Astrometric libraryAstrometric(pos::CIRS cirs, double mjdTai) {
    double tt1 = 0.0;
    double tt2 = 0.0;
    eraTaitt(2400000.5, mjdTai, &tt1, &tt2);
    pos::Astrometric place{};
    double equationOfOrigins = 0.0;
    eraAtic13(cirs.ra, cirs.dec, tt1, tt2, &place.ra, &place.dec, &equationOfOrigins);
    return place;
}

/**
 * The place on the sky that stands at an hour angle and a declination ("H"), or at an azimuth and a zenith distance
 * ("A"), as seen from the telescope; radians.
 */
inline pos::Astrometric placeObservedAt(const char* type, double first, double second,
                                        const pos::Conditions& conditions = kAirlessNight,
                                        const pos::Telescope& telescope = kTelescope) {
    eraASTROM context = libraryContext(conditions, telescope);
    pos::CIRS cirs{};
    eraAtoiq(type, first, second, &context, &cirs.ra, &cirs.dec);
    return libraryAstrometric(cirs, conditions.epoch);
}

/** A pointing at a field that is seen at an hour angle and a declination, radians, in a night without air. */
inline pos::FocalPlane seenAt(double hourAngle, double dec, const pos::Telescope& telescope,
                              double positionAngle = 0.0) {
    return pointedAt(placeObservedAt("H", hourAngle, dec, kAirlessNight, telescope), positionAngle, kAirlessNight,
                     telescope);
}

/** A place on the plate on neither axis. */
inline const pos::PlateCoordinates kPlatePlace(30.0, -80.0);

/** What follows from a pointing: where its centre stands, and the ways of one place to the sky and to the plate. */
inline std::vector<double> derivedValues(const pos::FocalPlane& pointing) {
    const pos::CIRS cirs = pointing.xyToCirs(kPlatePlace);
    const pos::Astrometric place = cirs.toAstrometric(pointing.dateContext());
    const pos::StandardCoordinates standard = pointing.cirsToStd(cirs);
    const pos::PlateCoordinates plate = pointing.cirsToXy(cirs);
    return {pointing.azimuth(),
            pointing.hourAngle(),
            pointing.tangentDec(),
            pointing.zenithDistance(),
            pointing.parallacticAngle(),
            cirs.ra,
            cirs.dec,
            place.ra,
            place.dec,
            standard.xi,
            standard.eta,
            plate.x,
            plate.y};
}

/** The same by the library, with the optics and the plates in force. */
inline std::vector<double> libraryValues(pos::Astrometric centre, const pos::Conditions& conditions,
                                         const pos::Telescope& telescope = kTelescope) {
    eraASTROM context = libraryContext(conditions, telescope);
    const pos::CIRS centreCirs = libraryCirs(centre, conditions.epoch);
    ObservedPlace tangent = libraryObserved(centreCirs, context);
    if (tangent.zenithDistance > kTestPi / 2 - telescope.horizonLimit) {
        context.refa = context.refb = 0.0;
        tangent = libraryObserved(centreCirs, context);
    }
    const pos::FocalPlaneCoordinates focal = kPlatePlace;
    pos::StandardCoordinates standard = focal;
    double ra = 0.0;
    double dec = 0.0;
    eraTpsts(standard.xi, standard.eta, tangent.ra, tangent.dec, &ra, &dec);
    pos::CIRS cirs{};
    eraAtoiq("R", ra, dec, &context, &cirs.ra, &cirs.dec);
    const pos::Astrometric place = libraryAstrometric(cirs, conditions.epoch);
    const ObservedPlace seen = libraryObserved(cirs, context);
    eraTpxes(seen.ra, seen.dec, tangent.ra, tangent.dec, &standard.xi, &standard.eta);
    const pos::FocalPlaneCoordinates back = standard;
    const pos::PlateCoordinates plate = back;
    return {tangent.azimuth,
            tangent.hourAngle,
            tangent.dec,
            tangent.zenithDistance,
            eraHd2pa(tangent.hourAngle, tangent.dec, telescope.latitude),
            cirs.ra,
            cirs.dec,
            place.ra,
            place.dec,
            standard.xi,
            standard.eta,
            plate.x,
            plate.y};
}

/** A pointing in the terms of a test: what the sky and the mount look like. */
struct Pointing {
    pos::Telescope telescope = kTelescope;
    pos::Conditions conditions = kAirlessNight;
    pos::Astrometric centre{};
    double positionAngle = 0.0; ///< radians
    pos::OpticalAxis plate{};   ///< of all three plates
};

/** The model of a pointing; with it, optics and plates are in force. */
inline pos::FocalPlane focalPlaneOf(const Pointing& pointing) {
    const pos::OpticalAxis axis = pointing.plate;
    return pointedAt(pointing.centre, pointing.positionAngle, pointing.conditions, pointing.telescope,
                     {{axis, axis, axis}, pos::VEKO, axis.r0});
}

/** Where a catalogue position lies on the plate in use. */
inline pos::PlateCoordinates plateOf(const pos::FocalPlane& focalPlane, double date, const pos::ICRS& position) {
    return focalPlane.cirsToXy(position.toAstrometric(date).toCirs(date));
}

/** The angle between two directions, radians. */
template <typename Place> double separation(const Place& a, const Place& b) {
    return eraSeps(a.ra, a.dec, b.ra, b.dec);
}

#endif
