/**
 * @file
 * How large fibres are on the sky.
 */
#ifndef POS_FIBRERADIUS_H
#define POS_FIBRERADIUS_H

#include "CelestialPosition.h"
#include "PlateCoordinates.h"

#include <optional>
#include <vector>

namespace pos {

/** A fibre on the plate, mm, and on the sky. */
struct FibrePlace {
    PlateCoordinates plate;
    Astrometric sky;
};

/**
 * The radius of the fibres of a field on the sky, radians. The definition of the bundle does not tell it: it is half
 * the distance between neighbours, the middle one of all such distances; nothing where no two fibres have places of
 * their own.
 */
std::optional<double> fibreRadius(const std::vector<FibrePlace>& places);

} // namespace pos

#endif
