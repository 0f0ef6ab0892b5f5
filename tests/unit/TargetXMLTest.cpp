#include "TargetXML.h"

#include "thrown.h"
#include "xml.h"

#include <gtest/gtest.h>
#include <limits>

using namespace pos;

namespace {

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
}

TEST(TargetXML, ReadsEveryAttribute) {
    // An e with an acute accent is C3 A9.
    const Target target = createTargetXML(
        parseElement("<target targname='NGC \xC3\xA9' targsrvy='WL' targprio='2.5' targuse='g' fibreid='-017' "
                     "configid='-5' automatic='-1' targra='45.000000' targdec='-45.000000' targrv='12.5'/>"));
    EXPECT_EQ(target.name, "NGC \xC3\xA9");
    EXPECT_EQ(target.survey, "WL");
    EXPECT_EQ(target.priority, 2.5);
    EXPECT_EQ(target.use, TargetUse::G);
    EXPECT_EQ(target.fibreid, -17);
    EXPECT_EQ(target.configid, std::numeric_limits<std::uint64_t>::max() - 4); // widened with its sign
    EXPECT_TRUE(target.automatic);
    EXPECT_EQ(target.position.ra, 3.141592653589793 / 4);
    EXPECT_EQ(target.position.rv, 12.5);
}

TEST(TargetXML, ValuesThatMeanNothingAreTakenAsSuch) {
    EXPECT_EQ(createTargetXML(targetX("targprio='0'")).priority, 0.0);
    EXPECT_EQ(createTargetXML(targetX("fibreid=''")).fibreid, kNoFibre);
    EXPECT_EQ(createTargetXML(targetX("fibreid='%%%'")).fibreid, kNoFibre);
    EXPECT_FALSE(createTargetXML(targetX("automatic='0'")).automatic);
}

TEST(TargetXML, TheFirstBadAttributeInTheOrderOfReadingIsReported) {
    struct Row {
        std::string bad;
        std::string message;
    };
    const std::vector<Row> rows = {{"targprio='-0.5'", "Target X has an invalid priority '-0.5'"},
                                   {"targuse='u'", "u is not a valid target use"},
                                   {"fibreid='2147483648'", "Target X has an invalid fibre id '2147483648'"},
                                   {"configid='%%%'", "Target X has an invalid configure target id '%%%'"},
                                   {"targrv='v'", "Target X position has an invalid radial velocity 'v'"},
                                   {"automatic='1.0'", "Target X has an invalid automatic flag '1.0'"}};
    std::string attributes;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        attributes += row->bad + " ";
        EXPECT_EQ(failureOf(attributes), row->message);
    }
}

TEST(TargetXML, AnEmptyAttributeIsNoNumber) {
    EXPECT_EQ(failureOf("targprio=''"), "Target X has an invalid priority ''");
    EXPECT_EQ(failureOf("targuse=''"), " is not a valid target use");
    EXPECT_EQ(failureOf("configid=''"), "Target X has an invalid configure target id ''");
    EXPECT_EQ(failureOf("automatic=''"), "Target X has an invalid automatic flag ''");
}

TEST(TargetXML, TheMessageOfATargetWithoutANameHasTwoBlanks) {
    EXPECT_EQ(messageOf([] { createTargetXML(parseElement("<target targprio='x'/>")); }),
              "Target  has an invalid priority 'x'");
    EXPECT_EQ(messageOf([] { createTargetXML(parseElement("<target/>")); }), "Target  has no targra");
}
