#include "configuredDocument.h"
#include "fieldDefinition.h"

#include <cmath>
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

TEST(ConfigureElementRun, WritesTheConditionsThatItUsed) {
    const QDomDocument output =
        configuredWith(R"(<configure><conditions epoch="2016.0" temperature="280.5" pressure="770.5"
                          relative_humidity="0.5" tlr="0.0" seeing="0.8"/></configure>)");
    Attributes written = attributes(onlyElement(output, "conditions"));
    EXPECT_EQ(std::abs(number(onlyElement(output, "conditions"), "ha")), 0.0);
    written.erase("ha");
    EXPECT_EQ(number(onlyElement(output, "conditions"), "tlr"), 0.0065);
    written.erase("tlr");
    EXPECT_EQ(written, (Attributes{{"epoch", "2016.00"},
                                   {"temperature", "280.5"},
                                   {"pressure", "770.5"},
                                   {"relative_humidity", "0.5"},
                                   {"seeing", "0.8"}}));
}

TEST(ConfigureElementRun, MakesTheConditionsThatADocumentLacks) {
    const QDomDocument output = configuredWith("<configure/>");
    const QDomElement conditions = onlyElement(output, "conditions");
    EXPECT_EQ(conditions.parentNode().nodeName(), "configure");
    EXPECT_EQ(number(conditions, "temperature"), 283.0);
    EXPECT_EQ(number(conditions, "pressure"), 660.0);
    EXPECT_EQ(number(conditions, "relative_humidity"), 0.2);
    EXPECT_EQ(number(conditions, "tlr"), 0.0065);
    EXPECT_EQ(std::abs(number(conditions, "epoch")), 0.0);
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
    EXPECT_EQ("-" + text(limits, "earliest"), text(limits, "latest"));
    EXPECT_THAT(text(limits, "latest"), testing::MatchesRegex("-[0-9]\\.[0-9]{4}"));
    EXPECT_EQ(limits.attributes().count(), 2);
}

TEST(ConfigureElementRun, ReusesTheFirstHourAngleLimitsAndIgnoresASecond) {
    const QDomDocument output =
        configuredWith(R"(<configure><hour_angle_limits latest="9" comment="kept"/><hour_angle_limits latest="8"/>
                          <conditions epoch="2024.5"/></configure>)");
    const std::vector<QDomElement> limits = elements(output, "hour_angle_limits");
    ASSERT_EQ(limits.size(), 2U);
    EXPECT_EQ(text(limits.at(0), "comment"), "kept");
    EXPECT_EQ("-" + text(limits.at(0), "earliest"), text(limits.at(0), "latest"));
    EXPECT_EQ(attributes(limits.at(1)), (Attributes{{"latest", "8"}}));
}

TEST(ConfigureElementRun, RecordsTheSiteAndTheOpticalModel) {
    const QDomDocument output = configured(FieldDefinition().text());
    // The embedded configuration has -17.881639, 28.760583, 2332.0 and the focal length 11724.24.
    EXPECT_EQ(attributes(onlyElement(output, "telescope")),
              (Attributes{{"east_longitude", "-17.881639"}, {"latitude", "28.76058"}, {"height", "2332.0"}}));
    EXPECT_EQ(attributes(onlyElement(output, "focal_plane_map")),
              (Attributes{{"focal_length", "11724.2"}, {"nominal_focal_length", "11724.2"}}));
    for (const char* plate : {"PLATE_A", "PLATE_B", "VEKO"}) {
        EXPECT_EQ(onlyElement(output, plate).parentNode().nodeName(), "optical_axis");
        EXPECT_EQ(attributes(onlyElement(output, plate)),
                  (Attributes{{"x0", "0.000"}, {"y0", "0.000"}, {"r0", "0.000"}}));
    }
    const QDomElement coefficients = onlyElement(output, "distortion_coefficients");
    EXPECT_EQ(number(coefficients, "c1"), 202.841);
    EXPECT_EQ(number(coefficients, "c3"), 3.0191);
    EXPECT_EQ(number(coefficients, "c5"), -0.0995944);
    EXPECT_EQ(text(coefficients, "c7"), "0");
}

TEST(ConfigureElementRun, WritesADocumentWithoutFieldsWithItsConfigureElementAlone) {
    FieldDefinition definition;
    definition.fields.clear();
    const QDomDocument output = configured(definition.text());
    EXPECT_TRUE(elements(output, "target").empty());
    EXPECT_FALSE(onlyElement(output, "observation").hasAttribute("RA_d"));
    EXPECT_EQ(text(onlyElement(output, "configure"), "configure_version"), "3.3.5");
}
