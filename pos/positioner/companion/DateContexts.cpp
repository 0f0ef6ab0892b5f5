#include "DateContexts.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace pos {

namespace {

constexpr std::size_t kPoints = 4;
constexpr double kLargestSpacing = 0.5; // days

/** What a context consists of. */
using Numbers = std::array<double, sizeof(eraASTROM) / sizeof(double)>;

/** The weights of equally spaced points in the polynomial through them (Lagrange). @param x with the points at 0, 1, …
 */
std::array<double, kPoints> weightsAt(double x) {
    std::array<double, kPoints> weights{};
    for (std::size_t i = 0; i < kPoints; ++i) {
        weights.at(i) = 1.0;
        for (std::size_t j = 0; j < kPoints; ++j) {
            if (j != i) {
                weights.at(i) *= (x - static_cast<double>(j)) / (static_cast<double>(i) - static_cast<double>(j));
            }
        }
    }
    return weights;
}

} // namespace

DateContexts::DateContexts(double begin, double end) : begin_(begin) {
    const auto intervals = std::max(kPoints - 1, static_cast<std::size_t>(std::ceil((end - begin) / kLargestSpacing)));
    spacing_ = (end - begin) / static_cast<double>(intervals);
    nodes_.reserve(intervals + 1);
    for (std::size_t i = 0; i <= intervals; ++i) {
        nodes_.emplace_back(begin + static_cast<double>(i) * spacing_);
    }
}

DateContext DateContexts::at(double mjdTai) const {
    const double x = (mjdTai - begin_) / spacing_;
    const double lastStart = static_cast<double>(nodes_.size() - kPoints);
    const double start = std::clamp(std::floor(x) - 1, 0.0, lastStart); // in the middle of the points, where there are
    const std::array<double, kPoints> weights = weightsAt(x - start);
    Numbers numbers{};
    for (std::size_t i = 0; i < kPoints; ++i) {
        const auto node = std::bit_cast<Numbers>(nodes_.at(static_cast<std::size_t>(start) + i).astrom);
        for (std::size_t n = 0; n < numbers.size(); ++n) {
            numbers.at(n) += weights.at(i) * node.at(n);
        }
    }
    DateContext context = nodes_.front();
    context.date = mjdTai;
    context.astrom = std::bit_cast<eraASTROM>(numbers);
    return context;
}

} // namespace pos
