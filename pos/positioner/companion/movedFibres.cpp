#include "movedFibres.h"

#include "angles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <erfa.h>

namespace pos {

namespace {

/** @param distance between the places of a target; nothing where it has none */
template <typename Distance> std::optional<Distances> distancesOf(const std::vector<MovedTarget>& targets,
                                                                  double tolerance, const Distance& distance) {
    Distances all{};
    double sum = 0.0;
    int count = 0;
    for (const MovedTarget& target : targets) {
        if (const std::optional<double> value = distance(target)) {
            sum += *value * *value;
            all.moved += isWithin(*value, tolerance) ? 0 : 1;
            if (count == 0 || *value > all.greatest) {
                all.greatest = *value;
                all.worst = target;
            }
            ++count;
        }
    }
    all.rms = std::sqrt(sum / std::max(count, 1));
    return count > 0 ? std::optional(all) : std::nullopt;
}

/** The direction in the middle of places. */
Astrometric middleOf(const std::vector<Astrometric>& places) {
    std::array<double, 3> sum{};
    for (const Astrometric& place : places) {
        std::array<double, 3> direction{};
        eraS2c(place.ra, place.dec, direction.data());
        eraPpp(sum.data(), direction.data(), sum.data());
    }
    Astrometric middle{};
    eraC2s(sum.data(), &middle.ra, &middle.dec);
    return middle;
}

/** By how much the north at a second place is turned from that at a first one, carried there along a great circle. */
double convergence(Astrometric first, Astrometric second) {
    const double half = (second.ra - first.ra) / 2;
    return 2 * std::atan2(std::sin(half) * std::sin((first.dec + second.dec) / 2),
                          std::cos(half) * std::cos((first.dec - second.dec) / 2));
}

/** @param turn added to the position angle */
Point inTangentPlane(Astrometric place, Astrometric middle, double turn) {
    const double radius = std::tan(eraSeps(middle.ra, middle.dec, place.ra, place.dec));
    const double angle = eraPas(middle.ra, middle.dec, place.ra, place.dec) + turn;
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

bool areAround(Astrometric middle, const std::vector<Astrometric>& places) {
    return std::all_of(places.begin(), places.end(),
                       [middle](Astrometric place) { return skySeparation(middle, place) < kPi / 2; });
}

using Places = std::vector<Astrometric>;

/** The first and the second places of those that have both. */
std::pair<Places, Places> skyPlaces(const std::vector<MovedTarget>& targets) {
    std::pair<Places, Places> places;
    for (const MovedTarget& target : targets) {
        if (target.sky) {
            places.first.push_back(target.sky->first);
            places.second.push_back(target.sky->second);
        }
    }
    return places;
}

/** @param turn of the second plane */
std::vector<PointPair> inTangentPlanes(const Places& first, Astrometric middle, const Places& second,
                                       Astrometric otherMiddle, double turn) {
    std::vector<PointPair> pairs;
    for (std::size_t i = 0; i < first.size(); ++i) {
        pairs.emplace_back(inTangentPlane(first[i], middle, 0.0), inTangentPlane(second[i], otherMiddle, turn));
    }
    return pairs;
}

} // namespace

double skySeparation(Astrometric a, Astrometric b) {
    constexpr double kRounding = 1e-15; // of doubles: at a pole the cosine of the declination is not quite 0
    const double angle = eraSeps(a.ra, a.dec, b.ra, b.dec);
    return angle <= kRounding ? 0.0 : angle;
}

bool isWithin(double distance, double tolerance) {
    constexpr double kRounding = 1e-6; // of doubles; it is 5e-8 of 0.004 arcsec
    return distance <= tolerance * (1 + kRounding);
}

std::optional<Distances> plateDistances(const std::vector<MovedTarget>& targets, double tolerance) {
    return distancesOf(targets, tolerance, [](const MovedTarget& target) {
        const auto& plate = target.plate;
        return plate ? std::optional(std::hypot(plate->second.x - plate->first.x, plate->second.y - plate->first.y))
                     : std::nullopt;
    });
}

std::optional<Distances> skyDistances(const std::vector<MovedTarget>& targets, double tolerance) {
    return distancesOf(targets, tolerance, [](const MovedTarget& target) {
        return target.sky ? std::optional(skySeparation(target.sky->first, target.sky->second)) : std::nullopt;
    });
}

std::vector<PointPair> platePairs(const std::vector<MovedTarget>& targets) {
    std::vector<PointPair> pairs;
    for (const MovedTarget& target : targets) {
        if (target.plate) {
            pairs.push_back(*target.plate);
        }
    }
    return pairs;
}

std::optional<std::vector<PointPair>> skyPairs(const std::vector<MovedTarget>& targets) {
    auto [first, second] = skyPlaces(targets);
    const Astrometric middle = middleOf(first);
    if (!areAround(middle, first) || !areAround(middle, second)) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < first.size(); ++i) {
        second[i] = skySeparation(first[i], second[i]) == 0 ? first[i] : second[i];
    }
    return inTangentPlanes(first, middle, second, middle, 0.0);
}

std::optional<Similarity> plateFit(const std::vector<MovedTarget>& targets) {
    const std::vector<PointPair> pairs = platePairs(targets);
    return pairs.empty() ? std::nullopt : std::optional(fitSimilarity(pairs));
}

std::optional<Similarity> skyFit(const std::vector<MovedTarget>& targets) {
    const auto [first, second] = skyPlaces(targets);
    const Astrometric before = middleOf(first);
    const Astrometric after = middleOf(second);
    if (first.empty() || !areAround(before, first) || !areAround(after, second)) {
        return std::nullopt;
    }
    Similarity fit = fitSimilarity(inTangentPlanes(first, before, second, after, -convergence(before, after)));
    const double distance = skySeparation(before, after);
    const double direction = eraPas(before.ra, before.dec, after.ra, after.dec);
    fit.shift = {distance * std::cos(direction), distance * std::sin(direction)};
    return fit;
}

} // namespace pos
