#include "Report.h"
#include "SunAndMoon.h"
#include "angles.h"
#include "pageTemplate.h"
#include "provenance.h"
#include "reportPage.h"
#include "windowRecords.h"

#include <cmath>
#include <erfa.h>
#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

/** A number with so many decimals; null for none. */
Json decimals(double value, int number) {
    return std::isfinite(value) ? Json::parse(QString::number(value, 'f', number).toStdString()) : Json();
}

Json degrees(double radians) {
    return decimals(radiansToDegrees(radians), 3);
}

Json jsonOf(const ReportedFibre& fibre) {
    return {{"id", fibre.id},
            {"spaxel", fibre.spaxel},
            {"kind", wordOf(fibre.kind)},
            {"xMm", decimals(fibre.plate.x, 6)},
            {"yMm", decimals(fibre.plate.y, 6)},
            {"raDeg", decimals(fibre.raDeg, 6)},
            {"decDeg", decimals(fibre.decDeg, 6)}};
}

Json jsonOf(const ReportedPlace& place) {
    return {{"name", place.name},
            {"raDeg", decimals(radiansToDegrees(place.sky.ra), 6)},
            {"decDeg", decimals(radiansToDegrees(place.sky.dec), 6)},
            {"xMm", decimals(place.plate.x, 6)},
            {"yMm", decimals(place.plate.y, 6)}};
}

template <typename Value> Json listOf(const std::vector<NightSample>& night, const Value& value) {
    Json list = Json::array();
    for (const NightSample& sample : night) {
        list.push_back(value(sample));
    }
    return list;
}

Json nightJson(const std::vector<NightSample>& night) {
    const auto degreesOf = [&](double NightSample::*which) {
        return listOf(night, [&](const NightSample& sample) { return degrees(sample.*which); });
    };
    const auto airmassOf = [](const NightSample& sample) {
        return sample.altitude < 0 ? Json() : decimals(airmass(sample.altitude), 3);
    };
    return {{"mjdTai", listOf(night, [](const NightSample& sample) { return decimals(sample.mjdTai, 6); })},
            {"altitudeDeg", degreesOf(&NightSample::altitude)},
            {"airmass", listOf(night, airmassOf)},
            {"rotatorDeg", degreesOf(&NightSample::rotatorAngle)},
            {"parallacticDeg", degreesOf(&NightSample::parallacticAngle)},
            {"sunAltitudeDeg", degreesOf(&NightSample::sunAltitude)},
            {"moonAltitudeDeg", degreesOf(&NightSample::moonAltitude)}};
}

/** The windows as veko window tells them. */
Json windowsJson(const Report& report, const ReportedField& field) {
    const FieldNight night{report.request.file, 1, field.windows};
    return Json::parse(windowJson({night}, {{}, report.telescope})).at("nights").at(0).at("windows");
}

Json jsonOf(const Report& report, const ReportedField& field) {
    Json fibres = Json::array();
    for (const ReportedFibre& fibre : field.fibres) {
        fibres.push_back(jsonOf(fibre));
    }
    Json science = jsonOf(field.science);
    science["fibre"] = field.scienceFibre;
    Json guide = jsonOf(field.guide);
    const Astrometric& star = field.guide.sky;
    guide["distanceArcmin"] =
        decimals(radiansToDegrees(eraSeps(field.science.sky.ra, field.science.sky.dec, star.ra, star.dec)) * 60, 4);
    return {{"name", field.name},
            {"fibres", std::move(fibres)},
            {"centre", jsonOf(field.centre)},
            {"science", std::move(science)},
            {"guide", std::move(guide)},
            {"followed",
             {{"raDeg", radiansToDegrees(field.followed.ra)}, {"decDeg", radiansToDegrees(field.followed.dec)}}},
            {"night", nightJson(field.night)},
            {"windows", windowsJson(report, field)},
            {"reason", field.windows.windows.empty() ? Json(field.windows.reason) : Json()}};
}

Json siteJson(const Telescope& site) {
    return {{"eastLongitudeDeg", radiansToDegrees(site.eastLongitude)},
            {"latitudeDeg", radiansToDegrees(site.latitude)},
            {"heightM", site.height},
            {"refractionFromDeg", radiansToDegrees(site.horizonLimit)},
            {"rotatorOffsetDeg", radiansToDegrees(site.rotatorOffset)},
            {"rotatorLowDeg", radiansToDegrees(site.rotatorLowLimit)},
            {"rotatorHighDeg", radiansToDegrees(site.rotatorHighLimit)}};
}

Json conditionsJson(const Conditions& conditions) {
    return {{"mjdTai", decimals(conditions.epoch, 8)},
            {"temperatureK", conditions.temperature},
            {"pressureMbar", conditions.pressure},
            {"relativeHumidity", conditions.relativeHumidity}};
}

/** All problems, each with its file. */
Json problemsJson(const std::vector<CheckedFile>& files) {
    Json all = Json::array();
    const Json checked = Json::parse(problemJson(files));
    for (const Json& file : checked.at("documents")) {
        for (const Json& problem : file.at("problems")) {
            Json withFile = {{"file", file.at("file")}};
            withFile.update(problem);
            all.push_back(std::move(withFile));
        }
    }
    return all;
}

} // namespace

std::string reportJson(const Report& report) {
    Json fields = Json::array();
    for (const ReportedField& field : report.fields) {
        fields.push_back(jsonOf(report, field));
    }
    return jsonForScript({{"version", 1},
                          {"site", siteJson(report.telescope)},
                          {"conditions", conditionsJson(report.conditions)},
                          {"positionAngleDeg", radiansToDegrees(report.fields.front().pointing.positionAngle())},
                          {"fields", std::move(fields)},
                          {"problems", problemsJson(report.checked)},
                          {"provenance", provenanceJson(report)}});
}

} // namespace pos
