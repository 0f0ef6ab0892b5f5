/**
 * @file
 * The columns of the table of a document's targets.
 */
#ifndef POS_EXPORTCOLUMNS_H
#define POS_EXPORTCOLUMNS_H

#include <QDomElement>
#include <QString>
#include <cstddef>
#include <map>
#include <set>
#include <vector>

namespace pos {

/** What the values of a column are. */
enum class ColumnType { Text, Integer, Number };

/** A column of the table. */
struct ExportColumn {
    QString name;
    ColumnType type = ColumnType::Text;
    QString unit = {};        ///< by the VOUnits standard; empty for none
    QString ucd = {};         ///< a word of UCD1+ for what the values are; may be empty
    QString description = {}; ///< sentences; may be empty
};

/** What tells how the radius of a fibre is found. */
inline const QString kFibreRadiusMeaning = QStringLiteral(
    "half the distance between neighbouring fibres, the middle one of the field, since the definition of "
    "the bundle does not tell the size of a fibre");

/** All that stands in a target, by its path: "@targra", "photometry/@band", "photometry[2]/text()". */
std::map<QString, QString> valuesByPath(const QDomElement& target);

/** The columns of a document, and where each value of a target belongs. */
class Columns {
public:
    /** @throw std::runtime_error for targets with more than 256 further columns */
    explicit Columns(const std::vector<QDomElement>& targets);

    const std::vector<ExportColumn>& all() const {
        return columns_;
    }

    std::size_t placeOf(const QString& path) const {
        return places_.at(path);
    }

private:
    std::set<QString> furtherPaths(const std::vector<QDomElement>& targets) const;
    QString freeName(QString name) const;

    std::vector<ExportColumn> columns_;
    std::map<QString, std::size_t> places_; ///< by path
};

} // namespace pos

#endif
