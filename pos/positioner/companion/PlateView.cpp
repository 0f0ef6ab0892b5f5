#include "PlateView.h"

#include <algorithm>

namespace pos {

PlateView PlateView::around(const std::vector<PlateCoordinates>& places) {
    constexpr double kMargin = 1.13;
    constexpr double kLeast = 0.1; // mm
    const auto [left, right] =
        std::minmax_element(places.begin(), places.end(), [](const auto& a, const auto& b) { return a.x < b.x; });
    const auto [low, high] =
        std::minmax_element(places.begin(), places.end(), [](const auto& a, const auto& b) { return a.y < b.y; });
    const double halfSize = std::max({right->x - left->x, high->y - low->y, kLeast}) / 2;
    return {{(left->x + right->x) / 2, (low->y + high->y) / 2}, halfSize * kMargin};
}

} // namespace pos
