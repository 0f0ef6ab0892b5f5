#include "CelestialPositionXML.h"

#include "angles.h"
#include "thrown.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

/** A position that needs no more attributes. */
const std::string kPlace = "targra='150.00000' targdec='-30.12345' ";

ICRS readIcrs(const std::string& attributes) {
    return createIcrsXML("Target m31", parseElement("<target " + attributes + "/>"));
}

Astrometric readAstrometric(const std::string& attributes) {
    return createAstrometricXML("Field centre", parseElement("<field " + attributes + "/>"));
}

/** How a number is taken as a field's right ascension: what is wrong, or that nothing is. */
std::string verdictOn(const std::string& text) {
    try {
        readAstrometric("RA_d='" + text + "'");
        return "accepted";
    } catch (const std::runtime_error& error) {
        const std::string message = error.what();
        return message == "Field centre RA_d '" + text + "' does not have enough precision" ? "too coarse" : message;
    }
}

/** What a position becomes in an element with these attributes. */
std::string savedIcrs(const ICRS& position, const std::string& attributes = "") {
    const QDomElement element = parseElement("<target " + attributes + "/>");
    saveIcrsXML(position, element);
    return treeText(element);
}

std::string elementOf(const std::string& attributes) {
    return treeText(parseElement("<target " + attributes + "/>"));
}

/** A position that is written as kOrigin and no more. */
ICRS origin() {
    return {0.0, 0.0, 2015.5, 0.0, 0.0, 0.0, 0.0};
}
const std::string kOrigin = "targra='0.000000' targdec='0.000000' targepoch='2015.50' ";

} // namespace

TEST(CelestialPositionXML, FiveDecimalsOfADegreeAreNeeded) {
    for (const std::string text : {"10.12345", "0.00000", "-0.00001", "359.999999", "+1.00000", "-89.99999"}) {
        EXPECT_EQ(verdictOn(text), "accepted") << text;
    }
    // With three nines behind it the fourth decimal moves the value by 9.99e-5 degrees, above 2.78e-5.
    for (const std::string text : {"10.1234", "10", "0", "150.", "-45.0000"}) {
        EXPECT_EQ(verdictOn(text), "too coarse") << text;
    }
}

TEST(CelestialPositionXML, TheNinesOfTheProbeStandBehindTheMantissaAndWithinTheBlanks) {
    for (const std::string text : {"1.500000e1", "1.500000E1", "1.50000e+0", "1050.000e-2", "1500000.e-5", "  10.12345",
                                   "10.12345  ", "  10.12345 "}) {
        EXPECT_EQ(verdictOn(text), "accepted") << text;
    }
    // 1.5e1 is probed as 1.5999e1, and 1500000e-5, which gets longer, as 1500000999e-5.
    for (const std::string text : {"1.5e1", "1.5E1", "1.50000e1", "1050.00e-2", "1500000e-5", " 10.5 "}) {
        EXPECT_EQ(verdictOn(text), "too coarse") << text;
    }
    for (const std::string text : {"nan", "inf", "-inf"}) {
        EXPECT_EQ(verdictOn(text), "Field centre RA_d is an invalid number '" + text + "'");
    }
}

TEST(CelestialPositionXML, CatalogueAnglesAreDegreesTurnedIntoRadians) {
    const ICRS position = readIcrs(kPlace);
    EXPECT_EQ(position.ra, 150.0 / 180 * 3.141592653589793);
    EXPECT_EQ(position.dec, -30.12345 / 180 * 3.141592653589793);
}

TEST(CelestialPositionXML, AbsentOrEmptyThePlaceIsOfEpoch2015AndAHalfWithoutMotion) {
    for (const std::string attributes : {"", "targepoch='' targpmra='' targpmdec='' targparal='' targrv=''"}) {
        const ICRS position = readIcrs(kPlace + attributes);
        EXPECT_EQ(position.epoch, 2015.5);
        EXPECT_EQ(position.pmRa, 0.0);
        EXPECT_EQ(position.pmDec, 0.0);
        EXPECT_EQ(position.parallax, 0.0);
        EXPECT_EQ(position.rv, 0.0);
    }
}

TEST(CelestialPositionXML, OptionalAttributesAreTakenAsTheyStandWithoutAPrecisionCheck) {
    const ICRS position =
        readIcrs(kPlace + "targepoch='2000' targpmra='-3.5' targpmdec='1e2' targparal='5' targrv='-300'");
    EXPECT_EQ(position.epoch, 2000.0);
    EXPECT_EQ(position.pmRa, -3.5);
    EXPECT_EQ(position.pmDec, 100.0);
    EXPECT_EQ(position.parallax, 5.0); // unchanged, although the writer multiplies
    EXPECT_EQ(position.rv, -300.0);
}

TEST(CelestialPositionXML, PlainAnglesAreZeroWhereAbsentOrMarkedAsMissing) {
    const Astrometric place = readAstrometric("RA_d='150.00000' Dec_d='-30.12345'");
    EXPECT_EQ(place.ra, 150.0 / 180 * 3.141592653589793);
    EXPECT_EQ(place.dec, -30.12345 / 180 * 3.141592653589793);
    for (const std::string attributes : {"", "RA_d='%%%' Dec_d='%%%'"}) {
        EXPECT_EQ(readAstrometric(attributes).ra, 0.0);
        EXPECT_EQ(readAstrometric(attributes).dec, 0.0);
    }
}

TEST(CelestialPositionXML, TheFirstBadAttributeOfAPositionIsToldInTheStatedOrder) {
    struct Row {
        std::string attributes;
        const char* message;
    };
    for (const Row& row : std::vector<Row>{
             {"targdec='-20.25000'", " has no targra"},
             {"targra='10.50000'", " has no targdec"},
             {"targra='' targdec='y'", " has an invalid targra ''"},
             {"targra='%%%' targdec='y'", " has an invalid targra '%%%'"},
             {"targra='10:30:00.00000' targdec='y'", " has an invalid targra '10:30:00.00000'"},
             {"targra='nan' targdec='y'", " targra is an invalid number 'nan'"},
             {"targra='10' targdec='y'", " targra '10' does not have enough precision"},
             {"targra='10.50000' targdec='y' targepoch='a'", " has an invalid targdec 'y'"},
             {"targra='10.50000' targdec='inf'", " targdec is an invalid number 'inf'"},
             {"targra='10.50000' targdec='10.0'", " targdec '10.0' does not have enough precision"},
             {kPlace + "targrv='e' targparal='d' targpmdec='c' targpmra='b' targepoch='a'",
              " position has an invalid epoch 'a'"},
             {kPlace + "targrv='e' targparal='d' targpmdec='c' targpmra='b'",
              " position has an invalid proper motion 'b'"},
             {kPlace + "targrv='e' targparal='d' targpmdec='c'", " position has an invalid proper motion 'c'"},
             {kPlace + "targrv='e' targparal=' '", " position has an invalid parallax ' '"},
             {kPlace + "targrv='1,5'", " position has an invalid radial velocity '1,5'"}}) {
        EXPECT_EQ(messageOf([&] { readIcrs(row.attributes); }), std::string("Target m31") + row.message);
    }
    for (const Row& row : std::vector<Row>{{"Dec_d='y' RA_d='x'", " has an invalid RA 'x'"},
                                           {"RA_d='%%'", " has an invalid RA '%%'"},
                                           {"Dec_d='%%%%'", " has an invalid Dec '%%%%'"},
                                           {"Dec_d='1.5'", " Dec_d '1.5' does not have enough precision"}}) {
        EXPECT_EQ(messageOf([&] { readAstrometric(row.attributes); }), std::string("Field centre") + row.message);
    }
}

TEST(CelestialPositionXML, AnglesAreWrittenWithSixDecimalsAndTheEpochWithTwoInPlaceOfTheOldOnes) {
    ICRS position = origin();
    position.ra = kPi / 2;
    position.dec = -kPi / 4;
    position.epoch = 2015.125; // an exact tie, away from zero
    const std::string expected = "targra='90.000000' targdec='-45.000000' targepoch='2015.13' ";
    EXPECT_EQ(savedIcrs(position), elementOf(expected));
    EXPECT_EQ(savedIcrs(position, "targra='1' targdec='2' targepoch='3' targname='n'"),
              elementOf(expected + "targname='n'"));

    const QDomElement field = parseElement("<target RA_d='%%%' Dec_d='1' name='n'/>");
    saveAstrometricXML({kPi / 6, -kPi / 3}, field);
    EXPECT_EQ(treeText(field), elementOf("RA_d='30.000000' Dec_d='-60.000000' name='n'"));
}

TEST(CelestialPositionXML, MotionThatIsNotZeroIsWrittenWithoutDecimals) {
    const std::string before = "targpmra='7' targpmdec='8' targparal='9' targrv='10' ";
    EXPECT_EQ(savedIcrs(origin(), before), elementOf(kOrigin + before));
    struct Row {
        double ICRS::*member;
        double value;
        const char* written;
    };
    // -3.5, 0.0015 and -300.5 are ties, which go away from zero. The parallax is written in thousandths of what it is.
    for (const auto& [member, value, written] : std::vector<Row>{{&ICRS::pmRa, -3.5, "targpmra='-4' targpmdec='0'"},
                                                                 {&ICRS::pmDec, 12.25, "targpmra='0' targpmdec='12'"},
                                                                 {&ICRS::parallax, 5.0, "targparal='5000'"},
                                                                 {&ICRS::parallax, 0.0015, "targparal='2'"},
                                                                 {&ICRS::rv, -300.5, "targrv='-301'"}}) {
        ICRS position = origin();
        position.*member = value;
        EXPECT_EQ(savedIcrs(position), elementOf(kOrigin + written));
    }
}
