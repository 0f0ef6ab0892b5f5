#include "angles.h"
#include "checked.h"
#include "fieldDefinition.h"

#include <gtest/gtest.h>
#include <map>

using namespace pos;

namespace {

/** The problems of this group of rules: "code severity fix", without a fix "code severity". */
std::vector<std::string> valuesTold(const std::string& document, const CheckOptions& options = {}) {
    std::vector<std::string> told;
    for (const Problem& problem : checked(document, options).problems) {
        const std::string code = problem.rule->code;
        if (code.rfind("VK3", 0) == 0) {
            told.push_back(code + ' ' + severityWord(problem.severity) +
                           (problem.fix ? ' ' + problem.fix->toStdString() : ""));
        }
    }
    return told;
}

using Told = std::vector<std::string>;
/** Attributes of an element, and what is told of them. */
using Rows = std::map<std::string, Told>;

/** Tries rows in documents that a function makes of the attributes. */
template <typename Make> void expectTold(const Rows& rows, const Make& documentWith) {
    for (const auto& [attributes, told] : rows) {
        EXPECT_EQ(valuesTold(documentWith(attributes)), told) << attributes;
    }
}

/** A guide star that has these attributes, all that it needs. */
std::string documentWithGuideStar(const std::string& attributes) {
    return documentWithFields({fieldXml(scienceTargetXml() + "<target targuse='G' " + attributes + "/>")});
}

/** The same at a right place. */
std::string documentWithGuideStarAlso(const std::string& attributes) {
    return documentWithGuideStar("targra='150.100000' targdec='20.050000' " + attributes);
}

} // namespace

TEST(RulesOfValues, ADocumentOfPlainNumbersInTheirUnitsIsRight) {
    EXPECT_EQ(valuesTold(FieldDefinition().text()), Told());
    EXPECT_EQ(valuesTold(documentWithConditions("epoch='2024.5' temperature=' 281.5 ' pressure='0' "
                                                "relative_humidity='1' ha='%%%'")),
              Told());
    EXPECT_EQ(valuesTold(documentWithGuideStarAlso("targepoch='2016.0' targpmra='-12.5' targpmdec='0' targparal='0.05' "
                                                   "targrv='-300' targprio='0' fibreid='' configid='0'")),
              Told());
}

TEST(RulesOfValues, SexagesimalPositionsAreGivenInDegrees) {
    const auto documentWithRa = [](const std::string& ra) {
        return documentWithGuideStar("targra='" + ra + "' targdec='20.050000'");
    };
    // 150.1 degrees are 10 h 0 min 24 s.
    expectTold({{"10:00:24.0", {"VK301 error 150.100000"}},
                {"10h00m24s", {"VK301 error 150.100000"}},
                {"10h 00m 24s", {"VK301 error 150.100000"}},
                {"10 00 24", {"VK301 error 150.100000"}},
                {"10:00.4", {"VK301 error"}},
                {"10:00:24,000001", {"VK301 error 150.1000000042"}},
                {"150\xc2\xb0 06\xe2\x80\xb2 00\xe2\x80\xb3", {"VK301 error 150.100000"}},
                {"150:06:00", {"VK301 error"}},
                {"10:60:24", {"VK301 error"}},
                {"-10:00:24", {"VK301 error"}}},
               documentWithRa);
    const auto documentWithDec = [](const std::string& dec) {
        return documentWithGuideStar("targra='150.100000' targdec='" + dec + "'");
    };
    expectTold({{"20:03:00", {"VK301 error 20.050000"}},
                {"+20d03m00s", {"VK301 error 20.050000"}},
                {"20h03m00s", {"VK301 error"}},
                {"-00:30:00", {"VK301 error -0.500000"}},
                {"95:00:00", {"VK301 error"}}},
               documentWithDec);
}

TEST(RulesOfValues, OtherNotationsOfTheConditionsAreToldWithThePlainNumber) {
    const auto documentWith = [](const std::string& attributes) {
        return documentWithConditions(attributes.find("epoch") == 0 ? attributes : "epoch='2024.5' " + attributes);
    };
    expectTold({{"epoch='2024,5'", {"VK302 error 2024.5"}},
                {"pressure='1,013'", {"VK302 error"}},
                {"temperature='8,5 \xc2\xb0"
                 "C'",
                 {"VK303 error 281.65"}},
                {"temperature='47 F'", {"VK303 error 281.48"}},
                {"pressure='770hPa'", {"VK303 error 770"}},
                {"pressure='77.0 kPa'", {"VK303 error 770"}},
                {"relative_humidity='25.5%'", {"VK303 error 0.255"}},
                {"ha='-1h30m'", {"VK301 error -1.500000"}},
                {"ha='15\xc2\xb0'", {"VK303 error 1"}},
                {"ha='\xe2\x88\x92"
                 "1'",
                 {"VK304 note -1"}},
                {"ha='\xef\xbc\x91'", {"VK304 error 1"}},
                {"epoch='J2024.5'", {"VK305 error 2024.5"}},
                {"epoch='J2000'", {"VK305 error"}},
                {"epoch='2024-07-02'", {"VK305 error 2024.4997"}},
                {"epoch='2/7/2024'", {"VK305 error"}}},
               documentWith);
}

TEST(RulesOfValues, NumbersThatLookLikeOtherUnitsHaveNoFix) {
    const auto documentWith = [](const std::string& attributes) {
        return documentWithConditions(attributes.find("epoch") == 0 ? attributes : "epoch='2024.5' " + attributes);
    };
    // 2 July 2024 is MJD 60493, 8948.5 days behind J2000.0; a Julian year has 365.25.
    expectTold({{"epoch='60493'", {"VK308 error 2024.4997"}},
                {"epoch='2015.5'", {"VK309 warning"}},
                {"epoch='1899'", {"VK318 warning"}},
                {"temperature='8.5'", {"VK311 warning"}},
                {"temperature='70'", {"VK311 warning"}},
                {"pressure='77000'", {"VK312 warning"}},
                {"pressure='0.77'", {"VK312 warning"}},
                {"pressure='-770'", {"VK318 warning"}},
                {"pressure='1013.25'", {"VK319 note"}},
                {"pressure='577.5'", {"VK319 note"}},
                {"relative_humidity='25'", {"VK313 warning"}},
                {"relative_humidity='101'", {"VK318 warning"}},
                {"relative_humidity='nan'", {"VK320 warning"}},
                {"ha='-30'", {"VK314 error"}},
                {"ha='345'", {"VK314 error"}},
                {"ha='13'", {"VK318 error"}}},
               documentWith);
}

TEST(RulesOfValues, MotionsAndOtherValuesOfATargetAreJudged) {
    expectTold({{"targepoch='2016.0' targpmra='0.0125' targpmdec='-0.008'", {"VK316 warning", "VK316 warning"}},
                {"targepoch='2016.0' targpmra='12.5' targpmdec='-0.008'", {"VK316 note"}},
                {"targepoch='2016.0' targpmra='12.5' targpmdec='6e-8'", {"VK316 warning"}},
                {"targepoch='2016.0' targpmra='12000'", {"VK318 warning"}},
                {"targpmra='12.5'", {"VK310 warning"}},
                {"targepoch='0' targpmra='12.5'", {"VK310 note"}},
                {"targparal='-3.2'", {"VK317 warning"}},
                {"targparal='3.2 mas'", {"VK303 error 0.0032"}},
                {"targparal='0.3'", {"VK317 note"}},
                {"targepoch='57388.5'", {"VK308 warning 2016.0000"}},
                {"targepoch='2457389'", {"VK308 warning 2016.0000"}},
                {"targepoch='20160101'", {"VK308 warning 2015.9986"}},
                {"targepoch='J2000.0'", {"VK305 error 2000.0"}},
                {"targrv='299793'", {"VK318 warning"}},
                {"fibreid='\xef\xbc\x93'", {"VK304 error 3"}}},
               documentWithGuideStarAlso);
}

TEST(RulesOfValues, PositionsThatTheRunTakesAreJudged) {
    expectTold({{"targra='150.1' targdec='20.050000'", {"VK306 error"}},
                {"targra='1.501e2' targdec='20.050000'", {"VK306 error"}},
                {"targra='150.100000' targdec='91.000000'", {"VK318 warning"}},
                {"targra='-170.000000' targdec='20.050000'", {"VK318 warning"}},
                {"targra='400.000000' targdec='20.050000'", {"VK318 error"}},
                {"targra='10.006667' targdec='20.050000'", {"VK315 error 150.100005"}}},
               documentWithGuideStar);
    EXPECT_EQ(valuesTold(replaced(FieldDefinition().text(), "RA_d=\"150.000000\"", "RA_d=\"10.000000\"")),
              Told{"VK315 warning 150.000000"});
    EXPECT_EQ(valuesTold(documentWithObservation("pa='150\xc2\xb0'")), Told{"VK303 warning 150"});
    EXPECT_EQ(valuesTold(documentWithObservation("pa='-361'")), Told{"VK318 warning"});
}

TEST(RulesOfValues, ANumberThatIsNotCertainStandsInTheHelpAlone) {
    const auto helpOf = [](const std::string& document) {
        std::string help;
        for (const Problem& problem : checked(document).problems) {
            const bool isOfValues = std::string(problem.rule->code).starts_with("VK3");
            help += isOfValues && !problem.fix ? problem.rule->code + (": " + problem.help) + '\n' : "";
        }
        return help;
    };
    EXPECT_EQ(helpOf(documentWithGuideStar("targra='10h 0.4m' targdec='20.05'")),
              "VK301: Write a plain number of degrees, perhaps 150.100000\n"
              "VK306: Write every decimal that is known; if the number is exact, 20.05000\n");
    EXPECT_EQ(helpOf(documentWithConditions("epoch='2024.5' temperature='68' pressure='75' ha='23.5'")),
              "VK311: Write a plain number of kelvin, perhaps 293.15\n"
              "VK312: Write a plain number of millibar, perhaps 750\n"
              "VK318: Write a number from -12 to 12, perhaps -0.5\n");
    EXPECT_EQ(helpOf(documentWithConditions("epoch='2024.5' ha='-30'")),
              "VK314: Write a plain number of hours, perhaps -2\n");
}

TEST(RulesOfValues, ANumberThatTheRunRefusesIsToldOnceWithTheMessageOfTheRun) {
    std::vector<std::string> messages;
    for (const Problem& problem : checked(documentWithConditions("epoch='2024,5' ha='1h'")).problems) {
        messages.push_back(problem.message);
    }
    EXPECT_EQ(messages,
              (std::vector<std::string>{"bad epoch attribute in conditions element: '2024,5', a number with a comma",
                                        "Bad hour angle in XML: '1h', a number with its unit"}));
}

TEST(RulesOfValues, TheMessageSaysWhatIsWrongWithANumber) {
    const auto messageOf = [](const std::string& code, const std::string& document) {
        for (const Problem& problem : checked(document).problems) {
            if (problem.rule->code == code) {
                return problem.message;
            }
        }
        return std::string();
    };
    EXPECT_EQ(messageOf("VK306", documentWithGuideStar("targname='star' targra='150.1000' targdec='20.050000'")),
              "Target star targra '150.1000' does not have enough precision: it has 4 decimals and needs at least 5");
    EXPECT_EQ(messageOf("VK304", documentWithConditions("epoch='2024.5' ha='\xe2\x88\x92"
                                                        "1'")),
              "ha is \xe2\x88\x92"
              "1, with the character U+2212, which other programs do not read");
}

TEST(RulesOfValues, WhatTheRunDoesNotReadIsNoError) {
    const std::string mask = "<mask RA_d='10:00:00' Dec_d='20,0' radius='-1'/>";
    EXPECT_EQ(valuesTold(documentWithFields(
                  {ordinaryFieldXml(), "<field RA_d='10:00:00' Dec_d='20.1'>" + scienceTargetXml() + guideStarXml() +
                                           "<target targuse='C' targra='150,1' targdec='20.1' targprio='-1'/>" +
                                           "<avoidance_list>" + mask + "</avoidance_list></field>"})),
              (Told{"VK301 warning 150.000000", "VK302 warning", "VK318 warning", "VK301 warning 150.000000",
                    "VK302 warning", "VK318 warning"}));
}

TEST(RulesOfValues, AnEpochIsMissedWhereNoOptionGivesIt) {
    CheckOptions given;
    given.estimates.epoch = 2024.5;
    for (const std::string conditions : {"", "ha='0'", "epoch='%%%'"}) {
        EXPECT_EQ(valuesTold(documentWithConditions(conditions)), Told{"VK307 warning"}) << conditions;
        EXPECT_EQ(valuesTold(documentWithConditions(conditions), given), Told()) << conditions;
    }
}

TEST(RulesOfValues, WhatAnOptionReplacesIsNotJudgedUnlessTheRunRefusesIt) {
    const CheckOptions given = {{2024.5, 1.0, 700.0}};
    EXPECT_EQ(valuesTold(documentWithConditions("epoch='2000.0' pressure='77000' ha='1h'"), given), Told());
    EXPECT_EQ(valuesTold(documentWithConditions("epoch='2000,0' pressure='77 kPa'"), given),
              (Told{"VK302 error 2000.0", "VK303 error 770"}));
}

TEST(RulesOfValues, ANumberOfAnEntityHasNoFix) {
    FieldDefinition definition;
    definition.declaration = "<!DOCTYPE field_definition [<!ENTITY star \"<target targuse='G' targra='150,100000' "
                             "targdec='20.050000'/>\">]>";
    definition.fields = {fieldXml(scienceTargetXml() + "&star;")};
    EXPECT_EQ(valuesTold(definition.text()), Told{"VK302 error"});
}

TEST(RulesOfValues, AGivenWindowIsNotedUnlessARunHasLeftIt) {
    FieldDefinition definition;
    definition.configure = "<configure><conditions epoch='2024.5'/><hour_angle_limits latest='-2'/></configure>";
    EXPECT_EQ(valuesTold(definition.text()), Told{"VK321 note"});
    definition.configure = replaced(definition.configure, "<configure>", "<configure configure_version='3.3.5'>");
    EXPECT_EQ(valuesTold(definition.text()), Told());
}
