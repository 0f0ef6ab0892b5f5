/**
 * @file
 * What moves a set of places onto another one.
 */
#ifndef POS_SIMILARITY_H
#define POS_SIMILARITY_H

#include <utility>
#include <vector>

namespace pos {

/** A place, or a step, in a plane: x to the right, y up, in any unit. */
struct Point {
    double x = 0.0;
    double y = 0.0;
};

/** A place, and the one that it moved to. */
using PointPair = std::pair<Point, Point>;

/** A shift, a turn and a scale about the centroid of the first places, and what they leave. */
struct Similarity {
    Point shift = {};
    double rotation = 0.0;    ///< from x to y, radians, in [−π, π]
    double scale = 0.0;       ///< less 1
    double residualRms = 0.0; ///< root mean square of the distances that remain
    double residualMax = 0.0; ///< the largest of these distances
    double extent = 0.0;      ///< the largest distance of a first place from the centroid
    double extentRms = 0.0;   ///< root mean square of these distances
    double count = 0.0;       ///< of the places
};

/**
 * The similarity that brings places nearest to others, by least squares, all weighted equally. The shift is that of the
 * centroid; turn and scale are argument and magnitude of the complex factor Σ conj(p) q / Σ |p|², with p and q counted
 * from the centroids of the first and of the second places. They are 0 where the first places all coincide.
 *
 * @param pairs at least one
 */
Similarity fitSimilarity(const std::vector<PointPair>& pairs);

} // namespace pos

#endif
