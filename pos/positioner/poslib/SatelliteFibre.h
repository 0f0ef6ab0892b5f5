/**
 * @file
 * A fibre at a fixed offset from the centre of a bundle.
 */
#ifndef POS_SATELLITEFIBRE_H
#define POS_SATELLITEFIBRE_H

#include "FibreStatus.h"
#include "PlateCoordinates.h"

#include <cmath>
#include <cstdint>

namespace pos {

/**
 * A fibre of a bundle.
 *
 * @tparam T the bundle's centre, with members x and y (plate mm) and orientation (radians)
 */
template <typename T> struct SatelliteFibre {
    std::uint64_t flags = 0;                   ///< zero; kept for the layout of the record
    std::uint32_t id = 0;                      ///< fibre identifier
    const T* centre = nullptr;                 ///< not owned; the fibre follows a change of centre or orientation
    double dx = 0.0;                           ///< offset from the centre before orientation, mm
    double dy = 0.0;                           ///< offset from the centre before orientation, mm
    FibreStatus status = FibreStatus::Enabled; ///< whether, and why not, the fibre can be used

    /** Where the fibre is on the plate: its offset turned by the orientation and moved to the centre, mm. */
    PlateCoordinates platePosition() const {
        const double cosine = std::cos(centre->orientation);
        const double sine = std::sin(centre->orientation);
        return {centre->x + dx * cosine - dy * sine, centre->y + dx * sine + dy * cosine};
    }
};

} // namespace pos

#endif
