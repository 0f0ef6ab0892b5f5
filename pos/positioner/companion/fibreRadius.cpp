#include "fibreRadius.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <erfa.h>
#include <limits>

namespace pos {

namespace {

/** How far a fibre is on the sky from its nearest neighbour on the plate, radians; 0 for one that has none. */
double distanceToNearest(const FibrePlace& fibre, const std::vector<FibrePlace>& places) {
    const FibrePlace* nearest = &fibre;
    double least = std::numeric_limits<double>::infinity();
    for (const FibrePlace& other : places) {
        const double distance = std::hypot(other.plate.x - fibre.plate.x, other.plate.y - fibre.plate.y);
        if (distance > 0 && distance < least) { // a fibre that stands twice is no neighbour of itself
            least = distance;
            nearest = &other;
        }
    }
    return eraSeps(fibre.sky.ra, fibre.sky.dec, nearest->sky.ra, nearest->sky.dec);
}

} // namespace

std::optional<double> fibreRadius(const std::vector<FibrePlace>& places) {
    constexpr std::size_t kEnough = 1000; // more than any bundle has: the work grows with the square
    std::vector<double> distances;
    for (std::size_t i = 0; i < std::min(places.size(), kEnough); ++i) {
        const double distance = distanceToNearest(places[i], places);
        if (distance > 0) { // and is a number
            distances.push_back(distance);
        }
    }
    if (distances.empty()) {
        return std::nullopt;
    }
    const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
    std::nth_element(distances.begin(), middle, distances.end());
    return *middle / 2;
}

} // namespace pos
