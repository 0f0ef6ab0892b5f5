#include "CelestialPositionXML.h"

#include "angles.h"
#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

ICRS readIcrs(const std::string& attributes) {
    return createIcrsXML("Target m31", parseElement("<target " + attributes + "/>"));
}

Astrometric readAstrometric(const std::string& attributes) {
    return createAstrometricXML("Field centre", parseElement("<field " + attributes + "/>"));
}

std::string icrsFailure(const std::string& attributes) {
    return messageOf([&] { return readIcrs(attributes); });
}

std::string astrometricFailure(const std::string& attributes) {
    return messageOf([&] { return readAstrometric(attributes); });
}

/** A position that needs no more attributes. */
const std::string kPlace = "targra='10.50000' targdec='-20.25000' ";

ICRS icrs(double ra, double dec) {
    return {ra, dec, 2015.5, 0.0, 0.0, 0.0, 0.0};
}

QDomElement savedIcrs(const ICRS& position, const std::string& attributes = "") {
    const QDomElement element = parseElement("<target " + attributes + "/>");
    saveIcrsXML(position, element);
    return element;
}

std::string text(const QDomElement& element, const char* attribute) {
    return element.attribute(attribute, "(absent)").toStdString();
}

} // namespace

TEST(CelestialPositionXML, CatalogueAnglesAreDegreesTurnedIntoRadians) {
    const ICRS position = readIcrs("targra='150.00000' targdec='-30.12345'");
    EXPECT_EQ(position.ra, 150.0 / 180 * 3.141592653589793);
    EXPECT_EQ(position.dec, -30.12345 / 180 * 3.141592653589793);
}

TEST(CelestialPositionXML, PlaceAloneReadsAsEpoch2015AndAHalfWithoutMotion) {
    const ICRS position = readIcrs(kPlace);
    EXPECT_EQ(position.epoch, 2015.5);
    EXPECT_EQ(position.pmRa, 0.0);
    EXPECT_EQ(position.pmDec, 0.0);
    EXPECT_EQ(position.parallax, 0.0);
    EXPECT_EQ(position.rv, 0.0);
}

TEST(CelestialPositionXML, EmptyOptionalAttributesTakeTheirDefaults) {
    const ICRS position = readIcrs(kPlace + "targepoch='' targpmra='' targpmdec='' targparal='' targrv=''");
    EXPECT_EQ(position.epoch, 2015.5);
    EXPECT_EQ(position.pmRa, 0.0);
    EXPECT_EQ(position.pmDec, 0.0);
    EXPECT_EQ(position.parallax, 0.0);
    EXPECT_EQ(position.rv, 0.0);
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

TEST(CelestialPositionXML, RequiredAttributesMustBeThere) {
    EXPECT_EQ(icrsFailure(""), "Target m31 has no targra");
    EXPECT_EQ(icrsFailure("targdec='-20.25000'"), "Target m31 has no targra");
    EXPECT_EQ(icrsFailure("targra='10.50000'"), "Target m31 has no targdec");
}

TEST(CelestialPositionXML, RequiredAttributesMustBeNumbers) {
    for (const std::string bad : {"", "abc", "10:30:00.00000", "10,50000", "10.50000deg", "%%%"}) {
        EXPECT_EQ(icrsFailure("targra='" + bad + "' targdec='-20.25000'"),
                  "Target m31 has an invalid targra '" + bad + "'");
        EXPECT_EQ(icrsFailure("targra='10.50000' targdec='" + bad + "'"),
                  "Target m31 has an invalid targdec '" + bad + "'");
    }
}

TEST(CelestialPositionXML, OptionalAttributesMustBeNumbers) {
    struct Row {
        const char* attribute;
        const char* what;
    };
    for (const Row& row :
         {Row{"targepoch", "epoch"}, Row{"targpmra", "proper motion"}, Row{"targpmdec", "proper motion"},
          Row{"targparal", "parallax"}, Row{"targrv", "radial velocity"}}) {
        for (const std::string bad : {"abc", "1:2:3", "1,5", " "}) {
            EXPECT_EQ(icrsFailure(kPlace + row.attribute + "='" + bad + "'"),
                      std::string("Target m31 position has an invalid ") + row.what + " '" + bad + "'");
        }
    }
}

TEST(CelestialPositionXML, FirstFailureInTheStatedOrderIsReported) {
    EXPECT_EQ(icrsFailure("targra='x' targdec='y' targepoch='z'"), "Target m31 has an invalid targra 'x'");
    EXPECT_EQ(icrsFailure("targra='10' targdec='y'"), "Target m31 targra '10' does not have enough precision");
    EXPECT_EQ(icrsFailure(kPlace + "targrv='e' targparal='d' targpmdec='c' targpmra='b' targepoch='a'"),
              "Target m31 position has an invalid epoch 'a'");
    EXPECT_EQ(icrsFailure(kPlace + "targrv='e' targparal='d' targpmdec='c' targpmra='b'"),
              "Target m31 position has an invalid proper motion 'b'");
    EXPECT_EQ(icrsFailure(kPlace + "targrv='e' targparal='d' targpmdec='c'"),
              "Target m31 position has an invalid proper motion 'c'");
    EXPECT_EQ(icrsFailure(kPlace + "targrv='e' targparal='d'"), "Target m31 position has an invalid parallax 'd'");
}

TEST(CelestialPositionXML, PlainAnglesAreDegreesTurnedIntoRadians) {
    const Astrometric place = readAstrometric("RA_d='150.00000' Dec_d='-30.12345'");
    EXPECT_EQ(place.ra, 150.0 / 180 * 3.141592653589793);
    EXPECT_EQ(place.dec, -30.12345 / 180 * 3.141592653589793);
}

TEST(CelestialPositionXML, PlainAnglesAreZeroWhereAbsentOrMarkedAsMissing) {
    for (const std::string attributes : {"", "RA_d='%%%' Dec_d='%%%'"}) {
        const Astrometric place = readAstrometric(attributes);
        EXPECT_EQ(place.ra, 0.0);
        EXPECT_EQ(place.dec, 0.0);
    }
    EXPECT_EQ(readAstrometric("RA_d='%%%' Dec_d='45.00000'").dec, 45.0 / 180 * 3.141592653589793);
    EXPECT_EQ(readAstrometric("RA_d='45.00000'").ra, 45.0 / 180 * 3.141592653589793);
}

TEST(CelestialPositionXML, PlainAnglesMustBeNumbers) {
    for (const std::string bad : {"abc", "10:30:00.00000", "%%", "%%%%"}) {
        EXPECT_EQ(astrometricFailure("RA_d='" + bad + "'"), "Field centre has an invalid RA '" + bad + "'");
        EXPECT_EQ(astrometricFailure("Dec_d='" + bad + "'"), "Field centre has an invalid Dec '" + bad + "'");
    }
    EXPECT_EQ(astrometricFailure("Dec_d='y' RA_d='x'"), "Field centre has an invalid RA 'x'");
}

TEST(CelestialPositionXML, SavedAnglesHaveSixDecimalsAndTheEpochTwo) {
    ICRS position = icrs(kPi / 2, -kPi / 4);
    position.epoch = 2015.125; // an exact tie, away from zero
    const QDomElement element = savedIcrs(position);
    EXPECT_EQ(text(element, "targra"), "90.000000");
    EXPECT_EQ(text(element, "targdec"), "-45.000000");
    EXPECT_EQ(text(element, "targepoch"), "2015.13");
    EXPECT_EQ(element.attributes().count(), 3);
}

TEST(CelestialPositionXML, SavedPlaceReplacesTheOldOne) {
    const QDomElement element = savedIcrs(icrs(kPi, 0.0), "targra='1' targdec='2' targepoch='3' targname='n'");
    EXPECT_EQ(text(element, "targra"), "180.000000");
    EXPECT_EQ(text(element, "targdec"), "0.000000");
    EXPECT_EQ(text(element, "targepoch"), "2015.50");
    EXPECT_EQ(text(element, "targname"), "n");
}

TEST(CelestialPositionXML, ZeroMotionLeavesTheAttributesOfTheElementUntouched) {
    const QDomElement element =
        savedIcrs(icrs(1.0, 1.0), "targpmra='7' targpmdec='8' targparal='9' targrv='10' targra='1'");
    EXPECT_EQ(text(element, "targpmra"), "7");
    EXPECT_EQ(text(element, "targpmdec"), "8");
    EXPECT_EQ(text(element, "targparal"), "9");
    EXPECT_EQ(text(element, "targrv"), "10");
}

TEST(CelestialPositionXML, EitherProperMotionWritesBothWithoutDecimals) {
    ICRS position = icrs(1.0, 1.0);
    position.pmRa = -3.5;
    QDomElement element = savedIcrs(position, "targpmra='7' targpmdec='8'");
    EXPECT_EQ(text(element, "targpmra"), "-4"); // an exact tie, away from zero
    EXPECT_EQ(text(element, "targpmdec"), "0");
    position = icrs(1.0, 1.0);
    position.pmDec = 12.25;
    element = savedIcrs(position);
    EXPECT_EQ(text(element, "targpmra"), "0");
    EXPECT_EQ(text(element, "targpmdec"), "12");
    EXPECT_EQ(text(element, "targparal"), "(absent)");
    EXPECT_EQ(text(element, "targrv"), "(absent)");
}

TEST(CelestialPositionXML, ParallaxIsWrittenAThousandTimesWhatWasRead) {
    const QDomElement element = savedIcrs(readIcrs(kPlace + "targparal='5'"));
    EXPECT_EQ(text(element, "targparal"), "5000");
    ICRS position = icrs(1.0, 1.0);
    position.parallax = 0.0015;
    EXPECT_EQ(text(savedIcrs(position), "targparal"), "2"); // 1.5 mas
    EXPECT_EQ(text(savedIcrs(position), "targpmra"), "(absent)");
}

TEST(CelestialPositionXML, RadialVelocityIsWrittenWithoutDecimals) {
    ICRS position = icrs(1.0, 1.0);
    position.rv = -300.5;
    const QDomElement element = savedIcrs(position);
    EXPECT_EQ(text(element, "targrv"), "-301");
    EXPECT_EQ(text(element, "targparal"), "(absent)");
}

TEST(CelestialPositionXML, PlainPlaceIsWrittenWithSixDecimals) {
    const QDomElement element = parseElement("<field RA_d='%%%' Dec_d='1' name='n'/>");
    saveAstrometricXML({kPi / 6, -kPi / 3}, element);
    EXPECT_EQ(text(element, "RA_d"), "30.000000");
    EXPECT_EQ(text(element, "Dec_d"), "-60.000000");
    EXPECT_EQ(text(element, "name"), "n");
    EXPECT_EQ(element.attributes().count(), 3);
}

TEST(CelestialPositionXML, SavedPlacesAreReadBackToTheWrittenDecimal) {
    const double halfUnit = 0.5e-6 / 180 * 3.141592653589793;
    const ICRS position = createIcrsXML("Target", savedIcrs(icrs(6.283, -1.5707)));
    EXPECT_NEAR(position.ra, 6.283, halfUnit + kAngleTolerance);
    EXPECT_NEAR(position.dec, -1.5707, halfUnit + kAngleTolerance);
}
