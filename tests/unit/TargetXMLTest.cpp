#include "TargetXML.h"

#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <gtest/gtest.h>
#include <limits>

using namespace pos;

namespace {

constexpr double kQuarterPi = 3.141592653589793 / 4;

/** A target named X with a position and further attributes. */
QDomElement targetX(const std::string& attributes) {
    return parseElement("<target targname='X' targra='45.000000' targdec='-45.000000' " + attributes + "/>");
}

std::string failureOf(const std::string& attributes) {
    const QDomElement element = targetX(attributes);
    return messageOf([&] { createTargetXML(element); });
}

} // namespace

TEST(TargetXML, ATargetWithOnlyAPositionHasTheDefaults) {
    const Target target = createTargetXML(parseElement("<target targra='45.000000' targdec='-45.000000'/>"));
    EXPECT_EQ(target.name, "");
    EXPECT_EQ(target.survey, "");
    EXPECT_EQ(target.use, TargetUse::T);
    EXPECT_EQ(target.priority, 1.0);
    EXPECT_EQ(target.configid, 0U);
    EXPECT_EQ(target.fibreid, -2147483647 - 1);
    EXPECT_FALSE(target.automatic);
    EXPECT_NEAR(target.position.ra, kQuarterPi, kAngleTolerance);
    EXPECT_NEAR(target.position.dec, -kQuarterPi, kAngleTolerance);
    EXPECT_EQ(target.position.epoch, 2015.5);
    EXPECT_EQ(target.position.pmRa, 0.0);
    EXPECT_EQ(target.position.pmDec, 0.0);
    EXPECT_EQ(target.position.parallax, 0.0);
    EXPECT_EQ(target.position.rv, 0.0);
}

TEST(TargetXML, ReadsEveryAttribute) {
    const Target target = createTargetXML(parseElement(
        "<target targname='NGC 1' targsrvy='WL' targprio='2.5' targuse='G' fibreid='17' configid='33' automatic='1' "
        "targra='45.000000' targdec='-45.000000' targepoch='2016.0' targpmra='3.5' targpmdec='-2.5' targparal='5' "
        "targrv='12.5'/>"));
    EXPECT_EQ(target.name, "NGC 1");
    EXPECT_EQ(target.survey, "WL");
    EXPECT_EQ(target.priority, 2.5);
    EXPECT_EQ(target.use, TargetUse::G);
    EXPECT_EQ(target.fibreid, 17);
    EXPECT_EQ(target.configid, 33U);
    EXPECT_TRUE(target.automatic);
    EXPECT_EQ(target.position.epoch, 2016.0);
    EXPECT_EQ(target.position.pmRa, 3.5);
    EXPECT_EQ(target.position.pmDec, -2.5);
    EXPECT_EQ(target.position.parallax, 5.0);
    EXPECT_EQ(target.position.rv, 12.5);
}

TEST(TargetXML, NamesAreUtf8) {
    // An e with an acute accent is C3 A9, an alpha CE B1.
    const Target target = createTargetXML(
        parseElement("<target targname='\xC3\xA9' targsrvy='\xCE\xB1' targra='45.000000' targdec='45.000000'/>"));
    EXPECT_EQ(target.name, "\xC3\xA9");
    EXPECT_EQ(target.survey, "\xCE\xB1");
}

TEST(TargetXML, ReadsPrioritiesFromZeroUp) {
    EXPECT_EQ(createTargetXML(targetX("targprio='0'")).priority, 0.0);
    EXPECT_EQ(createTargetXML(targetX("targprio=' 1e3 '")).priority, 1000.0);
}

TEST(TargetXML, ReadsTheUseInEitherCase) {
    EXPECT_EQ(createTargetXML(targetX("targuse='s'")).use, TargetUse::S);
    EXPECT_EQ(createTargetXML(targetX("targuse='R'")).use, TargetUse::R);
}

TEST(TargetXML, AnEmptyOrUnfilledFibreIdIsNoFibre) {
    EXPECT_EQ(createTargetXML(targetX("fibreid=''")).fibreid, kNoFibre);
    EXPECT_EQ(createTargetXML(targetX("fibreid='%%%'")).fibreid, kNoFibre);
}

TEST(TargetXML, ReadsIntegersInBaseTen) {
    EXPECT_EQ(createTargetXML(targetX("fibreid='010'")).fibreid, 10);
    EXPECT_EQ(createTargetXML(targetX("configid='010'")).configid, 10U);
    EXPECT_EQ(createTargetXML(targetX("fibreid='-160'")).fibreid, -160);
    EXPECT_EQ(createTargetXML(targetX("fibreid='2147483647'")).fibreid, 2147483647);
}

TEST(TargetXML, WidensTheConfigureTargetIdWithItsSign) {
    EXPECT_EQ(createTargetXML(targetX("configid='-5'")).configid, std::numeric_limits<std::uint64_t>::max() - 4);
    EXPECT_EQ(createTargetXML(targetX("configid='2147483647'")).configid, 2147483647U);
}

TEST(TargetXML, EveryNumberButZeroSetsTheAutomaticFlag) {
    EXPECT_FALSE(createTargetXML(targetX("automatic='0'")).automatic);
    EXPECT_TRUE(createTargetXML(targetX("automatic='2'")).automatic);
    EXPECT_TRUE(createTargetXML(targetX("automatic='-1'")).automatic);
}

TEST(TargetXML, RefusesAPriorityThatIsNegativeOrNotANumber) {
    for (const std::string text : {"-0.5", "abc", "", "%%%", "1,5", "-inf"}) {
        EXPECT_EQ(failureOf("targprio='" + text + "'"), "Target X has an invalid priority '" + text + "'");
    }
}

TEST(TargetXML, RefusesAnUnknownUse) {
    EXPECT_EQ(failureOf("targuse='x'"), "x is not a valid target use");
    EXPECT_EQ(failureOf("targuse=''"), " is not a valid target use");
    EXPECT_EQ(failureOf("targuse='TG'"), "TG is not a valid target use");
}

TEST(TargetXML, RefusesAFibreIdThatIsNotAnInteger) {
    for (const std::string text : {"12a", "1.0", "0x10", "2147483648", "%%", " "}) {
        EXPECT_EQ(failureOf("fibreid='" + text + "'"), "Target X has an invalid fibre id '" + text + "'");
    }
}

TEST(TargetXML, RefusesAConfigureTargetIdThatIsNotAnInteger) {
    for (const std::string text : {"%%%", "", "7a", "1.0", "4294967296"}) {
        EXPECT_EQ(failureOf("configid='" + text + "'"), "Target X has an invalid configure target id '" + text + "'");
    }
}

TEST(TargetXML, RefusesAnAutomaticFlagThatIsNotAnInteger) {
    for (const std::string text : {"%%%", "", "yes", "1.0"}) {
        EXPECT_EQ(failureOf("automatic='" + text + "'"), "Target X has an invalid automatic flag '" + text + "'");
    }
}

TEST(TargetXML, FailuresOfThePositionCarryTheTargetsName) {
    EXPECT_EQ(failureOf("targepoch='now'"), "Target X position has an invalid epoch 'now'");
    EXPECT_EQ(messageOf([] { createTargetXML(parseElement("<target targname='NGC 1'/>")); }),
              "Target NGC 1 has no targra");
    EXPECT_EQ(messageOf([] { createTargetXML(parseElement("<target targname='X' targra='45.0'/>")); }),
              "Target X targra '45.0' does not have enough precision");
}

TEST(TargetXML, TheMessageOfATargetWithoutANameHasTwoBlanks) {
    EXPECT_EQ(messageOf([] { createTargetXML(parseElement("<target targprio='x'/>")); }),
              "Target  has an invalid priority 'x'");
    EXPECT_EQ(messageOf([] { createTargetXML(parseElement("<target/>")); }), "Target  has no targra");
}

TEST(TargetXML, TheFirstBadAttributeInTheOrderOfReadingIsReported) {
    struct Stage {
        const char* bad;
        const char* message;
    };
    const std::vector<Stage> stages = {{"targprio='p'", "Target X has an invalid priority 'p'"},
                                       {"targuse='u'", "u is not a valid target use"},
                                       {"fibreid='f'", "Target X has an invalid fibre id 'f'"},
                                       {"configid='c'", "Target X has an invalid configure target id 'c'"},
                                       {"targrv='v'", "Target X position has an invalid radial velocity 'v'"},
                                       {"automatic='a'", "Target X has an invalid automatic flag 'a'"}};
    for (std::size_t first = 0; first < stages.size(); ++first) {
        std::string attributes;
        for (std::size_t i = first; i < stages.size(); ++i) {
            attributes += std::string(stages[i].bad) + " ";
        }
        EXPECT_EQ(failureOf(attributes), stages[first].message);
    }
}
