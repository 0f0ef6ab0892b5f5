#include "requirements.h"

#include "FieldTrack.h"
#include "Night.h"
#include "SunAndMoon.h"
#include "angles.h"
#include "numberText.h"
#include "positionAngles.h"

#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace pos {

namespace {

/** The instants between which a curve rises or falls, and the ends of some stretches. */
std::vector<double> instantsOf(const std::vector<Stretch>& stretches, const std::vector<double>& turns) {
    std::vector<double> instants;
    for (const Stretch& stretch : stretches) {
        instants.insert(instants.end(), {stretch.begin, stretch.end});
        std::copy_if(turns.begin(), turns.end(), std::back_inserter(instants),
                     [&](double turn) { return turn > stretch.begin && turn < stretch.end; });
    }
    return instants;
}

/** The instant in some stretches at which a quantity is greatest. */
double greatest(const Quantities& value, const std::vector<Stretch>& stretches, const std::vector<double>& turns) {
    const std::vector<double> instants = instantsOf(stretches, turns);
    return *std::max_element(instants.begin(), instants.end(), [&](double a, double b) { return value(a) < value(b); });
}

/** "at 21:04 UTC". */
std::string atTime(double mjdTai) {
    return "at " + utcText(mjdTai, 0).substr(11, 5) + " UTC";
}

/** The instant in some stretches at which a field is highest. */
double instantOfHighest(FieldTrack& track, const std::vector<Stretch>& stretches) {
    return greatest([&](double mjdTai) { return track.at(mjdTai).altitude(); }, stretches,
                    track.upperCulminations(stretches.front().begin, stretches.back().end));
}

/** A quantity of Sun or Moon, in a few hours of which there is at most one turn. */
Curve slowCurve(const Quantities& value, double begin, double end) {
    return {value, turnsOf(value, begin, end)};
}

class DarkSky : public Requirement {
public:
    DarkSky(const Telescope& site, const DateContexts& contexts, double limit)
        : site_(site), contexts_(contexts), limit_(limit) {}

    std::vector<Curve> curves(double begin, double end) override {
        return {slowCurve([this](double mjdTai) { return limit_ - altitude(mjdTai); }, begin, end)};
    }
    bool holds(double mjdTai) override {
        return altitude(mjdTai) < limit_;
    }
    WindowLimit limitAt(double /*mjdTai*/) override {
        return WindowLimit::Twilight;
    }
    std::string whyNever(const std::vector<Stretch>& stretches) override {
        const auto depth = [this](double mjdTai) { return -altitude(mjdTai); };
        const double lowest = greatest(depth, stretches, turnsOf(depth, stretches.front().begin, stretches.back().end));
        return "the Sun is never lower than " + shortText(radiansToDegrees(limit_)) + " degrees: at its lowest, " +
               atTime(lowest) + ", it stands at " + degreesText(altitude(lowest)) + " degrees";
    }

private:
    double altitude(double mjdTai) const {
        return sunFrom(site_, contexts_.at(mjdTai)).altitude;
    }

    const Telescope& site_;
    const DateContexts& contexts_;
    double limit_;
};

/** The field stands higher than a limit. */
class HighField : public Requirement {
public:
    HighField(FieldTrack& track, double limit) : track_(track), limit_(limit) {}

    std::vector<Curve> curves(double begin, double end) override {
        return {track_.altitudeAbove(limit_, begin, end)};
    }
    bool holds(double mjdTai) override {
        return track_.at(mjdTai).zenithDistance() < kPi / 2 - limit_;
    }
    WindowLimit limitAt(double /*mjdTai*/) override {
        return WindowLimit::Horizon;
    }
    std::string whyNever(const std::vector<Stretch>& stretches) override {
        const double highest = instantOfHighest(track_, stretches);
        return "the field is never above " + shortText(radiansToDegrees(limit_)) + " degrees: at its highest, " +
               atTime(highest) + ", it stands at " + degreesText(track_.at(highest).altitude()) + " degrees";
    }

protected:
    FieldTrack& track_; // NOLINT(*-non-private-member-variables-in-classes): one of its kind derives from it

private:
    double limit_;
};

/** The field is seen through little air: it stands higher than an airmass allows. */
class LittleAir : public HighField {
public:
    LittleAir(FieldTrack& track, double largest) : HighField(track, altitudeAt(largest)), largest_(largest) {}

    WindowLimit limitAt(double /*mjdTai*/) override {
        return WindowLimit::Airmass;
    }
    std::string whyNever(const std::vector<Stretch>& stretches) override {
        const double highest = instantOfHighest(track_, stretches);
        const double altitude = track_.at(highest).altitude();
        return "the airmass is never below " + shortText(largest_) + ": at the field's highest, " + atTime(highest) +
               ", it is " + fixedText(airmass(altitude), 2).toStdString() + " at an altitude of " +
               degreesText(altitude) + " degrees";
    }

private:
    /** The altitude at which the airmass is this, radians. */
    static double altitudeAt(double wanted) {
        const auto tooMuch = [wanted](double altitude) { return airmass(altitude) - wanted; };
        if (tooMuch(0.0) <= 0) {
            return 0.0;
        }
        if (tooMuch(kPi / 2) >= 0) {
            return kPi / 2;
        }
        constexpr int kBits = 50;
        std::uintmax_t steps = 100;
        return boost::math::tools::toms748_solve(tooMuch, 0.0, kPi / 2,
                                                 boost::math::tools::eps_tolerance<double>(kBits), steps)
            .first;
    }

    double largest_;
};

class RotatorInReach : public Requirement {
public:
    RotatorInReach(FieldTrack& track, const Telescope& telescope) : track_(track), telescope_(telescope) {}

    std::vector<Curve> curves(double begin, double end) override {
        return track_.rotatorLimits(begin, end);
    }
    bool holds(double mjdTai) override {
        track_.at(mjdTai);
        return track_.isRotatorInside();
    }
    WindowLimit limitAt(double mjdTai) override {
        track_.at(mjdTai);
        const bool isLow = track_.rotatorFromMiddle() < 0;
        // Beyond half a turn the angle goes on from the other side.
        const bool isLowAfterAll = isLow ? telescope_.rotatorLowLimit > -kPi : telescope_.rotatorHighLimit >= kPi;
        return isLowAfterAll ? WindowLimit::RotatorLow : WindowLimit::RotatorHigh;
    }
    std::string whyNever(const std::vector<Stretch>& stretches) override {
        const double first = angleAt(stretches.front().begin);
        const double last = angleAt(stretches.back().end);
        const double highest = instantOfHighest(track_, stretches);
        const FocalPlane& pointing = track_.at(highest);
        const std::string angles =
            positionAnglesInWords(telescope_, {pointing.parallacticAngle()}, pointing.positionAngle());
        return "the rotator cannot follow the field: it would have to turn from " + degreesText(first) + " to " +
               degreesText(last) + " degrees, and it reaches from " +
               shortText(radiansToDegrees(telescope_.rotatorLowLimit)) + " to " +
               shortText(radiansToDegrees(telescope_.rotatorHighLimit)) +
               (angles.empty() ? "" : "; " + atTime(highest) + ", when the field is highest, " + angles + " would do");
    }

private:
    double angleAt(double mjdTai) {
        track_.at(mjdTai);
        return track_.rotatorAngle();
    }

    FieldTrack& track_;
    const Telescope& telescope_;
};

class FarFromMoon : public Requirement {
public:
    FarFromMoon(FieldTrack& track, const Telescope& site, const DateContexts& contexts, double least)
        : track_(track), site_(site), contexts_(contexts), least_(least) {}

    std::vector<Curve> curves(double begin, double end) override {
        return {slowCurve([this](double mjdTai) { return moonAt(mjdTai).altitude; }, begin, end),
                slowCurve([this](double mjdTai) { return distance(mjdTai) - least_; }, begin, end)};
    }
    bool holds(double mjdTai) override {
        return moonAt(mjdTai).altitude < 0 || distance(mjdTai) > least_;
    }
    WindowLimit limitAt(double /*mjdTai*/) override {
        return WindowLimit::Moon;
    }
    std::string whyNever(const std::vector<Stretch>& stretches) override {
        const auto value = [this](double mjdTai) { return distance(mjdTai); };
        const double farthest =
            greatest(value, stretches, turnsOf(value, stretches.front().begin, stretches.back().end));
        return "the Moon is up and never farther away than " + degreesText(distance(farthest)) +
               " degrees, and it should be " + shortText(radiansToDegrees(least_));
    }

private:
    BodyPlace moonAt(double mjdTai) const {
        return moonFrom(site_, contexts_.at(mjdTai));
    }
    double distance(double mjdTai) {
        const FocalPlane& pointing = track_.at(mjdTai);
        const CIRS field = pointing.fieldCentre().toCirs(pointing.dateContext());
        const CIRS moon = moonAt(mjdTai).place;
        return eraSeps(field.ra, field.dec, moon.ra, moon.dec);
    }

    FieldTrack& track_;
    const Telescope& site_;
    const DateContexts& contexts_;
    double least_;
};

} // namespace

const std::map<std::string, std::optional<double>>& twilights() {
    static const std::map<std::string, std::optional<double>> all = {
        {"civil", -6.0}, {"nautical", -12.0}, {"astronomical", -18.0}, {"none", std::nullopt}};
    return all;
}

const char* wordOf(WindowLimit limit) {
    switch (limit) {
    case WindowLimit::Horizon:
        return "horizon";
    case WindowLimit::RotatorLow:
        return "rotator low";
    case WindowLimit::RotatorHigh:
        return "rotator high";
    case WindowLimit::Twilight:
        return "twilight";
    case WindowLimit::Airmass:
        return "airmass";
    case WindowLimit::Moon:
        return "moon";
    case WindowLimit::Noon:
        return "noon";
    }
    return "";
}

std::vector<std::unique_ptr<Requirement>> requirements(FieldTrack& track, const DateContexts& contexts,
                                                       const WindowOptions& options) {
    const Telescope& telescope = track.telescope();
    std::vector<std::unique_ptr<Requirement>> all;
    if (options.sunAltitude) {
        all.push_back(std::make_unique<DarkSky>(telescope, contexts, *options.sunAltitude));
    }
    all.push_back(std::make_unique<HighField>(track, kPi / 2 - options.zenithDistanceLimit));
    all.push_back(std::make_unique<RotatorInReach>(track, telescope));
    if (options.largestAirmass) {
        all.push_back(std::make_unique<LittleAir>(track, *options.largestAirmass));
    }
    if (options.moonDistance) {
        all.push_back(std::make_unique<FarFromMoon>(track, telescope, contexts, *options.moonDistance));
    }
    return all;
}

} // namespace pos
