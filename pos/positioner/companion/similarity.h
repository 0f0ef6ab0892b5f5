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

/** A shift, a turn and a scale about the centroid of the first places, and what they leave. */
struct Similarity {
    Point centroid = {};
    Point shift = {};
    double rotation = 0.0;    ///< counter-clockwise, radians, in [−π, π]
    double scale = 0.0;       ///< less 1
    double residualRms = 0.0; ///< root mean square of the distances that remain
    double residualMax = 0.0; ///< the largest of these distances
    double extent = 0.0;      ///< the largest distance of a first place from the centroid
};

/**
 * The similarity that brings places nearest to others, by least squares, all weighted equally. The shift is that of the
 * centroid; turn and scale are those of the complex factor Σ conj(p) q / Σ |p|², with p and q counted from the
 * centroids. They are 0 where the first places all coincide.
 *
 * @param pairs places, each with the one that it moved to; at least one
 */
Similarity fitSimilarity(const std::vector<std::pair<Point, Point>>& pairs);

} // namespace pos

#endif
