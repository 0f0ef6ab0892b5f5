#include "Problem.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace pos {

const char* severityWord(Severity severity) {
    switch (severity) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    case Severity::Note:
        return "note";
    }
    return "";
}

std::ptrdiff_t countOf(Severity severity, const std::vector<Problem>& problems) {
    return std::count_if(problems.begin(), problems.end(),
                         [severity](const Problem& problem) { return problem.severity == severity; });
}

namespace {

/** Removes the problems whose message is the beginning of another one's at the same place. */
void removeBeginnings(std::vector<Problem>& problems) {
    using Said = std::tuple<int, int, std::string>;
    const auto said = [](const Problem& problem) {
        return Said(problem.place.begin, problem.place.end, problem.message);
    };
    std::set<Said> all;
    for (const Problem& problem : problems) {
        all.insert(said(problem));
    }
    const auto goesOn = [&](const Problem& problem) {
        // Of the texts with the same beginning, the next in order is one.
        const auto next = all.upper_bound(said(problem));
        return next != all.end() && std::get<0>(*next) == problem.place.begin &&
               std::get<1>(*next) == problem.place.end && std::get<2>(*next).rfind(problem.message, 0) == 0;
    };
    problems.erase(std::remove_if(problems.begin(), problems.end(), goesOn), problems.end());
}

} // namespace

std::vector<Problem> Problems::sorted() && {
    removeBeginnings(problems_);
    const auto key = [](const Problem& problem) { return std::tuple(problem.place.begin, problem.place.end); };
    std::stable_sort(problems_.begin(), problems_.end(),
                     [&](const Problem& a, const Problem& b) { return key(a) < key(b); });
    return std::move(problems_);
}

} // namespace pos
