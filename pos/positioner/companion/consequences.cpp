#include "consequences.h"

#include "xmlKeywords.h"

#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace pos {

namespace {

const std::string kRunSays = "the run says: ";

/** Tells a cause what the run says about its consequence, if that is an error. */
void tellCause(Problem& cause, const Problem& consequence) {
    if (consequence.severity != Severity::Error) {
        return;
    }
    const std::size_t begin = consequence.message.rfind(kRunSays);
    const std::string said =
        begin == std::string::npos ? consequence.message : consequence.message.substr(begin + kRunSays.size());
    cause.severity = Severity::Error;
    if (cause.message.find(said) == std::string::npos) {
        cause.message += "; " + kRunSays + said;
    }
}

bool hasCode(const Problem& problem, const std::string& code) {
    return problem.rule->code == code;
}

/** The digit with which the codes of a group of rules begin. */
char groupOf(const Problem& problem) {
    return problem.rule->code[2];
}

/** Whether a problem tells what is wrong with a value itself. */
bool isOfValue(const Problem& problem) {
    return (groupOf(problem) == '2' || groupOf(problem) == '3') && problem.severity != Severity::Note;
}

using Codes = std::set<std::string>;

/** What is told of the pointing at a date and a place. What never rises does so at no date. */
const Codes& codesOfPointing() {
    static const Codes codes = {"VK501", "VK503", "VK504", "VK507", "VK508", "VK509"};
    return codes;
}

/** The values that fields are pointed by, and the codes of what follows from each. */
std::vector<std::pair<Span, Codes>> valuesOfPointing(const CheckedDocument& document) {
    std::vector<std::pair<Span, Codes>> values;
    const auto add = [&](const SourceElement& element, const QString& attribute, const Codes& codes) {
        values.emplace_back(valueOrOpening(element, attribute), codes);
    };
    if (document.observation != nullptr) {
        add(*document.observation, attr::pa, {"VK503"});
    }
    if (document.conditions != nullptr) {
        add(*document.conditions, attr::ha, codesOfPointing());
        add(*document.conditions, attr::epoch, codesOfPointing());
        add(*document.conditions, attr::pressure, {"VK505"});
    }
    if (!document.fields.empty()) {
        add(*document.fields.front().element, attr::raD, codesOfPointing());
        add(*document.fields.front().element, attr::decD, codesOfPointing());
    }
    return values;
}

/** The codes of what follows from a problem, wherever it is told. */
Codes codesThatFollow(const Problem& problem, const std::vector<std::pair<Span, Codes>>& values) {
    const bool isError = problem.severity == Severity::Error;
    // All fields are pointed by the hour angle and the position angle of the first.
    if (hasCode(problem, "VK217") || (isError && hasCode(problem, "VK501"))) {
        return codesOfPointing();
    }
    if (isError && hasCode(problem, "VK503")) {
        return {"VK503"};
    }
    Codes codes;
    for (const auto& [place, codesOfValue] : values) {
        if (isOfValue(problem) && problem.place == place) {
            codes.insert(codesOfValue.begin(), codesOfValue.end());
        }
    }
    return codes;
}

using Place = std::pair<int, int>;

Place placeOf(const Problem& problem) {
    return {problem.place.begin, problem.place.end};
}

/** Whether a problem is told at its place alone: a date that cannot be found says more than the range of a value. */
bool isOfNoDate(const Problem& problem) {
    return hasCode(problem, "VK504");
}

/** The problem from which others at its place follow: of a value itself, else an error of the pointing. */
std::map<Place, Problem*> causesByPlace(std::vector<Problem>& problems) {
    std::map<Place, Problem*> causes;
    const auto add = [&](const auto& isCause) {
        for (Problem& problem : problems) {
            if (isCause(problem)) {
                causes.try_emplace(placeOf(problem), &problem);
            }
        }
    };
    add(isOfNoDate);
    add(isOfValue);
    add([](const Problem& problem) { return hasCode(problem, "VK501") || hasCode(problem, "VK502"); }); // too low
    add([](const Problem& problem) { return groupOf(problem) == '5' && problem.severity == Severity::Error; });
    return causes;
}

/** The values by which the science targets and guide stars of a document have their places. */
std::map<Place, const CheckedField*> placesOfTargets(const CheckedDocument& document) {
    std::map<Place, const CheckedField*> fields;
    for (const CheckedField& field : document.fields) {
        for (const SourceElement* target : {field.science, field.guide}) {
            for (const QString& name :
                 {attr::targra, attr::targdec, attr::targepoch, attr::targpmra, attr::targpmdec}) {
                const SourceAttribute* attribute = target != nullptr ? target->attribute(name) : nullptr;
                if (attribute != nullptr) {
                    fields.emplace(Place(attribute->valuePlace.begin, attribute->valuePlace.end), &field);
                }
            }
        }
    }
    return fields;
}

/** Tells causes what follows from them, and removes that. @param causeOf the cause of a problem; null without one */
template <typename CauseOf> void removeWithCause(std::vector<Problem>& problems, const CauseOf& causeOf) {
    std::vector<Problem> left;
    std::vector<bool> isRemoved(problems.size());
    for (std::size_t i = 0; i < problems.size(); ++i) {
        Problem* const cause = causeOf(problems[i]);
        isRemoved[i] = cause != nullptr && cause != &problems[i];
        if (isRemoved[i]) {
            tellCause(*cause, problems[i]);
        }
    }
    for (std::size_t i = 0; i < problems.size(); ++i) {
        if (!isRemoved[i]) {
            left.push_back(std::move(problems[i]));
        }
    }
    problems = std::move(left);
}

/** Of the problems at one place, removes what follows from another one. */
void removeWhatPlacesTell(std::vector<Problem>& problems) {
    const std::map<Place, Problem*> causes = causesByPlace(problems);
    removeWithCause(problems, [&](const Problem& problem) -> Problem* {
        const auto cause = causes.find(placeOf(problem));
        const bool follows = cause != causes.end() && (groupOf(problem) >= '4' || isOfNoDate(*cause->second));
        return follows ? cause->second : nullptr;
    });
}

/** Of the problems at the targets of a field, removes what follows from a value that no star has. */
void removeWhatTargetsTell(std::vector<Problem>& problems, const CheckedDocument& document) {
    static const Codes kCauses = {"VK318", "VK320"};
    static const Codes kConsequences = {"VK401", "VK402", "VK505", "VK506"};
    const std::map<Place, const CheckedField*> fields = placesOfTargets(document);
    std::map<const CheckedField*, Problem*> causes;
    for (Problem& problem : problems) {
        const auto field = fields.find(placeOf(problem));
        if (field != fields.end() && kCauses.contains(problem.rule->code)) {
            causes.try_emplace(field->second, &problem);
        }
    }
    removeWithCause(problems, [&](const Problem& problem) -> Problem* {
        const auto field = fields.find(placeOf(problem));
        const auto cause = field != fields.end() ? causes.find(field->second) : causes.end();
        return cause != causes.end() && kConsequences.contains(problem.rule->code) ? cause->second : nullptr;
    });
}

/** Removes what is told of a pointing that is not the one that is meant, or not possible. */
void removeWhatPointingTells(std::vector<Problem>& problems, const CheckedDocument& document) {
    const auto values = valuesOfPointing(document);
    std::map<std::string, Problem*> causes; // by the codes that follow
    for (Problem& problem : problems) {
        for (const std::string& code : codesThatFollow(problem, values)) {
            causes.try_emplace(code, &problem);
        }
    }
    removeWithCause(problems, [&](const Problem& problem) -> Problem* {
        const auto cause = causes.find(problem.rule->code);
        return cause != causes.end() ? cause->second : nullptr;
    });
}

} // namespace

void removeConsequences(std::vector<Problem>& problems, const CheckedDocument& document) {
    removeWhatPlacesTell(problems);
    removeWhatTargetsTell(problems, document);
    removeWhatPointingTells(problems, document);
}

void removeWhatFixesMend(std::vector<Problem>& problems, const AppliedFixes& fixes, const std::vector<Problem>& left) {
    std::set<std::pair<char, int>> isLeft;
    for (const Problem& problem : left) {
        isLeft.emplace(groupOf(problem), problem.place.begin);
    }
    std::map<int, Problem*> causes; // by their places
    for (Problem& problem : problems) {
        if (problem.fix) {
            causes.try_emplace(problem.place.begin, &problem);
        }
    }
    removeWithCause(problems, [&](const Problem& problem) -> Problem* {
        if (problem.fix || causes.empty() || isLeft.contains({groupOf(problem), fixes.placeOf(problem.place.begin)})) {
            return nullptr;
        }
        // What lacks a thing stands before whatever is there in the place of the thing.
        const auto next = causes.lower_bound(problem.place.begin);
        return (next != causes.end() ? next : std::prev(next))->second;
    });
}

} // namespace pos
