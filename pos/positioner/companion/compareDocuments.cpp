#include "compareDocuments.h"

#include "CelestialPosition.h"
#include "angles.h"
#include "numberText.h"
#include "targetPairs.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <erfa.h>
#include <map>

namespace pos {

namespace {

/** Attributes that are texts, whatever they look like: "1" and "1.0" are two of them. */
const std::set<QString>& texts() {
    static const std::set<QString> names = {
        attr::datamver,  attr::configureVersion, attr::targname,  attr::targsrvy, attr::targuse, attr::cname,
        attr::ifuSpaxel, attr::targcat,          attr::targclass, attr::targprog, attr::targid,  "name"};
    return names;
}

/** Attributes of a target that its distances tell. */
const std::set<QString>& placesOfTargets() {
    static const std::set<QString> names = {attr::targra, attr::targdec, attr::targx, attr::targy};
    return names;
}

std::optional<double> number(const QDomElement& element, const QString& attribute) {
    const auto value = numberOf(element.attribute(attribute));
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<Point> platePlace(const QDomElement& target) {
    const auto x = number(target, attr::targx);
    const auto y = number(target, attr::targy);
    return x && y ? std::optional(Point{*x, *y}) : std::nullopt;
}

std::optional<Astrometric> skyPlace(const QDomElement& element, const QString& ra, const QString& dec) {
    const auto raDeg = number(element, ra);
    const auto decDeg = number(element, dec);
    return raDeg && decDeg ? std::optional(Astrometric{degreesToRadians(*raDeg), degreesToRadians(*decDeg)})
                           : std::nullopt;
}

double separation(Astrometric a, Astrometric b) {
    return eraSeps(a.ra, a.dec, b.ra, b.dec);
}

template <typename Place>
Moved<Place> movedFrom(const std::optional<Place>& first, const std::optional<Place>& second) {
    return first && second ? Moved<Place>({*first, *second}) : std::nullopt;
}

MovedTarget moved(const QDomElement& first, const QDomElement& second) {
    return {nameOfTarget(first), fibreOf(first), movedFrom(platePlace(first), platePlace(second)),
            movedFrom(skyPlace(first, attr::targra, attr::targdec), skyPlace(second, attr::targra, attr::targdec))};
}

template <typename Distance>
std::optional<Distances> distancesOf(const std::vector<MovedTarget>& targets, const Distance& distance) {
    Distances all;
    double sum = 0.0;
    int count = 0;
    for (const MovedTarget& target : targets) {
        if (const std::optional<double> value = distance(target)) {
            ++count;
            sum += *value * *value;
            if (all.worst == nullptr || *value > all.greatest) {
                all.greatest = *value;
                all.worst = &target;
            }
        }
    }
    all.rms = count > 0 ? std::sqrt(sum / count) : 0.0;
    return count > 0 ? std::optional(all) : std::nullopt;
}

/** Walks two documents beside each other. */
class Comparer {
public:
    explicit Comparer(const CompareOptions& options) : options_(options) {}

    void compareElements(const std::string& place, const QDomElement& first, const QDomElement& second) {
        compareAttributes(place, first, second);
        if (textOf(first) != textOf(second)) {
            differences.push_back({place, first.tagName(), textOf(first), textOf(second)});
        }
        std::map<QString, std::vector<std::pair<QDomElement, QDomElement>>> children;
        std::vector<QString> order;
        const auto add = [&](const QDomElement& parent, QDomElement std::pair<QDomElement, QDomElement>::*side) {
            std::map<QString, std::size_t> counts;
            for (QDomElement child = parent.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
                auto& pairs = children[child.tagName()];
                if (pairs.empty()) {
                    order.push_back(child.tagName());
                }
                const std::size_t index = counts[child.tagName()]++;
                pairs.resize(std::max(pairs.size(), index + 1));
                pairs[index].*side = child;
            }
        };
        add(first, &std::pair<QDomElement, QDomElement>::first);
        add(second, &std::pair<QDomElement, QDomElement>::second);
        for (const QString& name : order) {
            if (!options_.ignored.contains(name) && !(isInField_ && isOfTargets(name))) {
                compareChildren(place, name, children.at(name));
            }
        }
    }

    std::vector<FieldComparison> fields = {};
    std::vector<Difference> differences = {};

private:
    /** Targets are matched by what they are, wherever they stand. */
    static bool isOfTargets(const QString& name) {
        return name == tag::target || name == tag::group;
    }

    static std::string textOf(const QDomElement& element) {
        QString text;
        for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
            text += node.isCharacterData() && !node.isComment() ? node.nodeValue() : QString();
        }
        return text.trimmed().toStdString();
    }

    void compareChildren(const std::string& place, const QString& name,
                         const std::vector<std::pair<QDomElement, QDomElement>>& pairs) {
        int number = 0;
        for (const auto& [first, second] : pairs) {
            ++number;
            const bool isField = name == tag::field;
            const std::string step =
                isField || pairs.size() > 1 ? name.toStdString() + ' ' + std::to_string(number) : name.toStdString();
            const std::string childPlace = isField || place.empty() ? step : place + '/' + step;
            if (first.isNull() || second.isNull()) {
                differences.push_back({childPlace, name, presence(first), presence(second)});
            } else if (isField) {
                compareFields(childPlace, number, first, second);
            } else {
                compareElements(childPlace, first, second);
            }
        }
    }

    static std::optional<std::string> presence(const QDomElement& element) {
        return element.isNull() ? std::nullopt
                                : std::optional<std::string>("<" + element.tagName().toStdString() + ">");
    }

    void compareFields(const std::string& place, int number, const QDomElement& first, const QDomElement& second) {
        isInField_ = true;
        compareElements(place, first, second);
        isInField_ = false;
        const TargetPairs matched = matchTargets(first, second);
        FieldComparison field{number, {}, {}, {}};
        for (const auto& [target, other] : matched.pairs) {
            field.targets.push_back(moved(target, other));
            compareElements(place + '/' + nameOfTarget(target), target, other);
        }
        for (const QDomElement& target : matched.onlyInFirst) {
            field.onlyInFirst.push_back(nameOfTarget(target));
        }
        for (const QDomElement& target : matched.onlyInSecond) {
            field.onlyInSecond.push_back(nameOfTarget(target));
        }
        fields.push_back(std::move(field));
    }

    void compareAttributes(const std::string& place, const QDomElement& first, const QDomElement& second) {
        std::set<QString> names;
        for (const QDomElement& element : {first, second}) {
            for (int i = 0; i < element.attributes().count(); ++i) {
                names.insert(element.attributes().item(i).nodeName());
            }
        }
        const bool hasStayed = isNear(first, second, attr::raD, attr::decD);
        for (const QString& name : names) {
            const bool isToldElsewhere = first.tagName() == tag::target && placesOfTargets().contains(name) &&
                                         number(first, name) && number(second, name);
            const bool isOfPlace = name == attr::raD || name == attr::decD;
            if (isToldElsewhere || options_.ignored.contains(name) || (isOfPlace && hasStayed) ||
                areSame(name, first, second)) {
                continue;
            }
            differences.push_back({place + (place.empty() ? "" : "/") + name.toStdString(), name, valueOf(first, name),
                                   valueOf(second, name)});
        }
    }

    bool isNear(const QDomElement& first, const QDomElement& second, const QString& ra, const QString& dec) const {
        const auto place = skyPlace(first, ra, dec);
        const auto other = skyPlace(second, ra, dec);
        return place && other && separation(*place, *other) <= options_.skyTolerance;
    }

    static std::optional<std::string> valueOf(const QDomElement& element, const QString& name) {
        return element.hasAttribute(name) ? std::optional(element.attribute(name).toStdString()) : std::nullopt;
    }

    static bool areSame(const QString& name, const QDomElement& first, const QDomElement& second) {
        const auto value = number(first, name);
        const bool areNumbers = value && number(second, name) && !texts().contains(name);
        return first.hasAttribute(name) == second.hasAttribute(name) &&
               (areNumbers ? value == number(second, name) : first.attribute(name) == second.attribute(name));
    }

    const CompareOptions& options_;
    bool isInField_ = false;
};

/** The direction in the middle of the first places. */
Astrometric middleOf(const std::vector<std::pair<Astrometric, Astrometric>>& places) {
    std::array<double, 3> sum{};
    for (const auto& [first, second] : places) {
        std::array<double, 3> direction{};
        eraS2c(first.ra, first.dec, direction.data());
        for (std::size_t i = 0; i < sum.size(); ++i) {
            sum.at(i) += direction.at(i);
        }
    }
    Astrometric middle{};
    eraC2s(sum.data(), &middle.ra, &middle.dec);
    return middle;
}

/** Nothing for a place a right angle away, or more. */
std::optional<Point> inTangentPlane(Astrometric place, Astrometric middle) {
    Point point;
    const int status = eraTpxes(place.ra, place.dec, middle.ra, middle.dec, &point.y, &point.x);
    return status == 0 ? std::optional(point) : std::nullopt;
}

bool isWithin(const std::optional<Distances>& distances, double tolerance) {
    return !distances || distances->greatest <= tolerance;
}

} // namespace

std::optional<Distances> FieldComparison::plate() const {
    return distancesOf(targets, [](const MovedTarget& target) {
        const auto& plate = target.plate;
        return plate ? std::optional(std::hypot(plate->second.x - plate->first.x, plate->second.y - plate->first.y))
                     : std::nullopt;
    });
}

std::optional<Distances> FieldComparison::sky() const {
    return distancesOf(targets, [](const MovedTarget& target) {
        return target.sky ? std::optional(separation(target.sky->first, target.sky->second)) : std::nullopt;
    });
}

std::optional<Similarity> FieldComparison::plateFit() const {
    std::vector<std::pair<Point, Point>> pairs;
    for (const MovedTarget& target : targets) {
        if (target.fibre && target.plate) {
            pairs.push_back(*target.plate);
        }
    }
    return pairs.empty() ? std::nullopt : std::optional(fitSimilarity(pairs));
}

std::optional<Similarity> FieldComparison::skyFit() const {
    std::vector<std::pair<Astrometric, Astrometric>> places;
    for (const MovedTarget& target : targets) {
        if (target.fibre && target.sky) {
            places.push_back(*target.sky);
        }
    }
    if (places.empty()) {
        return std::nullopt;
    }
    const Astrometric middle = middleOf(places);
    std::vector<std::pair<Point, Point>> pairs;
    for (const auto& [first, second] : places) {
        const auto before = inTangentPlane(first, middle);
        const auto after = inTangentPlane(second, middle);
        if (!before || !after) {
            return std::nullopt;
        }
        pairs.emplace_back(*before, *after);
    }
    return fitSimilarity(pairs);
}

Comparison compareDocuments(const QDomDocument& first, const QDomDocument& second, const CompareOptions& options) {
    Comparer comparer(options);
    comparer.compareElements("", first.documentElement(), second.documentElement());
    const bool isSame = comparer.differences.empty() &&
                        std::all_of(comparer.fields.begin(), comparer.fields.end(), [&](const FieldComparison& field) {
                            return field.onlyInFirst.empty() && field.onlyInSecond.empty() &&
                                   isWithin(field.plate(), options.plateTolerance) &&
                                   isWithin(field.sky(), options.skyTolerance);
                        });
    return {std::move(comparer.fields), std::move(comparer.differences), isSame};
}

} // namespace pos
