#include "pointDocument.h"

#include "CelestialPositionXML.h"
#include "ConditionsXML.h"
#include "Field.h"
#include "Instrument.h"
#include "LimitsCalc.h"
#include "TargetXML.h"
#include "angles.h"
#include "numberText.h"
#include "placeVeko.h"
#include "xmlKeywords.h"

#include <stdexcept>

namespace pos {

namespace {

/** What a function returns; nothing where it throws. */
template <typename Read> auto readOrNothing(const Read& read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

/** An element without children that has only some of its attributes. */
QDomElement withOnly(const QDomElement& element, const std::vector<QString>& names) {
    QDomElement copy = element.ownerDocument().createElement(element.tagName());
    for (const QString& name : names) {
        if (element.hasAttribute(name)) {
            copy.setAttribute(name, element.attribute(name));
        }
    }
    return copy;
}

std::optional<Astrometric> centreOf(const QDomElement& field) {
    return readOrNothing([&] { return createAstrometricXML("Field centre", field); });
}

/** The conditions of the run before the solve for the hour angle; nothing where their date cannot be read. */
std::optional<Conditions> conditionsOf(const QDomElement& element, const Estimates& estimates) {
    QDomElement readable = element.cloneNode(false).toElement();
    for (const QString& name : {attr::temperature, attr::pressure, attr::relativeHumidity}) {
        if (!numberOf(element.attribute(name))) {
            readable.removeAttribute(name);
        }
    }
    if (estimates.epoch != kNotGiven) {
        readable.removeAttribute(attr::epoch);
    }
    return readOrNothing([&] {
        Conditions conditions = createConditionsXML(readable);
        conditions.epoch = resolveDate(estimates.epoch, conditions);
        conditions.pressure = resolvePressure(estimates.pressure, conditions);
        return conditions;
    });
}

/** Points as the run does, where that can be done. */
void pointAsTheRun(CheckedDocument& document, Astrometric centre, double positionAngle) {
    const Estimates& estimates = document.options.estimates;
    const QDomElement element = document.conditions != nullptr ? document.conditions->node : QDomElement();
    const std::optional<Conditions> conditions = conditionsOf(element, estimates);
    const auto hourAngle = readOrNothing([&] { return resolveHourAngle(estimates.hourAngle, element); });
    if (!conditions || !hourAngle) {
        return;
    }
    FocalPlane& focalPlane = document.instrument.pointedVeko(Field(centre), *conditions).focalPlane;
    // The instrument keeps what this reads, and needs no file again.
    static_cast<void>(document.instrument.limits(estimates.zenithDistanceLimit));
    focalPlane.setFieldCentre(centre, positionAngle);
    try {
        focalPlane.setHourAngle(*hourAngle);
        document.pointing = focalPlane;
    } catch (const std::runtime_error& error) {
        document.hourAngleFailure = error.what();
    }
}

/** Finds the pointing of the run where it has not been found. */
void findPointing(CheckedDocument& document, Astrometric centre, double positionAngle) {
    const bool isUnreachable = document.failure && document.failure->starts_with("Hour angle not converging");
    if (isUnreachable) {
        document.hourAngleFailure = document.failure; // The steps that show it may be many.
    } else if (!document.pointing) {
        try {
            pointAsTheRun(document, centre, positionAngle);
        } catch (const std::exception&) {
            // The documents of the instrument are at fault, which the run's own message tells.
            document.pointing.reset();
        }
    }
}

void readPlaces(CheckedField& field, std::optional<double> date) {
    const auto placeOf = [date](const SourceElement* target) {
        return target != nullptr ? placeOfTarget(target->node, date) : std::nullopt;
    };
    field.sciencePlace = placeOf(field.science);
    field.guidePlace = placeOf(field.guide);
}

FieldPointing pointAt(FocalPlane& focalPlane, const CheckedField* field, int number, Astrometric centre) {
    focalPlane.setFieldCentre(centre, focalPlane.positionAngle());
    return {field,
            number,
            centre,
            focalPlane.zenithDistance(),
            focalPlane.hourAngle(),
            focalPlane.tangentDec(),
            focalPlane.parallacticAngle()};
}

/** The run does not read the centres of other fields than the first: there the science target stands for it. */
void pointAtFields(CheckedDocument& document, Astrometric firstCentre) {
    FocalPlane& focalPlane = *document.pointing;
    const CheckedField* const first = document.fields.empty() ? nullptr : &document.fields.front();
    document.pointings.push_back(pointAt(focalPlane, first, 1, firstCentre));
    for (std::size_t i = 1; i < document.fields.size(); ++i) {
        const CheckedField& field = document.fields.at(i);
        if (field.sciencePlace) {
            document.pointings.push_back(pointAt(focalPlane, &field, static_cast<int>(i) + 1, *field.sciencePlace));
        }
    }
}

} // namespace

void pointDocument(CheckedDocument& document) {
    for (CheckedField& field : document.fields) {
        field.centre = centreOf(field.element->node);
    }
    const std::optional<Astrometric> centre = document.fields.empty() ? Astrometric{} : document.fields.front().centre;
    const QDomElement observation = document.observation != nullptr ? document.observation->node : QDomElement();
    if (centre && document.root.isWhole && document.options.isInstrumentSound) {
        findPointing(document, *centre, degreesToRadians(observation.attribute(attr::pa).toDouble()));
    }
    const std::optional<double> date = document.pointing ? std::optional(document.pointing->date()) : std::nullopt;
    for (CheckedField& field : document.fields) {
        readPlaces(field, date);
    }
    if (document.pointing) {
        pointAtFields(document, *centre);
    }
}

std::optional<Astrometric> placeOfTarget(const QDomElement& target, std::optional<double> mjdTai) {
    auto place = readOrNothing([&] { return createIcrsXML("", target); });
    if (!place) {
        place = readOrNothing([&] { return createIcrsXML("", withOnly(target, {attr::targra, attr::targdec})); });
    }
    if (!place) {
        return std::nullopt;
    }
    const bool moves = place->pmRa != 0 || place->pmDec != 0;
    return mjdTai && moves ? place->toAstrometric(*mjdTai) : Astrometric{place->ra, place->dec};
}

Veko& bundleOfRun(const CheckedDocument& document) {
    const FocalPlane& pointing = *document.pointing;
    Veko& veko = document.instrument.pointedVeko(Field(pointing.fieldCentre()), pointing.conditions());
    veko.focalPlane = pointing;
    veko.focalPlane.putInForce();
    return veko;
}

void placeOnScience(Veko& veko, const CheckedField& field) {
    const Target science = createTargetXML(field.science->node);
    placeVeko(veko, science, scienceFibre(science));
    static_cast<void>(vekoFieldCentre(veko));
}

} // namespace pos
