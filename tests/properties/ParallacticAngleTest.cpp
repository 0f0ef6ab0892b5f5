#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "pointings.h"
#include "tolerances.h"

#include <rapidcheck/gtest.h>

using namespace pos;

namespace {

class ParallacticAngleProperty : public ProcessWideState {};

/** A field of any declination that is not within half a degree of the site's zenith, where the angle jumps. */
struct FieldOfSite {
    Telescope telescope = anySite();
    double dec = rad(*between(-89.0, 89.0).as("dec"));
    double latitude = telescope.latitude;

    FieldOfSite() {
        RC_PRE(std::fabs(dec - latitude) > rad(0.5));
    }
    FocalPlane focalPlane() const {
        return seenAt(0.5, dec, telescope);
    }
};

double angleBetween(double a, double b) {
    return std::fabs(std::remainder(a - b, 2 * kTestPi));
}

} // namespace

RC_GTEST_FIXTURE_PROP(ParallacticAngleProperty, EveryHourAngleFoundHasTheAngle, ()) {
    const FieldOfSite field;
    const FocalPlane focalPlane = field.focalPlane();
    const double q = *rc::gen::oneOf(anyAngle(), between(kTestPi - 1e-6, kTestPi - 1e-9), between(-1e-6, -1e-9),
                                     between(-3 * kTestPi, 3 * kTestPi))
                          .as("parallactic angle");
    const auto [first, second] = focalPlane.parallacticToHour(q);
    for (const double hourAngle : {first, second}) {
        if (!std::isnan(hourAngle)) {
            RC_ASSERT(std::fabs(hourAngle) <= kTestPi);
            RC_ASSERT(angleBetween(eraHd2pa(hourAngle, focalPlane.tangentDec(), field.latitude), q) <=
                      kHourOfParallacticAngle);
        }
    }
    RC_ASSERT(std::isnan(second) || first <= second);
}

// Together with the property above: what is found is all that there is.
RC_GTEST_FIXTURE_PROP(ParallacticAngleProperty, EveryHourAngleIsFoundFromItsAngle, ()) {
    const FieldOfSite field;
    const FocalPlane focalPlane = field.focalPlane();
    const double hourAngle = *between(-kTestPi, kTestPi).as("hour angle");
    // On the meridian itself the angle is 0 or half a turn, and the answer one of fixed values.
    RC_PRE(std::fabs(std::sin(hourAngle)) > 1e-6);
    const double q = eraHd2pa(hourAngle, focalPlane.tangentDec(), field.latitude);
    const auto [first, second] = focalPlane.parallacticToHour(q);
    RC_ASSERT(std::fabs(first - hourAngle) <= kHourAtGreatestAngle ||
              std::fabs(second - hourAngle) <= kHourAtGreatestAngle);
}
