#include "SkyMaskXML.h"

#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

SkyMask readMask(const std::string& attributes) {
    return createSkyMaskXML(parseElement("<mask " + attributes + "/>"));
}

} // namespace

TEST(SkyMaskXML, ReadsCentreAndRadius) {
    const SkyMask mask = readMask("RA_d='45.00000' Dec_d='-22.50000' radius='-1.25'");
    EXPECT_NEAR(mask.centre.ra, 3.141592653589793 / 4, kAngleTolerance);
    EXPECT_NEAR(mask.centre.dec, -3.141592653589793 / 8, kAngleTolerance);
    EXPECT_EQ(mask.radius, -1.25);
}

TEST(SkyMaskXML, WithoutARadiusTheRadiusIsThree) {
    EXPECT_EQ(readMask("").radius, 3.0);
}

TEST(SkyMaskXML, RefusesABadCentreInTheNameOfTheMaskBeforeABadRadius) {
    EXPECT_EQ(messageOf([] { readMask("RA_d='east' radius='abc'"); }), "Sky mask has an invalid RA 'east'");
    for (const std::string text : {"", "%%%", "2 arcmin"}) {
        EXPECT_EQ(messageOf([&] { readMask("radius='" + text + "'"); }),
                  "Sky mask has an invalid radius '" + text + "'");
    }
}

TEST(SkyMaskXML, WritesAMaskAsTheLastChild) {
    const QDomElement list = parseElement("<avoidance_list><mask/></avoidance_list>");
    saveSkyMaskXML({{3.141592653589793 / 4, -3.141592653589793 / 8}, 0.5}, list);
    EXPECT_EQ(treeText(list), treeText(parseElement("<avoidance_list><mask/><mask RA_d='45.000000' Dec_d='-22.500000' "
                                                    "radius='0.5'/></avoidance_list>")));
}

TEST(SkyMaskXML, ReadsTheMasksOfAListInOrderAndNothingElse) {
    const std::vector<SkyMask> masks = createSkyMasksXML(
        parseElement("<avoidance_list>text<mask radius='1'/><!-- none --><circle radius='bad'/>"
                     "<group><mask radius='9'/></group><mask radius='2'/><Mask radius='8'/></avoidance_list>"));
    ASSERT_EQ(masks.size(), 2U);
    EXPECT_EQ(masks[0].radius, 1.0);
    EXPECT_EQ(masks[1].radius, 2.0);
    EXPECT_TRUE(createSkyMasksXML(QDomElement()).empty());
}
