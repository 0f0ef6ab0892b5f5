#include "Program.h"
#include "TemporaryFolder.h"
#include "checked.h"
#include "instrumentOnDisk.h"
#include "xml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

constexpr double kRoundingMm = 1e-6; // six decimals are written

class ReportTest : public testing::Test {
protected:
    ProgramResult report(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {VEKO_EXECUTABLE, "report"});
        return runCommand(arguments, {.folder = folder_.name()});
    }

    /** The page about a document. */
    std::string page(const std::string& document, std::vector<std::string> arguments = {}) const {
        folder_.write("field.xml", document);
        arguments.insert(arguments.end(), {"-o", "page.html", "field.xml"});
        expectSilentSuccess(report(arguments));
        return folder_.read("page.html");
    }

    const TemporaryFolder folder_;
};

/** The data in a page. */
json dataIn(const std::string& page) {
    const std::string begin = R"(<script type="application/json" id="veko-data">)";
    const std::size_t first = page.find(begin) + begin.size();
    return json::parse(page.substr(first, page.find("</script>", first) - first));
}

json fieldIn(const std::string& page) {
    return dataIn(page).at("fields").at(0);
}

/** The kinds of the fibres by identifier. */
std::map<int, std::string> kindsIn(const std::string& page) {
    std::map<int, std::string> kinds;
    const json field = fieldIn(page);
    for (const json& fibre : field.at("fibres")) {
        kinds.emplace(fibre.at("id"), fibre.at("kind"));
    }
    return kinds;
}

/** The targets on fibres of a configured document by identifier. */
std::map<int, QDomElement> targetsOnFibres(const QDomDocument& document) {
    std::map<int, QDomElement> targets;
    for (const QDomElement& target : elements(document, "target")) {
        if (target.attribute("ifu_spaxel") != "") {
            targets.emplace(std::abs(target.attribute("fibreid").toInt()), target);
        }
    }
    return targets;
}

} // namespace

TEST_F(ReportTest, TellsOfEachFibreWhatTheConfiguredDocumentTells) {
    const std::map<int, QDomElement> targets = targetsOnFibres(configured(kFaultless));
    const json fibres = fieldIn(page(kFaultless)).at("fibres");
    ASSERT_EQ(fibres.size(), targets.size());
    for (const json& fibre : fibres) {
        const QDomElement& target = targets.at(fibre.at("id"));
        EXPECT_EQ(fibre.at("spaxel"), attributeText(target, "ifu_spaxel"));
        EXPECT_NEAR(fibre.at("xMm"), number(target, "targx"), kRoundingMm);
        EXPECT_NEAR(fibre.at("yMm"), number(target, "targy"), kRoundingMm);
        EXPECT_EQ(fibre.at("raDeg"), number(target, "targra"));
        EXPECT_EQ(fibre.at("decDeg"), number(target, "targdec"));
        const bool isSky = attributeText(target, "targuse") == "S";
        const bool isUsable = !attributeText(target, "fibreid").starts_with('-');
        EXPECT_EQ(fibre.at("kind"), isUsable ? (isSky ? "sky" : "science") : "broken");
    }
}

TEST_F(ReportTest, DrawsEachFibreAtItsPlaceOnThePlateWithItsNameAndPlace) {
    const std::string text = page(kFaultless);
    const json field = fieldIn(text);
    std::map<int, json> fibres;
    for (const json& fibre : field.at("fibres")) {
        fibres.emplace(fibre.at("id"), fibre);
    }
    const std::regex circle("<circle cx=(\\S+) cy=(\\S+)><title>(\\S+) #(\\d+) (\\S+) (\\S+)</title></circle>");
    std::size_t drawn = 0;
    for (std::sregex_iterator found(text.begin(), text.end(), circle), end; found != end; ++found, ++drawn) {
        const std::smatch& parts = *found;
        const json& fibre = fibres.at(std::stoi(parts[4]));
        EXPECT_EQ(std::stod(parts[1]), fibre.at("xMm"));
        EXPECT_EQ(std::stod(parts[2]), fibre.at("yMm"));
        EXPECT_EQ(parts[3], fibre.at("spaxel"));
        EXPECT_NEAR(std::stod(parts[5]), fibre.at("raDeg"), 0.5e-5);
        EXPECT_NEAR(std::stod(parts[6]), fibre.at("decDeg"), 0.5e-5);
    }
    EXPECT_EQ(drawn, fibres.size());
}

TEST_F(ReportTest, AConfiguredDocumentKeepsItsFibresInAnyNight) {
    const json unconfigured = fieldIn(page(kFaultless));
    const json configured = fieldIn(page(configuredBytes(kFaultless), {"--night", "2027-05-01"}));
    EXPECT_EQ(configured.at("fibres"), unconfigured.at("fibres"));
}

TEST_F(ReportTest, AConfiguredDocumentThatCannotBeConfiguredAgainIsSeenAsItIs) {
    const std::string groups = readBytes(std::string(POS_SOURCE_FOLDER) + "/examples/m74_groups.xml");
    const std::string text = page(configuredBytes(groups));
    EXPECT_EQ(fieldIn(text).at("science").at("fibre"), 193);
    EXPECT_THAT(text, HasSubstr("These are the problems of configuring it again."));
}

TEST_F(ReportTest, TellsWhyAFibreSeesNothing) {
    instrumentWithUnusableFibres().write(folder_);
    const std::map<int, std::string> kinds = kindsIn(page(kFaultless, {"-c", "configure.xml"}));
    EXPECT_EQ(kinds.at(1), "absent");
    EXPECT_EQ(kinds.at(2), "disabled");
    EXPECT_EQ(kinds.at(160), "broken");
    EXPECT_EQ(kinds.at(304), "science");
    EXPECT_EQ(kinds.at(46), "sky");
}

TEST_F(ReportTest, WhetherAFibreOfAConfiguredDocumentSeesSomethingIsAsTheDocumentTells) {
    InstrumentOnDisk changedSince;
    changedSince.replace(R"(fibre_name="1B" type="Spectrograph" status="enabled")",
                         R"(fibre_name="1B" type="Spectrograph" status="disabled")");
    changedSince.replace(R"(status="broken")", R"(status="enabled")");
    changedSince.write(folder_);
    const std::map<int, std::string> kinds = kindsIn(page(configuredBytes(kFaultless), {"-c", "configure.xml"}));
    EXPECT_EQ(kinds.at(2), "science");
    EXPECT_EQ(kinds.at(160), "broken");
}

TEST_F(ReportTest, TheSameInputGivesTheSameBytes) {
    EXPECT_EQ(page(kFaultless), page(kFaultless));
}

TEST_F(ReportTest, APageOfOneFieldHasAtMost200KilobytesAndAsksForNothing) {
    const std::string text = page(kFaultless);
    EXPECT_LE(text.size(), 200'000U);
    for (const std::string outside : {"http:", "https:", "src=", "@import", "url(h", "<link"}) {
        EXPECT_THAT(text, Not(HasSubstr(outside)));
    }
}

TEST_F(ReportTest, HasTheWindowsOfVekoWindow) {
    const std::vector<std::string> options = {"--airmass", "1.8", "--twilight", "astronomical"};
    const json field = fieldIn(page(kFaultless, options));
    const ProgramResult windows = runCommand(
        {VEKO_EXECUTABLE, "window", "--format", "json", "--airmass", "1.8", "--twilight", "astronomical", "field.xml"},
        {.folder = folder_.name()});
    EXPECT_EQ(field.at("windows"), json::parse(windows.out).at("nights").at(0).at("windows"));
}

TEST_F(ReportTest, ANightWithoutAnEpochDecidesTheMoment) {
    const json data = dataIn(page(kFaultless, {"--night", "2027-03-20"}));
    const double noonOfTheTwentieth = 61484.5; // MJD, and nearly so at the site
    const double moment = data.at("conditions").at("mjdTai");
    EXPECT_GT(moment, noonOfTheTwentieth);
    EXPECT_LT(moment, noonOfTheTwentieth + 1);
    const json& instants = data.at("fields").at(0).at("night").at("mjdTai");
    EXPECT_LT(instants.front(), moment);
    EXPECT_GT(instants.back(), moment);
}

TEST_F(ReportTest, HostileNamesAreShownAndDoNoHarm) {
    const std::string name = "</script><script>alert(1)</script><!-- \"' & {{{data}}} \u202eשלום";
    const std::string inXml =
        "&lt;/script>&lt;script>alert(1)&lt;/script>&lt;!-- &quot;&apos; &amp; {{{data}}} \u202eשלום";
    const std::string text = page(replaced(kFaultless, "Galaxy", inXml));
    EXPECT_EQ(fieldIn(text).at("science").at("name"), name);
    EXPECT_THAT(text, Not(HasSubstr("<script>alert")));
    EXPECT_THAT(text, HasSubstr("<bdi>&lt;/script&gt;&lt;script&gt;alert(1)&lt;/script&gt;&lt;!-- &quot;&apos; &amp; "
                                "{{{data}}} \u202eשלום</bdi>"));
}

TEST_F(ReportTest, TellsTheProblemsThatTheRunPassesOver) {
    const std::string text = page(replaced(kFaultless, R"(<observation pa="0">)", R"(<observation PA="0">)"));
    const json problems = dataIn(text).at("problems");
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems.at(0).at("file"), "field.xml");
    EXPECT_EQ(problems.at(0).at("line"), 3);
    EXPECT_THAT(text, HasSubstr("field.xml:3:14"));
}

TEST_F(ReportTest, NamesEveryDocumentThatWasRead) {
    const std::string text = page(kFaultless);
    // By sha256sum of coreutils.
    folder_.write("again.xml", kFaultless);
    const std::string sum = runCommand({"sha256sum", "again.xml"}, {.folder = folder_.name()}).out.substr(0, 64);
    const json documents = dataIn(text).at("provenance").at("documents");
    EXPECT_EQ(documents.size(), 4U);
    EXPECT_EQ(documents.at(0).at("sha256"), sum);
}

TEST_F(ReportTest, BadInputIsToldAndLeavesAnOlderPageAsItWas) {
    folder_.write("right.xml", kFaultless);
    folder_.write("broken.xml", "<field");
    folder_.write("below.xml", replaced(kFaultless, R"(ha="-1.0")", R"(ha="11")"));
    folder_.write("no_epoch.xml", replaced(kFaultless, R"(epoch="2027.25")", ""));
    folder_.write("old.html", "old");
    const auto expectRefusal = [&](const std::vector<std::string>& arguments, const std::string& message) {
        std::vector<std::string> all = {"-o", "old.html"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const ProgramResult result = report(all);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, HasSubstr(message));
        EXPECT_EQ(folder_.read("old.html"), "old");
    };
    expectRefusal({"missing.xml"}, "missing.xml could not be opened\n");
    expectRefusal({"broken.xml"}, "broken.xml:1:1: broken.xml is not valid XML");
    expectRefusal({"below.xml"}, "below.xml:8:14: field is below the horizon limit");
    expectRefusal({"no_epoch.xml"}, "no_epoch.xml: There is no epoch, so that the night is not known: give --night\n");
    expectRefusal({"right.xml", "--night", "2027-02-30"}, "--night: '2027-02-30' is not a date YYYY-MM-DD\n");
    expectRefusal({"right.xml", "--epoch", "2150"}, "is not between 1900 and 2100");
}

TEST_F(ReportTest, NeverReplacesTheDocumentsThatItReads) {
    folder_.write("right.xml", kFaultless);
    const ProgramResult result = report({"-o", "right.xml", "right.xml"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "The output file right.xml is the field definition in use\n");
    EXPECT_EQ(folder_.read("right.xml"), kFaultless);
}
