#include "FocalPlaneXML.h"

#include "FocalPlane.h"
#include "PosConfig.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "angles.h"
#include "xml.h"

#include <gmock/gmock.h>

using namespace pos;
using testing::Each;
using testing::ElementsAre;

namespace {

/** A pointing at a site of its own, with the embedded optical model. Longitude and latitude in degrees, height in m. */
FocalPlane focalPlaneAt(const std::string& longitude, const std::string& latitude, const std::string& height) {
    const TemporaryFolder folder;
    const std::string file = folder.write("site.info", "telescope {\n east_longitude " + longitude + "\n latitude " +
                                                           latitude + "\n height " + height +
                                                           "\n horizon_limit 5.0\n rotator_offset 0.0\n"
                                                           " focal_plane_map \":/focal_plane_map.xml\"\n}\n");
    const PosConfig config(file.c_str(), PosConfig::INFO);
    return {config, VEKO, Astrometric{1.0, 0.5}, 0.0, Conditions{57388.5, 283.0, 660.0, 0.2}};
}

std::string text(const QDomElement& element, const char* attribute) {
    return element.attribute(attribute, "(absent)").toStdString();
}

/** One attribute of all child elements of a name, in document order. */
std::vector<std::string> texts(const QDomElement& parent, const char* name, const char* attribute) {
    std::vector<std::string> found;
    for (QDomElement child = parent.firstChildElement(name); !child.isNull(); child = child.nextSiblingElement(name)) {
        found.push_back(text(child, attribute));
    }
    return found;
}

std::vector<std::string> childNames(const QDomElement& parent) {
    std::vector<std::string> names;
    for (QDomNode child = parent.firstChild(); !child.isNull(); child = child.nextSibling()) {
        names.push_back(child.nodeName().toStdString());
    }
    return names;
}

/** Gives each plate an optical axis of its own: 1.0625 is an exact tie at the third decimal. */
void setOpticalAxes() {
    PlateCoordinates::setPlate(PLATE_A);
    PlateCoordinates::setPlatePosition(1.0625, -1.0625, 0.5);
    PlateCoordinates::setPlate(PLATE_B);
    PlateCoordinates::setPlatePosition(20.25, 30.125, -0.125);
    PlateCoordinates::setPlate(VEKO);
    PlateCoordinates::setPlatePosition(0.0004, 1000.0, 3.0);
}

} // namespace

class FocalPlaneXML : public ProcessWideState {
protected:
    QDomDocument document_ = parseDocument("<configure/>");
    QDomElement parent_ = document_.documentElement();

    QDomElement map() const {
        return parent_.firstChildElement("focal_plane_map");
    }
    QDomElement opticalAxis() const {
        return map().firstChildElement("optical_axis");
    }
};

TEST_F(FocalPlaneXML, SiteIsWrittenInDegreesAndMetresWithSixFiveAndOneDecimals) {
    saveFocalPlaneXML(focalPlaneAt("90.0", "-31.2500049", "100"), document_, parent_);
    const QDomElement telescope = parent_.firstChildElement("telescope");
    EXPECT_EQ(text(telescope, "east_longitude"), "90.000000");
    EXPECT_EQ(text(telescope, "latitude"), "-31.25000");
    EXPECT_EQ(text(telescope, "height"), "100.0");
    EXPECT_EQ(telescope.attributes().count(), 3);
}

TEST_F(FocalPlaneXML, SiteKeepsItsSignAndIsNotWidened) {
    saveFocalPlaneXML(focalPlaneAt("-0.1234565", "0.000004", "-12.25"), document_, parent_);
    const QDomElement telescope = parent_.firstChildElement("telescope");
    EXPECT_THAT(text(telescope, "east_longitude"), testing::AnyOf("-0.123456", "-0.123457"));
    EXPECT_EQ(text(telescope, "latitude"), "0.00000");
    EXPECT_EQ(text(telescope, "height"), "-12.3"); // an exact tie, away from zero
}

TEST_F(FocalPlaneXML, FocalLengthInUseAndNominalOneStandApartWithOneDecimal) {
    const FocalPlane focalPlane = focalPlaneAt("0.0", "0.0", "0.0");
    FocalPlaneCoordinates::setFocalLength(11730.0625);
    saveFocalPlaneXML(focalPlane, document_, parent_);
    EXPECT_EQ(text(map(), "focal_length"), "11730.1");
    EXPECT_EQ(text(map(), "nominal_focal_length"), "11724.2"); // 11724.24 in the embedded map
    EXPECT_EQ(map().attributes().count(), 2);
}

TEST_F(FocalPlaneXML, PlatesStandUnderTheOpticalAxisWithTheirStoredOffsetsAndRadians) {
    const FocalPlane focalPlane = focalPlaneAt("0.0", "0.0", "0.0");
    setOpticalAxes();
    saveFocalPlaneXML(focalPlane, document_, parent_);

    EXPECT_THAT(childNames(opticalAxis()), ElementsAre("PLATE_A", "PLATE_B", "VEKO"));
    EXPECT_EQ(opticalAxis().attributes().count(), 0);
    const QDomElement plateA = opticalAxis().firstChildElement("PLATE_A");
    EXPECT_EQ(text(plateA, "x0"), "1.063");
    EXPECT_EQ(text(plateA, "y0"), "-1.063");
    EXPECT_EQ(text(plateA, "r0"), "0.500");
    const QDomElement plateB = opticalAxis().firstChildElement("PLATE_B");
    EXPECT_EQ(text(plateB, "x0"), "20.250");
    EXPECT_EQ(text(plateB, "y0"), "30.125");
    EXPECT_EQ(text(plateB, "r0"), "-0.125");
    const QDomElement veko = opticalAxis().firstChildElement("VEKO");
    EXPECT_EQ(text(veko, "x0"), "0.000");
    EXPECT_EQ(text(veko, "y0"), "1000.000");
    EXPECT_EQ(text(veko, "r0"), "3.000");
}

TEST_F(FocalPlaneXML, DistortionCoefficientsReadBackExactly) {
    const FocalPlane focalPlane = focalPlaneAt("0.0", "0.0", "0.0");
    FocalPlaneCoordinates::setDistortion(200.0 + 1.0 / 3, -2.0 / 3, 1e-9 / 7);
    saveFocalPlaneXML(focalPlane, document_, parent_);
    const QDomElement coefficients = map().firstChildElement("distortion_coefficients");
    EXPECT_EQ(coefficients.attribute("c1").toDouble(), 200.0 + 1.0 / 3);
    EXPECT_EQ(coefficients.attribute("c3").toDouble(), -2.0 / 3);
    EXPECT_EQ(coefficients.attribute("c5").toDouble(), 1e-9 / 7);
    EXPECT_EQ(coefficients.attributes().count(), 4);
}

TEST_F(FocalPlaneXML, SeventhOrderCoefficientIsAlwaysWrittenAsZero) {
    document_ = parseDocument("<configure><focal_plane_map><distortion_coefficients c7='0.5' note='kept'/>"
                              "</focal_plane_map></configure>");
    parent_ = document_.documentElement();
    const FocalPlane focalPlane = focalPlaneAt("0.0", "0.0", "0.0");
    FocalPlaneCoordinates::setDistortion(1.0, 2.0, 3.0);
    saveFocalPlaneXML(focalPlane, document_, parent_);
    const QDomElement coefficients = map().firstChildElement("distortion_coefficients");
    EXPECT_EQ(text(coefficients, "c7"), "0");
    EXPECT_EQ(text(coefficients, "note"), "kept");
}

TEST_F(FocalPlaneXML, ElementsAreAppendedInTheOrderInWhichTheyAreWritten) {
    parent_.appendChild(document_.createElement("conditions"));
    saveFocalPlaneXML(focalPlaneAt("0.0", "0.0", "0.0"), document_, parent_);
    EXPECT_THAT(childNames(parent_), ElementsAre("conditions", "telescope", "focal_plane_map"));
    EXPECT_THAT(childNames(map()), ElementsAre("optical_axis", "distortion_coefficients"));
}

TEST_F(FocalPlaneXML, SecondCallRewritesAllButThePlatesWhichItAddsAgain) {
    const FocalPlane first = focalPlaneAt("10.0", "20.0", "30.0");
    setOpticalAxes();
    saveFocalPlaneXML(first, document_, parent_);
    const FocalPlane second = focalPlaneAt("11.0", "21.0", "31.0");
    FocalPlaneCoordinates::setFocalLength(12000.0);
    FocalPlaneCoordinates::setDistortion(7.0, 0.0, 0.0);
    PlateCoordinates::setPlate(PLATE_A);
    PlateCoordinates::setPlatePosition(5.0, 6.0, 0.0);
    saveFocalPlaneXML(second, document_, parent_);

    EXPECT_THAT(childNames(parent_), ElementsAre("telescope", "focal_plane_map"));
    EXPECT_THAT(childNames(map()), ElementsAre("optical_axis", "distortion_coefficients"));
    EXPECT_THAT(childNames(opticalAxis()), ElementsAre("PLATE_A", "PLATE_B", "VEKO", "PLATE_A", "PLATE_B", "VEKO"));
    EXPECT_EQ(text(parent_.firstChildElement("telescope"), "east_longitude"), "11.000000");
    EXPECT_EQ(text(parent_.firstChildElement("telescope"), "latitude"), "21.00000");
    EXPECT_EQ(text(parent_.firstChildElement("telescope"), "height"), "31.0");
    EXPECT_EQ(text(map(), "focal_length"), "12000.0");
    EXPECT_EQ(text(map().firstChildElement("distortion_coefficients"), "c1"), "7");
    EXPECT_THAT(texts(opticalAxis(), "PLATE_A", "x0"), ElementsAre("1.063", "5.000"));
    EXPECT_THAT(texts(opticalAxis(), "VEKO", "y0"), ElementsAre("1000.000", "0.000"));
}

TEST_F(FocalPlaneXML, PlateDirectlyUnderTheMapIsUpdatedInPlace) {
    document_ =
        parseDocument("<configure><focal_plane_map><PLATE_A x0='9' colour='red'/></focal_plane_map></configure>");
    parent_ = document_.documentElement();
    const FocalPlane focalPlane = focalPlaneAt("0.0", "0.0", "0.0");
    setOpticalAxes();
    saveFocalPlaneXML(focalPlane, document_, parent_);
    EXPECT_THAT(childNames(map()), ElementsAre("PLATE_A", "optical_axis", "distortion_coefficients"));
    EXPECT_THAT(childNames(opticalAxis()), ElementsAre("PLATE_B", "VEKO"));
    const QDomElement plateA = map().firstChildElement("PLATE_A");
    EXPECT_EQ(text(plateA, "x0"), "1.063");
    EXPECT_EQ(text(plateA, "y0"), "-1.063");
    EXPECT_EQ(text(plateA, "r0"), "0.500");
    EXPECT_EQ(text(plateA, "colour"), "red");
}

TEST_F(FocalPlaneXML, ExistingTelescopeKeepsItsOtherAttributes) {
    document_ = parseDocument("<configure><telescope name='north' height='1'><dome/></telescope></configure>");
    parent_ = document_.documentElement();
    saveFocalPlaneXML(focalPlaneAt("1.0", "2.0", "3.0"), document_, parent_);
    EXPECT_THAT(childNames(parent_), ElementsAre("telescope", "focal_plane_map"));
    const QDomElement telescope = parent_.firstChildElement("telescope");
    EXPECT_EQ(text(telescope, "name"), "north");
    EXPECT_EQ(text(telescope, "height"), "3.0");
    EXPECT_THAT(childNames(telescope), ElementsAre("dome"));
}
