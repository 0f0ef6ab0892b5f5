#include "similarity.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace pos {

namespace {

using Complex = std::complex<double>;

Complex complexOf(Point point) {
    return {point.x, point.y};
}

} // namespace

Similarity fitSimilarity(const std::vector<std::pair<Point, Point>>& pairs) {
    const auto count = static_cast<double>(pairs.size());
    Complex centroid;
    Complex shift;
    for (const auto& [first, second] : pairs) {
        centroid += complexOf(first) / count;
        shift += (complexOf(second) - complexOf(first)) / count;
    }
    // What the differences have in common with the places keeps the digits that the places themselves have not.
    Complex change;
    double extent = 0.0;
    for (const auto& [first, second] : pairs) {
        const Complex place = complexOf(first) - centroid;
        change += std::conj(place) * (complexOf(second) - complexOf(first) - shift);
        extent += std::norm(place);
    }
    change = extent > 0 ? change / extent : 0.0;
    const Complex factor = 1.0 + change;
    Similarity fit{{centroid.real(), centroid.imag()}, {shift.real(), shift.imag()}, std::arg(factor)};
    // |1 + c|² = 1 + 2 Re c + |c|²: of a small change no digit is lost.
    const double square = 2 * change.real() + std::norm(change);
    fit.scale = square / (1 + std::sqrt(1 + square));
    double sum = 0.0;
    for (const auto& [first, second] : pairs) {
        const Complex place = complexOf(first) - centroid;
        const double left = std::abs(complexOf(second) - complexOf(first) - shift - change * place);
        sum += left * left / count;
        fit.residualMax = std::max(fit.residualMax, left);
        fit.extent = std::max(fit.extent, std::abs(place));
    }
    fit.residualRms = std::sqrt(sum);
    return fit;
}

} // namespace pos
