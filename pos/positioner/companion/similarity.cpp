#include "similarity.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>

namespace pos {

namespace {

using Complex = std::complex<double>;

Complex complexOf(Point point) {
    return {point.x, point.y};
}

/** A place from the centroid of all, and how it moved beside them. */
struct Step {
    Complex place;
    Complex moved;
};

} // namespace

Similarity fitSimilarity(const std::vector<PointPair>& pairs) {
    const auto count = static_cast<double>(pairs.size());
    Complex centroid;
    Complex shift;
    for (const auto& [first, second] : pairs) {
        centroid += complexOf(first) / count;
        shift += (complexOf(second) - complexOf(first)) / count;
    }
    // The factor less 1 comes from the differences, which have digits that the places have not.
    std::vector<Step> steps;
    Complex change;
    double squares = 0.0;
    for (const auto& [first, second] : pairs) {
        const Step step{complexOf(first) - centroid, complexOf(second) - complexOf(first) - shift};
        change += std::conj(step.place) * step.moved;
        squares += std::norm(step.place);
        steps.push_back(step);
    }
    const double rounding = count * std::numeric_limits<double>::epsilon() * std::abs(centroid); // of the centroid
    change = squares > count * rounding * rounding ? change / squares : 0.0;
    Similarity fit{{shift.real(), shift.imag()}, std::arg(1.0 + change)};
    // |1 + c|² = 1 + 2 Re c + |c|²: of a small change no digit is lost.
    const double growth = 2 * change.real() + std::norm(change);
    fit.scale = growth / (1 + std::sqrt(1 + growth));
    double sum = 0.0;
    for (const Step& step : steps) {
        const double remains = std::abs(step.moved - change * step.place);
        sum += remains * remains;
        fit.residualMax = std::max(fit.residualMax, remains);
        fit.extent = std::max(fit.extent, std::abs(step.place));
    }
    fit.residualRms = std::sqrt(sum / count);
    fit.extentRms = std::sqrt(squares / count);
    fit.count = count;
    return fit;
}

} // namespace pos
