#include "compareDocuments.h"

#include "ReportedFibre.h"
#include "angles.h"
#include "documentVocabulary.h"
#include "numberText.h"
#include "targetPairs.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace pos {

namespace {

using ElementPair = std::pair<QDomElement, QDomElement>;

/** The child elements of two elements by name, in their order; null where one has fewer. */
std::map<QString, std::vector<ElementPair>> childrenOf(const QDomElement& first, const QDomElement& second) {
    std::map<QString, std::vector<ElementPair>> all;
    for (QDomElement child = first.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        all[child.tagName()].emplace_back(child, QDomElement());
    }
    std::map<QString, std::size_t> counts;
    for (QDomElement child = second.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        std::vector<ElementPair>& pairs = all[child.tagName()];
        const std::size_t index = counts[child.tagName()]++;
        pairs.resize(std::max(pairs.size(), index + 1));
        pairs[index].second = child;
    }
    return all;
}

std::set<QString> attributesOf(const QDomElement& first, const QDomElement& second) {
    std::set<QString> names;
    for (const QDomElement& element : {first, second}) {
        const QDomNamedNodeMap attributes = element.attributes();
        for (int i = 0; i < attributes.count(); ++i) {
            names.insert(attributes.item(i).nodeName());
        }
    }
    return names;
}

/** The texts between the child elements of an element, without the blanks around them. */
std::string contentOf(const QDomElement& element) {
    QStringList texts = {QString()};
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isElement()) {
            texts.append(QString());
        } else if (node.isText()) { // a CDATA section is a text too
            texts.last() += node.nodeValue();
        }
    }
    std::transform(texts.begin(), texts.end(), texts.begin(), [](const QString& text) { return text.trimmed(); });
    texts.removeAll(QString());
    return texts.join(' ').toStdString();
}

std::vector<std::string> namesOf(const std::vector<PlacedTarget>& targets) {
    std::vector<std::string> names;
    std::transform(targets.begin(), targets.end(), std::back_inserter(names),
                   [](const PlacedTarget& target) { return nameOfTarget(target.element); });
    return names;
}

/** What is known of an attribute; null for one that no document needs to have. */
const KnownAttribute* knownOf(const QDomElement& element, const QString& name) {
    const KnownElement* known = documentVocabulary().find(element.tagName());
    if (known == nullptr) {
        return nullptr;
    }
    const auto found = known->attributes.find(name);
    return found == known->attributes.end() ? nullptr : &found->second;
}

/** Walks two documents beside each other. */
class Comparer {
public:
    explicit Comparer(const CompareOptions& options) : options_(options) {}

    Comparison compare(const QDomElement& first, const QDomElement& second) {
        if (first.tagName() != second.tagName()) {
            add("document element", "document element", presence(first), presence(second));
        }
        compareElements("", first, second);
        return std::move(result_);
    }

private:
    // NOLINTNEXTLINE(misc-no-recursion): follows the nesting of the document
    void compareElements(const std::string& place, const QDomElement& first, const QDomElement& second) {
        compareAttributes(place, first, second);
        if (contentOf(first) != contentOf(second)) {
            add(place.empty() ? first.tagName().toStdString() : place, first.tagName(), contentOf(first),
                contentOf(second));
        }
        for (const auto& [name, pairs] : childrenOf(first, second)) {
            // The targets of a field are matched by what they are, wherever they stand in it.
            if (!isIgnored(name) && !(field_ > 0 && name == tag::target)) {
                compareChildren(place.empty() ? name.toStdString() : place + '/' + name.toStdString(), pairs);
            }
        }
    }

    bool isIgnored(const QString& name) const {
        return options_.ignored.contains(name);
    }

    void add(const std::string& place, const QString& name, const std::optional<std::string>& first,
             const std::optional<std::string>& second, const std::string& unit = "") {
        result_.differences.push_back({place, name.toStdString(), field_, first, second, unit});
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    void compareChildren(const std::string& place, const std::vector<ElementPair>& pairs) {
        int number = 0;
        for (const auto& [first, second] : pairs) {
            ++number;
            if ((first.isNull() ? second : first).tagName() == tag::field) {
                const int outer = std::exchange(field_, number);
                compareFields("field " + std::to_string(number), first, second);
                field_ = outer;
                continue;
            }
            const std::string numbered = pairs.size() > 1 ? place + ' ' + std::to_string(number) : place;
            if (first.isNull() || second.isNull()) {
                add(numbered, (first.isNull() ? second : first).tagName(), presence(first), presence(second));
            } else {
                compareElements(numbered, first, second);
            }
        }
    }

    static std::optional<std::string> presence(const QDomElement& element) {
        return element.isNull() ? std::nullopt : std::optional('<' + element.tagName().toStdString() + '>');
    }

    static void count(const QDomElement& field, int& fields, bool& isConfigured) {
        fields += field.isNull() ? 0 : 1;
        isConfigured = isConfigured || hasGeneratedTargets(field);
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    void compareFields(const std::string& place, const QDomElement& first, const QDomElement& second) {
        count(first, result_.fieldCounts.first, result_.areConfigured.first);
        count(second, result_.fieldCounts.second, result_.areConfigured.second);
        if (first.isNull() || second.isNull()) {
            add(place, tag::field, presence(first), presence(second));
            return;
        }
        compareElements(place, first, second);
        const TargetPairs matched = isIgnored(tag::target) ? TargetPairs() : matchTargets(first, second);
        FieldComparison field{field_, matched.pairs.size()};
        for (const auto& [target, other] : matched.pairs) {
            compareTargets(place + '/' + nameOfTarget(target.element), target, other);
            (areOnFibre(target.element, other.element) ? field.fibres : field.others)
                .push_back(moved(target.element, other.element));
        }
        field.onlyInFirst = namesOf(matched.onlyInFirst);
        field.onlyInSecond = namesOf(matched.onlyInSecond);
        result_.fields.push_back(std::move(field));
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    void compareTargets(const std::string& place, const PlacedTarget& first, const PlacedTarget& second) {
        if (first.groups != second.groups && !isIgnored(tag::group)) {
            const std::string field = "field " + std::to_string(field_);
            add(place, tag::group, field + first.groups, field + second.groups);
        }
        compareElements(place, first.element, second.element);
    }

    static bool areOnFibre(const QDomElement& first, const QDomElement& second) {
        return fibreOf(first) && fibreOf(first) == fibreOf(second);
    }

    MovedTarget moved(const QDomElement& first, const QDomElement& second) const {
        MovedTarget target{nameOfTarget(first), fibreOf(first).value_or(0), {}, {}};
        const auto place = platePlace(first);
        const auto otherPlace = platePlace(second);
        if (place && otherPlace) {
            target.plate = {*place, *otherPlace};
        }
        const auto sky = skyPlace(first, attr::targra, attr::targdec);
        const auto otherSky = skyPlace(second, attr::targra, attr::targdec);
        if (sky && otherSky) {
            target.sky = {*sky, *otherSky};
        }
        return target;
    }

    std::optional<double> number(const QDomElement& element, const QString& attribute) const {
        const auto value = numberOf(element.attribute(attribute));
        return value && std::isfinite(*value) && !isIgnored(attribute) ? value : std::nullopt;
    }

    std::optional<Point> platePlace(const QDomElement& target) const {
        const auto x = number(target, attr::targx);
        const auto y = number(target, attr::targy);
        return x && y ? std::optional(Point{*x, *y}) : std::nullopt;
    }

    std::optional<Astrometric> skyPlace(const QDomElement& element, const QString& ra, const QString& dec) const {
        const auto raDeg = number(element, ra);
        const auto decDeg = number(element, dec);
        return raDeg && decDeg ? std::optional(Astrometric{degreesToRadians(*raDeg), degreesToRadians(*decDeg)})
                               : std::nullopt;
    }

    void compareAttributes(const std::string& place, const QDomElement& first, const QDomElement& second) {
        const std::set<QString> placed = samePlaces(first, second);
        for (const QString& name : attributesOf(first, second)) {
            if (isIgnored(name) || placed.contains(name) || areSame(name, first, second)) {
                continue;
            }
            const KnownAttribute* known = knownOf(first, name);
            add(place + (place.empty() ? "" : "/") + name.toStdString(), name, valueOf(first, name),
                valueOf(second, name), known == nullptr || known->unit == "-" ? "" : known->unit.toStdString());
        }
    }

    /** The attributes of places that are the same within the tolerance, or that the distances of fibres tell. */
    std::set<QString> samePlaces(const QDomElement& first, const QDomElement& second) const {
        std::set<QString> names;
        for (const auto& [ra, dec] : {std::pair(attr::raD, attr::decD), {attr::targra, attr::targdec}}) {
            const auto sky = skyPlace(first, ra, dec);
            const auto otherSky = skyPlace(second, ra, dec);
            const bool isTold = ra == attr::targra && areOnFibre(first, second);
            if (sky && otherSky && (isTold || isWithin(skySeparation(*sky, *otherSky), options_.skyTolerance))) {
                names.insert({ra, dec});
            }
        }
        const auto plate = platePlace(first);
        const auto otherPlate = platePlace(second);
        if (plate && otherPlate &&
            (areOnFibre(first, second) ||
             isWithin(std::hypot(otherPlate->x - plate->x, otherPlate->y - plate->y), options_.plateTolerance))) {
            names.insert({attr::targx, attr::targy});
        }
        return names;
    }

    static std::optional<std::string> valueOf(const QDomElement& element, const QString& name) {
        return element.hasAttribute(name) ? std::optional(element.attribute(name).toStdString()) : std::nullopt;
    }

    bool areSame(const QString& name, const QDomElement& first, const QDomElement& second) const {
        const KnownAttribute* known = knownOf(first, name);
        const bool isText = known == nullptr || known->range == "any text" || name == attr::datamver;
        const auto value = isText ? std::nullopt : number(first, name);
        const auto other = number(second, name);
        return first.hasAttribute(name) == second.hasAttribute(name) &&
               (value && other ? value == other : first.attribute(name) == second.attribute(name));
    }

    const CompareOptions& options_;
    Comparison result_ = {};
    int field_ = 0; ///< the field that is being compared, from 1; 0 outside
};

bool hasMoved(const std::optional<Distances>& distances) {
    return distances && distances->moved > 0;
}

bool isSame(const Comparison& comparison) {
    const CompareOptions& options = comparison.options;
    return comparison.differences.empty() &&
           std::all_of(comparison.fields.begin(), comparison.fields.end(), [&](const FieldComparison& field) {
               return field.onlyInFirst.empty() && field.onlyInSecond.empty() &&
                      !hasMoved(plateDistances(field.fibres, options.plateTolerance)) &&
                      !hasMoved(skyDistances(field.fibres, options.skyTolerance));
           });
}

} // namespace

CompareOptions compareOptions(double plateTolerance, double skyTolerance, const std::vector<std::string>& ignored) {
    CompareOptions options{plateTolerance / 1000, degreesToRadians(skyTolerance / 3600)};
    for (const std::string& name : ignored) {
        options.ignored.insert(QString::fromStdString(name));
    }
    return options;
}

Comparison compareDocuments(const QDomDocument& first, const QDomDocument& second, const CompareOptions& options) {
    Comparison result = Comparer(options).compare(first.documentElement(), second.documentElement());
    result.options = options;
    result.isSame = isSame(result);
    return result;
}

} // namespace pos
