/**
 * @file
 * Reading the telescope from the configuration.
 *
 * Here the constructors of FocalPlane and LimitsCalc that take a configuration are defined, too.
 */
#ifndef POS_TELESCOPECONFIG_H
#define POS_TELESCOPECONFIG_H

#include "Telescope.h"

namespace pos {

class PosConfig;

/**
 * The telescope that a configuration describes, angles in degrees there.
 *
 * @param config "telescope.east_longitude", "telescope.latitude", "telescope.height" (m), "telescope.horizon_limit",
 *     "telescope.rotator_offset", "telescope.rotator_low_limit", "telescope.rotator_high_limit",
 *     "telescope.optimum_rotator_angle.plate_a", "telescope.optimum_rotator_angle.plate_b"
 * @throw boost::property_tree::ptree_error for a missing or bad key
 */
Telescope readTelescope(const PosConfig& config);

} // namespace pos

#endif
