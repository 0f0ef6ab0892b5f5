#include "targetPairs.h"

#include "numberText.h"
#include "xmlKeywords.h"

#include <QHash>
#include <QString>
#include <algorithm>
#include <cstdlib>
#include <functional>

namespace pos {

namespace {

/** What identifies a target; empty where it has nothing of the kind. */
using Key = std::function<QString(const QDomElement&)>;

QString given(const QDomElement& target, const QString& attribute) {
    const QString text = target.attribute(attribute);
    return text == kMissingValue ? QString() : text;
}

QString fibreKey(const QDomElement& target) {
    const auto fibre = fibreOf(target);
    return fibre ? QString::number(*fibre) : QString();
}

void addTargets(const QDomElement& parent, std::vector<QDomElement>& targets) {
    for (QDomElement child = parent.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        if (child.tagName() == tag::target) {
            targets.push_back(child);
        } else if (child.tagName() == tag::group) {
            addTargets(child, targets);
        }
    }
}

/** Takes those that have the same key out of both lists. */
void match(const Key& key, std::vector<QDomElement>& first, std::vector<QDomElement>& second,
           std::vector<std::pair<QDomElement, QDomElement>>& pairs) {
    QHash<QString, QList<std::size_t>> places;
    for (std::size_t i = 0; i < second.size(); ++i) {
        const QString text = key(second[i]);
        if (!text.isEmpty()) {
            places[text].append(i);
        }
    }
    std::vector<QDomElement> left;
    for (const QDomElement& target : first) {
        const auto found = places.find(key(target));
        if (found == places.end() || found->isEmpty()) {
            left.push_back(target);
        } else {
            QDomElement& other = second[found->takeFirst()];
            pairs.emplace_back(target, other);
            other.clear();
        }
    }
    first = left;
    second.erase(std::remove_if(second.begin(), second.end(), [](const QDomElement& e) { return e.isNull(); }),
                 second.end());
}

} // namespace

std::optional<std::int64_t> fibreOf(const QDomElement& target) {
    const auto id = integerOf(target.attribute(attr::fibreid));
    return id && *id != 0 ? std::optional(std::abs(static_cast<std::int64_t>(*id))) : std::nullopt;
}

std::string nameOfTarget(const QDomElement& target) {
    const QString name = given(target, attr::targname);
    const QString configid = given(target, attr::configid);
    const QString text = fibreOf(target)       ? "fibre " + fibreKey(target)
                         : !name.isEmpty()     ? name
                         : !configid.isEmpty() ? "configid " + configid
                                               : QString("target");
    return text.toStdString();
}

TargetPairs matchTargets(const QDomElement& first, const QDomElement& second) {
    TargetPairs matched;
    addTargets(first, matched.onlyInFirst);
    addTargets(second, matched.onlyInSecond);
    for (const Key& key : {Key(fibreKey), Key([](const QDomElement& target) { return given(target, attr::configid); }),
                           Key([](const QDomElement& target) { return given(target, attr::targname); })}) {
        match(key, matched.onlyInFirst, matched.onlyInSecond, matched.pairs);
    }
    return matched;
}

} // namespace pos
