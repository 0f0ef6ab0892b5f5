#include "curves.h"

#include "DateContexts.h"

#include <algorithm>
#include <boost/math/tools/minima.hpp>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <cstdint>
#include <optional>

namespace pos {

namespace {

constexpr double kSecond = 1.0 / 86400; // days
/** A tenth of a millisecond: an error that no one will notice. */
constexpr double kHarmless = 1e-4 * kSecond;
/** A turn whose value is smaller may be one of two roots close together. */
constexpr double kNearZero = 1e-3; // radians
/** How far a turn may be from where it is thought to be. */
constexpr double kTurnError = 1800 * kSecond;

/** The root of a function between two instants at which it has different signs. */
double rootBetween(const Quantities& value, double a, double b, double atA, double atB) {
    std::uintmax_t steps = 200;
    const auto isNear = [](double low, double high) { return high - low < kHarmless / 10; };
    const auto [low, high] = boost::math::tools::toms748_solve(value, a, b, atA, atB, isNear, steps);
    return (low + high) / 2;
}

bool haveRootBetween(double atA, double atB) {
    return (atA < 0) != (atB < 0);
}

/** Whether an error of the curve moves a root by more than is harmless. */
bool isSlow(const Curve& curve, double root) {
    const double change = curve.value(root + kSecond) - curve.value(root - kSecond);
    return std::fabs(change) / (2 * kSecond) * kHarmless < DateContexts::kLargestError;
}

/** The least of a function near an instant. @param bits how exactly, relative to the range */
double leastNear(const Quantities& value, double instant, double from, double to, int bits) {
    const auto shifted = [&](double days) { return value(instant + days); };
    return instant + boost::math::tools::brent_find_minima(shifted, from - instant, to - instant, bits).first;
}

/** One end of a stretch in which a curve passes zero at most once. */
struct End {
    double instant;
    double value;
};

End exactTurn(const Curve& curve, double turn, double begin, double end) {
    const double from = std::max(turn - kTurnError, begin);
    const double to = std::min(turn + kTurnError, end);
    constexpr int kHalfOfTheDigits = 26;
    const bool isHighest = curve.value(from) + curve.value(to) < 2 * curve.value(turn);
    const auto least = [&](double at) { return isHighest ? -curve.exact(at) : curve.exact(at); };
    const double instant = leastNear(least, turn, from, to, kHalfOfTheDigits);
    return {instant, curve.exact(instant)};
}

std::vector<End> endsOfStretches(const Curve& curve, double begin, double end) {
    std::vector<End> ends = {{begin, curve.value(begin)}};
    for (const double turn : curve.turns) {
        if (turn > begin && turn < end) {
            const double value = curve.value(turn);
            ends.push_back(std::fabs(value) < kNearZero ? exactTurn(curve, turn, begin, end) : End{turn, value});
        }
    }
    ends.push_back({end, curve.value(end)});
    std::sort(ends.begin(), ends.end(), [](End a, End b) { return a.instant < b.instant; });
    return ends;
}

std::optional<double> crossingBetween(const Curve& curve, End a, End b) {
    if (!haveRootBetween(a.value, b.value)) {
        return std::nullopt;
    }
    const double root = rootBetween(curve.value, a.instant, b.instant, a.value, b.value);
    if (!isSlow(curve, root)) {
        return root;
    }
    const double exactAtA = curve.exact(a.instant);
    const double exactAtB = curve.exact(b.instant);
    if (!haveRootBetween(exactAtA, exactAtB)) {
        return std::nullopt;
    }
    return rootBetween(curve.exact, a.instant, b.instant, exactAtA, exactAtB);
}

} // namespace

std::vector<double> crossings(const Curve& curve, double begin, double end) {
    std::vector<double> found;
    const std::vector<End> ends = endsOfStretches(curve, begin, end);
    for (std::size_t i = 1; i < ends.size(); ++i) {
        if (const auto root = crossingBetween(curve, ends.at(i - 1), ends.at(i))) {
            found.push_back(*root);
        }
    }
    return found;
}

std::vector<double> turnsOf(const Quantities& value, double begin, double end) {
    constexpr double kStep = 2.0 / 24;
    constexpr int kToAMinute = 9;
    std::vector<double> turns;
    double before = value(begin - kStep);
    double here = value(begin);
    for (double instant = begin; instant - kStep < end; instant += kStep) {
        const double after = value(instant + kStep);
        if ((here - before) * (after - here) < 0) {
            const double sign = here > before ? -1.0 : 1.0;
            turns.push_back(leastNear([&](double at) { return sign * value(at); }, instant, instant - kStep,
                                      instant + kStep, kToAMinute));
        }
        before = here;
        here = after;
    }
    return turns;
}

} // namespace pos
