/**
 * @file
 * What is wrong with a document.
 */
#ifndef POS_PROBLEM_H
#define POS_PROBLEM_H

#include "SourceText.h"

#include <QByteArray>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pos {

/** How bad a problem is. */
enum class Severity {
    Error,   ///< the run fails
    Warning, ///< the run passes, and probably does not what is meant
    Note     ///< the run passes
};

/** The word for a severity: "error", "warning", "note". */
const char* severityWord(Severity severity);

/** A kind of problem. */
struct Rule {
    const char* code; ///< stable, never used again for another
    Severity severity;
    const char* title;       ///< one line
    const char* explanation; ///< what it means and why it matters, paragraphs in Markdown
    const char* wrong;       ///< an element of a document with this problem
    const char* right;       ///< the same without it
};

/** One problem at one place. */
struct Problem {
    const Rule* rule;
    Severity severity;
    Span place;
    std::string message;           ///< one sentence without its full stop
    std::string help;              ///< what to do, one sentence without its full stop
    std::optional<QByteArray> fix; ///< what to write in the place instead, UTF-8
    /** The name in an end tag, in whose place the fix is to be written too. */
    std::optional<Span> endName = std::nullopt;

    /** The places that the fix goes to. */
    std::vector<Span> fixedPlaces() const {
        return endName ? std::vector{place, *endName} : std::vector{place};
    }
};

/** How many problems of a severity there are. */
std::ptrdiff_t countOf(Severity severity, const std::vector<Problem>& problems);

/** Gathers the problems of one document. */
class Problems {
public:
    /** Adds a problem of the rule's own severity. */
    void add(const Rule& rule, Span place, const std::string& message, const std::string& help,
             const std::optional<QByteArray>& fix = std::nullopt, std::optional<Span> endName = std::nullopt) {
        add(rule, rule.severity, place, message, help, fix, endName);
    }
    /** Adds a problem of another severity. */
    void add(const Rule& rule, Severity severity, Span place, const std::string& message, const std::string& help,
             const std::optional<QByteArray>& fix = std::nullopt, std::optional<Span> endName = std::nullopt) {
        problems_.push_back({&rule, severity, place, message, help, fix, endName});
    }

    /** All problems, in the order in which they were added. */
    std::vector<Problem>& all() {
        return problems_;
    }

    /**
     * All problems in document order. Where the message of one goes on from that of another at the same place, only
     * the longer one is among them: a rule that knows more takes the place of a general one.
     */
    std::vector<Problem> sorted() &&;

private:
    std::vector<Problem> problems_;
};

} // namespace pos

#endif
