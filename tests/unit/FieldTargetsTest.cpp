#include "FieldTargets.h"

#include "attributeText.h"
#include "thrown.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

/** The "name" attributes of the two targets that are found. */
std::string foundIn(const std::string& children) {
    const FieldTargets found = findFieldTargets(parseElement("<field>" + children + "</field>"));
    return attributeText(found.science, "name") + " " + attributeText(found.guide, "name");
}

std::string searchFailure(const std::string& children) {
    const QDomElement field = parseElement("<field>" + children + "</field>");
    return messageOf([&] { findFieldTargets(field); });
}

} // namespace

TEST(FieldTargets, FindsTheTwoInEitherOrder) {
    EXPECT_EQ(foundIn("<target name='a' targuse='T'/><target name='b' targuse='G'/>"), "a b");
    EXPECT_EQ(foundIn("<target name='a' targuse='G'/><note/><target name='b' targuse='T'/>"), "b a");
}

TEST(FieldTargets, UntilBothAreSeenALaterOneReplacesAnEarlierOne) {
    EXPECT_EQ(foundIn("<target name='a' targuse='T'/><target name='b' targuse='T'/><target name='c' targuse='G'/>"),
              "b c");
    EXPECT_EQ(foundIn("<target name='a' targuse='G'/><target name='b' targuse='G'/><target name='c' targuse='T'/>"),
              "c b");
}

TEST(FieldTargets, StopsAsSoonAsBothAreSeen) {
    EXPECT_EQ(foundIn("<target name='a' targuse='T'/><target name='b' targuse='G'/><target name='c' targuse='T'/>"
                      "<target name='d' targuse='G'/>"),
              "a b");
}

TEST(FieldTargets, PassesOverOtherUsesAndUsesInLowerCase) {
    EXPECT_EQ(foundIn("<target name='a' targuse='S'/><target name='b' targuse='T'/><target name='c' targuse='t'/>"
                      "<target name='d' targuse='TT'/><target name='e'/><target name='f' targuse=' T'/>"
                      "<target name='g' targuse='g'/><target name='h' targuse=''/><target name='i' targuse='G'/>"),
              "b i");
}

TEST(FieldTargets, LooksAtTheFieldsOwnTargetsOnly) {
    EXPECT_EQ(foundIn("<target name='a' targuse='T'/><group><target name='b' targuse='T'/>"
                      "<target name='c' targuse='G'/></group><star name='d' targuse='T'/>"
                      "<target name='e' targuse='G'/>"),
              "a e");
}

TEST(FieldTargets, BothMissingTargetsShareOneMessage) {
    constexpr const char* kMessage = "No science target in field";
    EXPECT_EQ(searchFailure("<target targuse='T'/>"), kMessage);
    EXPECT_EQ(searchFailure("<target targuse='G'/>"), kMessage);
    EXPECT_EQ(searchFailure(""), kMessage);
    // A target without a use is no science target, though its record reads as one.
    EXPECT_EQ(searchFailure("<target/><target targuse='G'/>"), kMessage);
    EXPECT_EQ(searchFailure("<target targuse='t'/><target targuse='G'/>"), kMessage);
    EXPECT_EQ(searchFailure("<target targuse='T'/><target targuse='g'/>"), kMessage);
    EXPECT_EQ(searchFailure("<group><target targuse='T'/></group><target targuse='G'/>"), kMessage);
}
