#include "exportColumns.h"

#include "documentVocabulary.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

namespace pos {

namespace {

/** More columns than documents of people have, and fewer than would make an output too large for memory. */
constexpr std::size_t kMostFurtherColumns = 256;

/** An attribute that the schema of field definitions knows, with what the schema does not tell. */
struct KnownColumn {
    const char* attribute;
    ColumnType type;
    const char* ucd;
};

constexpr std::array kKnownColumns = {
    KnownColumn{"targname", ColumnType::Text, "meta.id;meta.main"},
    KnownColumn{"targuse", ColumnType::Text, "meta.code.class"},
    KnownColumn{"targra", ColumnType::Number, "pos.eq.ra;meta.main"},
    KnownColumn{"targdec", ColumnType::Number, "pos.eq.dec;meta.main"},
    KnownColumn{"targepoch", ColumnType::Number, "time.epoch"},
    KnownColumn{"targpmra", ColumnType::Number, "pos.pm;pos.eq.ra"},
    KnownColumn{"targpmdec", ColumnType::Number, "pos.pm;pos.eq.dec"},
    KnownColumn{"targparal", ColumnType::Number, "pos.parallax"},
    KnownColumn{"targrv", ColumnType::Number, "spect.dopplerVeloc"},
    KnownColumn{"fibreid", ColumnType::Integer, "meta.id;instr"},
    KnownColumn{"ifu_spaxel", ColumnType::Text, "meta.id;instr"},
    KnownColumn{"ifu_pa", ColumnType::Number, "pos.posAng"},
    KnownColumn{"targx", ColumnType::Number, "pos.cartesian.x;instr"},
    KnownColumn{"targy", ColumnType::Number, "pos.cartesian.y;instr"},
    KnownColumn{"configid", ColumnType::Integer, "meta.id"},
    KnownColumn{"automatic", ColumnType::Integer, "meta.code"},
    KnownColumn{"targprio", ColumnType::Number, "meta.code"},
    KnownColumn{"targsrvy", ColumnType::Text, "meta.id"},
    KnownColumn{"targclass", ColumnType::Text, "src.class"},
    KnownColumn{"targcat", ColumnType::Text, "meta.id"},
    KnownColumn{"targid", ColumnType::Text, "meta.id"},
    KnownColumn{"targprog", ColumnType::Text, "meta.id;obs.proposal"},
    KnownColumn{"cname", ColumnType::Text, "meta.id"},
};

QString votableUnit(const QString& unit) {
    static const std::map<QString, QString> units = {{"degrees", "deg"}, {"Julian years", "yr"}, {"-", ""}};
    const auto found = units.find(unit);
    return found == units.end() ? unit : found->second;
}

/** The column of an attribute, with what the schema says about it. */
ExportColumn columnOf(const KnownColumn& known) {
    const KnownAttribute& facts = documentVocabulary().find(tag::target)->attributes.at(known.attribute);
    QString description = facts.meaning;
    if (facts.absent != "-" && facts.absent != "required" && facts.absent != "empty") {
        description += " Where there is none: " + facts.absent + '.';
    }
    return {known.attribute, known.type, votableUnit(facts.unit), known.ucd, description};
}

/** What stands in each row before the attributes. */
std::vector<ExportColumn> ownColumns() {
    return {{"field", ColumnType::Integer, "", "meta.number", "Number of the field in the document, from 1."},
            {"field_name", ColumnType::Text, "", "meta.note", "Name of the field."},
            {"group", ColumnType::Text, "", "meta.note",
             "Names of the groups that hold the target, from the outermost on, joined by a slash."},
            {"kind", ColumnType::Text, "", "meta.code.class",
             "Science target, guide star, fibre (what a fibre sees, written by the run) or target (any other)."},
            {"fibre_kind", ColumnType::Text, "", "meta.code.class",
             "What the target's fibre sees, science or sky, or why it sees nothing: broken or disabled."},
            {"fibre_radius", ColumnType::Number, "arcsec", "phys.angSize;instr",
             "Radius of the fibre on the sky: " + kFibreRadiusMeaning + '.'}};
}

/** The text that stands directly in an element. */
QString directText(const QDomElement& element) {
    QString text;
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        text += node.isText() ? node.nodeValue() : QString(); // a CDATA section is a text too
    }
    return text.trimmed().isEmpty() ? QString() : text;
}

/** Adds all that stands in an element. @param path from the target to the element, with a slash at its end */
// NOLINTNEXTLINE(misc-no-recursion): documents have at most 256 levels
void addValues(const QDomElement& element, const QString& path, std::map<QString, QString>& values) {
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QString value = attributes.item(i).nodeValue();
        values[path + '@' + attributes.item(i).nodeName()] =
            value.isNull() ? "" : value; // null means that there is none
    }
    const QString text = directText(element);
    if (!text.isNull()) {
        values[path + "text()"] = text;
    }
    std::map<QString, int> seen;
    for (QDomElement child = element.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        const int number = ++seen[child.tagName()];
        const QString which = number == 1 ? "" : '[' + QString::number(number) + ']';
        addValues(child, path + child.tagName() + which + '/', values);
    }
}

/** The name of a column for people: "photometry.band", "photometry", "photometry2.band", "text". */
QString nameOfPath(QString path) {
    return path.replace("/text()", "").replace("text()", "text").remove('@').remove('[').remove(']').replace('/', '.');
}

} // namespace

std::map<QString, QString> valuesByPath(const QDomElement& target) {
    std::map<QString, QString> values;
    addValues(target, {}, values);
    return values;
}

Columns::Columns(const std::vector<QDomElement>& targets) : columns_(ownColumns()) {
    for (const KnownColumn& known : kKnownColumns) {
        places_.emplace(QString('@') + known.attribute, columns_.size());
        columns_.push_back(columnOf(known));
    }
    for (const QString& path : furtherPaths(targets)) {
        places_.emplace(path, columns_.size());
        columns_.push_back({freeName(nameOfPath(path))});
    }
}

/** What targets hold beside the known attributes. */
std::set<QString> Columns::furtherPaths(const std::vector<QDomElement>& targets) const {
    std::set<QString> paths;
    for (const QDomElement& target : targets) {
        for (const auto& [path, value] : valuesByPath(target)) {
            if (!places_.contains(path) && paths.insert(path).second && paths.size() > kMostFurtherColumns) {
                throw std::runtime_error("The targets have more than " + std::to_string(kMostFurtherColumns) +
                                         " different attributes of their own");
            }
        }
    }
    return paths;
}

/** A name that no column has, whatever its letters' case: tools differ in whether that counts. */
QString Columns::freeName(QString name) const {
    while (std::any_of(columns_.begin(), columns_.end(), [&](const ExportColumn& column) {
        return column.name.compare(name, Qt::CaseInsensitive) == 0;
    })) {
        name += '_';
    }
    return name;
}

} // namespace pos
