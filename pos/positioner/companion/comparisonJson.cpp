#include "comparisonRecords.h"
#include "comparisonUnits.h"

#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

/** @param name of the unit, at the end of the names */
Json distancesJson(const std::optional<Distances>& distances, const LengthUnit& unit, const std::string& name) {
    return distances ? Json{{"max" + name, unit.of(distances->greatest)},
                            {"rms" + name, unit.of(distances->rms)},
                            {"worstFibre", distances->greatest > 0 ? Json(distances->worst.fibre) : Json()}}
                     : Json();
}

/** @param x first component of the shift, in the unit of the fit */
Json fitJson(const Similarity& fit, double x, double y, const LengthUnit& unit, const std::string& name) {
    return {{"shift" + name, Json::array({unit.of(x), unit.of(y)})},
            {"rotationArcsec", arcseconds(fit.rotation)},
            {"scalePpm", fit.scale * 1e6},
            {"residualRms" + name, unit.of(fit.residualRms)}};
}

Json fieldJson(const FieldComparison& field) {
    const auto plate = plateFit(field.fibres);
    const auto sky = skyFit(field.fibres);
    return {{"field", field.number},
            {"targets", field.matched},
            {"plate", distancesJson(plateDistances(field.fibres), kOnPlate, "Um")},
            {"sky", distancesJson(skyDistances(field.fibres), kOnSky, "Arcsec")},
            {"fit", plate ? fitJson(*plate, plate->shift.x, plate->shift.y, kOnPlate, "Um") : Json()},
            {"skyFit", sky ? fitJson(*sky, sky->shift.y, sky->shift.x, kOnSky, "Arcsec") : Json()}, // east, north
            {"onlyInFirst", field.onlyInFirst},
            {"onlyInSecond", field.onlyInSecond}};
}

Json valueJson(const std::optional<std::string>& value) {
    return value ? Json(*value) : Json();
}

} // namespace

std::string comparisonJson(const Comparison& comparison) {
    Json fields = Json::array();
    for (const FieldComparison& field : comparison.fields) {
        fields.push_back(fieldJson(field));
    }
    Json differences = Json::array();
    for (const Difference& difference : comparison.differences) {
        differences.push_back({{"place", difference.place},
                               {"first", valueJson(difference.first)},
                               {"second", valueJson(difference.second)}});
    }
    return Json{{"version", 1}, {"same", comparison.isSame}, {"fields", fields}, {"differences", differences}}.dump(1) +
           '\n';
}

} // namespace pos
