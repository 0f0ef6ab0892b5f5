#include "problemJson.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

Json jsonOf(const Problem& problem, const SourceText& text) {
    const LineColumn begin = text.at(problem.place.begin);
    const LineColumn last = text.at(std::max(problem.place.begin, problem.place.end - 1));
    return {{"code", problem.rule->code},
            {"severity", severityWord(problem.severity)},
            {"line", begin.line},
            {"column", begin.column},
            {"endLine", last.line},
            {"endColumn", last.column},
            {"message", problem.message},
            {"help", problem.help},
            {"fix", problem.fix ? Json{{"text", problem.fix->toStdString()}} : Json()}};
}

} // namespace

std::string problemJson(const std::vector<CheckedFile>& files) {
    Json documents = Json::array();
    for (const CheckedFile& file : files) {
        Json problems = Json::array();
        for (const Problem& problem : file.result.problems) {
            problems.push_back(jsonOf(problem, file.result.text));
        }
        Json document = {{"file", file.name},
                         {"problems", problems},
                         {"errors", countOf(Severity::Error, file.result.problems)},
                         {"warnings", countOf(Severity::Warning, file.result.problems)}};
        if (!file.trouble.empty()) {
            document["trouble"] = file.trouble;
        }
        documents.push_back(document);
    }
    // Names of files need not be UTF-8.
    return Json{{"version", 1}, {"documents", documents}}.dump(1, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace pos
