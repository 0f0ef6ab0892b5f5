/**
 * @file
 * Names of the elements and attributes of the system's documents, and the marker of a missing value.
 */
#ifndef POS_XMLKEYWORDS_H
#define POS_XMLKEYWORDS_H

#include <QString>

/** Element names. */
namespace pos::tag {

inline const QString observation = QStringLiteral("observation");
inline const QString configure = QStringLiteral("configure");
inline const QString conditions = QStringLiteral("conditions");
inline const QString hourAngleLimits = QStringLiteral("hour_angle_limits");
inline const QString fields = QStringLiteral("fields");
inline const QString field = QStringLiteral("field");
inline const QString group = QStringLiteral("group");
inline const QString target = QStringLiteral("target");
inline const QString photometry = QStringLiteral("photometry");
inline const QString avoidanceList = QStringLiteral("avoidance_list");
inline const QString mask = QStringLiteral("mask");
inline const QString telescope = QStringLiteral("telescope");
inline const QString focalPlaneMap = QStringLiteral("focal_plane_map");
inline const QString opticalAxis = QStringLiteral("optical_axis");
inline const QString plateA = QStringLiteral("PLATE_A");
inline const QString plateB = QStringLiteral("PLATE_B");
inline const QString veko = QStringLiteral("VEKO");
inline const QString distortionCoefficients = QStringLiteral("distortion_coefficients");
inline const QString fibre = QStringLiteral("fibre");

} // namespace pos::tag

/** Attribute names. */
namespace pos::attr {

inline const QString datamver = QStringLiteral("datamver");
inline const QString configureVersion = QStringLiteral("configure_version");
inline const QString pa = QStringLiteral("pa");
inline const QString latest = QStringLiteral("latest");
inline const QString earliest = QStringLiteral("earliest");

inline const QString epoch = QStringLiteral("epoch");
inline const QString temperature = QStringLiteral("temperature");
inline const QString pressure = QStringLiteral("pressure");
inline const QString relativeHumidity = QStringLiteral("relative_humidity");
inline const QString tlr = QStringLiteral("tlr");
inline const QString ha = QStringLiteral("ha");

inline const QString raD = QStringLiteral("RA_d");
inline const QString decD = QStringLiteral("Dec_d");
inline const QString radius = QStringLiteral("radius");

inline const QString targra = QStringLiteral("targra");
inline const QString targdec = QStringLiteral("targdec");
inline const QString targepoch = QStringLiteral("targepoch");
inline const QString targpmra = QStringLiteral("targpmra");
inline const QString targpmdec = QStringLiteral("targpmdec");
inline const QString targparal = QStringLiteral("targparal");
inline const QString targrv = QStringLiteral("targrv");

inline const QString targname = QStringLiteral("targname");
inline const QString targsrvy = QStringLiteral("targsrvy");
inline const QString targprio = QStringLiteral("targprio");
inline const QString targuse = QStringLiteral("targuse");
inline const QString fibreid = QStringLiteral("fibreid");
inline const QString configid = QStringLiteral("configid");
inline const QString automatic = QStringLiteral("automatic");
inline const QString cname = QStringLiteral("cname");
inline const QString ifuPa = QStringLiteral("ifu_pa");
inline const QString ifuSpaxel = QStringLiteral("ifu_spaxel");
inline const QString targcat = QStringLiteral("targcat");
inline const QString targclass = QStringLiteral("targclass");
inline const QString targprog = QStringLiteral("targprog");
inline const QString targid = QStringLiteral("targid");
inline const QString targx = QStringLiteral("targx");
inline const QString targy = QStringLiteral("targy");

inline const QString eastLongitude = QStringLiteral("east_longitude");
inline const QString latitude = QStringLiteral("latitude");
inline const QString height = QStringLiteral("height");
inline const QString focalLength = QStringLiteral("focal_length");
inline const QString nominalFocalLength = QStringLiteral("nominal_focal_length");
inline const QString x0 = QStringLiteral("x0");
inline const QString y0 = QStringLiteral("y0");
inline const QString r0 = QStringLiteral("r0");
inline const QString c1 = QStringLiteral("c1");
inline const QString c3 = QStringLiteral("c3");
inline const QString c5 = QStringLiteral("c5");
inline const QString c7 = QStringLiteral("c7");

inline const QString centreX = QStringLiteral("centre_x");
inline const QString centreY = QStringLiteral("centre_y");
inline const QString orientation = QStringLiteral("orientation");
inline const QString id = QStringLiteral("id");
inline const QString posX = QStringLiteral("pos_x");
inline const QString posY = QStringLiteral("pos_y");
inline const QString fibreName = QStringLiteral("fibre_name");
inline const QString status = QStringLiteral("status");

} // namespace pos::attr

namespace pos {

/** Stands in an attribute whose value has not been filled in. */
inline const QString kMissingValue = QStringLiteral("%%%");

} // namespace pos

#endif
