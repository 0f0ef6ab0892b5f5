#include "targetPairs.h"

#include "ReportedFibre.h"
#include "numberText.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <QHash>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <optional>

namespace pos {

namespace {

/** What identifies a target; nothing where it has nothing of the kind. */
using Key = std::optional<QString> (*)(const QDomElement&);

QString given(const QDomElement& target, const QString& attribute) {
    const QString text = target.attribute(attribute);
    return text == kMissingValue ? QString() : text;
}

std::optional<QString> fibreKey(const QDomElement& target) {
    const auto fibre = fibreOf(target);
    return fibre ? std::optional(QString::number(*fibre)) : std::nullopt;
}

bool isOfUser(const QDomElement& target) {
    return target.attribute(attr::automatic).toInt() == 0;
}

std::optional<QString> configidKey(const QDomElement& target) {
    const std::uint64_t configid = configidOf(target);
    return isOfUser(target) && configid != 0 ? std::optional(QString::number(configid)) : std::nullopt;
}

std::optional<QString> nameKey(const QDomElement& target) {
    return isOfUser(target) ? std::optional(given(target, attr::targname)) : std::nullopt;
}

// NOLINTNEXTLINE(misc-no-recursion): follows the nesting of groups
void addTargetsBelow(const QDomElement& parent, const std::string& groups, std::vector<PlacedTarget>& targets) {
    int group = 0;
    for (QDomElement child = parent.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        if (child.tagName() == tag::target) {
            targets.push_back({child, groups});
        } else if (child.tagName() == tag::group) {
            addTargetsBelow(child, groups + "/group " + std::to_string(++group), targets);
        }
    }
}

/** Takes those that have the same key out of what is left of both. */
void match(Key key, TargetPairs& matched) {
    QHash<QString, QList<std::size_t>> places;
    for (std::size_t i = 0; i < matched.onlyInSecond.size(); ++i) {
        if (const auto text = key(matched.onlyInSecond[i].element)) {
            places[*text].append(i);
        }
    }
    for (PlacedTarget& target : matched.onlyInFirst) {
        const auto text = key(target.element);
        if (text && !places.value(*text).isEmpty()) {
            PlacedTarget& other = matched.onlyInSecond[places[*text].takeFirst()];
            matched.pairs.emplace_back(target, other);
            target.element.clear();
            other.element.clear();
        }
    }
    for (auto* left : {&matched.onlyInFirst, &matched.onlyInSecond}) {
        const auto isMatched = [](const PlacedTarget& target) { return target.element.isNull(); };
        left->erase(std::remove_if(left->begin(), left->end(), isMatched), left->end());
    }
}

} // namespace

std::string nameOfTarget(const QDomElement& target) {
    const QString name = given(target, attr::targname);
    const QString configid = given(target, attr::configid);
    const auto fibre = fibreKey(target);
    const QString text = fibre                 ? "fibre " + *fibre
                         : !name.isEmpty()     ? name
                         : !configid.isEmpty() ? "configid " + configid
                                               : QString("target");
    return text.toStdString();
}

TargetPairs matchTargets(const QDomElement& first, const QDomElement& second) {
    TargetPairs matched;
    addTargetsBelow(first, "", matched.onlyInFirst);
    addTargetsBelow(second, "", matched.onlyInSecond);
    for (const Key key : {fibreKey, configidKey, nameKey}) {
        match(key, matched);
    }
    return matched;
}

} // namespace pos
