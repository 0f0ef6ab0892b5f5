#include "FibreTargets.h"

#include "VekoField.h"
#include "attributeText.h"
#include "thrown.h"
#include "tolerances.h"

#include <cmath>
#include <gmock/gmock.h>
#include <map>
#include <set>

using namespace pos;
using testing::ElementsAre;
using testing::Pair;

namespace {

constexpr double kEpoch = 2016.0;

/** What a copy of the science target keeps, whichever fibre it is for. */
const std::string kKept = "targname='NGC' targsrvy='WL' targprio='3.5' cname='WVE' targcat='cat' targclass='GALAXY' "
                          "targprog='p' targid='i' targrv='9.5' note='n' ";
const std::string kPosition = "targra='150.010000' targdec='30.020000' targepoch='2000.0' targparal='0.7' "
                              "targpmra='3.2' targpmdec='-1.5' ";
const std::string kChildren = "<photometry mag='17'/><note>text</note>";

/** A field with a science target, a guide star, and something behind them. */
QDomElement fieldWith(const std::string& scienceAttributes) {
    return parseElement("<field><target targuse='T' " + kKept + kPosition + scienceAttributes + ">" + kChildren +
                        "</target><target targuse='G'/><avoidance_list/></field>");
}

QDomElement scienceOf(const QDomElement& field) {
    return field.firstChildElement();
}

/** The elements that stand behind the three of the field at the start. */
std::vector<QDomElement> generatedIn(const QDomElement& field) {
    std::vector<QDomElement> generated;
    for (QDomElement e = field.firstChildElement("avoidance_list").nextSiblingElement(); !e.isNull();
         e = e.nextSiblingElement()) {
        generated.push_back(e);
    }
    return generated;
}

std::map<std::string, QDomElement> byConfigid(const QDomElement& field) {
    std::map<std::string, QDomElement> elements;
    for (const QDomElement& element : generatedIn(field)) {
        elements[attributeText(element, "configid")] = element;
    }
    return elements;
}

std::vector<std::string> column(const std::vector<QDomElement>& elements, const char* attribute) {
    std::vector<std::string> texts;
    for (const QDomElement& element : elements) {
        texts.push_back(attributeText(element, attribute));
    }
    return texts;
}

/** The attributes that a plate position gives any target, by the closed form of a fibre's place. */
std::string placeAttributes(const Veko& veko, std::uint32_t id) {
    const auto& fibre = veko.fibres.at(id);
    const double cosine = std::cos(veko.centre.orientation);
    const double sine = std::sin(veko.centre.orientation);
    const double x = veko.centre.x + fibre.dx * cosine - fibre.dy * sine;
    const double y = veko.centre.y + fibre.dx * sine + fibre.dy * cosine;
    const double paDeg = veko.focalPlane.positionAngle() * 180 / 3.141592653589793;
    return "targx='" + setterText(x) + "' targy='" + setterText(y) + "' ifu_pa='" + setterText(paDeg) +
           "' ifu_spaxel='" + veko.names.at(id) + "' configid='" + std::to_string(id) + "' ";
}

/** The sky position that a fibre sees, as the document writes it. */
std::string skyAttributes(const Veko& veko, std::uint32_t id) {
    const FocalPlane& focalPlane = veko.focalPlane;
    const CIRS place = focalPlane.xyToCirs(veko.fibres.at(id).platePosition());
    const Astrometric sky = place.toAstrometric(focalPlane.date());
    return "targra='" + fixedPointText(sky.ra * 180 / 3.141592653589793, 6) + "' targdec='" +
           fixedPointText(sky.dec * 180 / 3.141592653589793, 6) + "' ";
}

class FibreTargetsSave : public VekoField {
protected:
    static void save(const Veko& veko, const QDomElement& field, std::uint32_t fibre = 304, double epoch = kEpoch) {
        FibreTargets(veko, epoch).save(field, scienceOf(field), fibre);
    }
};

} // namespace

TEST_F(FibreTargetsSave, WritesEveryFibreButTheAbsentOneInAscendingIdentifier) {
    const QDomElement field = fieldWith("");
    save(*centredBundle(), field);
    const auto generated = generatedIn(field);
    EXPECT_THAT(column(generated, "configid"), ElementsAre("101", "102", "103", "104", "105", "200", "400", "500"));
    EXPECT_THAT(column(generated, "ifu_spaxel"), ElementsAre("1A", "S01", "2B", "S02", "sky", "C13", "2S", "12A"));
    EXPECT_EQ(field.childNodes().count(), 3 + 8);
    EXPECT_EQ(treeText(field.childNodes().at(1)), treeText(parseElement("<target targuse='G'/>")));
}

TEST_F(FibreTargetsSave, AFibreThatIsNotEnabledHasANegativeFibreIdOnly) {
    const QDomElement field = fieldWith("");
    save(*centredBundle(), field);
    EXPECT_THAT(column(generatedIn(field), "fibreid"),
                ElementsAre("101", "102", "-103", "-104", "105", "-200", "-400", "500"));
}

TEST_F(FibreTargetsSave, ANameThatBeginsWithACapitalSIsSky) {
    const QDomElement field = fieldWith("");
    save(*centredBundle(), field);
    EXPECT_THAT(column(generatedIn(field), "targuse"), ElementsAre("T", "S", "T", "S", "T", "T", "T", "T"));
}

TEST_F(FibreTargetsSave, AGeneratedTargetIsACopyOfTheScienceTargetWithItsOwnPlace) {
    const auto veko = smallBundle("centre_x='5' centre_y='-7' orientation='30'", 45.0);
    const QDomElement field = fieldWith("fibreid='304' configid='77' automatic='0' targx='999' targy='999' "
                                        "ifu_pa='999' ifu_spaxel='old' ");
    save(*veko, field);
    const auto generated = byConfigid(field);
    ASSERT_EQ(generated.size(), 8U);
    // Before and behind the science fibre, science and sky, usable and not.
    for (auto [id, own] : {std::pair{101U, "targuse='T' fibreid='101' "},
                           {102U, "targuse='S' fibreid='102' "},
                           {104U, "targuse='S' fibreid='-104' "},
                           {200U, "targuse='T' fibreid='-200' "},
                           {400U, "targuse='T' fibreid='-400' "},
                           {500U, "targuse='T' fibreid='500' "}}) {
        const std::string expected =
            "<target automatic='1' targepoch='2016.00' targparal='0' targpmra='0' targpmdec='0' " + kKept + own +
            placeAttributes(*veko, id) + skyAttributes(*veko, id) + ">" + kChildren + "</target>";
        EXPECT_EQ(treeText(generated.at(std::to_string(id))), treeText(parseElement(expected)));
    }
}

TEST_F(FibreTargetsSave, WhatTheScienceTargetLacksIsFilledInOnItsCopies) {
    const QDomElement field = parseElement("<field><target targra='150.010000' targdec='30.020000'/>"
                                           "<target/><avoidance_list/></field>");
    const auto veko = centredBundle();
    save(*veko, field);
    const auto generated = byConfigid(field);
    const std::string filled = "targname='' targsrvy='' targprio='1' cname='%%%' targcat='' targprog='' targid='' "
                               "automatic='1' targepoch='2016.00' targparal='0' targpmra='0' targpmdec='0' ";
    for (auto [id, own] : {std::pair{101U, "targuse='T' fibreid='101' targclass='UNKNOWN' "},
                           {102U, "targuse='S' fibreid='102' targclass='' "},
                           {500U, "targuse='T' fibreid='500' targclass='UNKNOWN' "}}) {
        EXPECT_EQ(treeText(generated.at(std::to_string(id))),
                  treeText(parseElement("<target " + filled + own + placeAttributes(*veko, id) +
                                        skyAttributes(*veko, id) + "/>")));
    }
}

TEST_F(FibreTargetsSave, CopiesMadeBehindTheScienceFibreKeepNothingOfItsPlace) {
    // No copy may keep the fibre, place or id that the science target's own element has got in between.
    const QDomElement field = fieldWith("");
    const auto veko = centredBundle();
    save(*veko, field, 101);
    const QDomElement science = scienceOf(field);
    EXPECT_EQ(attributeText(science, "fibreid"), "101");
    for (const QDomElement& element : generatedIn(field)) {
        for (const char* attribute : {"fibreid", "configid", "ifu_spaxel"}) {
            EXPECT_NE(attributeText(element, attribute), attributeText(science, attribute));
        }
        EXPECT_NE(attributeText(element, "targx") + attributeText(element, "targy"),
                  attributeText(science, "targx") + attributeText(science, "targy"));
    }
    // The set of attributes is the same before the science fibre and behind it.
    const QDomElement last = fieldWith("");
    save(*veko, last, 500);
    for (const std::string id : {"102", "400"}) {
        EXPECT_EQ(treeText(byConfigid(field).at(id)), treeText(byConfigid(last).at(id)));
    }
}

TEST_F(FibreTargetsSave, TheScienceFibresRecordGoesOntoTheScienceTargetItself) {
    const auto veko = smallBundle("centre_x='5' centre_y='-7' orientation='30'", -60.0);
    const QDomElement field = fieldWith("automatic='0' configid='77' ");
    save(*veko, field, 500);
    EXPECT_EQ(treeText(scienceOf(field)),
              treeText(parseElement("<target targuse='T' fibreid='500' automatic='0' " + kKept + kPosition +
                                    placeAttributes(*veko, 500) + ">" + kChildren + "</target>")));
    EXPECT_EQ(byConfigid(field).count("500"), 0U);
    EXPECT_EQ(byConfigid(field).count("304"), 1U);
}

TEST_F(FibreTargetsSave, AScienceFibreThatIsNotEnabledKeepsItsPositiveId) {
    const QDomElement field = fieldWith("");
    save(*centredBundle(), field, 104);
    EXPECT_EQ(attributeText(scienceOf(field), "fibreid"), "104");
    EXPECT_EQ(attributeText(scienceOf(field), "configid"), "104");
    EXPECT_EQ(attributeText(scienceOf(field), "ifu_spaxel"), "S02");
    EXPECT_EQ(attributeText(scienceOf(field), "targuse"), "T");
}

TEST_F(FibreTargetsSave, AnAbsentScienceFibreLeavesTheScienceTargetAsItIs) {
    const QDomElement field = fieldWith("");
    save(*centredBundle(), field, 305);
    EXPECT_EQ(treeText(scienceOf(field)), treeText(scienceOf(fieldWith(""))));
    EXPECT_EQ(generatedIn(field).size(), 9U);
    EXPECT_EQ(byConfigid(field).count("305"), 0U);
}

TEST_F(FibreTargetsSave, FibresLieWhereOrientationAndCentrePutThem) {
    struct Case {
        const char* root;
        const char* id;
        double x;
        double y;
    };
    const double root3 = std::sqrt(3.0);
    // Offsets: 101 (-1, 0), 102 (0, 3), 500 (2, -1).
    for (const Case& c : {Case{"centre_x='5' centre_y='-7' orientation='90'", "101", 5.0, -8.0},
                          Case{"centre_x='5' centre_y='-7' orientation='90'", "102", 2.0, -7.0},
                          Case{"centre_x='5' centre_y='-7' orientation='90'", "500", 6.0, -5.0},
                          Case{"centre_x='1' centre_y='2' orientation='-90'", "500", 0.0, 0.0},
                          Case{"centre_x='0' centre_y='-20' orientation='30'", "102", -1.5, -20.0 + 1.5 * root3},
                          Case{"centre_x='0' centre_y='-20' orientation='30'", "500", root3 + 0.5, -19.0 - root3 / 2},
                          Case{"centre_x='0' centre_y='-20' orientation='180'", "500", -2.0, -19.0}}) {
        const QDomElement field = fieldWith("");
        save(*smallBundle(c.root), field);
        const QDomElement element = byConfigid(field).at(c.id);
        EXPECT_NEAR(std::stod(attributeText(element, "targx")), c.x, kPlateToleranceMm) << c.root << c.id;
        EXPECT_NEAR(std::stod(attributeText(element, "targy")), c.y, kPlateToleranceMm) << c.root << c.id;
    }
}

TEST_F(FibreTargetsSave, TheSkyPositionsFollowThePlateScaleAndThePositionAngle) {
    struct Case {
        double paDeg;
        const char* id;
        double northMm;
        double eastMm;
    };
    // At position angle 0 north is +y and east is -x; at 90 north is +x and east is +y.
    for (const Case& c : {Case{0.0, "102", 3.0, 0.0}, Case{0.0, "104", 0.0, 3.0}, Case{90.0, "102", 0.0, 3.0},
                          Case{90.0, "104", -3.0, 0.0}, Case{180.0, "105", 3.0, 0.0}}) {
        const QDomElement field = fieldWith("");
        const auto veko = centredBundle(c.paDeg);
        save(*veko, field);
        const QDomElement element = byConfigid(field).at(c.id);
        // The origin sees the field centre; 202.841 mm are a degree there.
        const double north = std::stod(attributeText(element, "targdec")) - 30.0;
        const double east = (std::stod(attributeText(element, "targra")) - 150.0) * std::cos(highField().dec);
        const double tolerance = 3.0 / 202.841 * kCelestialNorthTolerance;
        EXPECT_NEAR(north, c.northMm / 202.841, tolerance) << c.paDeg << ' ' << c.id;
        EXPECT_NEAR(east, c.eastMm / 202.841, tolerance) << c.paDeg << ' ' << c.id;
    }
}

TEST_F(FibreTargetsSave, TheEpochIsTheOneGiven) {
    const QDomElement field = fieldWith("");
    save(*centredBundle(), field, 304, 2024.125);
    for (const std::string& text : column(generatedIn(field), "targepoch")) {
        EXPECT_EQ(text, fixedPointText(2024.125, 2));
    }
    EXPECT_EQ(attributeText(scienceOf(field), "targepoch"), "2000.0");
}

TEST_F(FibreTargetsSave, AFibreWithoutANameIsRefused) {
    const auto veko = centredBundle();
    veko->names.erase(102);
    EXPECT_EQ(messageOf<std::out_of_range>([&] { FibreTargets(*veko, kEpoch); }), "map::at");
}

TEST_F(FibreTargetsSave, AFibreThatIsNowhereIsRefusedUnlessItIsOnTheScienceTarget) {
    const auto veko = smallBundle("centre_x='0' centre_y='0' orientation='0'", 0.0,
                                  "<fibre id='1' pos_x='0' pos_y='0' fibre_name='A'/>"
                                  "<fibre id='2' pos_x='nan' pos_y='0' fibre_name='B'/>");
    const std::string message = "Inverse distortion not converging at a radius of nan mm";
    const FibreTargets fibres(*veko, kEpoch);
    EXPECT_EQ(messageOf([&] { fibres.requirePlaces(1); }), message);
    const QDomElement field = fieldWith("");
    EXPECT_EQ(messageOf([&] { fibres.save(field, scienceOf(field), 1); }), message);
    EXPECT_NO_THROW(fibres.requirePlaces(2));
    EXPECT_NO_THROW(fibres.save(field, scienceOf(field), 2));
}

TEST_F(FibreTargetsSave, AnEmptyBundleWritesNothing) {
    const QDomElement field = fieldWith("");
    save(*smallBundle("centre_x='0' centre_y='0' orientation='0'", 0.0, ""), field);
    EXPECT_EQ(treeText(field), treeText(fieldWith("")));
}

TEST_F(FibreTargetsSave, TheShippedBundleWrites602TargetsAndTheScienceTarget) {
    const auto veko = shippedBundle();
    const QDomElement field = fieldWith("");
    save(*veko, field);
    const auto generated = generatedIn(field);
    ASSERT_EQ(generated.size(), 602U);

    const QDomElement science = scienceOf(field);
    EXPECT_EQ(attributeText(science, "fibreid"), "304");
    EXPECT_EQ(attributeText(science, "ifu_spaxel"), "C14");
    EXPECT_EQ(attributeText(science, "targx"), "0");
    EXPECT_EQ(attributeText(science, "targy"), "-20");

    std::set<std::string> sky;
    std::map<int, int> negative;
    int last = 0;
    for (const QDomElement& element : generated) {
        const int configid = std::stoi(attributeText(element, "configid"));
        const int fibreid = std::stoi(attributeText(element, "fibreid"));
        EXPECT_GT(configid, last);
        last = configid;
        EXPECT_EQ(std::abs(fibreid), configid);
        if (fibreid < 0) {
            negative[configid] = fibreid;
        }
        const std::string name = attributeText(element, "ifu_spaxel");
        EXPECT_EQ(attributeText(element, "targuse"), name.front() == 'S' ? "S" : "T");
        if (name.front() == 'S') {
            sky.insert(name);
        }
        EXPECT_EQ("targra='" + attributeText(element, "targra") + "' targdec='" + attributeText(element, "targdec") +
                      "' ",
                  skyAttributes(*veko, static_cast<std::uint32_t>(configid)));
    }
    EXPECT_EQ(last, 603);
    EXPECT_THAT(negative, ElementsAre(Pair(160, -160), Pair(504, -504), Pair(573, -573)));
    EXPECT_EQ(sky.size(), 56U);
    EXPECT_EQ(*sky.begin(), "S01");
    EXPECT_EQ(*sky.rbegin(), "S56");
}
