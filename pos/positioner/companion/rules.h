/**
 * @file
 * The catalogue of rules.
 */
#ifndef POS_RULES_H
#define POS_RULES_H

#include "CheckedDocument.h"
#include "InstrumentDocument.h"
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

/** A rule of the instrument's documents and the function that finds its problems. */
struct InstrumentRuleEntry {
    Rule rule;
    /** Adds the problems of the rule that a document has. */
    void (*find)(const Rule& rule, const InstrumentDocument& document, Problems& problems);
};

// One group a file. Their codes begin with the same digit.
const std::vector<RuleEntry>& rulesOfTheRun();   ///< 1: what makes the run fail
const std::vector<RuleEntry>& rulesOfNames();    ///< 2: names, and what the run passes over
const std::vector<RuleEntry>& rulesOfValues();   ///< 3: units, formats and ranges of values
const std::vector<RuleEntry>& rulesOfPlaces();   ///< 4: places on the sky and on the plate
const std::vector<RuleEntry>& rulesOfPointing(); ///< 5: horizon, rotator, Sun and Moon

/** 6: the documents of the instrument. */
const std::vector<InstrumentRuleEntry>& rulesOfTheInstrument();

/** A document that cannot be read. */
extern const Rule kUnreadable;
/** A failure of the run that no other rule has found. */
extern const Rule kRunFails;

/** A document of the instrument that cannot be read. */
extern const Rule kInstrumentUnreadable;
/** An instrument with which every run fails, for what no other rule has found. */
extern const Rule kInstrumentFails;

/** All rules in the order of their codes. */
std::vector<const Rule*> allRules();

} // namespace pos

#endif
