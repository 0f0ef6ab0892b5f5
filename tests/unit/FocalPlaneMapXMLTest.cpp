#include "FocalPlaneMapXML.h"
#include "FocalPlaneCoordinates.h"
#include "PlateCoordinates.h"
#include "PosConfig.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "pointing.h"
#include "thrown.h"
#include "xml.h"

using namespace pos;

namespace {

class FocalPlaneMapXML : public ProcessWideState {};

const std::string kCoefficients = "c1='100' c3='10' c5='1'";
const std::string kAxisA = "x0='1' y0='2' r0='180'";
const std::string kAxisB = "x0='3' y0='4' r0='45'";
const std::string kAxisVeko = "x0='5' y0='6' r0='90'";

std::string opticsText(const std::string& root, const std::string& coefficients) {
    return "<focal_plane_map " + root + "><distortion_coefficients " + coefficients + "/></focal_plane_map>";
}

/** The plates stand in the reverse of their order. */
std::string platesText(const std::string& plateA, const std::string& plateB, const std::string& veko) {
    return "<focal_plane_map><optical_axis><VEKO " + veko + "/><PLATE_B " + plateB + "/><PLATE_A " + plateA +
           "/></optical_axis></focal_plane_map>";
}

/** A whole map, in front of what has no effect. */
std::string mapText() {
    return "<focal_plane_map focal_length='5000'><optical_axis><PLATE_A " + kAxisA + "/><PLATE_B " + kAxisB +
           "/><VEKO " + kAxisVeko + "/><VEKO/></optical_axis><distortion_coefficients " + kCoefficients +
           " c7='none'/><distortion_coefficients/><optical_axis/></focal_plane_map>";
}

std::vector<double> valuesOf(const Optics& optics) {
    return {optics.nominalFocalLength, optics.focalLength, optics.c1, optics.c3, optics.c5};
}

std::vector<double> valuesOf(const PlateGeometry& plates) {
    std::vector<double> values = {static_cast<double>(plates.plate), plates.rotation};
    for (const OpticalAxis& axis : plates.axes) {
        values.insert(values.end(), {axis.x0, axis.y0, axis.r0});
    }
    return values;
}

const std::vector<double> kMapOptics = {5000.0, 5000.0, 100.0, 10.0, 1.0};
/** With PLATE_A in use. */
const std::vector<double> kMapPlates = {0.0, rad(90), 1.0, 2.0, rad(180), 3.0, 4.0, rad(45), 5.0, 6.0, rad(90)};

/** The message with which the optics of a map are refused, read as a value and by the class. */
std::string opticsRefusal(const std::string& text) {
    const QDomDocument map = parseDocument(text);
    const std::string message = messageOf([&] { createOpticsXML(map); });
    EXPECT_EQ(messageOf([&] { FocalPlaneCoordinates::initialise(map); }), message);
    return message;
}

std::string platesRefusal(const std::string& text, PlateName plate = PLATE_A) {
    const QDomDocument map = parseDocument(text);
    const std::string message = messageOf([&] { createPlateGeometryXML(map, plate); });
    EXPECT_EQ(messageOf([&] { PlateCoordinates::initialise(map, plate); }), message);
    return message;
}

} // namespace

TEST_F(FocalPlaneMapXML, GivesTheOpticsWithTheNominalFocalLengthInUse) {
    for (const std::string& text : {mapText(), "<maps focal_length='1'><other/>" + mapText() + mapText() + "</maps>"}) {
        const QDomDocument map = parseDocument(text);
        EXPECT_EQ(valuesOf(createOpticsXML(map)), kMapOptics);
        FocalPlaneCoordinates::setOptics(kOptics);
        FocalPlaneCoordinates::setRotation(1.0);
        FocalPlaneCoordinates::initialise(map);
        EXPECT_EQ(valuesOf(FocalPlaneCoordinates::optics()), kMapOptics);
        EXPECT_EQ(FocalPlaneCoordinates::rotation(), 0.0);
    }
}

TEST_F(FocalPlaneMapXML, GivesAllAxesAndTheRotationOfVekoWhicheverPlateIsInUse) {
    for (const std::string& text :
         {mapText(), "<maps><optical_axis/>" + mapText() + "</maps>", platesText(kAxisA, kAxisB, kAxisVeko)}) {
        const QDomDocument map = parseDocument(text);
        EXPECT_EQ(valuesOf(createPlateGeometryXML(map, PLATE_A)), kMapPlates);
        PlateCoordinates::setGeometry(kPlates);
        PlateCoordinates::initialise(map, PLATE_A);
        EXPECT_EQ(valuesOf(PlateCoordinates::geometry()), kMapPlates);
    }
}

TEST_F(FocalPlaneMapXML, IsTheOneThatTheConfigurationNames) {
    const TemporaryFolder folder;
    const std::string map = folder.write("map.xml", mapText());
    const PosConfig config(folder.write("site.info", "telescope\n{\n focal_plane_map map.xml\n}\n").c_str(),
                           PosConfig::INFO);
    FocalPlaneCoordinates::initialise(config);
    EXPECT_EQ(valuesOf(FocalPlaneCoordinates::optics()), kMapOptics);
    EXPECT_EQ(treeText(PlateCoordinates::initialise(config, PLATE_A)), treeText(parseDocument(mapText())));
    EXPECT_EQ(valuesOf(PlateCoordinates::geometry()), kMapPlates);

    const PosConfig missing(folder.write("site.info", "telescope\n{\n focal_plane_map :/none.xml\n}\n").c_str(),
                            PosConfig::INFO);
    EXPECT_EQ(messageOf([&] { FocalPlaneCoordinates::initialise(missing); }), ":/none.xml could not be opened");
    EXPECT_EQ(messageOf([&] { PlateCoordinates::initialise(missing, VEKO); }), ":/none.xml could not be opened");
}

TEST_F(FocalPlaneMapXML, ABadFocalLengthIsRefused) {
    for (const std::string root : {"", "focal_length=''", "focal_length='11 724'", "focal_length='11724,24'"}) {
        EXPECT_EQ(opticsRefusal(opticsText(root, kCoefficients)), "Bad focal length in focal plane map") << root;
    }
    EXPECT_EQ(opticsRefusal("<maps><map focal_length='5000'/></maps>"), "Bad focal length in focal plane map");
}

TEST_F(FocalPlaneMapXML, ABadCoefficientIsRefused) {
    for (const std::string coefficients :
         {"", "c3='10' c5='1'", "c1='100' c5='1'", "c1='100' c3='10'", "c1='x' c3='10' c5='1'", "c1='100' c3='' c5='1'",
          "c1='100' c3='10' c5='1mm'"}) {
        EXPECT_EQ(opticsRefusal(opticsText("focal_length='5000'", coefficients)), "Bad coefficient in focal plane map")
            << coefficients;
    }
    EXPECT_EQ(opticsRefusal("<focal_plane_map focal_length='5000'/>"), "Bad coefficient in focal plane map");
}

TEST_F(FocalPlaneMapXML, ABadAxisOfAnyPlateIsRefusedWhicheverIsInUse) {
    const std::string axisMessage = "Bad optical axis in focal plane map";
    const std::string rotationMessage = "Bad plate rotation in focal plane map";
    const std::pair<std::string, std::string> rows[] = {
        {"", axisMessage},
        {"y0='1' r0='1'", axisMessage},
        {"x0='1' r0='1'", axisMessage},
        {"x0='1' y0='1'", rotationMessage},
        {"x0='' y0='1' r0='1'", axisMessage},
        {"x0='1' y0='one' r0='1'", axisMessage},
        {"x0='1' y0='1' r0='1deg'", rotationMessage},
        {"x0='bad' y0='1' r0='bad'", axisMessage},
        {"x0='1' y0='bad' r0='bad'", axisMessage},
    };
    for (const auto& [axis, message] : rows) {
        for (const PlateName plate : {PLATE_A, PLATE_B, VEKO}) {
            EXPECT_EQ(platesRefusal(platesText(axis, kAxisB, kAxisVeko), plate), message) << axis;
            EXPECT_EQ(platesRefusal(platesText(kAxisA, axis, kAxisVeko), plate), message) << axis;
            EXPECT_EQ(platesRefusal(platesText(kAxisA, kAxisB, axis), plate), message) << axis;
        }
    }
    for (const std::string text :
         {"<focal_plane_map/>", "<other/>", "<focal_plane_map><optical_axis/></focal_plane_map>"}) {
        EXPECT_EQ(platesRefusal(text), axisMessage) << text;
    }
}

TEST_F(FocalPlaneMapXML, OpticsReadBeforeAFailureStayStored) {
    FocalPlaneCoordinates::setRotation(1.0);
    // 0 is what a text that is no number converts to. Focal length in use and rotation come after the failure.
    opticsRefusal(opticsText("focal_length='5000'", "c1='100' c3='10' c5='bad'"));
    EXPECT_EQ(valuesOf(FocalPlaneCoordinates::optics()), (std::vector{5000.0, kOptics.focalLength, 100.0, 10.0, 0.0}));
    EXPECT_EQ(FocalPlaneCoordinates::rotation(), 1.0);

    opticsRefusal(opticsText("focal_length='bad'", "c1='7' c3='7' c5='7'"));
    EXPECT_EQ(valuesOf(FocalPlaneCoordinates::optics()), (std::vector{0.0, kOptics.focalLength, 100.0, 10.0, 0.0}));

    FocalPlaneCoordinates::setOptics(kOptics);
    opticsRefusal(opticsText("focal_length='6000'", "c1='7' c3='bad' c5='7'"));
    EXPECT_EQ(valuesOf(FocalPlaneCoordinates::optics()),
              (std::vector{6000.0, kOptics.focalLength, 7.0, 0.0, kOptics.c5}));
}

TEST_F(FocalPlaneMapXML, PlatesReadBeforeAFailureStayStored) {
    PlateCoordinates::initialise(parseDocument(mapText()), VEKO);
    platesRefusal(platesText("x0='7' y0='8' r0='30'", "x0='9' y0='bad' r0='9'", "x0='9' y0='9' r0='9'"), PLATE_B);
    // The bad number is stored as 0; the rotation in force is that of the plate read last.
    EXPECT_EQ(valuesOf(PlateCoordinates::geometry()),
              (std::vector{1.0, rad(30), 7.0, 8.0, rad(30), 9.0, 0.0, rad(45), 5.0, 6.0, rad(90)}));

    platesRefusal(platesText("x0='1' y0='2' r0='60'", "x0='7' y0='8' r0='bad'", ""), PLATE_A);
    EXPECT_EQ(valuesOf(PlateCoordinates::geometry()),
              (std::vector{0.0, rad(60), 1.0, 2.0, rad(60), 7.0, 8.0, 0.0, 5.0, 6.0, rad(90)}));
}
