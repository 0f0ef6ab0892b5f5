#include "checked.h"

#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What a document that cannot be read to its end still tells.

using namespace pos;
using testing::Contains;
using testing::ElementsAre;

namespace {

/** The codes and places of all problems: "VK101 3:7". */
std::vector<std::string> codesOf(const CheckResult& result) {
    std::vector<std::string> codes;
    for (const Problem& problem : result.problems) {
        const LineColumn place = result.text.at(problem.place.begin);
        codes.push_back(problem.rule->code + (' ' + std::to_string(place.line)) + ':' + std::to_string(place.column));
    }
    return codes;
}

/** The faultless document with faults in version, hour angle and a name, cut behind a part of it. */
std::string faultyUpTo(const std::string& part) {
    std::string document = kFaultless;
    for (const auto& [right, wrong] : {std::pair("8.00", "8.0"), {"-1.0", "1h"}, {"<fields>", "<fields><Field/>"}}) {
        document.replace(document.find(right), std::string(right).size(), wrong);
    }
    return document.substr(0, document.find(part) + part.size());
}

} // namespace

TEST(CheckDocument, TellsWhatStandsBeforeThePlaceWhereReadingStopped) {
    EXPECT_THAT(codesOf(checked(faultyUpTo("Galaxy\""))),
                ElementsAre("VK102 2:29", "VK303 5:93", "VK201 7:10", "VK101 9:1"));
    EXPECT_THAT(codesOf(checked(faultyUpTo("ha=\""))), ElementsAre("VK102 2:29", "VK101 5:1"));
}

TEST(CheckDocument, TellsNothingThatMayStandBehindThatPlace) {
    for (const std::string& document : {kFaultless, readBytes(POS_SOURCE_FOLDER "/examples/m74_groups.xml")}) {
        const std::size_t end = document.rfind('>');
        for (std::size_t size = 0; size < end; ++size) {
            const CheckResult result = checked(document.substr(0, size));
            ASSERT_EQ(result.problems.size(), 1U) << testing::PrintToString(problemsOf(result)) << size;
            EXPECT_EQ(result.problems.front().rule->code, std::string("VK101"));
        }
    }
}

TEST(CheckDocument, SaysWhyReadingStoppedAndWhere) {
    const std::string utf16 = "<?xml version='1.0' encoding='UTF-16'?><a/>";
    for (const auto& [document, told] : std::vector<std::pair<std::string, std::string>>{
             {"<a>\n<b c='1'></a>", "VK101 2:12-2:12 field.xml is not valid XML: </b> is missing"},
             {"<a>", "VK101 1:4-1:4 field.xml is not valid XML: </a> is missing"},
             {"<a b=\xe2\x80\x9cx'/>", "VK101 1:6-1:6 field.xml is not valid XML: not well-formed (invalid token)"},
             {"<a b='1' b='2'/>", "VK101 1:10-1:10 field.xml is not valid XML: duplicate attribute"},
             {"a", "VK101 1:1-1:1 field.xml is not valid XML: it does not begin with a tag"},
             {"\xef\xbb\xbf" + utf16,
              "VK101 1:31-1:31 field.xml is not valid XML: its bytes are UTF-8, in spite of its declaration"},
             {"<?xml version='1.0' encoding='EUC-JP'?><a>\xff</a>",
              "VK101 1:43-1:43 field.xml is not valid XML: these bytes are not EUC-JP"}}) {
        EXPECT_THAT(problemsOf(checked(document)), Contains(told));
    }
}

TEST(CheckDocument, SaysWhatMayStandInAnAttributeThatTheRunRefuses) {
    const auto helpWith = [](const std::string& right, const std::string& wrong) {
        std::string document = kFaultless;
        document.replace(document.find(right), right.size(), wrong);
        return checked(document).problems.front().help;
    };
    const std::string place = "Write a plain number of degrees, with 5 decimals or more";
    EXPECT_EQ(helpWith("targra=\"190.120000\"", "targra=\"east\""), place);
    EXPECT_EQ(helpWith("Dec_d=\"-11.623054\"", "Dec_d=\"south\""), place);
    EXPECT_EQ(helpWith("</field>", "<target targuse=\"X\" targra=\"190.000000\" targdec=\"-11.500000\"/></field>"),
              "Write T, C, G, S, E or R");
    EXPECT_THAT(helpWith("targuse=\"G\"", "targuse=\"G\" targrv=\"red\""),
                testing::EndsWith("or leave the attribute out"));
}

TEST(CheckDocument, NamesTheTargetThatAFieldLacks) {
    const auto messageWithout = [](const std::string& use) {
        std::string document = kFaultless;
        document.replace(document.find("targuse=\"" + use), 10, "targuse=\"R");
        return checked(document).problems.front().message;
    };
    const std::string run = "; the run says: No science target in field";
    EXPECT_EQ(messageWithout("G"), "The field has no guide star (targuse=\"G\")" + run);
    EXPECT_EQ(messageWithout("T"), "The field has no science target (targuse=\"T\")" + run);
}

TEST(CheckDocument, FindsAPlaceWhereThereIsNoElement) {
    EXPECT_THAT(codesOf(checked("")), ElementsAre("VK101 1:1"));
    EXPECT_THAT(codesOf(checked("<!DOCTYPE a>")), ElementsAre("VK101 1:13"));
}

TEST(CheckDocument, PointsADocumentOfWhichNothingIsMissing) {
    std::string document = kFaultless + "</fields>";
    document.replace(document.find("-1.0"), 4, "10.0");
    EXPECT_THAT(codesOf(checked(document)), ElementsAre("VK501 8:14", "VK101 15:2"));
}

TEST(CheckDocument, TellsTheSameWhicheverDocumentIsTheFirst) {
    std::string document = kFaultless;
    document.replace(document.find("targname=\"Galaxy\""), 0, "fibreid=\"700\" ");
    document += '<';
    const PosConfig config(":/configure.xml", PosConfig::XML);
    Instrument instrument(config);
    const auto codes = [&] {
        return codesOf(checkDocument(QByteArray::fromStdString(document), "field.xml", instrument, {}));
    };
    const std::vector<std::string> first = codes();
    EXPECT_THAT(first, Contains("VK110 9:18"));
    EXPECT_EQ(codes(), first);
}
