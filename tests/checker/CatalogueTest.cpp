#include "checked.h"
#include "rules.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>

using namespace pos;

namespace {

/** Finds the start tag of an element of the faultless document: by its name, a guide star by its use. */
std::smatch startOf(const std::string& example) {
    std::smatch name;
    EXPECT_TRUE(std::regex_search(example, name, std::regex("^<(\\w+)"))) << example;
    const bool isGuide = name[1] == "target" && example.find("targuse=\"G\"") != std::string::npos;
    const std::string use = isGuide ? "[^\n]*\"G\"" : "\\b";
    std::smatch found;
    EXPECT_TRUE(std::regex_search(kFaultless, found, std::regex('<' + name[1].str() + use + "[^\n]*"))) << example;
    return found;
}

/** The faultless document with an element, or its start tag, in the place of its own. */
std::string documentWith(const std::string& example) {
    const std::smatch start = startOf(example);
    const std::string closing = "</" + example.substr(1, example.find_first_of(" />", 1) - 1) + '>';
    std::string rest = start.suffix();
    const bool isEmpty = example.ends_with("/>") && !start.str().ends_with("/>");
    if (example.ends_with(closing) || isEmpty) {
        rest.erase(0, rest.find(closing) + closing.size());
    }
    return start.prefix().str() + example + rest;
}

bool hasProblem(const std::string& document, const Rule& rule) {
    const CheckResult result = checked(document);
    return std::any_of(result.problems.begin(), result.problems.end(),
                       [&](const Problem& problem) { return problem.rule->code == std::string(rule.code); });
}

} // namespace

TEST(Catalogue, TheFaultlessDocumentHasNoProblem) {
    EXPECT_EQ(problemsOf(checked(kFaultless)), std::vector<std::string>());
}

TEST(Catalogue, EveryWrongExampleHasItsProblemAndTheRightOneHasNot) {
    for (const Rule* rule : allRules()) {
        if (rule == &kRunFails) {
            continue; // it covers what no other rule does
        }
        EXPECT_TRUE(hasProblem(documentWith(rule->wrong), *rule)) << rule->code << ' ' << rule->wrong;
        EXPECT_FALSE(hasProblem(documentWith(rule->right), *rule)) << rule->code << ' ' << rule->right;
    }
}

TEST(Catalogue, CodesAreUniqueAndEveryRuleIsExplained) {
    std::set<std::string> codes;
    for (const Rule* rule : allRules()) {
        EXPECT_TRUE(codes.insert(rule->code).second) << rule->code;
        EXPECT_GT(std::string(rule->explanation).size(), std::string(rule->title).size()) << rule->code;
    }
}
