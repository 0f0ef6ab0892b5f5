#include "placeVeko.h"

#include "TargetXML.h"
#include "VekoField.h"
#include "attributeText.h"
#include "thrown.h"
#include "tolerances.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace pos;

namespace {

class VekoPlacement : public VekoField {};
class VekoGuideStar : public VekoField {};

/** Degrees on the sky of a distance near the optical axis of the embedded focal-plane map, mm. */
double skyDegrees(double mm) {
    return mm / 202.841;
}

/** A galaxy with a noticeable space motion. */
Target scienceTarget() {
    Target target;
    target.name = "NGC";
    target.position = {degreesToRadians(150.02), degreesToRadians(30.05), 2000.0, 2000.0, -3000.0, 0.5, 30.0};
    return target;
}

/** Asserts that the pointing has the target on a place of the plate. */
void expectOnPlate(const FocalPlane& focalPlane, const Target& target, double x, double y) {
    const PlateCoordinates landed = plateOf(focalPlane, focalPlane.date(), target.position);
    EXPECT_NEAR(landed.x, x, kPlacementToleranceMm);
    EXPECT_NEAR(landed.y, y, kPlacementToleranceMm);
}

} // namespace

TEST_F(VekoPlacement, WithoutAFibreTheScienceTargetGoesToFibre304) {
    Target target;
    EXPECT_EQ(scienceFibre(target), 304U);
    target.fibreid = 17;
    EXPECT_EQ(scienceFibre(target), 17U);
    target.fibreid = 0;
    EXPECT_EQ(scienceFibre(target), 0U);
}

TEST_F(VekoPlacement, PutsTheScienceTargetOnItsFibre) {
    struct Case {
        const char* root;
        std::uint32_t fibre;
        double paDeg;
        double x;
        double y;
    };
    const double root3 = std::sqrt(3.0);
    // The last two: the offset (2, -1) turned by 90 and by 30 degrees, about (5, -7).
    for (const Case& c :
         {Case{"centre_x='0' centre_y='0' orientation='0'", 304, 0.0, 0.0, 0.0},
          Case{"centre_x='0' centre_y='0' orientation='0'", 104, 0.0, -3.0, 0.0},
          Case{"centre_x='0' centre_y='0' orientation='0'", 102, 120.0, 0.0, 3.0},
          Case{"centre_x='5' centre_y='-7' orientation='90'", 500, 0.0, 5.0 + 1.0, -7.0 + 2.0},
          Case{"centre_x='5' centre_y='-7' orientation='30'", 500, -60.0, 5.0 + root3 + 0.5, -7.0 + 1.0 - root3 / 2}}) {
        const auto veko = smallBundle(c.root, c.paDeg);
        const double date = veko->focalPlane.date();
        placeVeko(*veko, scienceTarget(), c.fibre);
        expectOnPlate(veko->focalPlane, scienceTarget(), c.x, c.y);
        EXPECT_EQ(veko->focalPlane.positionAngle(), degreesToRadians(c.paDeg));
        EXPECT_EQ(veko->focalPlane.date(), date);
    }
}

TEST_F(VekoPlacement, AFibreThatIsBrokenOrAbsentCanTakeTheScienceTarget) {
    const auto veko = centredBundle();
    placeVeko(*veko, scienceTarget(), 305);
    expectOnPlate(veko->focalPlane, scienceTarget(), 0.0, -0.5);
    placeVeko(*veko, scienceTarget(), 200);
    expectOnPlate(veko->focalPlane, scienceTarget(), 0.0, 0.5);
}

TEST_F(VekoPlacement, TheShippedBundleTakesTheTargetTwentyMillimetresBelowTheOrigin) {
    const auto veko = shippedBundle();
    placeVeko(*veko, scienceTarget(), 304);
    expectOnPlate(veko->focalPlane, scienceTarget(), 0.0, -20.0);
    // The field centre then lies 20 mm, some 0.0986 degrees, north of the target.
    const Astrometric star = scienceTarget().position.toAstrometric(veko->focalPlane.date());
    const Astrometric centre = vekoFieldCentre(*veko);
    EXPECT_NEAR(radiansToDegrees(centre.dec - star.dec), skyDegrees(20.0), skyDegrees(20.0) * kPlateScaleTolerance);
}

TEST_F(VekoPlacement, TheFieldCentreIsWhatThePlatesOriginSees) {
    const auto veko = smallBundle("centre_x='5' centre_y='-7' orientation='30'", 45.0);
    placeVeko(*veko, scienceTarget(), 500);
    const FocalPlane& focalPlane = veko->focalPlane;
    const Astrometric expected = focalPlane.xyToCirs(PlateCoordinates(0.0, 0.0)).toAstrometric(focalPlane.date());
    EXPECT_EQ(vekoFieldCentre(*veko).ra, expected.ra);
    EXPECT_EQ(vekoFieldCentre(*veko).dec, expected.dec);
    EXPECT_NEAR(expected.ra, focalPlane.fieldCentre().ra, 2 * kMicroarcsecond);
    EXPECT_NEAR(expected.dec, focalPlane.fieldCentre().dec, 2 * kMicroarcsecond);
}

TEST_F(VekoPlacement, IsHadAgainFromItsFieldCentreToTheSameBits) {
    for (const double paDeg : {0.0, 45.0, 270.0, -180.0}) {
        SCOPED_TRACE(paDeg);
        const auto veko = smallBundle("centre_x='5' centre_y='-7' orientation='30'", paDeg);
        FocalPlane& focalPlane = veko->focalPlane;
        const auto pointing = [&] {
            const CIRS seen = focalPlane.xyToCirs({120.0, -55.0});
            const Astrometric centre = vekoFieldCentre(*veko);
            return std::vector{focalPlane.positionAngle(),
                               focalPlane.tangentDec(),
                               focalPlane.zenithDistance(),
                               focalPlane.hourAngle(),
                               focalPlane.parallacticAngle(),
                               centre.ra,
                               centre.dec,
                               seen.ra,
                               seen.dec};
        };
        placeVeko(*veko, scienceTarget(), 500);
        const Astrometric centre = focalPlane.fieldCentre();
        const std::vector<double> placed = pointing();
        placeVeko(*veko, scienceTarget(), 104);
        ASSERT_NE(pointing(), placed);
        focalPlane.setFieldCentre(centre, focalPlane.positionAngle());
        EXPECT_EQ(pointing(), placed);
    }
}

TEST_F(VekoPlacement, RefusesAFibreThatTheBundleDoesNotHave) {
    Target negative = scienceTarget();
    negative.fibreid = -160;
    const auto veko = shippedBundle();
    for (std::uint32_t fibre : {0U, 604U, scienceFibre(negative)}) {
        EXPECT_EQ(messageOf([&] { placeVeko(*veko, scienceTarget(), fibre); }),
                  "fibre assigned to science target does not exist");
    }
    const auto empty = smallBundle("centre_x='0' centre_y='0' orientation='0'", 0.0, "");
    EXPECT_EQ(messageOf([&] { placeVeko(*empty, scienceTarget(), 304); }),
              "fibre assigned to science target does not exist");
}

TEST_F(VekoPlacement, BeforeTheFibreIsLookedUpTheFieldIsCentredOnTheTarget) {
    const auto veko = centredBundle(70.0);
    messageOf([&] { placeVeko(*veko, scienceTarget(), 9999); });
    const Astrometric star = scienceTarget().position.toAstrometric(veko->focalPlane.date());
    EXPECT_EQ(veko->focalPlane.fieldCentre().ra, star.ra);
    EXPECT_EQ(veko->focalPlane.fieldCentre().dec, star.dec);
    EXPECT_EQ(veko->focalPlane.positionAngle(), degreesToRadians(70.0));
}

TEST_F(VekoGuideStar, GetsItsPlatePositionAndNoFibre) {
    const auto veko = smallBundle("centre_x='5' centre_y='-7' orientation='30'", 45.0);
    placeVeko(*veko, scienceTarget(), 500);
    const std::string given = "targname='guide' targuse='G' targra='150.1000000' targdec='30.2000000' "
                              "targepoch='2000' targpmra='900' targpmdec='-700' targparal='0.3' targrv='40' cname='c' ";
    const QDomElement guide =
        parseElement("<target " + given + "fibreid='5' configid='6' ifu_spaxel='old'><photometry/></target>");
    const Target star = createTargetXML(guide);
    saveGuideStar(*veko, guide);

    const PlateCoordinates place = plateOf(veko->focalPlane, veko->focalPlane.date(), star.position);
    const std::string expected = "<target " + given + "fibreid='' configid='0' ifu_spaxel='' ifu_pa='" +
                                 setterText(veko->focalPlane.positionAngle() * 180 / 3.141592653589793) + "' targx='" +
                                 setterText(place.x) + "' targy='" + setterText(place.y) + "'><photometry/></target>";
    EXPECT_EQ(treeText(guide), treeText(parseElement(expected)));
    EXPECT_EQ(attributeText(guide, "ifu_pa"), "45");
}

TEST_F(VekoGuideStar, NorthOfTheFieldCentreIsUpAtPositionAngleZeroAndRightAtNinety) {
    const QDomElement guide = parseElement("<target targra='150.000000' targdec='30.100000'/>");
    // By the map a tenth of a degree is 202.841 / 10 + 3.0191 / 1000 mm.
    const auto up = centredBundle(0.0);
    saveGuideStar(*up, guide);
    EXPECT_NEAR(std::stod(attributeText(guide, "targy")), 20.287, 20.287 * kPlateScaleTolerance);
    const auto right = centredBundle(90.0);
    saveGuideStar(*right, guide);
    EXPECT_NEAR(std::stod(attributeText(guide, "targx")), 20.287, 20.287 * kPlateScaleTolerance);
}

TEST_F(VekoGuideStar, FailuresOfItsElementAndItsPlacePassThrough) {
    const auto veko = centredBundle();
    EXPECT_EQ(messageOf([&] { saveGuideStar(*veko, parseElement("<target targname='G1'/>")); }),
              "Target G1 has no targra");
    const QDomElement opposite = parseElement("<target targra='330.000000' targdec='-30.000000'/>");
    const std::string before = treeText(opposite);
    EXPECT_EQ(messageOf([&] { saveGuideStar(*veko, opposite); }), "celestial position not in the tangent plane");
    EXPECT_EQ(treeText(opposite), before);
}
