#include "fibreRadius.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <erfa.h>
#include <limits>

namespace pos {

namespace {

/** How far a fibre is on the sky from its nearest neighbour on the plate, radians. @param byX in the order of x */
double distanceToNearest(std::size_t own, const std::vector<FibrePlace>& byX) {
    const FibrePlace& fibre = byX[own];
    const FibrePlace* nearest = &fibre;
    double least = std::numeric_limits<double>::infinity();
    const auto isNearer = [&](const FibrePlace& other) {
        const double distance = std::hypot(other.plate.x - fibre.plate.x, other.plate.y - fibre.plate.y);
        if (distance < least) {
            least = distance;
            nearest = &other;
        }
        return std::fabs(other.plate.x - fibre.plate.x) < least;
    };
    for (std::size_t i = own; i > 0 && isNearer(byX[i - 1]); --i) {
    }
    for (std::size_t i = own + 1; i < byX.size() && isNearer(byX[i]); ++i) {
    }
    return eraSeps(fibre.sky.ra, fibre.sky.dec, nearest->sky.ra, nearest->sky.dec);
}

} // namespace

std::optional<double> fibreRadius(std::vector<FibrePlace> places) {
    std::erase_if(places, [](const FibrePlace& fibre) {
        return !std::isfinite(fibre.plate.x + fibre.plate.y + fibre.sky.ra + fibre.sky.dec);
    });
    if (places.size() < 2) {
        return std::nullopt;
    }
    std::sort(places.begin(), places.end(),
              [](const FibrePlace& one, const FibrePlace& other) { return one.plate.x < other.plate.x; });
    std::vector<double> distances;
    for (std::size_t i = 0; i < places.size(); ++i) {
        distances.push_back(distanceToNearest(i, places));
    }
    const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
    std::nth_element(distances.begin(), middle, distances.end());
    return *middle / 2;
}

} // namespace pos
