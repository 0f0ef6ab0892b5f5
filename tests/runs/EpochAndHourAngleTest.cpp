#include "Conditions.h"
#include "Estimates.h"
#include "Program.h"
#include "fieldDefinition.h"
#include "thrown.h"
#include "xml.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <optional>

// When the run observes: the command line over the document, as the written conditions show it.

namespace {

/** The conditions element that a run on the ordinary field writes. */
struct WrittenConditions {
    WrittenConditions(const std::string& conditions, const std::vector<std::string>& arguments)
        : document(configured(documentWithConditions(conditions), arguments)),
          element(onlyElement(document, "conditions")) {}

    QDomDocument document;
    QDomElement element;
};

struct Row {
    std::string conditions;
    std::vector<std::string> arguments;
    /** Of the attribute in question. */
    double expected;
};

void expectAttribute(const std::string& attribute, const std::vector<Row>& rows, double tolerance) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.conditions + " " + testing::PrintToString(row.arguments));
        const WrittenConditions written(row.conditions, row.arguments);
        EXPECT_NEAR(number(written.element, attribute), row.expected, tolerance);
    }
}

/** The date is moved until the hour angle is right within a second of time; then it is rounded to four decimals. */
constexpr double kHourAngleToleranceHours = 1.0 / 3600 + 0.00005;

/** An epoch's two decimals, when the date moves by up to half a day from an epoch of two decimals. */
constexpr double kEpochTextTolerance = 1e-9;

} // namespace

TEST(HourAngle, ComesFromTheCommandLineOrElseFromTheDocumentOrElseIsZero) {
    expectAttribute("ha",
                    {{R"(epoch="2024.5")", {}, 0.0},
                     {R"(epoch="2024.5" ha="%%%")", {}, 0.0},
                     {R"(epoch="2024.5" ha="1.5")", {}, 1.5},
                     {R"(epoch="2024.5" ha=" -1.5 ")", {}, -1.5},
                     {R"(epoch="2024.5" ha="25.5e0")", {}, 1.5},
                     {R"(epoch="2024.5")", {"--ha", "1.5"}, 1.5},
                     {R"(epoch="2024.5" ha="1.5")", {"--ha", "0"}, 0.0},
                     {R"(epoch="2024.5" ha="1.5")", {"--ha", "-1.5"}, -1.5},
                     {R"(epoch="2024.5" ha="1.5")", {"--ha=-1.5"}, -1.5},
                     {R"(epoch="2024.5" ha="1.5")", {"--ha", "2.25"}, 2.25},
                     {R"(epoch="2024.5" ha="%%%")", {"--ha", "2.25"}, 2.25},
                     // The document's is not read where there is another.
                     {R"(epoch="2024.5" ha="abc")", {"--ha", "0"}, 0.0},
                     // Exactly 100 means not given; 100.5 is four whole days and 4.5 hours.
                     {R"(epoch="2024.5" ha="1.5")", {"--ha", "100"}, 1.5},
                     {R"(epoch="2024.5" ha="1.5")", {"--ha", "100.5"}, 4.5}},
                    kHourAngleToleranceHours);
}

TEST(HourAngle, MovesTheHourAngleLimitsNotAtAll) {
    // The sky turns under the field, whose place in it stays: only the refraction in the observed declination differs.
    const QDomDocument zero = configured(FieldDefinition().text());
    const QDomDocument two = configured(FieldDefinition().text(), {"--ha", "2"});
    constexpr double kRefractionHours = 0.005;
    EXPECT_NEAR(number(onlyElement(zero, "hour_angle_limits"), "latest"),
                number(onlyElement(two, "hour_angle_limits"), "latest"), kRefractionHours);
}

TEST(Epoch, OfTheCommandLineWinsOverTheDocument) {
    expectAttribute("epoch",
                    {{R"(epoch="2016.0")", {}, 2016.0},
                     {R"(epoch="2016.0")", {"--epoch", "2020.0"}, 2020.0},
                     {R"(epoch="%%%")", {"--epoch", "2020.0"}, 2020.0},
                     {"", {"--epoch=2020"}, 2020.0},
                     {R"(epoch="2016.0")", {"--epoch", "0"}, 2016.0},
                     {R"(epoch="2016.0")", {"--epoch", "1500"}, 1500.0}},
                    kEpochTextTolerance);
    EXPECT_EQ(attributeText(WrittenConditions(R"(epoch="2016.0")", {"--epoch", "2020.0"}).element, "epoch"), "2020.00");
}

TEST(Epoch, ThatIsMissingIsTheDateOfJulianEpochZeroAndDoesNotStopTheRun) {
    expectAttribute(
        "epoch", {{"", {}, 0.0}, {R"(epoch="%%%")", {}, 0.0}, {R"(epoch="0")", {}, 0.0}, {"", {"--epoch", "0"}, 0.0}},
        kEpochTextTolerance);
}

TEST(Epoch, NextToTheDateZeroDoesNotStopTheRun) {
    // 2000 - 51544.5 / 365.25 is the epoch of the date 0. No double has exactly this date: the nearest three are within
    // some microseconds of it.
    const double zero = 2000.0 - 51544.5 / 365.25;
    for (const double epoch : {std::nextafter(zero, 0.0), zero, std::nextafter(zero, 3000.0)}) {
        ASSERT_NE(51544.5 + (epoch - 2000.0) * 365.25, 0.0);
        const std::string attribute = "epoch=\"" + QString::number(epoch, 'g', 17).toStdString() + "\"";
        expectAttribute("epoch", {{attribute, {}, 1858.88}}, kEpochTextTolerance);
    }
}

TEST(Epoch, IsMissingOnlyForTheDateZero) {
    // No document reaches this date (see above), so the step is asked by itself.
    for (const double zero : {0.0, -0.0}) {
        EXPECT_EQ(messageOf<pos::NoEpoch>([&] {
                      pos::resolveDate(0.0, pos::Conditions{zero, 283.0, 660.0, 0.2});
                  }),
                  "No epoch specified");
    }
    EXPECT_EQ(pos::resolveDate(0.0, pos::Conditions{-678955.5, 283.0, 660.0, 0.2}), -678955.5);
    EXPECT_EQ(pos::resolveDate(0.0, pos::Conditions{5e-324, 283.0, 660.0, 0.2}), 5e-324);
    // The command line is not asked whether its date is 0.
    EXPECT_EQ(pos::resolveDate(2020.0, pos::Conditions{0.0, 283.0, 660.0, 0.2}), 58849.5);
}

TEST(Epoch, IsWrittenAsTheDateToWhichTheHourAngleHasMovedIt) {
    // A field that never sets, from an epoch on the edge between two texts: of two hour angles half a turn apart, one
    // lies before the epoch's own date and one after it.
    FieldDefinition definition;
    definition.observationAttributes = R"(pa="90")";
    definition.configure = configureXml(R"(epoch="2024.505")");
    definition.fields = {R"(<field RA_d="150.000000" Dec_d="60.000000">)" +
                         targetXml("T", "Galaxy", "150.10000000", "60.10000000") +
                         targetXml("G", "Star", "150.10000000", "60.20000000") + "</field>"};
    std::vector<std::string> epochs;
    for (const char* hourAngle : {"0", "12"}) {
        const QDomDocument output = configured(definition.text(), {"--ha", hourAngle, "--horizon_limit", "-20"});
        epochs.push_back(attributeText(onlyElement(output, "conditions"), "epoch"));
    }
    std::sort(epochs.begin(), epochs.end());
    EXPECT_EQ(epochs, (std::vector<std::string>{"2024.50", "2024.51"}));
}

TEST(Pressure, OfTheCommandLineWinsOverTheDocument) {
    expectAttribute("pressure",
                    {{R"(epoch="2024.5" pressure="555")", {}, 555.0},
                     {R"(epoch="2024.5" pressure="555")", {"--pressure", "700.5"}, 700.5},
                     {R"(epoch="2024.5" pressure="555")", {"--pressure", "0"}, 555.0},
                     {R"(epoch="2024.5" pressure="%%%")", {"--pressure", "0"}, 660.0},
                     {R"(epoch="2024.5")", {"--pressure", "700.5"}, 700.5}},
                    0.0);
}

TEST(HorizonLimit, IsAnAltitudeInDegrees) {
    // The field culminates 90 - 28.76 + 20 = 81.2 degrees high.
    const QDomDocument low = configured(FieldDefinition().text(), {"--horizon_limit", "80.5"});
    const QDomDocument usual = configured(FieldDefinition().text());
    const QDomDocument given = configured(FieldDefinition().text(), {"--horizon_limit", "25"});
    const auto latest = [](const QDomDocument& output) {
        return attributeText(onlyElement(output, "hour_angle_limits"), "latest");
    };
    EXPECT_EQ(latest(given), latest(usual));
    EXPECT_GT(number(onlyElement(low, "hour_angle_limits"), "latest"),
              number(onlyElement(usual, "hour_angle_limits"), "latest"));
}

TEST(Rotator, ReachesPositionAnglesWithinItsLimits) {
    for (const char* positionAngle : {"134", "-134", "494"}) {
        configured(documentWithObservation("pa=\"" + std::string(positionAngle) + "\""));
    }
}

TEST(Rotator, NeedsAPositionAngleNear180NorthOfTheZenith) {
    FieldDefinition definition;
    definition.observationAttributes = R"(pa="180")";
    definition.fields = {R"(<field RA_d="150.000000" Dec_d="60.000000">)" +
                         targetXml("T", "Galaxy", "150.10000000", "60.10000000") +
                         targetXml("G", "Star", "150.10000000", "60.20000000") + "</field>"};
    const QDomDocument output = configured(definition.text());
    EXPECT_NEAR(std::abs(number(elements(output, "target").at(0), "ifu_pa")), 180.0, 1e-10);
}
