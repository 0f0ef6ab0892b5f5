#include "ProcessWideState.h"
#include "pointings.h"
#include "tolerances.h"

#include <rapidcheck/gtest.h>

using namespace pos;

namespace {

class SkyPlateProperty : public ProcessWideState {};

/** Beyond the edge of the field of one degree, mm. */
constexpr double kPlateRadiusMm = 206.0;

} // namespace

// Refraction is the one step that the library undoes with an approximation. Without air every step has an exact inverse
// or one that is iterated to the end.
RC_GTEST_FIXTURE_PROP(SkyPlateProperty, SkyToPlateToSkyRoundTripsWithoutAir, ()) {
    const Pointing pointing = anyPointing(true);
    const double date = pointing.conditions.epoch;
    const FocalPlane focalPlane = focalPlaneOf(pointing);
    const Astrometric place = placeInField(pointing.centre);
    const CIRS apparent = place.toCirs(date);
    const CIRS back = focalPlane.xyToCirs(focalPlane.cirsToXy(apparent));
    RC_ASSERT(separation(back, apparent) <= kRoundTripSky);
    RC_ASSERT(separation(back.toAstrometric(date), place) <= kRoundTripSky);
}

RC_GTEST_FIXTURE_PROP(SkyPlateProperty, PlateToSkyToPlateRoundTripsWithoutAir, ()) {
    const Pointing pointing = anyPointing(true);
    const double date = pointing.conditions.epoch;
    const FocalPlane focalPlane = focalPlaneOf(pointing);
    const auto [dx, dy] = inDisc(kPlateRadiusMm);
    const PlateCoordinates position(pointing.plate.x0 + dx, pointing.plate.y0 + dy);
    const CIRS apparent = focalPlane.xyToCirs(position);
    const PlateCoordinates back = focalPlane.cirsToXy(apparent);
    RC_ASSERT(std::hypot(back.x - position.x, back.y - position.y) <= kRoundTripPlateMm);
    const PlateCoordinates further = focalPlane.cirsToXy(apparent.toAstrometric(date).toCirs(date));
    RC_ASSERT(std::hypot(further.x - position.x, further.y - position.y) <= kRoundTripPlateMm);
}

RC_GTEST_FIXTURE_PROP(SkyPlateProperty, WithAirTheRoundTripMissesByWhatTheLibraryMisses, ()) {
    const Pointing pointing = anyPointing(false);
    const FocalPlane focalPlane = focalPlaneOf(pointing);
    const CIRS apparent = placeInField(pointing.centre).toCirs(pointing.conditions.epoch);
    const CIRS back = focalPlane.xyToCirs(focalPlane.cirsToXy(apparent));

    // To the observed place and back, without plate or tangent plane.
    eraASTROM context = libraryContext(pointing.conditions, pointing.telescope);
    const ObservedPlace seen = libraryObserved(apparent, context);
    CIRS libraryBack{};
    eraAtoiq("R", seen.ra, seen.dec, &context, &libraryBack.ra, &libraryBack.dec);
    RC_ASSERT(separation(back, libraryBack) <= kRoundTripSky);
}

RC_GTEST_FIXTURE_PROP(SkyPlateProperty, TheFieldCentreLiesWhereTheOpticalAxisMeetsThePlate, ()) {
    const Pointing pointing = anyPointing(false);
    const FocalPlane focalPlane = focalPlaneOf(pointing);
    const PlateCoordinates centre = focalPlane.cirsToXy(pointing.centre.toCirs(pointing.conditions.epoch));
    RC_ASSERT(std::hypot(centre.x - pointing.plate.x0, centre.y - pointing.plate.y0) <= kRoundTripPlateMm);
}

RC_GTEST_FIXTURE_PROP(SkyPlateProperty, ThePositionAngleTurnsThePlateAboutItsAxis, ()) {
    Pointing pointing = anyPointing(false);
    const CIRS apparent = placeInField(pointing.centre).toCirs(pointing.conditions.epoch);
    const double turn = pointing.positionAngle;
    pointing.positionAngle = 0.0;
    const PlateCoordinates north = focalPlaneOf(pointing).cirsToXy(apparent);
    pointing.positionAngle = turn;
    const PlateCoordinates turned = focalPlaneOf(pointing).cirsToXy(apparent);

    const double x = north.x - pointing.plate.x0;
    const double y = north.y - pointing.plate.y0;
    // North, which lies at positive y, goes towards positive x as the angle grows.
    RC_ASSERT(std::fabs(turned.x - pointing.plate.x0 - (std::cos(turn) * x + std::sin(turn) * y)) <= kPlateToleranceMm);
    RC_ASSERT(std::fabs(turned.y - pointing.plate.y0 - (std::cos(turn) * y - std::sin(turn) * x)) <= kPlateToleranceMm);
}

RC_GTEST_FIXTURE_PROP(SkyPlateProperty, ApparentAndAstrometricPlaceAreInverseOverTheWholeSky, ()) {
    const double date = *between(51545.0, 66000.0).as("MJD");
    // Even over the sphere, so that few come near a pole, and some do.
    const Astrometric place{*between(0.0, 2 * kTestPi).as("ra"), std::asin(*between(-1.0, 1.0).as("sine of dec"))};
    RC_ASSERT(separation(place.toCirs(date).toAstrometric(date), place) <= kRoundTripSky);
}
