#include "ConditionsXML.h"

#include "angles.h"
#include "thrown.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

Conditions read(const std::string& attributes) {
    return createConditionsXML(parseElement("<conditions " + attributes + "/>"));
}

std::string failure(const std::string& attributes) {
    return messageOf([&] { return read(attributes); });
}

void expectDefaults(const Conditions& conditions) {
    EXPECT_EQ(conditions.epoch, -678955.5); // 51544.5 - 2000 * 365.25
    EXPECT_EQ(conditions.temperature, 283.0);
    EXPECT_EQ(conditions.pressure, 660.0);
    EXPECT_EQ(conditions.relativeHumidity, 0.2);
}

/** Writes conditions under a parent given as text; the parent is returned. */
QDomElement written(const Conditions& conditions, double hourAngle, const std::string& parent = "<configure/>") {
    const QDomDocument document = parseDocument(parent);
    saveConditionsXML(conditions, hourAngle, document, document.documentElement());
    return document.documentElement();
}

std::string text(const QDomElement& parent, const char* attribute) {
    return parent.firstChildElement("conditions").attribute(attribute, "(absent)").toStdString();
}

constexpr Conditions kConditions{57388.5, 283.0, 660.0, 0.2};

} // namespace

TEST(ConditionsXML, NullElementYieldsTheDefaults) {
    expectDefaults(createConditionsXML(QDomElement()));
}

TEST(ConditionsXML, ElementWithoutAttributesYieldsTheDefaults) {
    expectDefaults(read(""));
}

TEST(ConditionsXML, PlaceholdersCountAsAbsent) {
    expectDefaults(read("epoch='%%%' temperature='%%%' pressure='%%%' relative_humidity='%%%'"));
}

TEST(ConditionsXML, PlaceholderMustBeTheWholeValue) {
    EXPECT_EQ(failure("temperature=' %%%'"), "bad temperature attribute in conditions element");
    EXPECT_EQ(failure("epoch='%%'"), "bad epoch attribute in conditions element");
}

TEST(ConditionsXML, ValuesAreReadInTheirUnits) {
    const Conditions conditions =
        read("epoch='2016.0' temperature='270.5' pressure='1013.25' relative_humidity='1e-1'");
    EXPECT_EQ(conditions.epoch, 57388.5); // 51544.5 + 16 * 365.25
    EXPECT_EQ(conditions.temperature, 270.5);
    EXPECT_EQ(conditions.pressure, 1013.25);
    EXPECT_EQ(conditions.relativeHumidity, 0.1);
}

TEST(ConditionsXML, ZeroPressureIsKept) {
    EXPECT_EQ(read("pressure='0'").pressure, 0.0);
}

TEST(ConditionsXML, WhatIsNotANumberIsRefusedWithTheNameOfTheValue) {
    struct Row {
        const char* attribute;
        const char* message;
    };
    for (const Row& row : {Row{"epoch", "bad epoch attribute in conditions element"},
                           Row{"temperature", "bad temperature attribute in conditions element"},
                           Row{"pressure", "bad pressure attribute in conditions element"},
                           Row{"relative_humidity", "bad humidity attribute in conditions element"}}) {
        for (const std::string value : {"", " ", "abc", "1,5", "280 K", "%"}) {
            EXPECT_EQ(failure(row.attribute + ("='" + value + "'")), row.message) << value;
        }
    }
}

TEST(ConditionsXML, FirstBadAttributeInTheStatedOrderIsReported) {
    EXPECT_EQ(failure("relative_humidity='x' pressure='x' temperature='x' epoch='x'"),
              "bad epoch attribute in conditions element");
    EXPECT_EQ(failure("relative_humidity='x' pressure='x' temperature='x'"),
              "bad temperature attribute in conditions element");
    EXPECT_EQ(failure("relative_humidity='x' pressure='x'"), "bad pressure attribute in conditions element");
}

TEST(ConditionsXML, LapseRateAndHourAngleAreNotRead) {
    expectDefaults(read("tlr='0.0' ha='abc'"));
    expectDefaults(read("tlr='abc'"));
}

TEST(ConditionsXML, EpochIsWrittenAsAJulianEpochWithTwoDecimals) {
    EXPECT_EQ(text(written(kConditions, 0.0), "epoch"), "2016.00");
    EXPECT_EQ(text(written({51544.5 + 365.25 * 0.375, 0, 0, 0}, 0.0), "epoch"), "2000.38");
    EXPECT_EQ(text(written({-678955.5, 0, 0, 0}, 0.0), "epoch"), "0.00");
}

TEST(ConditionsXML, WeatherReadsBackExactly) {
    const QDomElement parent = written({57388.5, 800.0 / 3, 660.1, 1.0 / 7}, 0.0);
    const Conditions back = createConditionsXML(parent.firstChildElement("conditions"));
    EXPECT_EQ(back.epoch, 57388.5);
    EXPECT_EQ(back.temperature, 800.0 / 3);
    EXPECT_EQ(back.pressure, 660.1);
    EXPECT_EQ(back.relativeHumidity, 1.0 / 7);
}

TEST(ConditionsXML, HourAngleIsWrittenInHoursWithItsSignAndFourDecimals) {
    EXPECT_EQ(text(written(kConditions, kPi / 12), "ha"), "1.0000");
    EXPECT_EQ(text(written(kConditions, -kPi / 8), "ha"), "-1.5000");
    EXPECT_EQ(text(written(kConditions, 0.0), "ha"), "0.0000");
    EXPECT_EQ(text(written(kConditions, kPi), "ha"), "12.0000");
}

TEST(ConditionsXML, LapseRateIsTheConstantWhateverTheInputHeld) {
    const QDomElement parent = written(kConditions, 0.0, "<configure><conditions tlr='0.0'/></configure>");
    EXPECT_EQ(parent.firstChildElement("conditions").attribute("tlr").toDouble(), 0.0065);
    EXPECT_EQ(written(kConditions, 0.0).firstChildElement("conditions").attribute("tlr").toDouble(), 0.0065);
}

TEST(ConditionsXML, MissingElementIsAppendedAtTheParentsEnd) {
    const QDomElement parent = written(kConditions, 0.0, "<configure><telescope/></configure>");
    EXPECT_EQ(parent.lastChildElement().tagName(), "conditions");
    EXPECT_EQ(parent.childNodes().count(), 2);
    EXPECT_EQ(parent.lastChildElement().attributes().count(), 6);
}

TEST(ConditionsXML, ExistingElementIsUpdatedAndKeepsItsOtherAttributes) {
    const QDomElement parent = written(
        kConditions, 0.0, "<configure><conditions epoch='1999.0' ha='%%%' seeing='1.2'><x/></conditions></configure>");
    EXPECT_EQ(parent.childNodes().count(), 1);
    EXPECT_EQ(text(parent, "epoch"), "2016.00");
    EXPECT_EQ(text(parent, "ha"), "0.0000");
    EXPECT_EQ(text(parent, "seeing"), "1.2");
    EXPECT_FALSE(parent.firstChildElement("conditions").firstChildElement("x").isNull());
}

TEST(ConditionsXML, OnlyAChildOfTheParentIsUpdated) {
    const QDomElement parent = written(kConditions, 0.0, "<configure><a><conditions/></a></configure>");
    EXPECT_EQ(text(parent, "epoch"), "2016.00");
    EXPECT_EQ(text(parent.firstChildElement("a"), "epoch"), "(absent)");
}
