#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "pointings.h"
#include "tolerances.h"

#include <rapidcheck/gtest.h>

using namespace pos;

namespace {

class FieldCentreSolveProperty : public ProcessWideState {};

/** Within a few degrees of the pole a step of the centre turns the field by so much that the solve may give up. */
constexpr double kConvergesUpToDec = 80.0;

/** A pointing whose field the solve may move about freely, and the plate position where a target is wanted. */
struct Case {
    Pointing pointing = anyPointing(false);
    PlateCoordinates wanted{0.0, 0.0};

    Case() {
        RC_PRE(std::fabs(pointing.centre.dec) < rad(kConvergesUpToDec));
        const auto [dx, dy] = inDisc(*rc::gen::element(1.0, 30.0, 200.0).as("radius"));
        wanted = {pointing.plate.x0 + dx, pointing.plate.y0 + dy};
    }
};

} // namespace

RC_GTEST_FIXTURE_PROP(FieldCentreSolveProperty, TheTargetLandsOnTheWantedPlace, ()) {
    const Case solve;
    FocalPlane focalPlane = focalPlaneOf(solve.pointing);
    const Astrometric target = placeInField(solve.pointing.centre);
    const double positionAngle = focalPlane.positionAngle();
    focalPlane.setFieldCentre(target, solve.wanted);
    RC_ASSERT(focalPlane.positionAngle() == positionAngle);
    RC_ASSERT(focalPlane.date() == solve.pointing.conditions.epoch);

    const PlateCoordinates landed = focalPlane.cirsToXy(target.toCirs(focalPlane.date()));
    RC_ASSERT(std::hypot(landed.x - solve.wanted.x, landed.y - solve.wanted.y) <= kPlacementToleranceMm);
}

RC_GTEST_FIXTURE_PROP(FieldCentreSolveProperty, AnotherModelPointedAtTheCentreFoundAgreesToTheBit, ()) {
    const Case solve;
    FocalPlane focalPlane = focalPlaneOf(solve.pointing);
    const Astrometric target = placeInField(solve.pointing.centre);
    focalPlane.setFieldCentre(target, solve.wanted);
    const CIRS apparent = target.toCirs(focalPlane.date());
    const PlateCoordinates landed = focalPlane.cirsToXy(apparent);

    Pointing found = solve.pointing;
    found.centre = focalPlane.fieldCentre();
    const PlateCoordinates again = focalPlaneOf(found).cirsToXy(apparent);
    RC_ASSERT(again.x == landed.x);
    RC_ASSERT(again.y == landed.y);
}
