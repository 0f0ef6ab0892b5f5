#include "SkyMaskXML.h"

#include "attributeText.h"
#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

TEST(SkyMaskXML, ReadsCentreAndRadius) {
    const SkyMask mask = createSkyMaskXML(parseElement("<mask RA_d='45.00000' Dec_d='-22.50000' radius='1.25'/>"));
    EXPECT_NEAR(mask.centre.ra, 3.141592653589793 / 4, kAngleTolerance);
    EXPECT_NEAR(mask.centre.dec, -3.141592653589793 / 8, kAngleTolerance);
    EXPECT_EQ(mask.radius, 1.25);
}

TEST(SkyMaskXML, WithoutARadiusTheRadiusIsThree) {
    EXPECT_EQ(createSkyMaskXML(parseElement("<mask RA_d='45.00000' Dec_d='1.00000'/>")).radius, 3.0);
    EXPECT_EQ(SkyMask().radius, 3.0);
}

TEST(SkyMaskXML, ReadsAMissingOrUnfilledCentreAsZero) {
    const SkyMask mask = createSkyMaskXML(parseElement("<mask RA_d='%%%'/>"));
    EXPECT_EQ(mask.centre.ra, 0.0);
    EXPECT_EQ(mask.centre.dec, 0.0);
}

TEST(SkyMaskXML, AcceptsARadiusOfAnySign) {
    EXPECT_EQ(createSkyMaskXML(parseElement("<mask radius='0'/>")).radius, 0.0);
    EXPECT_EQ(createSkyMaskXML(parseElement("<mask radius='-1'/>")).radius, -1.0);
    EXPECT_EQ(createSkyMaskXML(parseElement("<mask radius=' 2.5 '/>")).radius, 2.5);
}

TEST(SkyMaskXML, RefusesARadiusThatIsNotANumber) {
    for (const std::string text : {"abc", "", "1,5", "%%%", "2 arcmin"}) {
        const QDomElement mask = parseElement("<mask radius='" + text + "'/>");
        EXPECT_EQ(messageOf([&] { createSkyMaskXML(mask); }), "Sky mask has an invalid radius '" + text + "'");
    }
}

TEST(SkyMaskXML, RefusesABadCentreInTheNameOfTheMask) {
    struct Case {
        const char* mask;
        const char* message;
    };
    for (const Case& c : {Case{"<mask RA_d='east'/>", "Sky mask has an invalid RA 'east'"},
                          Case{"<mask Dec_d='up'/>", "Sky mask has an invalid Dec 'up'"},
                          Case{"<mask RA_d='45.0'/>", "Sky mask RA_d '45.0' does not have enough precision"},
                          Case{"<mask Dec_d='45.0'/>", "Sky mask Dec_d '45.0' does not have enough precision"},
                          Case{"<mask RA_d='east' radius='abc'/>", "Sky mask has an invalid RA 'east'"}}) {
        EXPECT_EQ(messageOf([&] { createSkyMaskXML(parseElement(c.mask)); }), c.message);
    }
}

TEST(SkyMaskXML, WritesAMaskAsTheLastChild) {
    const QDomElement list = parseElement("<avoidance_list><mask/></avoidance_list>");
    saveSkyMaskXML({{3.141592653589793 / 4, -3.141592653589793 / 8}, 0.1}, list);
    const QDomElement expected = parseElement("<avoidance_list><mask/><mask RA_d='45.000000' Dec_d='-22.500000' "
                                              "radius='" +
                                              setterText(0.1) + "'/></avoidance_list>");
    EXPECT_EQ(treeText(list), treeText(expected));
}

TEST(SkyMaskXML, ReadsTheMasksOfAListInOrderAndNothingElse) {
    const std::vector<SkyMask> masks = createSkyMasksXML(
        parseElement("<avoidance_list>text<mask radius='1'/><!-- none --><circle radius='bad'/>"
                     "<group><mask radius='9'/></group><mask radius='2'/><Mask radius='8'/></avoidance_list>"));
    ASSERT_EQ(masks.size(), 2U);
    EXPECT_EQ(masks[0].radius, 1.0);
    EXPECT_EQ(masks[1].radius, 2.0);
}

TEST(SkyMaskXML, AListWithoutMasksIsEmpty) {
    EXPECT_TRUE(createSkyMasksXML(parseElement("<avoidance_list/>")).empty());
    EXPECT_TRUE(createSkyMasksXML(QDomElement()).empty());
}

TEST(SkyMaskXML, OneBadMaskStopsTheReadingOfTheList) {
    const QDomElement list = parseElement("<avoidance_list><mask/><mask radius='x'/></avoidance_list>");
    EXPECT_EQ(messageOf([&] { createSkyMasksXML(list); }), "Sky mask has an invalid radius 'x'");
}

TEST(SkyMaskXML, AMaskSurvivesWritingAndReading) {
    const QDomElement list = parseElement("<avoidance_list/>");
    saveSkyMaskXML({{1.25, -0.5}, -0.1}, list);
    const std::vector<SkyMask> masks = createSkyMasksXML(list);
    ASSERT_EQ(masks.size(), 1U);
    EXPECT_NEAR(masks[0].centre.ra, 1.25, kDocumentAngleTolerance);
    EXPECT_NEAR(masks[0].centre.dec, -0.5, kDocumentAngleTolerance);
    EXPECT_EQ(masks[0].radius, -0.1);
}
