#include "angles.h"
#include "comparisonRecords.h"

#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

constexpr double kMicrometres = 1000.0; // in a millimetre

double arcseconds(double radians) {
    return radiansToDegrees(radians) * 3600;
}

Json distancesJson(const std::optional<Distances>& distances, const std::string& unit, double factor) {
    if (!distances) {
        return {};
    }
    const auto& fibre = distances->worst->fibre;
    return {{"max" + unit, distances->greatest * factor},
            {"rms" + unit, distances->rms * factor},
            {"worstFibre", fibre ? Json(*fibre) : Json()}};
}

Json plateFitJson(const std::optional<Similarity>& fit) {
    if (!fit) {
        return {};
    }
    return {{"shiftUm", Json::array({fit->shift.x * kMicrometres, fit->shift.y * kMicrometres})},
            {"rotationArcsec", arcseconds(fit->rotation)},
            {"scalePpm", fit->scale * 1e6},
            {"residualRmsUm", fit->residualRms * kMicrometres}};
}

Json skyFitJson(const std::optional<Similarity>& fit) {
    if (!fit) {
        return {};
    }
    return {{"shiftArcsec", Json::array({arcseconds(fit->shift.y), arcseconds(fit->shift.x)})}, // east, north
            {"rotationArcsec", arcseconds(fit->rotation)},
            {"scalePpm", fit->scale * 1e6},
            {"residualRmsArcsec", arcseconds(fit->residualRms)}};
}

Json fieldJson(const FieldComparison& field) {
    return {{"field", field.number},
            {"targets", field.targets.size()},
            {"plate", distancesJson(field.plate(), "Um", kMicrometres)},
            {"sky", distancesJson(field.sky(), "Arcsec", arcseconds(1.0))},
            {"fit", plateFitJson(field.plateFit())},
            {"skyFit", skyFitJson(field.skyFit())},
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
