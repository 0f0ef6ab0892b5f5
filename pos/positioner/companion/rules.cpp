#include "rules.h"

#include <algorithm>
#include <cstring>

namespace pos {

std::vector<const Rule*> allRules() {
    std::vector<const Rule*> rules = {&kUnreadable, &kRunFails, &kInstrumentUnreadable, &kInstrumentFails};
    for (const auto* group :
         {&rulesOfTheRun(), &rulesOfNames(), &rulesOfValues(), &rulesOfPlaces(), &rulesOfPointing()}) {
        for (const RuleEntry& entry : *group) {
            rules.push_back(&entry.rule);
        }
    }
    for (const InstrumentRuleEntry& entry : rulesOfTheInstrument()) {
        rules.push_back(&entry.rule);
    }
    std::sort(rules.begin(), rules.end(),
              [](const Rule* a, const Rule* b) { return std::strcmp(a->code, b->code) < 0; });
    return rules;
}

} // namespace pos
