#include "problemSarif.h"

#include "Version.h"
#include "rules.h"

#include <QUrl>
#include <algorithm>
#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

Json text(const std::string& words) {
    return {{"text", words}};
}

Json ruleJson(const Rule& rule) {
    return {{"id", rule.code},
            {"shortDescription", text(rule.title)},
            {"fullDescription", text(rule.explanation)},
            {"defaultConfiguration", {{"level", severityWord(rule.severity)}}}};
}

/** A place; its end is behind its last character, as the standard has it. */
Json regionJson(Span place, const SourceText& source) {
    const LineColumn begin = source.at(place.begin);
    const LineColumn end = source.at(std::max(place.begin, std::min(place.end, source.utf8().size())));
    return {{"startLine", begin.line}, {"startColumn", begin.column}, {"endLine", end.line}, {"endColumn", end.column}};
}

/** The name of a file as a URI, relative if the name is. */
Json artifactJson(const std::string& file) {
    return {{"uri", QUrl::toPercentEncoding(QString::fromStdString(file), "/").toStdString()}};
}

Json resultJson(const Problem& problem, std::size_t ruleIndex, const CheckedFile& file) {
    const Json region = regionJson(problem.place, file.result.text);
    Json result = {
        {"ruleId", problem.rule->code},
        {"ruleIndex", ruleIndex},
        {"level", severityWord(problem.severity)},
        {"message", text(problem.message + (problem.help.empty() ? "" : ". " + problem.help))},
        {"locations", {{{"physicalLocation", {{"artifactLocation", artifactJson(file.name)}, {"region", region}}}}}}};
    if (problem.fix) {
        Json replacements = Json::array();
        for (const Span place : problem.fixedPlaces()) {
            replacements.push_back({{"deletedRegion", regionJson(place, file.result.text)},
                                    {"insertedContent", text(problem.fix->toStdString())}});
        }
        result["fixes"] = {
            {{"artifactChanges", {{{"artifactLocation", artifactJson(file.name)}, {"replacements", replacements}}}}}};
    }
    return result;
}

/** What the tool tells of itself: the documents that it could not check. */
Json invocationJson(const std::vector<CheckedFile>& files) {
    Json notifications = Json::array();
    for (const CheckedFile& file : files) {
        if (!file.trouble.empty()) {
            notifications.push_back(
                {{"level", "error"},
                 {"message", text(file.trouble)},
                 {"locations", {{{"physicalLocation", {{"artifactLocation", artifactJson(file.name)}}}}}}});
        }
    }
    return {{"executionSuccessful", notifications.empty()}, {"toolExecutionNotifications", notifications}};
}

} // namespace

std::string problemSarif(const std::vector<CheckedFile>& files) {
    const std::vector<const Rule*> rules = allRules();
    Json ruleList = Json::array();
    for (const Rule* rule : rules) {
        ruleList.push_back(ruleJson(*rule));
    }
    Json results = Json::array();
    for (const CheckedFile& file : files) {
        for (const Problem& problem : file.result.problems) {
            const auto index = std::find(rules.begin(), rules.end(), problem.rule) - rules.begin();
            results.push_back(resultJson(problem, static_cast<std::size_t>(index), file));
        }
    }
    const Json driver = {{"name", "veko check"}, {"version", configure_version}, {"rules", ruleList}};
    const Json log = {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                      {"version", "2.1.0"},
                      {"runs",
                       {{{"tool", {{"driver", driver}}},
                         {"invocations", Json::array({invocationJson(files)})},
                         {"columnKind", "unicodeCodePoints"},
                         {"results", results}}}}};
    return log.dump(1, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace pos
