#include "CelestialPositionXML.h"

#include "thrown.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

/** How a number is taken as a field's right ascension: "" when accepted, else the message. */
std::string answerTo(const std::string& text) {
    const QDomElement element = parseElement("<field RA_d='" + text + "'/>");
    try {
        createAstrometricXML("Field centre", element);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

std::string tooCoarse(const std::string& text) {
    return "Field centre RA_d '" + text + "' does not have enough precision";
}

} // namespace

TEST(CelestialPositionPrecision, FiveDecimalsOfADegreeAreEnough) {
    for (const std::string text : {"10.12345", "150.00000", "0.00000", "-0.00001", "359.999999", "+1.00000",
                                   "10.1234567", "00010.12345", "-89.99999"}) {
        EXPECT_EQ(answerTo(text), "") << text;
    }
}

TEST(CelestialPositionPrecision, FewerDecimalsAreRefusedWithTheTextAsItStood) {
    // With three nines behind it the fourth decimal moves the value by 9.99e-5 degrees, above 2.78e-5.
    for (const std::string text : {"150.0", "10.5", "10.1234", "10", "0", "-0", "150.", "-45.0000", "0.000"}) {
        EXPECT_EQ(answerTo(text), tooCoarse(text));
    }
}

TEST(CelestialPositionPrecision, ExponentStaysBehindTheProbe) {
    // 1.5e1 is probed as 1.5999e1; at the end of the text the nines would make an exponent out of range.
    EXPECT_EQ(answerTo("1.5e1"), tooCoarse("1.5e1"));
    EXPECT_EQ(answerTo("1.5E1"), tooCoarse("1.5E1"));
    EXPECT_EQ(answerTo("1.500000e1"), "");
    EXPECT_EQ(answerTo("1.500000E1"), "");
    EXPECT_EQ(answerTo("1.50000e1"), tooCoarse("1.50000e1")); // 9.99e-6 times ten
    EXPECT_EQ(answerTo("1.50000e+0"), "");
    EXPECT_EQ(answerTo("1050.00e-2"), tooCoarse("1050.00e-2"));
    EXPECT_EQ(answerTo("1050.000e-2"), "");
    EXPECT_EQ(answerTo("1.50000E-0"), "");
}

TEST(CelestialPositionPrecision, WholeMantissaIsTooCoarseBecauseTheProbeMakesItLonger) {
    EXPECT_EQ(answerTo("1500000e-5"), tooCoarse("1500000e-5")); // probed as 1500000999e-5
    EXPECT_EQ(answerTo("1500000.e-5"), "");
}

TEST(CelestialPositionPrecision, BlanksAroundTheNumberAreNoPartOfTheProbe) {
    EXPECT_EQ(answerTo("  10.12345"), "");
    EXPECT_EQ(answerTo("10.12345  "), "");
    EXPECT_EQ(answerTo("  10.12345 "), "");
    EXPECT_EQ(answerTo(" 10.5 "), tooCoarse(" 10.5 "));
}

TEST(CelestialPositionPrecision, NumberThatCannotBeProbedIsInvalid) {
    for (const std::string text : {"nan", "inf", "-inf"}) {
        EXPECT_EQ(answerTo(text), "Field centre RA_d is an invalid number '" + text + "'");
    }
}

TEST(CelestialPositionPrecision, EveryAngleOfADocumentIsCheckedUnderItsOwnName) {
    const auto icrsFailure = [](const std::string& attributes) {
        return messageOf([&] { return createIcrsXML("Target a b", parseElement("<target " + attributes + "/>")); });
    };
    EXPECT_EQ(icrsFailure("targra='150.0' targdec='10.00000'"),
              "Target a b targra '150.0' does not have enough precision");
    EXPECT_EQ(icrsFailure("targra='150.00000' targdec='10.0'"),
              "Target a b targdec '10.0' does not have enough precision");
    EXPECT_EQ(icrsFailure("targra='nan' targdec='10.00000'"), "Target a b targra is an invalid number 'nan'");
    EXPECT_EQ(icrsFailure("targra='150.00000' targdec='inf'"), "Target a b targdec is an invalid number 'inf'");
    EXPECT_EQ(messageOf([] { return createAstrometricXML("Sky mask", parseElement("<mask Dec_d='1.5'/>")); }),
              "Sky mask Dec_d '1.5' does not have enough precision");
}
