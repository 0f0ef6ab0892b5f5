#include "rules.h"

#include "Instrument.h"
#include "Veko.h"
#include "angles.h"
#include "numberText.h"
#include "placeVeko.h"
#include "pointDocument.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace pos {

namespace {

/**
 * Places no farther apart count as one, radians: half an arcsecond. That is less than the steps of any dither pattern
 * and than what the air leaves of two stars, and more than the differences between catalogues.
 */
constexpr double kSamePlace = 2.42406840554768e-6;

double separation(Astrometric a, Astrometric b) {
    return eraSeps(a.ra, a.dec, b.ra, b.dec);
}

std::string inDegrees(double radians) {
    return fixedText(radiansToDegrees(radians), 2).toStdString() + " degrees";
}

/** What a target is called in a message. */
std::string nameOf(const SourceElement& target) {
    const std::string use = target.node.attribute(attr::targuse).toStdString();
    const std::string name = target.node.attribute(attr::targname).toStdString();
    const std::string kind = use == "T" ? "science target" : use == "G" ? "guide star" : "target";
    return name.empty() ? kind : kind + " '" + name + "'";
}

/** The coordinate by which a place is farther from another: its value, or the element that lacks it. */
Span coordinateOff(const SourceElement& element, Astrometric place, Astrometric other) {
    const bool isTarget = element.name() == tag::target;
    const double acrossRa = std::fabs(wrapAngle(place.ra - other.ra)) * std::cos(other.dec);
    const bool isRa = acrossRa >= std::fabs(place.dec - other.dec);
    return valueOrOpening(element,
                          isRa ? (isTarget ? attr::targra : attr::raD) : (isTarget ? attr::targdec : attr::decD));
}

/** The three places of a field, and which of them are known to be apart. */
class ThreePlaces {
public:
    ThreePlaces(const CheckedField& field, double radius)
        : science(field.sciencePlace), guide(field.guidePlace), radius_(radius) {
        const QDomElement& node = field.element->node;
        if (numberOf(node.attribute(attr::raD)) && numberOf(node.attribute(attr::decD))) {
            centre = field.centre;
        }
    }

    /** The science target is far from both others, which are near each other. */
    bool scienceIsAstray() const {
        return areApart(centre, science) && areApart(science, guide) && !areApart(centre, guide);
    }
    bool centreIsAstray() const {
        return areApart(centre, science) && !scienceIsAstray();
    }
    bool guideIsAstray() const {
        return !scienceIsAstray() &&
               (areApart(science, guide) || (areApart(centre, guide) && !areApart(centre, science)));
    }
    /** What the guide star is far from. */
    bool guideIsFarFromScience() const {
        return areApart(science, guide);
    }

    std::optional<Astrometric> centre;
    std::optional<Astrometric> science;
    std::optional<Astrometric> guide;

private:
    bool areApart(const std::optional<Astrometric>& a, const std::optional<Astrometric>& b) const {
        return a && b && separation(*a, *b) > radius_;
    }

    double radius_;
};

void findPlacesApart(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const double radius = document.options.fieldRadius;
    for (const CheckedField& field : document.fields) {
        const ThreePlaces places(field, radius);
        const auto add = [&](const SourceElement& element, const std::string& who, Astrometric place, Astrometric other,
                             const std::string& otherName, const std::string& help) {
            std::string message = who + " is " + inDegrees(separation(place, other)) + " away from the ";
            message += otherName + ", and --field_radius is " + QString::number(radiansToDegrees(radius)).toStdString();
            problems.add(rule, coordinateOff(element, place, other), message, help);
        };
        if (places.scienceIsAstray()) {
            add(*field.science, "The " + nameOf(*field.science), *places.science, *places.guide,
                "guide star and " + inDegrees(separation(*places.science, *places.centre)) + " from the field centre",
                "Correct its targra and targdec, in decimal degrees");
        }
        if (places.centreIsAstray()) {
            add(*field.element, "The field centre", *places.centre, *places.science, nameOf(*field.science),
                "Write the science target's place into RA_d and Dec_d");
        }
        if (places.guideIsAstray()) {
            const bool isScience = places.guideIsFarFromScience();
            add(*field.guide, "The " + nameOf(*field.guide), *places.guide,
                isScience ? *places.science : *places.centre, isScience ? nameOf(*field.science) : "field centre",
                "Correct its targra and targdec, in decimal degrees, or choose a nearer star");
        }
    }
}

/** Where a place is in the focal plane, mm from the optical axis. */
double distanceFromAxis(PlateCoordinates position) {
    const FocalPlaneCoordinates focal = position;
    return std::hypot(focal.x, focal.y);
}

/** Millimetres from the optical axis for an angle, by the optical model in force. */
double millimetresOf(double angle) {
    return FocalPlaneCoordinates(0.0, 0.0).project(0.0, angle).second;
}

/**
 * How far the guide star lands from the optical axis, mm.
 *
 * @return nothing where it is surely within the radius: then the bundle need not be placed
 * @throw what placing the bundle throws
 */
std::optional<double> guideStarOnPlate(const CheckedDocument& document, const CheckedField& field) {
    const auto* fibres = document.instrument.fibres();
    Target science;
    science.fibreid = integerOf(field.science->node.attribute(attr::fibreid)).value_or(kNoFibre);
    const auto fibre = fibres->find(scienceFibre(science));
    if (fibre == fibres->end()) {
        return std::nullopt;
    }
    constexpr double kMargin = 1.05; // for distortion and refraction
    const double reach = distanceFromAxis(fibre->second.platePosition()) +
                         millimetresOf(separation(*field.sciencePlace, *field.guidePlace));
    if (reach * kMargin < millimetresOf(document.options.fieldRadius)) {
        return std::nullopt;
    }
    Veko& veko = bundleOfRun(document);
    placeOnScience(veko, field);
    const DateContext& date = veko.focalPlane.dateContext();
    return distanceFromAxis(veko.focalPlane.cirsToXy(field.guidePlace->toCirs(date)));
}

void findGuideStarsOffPlate(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const CheckedField& field : document.fields) {
        if (!document.pointing || !field.sciencePlace || !field.guidePlace ||
            separation(*field.sciencePlace, *field.guidePlace) > document.options.fieldRadius) {
            continue; // A guide star that is too far away in the sky has been told.
        }
        try {
            const std::optional<double> distance = guideStarOnPlate(document, field);
            const double radius = millimetresOf(document.options.fieldRadius);
            if (distance && *distance > radius) {
                problems.add(rule, coordinateOff(*field.guide, *field.guidePlace, *field.sciencePlace),
                             "The " + nameOf(*field.guide) + " lands " + fixedText(*distance, 1).toStdString() +
                                 " mm from the optical axis, and --field_radius reaches " +
                                 fixedText(radius, 1).toStdString() + " mm",
                             "Choose a guide star nearer to the field centre, or another fibre for the science target");
            }
        } catch (const std::exception&) {
            continue; // The bundle cannot be placed, which is a problem of its own.
        }
    }
}

/** Places on the sky among which one finds those that coincide, in a time that does not depend on their number. */
class SkyPlaces {
public:
    /** The element of an earlier place that this one coincides with. Where there is none, keeps this one. */
    const SourceElement* findOrAdd(Astrometric place, const SourceElement& element) {
        Point point{};
        eraS2c(place.ra, place.dec, point.data());
        if (!std::all_of(point.begin(), point.end(), [](double x) { return std::isfinite(x); })) {
            return nullptr;
        }
        // A circle of the radius kSamePlace touches at most two cells on each axis.
        const Cell low = cellOf(point, -kSamePlace);
        const Cell high = cellOf(point, kSamePlace);
        for (int x = low.at(0); x <= high.at(0); ++x) {
            for (int y = low.at(1); y <= high.at(1); ++y) {
                for (int z = low.at(2); z <= high.at(2); ++z) {
                    if (const SourceElement* found = findIn({x, y, z}, place)) {
                        return found;
                    }
                }
            }
        }
        cells_[cellOf(point, 0.0)].push_back({place, &element});
        return nullptr;
    }

private:
    using Point = std::array<double, 3>;
    using Cell = std::array<int, 3>;

    static Cell cellOf(const Point& point, double shift) {
        const auto index = [shift](double x) { return static_cast<int>(std::floor((x + shift) / (2 * kSamePlace))); };
        return {index(point.at(0)), index(point.at(1)), index(point.at(2))};
    }

    const SourceElement* findIn(const Cell& cell, Astrometric place) const {
        const auto found = cells_.find(cell);
        if (found != cells_.end()) {
            for (const auto& [other, element] : found->second) {
                if (separation(place, other) <= kSamePlace) {
                    return element;
                }
            }
        }
        return nullptr;
    }

    std::map<Cell, std::vector<std::pair<Astrometric, const SourceElement*>>> cells_;
};

std::string lineOf(const CheckedDocument& document, const SourceElement& element) {
    return "line " + std::to_string(document.text.lineOf(element.tag.begin));
}

void findTargetsOnTop(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const CheckedField& field : document.fields) {
        std::vector<const SourceElement*> targets = field.targets;
        targets.insert(targets.end(), field.groupedTargets.begin(), field.groupedTargets.end());
        SkyPlaces places;
        for (const SourceElement* target : targets) {
            const auto place = isGenerated(*target) ? std::nullopt : placeOfTarget(target->node, std::nullopt);
            const SourceElement* other = place ? places.findOrAdd(*place, *target) : nullptr;
            if (other != nullptr) {
                problems.add(rule, valueOrOpening(*target, attr::targra),
                             "The " + nameOf(*target) + " stands on top of the " + nameOf(*other) + " in " +
                                 lineOf(document, *other),
                             "Correct the place of one of the two, or remove one");
            }
        }
    }
}

void findRepeatedFields(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    std::map<std::uint32_t, SkyPlaces> placesOfFibre;
    for (const CheckedField& field : document.fields) {
        if (!field.sciencePlace) {
            continue;
        }
        Target science;
        science.fibreid = integerOf(field.science->node.attribute(attr::fibreid)).value_or(kNoFibre);
        const SourceElement* other =
            placesOfFibre[scienceFibre(science)].findOrAdd(*field.sciencePlace, *field.science);
        if (other != nullptr) {
            problems.add(rule, valueOrOpening(*field.science, attr::targra),
                         "The " + nameOf(*field.science) + " is where that of the field in " +
                             lineOf(document, *other->parent) + " is, on the same fibre",
                         "Correct the place, choose another fibreid, or remove the field");
        }
    }
}

} // namespace

const std::vector<RuleEntry>& rulesOfPlaces() {
    static const std::vector<RuleEntry> rules = {
        {{"VK401", Severity::Warning, "Field centre, science target and guide star are far apart",
          "A field is a circle on the sky, and its centre, its science target and its guide star lie in it. A distance "
          "beyond `--field_radius` (1 degree if not given, the checker's own choice) mostly means a slip in one of the "
          "three places: hours for degrees, a wrong sign, a place of another field. The run passes over it, and writes "
          "a guide star metres off the plate. The problem is at the one that is far from the other two.",
          R"(<target targname="star" targuse="G" targra="195.120000" targdec="-11.500000"/>)",
          R"(<target targname="star" targuse="G" targra="190.120000" targdec="-11.500000"/>)"},
         findPlacesApart},
        {{"VK402", Severity::Warning, "The guide star lands off the plate",
          "The run moves the field so that the science target falls on its fibre, and the guide star moves with it. "
          "The guide star is within `--field_radius` of the science target on the sky, but on the plate farther from "
          "the optical axis than that radius reaches there.",
          R"(<target targname="star" targuse="G" targra="189.997633" targdec="-12.580000"/>)",
          R"(<target targname="star" targuse="G" targra="190.120000" targdec="-11.500000"/>)"},
         findGuideStarsOffPlate},
        {{"VK403", Severity::Warning, "Two targets of a field are at the same place",
          "Their catalogue places are within half an arcsecond, less than a fibre or the air can tell apart: mostly a "
          "line that was copied and not changed. Targets that a run has made (`automatic`) do not count.",
          R"(<target targname="star" targuse="G" targra="189.997633" targdec="-11.623054"/>)",
          R"(<target targname="star" targuse="G" targra="190.120000" targdec="-11.500000"/>)"},
         findTargetsOnTop},
        {{"VK404", Severity::Warning, "Two fields have the same science target on the same fibre",
          "The places are within half an arcsecond at the date of the run: mostly a field that was copied and not "
          "changed. Dithered fields differ by more, or in `fibreid`.",
          R"(<fields><field RA_d="189.997633" Dec_d="-11.623054"><target targname="M 104" targuse="T" targra="189.997633" targdec="-11.623054"/><target targname="star" targuse="G" targra="190.120000" targdec="-11.500000"/></field><field RA_d="189.997633" Dec_d="-11.623054"><target targname="M 104" targuse="T" targra="189.997633" targdec="-11.623054"/><target targname="star" targuse="G" targra="190.120000" targdec="-11.500000"/></field></fields>)",
          R"(<fields><field RA_d="189.997633" Dec_d="-11.623054"><target targname="M 104" targuse="T" targra="189.997633" targdec="-11.623054"/><target targname="star" targuse="G" targra="190.120000" targdec="-11.500000"/></field><field RA_d="190.500000" Dec_d="-11.623054"><target targname="M 104" targuse="T" targra="190.500000" targdec="-11.623054"/><target targname="star" targuse="G" targra="190.120000" targdec="-11.600000"/></field></fields>)"},
         findRepeatedFields},
    };
    return rules;
}

} // namespace pos
