/**
 * @file
 * All that a report tells of a field definition.
 */
#ifndef POS_REPORT_H
#define POS_REPORT_H

#include "Estimates.h"
#include "PlateCoordinates.h"
#include "ReportedFibre.h"
#include "SkyMask.h"
#include "nightCurves.h"
#include "plannedFields.h"
#include "refractionDrift.h"
#include "soundDocument.h"
#include "windows.h"

#include <QByteArray>
#include <QDate>
#include <QDomDocument>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pos {

/** What a report is asked for. */
struct ReportRequest {
    std::string file; ///< name of the field definition, for messages
    QByteArray bytes; ///< the whole field definition
    std::string configFile;
    Estimates estimates;
    std::optional<QDate> evening; ///< of the night to show; that of the observation without it
    WindowOptions windows;
    double fieldRadius;                   ///< of the check and of the picture of the plate, radians
    double exposure;                      ///< days
    std::vector<std::string> commandLine; ///< the words of the command, to be told
};

/** A place on the sky and on the plate. */
struct ReportedPlace {
    std::string name; ///< UTF-8
    Astrometric sky;  ///< at the date of the observation, radians
    PlateCoordinates plate;
};

/** A region to avoid. */
struct ReportedMask {
    SkyMask mask;
    PlateCoordinates plate{0.0, 0.0}; ///< of its centre
};

/** How the sky lies on the plate: where a small step to the north and to the east leads, mm per radian. */
struct PlateAxes {
    PlateCoordinates north;
    PlateCoordinates east;

    /** Radians of the sky that a millimetre of the plate sees. */
    double radiansPerMm() const {
        return 1 / std::hypot(north.x, north.y);
    }
};

/** A field at the moment of the observation, and in its night. */
struct ReportedField {
    std::string name; ///< UTF-8; empty where the document gives none
    QDomElement element;
    ReportedPlace centre; ///< the middle of the plate
    ReportedPlace science;
    std::uint32_t scienceFibre;
    ReportedPlace guide;
    std::vector<ReportedMask> masks;
    std::vector<ReportedFibre> fibres;
    PlateAxes axes;
    double fieldRadiusMm; ///< on the plate
    FocalPlane pointing;  ///< at the moment
    std::vector<ColourShift> colours;
    Astrometric followed = {}; ///< the place whose night this is
    NightWindows windows = {};
    std::vector<NightSample> night = {};
};

/** All that a page tells. */
struct Report {
    ReportRequest request;
    bool wasConfigured = false; ///< whether the document came with the targets of the fibres
    QDomDocument document = {};
    std::string observation = {}; ///< its name, UTF-8; empty where the document gives none
    Telescope telescope = {};
    Conditions conditions = {}; ///< at the moment of the observation
    Night night = {};
    std::pair<double, double> shown = {}; ///< the part of the night in the pictures, MJD, TAI
    std::vector<ReportedField> fields = {};
    std::vector<CheckedFile> checked = {}; ///< the problems
    std::vector<DocumentRead> documents = {};
};

/**
 * Checks, configures in memory unless that has been done, and looks at the night.
 *
 * The moment is that to which the run comes. Where a night is asked for, and no epoch, it is sought in that night.
 *
 * A configured document is seen as it is; its problems are those of configuring it again.
 *
 * @throw std::runtime_error for one without an epoch; for a night beyond the years 1900 to 2100; what
 *     openSoundInstrument and openSoundDocument throw
 */
Report makeReport(const ReportRequest& request);

} // namespace pos

#endif
