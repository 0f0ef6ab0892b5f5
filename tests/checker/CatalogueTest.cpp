#include "ProcessWideState.h"
#include "checked.h"
#include "instrumentOnDisk.h"
#include "rules.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>

using namespace pos;

namespace {

/** Finds the start tag of an element of a right document: by its name, a guide star by its use. */
bool findStart(const std::string& document, const std::string& example, std::smatch& found) {
    std::smatch name;
    EXPECT_TRUE(std::regex_search(example, name, std::regex("^<(\\w+)"))) << example;
    const bool isGuide = name[1] == "target" && example.find("targuse=\"G\"") != std::string::npos;
    const std::string use = isGuide ? "[^\n]*\"G\"" : "\\b";
    return std::regex_search(document, found, std::regex('<' + name[1].str() + use + "[^\n]*"));
}

/** Puts an element, or its start tag, into a right document in the place of its own. @return whether it has one */
bool putInto(std::string& document, const std::string& example) {
    std::smatch start;
    if (!findStart(document, example, start)) {
        return false;
    }
    const std::string closing = "</" + example.substr(1, example.find_first_of(" />", 1) - 1) + '>';
    std::string rest = start.suffix();
    const bool isEmpty = example.ends_with("/>") && !start.str().ends_with("/>");
    if ((example.ends_with(closing) || isEmpty) && !start.str().ends_with(closing)) {
        rest.erase(0, rest.find(closing) + closing.size());
    }
    document = start.prefix().str() + example + rest;
    return true;
}

std::vector<Problem> problemsOfField(const std::string& example) {
    std::string document = kFaultless;
    EXPECT_TRUE(putInto(document, example)) << example;
    return checked(document).problems;
}

std::vector<Problem> problemsOfInstrument(const std::string& example) {
    InstrumentOnDisk instrument;
    EXPECT_TRUE(putInto(instrument.configuration, example) || putInto(instrument.map, example) ||
                putInto(instrument.bundle, example))
        << example;
    const TemporaryFolder folder;
    std::vector<Problem> problems;
    for (const CheckedFile& file : checkedAnew(instrument, folder).files) {
        problems.insert(problems.end(), file.result.problems.begin(), file.result.problems.end());
    }
    return problems;
}

/** The codes of the problems that a document with an example has. */
std::set<std::string> codesIn(const std::string& example, const Rule& rule) {
    const bool isOfInstrument = std::string(rule.code).starts_with("VK6");
    std::set<std::string> codes;
    for (const Problem& problem : isOfInstrument ? problemsOfInstrument(example) : problemsOfField(example)) {
        codes.insert(problem.rule->code);
    }
    return codes;
}

class Catalogue : public ProcessWideState {};

} // namespace

TEST_F(Catalogue, TheFaultlessDocumentHasNoProblem) {
    EXPECT_EQ(problemsOf(checked(kFaultless)), std::vector<std::string>());
}

TEST_F(Catalogue, EveryWrongExampleHasItsProblemAndTheRightOneHasNone) {
    for (const Rule* rule : allRules()) {
        if (rule == &kRunFails || rule == &kInstrumentFails) {
            continue; // they cover what no other rule does
        }
        EXPECT_TRUE(codesIn(rule->wrong, *rule).contains(rule->code)) << rule->code << ' ' << rule->wrong;
        EXPECT_EQ(codesIn(rule->right, *rule), std::set<std::string>()) << rule->code << ' ' << rule->right;
    }
}

TEST_F(Catalogue, CodesAreUniqueAndEveryRuleIsExplained) {
    std::set<std::string> codes;
    for (const Rule* rule : allRules()) {
        EXPECT_TRUE(codes.insert(rule->code).second) << rule->code;
        EXPECT_GT(std::string(rule->explanation).size(), std::string(rule->title).size()) << rule->code;
    }
}
