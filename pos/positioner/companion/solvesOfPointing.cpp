#include "Instrument.h"
#include "RunMessages.h"
#include "TargetXML.h"
#include "Veko.h"
#include "angles.h"
#include "numberText.h"
#include "placeVeko.h"
#include "pointDocument.h"
#include "pointingFinders.h"
#include "positionAngles.h"
#include "xmlKeywords.h"

#include <cmath>
#include <erfa.h>
#include <stdexcept>

namespace pos {

namespace {

/** What leads to no date: the hour angle, the declination, or the epoch. */
Span placeOfHourAngle(const CheckedDocument& document) {
    constexpr double kBesideThePole = 0.998; // of a right angle
    const CheckedField* const field = document.fields.empty() ? nullptr : &document.fields.front();
    if (field != nullptr && field->centre && std::fabs(field->centre->dec) > kBesideThePole * kPi / 2) {
        return valueOrOpening(*field->element, attr::decD);
    }
    const SourceElement* const conditions = document.conditions;
    const auto given = [&](const QString& name, bool byOption) {
        return conditions != nullptr && !byOption && conditions->attribute(name) != nullptr;
    };
    const Estimates& estimates = document.options.estimates;
    if (given(attr::ha, estimates.hourAngle != kHourAngleNotGiven) &&
        std::fabs(numberOf(conditions->node.attribute(attr::ha)).value_or(0.0)) > 24) {
        return conditions->attribute(attr::ha)->valuePlace;
    }
    if (given(attr::epoch, estimates.epoch != kNotGiven)) {
        return conditions->attribute(attr::epoch)->valuePlace;
    }
    return opening(field != nullptr ? *field->element : document.root);
}

/**
 * Whether it is to be tried to place the bundle on a field. Where the run succeeds it has done so. Where the first
 * field is too low, another date will be chosen, and what now fails for its altitude is not told.
 */
bool isToBePlaced(const CheckedDocument& document, const FieldPointing& pointing) {
    return document.failure && pointing.field != nullptr && pointing.field->science != nullptr &&
           (isHighEnough(document, document.pointings.front()) || isHighEnough(document, pointing));
}

/** Whether a message is one of those with which placing the bundle fails. */
bool isOfPlacing(const std::string& message) {
    return message == "Field centre not converging" || message == "celestial position not in the tangent plane" ||
           message.starts_with("Inverse distortion not converging");
}

/** The message with which a step of placing the bundle fails. What else it fails with is for other rules. */
template <typename Step> std::optional<std::string> placingFailure(const Step& step) {
    try {
        step();
    } catch (const std::exception& error) {
        const std::string message = error.what();
        return isOfPlacing(message) ? std::optional(message) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace

void findUnreachableHourAngle(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (document.hourAngleFailure) {
        problems.add(rule, placeOfHourAngle(document),
                     *document.hourAngleFailure + ": no date was found at which the first field has the hour angle",
                     whatToDo(*document.hourAngleFailure));
    }
}

void findFieldsWithoutPlace(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (!document.failure || !document.pointing) {
        return;
    }
    Veko& veko = bundleOfRun(document);
    for (const FieldPointing& pointing : document.pointings) {
        if (!isToBePlaced(document, pointing)) {
            continue;
        }
        const auto failure = placingFailure([&] {
            placeOnScience(veko, *pointing.field);
            const Target science = createTargetXML(pointing.field->science->node);
            document.instrument.requirePlaces(scienceFibre(science));
        });
        if (failure) {
            problems.add(rule, valueOrOpening(*pointing.field->science, attr::targra),
                         *failure + ": the bundle finds no place on field " + std::to_string(pointing.number),
                         whatToDo(*failure));
        }
    }
}

void findGuideStarsBehind(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    constexpr double kSurelyInFront = 1.4; // radians, a tenth less than a right angle
    for (const FieldPointing& pointing : document.pointings) {
        const CheckedField* const field = pointing.field;
        if (!isToBePlaced(document, pointing) || !field->sciencePlace || !field->guidePlace) {
            continue;
        }
        const double distance =
            eraSeps(field->sciencePlace->ra, field->sciencePlace->dec, field->guidePlace->ra, field->guidePlace->dec);
        if (distance < kSurelyInFront) {
            continue;
        }
        Veko& veko = bundleOfRun(document);
        if (placingFailure([&] { placeOnScience(veko, *field); })) {
            continue; // The science target is at fault.
        }
        if (const auto failure =
                placingFailure([&] { saveGuideStar(veko, field->guide->node.cloneNode(false).toElement()); })) {
            problems.add(rule, valueOrOpening(*field->guide, attr::targra),
                         *failure + ": the guide star is " + degreesText(distance) +
                             " degrees away from the science target",
                         "Correct place and proper motion of the guide star");
        }
    }
}

} // namespace pos
