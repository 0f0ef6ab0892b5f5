#include "Program.h"
#include "TemporaryFolder.h"
#include "checked.h"
#include "instrumentOnDisk.h"

#include <csignal>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

ProgramResult check(std::vector<std::string> arguments, const ProgramOptions& options = {}) {
    arguments.insert(arguments.begin(), {VEKO_EXECUTABLE, "check"});
    return runCommand(arguments, options);
}

const std::string kWrong =
    replaced(kFaultless,
             R"(<conditions epoch="2027.25" temperature="281.5" pressure="770" relative_humidity="0.25" ha="-1.0"/>)",
             R"(<conditions epoch="2027.25" ha="west"/>)");

} // namespace

TEST(CheckCommand, AFaultlessDocumentEndsWithStatusZeroAndASummary) {
    const TemporaryFolder folder;
    const ProgramResult result = check({folder.write("f.xml", kFaultless)});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "1 file: 0 errors, 0 warnings\n");
    EXPECT_EQ(result.err, "");
}

TEST(CheckCommand, AnErrorEndsWithStatusOne) {
    const TemporaryFolder folder;
    folder.write("f.xml", kWrong);
    const ProgramResult result = check({"f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, R"(f.xml:5:33: error: Bad hour angle in XML: 'west' [VK105]
    5 | <conditions epoch="2027.25" ha="west"/>
      |                                 ^~~~
help: Write hours, or leave it out for 0, or give `--ha`

1 file: 1 error, 0 warnings
)");
    EXPECT_EQ(result.err, "");
}

TEST(CheckCommand, WhatCannotBeCheckedEndsWithStatusTwoAndTheOthersAreChecked) {
    const TemporaryFolder folder;
    folder.write("f.xml", kFaultless);
    const ProgramResult result = check({"missing.xml", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "1 file: 0 errors, 0 warnings\n");
    EXPECT_EQ(result.err, "missing.xml could not be opened\n");
    for (const std::vector<std::string>& bad : std::vector<std::vector<std::string>>{{},
                                                                                     {"--unknown", "f.xml"},
                                                                                     {"--ha", "nan", "f.xml"},
                                                                                     {"--fix", "--diff", "f.xml"},
                                                                                     {"--explain", "VK000"}}) {
        EXPECT_EQ(check(bad, {.folder = folder.name()}).status, 2) << testing::PrintToString(bad);
    }
}

TEST(CheckCommand, TheRadiusOfAFieldIsFiniteAboveZeroAndAtMostARightAngle) {
    const TemporaryFolder folder;
    folder.write("f.xml", kFaultless);
    for (const std::string radius : {"nan", "inf", "0", "-1", "90.5", "wide"}) {
        const ProgramResult result = check({"--field_radius", radius, "f.xml"}, {.folder = folder.name()});
        EXPECT_EQ(result.status, 2) << radius;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "--field_radius: '" + radius +
                                  "' is not above 0 and at most 90 degrees\n"
                                  "Run with --help for more information.\n");
    }
    EXPECT_EQ(check({"--field_radius", "90", "f.xml"}, {.folder = folder.name()}).status, 0);
}

TEST(CheckCommand, ReadsTheStandardInputAndTheOptionsOfTheRun) {
    const TemporaryFolder folder;
    folder.write("f.xml", kWrong);
    EXPECT_EQ(check({"-"}, {.folder = folder.name(), .shellRedirection = "< f.xml"}).status, 1);
    EXPECT_EQ(check({"--ha", "-0.5", "f.xml"}, {.folder = folder.name()}).status, 0);
}

TEST(CheckCommand, JsonHoldsEveryProblemAndNothingElse) {
    const TemporaryFolder folder;
    folder.write("f.xml", kWrong);
    const ProgramResult result = check({"--format", "json", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(nlohmann::json::parse(result.out), nlohmann::json::parse(R"({"version": 1, "documents": [{"file": "f.xml",
        "problems": [{"code": "VK105", "severity": "error", "line": 5, "column": 33, "endLine": 5, "endColumn": 36,
        "message": "Bad hour angle in XML: 'west'", "help": "Write hours, or leave it out for 0, or give `--ha`",
        "fix": null}], "errors": 1, "warnings": 0}]})"));
}

TEST(CheckCommand, JsonAndSarifNameWhatCouldNotBeChecked) {
    const TemporaryFolder folder;
    folder.write("f.xml", kFaultless);
    const ProgramResult json = check({"--format", "json", "missing.xml", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(json.status, 2);
    EXPECT_EQ(json.err, "missing.xml could not be opened\n");
    EXPECT_EQ(nlohmann::json::parse(json.out), nlohmann::json::parse(R"({"version": 1, "documents": [
        {"file": "missing.xml", "problems": [], "errors": 0, "warnings": 0,
         "trouble": "missing.xml could not be opened"},
        {"file": "f.xml", "problems": [], "errors": 0, "warnings": 0}]})"));
    const ProgramResult sarif = check({"--format", "sarif", "-c", "missing.xml", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(sarif.status, 2);
    EXPECT_EQ(nlohmann::json::parse(sarif.out).at("runs").at(0).at("invocations"), nlohmann::json::parse(R"([
        {"executionSuccessful": false, "toolExecutionNotifications": [
            {"level": "error", "message": {"text": "Unable to open config file: missing.xml"},
             "locations": [{"physicalLocation": {"artifactLocation": {"uri": "missing.xml"}}}]}]}])"));
}

TEST(CheckCommand, FixMendsTheFileAndASecondTimeChangesNothing) {
    const TemporaryFolder folder;
    folder.write("f.xml", replaced(kFaultless, "8.00", "8.0"));
    const ProgramResult diff = check({"--diff", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(diff.status, 0);
    EXPECT_EQ(diff.out, "--- f.xml\n+++ f.xml\n@@ -1,5 +1,5 @@\n <?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "-<field_definition datamver=\"8.0\">\n+<field_definition datamver=\"8.00\">\n"
                        " <observation pa=\"0\">\n <configure>\n <conditions epoch=\"2027.25\" temperature=\"281.5\" "
                        "pressure=\"770\" relative_humidity=\"0.25\" ha=\"-1.0\"/>\n");
    for (const std::string told : {"f.xml:2:29: mended: 8.0 -> 8.00 [VK102]\n", ""}) {
        const ProgramResult fixed = check({"--fix", "f.xml"}, {.folder = folder.name()});
        EXPECT_EQ(fixed.status, 0);
        EXPECT_EQ(fixed.out, "1 file: 0 errors, 0 warnings\n");
        EXPECT_EQ(fixed.err, told);
        EXPECT_EQ(folder.read("f.xml"), kFaultless);
    }
}

TEST(CheckCommand, AValueIsMendedOnceItsNameIs) {
    const TemporaryFolder folder;
    folder.write("f.xml", replaced(kFaultless, "targra=\"190.120000\"", "RA=\"190,120000\""));
    const ProgramResult fixed = check({"--fix", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(fixed.err, "f.xml:10:37: mended: RA -> targra [VK201]\n"
                         "f.xml:10:45: mended: 190,120000 -> 190.120000 [VK302]\n");
    EXPECT_EQ(folder.read("f.xml"), kFaultless);
}

TEST(CheckCommand, ADiffTellsThatNothingCanBeMended) {
    const TemporaryFolder folder;
    folder.write("right.xml", kFaultless);
    folder.write("wrong.xml", kWrong);
    const ProgramResult diff = check({"--diff", "right.xml", "wrong.xml"}, {.folder = folder.name()});
    EXPECT_EQ(diff.status, 0);
    EXPECT_EQ(diff.out, "");
    EXPECT_EQ(diff.err, "wrong.xml has problems, and none can be mended for certain\n");
}

TEST(CheckCommand, TheStandardInputCannotBeMendedInPlace) {
    const TemporaryFolder folder;
    folder.write("f.xml", kWrong);
    const ProgramResult result = check({"--fix", "f.xml", "-"}, {.folder = folder.name()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "--fix: the standard input cannot be mended in place\nRun with --help for more information.\n");
    EXPECT_EQ(folder.read("f.xml"), kWrong);
}

TEST(CheckCommand, AReaderThatHasSeenEnoughEndsItWithoutAMessage) {
    const TemporaryFolder folder;
    std::string document = kFaultless;
    for (int i = 0; i < 1000; ++i) { // more than a pipe holds
        document.insert(document.find("</fields>"), "<Field/>\n");
    }
    folder.write("f.xml", document);
    const ProgramResult result =
        check({"f.xml"}, {.folder = folder.name(), .shellRedirection = "| head -n 1; exit ${PIPESTATUS[0]}"});
    EXPECT_EQ(result.status, 128 + SIGPIPE);
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
    EXPECT_EQ(result.err, "");
}

TEST(CheckCommand, ListsAndExplainsItsRules) {
    const ProgramResult list = check({"--list"});
    EXPECT_EQ(list.status, 0);
    EXPECT_NE(list.out.find("VK105  error    The hour angle is not a number\n"), std::string::npos) << list.out;
    const ProgramResult explained = check({"--explain", "VK105"});
    EXPECT_EQ(explained.status, 0);
    EXPECT_NE(explained.out.find("\nWrong:\n    <conditions epoch=\"2027.25\" ha=\"west\"/>\nRight:\n"),
              std::string::npos)
        << explained.out;
}

TEST(CheckCommand, RulesAreListedAndExplainedWithoutFiles) {
    const TemporaryFolder folder;
    folder.write("f.xml", kWrong);
    for (const auto& [arguments, told] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"--list", "f.xml"}, "FILE excludes --list"},
             {{"--explain", "VK105", "f.xml"}, "FILE excludes --explain"},
             {{"--explain", "VK105", "--list"}, "--list excludes --explain"}}) {
        const ProgramResult result = check(arguments, {.folder = folder.name()});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, told + "\nRun with --help for more information.\n");
    }
}

TEST(CheckCommand, NumbersOfOptionsAreJudgedAsThoseOfTheDocument) {
    const TemporaryFolder folder;
    folder.write("f.xml", kFaultless);
    const ProgramResult pressure = check({"--pressure", "0.77", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(pressure.status, 0);
    EXPECT_EQ(pressure.out, "1 file: 0 errors, 0 warnings\n");
    EXPECT_EQ(pressure.err, "--pressure: warning: pressure is 0.77, which looks like bar [VK312]\n"
                            "help: Write a plain number of millibar, perhaps 770\n");
    // JD 2461497.75 is 9952.75 days behind J2000.0; a Julian year has 365.25.
    for (const auto& [arguments, told] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"--epoch", "2461497.75"},
              "--epoch: warning: epoch is 2461497.75, a count of days or a date and not a Julian epoch [VK308]\n"
              "help: Write a Julian epoch as a plain number of years: 2027.2491\n"},
             {{"--ha", "200"},
              "--ha: warning: ha is 200, which looks like degrees [VK314]\n"
              "help: Write a plain number of hours\n"},
             {{"--epoch", "2027.25", "--ha", "-1.0", "--pressure", "770"}, ""}}) {
        std::vector<std::string> all = arguments;
        all.push_back("f.xml");
        EXPECT_EQ(check(all, {.folder = folder.name()}).err, told);
    }
}

TEST(CheckCommand, TheDocumentsOfAnInstrumentAreCheckedOnceAndToldFirst) {
    const TemporaryFolder folder;
    InstrumentOnDisk instrument;
    instrument.replace("28.760583", "north");
    instrument.write(folder);
    folder.write("f.xml", kFaultless);
    const ProgramResult result = check({"-c", "configure.xml", "f.xml", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.out,
        R"(configure.xml:13:15: error: conversion of data to type "d" failed (telescope.latitude): 'north' is not a number [VK605]
   13 |     <latitude>north</latitude>
      |               ^~~~~
help: Write a plain number, in degrees

5 files: 1 error, 0 warnings
)");
    EXPECT_EQ(result.err, "");
}

TEST(CheckCommand, AWarningOfTheInstrumentCountsAsThoseOfTheOtherFiles) {
    const TemporaryFolder folder;
    InstrumentOnDisk instrument;
    instrument.replace("id=\"304\" pos_x=\"", "id=\"304\" Status='' pos_x=\"");
    instrument.write(folder);
    folder.write("f.xml", kFaultless);
    EXPECT_EQ(check({"-c", "configure.xml", "f.xml"}, {.folder = folder.name()}).status, 0);
    EXPECT_EQ(check({"--strict", "-c", "configure.xml", "f.xml"}, {.folder = folder.name()}).status, 1);
    const ProgramResult json = check({"--format", "json", "-c", "configure.xml", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(nlohmann::json::parse(json.out).at("documents").at(2).at("file"), "VEKO.xml");
    EXPECT_EQ(nlohmann::json::parse(json.out).at("documents").at(2).at("warnings"), 1);
}

TEST(CheckCommand, MendingLeavesTheDocumentsOfTheInstrumentAlone) {
    const TemporaryFolder folder;
    InstrumentOnDisk instrument;
    instrument.replace("pos_x=\"0.166\"", "pos_x=\"0,166\"");
    instrument.write(folder);
    folder.write("f.xml", replaced(kFaultless, "8.00", "8.0"));
    EXPECT_EQ(check({"--fix", "-c", "configure.xml", "f.xml"}, {.folder = folder.name()}).status, 1);
    EXPECT_EQ(folder.read("f.xml"), kFaultless);
    EXPECT_EQ(folder.read("VEKO.xml"), instrument.bundle);
}

TEST(CheckCommand, AConfigurationThatCannotBeOpenedEndsWithStatusTwo) {
    const TemporaryFolder folder;
    folder.write("f.xml", kFaultless);
    const ProgramResult result = check({"-c", "missing.xml", "f.xml"}, {.folder = folder.name()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "0 files: 0 errors, 0 warnings\n");
    EXPECT_EQ(result.err, "Unable to open config file: missing.xml\n");
}
