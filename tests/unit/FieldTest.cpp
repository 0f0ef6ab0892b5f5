#include "Field.h"

#include "thrown.h"
#include "xml.h"

#include <gmock/gmock.h>

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

} // namespace

TEST(Field, CannotReplaceOrFindATargetThatItDoesNotHold) {
    Field field({0.0, 0.0});
    EXPECT_EQ(messageOf<std::out_of_range>([&] { field.replaceTarget(targetOf("", 3)); }), "map::at");
    EXPECT_EQ(messageOf<std::out_of_range>([&] { field.targetById(0); }), "map::at");
}

// Which ids are assigned and which are refused is the subject of the properties of a field's ids.

TEST(Field, AnAssignedIdIsWrittenIntoTheCallersRecord) {
    Field field({0.0, 0.0});
    Target first = targetOf("first", 0);
    Target second = targetOf("second", 0);
    EXPECT_EQ(field.addTarget(first), 2U);
    EXPECT_EQ(field.addTarget(second), 3U);
    EXPECT_EQ(second.configid, 3U);
    EXPECT_EQ(field.nextConfigid, 3U);
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
    EXPECT_TRUE(field.groups[1].empty());
    EXPECT_EQ(field.targetById(9).name, "first");
}

TEST(Field, ReplacesATargetInItsPlace) {
    Field field({0.0, 0.0});
    field.groups.emplace_back();
    field.currentGroup = 1;
    Target other = targetOf("other", 4);
    Target before = targetOf("before", 5);
    field.addTarget(other);
    field.addTarget(before);
    field.currentGroup = 0;
    field.replaceTarget(targetOf("after", 5));
    EXPECT_TRUE(field.groups[0].empty());
    EXPECT_EQ(field.groups[1][0].name, "other");
    EXPECT_EQ(field.groups[1][1].name, "after");
}

TEST(Field, AMaskGoesIntoTheRecordAndBehindThoseOfTheFirstAvoidanceListOfItsElement) {
    Field field({0.0, 0.0});
    field.addSkyMask({{0.0, 0.0}, 1.5});
    EXPECT_TRUE(field.element.isNull());

    field.element = parseElement("<field><target/><group/></field>");
    // A quarter and an eighth of π are 45 and 22.5 degrees.
    field.addSkyMask({{3.141592653589793 / 4, -3.141592653589793 / 8}, 1.5});
    EXPECT_EQ(treeText(field.element), treeText(parseElement("<field><target/><group/><avoidance_list>"
                                                             "<mask radius='1.5' RA_d='45.000000' Dec_d='-22.500000'/>"
                                                             "</avoidance_list></field>")));

    field.element = parseElement("<field><avoidance_list><mask radius='9'/></avoidance_list><avoidance_list/></field>");
    field.addSkyMask({{0.0, 0.0}, -2.0});
    EXPECT_EQ(treeText(field.element), treeText(parseElement("<field><avoidance_list><mask radius='9'/>"
                                                             "<mask radius='-2' RA_d='0.000000' Dec_d='0.000000'/>"
                                                             "</avoidance_list><avoidance_list/></field>")));
    ASSERT_EQ(field.skyMasks.size(), 3U);
    EXPECT_EQ(field.skyMasks[1].centre.ra, 3.141592653589793 / 4);
    EXPECT_EQ(field.skyMasks[2].radius, -2.0);
}
