#include "plannedFields.h"

#include "CelestialPositionXML.h"
#include "ConditionsXML.h"
#include "FieldTargets.h"
#include "FieldTrack.h"
#include "TargetXML.h"
#include "angles.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <stdexcept>

namespace pos {

namespace {

/** A place that stays. */
ICRS fixedPlace(Astrometric place) {
    return {place.ra, place.dec, 0.0, 0.0, 0.0, 0.0, 0.0};
}

std::vector<ICRS> placesOf(const QDomElement& root) {
    const QDomElement first = findFieldElement(root, QDomElement());
    if (first.isNull()) {
        throw std::runtime_error("There is no field in the document");
    }
    std::vector<ICRS> places = {fixedPlace(createAstrometricXML("Field centre", first))};
    for (QDomElement field = findFieldElement(root, first); !field.isNull(); field = findFieldElement(root, field)) {
        places.push_back(createTargetXML(findFieldTargets(field).science).position);
    }
    return places;
}

} // namespace

Plan readPlan(const QDomDocument& document, const Estimates& estimates) {
    const QDomElement root = document.documentElement();
    const QDomElement conditions = findConditionsElement(root);
    Plan plan{placesOf(root), degreesToRadians(findObservationElement(root).attribute(attr::pa).toDouble()),
              createConditionsXML(conditions),
              estimates.epoch != kNotGiven || conditions.attribute(attr::epoch, kMissingValue) != kMissingValue};
    plan.conditions.epoch = resolveDate(estimates.epoch, plan.conditions);
    plan.conditions.pressure = resolvePressure(estimates.pressure, plan.conditions);
    return plan;
}

std::vector<FieldNight> findFieldNights(FocalPlane pointing, const Telescope& telescope, const Plan& plan,
                                        const std::optional<std::string>& file, const std::vector<Night>& nights,
                                        const DateContexts& contexts, const WindowOptions& options) {
    Conditions conditions = plan.conditions;
    conditions.epoch = nights.front().begin;
    pointing.setConditions(conditions);
    pointing.setFieldCentre(plan.fields.front().toAstrometric(conditions.epoch), plan.positionAngle);
    FieldTrack first(pointing, telescope, contexts);
    std::vector<FieldNight> all;
    int number = 0;
    for (const ICRS& place : plan.fields) {
        ++number;
        for (const Night& night : nights) {
            pointing.setFieldCentre(place.toAstrometric(night.begin), plan.positionAngle);
            all.push_back({file, number, findWindows(pointing, telescope, contexts, night, options)});
            for (Window& window : all.back().found.windows) {
                for (Moment* moment : {&window.start, &window.best, &window.end}) {
                    moment->runHourAngle = first.at(moment->mjdTai).hourAngle();
                }
            }
        }
    }
    return all;
}

} // namespace pos
