#include "Program.h"
#include "angles.h"
#include "fieldDefinition.h"
#include "tolerances.h"
#include "xml.h"

#include <gtest/gtest.h>

// Whole runs with the embedded configuration: one field, several, and what a field may hold besides its two targets.

namespace {

QDomElement fieldOf(const QDomDocument& document, std::size_t index = 0) {
    return elements(document, "field").at(index);
}

/** The targets of a field that the run has generated. */
std::vector<QDomElement> generatedTargets(const QDomElement& field) {
    std::vector<QDomElement> generated;
    for (const QDomElement& target : children(field, "target")) {
        if (attributeText(target, "automatic") == "1") {
            generated.push_back(target);
        }
    }
    return generated;
}

/** The names of a field's own targets, with their configure target ids, in document order. */
std::vector<std::string> namesWithIds(const QDomElement& field) {
    std::vector<std::string> names;
    for (const QDomElement& target : elements(field, "target")) {
        if (attributeText(target, "automatic") != "1") {
            names.push_back(attributeText(target, "targname") + " " + attributeText(target, "configid"));
        }
    }
    return names;
}

} // namespace

TEST(ConfigurationRun, UsesTheFibreThatTheScienceTargetCarries) {
    const struct {
        std::string attribute;
        std::string fibreid;
        std::string spaxel;
        double y;
    } cases[] = {{R"(fibreid="1")", "1", "C01", -17.501},
                 {R"(fibreid="160")", "160", "C07", -18.654},
                 {R"(fibreid="%%%")", "304", "C14", -20.0},
                 {R"(fibreid="")", "304", "C14", -20.0}};
    for (const auto& [attribute, fibreid, spaxel, y] : cases) {
        SCOPED_TRACE(attribute);
        const QDomDocument output =
            configured(documentWithFields({fieldXml(scienceTargetXml(attribute) + guideStarXml())}));
        const QDomElement science = children(fieldOf(output), "target").at(0);
        // The identifier is not negated here, not even that of the broken fibre 160.
        EXPECT_EQ(attributeText(science, "fibreid"), fibreid);
        EXPECT_EQ(attributeText(science, "configid"), fibreid);
        EXPECT_EQ(attributeText(science, "ifu_spaxel"), spaxel);
        EXPECT_NEAR(number(science, "targx"), 0.0, kPlateToleranceMm);
        EXPECT_NEAR(number(science, "targy"), y, kPlateToleranceMm);
        EXPECT_EQ(generatedTargets(fieldOf(output)).size(), 602U);
    }
}

TEST(ConfigurationRun, ConfiguresEveryFieldAndWritesOnlyTheFirstCentreIntoTheObservation) {
    const QDomDocument output = configured(documentWithFields({ordinaryFieldXml(), secondFieldXml()}));
    const QDomElement first = fieldOf(output, 0);
    const QDomElement second = fieldOf(output, 1);
    const QDomElement observation = onlyElement(output, "observation");
    EXPECT_EQ(attributeText(observation, "RA_d") + attributeText(observation, "Dec_d"),
              attributeText(first, "RA_d") + attributeText(first, "Dec_d"));
    EXPECT_NEAR(number(second, "RA_d"), 150.2, 0.001);
    EXPECT_NEAR(number(second, "Dec_d"), 21.1 + 20.0 / 202.84, 0.0005);
    for (const QDomElement& field : {first, second}) {
        EXPECT_EQ(generatedTargets(field).size(), 602U);
        EXPECT_EQ(attributeText(children(field, "target").at(0), "ifu_spaxel"), "C14");
        EXPECT_EQ(attributeText(children(field, "target").at(1), "configid"), "0");
        EXPECT_NEAR(number(children(field, "target").at(1), "targy"), -20.0 + 20.3, 0.1);
    }
    EXPECT_EQ(attributeText(generatedTargets(first).front(), "targname"), "Galaxy");
    EXPECT_EQ(attributeText(generatedTargets(second).front(), "targname"), "Galaxy 2");
}

TEST(ConfigurationRun, ConfiguresARepeatedFieldAsItDidTheFirstTime) {
    const QDomDocument once = configured(FieldDefinition().text());
    const QDomDocument thrice =
        configured(documentWithFields({ordinaryFieldXml(), secondFieldXml(), ordinaryFieldXml()}));
    EXPECT_EQ(treeText(fieldOf(thrice, 0)), treeText(fieldOf(once)));
    EXPECT_EQ(treeText(fieldOf(thrice, 2)), treeText(fieldOf(once)));
}

TEST(ConfigurationRun, DoesNotHoldLaterFieldsToTheLimitsOfTheFirst) {
    // 12 hours away from the first field, and so below the horizon.
    const std::string opposite = R"(<field RA_d="330.000000" Dec_d="-20.000000">)" +
                                 targetXml("T", "Galaxy", "330.10000000", "-20.10000000") +
                                 targetXml("G", "Star", "330.10000000", "-20.20000000") + "</field>";
    const QDomDocument output = configured(documentWithFields({ordinaryFieldXml(), opposite}));
    EXPECT_EQ(generatedTargets(fieldOf(output, 1)).size(), 602U);
}

TEST(ConfigurationRun, TakesTheLastScienceTargetBeforeTheGuideStarIsSeen) {
    const std::string other = targetXml("T", "Other", "150.15000000", "20.15000000");
    const QDomDocument later = configured(documentWithFields({fieldXml(scienceTargetXml() + other + guideStarXml())}));
    EXPECT_EQ(namesWithIds(fieldOf(later)), (std::vector<std::string>{"Galaxy 2", "Other 304", "Star 0"}));
    EXPECT_EQ(attributeText(generatedTargets(fieldOf(later)).front(), "targname"), "Other");

    const QDomDocument stopped =
        configured(documentWithFields({fieldXml(scienceTargetXml() + guideStarXml() + other)}));
    EXPECT_EQ(namesWithIds(fieldOf(stopped)), (std::vector<std::string>{"Galaxy 304", "Star 0", "Other 4"}));
}

TEST(ConfigurationRun, NumbersTheOtherTargetsOfTheFirstFieldOnly) {
    const std::string fields = targetXml("C", "Cal", "150.3000000", "20.3000000", R"(configid="2")") + "<group>" +
                               targetXml("S", "Blank", "150.4000000", "20.3000000") + "<group>" +
                               targetXml("T", "Grouped", "150.5000000", "20.3000000") + "</group></group>" +
                               scienceTargetXml() + guideStarXml(R"(configid="77")") +
                               R"(<avoidance_list><mask RA_d="150.300000" Dec_d="20.300000" radius="4.5"/>
                                  <mask RA_d="150.400000" Dec_d="20.300000"/></avoidance_list>)";
    const QDomDocument output = configured(documentWithFields({fieldXml(fields), fieldXml(fields)}));
    // 2 is taken: the targets without an id get 3, 4 and 5 in document order; then the science target gets its fibre's
    // and the guide star 0.
    EXPECT_EQ(namesWithIds(fieldOf(output, 0)),
              (std::vector<std::string>{"Cal 2", "Blank 3", "Grouped 4", "Galaxy 304", "Star 0"}));
    EXPECT_EQ(namesWithIds(fieldOf(output, 1)),
              (std::vector<std::string>{"Cal 2", "Blank (absent)", "Grouped (absent)", "Galaxy 304", "Star 0"}));
    for (const QDomElement& field : elements(output, "field")) {
        EXPECT_EQ(treeText(onlyElement(field, "avoidance_list")),
                  "<avoidance_list>\n <mask Dec_d='20.300000' RA_d='150.300000' radius='4.5'>\n"
                  " <mask Dec_d='20.300000' RA_d='150.400000'>\n");
        const std::vector<QDomElement> groups = elements(field, "group");
        ASSERT_EQ(groups.size(), 2U);
        EXPECT_EQ(children(groups.at(0), "target").size(), 1U);
        EXPECT_EQ(children(groups.at(1), "target").size(), 1U);
        EXPECT_EQ(generatedTargets(field).size(), 602U);
    }
}

TEST(ConfigurationRun, ReadsAMissingOrUnreadablePositionAngleAsZero) {
    const struct {
        std::string attribute;
        double degrees;
    } cases[] = {{"", 0.0}, {R"(pa="abc")", 0.0}, {R"(pa="")", 0.0}, {R"(pa="30")", 30.0}, {R"(pa="370")", 10.0}};
    for (const auto& [attribute, degrees] : cases) {
        SCOPED_TRACE(attribute);
        const QDomDocument output = configured(documentWithObservation(attribute));
        for (const QDomElement& target : elements(output, "target")) {
            EXPECT_NEAR(pos::degreesToRadians(number(target, "ifu_pa")), pos::degreesToRadians(degrees),
                        kAngleTolerance);
        }
    }
}

TEST(ConfigurationRun, TakesAnObservationAsTheDocumentElement) {
    const QDomDocument output =
        configured(R"(<observation datamver="8.00"><configure><conditions epoch="2024.5"/></configure><fields>)" +
                   ordinaryFieldXml() + "</fields></observation>");
    EXPECT_EQ(generatedTargets(fieldOf(output)).size(), 602U);
    EXPECT_EQ(attributeText(output.documentElement(), "RA_d"), attributeText(fieldOf(output), "RA_d"));
}
