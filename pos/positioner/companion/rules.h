/**
 * @file
 * The catalogue of rules.
 */
#ifndef POS_RULES_H
#define POS_RULES_H

#include "CheckedDocument.h"
#include "Problem.h"

#include <string>
#include <vector>

namespace pos {

/** A rule and the function that finds its problems. */
struct RuleEntry {
    Rule rule;
    /** Adds the problems of the rule that a document has. */
    void (*find)(const Rule& rule, const CheckedDocument& document, Problems& problems);
};

// One group a file. Their codes begin with the same digit.
const std::vector<RuleEntry>& rulesOfTheRun();   ///< 1: what makes the run fail
const std::vector<RuleEntry>& rulesOfNames();    ///< 2: names, and what the run passes over
const std::vector<RuleEntry>& rulesOfValues();   ///< 3: units, formats and ranges of values
const std::vector<RuleEntry>& rulesOfPlaces();   ///< 4: places on the sky and on the plate
const std::vector<RuleEntry>& rulesOfPointing(); ///< 5: horizon, rotator, Sun and Moon

/** A document that cannot be read. */
extern const Rule kUnreadable;
/** A failure of the run that no other rule has found. */
extern const Rule kRunFails;

/** All rules in the order of their codes. */
std::vector<const Rule*> allRules();

} // namespace pos

#endif
