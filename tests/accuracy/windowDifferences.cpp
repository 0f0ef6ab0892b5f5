#include "windowDifferences.h"

#include "LimitsCalc.h"
#include "scannedWindows.h"
#include "windows.h"

#include <algorithm>

using namespace pos;

namespace {

constexpr double kSecondInDays = 1.0 / 86400; // days
constexpr double kMillisecond = 1e-3 * kSecondInDays;

/** An instant at which windows begin or end: those found, or those scanned. */
struct Edge {
    double instant;
    bool isFound;
};

std::vector<Edge> edgesOf(const std::vector<Window>& found, const std::vector<Interval>& scanned) {
    std::vector<Edge> edges;
    for (const Window& window : found) {
        edges.insert(edges.end(), {{window.start.mjdTai, true}, {window.end.mjdTai, true}});
    }
    for (const Interval window : scanned) {
        edges.insert(edges.end(), {{window.begin, false}, {window.end, false}});
    }
    std::stable_sort(edges.begin(), edges.end(), [](Edge a, Edge b) { return a.instant < b.instant; });
    return edges;
}

/** The run's own checks. */
class Checks {
public:
    explicit Checks(const WindowCase& made)
        : pointing_(focalPlaneOf(made.pointing)),
          limits_(made.pointing.telescope, pointing_, made.zenithDistanceLimit) {}

    bool pass(double mjdTai) {
        pointing_.setDate(mjdTai);
        return limits_.checkHorizon() && limits_.checkRotator();
    }
    bool isKept(WindowLimit limit, double mjdTai) {
        pointing_.setDate(mjdTai);
        return limit == WindowLimit::Horizon ? limits_.checkHorizon() : limits_.checkRotator();
    }

private:
    FocalPlane pointing_;
    LimitsCalc limits_;
};

/** @param mjdTai an instant just outside a window that ends by a limit */
bool isWrong(WindowLimit limit, double mjdTai, Checks& checks, const Night& night) {
    if (limit == WindowLimit::Noon) {
        return mjdTai > night.begin && mjdTai < night.end;
    }
    return !checks.pass(mjdTai) && checks.isKept(limit, mjdTai);
}

} // namespace

void WindowDifferences::add(const WindowCase& made) {
    const FocalPlane pointing = focalPlaneOf(made.pointing);
    const Telescope& telescope = made.pointing.telescope;
    const Night& night = made.night;
    const DateContexts contexts(night.begin, night.end);
    const std::vector<Window> found =
        findWindows(pointing, telescope, contexts, night, {made.zenithDistanceLimit}).windows;
    const std::vector<Interval> scanned =
        scannedWindows(pointing, telescope, made.zenithDistanceLimit, night.begin, night.end);
    Checks checks(made);
    ++nights;
    windows += static_cast<int>(scanned.size());
    const std::vector<Edge> edges = edgesOf(found, scanned);
    bool isInFound = false;
    bool isInScanned = false;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        const auto [edge, next] = std::pair(edges.at(i), edges.at(i + 1));
        (edge.isFound ? isInFound : isInScanned) ^= true;
        const double length = next.instant - edge.instant;
        if (isInFound == isInScanned) {
            continue;
        }
        if (edge.isFound != next.isFound) {
            ends.add(length / kMillisecond);
        } else if (edge.isFound) {
            invented += checks.pass(edge.instant + length / 2) == isInFound ? 0 : 1;
        } else {
            lost += length > kSecondInDays ? 1 : 0;
        }
    }
    for (const Window& window : found) {
        wrongLimits += isWrong(window.startLimit, window.start.mjdTai - kMillisecond, checks, night) ? 1 : 0;
        wrongLimits += isWrong(window.endLimit, window.end.mjdTai + kMillisecond, checks, night) ? 1 : 0;
    }
}
