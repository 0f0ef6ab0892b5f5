#include "FocalPlane.h"
#include "LimitsCalc.h"
#include "ProcessWideState.h"
#include "pointings.h"
#include "tolerances.h"

#include <algorithm>
#include <rapidcheck/gtest.h>

using namespace pos;

// Where the limits are exact: without air, because the observed declination, from which the hour angle of the horizon
// follows, is then the same at every hour angle; and at position angle 0, because the limits subtract the position
// angle that the check of the rotator adds. Altitudes and parallactic angles are the library's own, hour by hour.

namespace {

class HourAngleLimitsProperty : public ProcessWideState {};

/** This near to a limit a rounding decides on which side a field is. */
constexpr double kMargin = 1e-6;
/** At so many hour angles between the limits the field is looked at. */
constexpr int kLooks = 100;

double wrapped(double angle) {
    return std::remainder(angle, 2 * kTestPi);
}

/** A field at an hour angle, as seen from a site whose rotator has limits and an offset. */
struct ObservedField {
    Telescope telescope = kTelescope;
    double largestZenithDistance = rad(*between(30.0, 85.0).as("largest zenith distance"));
    double hourAngle = *anyAngle().as("hour angle");
    double dec = rad(*between(-88.0, 88.0).as("dec"));
    double latitude = 0.0;

    ObservedField() {
        telescope = anySite();
        telescope.rotatorOffset = rad(*between(-180.0, 180.0).as("rotator offset"));
        telescope.rotatorLowLimit = rad(*between(-170.0, -10.0).as("rotator low limit"));
        telescope.rotatorHighLimit = rad(*between(10.0, 170.0).as("rotator high limit"));
        latitude = telescope.latitude;
    }
    double altitudeAt(double hour) const {
        double azimuth = 0.0;
        double altitude = 0.0;
        eraHd2ae(hour, dec, latitude, &azimuth, &altitude);
        return altitude;
    }
    double altitudeLimit() const {
        return kTestPi / 2 - largestZenithDistance;
    }
    double rotatorAt(double hour) const {
        return wrapped(telescope.rotatorOffset - eraHd2pa(wrapped(hour), dec, latitude));
    }
    bool rotatorInside(double hour) const {
        const double angle = rotatorAt(hour);
        return telescope.rotatorLowLimit < angle && angle < telescope.rotatorHighLimit;
    }
    double distanceToRotatorLimit(double hour) const {
        const double angle = rotatorAt(hour);
        return std::min(std::fabs(wrapped(angle - telescope.rotatorLowLimit)),
                        std::fabs(wrapped(angle - telescope.rotatorHighLimit)));
    }
    /** The pointing; afterwards hour angle and declination are its own, to the bit. */
    FocalPlane observe() {
        FocalPlane focalPlane = seenAt(hourAngle, dec, telescope);
        hourAngle = focalPlane.hourAngle();
        dec = focalPlane.tangentDec();
        return focalPlane;
    }
    std::pair<double, double> limits(FocalPlane& focalPlane) const {
        return LimitsCalc(telescope, focalPlane, largestZenithDistance).hourAngleLimits();
    }
};

/** A field that rises and sets and is up now. */
ObservedField upAndSetting() {
    const ObservedField field;
    RC_PRE(field.altitudeAt(kTestPi) < field.altitudeLimit() - kMargin);
    RC_PRE(field.altitudeAt(field.hourAngle) > field.altitudeLimit() + kMargin);
    return field;
}

/** A field that passes between zenith and pole, where the rotator takes every angle once a turn, and never sets. */
ObservedField circumpolarBeyondTheZenith() {
    ObservedField field;
    const double latitudeDeg = *between(20.0, 70.0).as("latitude towards the pole");
    const double decDeg = *between(latitudeDeg + 0.5, 89.0).as("dec towards the pole");
    const double hemisphere = *rc::gen::element(1.0, -1.0);
    field.telescope.latitude = rad(hemisphere * latitudeDeg);
    field.latitude = field.telescope.latitude;
    field.dec = rad(hemisphere * decDeg);
    // At its lowest it stands at latitude + dec - 90 degrees.
    field.largestZenithDistance =
        rad(180.0 - latitudeDeg - decDeg + *between(0.01, 40.0).as("degrees above the limit"));
    return field;
}

/** Between two limits the rotator stays inside, or stays outside, as it is now. */
void requireNoLimitBetween(const ObservedField& field, double earliest, double latest) {
    const bool insideNow = field.rotatorInside(field.hourAngle);
    for (int look = 1; look < kLooks; ++look) {
        const double hour = earliest + (latest - earliest) * look / kLooks;
        RC_ASSERT(field.rotatorInside(hour) == insideNow || field.distanceToRotatorLimit(hour) <= kMargin);
    }
}

} // namespace

RC_GTEST_FIXTURE_PROP(HourAngleLimitsProperty, AltitudeOrRotatorReachesItsLimitAtBothEndsAndNotBetween, ()) {
    ObservedField field = upAndSetting();
    FocalPlane focalPlane = field.observe();
    const auto [earliest, latest] = field.limits(focalPlane);
    RC_ASSERT(earliest <= field.hourAngle);
    RC_ASSERT(field.hourAngle <= latest);
    for (const double limit : {earliest, latest}) {
        const double altitudeMiss = std::fabs(field.altitudeAt(limit) - field.altitudeLimit());
        RC_ASSERT(std::min(altitudeMiss, field.distanceToRotatorLimit(limit)) <= kHourOfParallacticAngle);
    }
    requireNoLimitBetween(field, earliest, latest);
    for (int look = 1; look < kLooks; ++look) {
        const double hour = earliest + (latest - earliest) * look / kLooks;
        RC_ASSERT(field.altitudeAt(hour) > field.altitudeLimit() - kHourOfParallacticAngle);
    }
}

RC_GTEST_FIXTURE_PROP(HourAngleLimitsProperty, GoingToALimitOfTheHorizonBringsTheFieldThere, ()) {
    ObservedField field = upAndSetting();
    FocalPlane focalPlane = field.observe();
    const auto [earliest, latest] = field.limits(focalPlane);
    for (const double limit : {earliest, latest}) {
        if (std::fabs(field.altitudeAt(limit) - field.altitudeLimit()) <= kHourOfParallacticAngle) {
            focalPlane.setHourAngle(limit);
            RC_ASSERT(std::fabs(focalPlane.zenithDistance() - field.largestZenithDistance) <= kAltitudeAtALimit);
        }
    }
}

RC_GTEST_FIXTURE_PROP(HourAngleLimitsProperty, AFieldBelowTheAltitudeLimitHasNone, ()) {
    ObservedField field;
    RC_PRE(field.altitudeAt(field.hourAngle) < field.altitudeLimit() - kMargin);
    FocalPlane focalPlane = field.observe();
    RC_ASSERT(field.limits(focalPlane) == std::make_pair(0.0, 0.0));
}

RC_GTEST_FIXTURE_PROP(HourAngleLimitsProperty, BeyondTheZenithACircumpolarFieldIsLimitedByTheRotatorAlone, ()) {
    ObservedField field = circumpolarBeyondTheZenith();
    FocalPlane focalPlane = field.observe();
    const auto [earliest, latest] = field.limits(focalPlane);
    RC_ASSERT(earliest <= field.hourAngle);
    RC_ASSERT(field.hourAngle <= latest);
    RC_ASSERT(latest - earliest <= 2 * kTestPi + kAngleTolerance);
    RC_ASSERT(field.distanceToRotatorLimit(earliest) <= kHourOfParallacticAngle);
    RC_ASSERT(field.distanceToRotatorLimit(latest) <= kHourOfParallacticAngle);
    requireNoLimitBetween(field, earliest, latest);
}

RC_GTEST_FIXTURE_PROP(HourAngleLimitsProperty, TheChecksTellWhatTheSkyShows, ()) {
    ObservedField field;
    FocalPlane focalPlane = field.observe();
    const LimitsCalc limits(field.telescope, focalPlane, field.largestZenithDistance);
    RC_PRE(std::fabs(field.altitudeAt(field.hourAngle) - field.altitudeLimit()) > kMargin);
    RC_PRE(field.distanceToRotatorLimit(field.hourAngle) > kMargin);
    RC_ASSERT(limits.checkHorizon() == (field.altitudeAt(field.hourAngle) > field.altitudeLimit()));
    RC_ASSERT(limits.checkRotator() == field.rotatorInside(field.hourAngle));
}

RC_GTEST_FIXTURE_PROP(HourAngleLimitsProperty, APositionAngleForVekoBringsTheRotatorWithinHalfAStepOfZero, ()) {
    ObservedField field;
    FocalPlane focalPlane = field.observe();
    LimitsCalc(field.telescope, focalPlane, field.largestZenithDistance).setPositionAngle(VEKO);
    const double angle = wrapped(field.rotatorAt(field.hourAngle) + focalPlane.positionAngle());
    RC_ASSERT(std::fabs(angle) <= rad(2.5) + kHourOfParallacticAngle);
    const double steps = focalPlane.positionAngle() / rad(5.0);
    RC_ASSERT(std::fabs(steps - std::round(steps)) <= kHourOfParallacticAngle);
}
