#include "checked.h"
#include "fieldDefinition.h"

#include <gmock/gmock.h>

// One mistake draws one problem, and where the run fails for it, one error that tells the run's message.

using namespace pos;
using testing::ElementsAre;

namespace {

using Told = std::vector<std::string>;

/** The errors and warnings of a document: severity, code, line and column. */
Told toldOf(const std::string& document) {
    Told told;
    const CheckResult result = checked(document);
    for (const Problem& problem : result.problems) {
        const LineColumn place = result.text.at(problem.place.begin);
        if (problem.severity != Severity::Note) {
            told.push_back(severityWord(problem.severity) + (' ' + std::string(problem.rule->code)) + ' ' +
                           std::to_string(place.line) + ':' + std::to_string(place.column));
        }
    }
    return told;
}

/** The faultless document with one text in the place of another. */
std::string with(const std::string& right, const std::string& wrong) {
    return replaced(kFaultless, right, wrong);
}

/** The messages of all problems. */
Told messagesOf(const std::string& document) {
    Told messages;
    for (const Problem& problem : checked(document).problems) {
        messages.push_back(problem.message);
    }
    return messages;
}

} // namespace

TEST(Consequences, OfAMistakeThatHasAFixAreNotTold) {
    const struct {
        std::string right, wrong, told;
    } rows[] = {
        {"190.120000", "12.674667", "error VK315 10:45"}, // the guide star far away, behind the telescope
        {"RA_d=\"189.997633\"", "RA_d=\"12.666509\"", "warning VK315 8:14"}, // the targets far away, the Sun up
        {"targuse=\"G\"", "targuse=\"g\"", "error VK205 10:34"},             // no guide star
        {"targuse=\"T\"", "Targuse=\"T\"", "error VK201 9:27"},              // no science target
        {"targra=\"189", "targRA=\"189", "error VK201 9:39"},                // no place
        {"<conditions epoch", "<conditions Epoch", "warning VK201 5:13"},    // no date
        {"RA_d=", "ra_deg=", "warning VK201 8:8"},                           // the field elsewhere
        {"epoch=\"2027.25\"", "epoch=\"2460000.5\"", "error VK308 5:20"},    // no place for the bundle
    };
    for (const auto& row : rows) {
        EXPECT_THAT(toldOf(with(row.right, row.wrong)), ElementsAre(row.told)) << row.wrong;
    }
    std::string misnamed = with("<configure>", "<Configure>");
    EXPECT_THAT(toldOf(replaced(misnamed, "</configure>", "</Configure>")), ElementsAre("error VK201 4:2"));
}

TEST(Consequences, OfAValueThatCannotBeMeantAreNotTold) {
    const struct {
        std::string right, wrong, told;
    } rows[] = {
        {"ha=\"-1.0\"", "ha=\"-150\"", "error VK314 5:93"},
        {"pressure=\"770\"", "pressure=\"77000\"", "error VK312 5:59"},
        {"2027.25", "2000.0", "warning VK309 5:20"},
        {"2027.25", "nan", "error VK504 5:20"},
        {"RA_d=\"189.997633\"", "RA_d=\"%%%\"", "warning VK215 8:14"},
        {" RA_d=\"189.997633\" Dec_d=\"-11.623054\"", "", "warning VK215 8:1"},
        {"targdec=\"-11.500000\"", "targdec=\"91.000000\"", "error VK318 10:66"},
        {"targuse=\"T\"", "targuse=\"T\" targepoch=\"2016\" targpmra=\"nan\"", "error VK320 9:66"},
        {"ha=\"-1.0\"", "ha=\"10\"", "error VK501 8:14"},   // and the Sun up
        {"Dec_d=\"-11", "Dec_d=\"-71", "error VK502 8:33"}, // and far from the targets
    };
    for (const auto& row : rows) {
        EXPECT_THAT(toldOf(with(row.right, row.wrong)), ElementsAre(row.told)) << row.wrong;
    }
    EXPECT_THAT(toldOf(with("pa=\"0\"", "pa=\"180\"")), ElementsAre("error VK503 3:18"));
}

TEST(Consequences, OfAGuideStarInAGroupAreNotTold) {
    const std::string star = R"(<target targname="Star" targuse="G" targra="190.120000" targdec="-11.500000"/>)";
    EXPECT_THAT(messagesOf(with(star, "<group>" + star + "</group>")),
                ElementsAre("target 'Star' has use G inside a group, where the run looks for no guide star; the run "
                            "says: No science target in field"));
}

TEST(Consequences, TheCauseTellsTheMessageOfTheRun) {
    EXPECT_THAT(messagesOf(with("targuse=\"G\"", "targuse=\"g\"")),
                ElementsAre("targuse 'g' is a small letter, which makes no science target or guide star; the run says: "
                            "No science target in field"));
    EXPECT_THAT(messagesOf(with("targdec=\"-11.500000\"", "targdec=\"91.000000\"")),
                ElementsAre("targdec is 91.000000, above 90; the run says: celestial position not in the tangent "
                            "plane: the guide star is 102.62 degrees away from the science target"));
}

TEST(Consequences, WhatDoesNotFollowIsTold) {
    // Of two targets that a field lacks, one is there in small letters.
    std::string document = with("targuse=\"G\"", "targuse=\"g\"");
    EXPECT_THAT(toldOf(replaced(document, "targuse=\"T\"", "targuse=\"R\"")),
                ElementsAre("error VK106 8:1", "warning VK205 10:34"));
    // Wet air puts no field below the horizon, and what never rises does so at every hour angle.
    document = with("ha=\"-1.0\"", "ha=\"10\"");
    EXPECT_THAT(toldOf(replaced(document, "0.25", "25")), ElementsAre("warning VK313 5:83", "error VK501 8:14"));
    document = with("ha=\"-1.0\"", "ha=\"-150\"");
    EXPECT_THAT(toldOf(replaced(document, "</fields>",
                                R"(<field><target targuse="T" targra="190.000000" targdec="-70.000000"/>)"
                                "\n"
                                R"(<target targuse="G" targra="190.100000" targdec="-70.000000"/></field></fields>)")),
                ElementsAre("error VK314 5:93", "warning VK502 12:57"));
    // A name that is mended leaves another one as it was.
    EXPECT_THAT(toldOf(with("targname=\"Star\"", "targpm_ra=\"12\" targpm=\"2\" targepoch=\"2016\"")),
                ElementsAre("warning VK201 10:9", "warning VK201 10:24"));
}
