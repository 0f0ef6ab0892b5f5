/**
 * @file
 * Whether, and for how long, a pointing can be observed.
 */
#ifndef POS_LIMITSCALC_H
#define POS_LIMITSCALC_H

#include "PlateGeometry.h"
#include "Telescope.h"

#include <utility>

namespace pos {

class FocalPlane;
class PosConfig;

/**
 * Horizon and rotator limits of a pointing.
 *
 * The rotator angle is offset − parallactic angle + position angle. Angles are radians; degrees in the configuration.
 */
class LimitsCalc {
public:
    /**
     * @param telescope latitude, and limits, offset and best angles of the rotator
     * @param focalPlane the pointing, which must outlive this object
     * @param largestZenithDistance the field counts as above the horizon while its observed zenith distance is
     *     smaller, radians
     */
    LimitsCalc(const Telescope& telescope, FocalPlane& focalPlane, double largestZenithDistance);

    /**
     * @param config "telescope.rotator_low_limit", "telescope.rotator_high_limit", "telescope.rotator_offset",
     *     "telescope.optimum_rotator_angle.plate_a", "telescope.optimum_rotator_angle.plate_b", "telescope.latitude"
     * @param focalPlane, largestZenithDistance as above
     * @throw boost::property_tree::ptree_error for a missing or bad key
     */
    LimitsCalc(const PosConfig& config, FocalPlane& focalPlane, double largestZenithDistance);

    /** Whether the field centre is now above the horizon limit; false at the limit itself. */
    bool checkHorizon() const;

    /** The rotator angle that the pointing needs now, radians, in [−π, π]. */
    double rotatorAngle() const;

    /** Whether the rotator angle is now between its limits; false at a limit itself. */
    bool checkRotator() const;

    /**
     * The hour angles around the present one between which the field stays observable.
     *
     * The hour angle H at which the field sets follows from the cosine formula of the triangle pole, zenith, field
     * centre, with the elevation limit h, the observed declination δ and the latitude φ:
     *     cos H = (sin h − sin δ · sin φ) / (cos δ · cos φ).
     * FocalPlane::parallacticToHour(offset − limit − position angle) gives the hour angles at which the rotator reaches
     * a limit; this subtracts the position angle, whereas checkRotator adds it.
     *
     * @return (earliest, latest), radians. (0, 0) for a field that never rises above the horizon limit or is below it
     *     now. Only the rotator limits a field that never sets; then each may lie up to 2π from the present hour angle,
     *     and is NaN where the rotator reaches neither limit.
     */
    std::pair<double, double> hourAngleLimits() const;

    /**
     * Gives the pointing the position angle, a whole multiple of 5 degrees, that brings the rotator nearest to its
     * angle of best image quality: the plate's optimum rotator angle, 0 for VEKO.
     */
    void setPositionAngle(PlateName plate);

private:
    std::pair<double, double> setAndRiseLimits(double horizonHourAngle) const;
    std::pair<double, double> circumpolarLimits() const;
    std::pair<double, double> hourAnglesAtRotator(double limit) const;

    FocalPlane& focalPlane_;
    double largestZenithDistance_;
    Telescope telescope_;
};

/**
 * @throw std::runtime_error "field is below the horizon limit", or else "field position angle is outside the rotator
 *     limits"
 */
void checkLimits(const LimitsCalc& limits);

} // namespace pos

#endif
