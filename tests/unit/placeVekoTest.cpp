#include "placeVeko.h"

#include "TargetXML.h"
#include "VekoField.h"
#include "thrown.h"
#include "tolerances.h"
#include "xml.h"

#include <cmath>

using namespace pos;

namespace {

class VekoPlacement : public VekoField {};
class VekoGuideStar : public VekoField {};

/** A galaxy with a noticeable space motion. */
Target scienceTarget() {
    Target target;
    target.position = {rad(150.02), rad(30.05), 2000.0, 2000.0, -3000.0, 0.5, 30.0};
    return target;
}

PlateCoordinates landed(const FocalPlane& focalPlane, const ICRS& position) {
    return focalPlane.cirsToXy(position.toAstrometric(focalPlane.date()).toCirs(focalPlane.date()));
}

} // namespace

TEST_F(VekoPlacement, WithoutAFibreTheScienceTargetGoesToFibre304) {
    Target target;
    EXPECT_EQ(scienceFibre(target), 304U);
    for (const std::int32_t fibre : {17, 0, -160}) {
        target.fibreid = fibre;
        EXPECT_EQ(scienceFibre(target), static_cast<std::uint32_t>(fibre));
    }
}

TEST_F(VekoPlacement, PutsTheScienceTargetOnItsFibreAndThePlatesOriginOnTheFieldCentre) {
    // Offsets of an enabled and of an absent fibre, (2, -1) and (0, -0.5), turned by 30 degrees about (5, -7).
    const double root3 = std::sqrt(3.0);
    const auto veko = pointedBundle(kTurnedBundle, rad(-60.0));
    const FocalPlane& focalPlane = veko->focalPlane;
    const double date = focalPlane.date();
    for (const auto& [fibre, x, y] :
         {std::tuple{500U, 5.0 + root3 + 0.5, -7.0 + 1.0 - root3 / 2}, {305U, 5.0 + 0.25, -7.0 - root3 / 4}}) {
        placeVeko(*veko, scienceTarget(), fibre);
        EXPECT_NEAR(landed(focalPlane, scienceTarget().position).x, x, kPlacementToleranceMm);
        EXPECT_NEAR(landed(focalPlane, scienceTarget().position).y, y, kPlacementToleranceMm);
        EXPECT_EQ(focalPlane.positionAngle(), rad(-60.0));
        EXPECT_EQ(focalPlane.date(), date);
        const Astrometric expected = focalPlane.xyToCirs({0.0, 0.0}).toAstrometric(date);
        EXPECT_EQ(vekoFieldCentre(*veko).ra, expected.ra);
        EXPECT_EQ(vekoFieldCentre(*veko).dec, expected.dec);
    }
}

TEST_F(VekoPlacement, IsHadAgainFromItsFieldCentreToTheSameBits) {
    for (const double paDeg : {0.0, 45.0, 270.0, -180.0}) {
        SCOPED_TRACE(paDeg);
        const auto veko = pointedBundle(kTurnedBundle, rad(paDeg));
        FocalPlane& focalPlane = veko->focalPlane;
        placeVeko(*veko, scienceTarget(), 500);
        const Astrometric centre = focalPlane.fieldCentre();
        const std::vector<double> placed = derivedValues(focalPlane);
        placeVeko(*veko, scienceTarget(), 104);
        ASSERT_NE(derivedValues(focalPlane), placed);
        focalPlane.setFieldCentre(centre, focalPlane.positionAngle());
        EXPECT_EQ(derivedValues(focalPlane), placed);
    }
}

TEST_F(VekoPlacement, BeforeTheFibreIsLookedUpTheFieldIsCentredOnTheTarget) {
    const auto veko = pointedBundle(kCentredBundle, rad(70.0));
    EXPECT_EQ(messageOf([&] { placeVeko(*veko, scienceTarget(), 9999); }),
              "fibre assigned to science target does not exist");
    const Astrometric star = scienceTarget().position.toAstrometric(veko->focalPlane.date());
    EXPECT_EQ(veko->focalPlane.fieldCentre().ra, star.ra);
    EXPECT_EQ(veko->focalPlane.fieldCentre().dec, star.dec);
    EXPECT_EQ(veko->focalPlane.positionAngle(), rad(70.0));
}

TEST_F(VekoGuideStar, GetsItsPlatePositionAndNoFibre) {
    const auto veko = pointedBundle(kTurnedBundle, rad(45.0));
    placeVeko(*veko, scienceTarget(), 500);
    const std::string given = "targname='guide' targuse='G' targra='150.1000000' targdec='30.2000000' "
                              "targepoch='2000' targpmra='900' targpmdec='-700' targparal='0.3' targrv='40' cname='c' ";
    const QDomElement guide =
        parseElement("<target " + given + "fibreid='5' configid='6' ifu_spaxel='old'><photometry/></target>");
    const PlateCoordinates place = landed(veko->focalPlane, createTargetXML(guide).position);
    saveGuideStar(*veko, guide);
    EXPECT_EQ(
        treeText(guide),
        treeText(parseElement("<target " + given + "fibreid='' configid='0' ifu_spaxel='' ifu_pa='45' targx='" +
                              setterText(place.x) + "' targy='" + setterText(place.y) + "'><photometry/></target>")));
}

TEST_F(VekoGuideStar, WithoutAPlaceOnThePlateStaysAsItIs) {
    const auto veko = pointedBundle(kCentredBundle);
    const QDomElement opposite = parseElement("<target targra='330.000000' targdec='-30.000000'/>");
    const std::string before = treeText(opposite);
    EXPECT_EQ(messageOf([&] { saveGuideStar(*veko, opposite); }), "celestial position not in the tangent plane");
    EXPECT_EQ(treeText(opposite), before);
}
