#include "VekoXML.h"

#include "Field.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "TestPointing.h"
#include "Veko.h"
#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <gmock/gmock.h>

using namespace pos;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class VekoXML : public ProcessWideState {
protected:
    /** A bundle from the attributes and children of a root element. */
    static std::unique_ptr<Veko> bundle(const std::string& attributes, const std::string& children = "") {
        const QDomElement root =
            parseElement("<plate_definition " + attributes + ">" + children + "</plate_definition>");
        return createVekoXML(embeddedConfig(), root, Field(highField()), ordinaryConditions());
    }

    /** A bundle at the plate's origin. */
    static std::unique_ptr<Veko> bundleOf(const std::string& fibres) {
        return bundle("centre_x='0' centre_y='0' orientation='0'", fibres);
    }

    static std::unique_ptr<Veko> bundleFrom(const std::string& filename) {
        return createVekoXML(embeddedConfig(), filename, Field(highField()), ordinaryConditions());
    }
};

constexpr const char* kFibre7 = "<fibre id='7' pos_x='1' pos_y='2' fibre_name='1A'/>";

} // namespace

TEST_F(VekoXML, ReadsCentreAndOrientation) {
    const auto veko = bundle("centre_x='1.5' centre_y='-20' orientation='30'");
    EXPECT_EQ(veko->centre.x, 1.5);
    EXPECT_EQ(veko->centre.y, -20.0);
    EXPECT_NEAR(veko->centre.orientation, 3.141592653589793 / 6, kAngleTolerance);
}

TEST_F(VekoXML, TheTagOfTheRootDoesNotMatter) {
    const QDomElement root = parseElement("<anything orientation='0' centre_y='2' centre_x='1'/>");
    const auto veko = createVekoXML(embeddedConfig(), root, Field(highField()), ordinaryConditions());
    EXPECT_EQ(veko->centre.x, 1.0);
    EXPECT_EQ(veko->centre.y, 2.0);
}

TEST_F(VekoXML, ABundleWithoutFibresHasEmptyTables) {
    const auto veko = bundleOf("");
    EXPECT_THAT(veko->fibres, IsEmpty());
    EXPECT_THAT(veko->names, IsEmpty());
}

TEST_F(VekoXML, ReadsAFibre) {
    const auto veko = bundle("centre_x='10' centre_y='20' orientation='90'",
                             "<fibre id='7' pos_x='-1.25' pos_y='0.5' fibre_name='1A' status='no prism'/>");
    ASSERT_EQ(veko->fibres.size(), 1U);
    const auto& fibre = veko->fibres.at(7);
    EXPECT_EQ(fibre.flags, 0U);
    EXPECT_EQ(fibre.id, 7U);
    EXPECT_EQ(fibre.centre, &veko->centre);
    EXPECT_EQ(fibre.dx, -1.25);
    EXPECT_EQ(fibre.dy, 0.5);
    EXPECT_EQ(fibre.status, FibreStatus::NoPrism);
    EXPECT_THAT(veko->names, ElementsAre(Pair(7, "1A")));
    // A quarter turn takes (x, y) to (-y, x).
    EXPECT_NEAR(fibre.platePosition().x, 10.0 - 0.5, kPlateToleranceMm);
    EXPECT_NEAR(fibre.platePosition().y, 20.0 - 1.25, kPlateToleranceMm);
}

TEST_F(VekoXML, FibresFollowALaterChangeOfTheCentre) {
    const auto veko = bundleOf(kFibre7);
    veko->centre.x = 100.0;
    EXPECT_EQ(veko->fibres.at(7).platePosition().x, 101.0);
}

TEST_F(VekoXML, TablesAreInAscendingIdentifier) {
    const auto veko = bundleOf("<fibre id='30' pos_x='0' pos_y='0' fibre_name='c'/>"
                               "<fibre id='4' pos_x='0' pos_y='0' fibre_name='a'/>"
                               "<fibre id='012' pos_x='0' pos_y='0' fibre_name='b'/>");
    EXPECT_THAT(veko->names, ElementsAre(Pair(4, "a"), Pair(12, "b"), Pair(30, "c")));
    std::vector<std::uint32_t> ids;
    for (const auto& [id, fibre] : veko->fibres) {
        EXPECT_EQ(fibre.id, id);
        ids.push_back(id);
    }
    EXPECT_THAT(ids, ElementsAre(4, 12, 30));
}

TEST_F(VekoXML, OfTwoFibresWithOneIdTheFirstKeepsItsPlaceAndTheSecondItsName) {
    const auto veko = bundleOf("<fibre id='7' pos_x='1' pos_y='2' fibre_name='first' status='absent'/>"
                               "<fibre id='7' pos_x='3' pos_y='4' fibre_name='second' status='enabled'/>");
    ASSERT_EQ(veko->fibres.size(), 1U);
    EXPECT_EQ(veko->fibres.at(7).dx, 1.0);
    EXPECT_EQ(veko->fibres.at(7).dy, 2.0);
    EXPECT_EQ(veko->fibres.at(7).status, FibreStatus::Absent);
    EXPECT_THAT(veko->names, ElementsAre(Pair(7, "second")));
}

TEST_F(VekoXML, ReadsStatusWordsLeniently) {
    struct Case {
        const char* attribute;
        FibreStatus::Value status;
    };
    for (const Case& c :
         {Case{"", FibreStatus::Enabled}, Case{"status='Enabled'", FibreStatus::Enabled},
          Case{"status='DISABLED'", FibreStatus::Disabled}, Case{"status='Bad Ferrule'", FibreStatus::BadFerrule},
          Case{"status='broken'", FibreStatus::Broken}, Case{"status='lost'", FibreStatus::Broken},
          Case{"status=''", FibreStatus::Broken}}) {
        const auto veko =
            bundleOf(std::string("<fibre id='7' pos_x='1' pos_y='2' fibre_name='1A' ") + c.attribute + "/>");
        EXPECT_EQ(veko->fibres.at(7).status, c.status) << c.attribute;
    }
}

TEST_F(VekoXML, IgnoresTypeSlitEntryAndOtherElements) {
    const auto veko = bundleOf("<spine id='x'/><group><fibre id='8' pos_x='1' pos_y='2' fibre_name='in'/></group>"
                               "<fibre id='7' pos_x='1' pos_y='2' fibre_name='1A' type='' slit_entry='nowhere'/>"
                               "<!-- end -->");
    EXPECT_THAT(veko->names, ElementsAre(Pair(7, "1A")));
    EXPECT_EQ(veko->fibres.size(), 1U);
}

TEST_F(VekoXML, NumbersMayHaveBlanksAndExponents) {
    const auto veko = bundleOf("<fibre id=' 7 ' pos_x=' 1.5 ' pos_y='-2.5e1' fibre_name=''/>");
    EXPECT_EQ(veko->fibres.at(7).dx, 1.5);
    EXPECT_EQ(veko->fibres.at(7).dy, -25.0);
    EXPECT_EQ(veko->names.at(7), "");
}

TEST_F(VekoXML, RefusesABadRoot) {
    struct Case {
        const char* attributes;
        const char* message;
    };
    for (const Case& c :
         {Case{"", "plate definition has no centre_x attribute"},
          Case{"centre_y='x' orientation='x'", "plate definition has no centre_x attribute"},
          Case{"centre_x='x'", "plate definition has a bad centre x"},
          Case{"centre_x='' centre_y='x'", "plate definition has a bad centre x"},
          Case{"centre_x='1,5' centre_y='0' orientation='0'", "plate definition has a bad centre x"},
          Case{"centre_x='0' orientation='0'", "plate definition has a bad centre y"},
          Case{"centre_x='0'", "plate definition has a bad centre y"},
          Case{"centre_x='0' centre_y='south'", "plate definition has a bad centre y"},
          Case{"centre_x='0' centre_y='0'", "plate definition has no orientation attribute"},
          Case{"centre_x='0' centre_y='0' orientation=''", "plate definition has a bad orientation"},
          Case{"centre_x='0' centre_y='0' orientation='north'", "plate definition has a bad orientation"}}) {
        EXPECT_EQ(messageOf([&] { bundle(c.attributes, "<fibre/>"); }), c.message) << c.attributes;
    }
}

TEST_F(VekoXML, RefusesABadFibre) {
    struct Case {
        const char* attributes;
        const char* message;
    };
    for (const Case& c :
         {Case{"", "fibre has no id attribute"}, Case{"pos_x='x' pos_y='x'", "fibre has no id attribute"},
          Case{"id='x'", "fibre element has a bad identifier"}, Case{"id=''", "fibre element has a bad identifier"},
          Case{"id='7.0'", "fibre element has a bad identifier"}, Case{"id='-7'", "fibre element has a bad identifier"},
          Case{"id='2147483648'", "fibre element has a bad identifier"},
          Case{"id='2147483647'", "fibre has no pos_x attribute"},
          Case{"id='0x7'", "fibre element has a bad identifier"}, Case{"id='7'", "fibre has no pos_x attribute"},
          Case{"id='7' pos_y='x'", "fibre has no pos_x attribute"},
          Case{"id='7' pos_x='x'", "fibre element has a bad pos x"},
          Case{"id='7' pos_x='1,5' pos_y='0'", "fibre element has a bad pos x"},
          Case{"id='7' pos_x='1'", "fibre has no pos_y attribute"},
          Case{"id='7' pos_x='1' fibre_name='1A'", "fibre has no pos_y attribute"},
          Case{"id='7' pos_x='1' pos_y=''", "fibre element has a bad pos y"},
          Case{"id='7' pos_x='1' pos_y='y' fibre_name='1A'", "fibre element has a bad pos y"},
          Case{"id='7' pos_x='1' pos_y='2'", "fibre has no fibre_name attribute"}}) {
        // A good fibre in front of it does not help.
        const std::string fibres = std::string(kFibre7) + "<fibre " + c.attributes + "/>";
        EXPECT_EQ(messageOf([&] { bundleOf(fibres); }), c.message) << c.attributes;
    }
}

TEST_F(VekoXML, PointsTheVekoPlateAtTheFieldWithPositionAngleZero) {
    const auto veko = bundleOf("");
    EXPECT_EQ(veko->focalPlane.fieldCentre().ra, highField().ra);
    EXPECT_EQ(veko->focalPlane.fieldCentre().dec, highField().dec);
    EXPECT_EQ(veko->focalPlane.positionAngle(), 0.0);
    EXPECT_EQ(veko->focalPlane.date(), ordinaryConditions().epoch);
    EXPECT_EQ(veko->focalPlane.conditions().temperature, ordinaryConditions().temperature);
    EXPECT_EQ(veko->focalPlane.conditions().pressure, ordinaryConditions().pressure);
    EXPECT_EQ(veko->focalPlane.conditions().relativeHumidity, ordinaryConditions().relativeHumidity);
}

TEST_F(VekoXML, TheVekoPlateIsTheOneInUse) {
    bundleOf("");
    // This moves the current plate only.
    PlateCoordinates::setPlatePosition(3.0, 4.0, 0.0);
    EXPECT_EQ(PlateCoordinates::opticalAxis(VEKO).x0, 3.0);
    EXPECT_EQ(PlateCoordinates::opticalAxis(PLATE_A).x0, 0.0);
}

TEST_F(VekoXML, ReadsTheBundleFromAFile) {
    const TemporaryFolder folder;
    const std::string name =
        folder.write("veko.xml", std::string("<plate_definition centre_x='1' centre_y='2' orientation='3' "
                                             "datamver='8.00'>") +
                                     kFibre7 + "</plate_definition>");
    const auto veko = bundleFrom(name);
    EXPECT_EQ(veko->centre.y, 2.0);
    EXPECT_THAT(veko->names, ElementsAre(Pair(7, "1A")));
}

TEST_F(VekoXML, PassesOnTheFailuresOfLoadingAFile) {
    const TemporaryFolder folder;
    const std::string missing = folder.path("missing.xml");
    EXPECT_EQ(messageOf([&] { bundleFrom(missing); }), missing + " could not be opened");
    const std::string broken = folder.write("broken.xml", "<plate_definition>");
    EXPECT_EQ(messageOf([&] { bundleFrom(broken); }), broken + " is not valid XML");
    const std::string old =
        folder.write("old.xml", "<plate_definition centre_x='0' centre_y='0' orientation='0' datamver='7.00'/>");
    EXPECT_EQ(messageOf([&] { bundleFrom(old); }), "Data model version mismatch");
}

TEST_F(VekoXML, InTheEmbeddedBundleC14IsFibre304InTheMiddle) {
    const auto veko = bundleFrom(":/VEKO.xml");
    EXPECT_EQ(veko->names.at(304), "C14");
    const PlateCoordinates middle = veko->fibres.at(304).platePosition();
    EXPECT_EQ(middle.x, 0.0);
    EXPECT_EQ(middle.y, -20.0);
}

TEST_F(VekoXML, TheEmbeddedBundleHas603FibresOfWhichThreeAreBroken) {
    const auto veko = bundleFrom(":/VEKO.xml");
    EXPECT_EQ(veko->fibres.size(), 603U);
    EXPECT_EQ(veko->fibres.begin()->first, 1U);
    EXPECT_EQ(veko->fibres.rbegin()->first, 603U);
    std::map<std::uint32_t, std::string> broken;
    for (const auto& [id, fibre] : veko->fibres) {
        const PlateCoordinates position = fibre.platePosition();
        EXPECT_EQ(position.x, fibre.dx);
        EXPECT_EQ(position.y, fibre.dy);
        if (fibre.status == FibreStatus::Broken) {
            broken[id] = veko->names.at(id);
        } else {
            EXPECT_EQ(fibre.status, FibreStatus::Enabled);
        }
    }
    EXPECT_THAT(broken, ElementsAre(Pair(160, "C07"), Pair(504, "27A"), Pair(573, "26F")));
}
