/**
 * @file
 * The instrument of a configuration, for one document after the other.
 */
#ifndef POS_INSTRUMENT_H
#define POS_INSTRUMENT_H

#include "FibreTargets.h"
#include "Telescope.h"
#include "Veko.h"

#include <memory>
#include <optional>
#include <utility>

namespace pos {

class Field;
class LimitsCalc;
class PosConfig;

/** The telescope and the bundle that a configuration describes. Each file is read once, when it is first needed. */
class Instrument {
public:
    /** @param config must outlive this object */
    explicit Instrument(const PosConfig& config) : config_(config) {}

    /** The configuration. */
    const PosConfig& config() const {
        return config_;
    }

    /**
     * The bundle, pointed at a field at position angle 0, its optical model and plates in force.
     *
     * @return the bundle; the next call points it anew
     * @throw what createVekoXML throws, for the definition that the configuration names at "veko_definition"
     */
    Veko& pointedVeko(const Field& field, const Conditions& conditions);

    /** The bundle's fibres by identifier; null as long as no bundle has been read. */
    const std::map<std::uint32_t, SatelliteFibre<Veko::VekoCentre>>* fibres() const {
        return veko_ ? &veko_->fibres : nullptr;
    }

    /** The targets of the bundle's fibres. @throw boost::property_tree::ptree_error for a bad "default_epoch" */
    const FibreTargets& fibreTargets();

    /** As FibreTargets::requirePlaces, which depends on nothing but position angle and fibre, once for each in turn. */
    void requirePlaces(std::uint32_t scienceFibre);

    /**
     * The limits of the bundle's pointing.
     *
     * @param largestZenithDistance radians
     * @throw boost::property_tree::ptree_error for a missing or bad key
     */
    LimitsCalc limits(double largestZenithDistance);

private:
    const PosConfig& config_;
    std::unique_ptr<Veko> veko_;
    std::optional<FibreTargets> fibreTargets_;
    /** The rotation, radians, and the science fibre with which all others have been found to have a place. */
    std::optional<std::pair<double, std::uint32_t>> placed_;
    std::optional<Telescope> telescope_;
    std::optional<FocalPlane> start_; ///< the pointing with which a document begins: its date is often the next one's
};

} // namespace pos

#endif
