/**
 * @file
 * How far targets are apart in two documents, and what moved them.
 */
#ifndef POS_MOVEDFIBRES_H
#define POS_MOVEDFIBRES_H

#include "CelestialPosition.h"
#include "similarity.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pos {

/** A target in both documents. Where one of them has no place for it, there is none here. */
struct MovedTarget {
    std::string name;                                       ///< as nameOfTarget
    std::int64_t fibre = 0;                                 ///< without a sign; 0 for none
    std::optional<PointPair> plate;                         ///< mm
    std::optional<std::pair<Astrometric, Astrometric>> sky; ///< radians
};

/** The distances between the places of many targets. */
struct Distances {
    double greatest = 0.0;
    double rms = 0.0;  ///< root mean square
    int moved = 0;     ///< how many are larger than the tolerance
    MovedTarget worst; ///< the one of the greatest distance
};

/** How far two places are apart, radians; 0 where only rounding tells them apart, NaN for a place of NaN. */
double skySeparation(Astrometric a, Astrometric b);

/** Whether a distance is no larger than a tolerance, but for the rounding of places; NaN is larger. */
bool isWithin(double distance, double tolerance);

/** The distances and the tolerance on the plate, mm; nothing where no target has a place there in both. */
std::optional<Distances> plateDistances(const std::vector<MovedTarget>& targets, double tolerance = 0.0);

/** The distances and the tolerance on the sky, radians; nothing as above. */
std::optional<Distances> skyDistances(const std::vector<MovedTarget>& targets, double tolerance = 0.0);

/** What moved targets on the plate, mm; nothing as above. */
std::optional<Similarity> plateFit(const std::vector<MovedTarget>& targets);

/** The places on the plate, mm. */
std::vector<PointPair> platePairs(const std::vector<MovedTarget>& targets);

/**
 * The places on the sky in the tangent plane about the middle of the first ones: x to the north and y to the east,
 * radians. Places that only rounding tells apart are the same. Nothing where a place is a right angle from there.
 */
std::optional<std::vector<PointPair>> skyPairs(const std::vector<MovedTarget>& targets);

/**
 * What moved targets on the sky: x to the north and y to the east, radians, so that a turn goes from north through
 * east. The shift is the great circle between the middles of the first and of the second places. Turn and scale compare
 * the tangent planes there, the second one carried back along that circle. Nothing as above, and for places a right
 * angle from their middle.
 */
std::optional<Similarity> skyFit(const std::vector<MovedTarget>& targets);

} // namespace pos

#endif
