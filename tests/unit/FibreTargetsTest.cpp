#include "FibreTargets.h"

#include "VekoField.h"
#include "thrown.h"
#include "xml.h"

#include <cmath>

// Whole runs with the embedded bundle and with others, in tests/runs/, show which fibres get which targets, and where.

using namespace pos;

namespace {

class FibreTargetsSave : public VekoField {};

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

QDomElement generatedFor(const QDomElement& field, std::uint32_t id) {
    QDomElement target = field.firstChildElement("avoidance_list").nextSiblingElement();
    while (!target.isNull() && attributeText(target, "configid") != std::to_string(id)) {
        target = target.nextSiblingElement();
    }
    return target;
}

/** The attributes that a plate position gives any target, by the closed form of a fibre's place. */
std::string placeAttributes(const Veko& veko, std::uint32_t id) {
    const auto& fibre = veko.fibres.at(id);
    const double cosine = std::cos(veko.centre.orientation);
    const double sine = std::sin(veko.centre.orientation);
    const double x = veko.centre.x + fibre.dx * cosine - fibre.dy * sine;
    const double y = veko.centre.y + fibre.dx * sine + fibre.dy * cosine;
    return "targx='" + setterText(x) + "' targy='" + setterText(y) + "' ifu_pa='45' ifu_spaxel='" + veko.names.at(id) +
           "' configid='" + std::to_string(id) + "' ";
}

/** The sky position that a fibre sees, as the document writes it. */
std::string skyAttributes(const Veko& veko, std::uint32_t id) {
    const FocalPlane& focalPlane = veko.focalPlane;
    const CIRS place = focalPlane.xyToCirs(veko.fibres.at(id).platePosition());
    const Astrometric sky = place.toAstrometric(focalPlane.date());
    return "targra='" + fixedPointText(sky.ra * 180 / kTestPi, 6) + "' targdec='" +
           fixedPointText(sky.dec * 180 / kTestPi, 6) + "' ";
}

} // namespace

TEST_F(FibreTargetsSave, AGeneratedTargetIsACopyOfTheScienceTargetWithItsOwnPlace) {
    const auto veko = pointedBundle(kTurnedBundle, rad(45.0));
    const QDomElement field =
        fieldWith("fibreid='304' configid='77' automatic='0' targx='999' targy='999' ifu_pa='999' ifu_spaxel='old' ");
    FibreTargets(*veko, kEpoch).save(field, scienceOf(field), 304);
    EXPECT_EQ(treeText(scienceOf(field)),
              treeText(parseElement("<target targuse='T' fibreid='304' automatic='0' " + kKept + kPosition +
                                    placeAttributes(*veko, 304) + ">" + kChildren + "</target>")));
    // Before and behind the science fibre, science and sky, usable and not.
    for (const auto& [id, own] : {std::pair{101U, "targuse='T' fibreid='101' "},
                                  {102U, "targuse='S' fibreid='102' "},
                                  {104U, "targuse='S' fibreid='-104' "},
                                  {200U, "targuse='T' fibreid='-200' "},
                                  {400U, "targuse='T' fibreid='-400' "},
                                  {500U, "targuse='T' fibreid='500' "}}) {
        const std::string expected =
            "<target automatic='1' targepoch='2016.00' targparal='0' targpmra='0' targpmdec='0' " + kKept + own +
            placeAttributes(*veko, id) + skyAttributes(*veko, id) + ">" + kChildren + "</target>";
        EXPECT_EQ(treeText(generatedFor(field, id)), treeText(parseElement(expected)));
    }
    EXPECT_EQ(field.childNodes().count(), 3 + 8); // none for the absent fibre 305
}

TEST_F(FibreTargetsSave, AFibreWithoutANameIsRefused) {
    const auto veko = pointedBundle(kCentredBundle);
    veko->names.erase(102);
    EXPECT_EQ(messageOf<std::out_of_range>([&] { FibreTargets(*veko, kEpoch); }), "map::at");
}

TEST_F(FibreTargetsSave, AFibreThatIsNowhereIsRefusedUnlessItIsOnTheScienceTarget) {
    const auto veko = pointedBundle(kCentredBundle, 0.0,
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
    FibreTargets(*pointedBundle(kCentredBundle, 0.0, ""), kEpoch).save(field, scienceOf(field), 304);
    EXPECT_EQ(treeText(field), treeText(fieldWith("")));
}
