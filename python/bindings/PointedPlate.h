/**
 * @file
 * A pointing of the bundle's plate that owns all it needs.
 */
#ifndef POS_POINTEDPLATE_H
#define POS_POINTEDPLATE_H

#include "Conditions.h"
#include "LimitsCalc.h"
#include "Telescope.h"
#include "Veko.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace pos {

class PosConfig;

/** The bundle of a configuration and its pointing, a value. All of it is for use within a call of the library. */
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

    /** The bundle. */
    const Veko& bundle() const {
        return *bundle_;
    }

    /** The pointing. */
    const FocalPlane& pointing() const {
        return pointing_;
    }

    /** Points so that a place falls on a fibre; after a failure the pointing is the one before. Throws as placeVeko. */
    void place(const ICRS& place, std::uint32_t fibre);

    /** The limits of the pointing. @param largestZenithDistance radians */
    LimitsCalc limits(double largestZenithDistance);

    /** The name of the configuration, which no change of folder affects. */
    const std::string& configFile() const {
        return configFile_;
    }

private:
    PointedPlate(const PosConfig& config, Astrometric centre, double positionAngle, const Conditions& conditions,
                 std::optional<double> hourAngle);

    std::string configFile_;
    Telescope telescope_;
    std::shared_ptr<Veko> bundle_; ///< one for all copies, each of which has its own pointing
    FocalPlane pointing_;
};

} // namespace pos

#endif
