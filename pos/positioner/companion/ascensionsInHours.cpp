#include "ascensionsInHours.h"

#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <erfa.h>
#include <iterator>

namespace pos {

namespace {

constexpr double kHoursInATurn = 24.0;

/** A place that a document gives, degrees. */
struct GivenPlace {
    DocumentNumber ascension;
    double ra;
    double dec;
};

void addPlace(std::vector<GivenPlace>& places, const SourceElement& element, const QString& ra, const QString& dec) {
    const SourceAttribute* ascension = element.attribute(ra);
    const auto raDeg = ascension != nullptr ? numberOf(ascension->value) : std::nullopt;
    const auto decDeg = numberOf(element.node.attribute(dec));
    if (raDeg && decDeg) {
        places.push_back({{&element, ascension, Quantity::RightAscension, true, raDeg, std::nullopt}, *raDeg, *decDeg});
    }
}

/** The places of a field's centre and of its targets. */
std::vector<GivenPlace> placesOf(const CheckedField& field) {
    std::vector<GivenPlace> places;
    addPlace(places, *field.element, attr::raD, attr::decD);
    for (const auto* targets : {&field.targets, &field.groupedTargets}) {
        for (const SourceElement* target : *targets) {
            addPlace(places, *target, attr::targra, attr::targdec);
        }
    }
    return places;
}

/** Whether a place lies farther from another one than a radius, and within it with its right ascension in degrees. */
bool isInHours(const GivenPlace& place, const GivenPlace& other, double radius) {
    const auto distance = [&](double raDeg) {
        return eraSeps(degreesToRadians(raDeg), degreesToRadians(place.dec), degreesToRadians(other.ra),
                       degreesToRadians(other.dec));
    };
    return place.ra >= 0.0 && place.ra < kHoursInATurn && distance(place.ra) > radius &&
           distance(15 * place.ra) < radius;
}

/** The places to which the run points: centre, science target and guide star. */
std::vector<GivenPlace> pointedPlaces(const CheckedField& field, const std::vector<GivenPlace>& places) {
    std::vector<GivenPlace> pointed;
    std::copy_if(places.begin(), places.end(), std::back_inserter(pointed), [&](const GivenPlace& place) {
        const SourceElement* element = place.ascension.element;
        return element == field.element || element == field.science || element == field.guide;
    });
    return pointed;
}

} // namespace

std::vector<DocumentNumber> ascensionsInHours(const CheckedDocument& document) {
    std::vector<DocumentNumber> found;
    for (const CheckedField& field : document.fields) {
        const std::vector<GivenPlace> places = placesOf(field);
        const std::vector<GivenPlace> pointed = pointedPlaces(field, places);
        for (const GivenPlace& place : places) {
            if (std::any_of(pointed.begin(), pointed.end(), [&](const GivenPlace& other) {
                    return isInHours(place, other, document.options.fieldRadius);
                })) {
                found.push_back(place.ascension);
            }
        }
    }
    return found;
}

} // namespace pos
