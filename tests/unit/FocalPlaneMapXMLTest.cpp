#include "FocalPlaneMapXML.h"
#include "telescope.h"
#include "thrown.h"
#include "xml.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

/** A map with this rotation of VEKO, degrees. */
QDomDocument mapWith(const std::string& vekoRotation) {
    return parseDocument("<focal_plane_map focal_length='5000'><optical_axis><PLATE_A x0='1' y0='2' r0='180'/>"
                         "<PLATE_B x0='3' y0='4' r0='45'/><VEKO x0='5' y0='6' r0='" +
                         vekoRotation +
                         "'/></optical_axis><distortion_coefficients c1='100' c3='10' c5='1'/></focal_plane_map>");
}

} // namespace

TEST(FocalPlaneMapXML, GivesTheOpticsWithTheNominalFocalLengthInUse) {
    const Optics optics = createOpticsXML(mapWith("90"));
    EXPECT_EQ(optics.nominalFocalLength, 5000.0);
    EXPECT_EQ(optics.focalLength, 5000.0);
    EXPECT_EQ(optics.c1, 100.0);
    EXPECT_EQ(optics.c3, 10.0);
    EXPECT_EQ(optics.c5, 1.0);
}

TEST(FocalPlaneMapXML, GivesAllAxesAndTheRotationOfVekoWhicheverPlateIsInUse) {
    const PlateGeometry plates = createPlateGeometryXML(mapWith("90"), PLATE_B);
    EXPECT_EQ(plates.plate, PLATE_B);
    EXPECT_EQ(plates.rotation, kTestPi / 2);
    EXPECT_EQ(plates.axes.at(PLATE_A).r0, kTestPi);
    EXPECT_EQ(plates.axes.at(PLATE_B).x0, 3.0);
    EXPECT_EQ(plates.axes.at(VEKO).y0, 6.0);
}

TEST(FocalPlaneMapXML, RefusesAMapAsTheClassesDo) {
    EXPECT_EQ(messageOf([] { createOpticsXML(parseDocument("<focal_plane_map/>")); }),
              "Bad focal length in focal plane map");
    EXPECT_EQ(messageOf([] { createPlateGeometryXML(mapWith("90 degrees"), VEKO); }),
              "Bad plate rotation in focal plane map");
}
