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

/** Writes conditions under a parent given as text; the parent is returned. */
QDomElement written(const Conditions& conditions, double hourAngle, const std::string& parent = "<configure/>") {
    const QDomDocument document = parseDocument(parent);
    saveConditionsXML(conditions, hourAngle, document, document.documentElement());
    return document.documentElement();
}

std::string text(const QDomElement& parent, const char* attribute) {
    return parent.firstChildElement("conditions").attribute(attribute, "(absent)").toStdString();
}

constexpr Conditions kConditions{57388.5, 283.0, 660.0, 0.5};

} // namespace

TEST(ConditionsXML, WhatIsAbsentOrUnfilledHasItsDefault) {
    const QDomElement unfilled =
        parseElement("<conditions epoch='%%%' temperature='%%%' pressure='%%%' relative_humidity='%%%'/>");
    // Lapse rate and hour angle are not read.
    const QDomElement unread = parseElement("<conditions tlr='abc' ha='abc'/>");
    for (const QDomElement& element : {QDomElement(), unfilled, unread}) {
        const Conditions conditions = createConditionsXML(element);
        EXPECT_EQ(conditions.epoch, -678955.5); // 51544.5 - 2000 * 365.25
        EXPECT_EQ(conditions.temperature, 283.0);
        EXPECT_EQ(conditions.pressure, 660.0);
        EXPECT_EQ(conditions.relativeHumidity, 0.2);
    }
}

TEST(ConditionsXML, ValuesAreReadInTheirUnits) {
    const Conditions conditions = read("epoch='2016.0' temperature='270.5' pressure='0' relative_humidity='1e-1'");
    EXPECT_EQ(conditions.epoch, 57388.5); // 51544.5 + 16 * 365.25
    EXPECT_EQ(conditions.temperature, 270.5);
    EXPECT_EQ(conditions.pressure, 0.0);
    EXPECT_EQ(conditions.relativeHumidity, 0.1);
}

TEST(ConditionsXML, TheFirstAttributeInTheStatedOrderThatIsNotANumberIsRefused) {
    struct Row {
        const char* attributes;
        const char* name;
    };
    for (const auto& [attributes, name] :
         {Row{"relative_humidity='x' pressure='x' temperature='x' epoch='%%'", "epoch"},
          Row{"relative_humidity='x' pressure='x' temperature=' %%%'", "temperature"},
          Row{"relative_humidity='x' pressure='1,5'", "pressure"}, Row{"relative_humidity=''", "humidity"}}) {
        EXPECT_EQ(messageOf([&, attributes = attributes] { read(attributes); }),
                  std::string("bad ") + name + " attribute in conditions element");
    }
}

// Numbers have the 17 digits that tell the doubles apart: the one nearest to 0.0065 is 0.0064999999999999997.
TEST(ConditionsXML, MissingElementIsAppendedAtTheParentsEnd) {
    EXPECT_EQ(treeText(written(kConditions, 0.0, "<configure><a><conditions/></a></configure>")),
              treeText(parseElement(
                  "<configure><a><conditions/></a><conditions epoch='2016.00' temperature='283' "
                  "pressure='660' relative_humidity='0.5' tlr='0.0064999999999999997' ha='0.0000'/></configure>")));
}

TEST(ConditionsXML, ExistingElementIsUpdatedAndKeepsTheRest) {
    EXPECT_EQ(treeText(written(kConditions, 0.0,
                               "<configure><conditions epoch='1999.0' tlr='0' ha='%%%' seeing='1.2'><x/></conditions>"
                               "<y/></configure>")),
              treeText(parseElement(
                  "<configure><conditions epoch='2016.00' temperature='283' pressure='660' "
                  "relative_humidity='0.5' tlr='0.0064999999999999997' ha='0.0000' seeing='1.2'><x/></conditions>"
                  "<y/></configure>")));
}

TEST(ConditionsXML, EpochIsAJulianEpochWithTwoDecimalsAndTheHourAngleHoursWithFour) {
    EXPECT_EQ(text(written({51544.5 + 365.25 * 0.375, 0, 0, 0}, 0.0), "epoch"), "2000.38");
    EXPECT_EQ(text(written({-678955.5, 0, 0, 0}, 0.0), "epoch"), "0.00");
    EXPECT_EQ(text(written(kConditions, -kPi / 8), "ha"), "-1.5000");
    EXPECT_EQ(text(written(kConditions, kPi), "ha"), "12.0000");
}
