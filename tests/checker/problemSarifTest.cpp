#include "problemSarif.h"

#include "checked.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace pos;

TEST(ProblemSarif, AFixReplacesANameInBothTags) {
    std::string document = kFaultless;
    for (const char* const tag : {"<fields>", "</fields>"}) {
        document.replace(document.find(tag) + std::string(tag).find('f'), 1, "F");
    }
    const auto log = nlohmann::json::parse(problemSarif({{"my field.xml", checked(document)}}));
    EXPECT_EQ(log["runs"][0]["invocations"][0]["executionSuccessful"], true);
    const auto& last = log["runs"][0]["results"].back(); // what goes before is that the run finds no field
    EXPECT_EQ(last["fixes"], nlohmann::json::parse(R"([{"artifactChanges": [{
        "artifactLocation": {"uri": "my%20field.xml"},
        "replacements": [
            {"deletedRegion": {"startLine": 7, "startColumn": 2, "endLine": 7, "endColumn": 8},
             "insertedContent": {"text": "fields"}},
            {"deletedRegion": {"startLine": 12, "startColumn": 3, "endLine": 12, "endColumn": 9},
             "insertedContent": {"text": "fields"}}]}]}])"));
}
