#include "Field.h"

#include "attributeText.h"
#include "thrown.h"
#include "xml.h"

#include <gmock/gmock.h>
#include <limits>

using namespace pos;
using testing::ElementsAre;
using testing::Pair;

namespace {

Target targetOf(const std::string& name, std::uint64_t configid) {
    Target target;
    target.name = name;
    target.configid = configid;
    return target;
}

std::vector<std::uint64_t> idsOf(const std::vector<Target>& targets) {
    std::vector<std::uint64_t> ids;
    for (const Target& target : targets) {
        ids.push_back(target.configid);
    }
    return ids;
}

} // namespace

TEST(Field, BeginsWithOneEmptyGroupAndNoElement) {
    const Field field({1.5, -0.25});
    EXPECT_EQ(field.centre.ra, 1.5);
    EXPECT_EQ(field.centre.dec, -0.25);
    EXPECT_TRUE(field.configidIndex.empty());
    ASSERT_EQ(field.groups.size(), 1U);
    EXPECT_TRUE(field.groups[0].empty());
    EXPECT_EQ(field.currentGroup, 0U);
    EXPECT_EQ(field.nextConfigid, 1U);
    EXPECT_TRUE(field.element.isNull());
    EXPECT_TRUE(field.skyMasks.empty());
}

TEST(Field, AssignsIdsFromTwoOnAndWritesThemIntoTheCallersRecord) {
    Field field({0.0, 0.0});
    Target first = targetOf("first", 0);
    Target second = targetOf("second", 0);
    EXPECT_EQ(field.addTarget(first), 2U);
    EXPECT_EQ(field.addTarget(second), 3U);
    EXPECT_EQ(first.configid, 2U);
    EXPECT_EQ(second.configid, 3U);
    EXPECT_EQ(field.nextConfigid, 3U);
    EXPECT_THAT(idsOf(field.groups[0]), ElementsAre(2, 3));
    EXPECT_EQ(field.groups[0][1].name, "second");
}

TEST(Field, AssignedIdsPassOverTheTakenOnes) {
    Field field({0.0, 0.0});
    for (std::uint64_t taken : {2U, 3U, 5U}) {
        Target target = targetOf("taken", taken);
        EXPECT_EQ(field.addTarget(target), taken);
        EXPECT_EQ(field.nextConfigid, 1U);
    }
    Target four = targetOf("", 0);
    Target six = targetOf("", 0);
    EXPECT_EQ(field.addTarget(four), 4U);
    EXPECT_EQ(field.addTarget(six), 6U);
    EXPECT_EQ(field.nextConfigid, 6U);
}

TEST(Field, TheIndexTellsTheGroupAndThePlaceOfEveryTarget) {
    Field field({0.0, 0.0});
    field.groups.emplace_back();
    Target ten = targetOf("ten", 10);
    Target seven = targetOf("seven", 7);
    Target eight = targetOf("eight", 8);
    field.addTarget(ten);
    field.currentGroup = 1;
    field.addTarget(seven);
    field.addTarget(eight);
    EXPECT_THAT(field.configidIndex, ElementsAre(Pair(7, Pair(1, 0)), Pair(8, Pair(1, 1)), Pair(10, Pair(0, 0))));
    EXPECT_EQ(field.groups[1][1].name, "eight");
    EXPECT_EQ(field.targetById(8).name, "eight");
}

TEST(Field, RefusesATakenIdAndStaysUnchanged) {
    Field field({0.0, 0.0});
    Target first = targetOf("first", 9);
    field.addTarget(first);
    field.groups.emplace_back();
    field.currentGroup = 1;
    Target second = targetOf("second", 9);
    EXPECT_EQ(messageOf([&] { field.addTarget(second); }), "Target configid already exists");
    EXPECT_THAT(field.configidIndex, ElementsAre(Pair(9, Pair(0, 0))));
    EXPECT_EQ(field.groups[0].size(), 1U);
    EXPECT_TRUE(field.groups[1].empty());
    EXPECT_EQ(field.groups[0][0].name, "first");
    EXPECT_EQ(field.nextConfigid, 1U);
}

TEST(Field, ReplacesEveryMemberOfATargetInItsPlace) {
    Field field({0.0, 0.0});
    Target before = targetOf("before", 4);
    Target after = targetOf("after", 5);
    field.addTarget(before);
    field.addTarget(after);
    const Target replacement{"new", "survey", {1, 0.5, 2000, 3, 4, 5, 6}, TargetUse::R, 2.5, 4, 17, true};
    field.replaceTarget(replacement);

    EXPECT_THAT(idsOf(field.groups[0]), ElementsAre(4, 5));
    const Target& stored = field.groups[0][0];
    EXPECT_EQ(stored.name, "new");
    EXPECT_EQ(stored.survey, "survey");
    EXPECT_EQ(stored.position.ra, 1);
    EXPECT_EQ(stored.position.dec, 0.5);
    EXPECT_EQ(stored.position.epoch, 2000);
    EXPECT_EQ(stored.position.pmRa, 3);
    EXPECT_EQ(stored.position.pmDec, 4);
    EXPECT_EQ(stored.position.parallax, 5);
    EXPECT_EQ(stored.position.rv, 6);
    EXPECT_EQ(stored.use, TargetUse::R);
    EXPECT_EQ(stored.priority, 2.5);
    EXPECT_EQ(stored.fibreid, 17);
    EXPECT_TRUE(stored.automatic);
    EXPECT_EQ(field.groups[0][1].name, "after");
}

TEST(Field, ReplacesATargetOfALaterGroup) {
    Field field({0.0, 0.0});
    field.groups.emplace_back();
    field.currentGroup = 1;
    Target inGroup = targetOf("in group", 6);
    field.addTarget(inGroup);
    field.currentGroup = 0;
    field.replaceTarget(targetOf("replaced", 6));
    EXPECT_TRUE(field.groups[0].empty());
    EXPECT_EQ(field.groups[1][0].name, "replaced");
}

TEST(Field, CannotReplaceOrFindATargetThatItDoesNotHold) {
    Field field({0.0, 0.0});
    EXPECT_EQ(messageOf<std::out_of_range>([&] { field.replaceTarget(targetOf("", 3)); }), "map::at");
    EXPECT_EQ(messageOf<std::out_of_range>([&] { field.targetById(0); }), "map::at");
}

TEST(Field, KeepsIdsOfSixtyFourBits) {
    Field field({0.0, 0.0});
    constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
    Target target = targetOf("large", kLargest);
    EXPECT_EQ(field.addTarget(target), kLargest);
    EXPECT_EQ(field.targetById(kLargest).name, "large");
}

TEST(Field, AMaskOfAnUnboundFieldStaysInTheRecord) {
    Field field({0.0, 0.0});
    field.addSkyMask({{1.0, 0.5}, 2.0});
    field.addSkyMask({{1.1, 0.6}, 4.0});
    ASSERT_EQ(field.skyMasks.size(), 2U);
    EXPECT_EQ(field.skyMasks[0].centre.ra, 1.0);
    EXPECT_EQ(field.skyMasks[0].centre.dec, 0.5);
    EXPECT_EQ(field.skyMasks[0].radius, 2.0);
    EXPECT_EQ(field.skyMasks[1].radius, 4.0);
    EXPECT_TRUE(field.element.isNull());
}

TEST(Field, AMaskOfABoundFieldCreatesTheAvoidanceListAsTheLastChild) {
    Field field({0.0, 0.0});
    field.element = parseElement("<field><target/><group/></field>");
    // A quarter and an eighth of π are 45 and 22.5 degrees.
    field.addSkyMask({{3.141592653589793 / 4, -3.141592653589793 / 8}, 1.5});
    EXPECT_EQ(field.skyMasks.size(), 1U);
    EXPECT_EQ(treeText(field.element), treeText(parseElement("<field><target/><group/><avoidance_list>"
                                                             "<mask radius='1.5' RA_d='45.000000' Dec_d='-22.500000'/>"
                                                             "</avoidance_list></field>")));
}

TEST(Field, MasksOfABoundFieldGoBehindThoseOfItsFirstAvoidanceList) {
    Field field({0.0, 0.0});
    field.element = parseElement("<field><avoidance_list><mask radius='9'/></avoidance_list><target/>"
                                 "<avoidance_list/></field>");
    field.addSkyMask({{0.0, 0.0}, 1.5});
    field.addSkyMask({{0.0, 0.0}, -2.0});
    EXPECT_EQ(field.skyMasks.size(), 2U);
    EXPECT_EQ(treeText(field.element), treeText(parseElement("<field><avoidance_list><mask radius='9'/>"
                                                             "<mask radius='1.5' RA_d='0.000000' Dec_d='0.000000'/>"
                                                             "<mask radius='-2' RA_d='0.000000' Dec_d='0.000000'/>"
                                                             "</avoidance_list><target/><avoidance_list/></field>")));
}
