#include "FocalPlaneXML.h"

#include "ProcessWideState.h"
#include "pointing.h"
#include "xml.h"

using namespace pos;

namespace {

/** 1.0625 is an exact tie at the third decimal. */
const PlateGeometry kPlatesOfTheirOwn = {
    {{{1.0625, -1.0625, 0.5}, {20.25, 30.125, -0.125}, {0.0004, 1000.0, 3.0}}}, VEKO, 3.0};
const std::string kPlateA = "<PLATE_A x0='1.063' y0='-1.063' r0='0.500'/>";
const std::string kOtherPlates =
    "<PLATE_B x0='20.250' y0='30.125' r0='-0.125'/><VEKO x0='0.000' y0='1000.000' r0='3.000'/>";

class FocalPlaneXML : public ProcessWideState {
protected:
    /** A "configure" element with this content, after the records of pointings at these sites. */
    static std::string recorded(const std::string& content, const std::vector<Telescope>& sites) {
        const QDomDocument document = parseDocument("<configure>" + content + "</configure>");
        for (const Telescope& site : sites) {
            const FocalPlane pointing = pointedAt({1.0, 0.5}, 0.0, kWinterNight, site, kPlatesOfTheirOwn);
            FocalPlaneCoordinates::setFocalLength(11730.0625);
            FocalPlaneCoordinates::setDistortion(200.0, -3.5, 0.25);
            saveFocalPlaneXML(pointing, document, document.documentElement());
        }
        return treeText(document.documentElement());
    }
    static std::string tree(const std::string& content) {
        return treeText(parseElement("<configure>" + content + "</configure>"));
    }
};

/** Of the height an exact tie. */
constexpr Telescope kNearGreenwich = {.eastLongitude = rad(-0.1234564), .latitude = rad(0.000004), .height = -12.25};
constexpr Telescope kSouthern = {.eastLongitude = rad(90.0), .latitude = rad(-31.2500049), .height = 100.0};

} // namespace

TEST_F(FocalPlaneXML, HoldsSiteOpticsAndPlatesInTheirUnitsAndDecimals) {
    EXPECT_EQ(recorded("<conditions/>", {kNearGreenwich}),
              tree("<conditions/><telescope east_longitude='-0.123456' latitude='0.00000' height='-12.3'/>"
                   "<focal_plane_map focal_length='11730.1' nominal_focal_length='11724.2'><optical_axis>" +
                   kPlateA + kOtherPlates +
                   "</optical_axis><distortion_coefficients c1='200' c3='-3.5' c5='0.25' c7='0'/></focal_plane_map>"));
}

TEST_F(FocalPlaneXML, IsWrittenOverAnotherButForThePlatesWhichItAddsAgain) {
    EXPECT_EQ(recorded("", {kNearGreenwich, kSouthern}),
              tree("<telescope east_longitude='90.000000' latitude='-31.25000' height='100.0'/>"
                   "<focal_plane_map focal_length='11730.1' nominal_focal_length='11724.2'><optical_axis>" +
                   kPlateA + kOtherPlates + kPlateA + kOtherPlates +
                   "</optical_axis><distortion_coefficients c1='200' c3='-3.5' c5='0.25' c7='0'/></focal_plane_map>"));
}

TEST_F(FocalPlaneXML, KeepsWhatElseItsElementsHoldAndAPlateDirectlyUnderTheMapInItsPlace) {
    EXPECT_EQ(recorded("<telescope name='north' height='1'><dome/></telescope><focal_plane_map>"
                       "<PLATE_A x0='9' colour='red'/><distortion_coefficients c7='0.5' note='kept'/>"
                       "</focal_plane_map>",
                       {kSouthern}),
              tree("<telescope name='north' east_longitude='90.000000' latitude='-31.25000' height='100.0'><dome/>"
                   "</telescope><focal_plane_map focal_length='11730.1' nominal_focal_length='11724.2'>"
                   "<PLATE_A x0='1.063' y0='-1.063' r0='0.500' colour='red'/><distortion_coefficients c1='200' "
                   "c3='-3.5' c5='0.25' c7='0' note='kept'/><optical_axis>" +
                   kOtherPlates + "</optical_axis></focal_plane_map>"));
}
