#include "checked.h"

#include <gmock/gmock.h>

using namespace pos;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

/** The problems of the groups 4 and 5: severity, code, and what stands at the place. */
std::vector<std::string> told(const std::string& document) {
    std::vector<std::string> texts;
    for (const Problem& problem : checked(document).problems) {
        const std::string code = problem.rule->code;
        if (code.starts_with("VK4") || code.starts_with("VK5")) {
            const auto begin = static_cast<std::size_t>(problem.place.begin);
            const auto end = static_cast<std::size_t>(problem.place.end);
            texts.push_back(severityWord(problem.severity) + (" " + code) + " " + document.substr(begin, end - begin));
        }
    }
    return texts;
}

std::string target(const std::string& use, const std::string& ra, const std::string& dec,
                   const std::string& more = "") {
    return "<target targuse='" + use + "' targra='" + ra + "' targdec='" + dec + "' " + more + "/>";
}

std::string field(const std::string& centre, const std::string& targets) {
    return "<field " + centre + ">" + targets + "</field>";
}

const std::string kCentre = "RA_d='189.997633' Dec_d='-11.623054'";
const std::string kScience = target("T", "189.997633", "-11.623054");
const std::string kGuide = target("G", "190.120000", "-11.500000");
const std::string kNight = "epoch='2027.25' ha='-1.0'";

std::string document(const std::string& fields, const std::string& conditions = kNight, const std::string& pa = "0") {
    return "<field_definition datamver='8.00'><observation pa='" + pa + "'><configure><conditions " + conditions +
           "/></configure><fields>" + fields + "</fields></observation></field_definition>";
}

const std::string kField = field(kCentre, kScience + kGuide);

/** A document, and what is told of it. */
struct Case {
    std::string document;
    std::vector<std::string> told;
};

void expectTold(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(told(c.document), c.told) << c.document;
    }
}

} // namespace

TEST(PlacesAndPointingRules, TheOneOfThreePlacesThatIsAstrayIsTold) {
    expectTold({
        {document(kField), {}},
        {document(field(kCentre, kScience + target("G", "190.120000", "-13.500000"))), {"warning VK401 -13.500000"}},
        {document(field(kCentre, target("T", "192.997633", "-11.623054") + kGuide)), {"warning VK401 192.997633"}},
        {document(field("RA_d='189.997633' Dec_d='-14.623054'", kScience + kGuide)), {"warning VK401 -14.623054"}},
        {document(kField +
                  field("", target("T", "190.997633", "-12.623054") + target("G", "194.000000", "-12.500000"))),
         {"warning VK401 194.000000"}},
        // The run does not read the centre of a second field.
        {document(kField +
                  field("", target("T", "190.997633", "-12.623054") + target("G", "191.000000", "-12.500000"))),
         {}},
    });
}

TEST(PlacesAndPointingRules, AGuideStarOffThePlateIsToldWhereTheSkyAloneDoesNotShowIt) {
    // The middle of the bundle is 0.1 degrees south of the optical axis.
    expectTold({
        {document(field(kCentre, kScience + target("G", "189.997633", "-10.673054"))), {}},
        {document(field(kCentre, kScience + target("G", "189.997633", "-12.573054"))), {"warning VK402 -12.573054"}},
    });
}

TEST(PlacesAndPointingRules, TargetsThatCoincideAreToldOnceEach) {
    const std::string nearly = target("C", "189.997700", "-11.623054"); // 0.24 arcsec
    const std::string beside = target("C", "189.998200", "-11.623054"); // 2 arcsec
    const std::string generated = target("T", "190.120000", "-11.500000", "automatic='1'");
    expectTold({
        {document(field(kCentre, kScience + kGuide + nearly)), {"warning VK403 189.997700"}},
        {document(field(kCentre, kScience + kGuide + "<group>" + nearly + nearly + "</group>")),
         {"warning VK403 189.997700", "warning VK403 189.997700"}},
        {document(field(kCentre, kScience + kGuide + beside + generated)), {}},
    });
}

TEST(PlacesAndPointingRules, ASecondFieldOnTheSamePlaceAndFibreIsTold) {
    const std::string dithered = field("", target("T", "189.997633", "-11.623054", "fibreid='305'") + kGuide);
    expectTold({{document(kField + kField), {"warning VK404 189.997633"}}, {document(kField + dithered), {}}});
}

TEST(PlacesAndPointingRules, EveryFieldIsPointedAtAndTheFirstAloneIsAnError) {
    const std::string north = target("T", "190.000000", "69.000000") + target("G", "190.100000", "69.000000");
    const std::string south = target("T", "190.000000", "-70.000000") + target("G", "190.100000", "-70.000000");
    const std::string early = target("T", "60.000000", "-11.623054") + target("G", "60.100000", "-11.623054");
    expectTold({
        {document(kField, "epoch='2027.25' ha='-4.0'"), {"error VK501 189.997633"}},
        {document(kField, "epoch='2027.25' ha='-3.3'"), {"warning VK509 189.997633"}},
        {document(kField + field("", early)), {"warning VK501 60.000000"}},
        {document(field("RA_d='190.000000' Dec_d='-70.000000'", south)), {"error VK502 -70.000000"}},
        {document(kField + field("", south)), {"warning VK502 -70.000000"}},
        {document(kField, kNight, "180"), {"error VK503 180"}},
        {document(kField + field("", north)), {"warning VK503 190.000000"}},
        // Whatever else is wrong with the first field, the second is judged.
        {document(field(kCentre, kScience) + field("", south)), {"warning VK502 -70.000000"}},
        {document(field(kCentre, target("T", "12h", "-11.623054") + kGuide) + field("", south),
                  "epoch='2027.25' pressure='x'"),
         {"warning VK502 -70.000000"}},
    });
}

TEST(PlacesAndPointingRules, WhatTheSolvesFailWithIsTold) {
    const std::string behind = target("G", "10.000000", "11.600000");
    expectTold({
        {document(kField, "epoch='nan' ha='1'"), {"error VK504 nan"}},
        {document(kField, kNight + " pressure='9999'"), {"error VK505 189.997633"}},
        {document(field(kCentre, kScience + behind)), {"error VK506 10.000000"}},
    });
}

TEST(PlacesAndPointingRules, SunAndMoonAreToldWithTheTimeInUtc) {
    const auto messageOf = [](const std::string& conditions) {
        for (const Problem& problem : checked(document(kField, conditions)).problems) {
            if (std::string(problem.rule->code).starts_with("VK5")) {
                return severityWord(problem.severity) + (" " + problem.message);
            }
        }
        return std::string();
    };
    EXPECT_THAT(messageOf("epoch='2027.75' ha='-1.0'"),
                ::testing::MatchesRegex("warning The Sun stands at an altitude of .*, 2027-10-02T12:..:..Z, .*"));
    // Nobody chose the hour.
    EXPECT_THAT(messageOf("epoch='2027.75'"), ::testing::StartsWith("note The Sun"));
    EXPECT_THAT(messageOf("epoch='2027.22' ha='-1.0'"), ::testing::StartsWith("warning The Moon is"));
    EXPECT_EQ(messageOf(kNight), "");
}

TEST(PlacesAndPointingRules, TheHelpNamesWhatDoes) {
    const std::string turned = checked(document(kField, kNight, "180")).problems.front().help;
    EXPECT_THAT(turned, HasSubstr("Write pa=\""));
    const std::string angle = turned.substr(10, turned.find('"', 10) - 10);
    EXPECT_THAT(told(document(kField, kNight, angle)), IsEmpty());
    const int step = std::stoi(angle) > 180 ? -1 : 1; // towards the angle that does not
    EXPECT_THAT(told(document(kField, kNight, std::to_string(std::stoi(angle) + step))),
                ElementsAre(::testing::StartsWith("error VK503")));

    const std::string low = checked(document(kField, "epoch='2027.25' ha='-6'")).problems.back().help;
    EXPECT_THAT(low, HasSubstr("from -3.45 to 3.45 hours"));
    for (const std::string hour : {"-3.45", "3.45"}) {
        EXPECT_THAT(told(document(kField, "epoch='2027.25' ha='" + hour + "'")),
                    ElementsAre("warning VK509 189.997633"));
    }
}

TEST(PlacesAndPointingRules, AnHourAngleThatTheHelpNamesForAnotherFieldSuitsTheFirstToo) {
    const auto helpWithFieldAt = [](const std::string& ra) {
        const std::string other = field("", target("T", ra, "-11.623054") + target("G", ra, "-11.500000"));
        for (const Problem& problem : checked(document(kField + other)).problems) {
            if (problem.rule->code == std::string("VK501")) {
                return problem.help;
            }
        }
        return std::string();
    };
    // Four hours east of the first, which is high enough up to 3.45 hours.
    EXPECT_THAT(helpWithFieldAt("249.997633"), ::testing::MatchesRegex("Choose an .* from 0.[56]5? to 3.45 hours, .*"));
    EXPECT_THAT(helpWithFieldAt("339.997633"), HasSubstr("no hour angle suits both it and the first field"));
}

TEST(PlacesAndPointingRules, APositionAngleThatTheHelpNamesForAnotherFieldSuitsTheFirstToo) {
    const std::string north =
        field("", target("T", "190.000000", "69.000000") + target("G", "190.100000", "69.000000"));
    const std::string help = checked(document(kField + north)).problems.back().help;
    EXPECT_THAT(help, ::testing::MatchesRegex("Write pa=\".*\", the nearest of the position angles from .* to .* or "
                                              "from .* to .* degrees, which do at this hour angle for the first .*"));
    const std::string angle = help.substr(10, help.find('"', 10) - 10);
    EXPECT_THAT(told(document(kField + north, kNight, angle)), IsEmpty()) << help;
}
