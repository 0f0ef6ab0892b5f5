/**
 * @file
 * The targets of a configured document as a table for other tools.
 */
#ifndef POS_EXPORTEDTARGETS_H
#define POS_EXPORTEDTARGETS_H

#include "SatelliteFibre.h"
#include "Veko.h"
#include "exportColumns.h"

#include <QByteArray>
#include <QDomDocument>
#include <QString>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace pos {

/** The fibres of a bundle by identifier. */
using BundleFibres = std::map<std::uint32_t, SatelliteFibre<Veko::VekoCentre>>;

/** A place on the sky in the ICRS as texts, degrees. */
struct PlaceText {
    QString ra;
    QString dec;
};

/** A row of the table. */
struct ExportedTarget {
    /** Of each column; null where the document has none. A number is as in the document, or "NaN", "+Inf", "-Inf". */
    std::vector<QString> values;
    int field; ///< from 1
    QString kind;
    QString fibreKind; ///< null for a target without a fibre
    QString spaxel;
    QString name;
    /** At the date of the observation, with the document's own digits where the target does not move. */
    std::optional<PlaceText> place;
    QString fibreRadius; ///< of a fibre, arcseconds; null where it is not known
};

/** The table, and what it is of. */
struct ExportedTargets {
    QString file;
    QString observation;         ///< its name
    std::optional<double> epoch; ///< of the observation, Julian years
    std::vector<ExportColumn> columns;
    std::vector<ExportedTarget> targets; ///< in document order
};

/** The kinds of targets. */
inline const QString kScienceTarget = QStringLiteral("science target");
inline const QString kGuideStar = QStringLiteral("guide star");
inline const QString kFibre = QStringLiteral("fibre"); ///< what a fibre sees
inline const QString kOtherTarget = QStringLiteral("target");

/**
 * Takes the targets of all fields, those in groups too, from a configured document. Beside the attributes that the
 * schema names, each other attribute, and each attribute and text of an element in a target, has a column of its own,
 * as "photometry.band".
 *
 * @param file name of the document
 * @param fibres of the bundle
 * @throw std::runtime_error for a field without science target or guide star, a number that is none, and targets with
 *     more than 256 further columns
 */
ExportedTargets exportedTargets(const QDomDocument& document, const std::string& file, const BundleFibres& fibres);

/** Regions for ds9, in UTF-8: a circle for each fibre, a point for each target that a user gave. */
QByteArray exportDs9(const ExportedTargets& table);

/** A VOTable 1.4. */
QByteArray exportVotable(const ExportedTargets& table);

/** CSV by RFC 4180, in UTF-8; the names in the first line end in the unit: "targra [deg]". */
QByteArray exportCsv(const ExportedTargets& table);

/**
 * JSON: {"version": 1, "file", "observation", "epoch", "columns": [{"name", "unit", "description"}], "targets": […]};
 * each target is an object of its columns' values.
 */
QByteArray exportJson(const ExportedTargets& table);

} // namespace pos

#endif
