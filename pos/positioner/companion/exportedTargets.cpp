#include "exportedTargets.h"

#include "ConditionsXML.h"
#include "FieldTargets.h"
#include "ReportedFibre.h"
#include "angles.h"
#include "fibreRadius.h"
#include "numberText.h"
#include "pointDocument.h"
#include "soundDocument.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace pos {

namespace {

/** A target with the groups in which it stands. */
struct GroupedTarget {
    QDomElement element;
    QString groups;
};

// NOLINTNEXTLINE(misc-no-recursion): documents have at most 256 levels
void addGroupedTargets(const QDomElement& parent, const QStringList& groups, std::vector<GroupedTarget>& targets) {
    for (QDomElement child = parent.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        if (child.tagName() == tag::target) {
            targets.push_back({child, groups.isEmpty() ? QString() : groups.join('/')});
        } else if (child.tagName() == tag::group) {
            addGroupedTargets(child, groups + QStringList(child.attribute("name")), targets);
        }
    }
}

/** A number as VOTables write it; nothing for a text that is none. */
std::optional<QString> decimalIn(const QString& text) {
    const std::optional<double> number = numberOf(text);
    if (!number) {
        return std::nullopt;
    }
    if (std::isnan(*number)) {
        return "NaN";
    }
    return std::isinf(*number) ? (*number > 0 ? "+Inf" : "-Inf") : text.trimmed();
}

std::optional<QString> integerIn(const QString& text) {
    const std::optional<std::int32_t> integer = integerOf(text);
    return integer ? std::optional(QString::number(*integer)) : std::nullopt;
}

/** A value as it stands in the table; null for a number that is missing. */
QString valueIn(const ExportColumn& column, const QString& text, const QDomElement& target) {
    if (column.type == ColumnType::Text) {
        return text;
    }
    if (text.trimmed().isEmpty() || text == kMissingValue) {
        return {};
    }
    const std::optional<QString> value = column.type == ColumnType::Number ? decimalIn(text) : integerIn(text);
    if (!value) {
        throw std::runtime_error("Target " + target.attribute(attr::targname).toStdString() + " has an invalid " +
                                 column.name.toStdString() + " '" + text.toStdString() + "'");
    }
    return *value;
}

std::optional<PlaceText> placeAt(const QDomElement& target, std::optional<double> mjdTai) {
    constexpr int kDecimals = 9; // microarcseconds
    const std::optional<Astrometric> there = placeOfTarget(target, std::nullopt);
    if (!there) {
        return std::nullopt;
    }
    const Astrometric moved = placeOfTarget(target, mjdTai).value_or(*there);
    if (moved.ra == there->ra && moved.dec == there->dec) {
        return PlaceText{target.attribute(attr::targra).trimmed(), target.attribute(attr::targdec).trimmed()};
    }
    return PlaceText{fixedText(radiansToDegrees(moved.ra), kDecimals),
                     fixedText(radiansToDegrees(moved.dec), kDecimals)};
}

/** Where the targets have the fibres; without those whose place is not known. */
std::vector<FibrePlace> fibrePlaces(const std::vector<GroupedTarget>& targets, std::optional<double> mjdTai) {
    std::vector<FibrePlace> places;
    for (const GroupedTarget& target : targets) {
        const std::optional<double> x = numberOf(target.element.attribute(attr::targx));
        const std::optional<double> y = numberOf(target.element.attribute(attr::targy));
        const std::optional<Astrometric> sky = placeOfTarget(target.element, mjdTai);
        if (isOnFibre(target.element) && x && y && sky) {
            places.push_back({{*x, *y}, *sky});
        }
    }
    return places;
}

/** In arcseconds; null where it is not known. */
QString radiusText(const std::vector<FibrePlace>& places) {
    const std::optional<double> radius = fibreRadius(places);
    return radius ? fixedText(radiansToDegrees(*radius) * 3600, 4) : QString();
}

/** Makes the rows of a field. */
class FieldRows {
public:
    FieldRows(const Columns& columns, const BundleFibres& fibres, std::optional<double> mjdTai,
              const QDomElement& field, int number, const std::vector<GroupedTarget>& targets)
        : columns_(columns), fibres_(fibres), mjdTai_(mjdTai), number_(number), name_(field.attribute("name")),
          used_(findFieldTargets(field)), radius_(radiusText(fibrePlaces(targets, mjdTai))) {}

    ExportedTarget rowOf(const GroupedTarget& grouped) const {
        const QDomElement& target = grouped.element;
        const bool isFibre = isOnFibre(target);
        ExportedTarget row{std::vector<QString>(columns_.all().size()),
                           number_,
                           kindOf(target),
                           isFibre ? wordOf(kindOfTarget(target, statusOf(target))) : QString(),
                           target.attribute(attr::ifuSpaxel),
                           target.attribute(attr::targname),
                           placeAt(target, mjdTai_),
                           isFibre ? radius_ : QString()};
        const std::array own = {QString::number(number_), name_, grouped.groups, row.kind, row.fibreKind,
                                row.fibreRadius};
        std::copy(own.begin(), own.end(), row.values.begin());
        for (const auto& [path, text] : valuesByPath(target)) {
            const std::size_t place = columns_.placeOf(path);
            row.values.at(place) = valueIn(columns_.all().at(place), text, target);
        }
        return row;
    }

private:
    QString kindOf(const QDomElement& target) const {
        if (target == used_.science) {
            return kScienceTarget;
        }
        if (target == used_.guide) {
            return kGuideStar;
        }
        return isGenerated(target) ? kFibre : kOtherTarget;
    }

    /** The status of a target's fibre; enabled where the bundle does not have it. */
    FibreStatus statusOf(const QDomElement& target) const {
        const auto found = fibres_.find(fibreOf(target).value_or(0));
        return found == fibres_.end() ? FibreStatus(FibreStatus::Enabled) : found->second.status;
    }

    const Columns& columns_;
    const BundleFibres& fibres_;
    std::optional<double> mjdTai_;
    int number_;
    QString name_;
    FieldTargets used_;
    QString radius_;
};

} // namespace

ExportedTargets exportedTargets(const QDomDocument& document, const std::string& file, const BundleFibres& fibres) {
    const QDomElement root = document.documentElement();
    const QDomElement conditions = findConditionsElement(root);
    const std::optional<double> epoch = numberOf(conditions.attribute(attr::epoch));
    std::optional<double> mjdTai;
    if (epoch && std::isfinite(*epoch)) {
        mjdTai = createConditionsXML(conditions).epoch;
    }
    const std::vector<QDomElement> fields = fieldsOf(document);
    std::vector<std::vector<GroupedTarget>> targets(fields.size());
    std::vector<QDomElement> elements;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        addGroupedTargets(fields.at(i), {}, targets.at(i));
        for (const GroupedTarget& target : targets.at(i)) {
            elements.push_back(target.element);
        }
    }
    const Columns columns(elements);
    ExportedTargets table{
        QString::fromStdString(file), findObservationElement(root).attribute("name"), epoch, columns.all(), {}};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const FieldRows rows(columns, fibres, mjdTai, fields.at(i), static_cast<int>(i) + 1, targets.at(i));
        for (const GroupedTarget& target : targets.at(i)) {
            table.targets.push_back(rows.rowOf(target));
        }
    }
    return table;
}

} // namespace pos
