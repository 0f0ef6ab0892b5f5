#include "VekoXML.h"

#include "VekoField.h"
#include "thrown.h"

#include <gmock/gmock.h>

using namespace pos;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class VekoXML : public VekoField {};

} // namespace

TEST_F(VekoXML, ReadsCentreOrientationAndFibresWhateverTheTagOfTheRoot) {
    const auto veko = createVekoXML(PosConfig(":/configure.xml", PosConfig::XML),
                                    parseElement("<anything centre_x='1.5' centre_y='-20' orientation='30'><spine/>"
                                                 "<fibre id='7' pos_x='-1.25' pos_y='5e-1' fibre_name='1A' "
                                                 "status='no prism' type='' slit_entry='nowhere'/></anything>"),
                                    Field(kHighField), kWinterNight);
    EXPECT_EQ(veko->centre.x, 1.5);
    EXPECT_EQ(veko->centre.y, -20.0);
    EXPECT_EQ(veko->centre.orientation, rad(30.0));
    ASSERT_EQ(veko->fibres.size(), 1U);
    const auto& fibre = veko->fibres.at(7);
    EXPECT_EQ(fibre.flags, 0U);
    EXPECT_EQ(fibre.id, 7U);
    EXPECT_EQ(fibre.centre, &veko->centre);
    EXPECT_EQ(fibre.dx, -1.25);
    EXPECT_EQ(fibre.dy, 0.5);
    EXPECT_EQ(fibre.status, FibreStatus::NoPrism);
    EXPECT_THAT(veko->names, ElementsAre(Pair(7, "1A")));
}

TEST_F(VekoXML, ABundleWithoutFibresHasEmptyTables) {
    EXPECT_THAT(bundle(kCentredBundle, "")->fibres, IsEmpty());
    EXPECT_THAT(bundle(kCentredBundle, "")->names, IsEmpty());
}

TEST_F(VekoXML, OfTwoFibresWithOneIdTheFirstKeepsItsPlaceAndTheSecondItsName) {
    const auto veko =
        bundle(kCentredBundle, "<fibre id='7' pos_x='1' pos_y='2' fibre_name='first' status='absent'/>"
                               "<fibre id='7' pos_x='3' pos_y='4' fibre_name='second' status='enabled'/>");
    ASSERT_EQ(veko->fibres.size(), 1U);
    EXPECT_EQ(veko->fibres.at(7).dx, 1.0);
    EXPECT_EQ(veko->fibres.at(7).dy, 2.0);
    EXPECT_EQ(veko->fibres.at(7).status, FibreStatus::Absent);
    EXPECT_THAT(veko->names, ElementsAre(Pair(7, "second")));
}

TEST_F(VekoXML, AFibreIsEnabledWithoutAStatusAndBrokenWithAnEmptyOne) {
    const auto veko = bundle(kCentredBundle, "<fibre id='1' pos_x='1' pos_y='2' fibre_name=''/>"
                                             "<fibre id='2' pos_x='1' pos_y='2' fibre_name='' status=''/>");
    EXPECT_EQ(veko->fibres.at(1).status, FibreStatus::Enabled);
    EXPECT_EQ(veko->fibres.at(2).status, FibreStatus::Broken);
}

TEST_F(VekoXML, RefusesABadRoot) {
    const std::pair<std::string, std::string> rows[] = {
        {"", "plate definition has no centre_x attribute"},
        {"centre_y='x' orientation='x'", "plate definition has no centre_x attribute"},
        {"centre_x='x'", "plate definition has a bad centre x"},
        {"centre_x='' centre_y='x'", "plate definition has a bad centre x"},
        {"centre_x='1,5' centre_y='0' orientation='0'", "plate definition has a bad centre x"},
        {"centre_x='0' orientation='0'", "plate definition has a bad centre y"},
        {"centre_x='0'", "plate definition has a bad centre y"},
        {"centre_x='0' centre_y='south'", "plate definition has a bad centre y"},
        {"centre_x='0' centre_y='0'", "plate definition has no orientation attribute"},
        {"centre_x='0' centre_y='0' orientation=''", "plate definition has a bad orientation"},
        {"centre_x='0' centre_y='0' orientation='north'", "plate definition has a bad orientation"},
    };
    for (const auto& [attributes, message] : rows) {
        EXPECT_EQ(messageOf([root = attributes] { bundle(root, "<fibre/>"); }), message) << attributes;
    }
}

TEST_F(VekoXML, RefusesABadFibre) {
    const std::pair<std::string, std::string> rows[] = {
        {"", "fibre has no id attribute"},
        {"pos_x='x' pos_y='x'", "fibre has no id attribute"},
        {"id='x'", "fibre element has a bad identifier"},
        {"id=''", "fibre element has a bad identifier"},
        {"id='7.0'", "fibre element has a bad identifier"},
        {"id='-7'", "fibre element has a bad identifier"},
        {"id='0x7'", "fibre element has a bad identifier"},
        {"id='2147483648'", "fibre element has a bad identifier"},
        {"id='2147483647'", "fibre has no pos_x attribute"},
        {"id='7' pos_y='x'", "fibre has no pos_x attribute"},
        {"id='7' pos_x='x'", "fibre element has a bad pos x"},
        {"id='7' pos_x='1,5' pos_y='0'", "fibre element has a bad pos x"},
        {"id='7' pos_x='1'", "fibre has no pos_y attribute"},
        {"id='7' pos_x='1' fibre_name='1A'", "fibre has no pos_y attribute"},
        {"id='7' pos_x='1' pos_y=''", "fibre element has a bad pos y"},
        {"id='7' pos_x='1' pos_y='y' fibre_name='1A'", "fibre element has a bad pos y"},
        {"id='7' pos_x='1' pos_y='2'", "fibre has no fibre_name attribute"},
    };
    for (const auto& [attributes, message] : rows) {
        // Good fibres in front of it do not help.
        const std::string fibres = tenFibres() + "<fibre " + attributes + "/>";
        EXPECT_EQ(messageOf([&] { bundle(kCentredBundle, fibres); }), message) << attributes;
    }
}

TEST_F(VekoXML, PointsTheVekoPlateAtTheFieldWithPositionAngleZero) {
    PlateCoordinates::setPlate(PLATE_A);
    const auto veko = bundle(kCentredBundle);
    EXPECT_EQ(veko->focalPlane.positionAngle(), 0.0);
    EXPECT_EQ(veko->focalPlane.conditions(), kWinterNight);
    EXPECT_EQ(derivedValues(veko->focalPlane), libraryValues(kHighField, kWinterNight));
    EXPECT_EQ(PlateCoordinates::geometry().plate, VEKO);
}

TEST_F(VekoXML, ReadsTheEmbeddedBundleFromItsFile) {
    const auto veko =
        createVekoXML(PosConfig(":/configure.xml", PosConfig::XML), ":/VEKO.xml", Field(kHighField), kWinterNight);
    EXPECT_EQ(veko->fibres.size(), 603U);
    EXPECT_EQ(veko->names.at(304), "C14");
    EXPECT_EQ(veko->fibres.at(304).platePosition().y, -20.0);
}
