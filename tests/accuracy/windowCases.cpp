#include "windowCases.h"

#include "DateContexts.h"
#include "LimitsCalc.h"
#include "angles.h"
#include "scannedWindows.h"

#include <cmath>

using namespace pos;

namespace {

/** One of a few values. */
double oneOf(Numbers& numbers, const std::vector<double>& values) {
    return values.at(static_cast<std::size_t>(numbers.between(0, static_cast<double>(values.size()))));
}

/** A small angle of either sign, of any order of magnitude; radians. */
double anySmall(Numbers& numbers, double leastArcsec, double greatestDeg) {
    const double size = std::exp(numbers.between(std::log(leastArcsec / 3600), std::log(greatestDeg)));
    return rad(numbers.between(-1, 1) < 0 ? -size : size);
}

/** A declination beyond a pole is one on the other side of it. */
double ofDeclination(double angle) {
    return std::asin(std::sin(angle));
}

/** Any, or near a pole, or one with which the field grazes the zenith, the horizon, the limit, or the equator. */
double anyDeclination(Numbers& numbers, double latitude, double zenithDistanceLimit) {
    switch (static_cast<int>(numbers.between(0, 8))) {
    case 0:
        return ofDeclination(oneOf(numbers, {-kPi / 2, kPi / 2}) + anySmall(numbers, 1, 5));
    case 1:
        return ofDeclination(latitude + anySmall(numbers, 0.01, 2));
    case 2:
        return ofDeclination(oneOf(numbers, {-1, 1}) * (kPi / 2 - std::fabs(latitude)) + anySmall(numbers, 1, 2));
    case 3:
        return ofDeclination(latitude + oneOf(numbers, {-1, 1}) * zenithDistanceLimit + anySmall(numbers, 1, 1));
    case 4:
        return anySmall(numbers, 0.1, 1);
    default:
        return std::asin(numbers.between(-1, 1));
    }
}

/** The shipped limits, or a narrow range, a wide one, or one that ends beyond half a turn. */
void setRotator(Numbers& numbers, Telescope& telescope) {
    const auto range = [&](double middleDeg, double widthDeg) {
        telescope.rotatorLowLimit = rad(middleDeg - widthDeg / 2);
        telescope.rotatorHighLimit = rad(middleDeg + widthDeg / 2);
    };
    telescope.rotatorOffset = rad(oneOf(numbers, {0, 0, 90, numbers.between(-180, 180)}));
    switch (static_cast<int>(numbers.between(0, 5))) {
    case 0:
        return;
    case 1:
        return range(numbers.between(-180, 180), std::exp(numbers.between(std::log(0.5), std::log(20))));
    case 2:
        return range(numbers.between(-180, 180), numbers.between(20, 180));
    case 3:
        return range(numbers.between(-90, 90), numbers.between(180, 359));
    default:
        return range(numbers.between(-180, 180), numbers.between(180, 540));
    }
}

Conditions anyWeather(Numbers& numbers, double date) {
    const double pressure = oneOf(numbers, {0, 770, numbers.between(500, 1050), numbers.between(500, 1050)});
    return {date, numbers.between(250, 310), pressure, numbers.between(0, 1)};
}

WindowCase anyCase(Numbers& numbers, double latitudeDeg) {
    WindowCase made;
    Telescope& telescope = made.pointing.telescope;
    telescope.latitude = rad(latitudeDeg);
    telescope.eastLongitude = rad(numbers.between(-180, 180));
    telescope.height = numbers.between(0, 5000);
    telescope.horizonLimit = rad(oneOf(numbers, {5, 5, 5, 0, 3, 10}));
    setRotator(numbers, telescope);
    const double limitDeg = oneOf(numbers, {25, 25, 3, 5, numbers.between(0, 10), numbers.between(0, 80)});
    made.zenithDistanceLimit = kPi / 2 - rad(limitDeg);
    const QDate evening(1990 + static_cast<int>(numbers.between(0, 70)), 1, 1);
    made.night = nightOf(evening.addDays(static_cast<int>(numbers.between(0, 365))), telescope.eastLongitude);
    made.pointing.conditions = anyWeather(numbers, made.night.begin);
    const double dec = anyDeclination(numbers, telescope.latitude, made.zenithDistanceLimit);
    // The declination is that of the date: precession would take the field away from where it grazes.
    made.pointing.centre = CIRS{numbers.between(0, 2 * kPi), dec}.toAstrometric(made.night.begin);
    made.pointing.positionAngle = rad(oneOf(numbers, {0, 90, numbers.between(-180, 180), numbers.between(-180, 180)}));
    return made;
}

/** A field in the sky of a night, at any instant. */
class Sky {
public:
    explicit Sky(const WindowCase& made)
        : pointing_(focalPlaneOf(made.pointing)), telescope_(made.pointing.telescope),
          contexts_(made.night.begin, made.night.end) {}

    double zenithDistance(double mjdTai) {
        pointing_.setDate(contexts_.at(mjdTai));
        return pointing_.zenithDistance();
    }
    double rotatorAngle(double mjdTai) {
        pointing_.setDate(contexts_.at(mjdTai));
        return LimitsCalc(telescope_, pointing_, 0.0).rotatorAngle();
    }

    /** Small near zenith and pole, where what a place moves by, or rounding, turns the rotator by more. */
    double steadiness(double mjdTai) {
        return std::sin(zenithDistance(mjdTai)) * std::cos(pointing_.tangentDec());
    }

private:
    FocalPlane pointing_;
    Telescope telescope_;
    DateContexts contexts_;
};

/** The instant at which a quantity is least, in a range without another one; by thirds. */
double leastBetween(const std::function<double(double)>& value, double from, double to) {
    while (to - from > 1e-3 * kSecond) {
        const double third = (to - from) / 3;
        (value(from + third) < value(to - third) ? to : from) +=
            value(from + third) < value(to - third) ? -third : third;
    }
    return from;
}

/** The instants, in a night but not at its ends, at which a quantity is less than five minutes before and after. */
std::vector<double> dipsOf(const std::function<double(double)>& value, const Night& night) {
    constexpr double kStep = 300 * kSecond;
    std::vector<double> dips;
    for (double instant = night.begin + 3 * kStep; instant < night.end - 3 * kStep; instant += kStep) {
        if (value(instant) < value(instant - kStep) && value(instant) <= value(instant + kStep)) {
            dips.push_back(leastBetween(value, instant - kStep, instant + kStep));
        }
    }
    return dips;
}

/** A case without limits of the rotator, and a duration of 1 to 3 seconds. */
struct Draft {
    WindowCase made;
    double half; ///< days

    explicit Draft(Numbers& numbers)
        : made(anyCase(numbers, oneOf(numbers, {28.760583, numbers.between(-80, 80), 0, 89.5}))),
          half(numbers.between(1.05, 3) / 2 * kSecond) {
        made.pointing.telescope.rotatorLowLimit = rad(-400);
        made.pointing.telescope.rotatorHighLimit = rad(400);
    }
};

/** Whether two angles are apart by more than rounding leaves open: what stands still has no end. */
bool areApart(double one, double other) {
    return std::fabs(one - other) > 1e-11;
}

/** Sets the horizon limit to where the field is just before and after it culminates. @param sign 1 at the highest */
WindowCase grazingTheHorizon(Numbers& numbers, double sign) {
    for (;;) {
        Draft draft(numbers);
        Sky sky(draft.made);
        const auto depth = [&](double mjdTai) { return sign * sky.zenithDistance(mjdTai); };
        const std::vector<double> dips = dipsOf(depth, draft.made.night);
        if (dips.empty() || sky.zenithDistance(dips.front()) > rad(95)) {
            continue;
        }
        draft.made.zenithDistanceLimit = sky.zenithDistance(dips.front() + draft.half);
        if (areApart(draft.made.zenithDistanceLimit, sky.zenithDistance(dips.front()))) {
            return draft.made;
        }
    }
}

/** Sets a limit of the rotator to where it is just before and after its extreme. @param sign 1 for a short window */
WindowCase grazingARotatorLimit(Numbers& numbers, double sign) {
    for (;;) {
        Draft draft(numbers);
        Telescope& telescope = draft.made.pointing.telescope;
        Sky sky(draft.made);
        const auto angle = [&](double mjdTai) { return sky.rotatorAngle(mjdTai); };
        const std::vector<double> dips = dipsOf(angle, draft.made.night);
        if (dips.empty() || sky.zenithDistance(dips.front()) > draft.made.zenithDistanceLimit) {
            continue;
        }
        const double limit = angle(dips.front() + draft.half);
        (sign > 0 ? telescope.rotatorHighLimit : telescope.rotatorLowLimit) = limit;
        const double steadiness = sky.steadiness(dips.front());
        if (areApart(limit * steadiness, angle(dips.front()) * steadiness)) {
            return draft.made;
        }
    }
}

/** Sets limits of the rotator that it passes one after the other. @param beyond makes half a turn one of them */
WindowCase betweenRotatorLimits(Numbers& numbers, bool beyond) {
    for (;;) {
        Draft draft(numbers);
        Telescope& telescope = draft.made.pointing.telescope;
        const Night& night = draft.made.night;
        const double first = numbers.between(night.begin, night.end - 4 * draft.half);
        const double last = first + 2 * draft.half;
        if (beyond) {
            telescope.rotatorOffset += kPi - Sky(draft.made).rotatorAngle(last);
        }
        Sky sky(draft.made);
        const double atFirst = sky.rotatorAngle(first);
        const double atLast = sky.rotatorAngle(last);
        const auto [low, high] = std::minmax({atFirst, atLast});
        if (sky.zenithDistance(first) > draft.made.zenithDistanceLimit || !areApart(low, high) ||
            (beyond && atFirst > atLast)) {
            continue;
        }
        telescope.rotatorLowLimit = low;
        telescope.rotatorHighLimit = beyond ? rad(400) : high;
        return draft.made;
    }
}

/** Sets the end of refraction to where the field is near its culmination, and the horizon limit a little lower. */
WindowCase grazingTheEndOfRefraction(Numbers& numbers) {
    for (;;) {
        Draft draft(numbers);
        Telescope& telescope = draft.made.pointing.telescope;
        draft.made.pointing.conditions.pressure = 770;
        telescope.horizonLimit = rad(-10);
        Sky sky(draft.made);
        const std::vector<double> dips =
            dipsOf([&](double mjdTai) { return sky.zenithDistance(mjdTai); }, draft.made.night);
        if (dips.empty() || std::fabs(sky.zenithDistance(dips.front()) - rad(85)) > rad(10)) {
            continue;
        }
        telescope.horizonLimit = kPi / 2 - sky.zenithDistance(dips.front() + draft.half);
        if (!areApart(kPi / 2 - telescope.horizonLimit, sky.zenithDistance(dips.front()))) {
            continue;
        }
        draft.made.zenithDistanceLimit = kPi / 2 - telescope.horizonLimit + rad(0.001);
        return draft.made;
    }
}

} // namespace

std::vector<WindowKind> windowsBySite() {
    const auto atAPole = [](Numbers& numbers) {
        WindowCase made = anyCase(numbers, oneOf(numbers, {-90, 90}));
        // The rotator rests there all night, and not at a limit, where rounding decides.
        made.pointing.positionAngle = numbers.between(-kPi, kPi);
        // A field hardly moves there: let some pass the limit, as fast as rounding lets a millisecond be told.
        Sky sky(made);
        const double instant = numbers.between(made.night.begin, made.night.end);
        const double perSecond = sky.zenithDistance(instant + kSecond) - sky.zenithDistance(instant);
        if (numbers.between(0, 1) < 0.5 && std::fabs(perSecond) > 2e-12) {
            made.zenithDistanceLimit = sky.zenithDistance(instant);
        }
        return made;
    };
    const auto at = [](const std::vector<double>& latitudes) {
        return [latitudes](Numbers& numbers) { return anyCase(numbers, oneOf(numbers, latitudes)); };
    };
    return {{"the embedded one", at({28.760583})},
            {"up to 70°", [](Numbers& numbers) { return anyCase(numbers, numbers.between(-70, 70)); }},
            {"the equator", at({0})},
            {"tropics, polar circles", at({-66.56, -23.44, 23.44, 66.56})},
            {"70–89.9°",
             [](Numbers& numbers) {
                 return anyCase(numbers, oneOf(numbers, {-1, 1}) * numbers.between(70, 89.9));
             }},
            {"89.9°", at({-89.9, 89.9})},
            {"the poles", atAPole}};
}

std::vector<WindowKind> grazingWindows() {
    return {{"window at the highest", [](Numbers& numbers) { return grazingTheHorizon(numbers, 1); }},
            {"gap at the lowest", [](Numbers& numbers) { return grazingTheHorizon(numbers, -1); }},
            {"window at the rotator's extreme", [](Numbers& numbers) { return grazingARotatorLimit(numbers, 1); }},
            {"gap at the rotator's extreme", [](Numbers& numbers) { return grazingARotatorLimit(numbers, -1); }},
            {"window between two limits", [](Numbers& numbers) { return betweenRotatorLimits(numbers, false); }},
            {"window up to half a turn", [](Numbers& numbers) { return betweenRotatorLimits(numbers, true); }},
            {"window where refraction ends", grazingTheEndOfRefraction}};
}
