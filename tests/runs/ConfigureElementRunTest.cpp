#include "Program.h"
#include "fieldDefinition.h"
#include "xml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What a run leaves in the configure element: version, conditions, hour-angle limits, focal-plane record.

namespace {

using Attributes = std::map<std::string, std::string>;

/** The configure element of a run on the ordinary field with this configure element. */
QDomDocument configuredWith(const std::string& configure) {
    FieldDefinition definition;
    definition.configure = configure;
    return configured(definition.text());
}

std::vector<std::string> childNames(const QDomElement& parent) {
    std::vector<std::string> names;
    for (QDomElement child = parent.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        names.push_back(child.tagName().toStdString());
    }
    return names;
}

} // namespace

TEST(ConfigureElementRun, StampsTheVersionOverAnOlderOne) {
    const QDomDocument output =
        configuredWith(R"(<configure configure_version="1.0" max_sky="12"><conditions epoch="2024.5"/></configure>)");
    EXPECT_EQ(attributes(onlyElement(output, "configure")),
              (Attributes{{"configure_version", "3.3.5"}, {"max_sky", "12"}}));
}

TEST(ConfigureElementRun, AddsItsElementsInTheOrderOfTheRun) {
    const QDomDocument output = configuredWith("<configure><other/></configure>");
    EXPECT_EQ(childNames(onlyElement(output, "configure")),
              (std::vector<std::string>{"other", "conditions", "hour_angle_limits", "telescope", "focal_plane_map"}));
}

TEST(ConfigureElementRun, WritesTheEarlierLimitAsLatestAndTheLaterAsEarliest) {
    const QDomDocument output = configured(FieldDefinition().text());
    const QDomElement limits = onlyElement(output, "hour_angle_limits");
    EXPECT_EQ(limits.parentNode().nodeName(), "configure");
    // A declination of 20 degrees reaches 25 degrees of altitude at latitude 28.760583 at this hour angle:
    // acos((sin 25 - sin 20 sin 28.760583) / (cos 20 cos 28.760583)) = 71.74 degrees = 4.78 hours; precession since
    // 2000 and refraction move it by less than a minute of time. The rotator's limits are not reached in between.
    constexpr double kMinuteOfTimeHours = 1.0 / 60;
    EXPECT_NEAR(number(limits, "latest"), -4.78, kMinuteOfTimeHours);
    EXPECT_EQ("-" + attributeText(limits, "earliest"), attributeText(limits, "latest"));
    EXPECT_THAT(attributeText(limits, "latest"), testing::MatchesRegex("-[0-9]\\.[0-9]{4}"));
    EXPECT_EQ(limits.attributes().count(), 2);
}

TEST(ConfigureElementRun, ReusesTheFirstHourAngleLimitsAndIgnoresASecond) {
    const QDomDocument output =
        configuredWith(R"(<configure><hour_angle_limits latest="9" comment="kept"/><hour_angle_limits latest="8"/>
                          <conditions epoch="2024.5"/></configure>)");
    const std::vector<QDomElement> limits = elements(output, "hour_angle_limits");
    ASSERT_EQ(limits.size(), 2U);
    EXPECT_EQ(attributeText(limits.at(0), "comment"), "kept");
    EXPECT_EQ("-" + attributeText(limits.at(0), "earliest"), attributeText(limits.at(0), "latest"));
    EXPECT_EQ(attributes(limits.at(1)), (Attributes{{"latest", "8"}}));
}

TEST(ConfigureElementRun, WritesADocumentWithoutFieldsWithItsConfigureElementAlone) {
    FieldDefinition definition;
    definition.fields.clear();
    const QDomDocument output = configured(definition.text());
    EXPECT_TRUE(elements(output, "target").empty());
    EXPECT_FALSE(onlyElement(output, "observation").hasAttribute("RA_d"));
    EXPECT_EQ(attributeText(onlyElement(output, "configure"), "configure_version"), "3.3.5");
}
