#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "angles.h"
#include "pointings.h"
#include "tolerances.h"

#include <rapidcheck/gtest.h>

using namespace pos;

namespace {

class WrapProperty : public ProcessWideState {};

constexpr double kTurn = 2 * kTestPi;

/** Odd multiples of half a turn and what lies within a few hundred doubles of them. */
rc::Gen<double> nearHalfTurns() {
    return rc::gen::map(rc::gen::pair(wholeBetween(-50, 49), wholeBetween(-300, 300)),
                        [](const std::pair<std::int64_t, std::int64_t>& pair) {
                            double angle = static_cast<double>(2 * pair.first + 1) * kTestPi;
                            for (std::int64_t step = 0; step < std::abs(pair.second); ++step) {
                                angle = std::nextafter(angle, pair.second < 0 ? -1e9 : 1e9);
                            }
                            return angle;
                        });
}

rc::Gen<double> anyTurns() {
    return rc::gen::oneOf(nearHalfTurns(), between(-1e3, 1e3), between(-1e12, 1e12));
}

/** The IEEE remainder is exact. At exactly half a turn its sign is that of an even quotient; a wrap keeps the angle's.
 */
double remainderOfTurn(double angle) {
    const double rest = std::remainder(angle, kTurn);
    return std::fabs(rest) == kTestPi ? std::copysign(kTestPi, angle) : rest;
}

} // namespace

RC_GTEST_PROP(WrapAngleProperty, IsTheExactRemainderOfATurn, ()) {
    const double angle = *anyTurns().as("angle");
    RC_ASSERT(wrapAngle(angle) == remainderOfTurn(angle));
}

RC_GTEST_FIXTURE_PROP(WrapProperty, PositionAnglesAroundHalfATurnAreKeptWrapped, ()) {
    FocalPlane focalPlane = focalPlaneOf(anyPointing(false));
    const double angle = *nearHalfTurns().as("angle");
    focalPlane.setFieldCentre(focalPlane.fieldCentre(), angle);
    RC_ASSERT(focalPlane.positionAngle() == remainderOfTurn(angle));
}

RC_GTEST_FIXTURE_PROP(WrapProperty, HourAnglesAreReachedByTheShorterWay, ()) {
    const double before = *anyAngle().as("hour angle before");
    FocalPlane focalPlane = seenAt(before, rad(*between(-80.0, 80.0).as("dec")), anySite());
    const double date = focalPlane.date();
    const double wanted = *rc::gen::oneOf(anyAngle(), nearHalfTurns()).as("wanted");
    const double turns = std::fabs(std::remainder(wanted - before, kTurn)) / kTurn;
    focalPlane.setHourAngle(wanted);
    RC_ASSERT(std::fabs(focalPlane.hourAngle()) <= kTestPi);
    RC_ASSERT(std::fabs(std::remainder(focalPlane.hourAngle() - wanted, kTurn)) <= kSecondOfTime);
    // A sidereal turn takes 0.99727 days. Aberration and precession of a day change an hour angle by seconds of arc,
    // some ten times as many near the poles.
    RC_ASSERT(std::fabs(std::fabs(focalPlane.date() - date) - turns * 0.997269566) <= kHourAngleDays);
}

RC_GTEST_FIXTURE_PROP(WrapProperty, FullTurnsOfRightAscensionMoveNothingOnThePlate, ()) {
    Pointing pointing = anyPointing(false);
    // A field through which the origin of right ascension passes, whether or not it is above the horizon.
    pointing.centre = {*between(-1e-3, 1e-3).as("ra"), rad(*between(-80.0, 80.0).as("dec"))};
    const double date = pointing.conditions.epoch;
    const Astrometric place = placeInField(pointing.centre);
    const FocalPlane focalPlane = focalPlaneOf(pointing);
    const PlateCoordinates once = focalPlane.cirsToXy(place.toCirs(date));
    const Astrometric turned{place.ra < kTestPi ? place.ra + kTurn : place.ra - kTurn, place.dec};
    const PlateCoordinates again = focalPlane.cirsToXy(turned.toCirs(date));
    RC_ASSERT(std::hypot(again.x - once.x, again.y - once.y) <= kRoundTripPlateMm);
    RC_ASSERT(place.toCirs(date).ra >= 0.0);
    RC_ASSERT(place.toCirs(date).ra < kTurn);
    pointing.centre.ra += kTurn;
    const PlateCoordinates fromTurned = focalPlaneOf(pointing).cirsToXy(place.toCirs(date));
    RC_ASSERT(std::hypot(fromTurned.x - once.x, fromTurned.y - once.y) <= kRoundTripPlateMm);
}
