#include "DocumentNumber.h"

#include "CelestialPositionXML.h"
#include "CheckedDocument.h"
#include "ConditionsXML.h"
#include "SkyMaskXML.h"
#include "TargetXML.h"
#include "numberText.h"
#include "readByItself.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <set>

namespace pos {

namespace {

/** An attribute and what it measures. */
struct Meaning {
    const QString* attribute;
    Quantity quantity;
};
using Meanings = std::vector<Meaning>;

const Meanings kPlace = {{&attr::raD, Quantity::RightAscension}, {&attr::decD, Quantity::Declination}};
const Meanings kMask = {{&attr::raD, Quantity::RightAscension},
                        {&attr::decD, Quantity::Declination},
                        {&attr::radius, Quantity::MaskRadius}};
const Meanings kObservation = {{&attr::pa, Quantity::PositionAngle}};
const Meanings kTarget = {{&attr::targra, Quantity::RightAscension},    {&attr::targdec, Quantity::Declination},
                          {&attr::targepoch, Quantity::CatalogueEpoch}, {&attr::targpmra, Quantity::ProperMotion},
                          {&attr::targpmdec, Quantity::ProperMotion},   {&attr::targparal, Quantity::Parallax},
                          {&attr::targrv, Quantity::RadialVelocity},    {&attr::targprio, Quantity::Priority},
                          {&attr::fibreid, Quantity::WholeNumber},      {&attr::configid, Quantity::WholeNumber},
                          {&attr::automatic, Quantity::WholeNumber}};

std::optional<double> valueOf(Quantity quantity, const QString& text) {
    if (quantity == Quantity::WholeNumber) {
        const std::optional<std::int32_t> whole = integerOf(text);
        return whole ? std::optional<double>(*whole) : std::nullopt;
    }
    return numberOf(text);
}

/** Gathers the numbers of one element after the other. */
class NumberGatherer {
public:
    explicit NumberGatherer(const CheckedDocument& document)
        : options_(document.options), targetsRead_(document.targetsRead.begin(), document.targetsRead.end()) {}

    void addElement(const SourceElement& element, const Meanings& meanings, bool isRead) {
        for (const SourceAttribute& attribute : element.attributes) {
            const auto meaning = std::find_if(meanings.begin(), meanings.end(), [&](const Meaning& candidate) {
                return *candidate.attribute == attribute.name;
            });
            if (meaning != meanings.end()) {
                add(element, attribute, meaning->quantity, isRead);
            }
        }
    }

    void addTarget(const SourceElement& target) {
        addElement(target, kTarget, targetsRead_.contains(&target));
    }

    void addConditions(const SourceElement& conditions) {
        const Estimates& estimates = options_.estimates;
        addElement(conditions,
                   {{&attr::temperature, Quantity::Temperature}, {&attr::relativeHumidity, Quantity::Humidity}}, true);
        addReplaceable(conditions, attr::epoch, Quantity::ObservationDate, estimates.epoch != kNotGiven);
        addReplaceable(conditions, attr::pressure, Quantity::Pressure, estimates.pressure != kNotGiven);
        if (estimates.hourAngle == kHourAngleNotGiven) {
            addElement(conditions, {{&attr::ha, Quantity::HourAngle}}, true);
        }
    }

    std::vector<DocumentNumber> numbers;

private:
    void add(const SourceElement& element, const SourceAttribute& attribute, Quantity quantity, bool isRead) {
        const QString& text = attribute.value;
        if (text.isEmpty() || text == kMissingValue) {
            return;
        }
        const std::optional<double> value = valueOf(quantity, text);
        numbers.push_back(
            {&element, &attribute, quantity, isRead, value, value ? std::nullopt : otherNotation(text, quantity)});
    }

    /** Adds an attribute whose value an option may replace. The run reads it even then. */
    void addReplaceable(const SourceElement& element, const QString& name, Quantity quantity, bool isReplaced) {
        const SourceAttribute* attribute = element.attribute(name);
        if (attribute != nullptr && !(isReplaced && numberOf(attribute->value))) {
            add(element, *attribute, quantity, true);
        }
    }

    const CheckOptions& options_;
    const std::set<const SourceElement*> targetsRead_;
};

} // namespace

std::vector<DocumentNumber> numbersOf(const CheckedDocument& document) {
    NumberGatherer gatherer(document);
    if (document.observation != nullptr) {
        gatherer.addElement(*document.observation, kObservation, true);
    }
    if (document.conditions != nullptr) {
        gatherer.addConditions(*document.conditions);
    }
    for (const CheckedField& field : document.fields) {
        const bool isFirst = &field == &document.fields.front();
        gatherer.addElement(*field.element, kPlace, isFirst);
        for (const SourceElement* target : field.targets) {
            gatherer.addTarget(*target);
        }
        for (const SourceElement* target : field.groupedTargets) {
            gatherer.addTarget(*target);
        }
        const QDomElement masksRead = field.element->node.firstChildElement(tag::avoidanceList);
        for (const auto& list : field.element->children) {
            if (list->name() != tag::avoidanceList) {
                continue;
            }
            for (const auto& mask : list->children) {
                if (mask->name() == tag::mask) {
                    gatherer.addElement(*mask, kMask, isFirst && list->node == masksRead);
                }
            }
        }
    }
    return std::move(gatherer.numbers);
}

std::optional<std::string> refusalOf(const DocumentNumber& number) {
    if (!number.isRead || number.quantity == Quantity::PositionAngle) {
        return std::nullopt;
    }
    return failureOf([&] {
        const QDomElement element = only(*number.element, *number.attribute);
        if (number.quantity == Quantity::HourAngle) {
            resolveHourAngle(kHourAngleNotGiven, element);
        } else if (element.tagName() == tag::target) {
            createTargetXML(element);
        } else if (element.tagName() == tag::field) {
            createAstrometricXML("Field centre", element);
        } else if (element.tagName() == tag::mask) {
            createSkyMaskXML(element);
        } else {
            createConditionsXML(element);
        }
    });
}

} // namespace pos
