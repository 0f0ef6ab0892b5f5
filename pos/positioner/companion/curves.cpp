#include "curves.h"

#include <algorithm>
#include <boost/math/tools/minima.hpp>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <cstdint>

namespace pos {

namespace {

/** More than a curve that swings once a day changes within kTurnError of a turn. */
constexpr double kNearZero = 0.035;

/** The root of a function between two instants at which it has different signs. */
double rootBetween(const Quantities& value, double a, double b, double atA, double atB) {
    std::uintmax_t steps = 200;
    const auto isNear = [](double low, double high) { return high - low < kRootError; };
    const auto [low, high] = boost::math::tools::toms748_solve(value, a, b, atA, atB, isNear, steps);
    return (low + high) / 2;
}

bool haveRootBetween(double atA, double atB) {
    return (atA < 0) != (atB < 0);
}

/** The least of a function near an instant. @param bits how exactly, relative to the range */
double leastNear(const Quantities& value, double instant, double from, double to, int bits) {
    const auto shifted = [&](double days) { return value(instant + days); };
    return instant + boost::math::tools::brent_find_minima(shifted, from - instant, to - instant, bits).first;
}

/** Where a curve turns, looked for in a range without another turn: it is one of these. */
std::vector<double> exactTurns(const Quantities& value, double turn, double from, double to) {
    constexpr int kHalfOfTheDigits = 26;
    const auto negative = [&](double instant) { return -value(instant); };
    return {leastNear(value, turn, from, to, kHalfOfTheDigits), leastNear(negative, turn, from, to, kHalfOfTheDigits)};
}

/** Instants between which a curve passes zero at most once. */
std::vector<double> endsOfPieces(const Curve& curve, double begin, double end) {
    std::vector<double> ends = {begin, end};
    for (const double jump : curve.jumps) {
        ends.push_back(std::clamp(jump - kRootError, begin, end));
        ends.push_back(std::clamp(jump + kRootError, begin, end));
    }
    std::sort(ends.begin(), ends.end());
    for (const double turn : curve.turns) {
        const auto next = std::upper_bound(ends.begin() + 1, ends.end() - 1, turn);
        const double from = std::max(turn - kTurnError, *(next - 1));
        const double to = std::min(turn + kTurnError, *next);
        if (from < to) {
            const double nearest = std::clamp(turn, from, to);
            const bool isNearZero = std::fabs(curve.value(nearest)) < kNearZero;
            const std::vector<double> turns =
                isNearZero ? exactTurns(curve.value, nearest, from, to) : std::vector{nearest};
            ends.insert(next, turns.begin(), turns.end());
            std::sort(ends.begin(), ends.end());
        }
    }
    return ends;
}

} // namespace

std::vector<double> crossings(const Curve& curve, double begin, double end) {
    std::vector<double> found;
    const std::vector<double> ends = endsOfPieces(curve, begin, end);
    double before = curve.value(ends.front());
    for (std::size_t i = 1; i < ends.size(); ++i) {
        const double here = curve.value(ends.at(i));
        if (haveRootBetween(before, here)) {
            found.push_back(rootBetween(curve.value, ends.at(i - 1), ends.at(i), before, here));
        }
        before = here;
    }
    return found;
}

std::vector<double> turnsOf(const Quantities& value, double begin, double end) {
    constexpr double kStep = 2.0 / 24;
    constexpr int kToAMinute = 9;
    std::vector<double> turns;
    double before = value(begin - kStep);
    double here = value(begin);
    double instant = begin;
    while (instant - kStep < end) {
        const double after = value(instant + kStep);
        if ((here - before) * (after - here) < 0) {
            const double sign = here > before ? -1.0 : 1.0;
            turns.push_back(leastNear([&](double at) { return sign * value(at); }, instant, instant - kStep,
                                      instant + kStep, kToAMinute));
        }
        before = here;
        here = after;
        instant += kStep;
    }
    return turns;
}

} // namespace pos
