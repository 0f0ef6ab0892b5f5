#include "FocalPlaneCoordinates.h"
#include "PlateCoordinates.h"
#include "ProcessWideState.h"
#include "generators.h"
#include "tolerances.h"

#include <rapidcheck/gtest.h>

using namespace pos;

namespace {

class OpticsProperty : public ProcessWideState {};

/** A point of the tangent plane within one degree of the axis. */
StandardCoordinates anyPoint() {
    const auto [xi, eta] = inDisc(rad(1.0));
    return {xi, eta};
}

/** Another telescope: focal length in use within a tenth of the nominal one, a distortion that stays monotonic. */
void setAnyModel() {
    FocalPlaneCoordinates::setFocalLength(*between(10500.0, 13000.0).as("focal length"));
    FocalPlaneCoordinates::setDistortion(*between(180.0, 220.0).as("c1"), *between(-5.0, 5.0).as("c3"),
                                         *between(-0.5, 0.5).as("c5"));
    FocalPlaneCoordinates::setRotation(*between(-20.0, 20.0).as("rotation"));
}

} // namespace

RC_GTEST_FIXTURE_PROP(OpticsProperty, TangentPlaneToFocalPlaneAndBackRoundTrips, ()) {
    setAnyModel();
    const StandardCoordinates point = anyPoint();
    const auto back = static_cast<StandardCoordinates>(FocalPlaneCoordinates(point));
    RC_ASSERT(std::hypot(back.xi - point.xi, back.eta - point.eta) <= kFieldAngleTolerance);
}

RC_GTEST_FIXTURE_PROP(OpticsProperty, RadiusFollowsThePolynomialWhateverTheRotation, ()) {
    setAnyModel();
    const FocalPlaneCoordinates::params model = FocalPlaneCoordinates::save();
    const StandardCoordinates point = anyPoint();
    const FocalPlaneCoordinates place(point);
    const double thetaDeg = std::hypot(point.xi, point.eta) * 180 / kTestPi;
    const double radius = (model.c1 * thetaDeg + model.c3 * std::pow(thetaDeg, 3) + model.c5 * std::pow(thetaDeg, 5)) *
                          (model.focalLength / 11724.24);
    RC_ASSERT(std::fabs(std::hypot(place.x, place.y) - radius) <= kPlateToleranceMm);
}

RC_GTEST_FIXTURE_PROP(OpticsProperty, RestoringWhatWasSavedBringsTheModelBackToTheBit, ()) {
    setAnyModel();
    const StandardCoordinates point = anyPoint();
    const FocalPlaneCoordinates before(point);
    const FocalPlaneCoordinates::params saved = FocalPlaneCoordinates::save();
    FocalPlaneCoordinates::setFocalLength(*between(5000.0, 20000.0).as("another focal length"));
    FocalPlaneCoordinates::setDistortion(*between(100.0, 300.0).as("another c1"), 1.5, -0.25);
    FocalPlaneCoordinates::restore(saved);
    const FocalPlaneCoordinates::params restored = FocalPlaneCoordinates::save();
    RC_ASSERT(restored.focalLength == saved.focalLength);
    RC_ASSERT(restored.c1 == saved.c1);
    RC_ASSERT(restored.c3 == saved.c3);
    RC_ASSERT(restored.c5 == saved.c5);
    const FocalPlaneCoordinates after(point);
    RC_ASSERT(after.x == before.x);
    RC_ASSERT(after.y == before.y);
}

RC_GTEST_FIXTURE_PROP(OpticsProperty, FocalPlaneToPlateAndBackRoundTrips, ()) {
    const auto plate = static_cast<PlateName>(*wholeBetween(0, 2).as("plate"));
    PlateCoordinates::setPlate(plate);
    PlateCoordinates::setPlatePosition(*between(-50.0, 50.0).as("x0"), *between(-50.0, 50.0).as("y0"),
                                       *between(-20.0, 20.0).as("r0"));
    PlateCoordinates::setPlate(plate);
    const FocalPlaneCoordinates place(*between(-250.0, 250.0).as("x"), *between(-250.0, 250.0).as("y"));
    const PlateCoordinates position(place);
    const auto back = static_cast<FocalPlaneCoordinates>(position);
    RC_ASSERT(std::hypot(back.x - place.x, back.y - place.y) <= kPlateToleranceMm);
    // A plate is shifted and turned, not stretched.
    const OpticalAxis axis = PlateCoordinates::opticalAxis(plate);
    RC_ASSERT(std::fabs(std::hypot(position.x - axis.x0, position.y - axis.y0) - std::hypot(place.x, place.y)) <=
              kPlateToleranceMm);
}
