/**
 * @file
 * A pointing of the bundle's plate that owns all it needs.
 */
#ifndef POS_POINTEDPLATE_H
#define POS_POINTEDPLATE_H

#include "Conditions.h"
#include "LimitsCalc.h"
#include "PosConfig.h"
#include "Telescope.h"
#include "Veko.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace pos {

/** The configuration of a run. @param file its name. @throw what a run throws that cannot read it */
PosConfig openConfig(const std::string& file);

/** The bundle of a configuration and its pointing. All of it is for use within a call of the library. */
class PointedPlate {
public:
    /**
     * Points as a run does.
     *
     * @param configFile name of the configuration
     * @param centre field centre at the date of the conditions
     * @param positionAngle radians
     * @param conditions date and weather
     * @param hourAngle to which the date is moved, radians; nothing to keep the date
     * @throw what a run throws that cannot read the instrument, or cannot reach the hour angle
     */
    PointedPlate(const std::string& configFile, Astrometric centre, double positionAngle, const Conditions& conditions,
                 std::optional<double> hourAngle);

    /** The bundle, with its pointing. */
    const Veko& veko() const {
        return *veko_;
    }

    /** The pointing. */
    const FocalPlane& focalPlane() const {
        return veko_->focalPlane;
    }

    /** Points so that a place falls on a fibre; after a failure the pointing is the one before. Throws as placeVeko. */
    void place(const ICRS& place, std::uint32_t fibre);

    /** The limits of the pointing. @param largestZenithDistance radians */
    LimitsCalc limits(double largestZenithDistance) const;

    /** The name of the configuration, as it was given. */
    const std::string& configFile() const {
        return config_.name();
    }

private:
    PosConfig config_;
    Telescope telescope_;
    std::unique_ptr<Veko> veko_;
};

} // namespace pos

#endif
