#ifndef POS_TESTS_TELESCOPE_H
#define POS_TESTS_TELESCOPE_H

#include "CelestialPosition.h"
#include "Conditions.h"
#include "PosConfig.h"
#include "TemporaryFolder.h"

#include <erfa.h>
#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>
#include <string>

/** π, written out so that no expected value depends on the constant under test. */
inline constexpr double kTestPi = 3.141592653589793;

/** Degrees to radians, in the order of the configuration's readers. */
constexpr double rad(double degrees) {
    return degrees / 180 * kTestPi;
}

/** The telescope of a test's own configuration file: degrees and metres, as they stand in the file. */
struct TelescopeSettings {
    double eastLongitude = -17.881639;
    double latitude = 28.760583;
    double height = 2332.0;
    double horizonLimit = 5.0;
    double rotatorOffset = 0.0;
    double rotatorLowLimit = -135.0;
    double rotatorHighLimit = 135.0;
    double optimumPlateA = -25.0;
    double optimumPlateB = 25.0;
    std::string focalPlaneMap = ":/focal_plane_map.xml";
};

/** A configuration that was written to disk with these settings and loaded from there. */
inline pos::PosConfig telescopeConfig(const TelescopeSettings& telescope = {}) {
    std::ostringstream text;
    text << std::setprecision(17) << "<configure datamver=\"8.00\"><telescope>"
         << "<east_longitude>" << telescope.eastLongitude << "</east_longitude>"
         << "<latitude>" << telescope.latitude << "</latitude>"
         << "<height>" << telescope.height << "</height>"
         << "<horizon_limit>" << telescope.horizonLimit << "</horizon_limit>"
         << "<focal_plane_map>" << telescope.focalPlaneMap << "</focal_plane_map>"
         << "<rotator_low_limit>" << telescope.rotatorLowLimit << "</rotator_low_limit>"
         << "<rotator_high_limit>" << telescope.rotatorHighLimit << "</rotator_high_limit>"
         << "<optimum_rotator_angle><plate_a>" << telescope.optimumPlateA << "</plate_a>"
         << "<plate_b>" << telescope.optimumPlateB << "</plate_b></optimum_rotator_angle>"
         << "<rotator_offset>" << telescope.rotatorOffset << "</rotator_offset>"
         << "</telescope></configure>";
    const TemporaryFolder folder;
    return {folder.write("configure.xml", text.str()).c_str(), pos::PosConfig::XML};
}

/** A winter night: MJD (TAI), kelvin, millibar, relative humidity. */
inline constexpr pos::Conditions kWinterNight = {57389.125, 283.15, 770.0, 0.2};
/** The same without air. */
inline constexpr pos::Conditions kAirlessNight = {57389.125, 283.15, 0.0, 0.0};

/** The library's own astrometry context for a site, a date on the TAI scale and the weather. */
inline eraASTROM libraryContext(const TelescopeSettings& telescope, const pos::Conditions& conditions) {
    double utc1 = 0.0;
    double utc2 = 0.0;
    EXPECT_EQ(eraTaiutc(2400000.5, conditions.epoch, &utc1, &utc2), 0);
    eraASTROM context{};
    double equationOfOrigins = 0.0;
    EXPECT_EQ(eraApco13(utc1, utc2, 0.0, rad(telescope.eastLongitude), rad(telescope.latitude), telescope.height, 0.0,
                        0.0, conditions.pressure, conditions.temperature - 273.15, conditions.relativeHumidity, 0.6,
                        &context, &equationOfOrigins),
              0);
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

/**
 * The place on the sky that stands at an hour angle and a declination ("H"), or at an azimuth and a zenith distance
 * ("A"), as seen from the telescope; radians.
 */
inline pos::Astrometric placeObservedAt(const char* type, double first, double second,
                                        const TelescopeSettings& telescope, const pos::Conditions& conditions) {
    eraASTROM context = libraryContext(telescope, conditions);
    pos::CIRS cirs{};
    eraAtoiq(type, first, second, &context, &cirs.ra, &cirs.dec);
    double tt1 = 0.0;
    double tt2 = 0.0;
    eraTaitt(2400000.5, conditions.epoch, &tt1, &tt2);
    pos::Astrometric place{};
    double equationOfOrigins = 0.0;
    eraAtic13(cirs.ra, cirs.dec, tt1, tt2, &place.ra, &place.dec, &equationOfOrigins);
    return place;
}

#endif
