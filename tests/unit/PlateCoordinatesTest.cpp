#include "PlateCoordinates.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "telescope.h"
#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

using namespace pos;

namespace {

class PlateCoordinatesTest : public ProcessWideState {};

/** The attributes of one plate in a map. */
using Axis = std::string;

const Axis kAxisA = "x0='1.5' y0='-2.5' r0='0'";
const Axis kAxisB = "x0='10' y0='20' r0='-45'";
const Axis kAxisVeko = "x0='-3' y0='4' r0='90'";

std::string mapText(const Axis& plateA, const Axis& plateB, const Axis& veko) {
    return "<focal_plane_map datamver='8.00' focal_length='5000'>"
           "<optical_axis><VEKO " +
           veko + "/><PLATE_B " + plateB + "/><PLATE_A " + plateA +
           "/></optical_axis><distortion_coefficients c1='100' c3='10' c5='1'/></focal_plane_map>";
}

/** Three plates that differ in everything; their order in the map is the reverse. */
QDomDocument threePlates() {
    return parseDocument(mapText(kAxisA, kAxisB, kAxisVeko));
}

void expectPlate(FocalPlaneCoordinates f, double x, double y) {
    const PlateCoordinates p(f);
    EXPECT_NEAR(p.x, x, kPlateToleranceMm);
    EXPECT_NEAR(p.y, y, kPlateToleranceMm);
}

} // namespace

TEST_F(PlateCoordinatesTest, ThePlatesAreNumberedInOrder) {
    EXPECT_EQ(PLATE_A, 0);
    EXPECT_EQ(PLATE_B, 1);
    EXPECT_EQ(VEKO, 2);
}

TEST_F(PlateCoordinatesTest, WithTheEmbeddedMapPlateAndFocalPlaneAreTheSame) {
    for (const PlateName plate : {PLATE_A, PLATE_B, VEKO}) {
        PlateCoordinates::initialise(telescopeConfig(), plate);
        const PlateCoordinates p(FocalPlaneCoordinates(123.25, -87.5));
        EXPECT_EQ(p.x, 123.25);
        EXPECT_EQ(p.y, -87.5);
        const FocalPlaneCoordinates f(PlateCoordinates(123.25, -87.5));
        EXPECT_EQ(f.x, 123.25);
        EXPECT_EQ(f.y, -87.5);
    }
}

TEST_F(PlateCoordinatesTest, APlateTurnedByAQuarterBringsXToY) {
    PlateCoordinates::initialise(threePlates(), VEKO);
    // (x, y) goes to (-y, x) and is then shifted by (-3, 4).
    expectPlate({1.0, 0.0}, -3.0, 5.0);
    expectPlate({0.0, 1.0}, -4.0, 4.0);
    // The optical axis meets the plate at (-3, 4).
    expectPlate({0.0, 0.0}, -3.0, 4.0);
    const FocalPlaneCoordinates axis(PlateCoordinates(-3.0, 4.0));
    EXPECT_EQ(axis.x, 0.0);
    EXPECT_EQ(axis.y, 0.0);
}

TEST_F(PlateCoordinatesTest, TheConversionsFollowTheirFormulas) {
    PlateCoordinates::initialise(threePlates(), PLATE_B);
    PlateCoordinates::setPlate(PLATE_B);
    const double c = std::cos(-45.0 / 180 * kTestPi);
    const double s = std::sin(-45.0 / 180 * kTestPi);
    const PlateCoordinates p(FocalPlaneCoordinates(31.7, -12.9));
    EXPECT_EQ(p.x, c * 31.7 - s * -12.9 + 10.0);
    EXPECT_EQ(p.y, c * -12.9 + s * 31.7 + 20.0);
    const FocalPlaneCoordinates f(PlateCoordinates(31.7, -12.9));
    const double dx = 31.7 - 10.0;
    const double dy = -12.9 - 20.0;
    EXPECT_EQ(f.x, c * dx + s * dy);
    EXPECT_EQ(f.y, c * dy - s * dx);
}

TEST_F(PlateCoordinatesTest, AfterInitialisingTheOffsetsAreThePlatesButTheRotationIsVekos) {
    PlateCoordinates::initialise(threePlates(), PLATE_A);
    // A quarter turn, VEKO's, and PLATE_A's shift.
    expectPlate({1.0, 0.0}, 1.5, -1.5);
    const FocalPlaneCoordinates f(PlateCoordinates(1.5, -1.5));
    EXPECT_NEAR(f.x, 1.0, kPlateToleranceMm);
    EXPECT_NEAR(f.y, 0.0, kPlateToleranceMm);

    PlateCoordinates::setPlate(PLATE_A);
    expectPlate({1.0, 0.0}, 2.5, -2.5);
}

TEST_F(PlateCoordinatesTest, SettingAPlateBringsItsOffsetsAndItsRotation) {
    PlateCoordinates::initialise(threePlates(), PLATE_A);
    PlateCoordinates::setPlate(PLATE_B);
    expectPlate({1.0, 0.0}, 10.0 + std::sqrt(0.5), 20.0 - std::sqrt(0.5));
    PlateCoordinates::setPlate(VEKO);
    expectPlate({1.0, 0.0}, -3.0, 5.0);
    PlateCoordinates::setPlate(PLATE_A);
    expectPlate({1.0, 0.0}, 2.5, -2.5);
}

TEST_F(PlateCoordinatesTest, ANewPlatePositionMovesTheOriginAtOnceAndTurnsWithTheNextSetPlate) {
    PlateCoordinates::initialise(telescopeConfig(), PLATE_B);
    PlateCoordinates::setPlatePosition(1.0, 2.0, 0.1);
    expectPlate({10.0, 0.0}, 11.0, 2.0);
    PlateCoordinates::setPlate(PLATE_B);
    // The rotation is in radians.
    expectPlate({10.0, 0.0}, 1.0 + 10.0 * std::cos(0.1), 2.0 + 10.0 * std::sin(0.1));
    // The other plates are as they were.
    PlateCoordinates::setPlate(PLATE_A);
    expectPlate({10.0, 0.0}, 10.0, 0.0);
    PlateCoordinates::setPlate(VEKO);
    expectPlate({10.0, 0.0}, 10.0, 0.0);
}

TEST_F(PlateCoordinatesTest, AnOpticalAxisIsStoredInMillimetresAndRadians) {
    PlateCoordinates::initialise(threePlates(), PLATE_A);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).x0, 10.0);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).y0, 20.0);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).r0, -45.0 / 180 * kTestPi);
    PlateCoordinates::setPlatePosition(1.0, 2.0, 0.1);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_A).r0, 0.1);
}

TEST_F(PlateCoordinatesTest, PlateToFocalPlaneRoundTrips) {
    PlateCoordinates::initialise(threePlates(), PLATE_B);
    for (const PlateName plate : {PLATE_A, PLATE_B, VEKO}) {
        for (double x = -300.0; x <= 300.0; x += 75.0) {
            const PlateCoordinates back{FocalPlaneCoordinates(PlateCoordinates(x, 0.3 * x - 7.0))};
            EXPECT_NEAR(back.x, x, kPlateToleranceMm);
            EXPECT_NEAR(back.y, 0.3 * x - 7.0, kPlateToleranceMm);
            const FocalPlaneCoordinates again{PlateCoordinates(FocalPlaneCoordinates(x, 0.3 * x - 7.0))};
            EXPECT_NEAR(again.x, x, kPlateToleranceMm);
            EXPECT_NEAR(again.y, 0.3 * x - 7.0, kPlateToleranceMm);
        }
        PlateCoordinates::setPlate(plate);
    }
}

TEST_F(PlateCoordinatesTest, TheConfiguredMapIsReadAndReturned) {
    const TemporaryFolder folder;
    TelescopeSettings telescope;
    telescope.focalPlaneMap = folder.write("map.xml", mapText(kAxisA, kAxisB, kAxisVeko));
    const QDomDocument map = PlateCoordinates::initialise(telescopeConfig(telescope), VEKO);
    EXPECT_EQ(treeText(map), treeText(threePlates()));
    expectPlate({1.0, 0.0}, -3.0, 5.0);
}

TEST_F(PlateCoordinatesTest, AMapBelowAnotherDocumentElementIsFound) {
    PlateCoordinates::initialise(
        parseDocument("<maps><optical_axis/>" + mapText(kAxisA, kAxisB, kAxisVeko) + "</maps>"), VEKO);
    expectPlate({1.0, 0.0}, -3.0, 5.0);
}

TEST_F(PlateCoordinatesTest, OnlyTheFirstElementOfEachNameCounts) {
    PlateCoordinates::initialise(parseDocument("<focal_plane_map><optical_axis><PLATE_A " + kAxisA +
                                               "/><PLATE_A/><PLATE_B " + kAxisB + "/><VEKO " + kAxisVeko +
                                               "/><VEKO/></optical_axis><optical_axis/></focal_plane_map>"),
                                 VEKO);
    expectPlate({1.0, 0.0}, -3.0, 5.0);
}

TEST_F(PlateCoordinatesTest, ABadAxisOfAnyPlateIsRefusedWhicheverIsInUse) {
    const std::string axisMessage = "Bad optical axis in focal plane map";
    const std::string rotationMessage = "Bad plate rotation in focal plane map";
    const std::array<std::pair<Axis, std::string>, 9> bad = {{
        {"", axisMessage},
        {"y0='1' r0='1'", axisMessage},
        {"x0='1' r0='1'", axisMessage},
        {"x0='1' y0='1'", rotationMessage},
        {"x0='' y0='1' r0='1'", axisMessage},
        {"x0='1' y0='one' r0='1'", axisMessage},
        {"x0='1' y0='1' r0='1deg'", rotationMessage},
        {"x0='bad' y0='1' r0='bad'", axisMessage},
        {"x0='1' y0='bad' r0='bad'", axisMessage},
    }};
    for (const auto& [axis, message] : bad) {
        for (const std::string& text :
             {mapText(axis, kAxisB, kAxisVeko), mapText(kAxisA, axis, kAxisVeko), mapText(kAxisA, kAxisB, axis)}) {
            const QDomDocument map = parseDocument(text);
            for (const PlateName plate : {PLATE_A, PLATE_B, VEKO}) {
                EXPECT_EQ(messageOf([&] { PlateCoordinates::initialise(map, plate); }), message) << text;
            }
        }
    }
}

TEST_F(PlateCoordinatesTest, AMissingPlateOrAMissingAxisFailsAtItsOffset) {
    const std::array<std::string, 4> texts = {"<focal_plane_map/>", "<other/>",
                                              "<focal_plane_map><optical_axis><PLATE_B " + kAxisB + "/><VEKO " +
                                                  kAxisVeko + "/></optical_axis></focal_plane_map>",
                                              "<focal_plane_map><optical_axis><PLATE_A " + kAxisA + "/><PLATE_B " +
                                                  kAxisB + "/></optical_axis></focal_plane_map>"};
    for (const std::string& text : texts) {
        const QDomDocument map = parseDocument(text);
        EXPECT_EQ(messageOf([&] { PlateCoordinates::initialise(map, PLATE_A); }), "Bad optical axis in focal plane map")
            << text;
    }
}

TEST_F(PlateCoordinatesTest, WhatWasReadBeforeAFailureStaysStored) {
    PlateCoordinates::initialise(threePlates(), VEKO);
    const QDomDocument map =
        parseDocument(mapText("x0='5' y0='6' r0='180'", "x0='7' y0='bad' r0='30'", "x0='9' y0='9' r0='9'"));
    messageOf([&] { PlateCoordinates::initialise(map, PLATE_B); });
    // PLATE_B is current: its new x0, the 0 that a bad y0 converts to, and the rotation of PLATE_A, the last one read.
    expectPlate({1.0, 0.0}, 6.0, 0.0);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_A).x0, 5.0);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).r0, -45.0 / 180 * kTestPi);
    EXPECT_EQ(PlateCoordinates::opticalAxis(VEKO).x0, -3.0);

    // A bad rotation is stored as 0, while the one of the plate before stays in force.
    const QDomDocument badRotation = parseDocument(mapText("x0='5' y0='6' r0='180'", "x0='7' y0='8' r0='bad'", ""));
    messageOf([&] { PlateCoordinates::initialise(badRotation, PLATE_B); });
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_B).r0, 0.0);
    expectPlate({1.0, 0.0}, 6.0, 8.0);
}
