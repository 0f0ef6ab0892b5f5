/**
 * @file
 * Names of the elements and attributes of the system's documents, and the marker of a missing value.
 */
#ifndef POS_XMLKEYWORDS_H
#define POS_XMLKEYWORDS_H

#include <QString>

/** Element names. */
namespace pos::tag {

/// One observation: its "pa" and centre; holds "configure" and "fields".
inline const QString observation = QStringLiteral("observation");
/// What the run knows about the observation, and what it finds out.
inline const QString configure = QStringLiteral("configure");
/// When, and through which air.
inline const QString conditions = QStringLiteral("conditions");
/// Hour angles between which the first field can be observed; written.
inline const QString hourAngleLimits = QStringLiteral("hour_angle_limits");
/// Holds the fields.
inline const QString fields = QStringLiteral("fields");
/// One pointing: its centre, targets, groups and masks.
inline const QString field = QStringLiteral("field");
/// Targets that belong together; groups may be nested.
inline const QString group = QStringLiteral("group");
/// One object, or what one fibre of the bundle sees.
inline const QString target = QStringLiteral("target");
/// A target's magnitudes; carried along, but dropped from a copy of use C.
inline const QString photometry = QStringLiteral("photometry");
/// Holds the masks of a field.
inline const QString avoidanceList = QStringLiteral("avoidance_list");
/// A circle in which no fibre should look at the sky.
inline const QString mask = QStringLiteral("mask");
/// The site; written.
inline const QString telescope = QStringLiteral("telescope");
/// From the sky to the focal plane: document element of the map, and written.
inline const QString focalPlaneMap = QStringLiteral("focal_plane_map");
/// Holds one element for each plate.
inline const QString opticalAxis = QStringLiteral("optical_axis");
/// Where the optical axis meets plate A.
inline const QString plateA = QStringLiteral("PLATE_A");
/// Where the optical axis meets plate B.
inline const QString plateB = QStringLiteral("PLATE_B");
/// Where the optical axis meets the VEKO plate.
inline const QString veko = QStringLiteral("VEKO");
/// The polynomial from field angle to radius.
inline const QString distortionCoefficients = QStringLiteral("distortion_coefficients");
/// One fibre of the bundle definition.
inline const QString fibre = QStringLiteral("fibre");

} // namespace pos::tag

/** Attribute names. */
namespace pos::attr {

/// Data model version; every document element carries it.
inline const QString datamver = QStringLiteral("datamver");
/// Version of the program that wrote the document.
inline const QString configureVersion = QStringLiteral("configure_version");
/// Position angle of the observation, degrees.
inline const QString pa = QStringLiteral("pa");
/// The smaller of the two hour angles, hours.
inline const QString latest = QStringLiteral("latest");
/// The larger of the two hour angles, hours.
inline const QString earliest = QStringLiteral("earliest");

/// Julian epoch of the observation, years.
inline const QString epoch = QStringLiteral("epoch");
/// Ambient temperature, kelvin.
inline const QString temperature = QStringLiteral("temperature");
/// Ambient pressure, millibar.
inline const QString pressure = QStringLiteral("pressure");
/// Relative humidity, 0 to 1.
inline const QString relativeHumidity = QStringLiteral("relative_humidity");
/// Tropospheric lapse rate, K/m; written, never read.
inline const QString tlr = QStringLiteral("tlr");
/// Hour angle of the field centre, hours.
inline const QString ha = QStringLiteral("ha");

/// Right ascension of a centre, degrees.
inline const QString raD = QStringLiteral("RA_d");
/// Declination of a centre, degrees.
inline const QString decD = QStringLiteral("Dec_d");
/// A mask's radius, as the document states it.
inline const QString radius = QStringLiteral("radius");

/// Right ascension, ICRS, degrees.
inline const QString targra = QStringLiteral("targra");
/// Declination, ICRS, degrees.
inline const QString targdec = QStringLiteral("targdec");
/// Julian epoch of the position, years.
inline const QString targepoch = QStringLiteral("targepoch");
/// Proper motion in right ascension times cos(declination), mas/yr.
inline const QString targpmra = QStringLiteral("targpmra");
/// Proper motion in declination, mas/yr.
inline const QString targpmdec = QStringLiteral("targpmdec");
/// Parallax: read as arcseconds, written in milliarcseconds.
inline const QString targparal = QStringLiteral("targparal");
/// Radial velocity, km/s, positive receding.
inline const QString targrv = QStringLiteral("targrv");

/// The target's name, in every message about it.
inline const QString targname = QStringLiteral("targname");
/// Survey to which the target belongs.
inline const QString targsrvy = QStringLiteral("targsrvy");
/// Priority, not negative.
inline const QString targprio = QStringLiteral("targprio");
/// One letter, see TargetUse.
inline const QString targuse = QStringLiteral("targuse");
/// Fibre of the target; negative for a fibre that is not enabled.
inline const QString fibreid = QStringLiteral("fibreid");
/// Configure target id, unique in a field.
inline const QString configid = QStringLiteral("configid");
/// 1 for a target that the system has made, else 0.
inline const QString automatic = QStringLiteral("automatic");
/// A name given elsewhere; carried along, "%%%" in a new target.
inline const QString cname = QStringLiteral("cname");
/// Position angle of the integral-field unit, degrees.
inline const QString ifuPa = QStringLiteral("ifu_pa");
/// Name of the spaxel.
inline const QString ifuSpaxel = QStringLiteral("ifu_spaxel");
/// Catalogue; carried along, empty in a new target.
inline const QString targcat = QStringLiteral("targcat");
/// Class; carried along, "UNKNOWN" in a new target, empty in one of use S.
inline const QString targclass = QStringLiteral("targclass");
/// Programme; carried along, empty in a new target.
inline const QString targprog = QStringLiteral("targprog");
/// Id in the catalogue; carried along, empty in a new target.
inline const QString targid = QStringLiteral("targid");
/// Position on the plate, mm.
inline const QString targx = QStringLiteral("targx");
/// Position on the plate, mm.
inline const QString targy = QStringLiteral("targy");

/// Longitude of the site, degrees, east positive.
inline const QString eastLongitude = QStringLiteral("east_longitude");
/// Latitude of the site, degrees.
inline const QString latitude = QStringLiteral("latitude");
/// Height of the site above mean sea level, metres.
inline const QString height = QStringLiteral("height");
/// Focal length, mm: nominal in a map, in use as written.
inline const QString focalLength = QStringLiteral("focal_length");
/// Focal length for which the polynomial holds, mm; written.
inline const QString nominalFocalLength = QStringLiteral("nominal_focal_length");
/// Plate position of the optical axis, mm.
inline const QString x0 = QStringLiteral("x0");
/// Plate position of the optical axis, mm.
inline const QString y0 = QStringLiteral("y0");
/// Rotation of the plate: degrees in a map, radians as written.
inline const QString r0 = QStringLiteral("r0");
/// Coefficient, mm/degree.
inline const QString c1 = QStringLiteral("c1");
/// Coefficient, mm/degree³.
inline const QString c3 = QStringLiteral("c3");
/// Coefficient, mm/degree⁵.
inline const QString c5 = QStringLiteral("c5");
/// Without effect; written as 0.
inline const QString c7 = QStringLiteral("c7");

/// Plate position of the bundle's centre, mm.
inline const QString centreX = QStringLiteral("centre_x");
/// Plate position of the bundle's centre, mm.
inline const QString centreY = QStringLiteral("centre_y");
/// Rotation of the bundle about its centre, degrees.
inline const QString orientation = QStringLiteral("orientation");
/// Identifier of a fibre, 0 to 2147483647.
inline const QString id = QStringLiteral("id");
/// Offset from the bundle's centre before its rotation, mm.
inline const QString posX = QStringLiteral("pos_x");
/// Offset from the bundle's centre before its rotation, mm.
inline const QString posY = QStringLiteral("pos_y");
/// Name of the spaxel.
inline const QString fibreName = QStringLiteral("fibre_name");
/// A word of FibreStatus; "enabled" where it is absent.
inline const QString status = QStringLiteral("status");

} // namespace pos::attr

namespace pos {

/** Stands in an attribute whose value has not been filled in. */
inline const QString kMissingValue = QStringLiteral("%%%");

} // namespace pos

#endif
