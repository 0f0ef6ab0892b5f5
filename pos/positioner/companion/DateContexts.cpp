#include "DateContexts.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace pos {

namespace {

/** As many points are used where there are as many. */
constexpr std::size_t kMostPoints = 12;
constexpr double kLargestSpacing = 0.4; // days
/** At the ends of a span, where the points are on one side, the polynomial needs them closer together. */
constexpr std::size_t kIntervalsForTheEnds = 3;

/** What a context consists of. */
using Numbers = std::array<double, sizeof(eraASTROM) / sizeof(double)>;

/** The weight of one of some equally spaced points in the polynomial through them. @param x with the points at 0, 1, …
 */
double weightAt(double x, std::size_t point, std::size_t points) {
    double numerator = 1.0;
    double denominator = 1.0;
    for (std::size_t other = 0; other < points; ++other) {
        if (other != point) {
            numerator *= x - static_cast<double>(other);
            denominator *= static_cast<double>(point) - static_cast<double>(other);
        }
    }
    return numerator / denominator;
}

} // namespace

DateContexts::DateContexts(double begin, double end) : begin_(begin) {
    const auto intervals = static_cast<std::size_t>(std::ceil((end - begin) / kLargestSpacing)) + kIntervalsForTheEnds;
    spacing_ = (end - begin) / static_cast<double>(intervals);
    nodes_.reserve(intervals + 1);
    for (std::size_t i = 0; i <= intervals; ++i) {
        nodes_.emplace_back(begin + static_cast<double>(i) * spacing_);
    }
}

DateContext DateContexts::at(double mjdTai) const {
    const std::size_t points = std::min(kMostPoints, nodes_.size());
    const double x = (mjdTai - begin_) / spacing_;
    // The instant is in the middle of the points, where there are enough on either side.
    const double middle = std::floor(x - static_cast<double>(points) / 2 + 1);
    const auto start = static_cast<std::size_t>(std::clamp(middle, 0.0, static_cast<double>(nodes_.size() - points)));
    Numbers numbers{};
    for (std::size_t i = 0; i < points; ++i) {
        const double weight = weightAt(x - static_cast<double>(start), i, points);
        const auto node = std::bit_cast<Numbers>(nodes_.at(start + i).astrom);
        for (std::size_t n = 0; n < numbers.size(); ++n) {
            numbers.at(n) += weight * node.at(n);
        }
    }
    DateContext context = nodes_.front();
    context.date = mjdTai;
    context.astrom = std::bit_cast<eraASTROM>(numbers);
    return context;
}

} // namespace pos
