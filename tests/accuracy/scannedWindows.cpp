#include "scannedWindows.h"

#include "LimitsCalc.h"
#include "angles.h"

#include <algorithm>
#include <cmath>

using namespace pos;

namespace {

constexpr double kFinestStep = 0.4 * kSecond;
constexpr double kLongestStep = 1800 * kSecond;
constexpr double kBisected = 1e-5 * kSecond;
/** How long the date's part of the model serves while the field is far from every limit. */
constexpr double kContextServes = 600 * kSecond;
/** More than a place moves meanwhile by precession, nutation and aberration, radians. */
constexpr double kContextError = 1e-7;
/** How fast the sky turns, and a little more for refraction, radians a day. */
constexpr double kTurning = 1.05 * 2 * kPi * 1.0028;
/** More than precession, nutation and aberration move a place, radians a day. */
constexpr double kDrift = 1e-5;
/** More than refraction ever lifts, radians. */
constexpr double kHighestLift = 0.02;

class Scan {
public:
    Scan(FocalPlane& pointing, const Telescope& telescope, double largestZenithDistance)
        : pointing_(pointing), airy_(airyPointing(pointing, telescope)), telescope_(telescope),
          largestZenithDistance_(largestZenithDistance), limits_(telescope, pointing, largestZenithDistance),
          kept_(pointing.date()) {}

    bool passes() const {
        return limits_.checkHorizon() && limits_.checkRotator();
    }

    /** Points at an instant: well enough to tell whether the checks pass. */
    void pointAt(double mjdTai) {
        if (std::fabs(mjdTai - serves_) > kContextServes) {
            kept_ = DateContext(mjdTai);
            serves_ = mjdTai;
        }
        kept_.date = mjdTai;
        date_ = kept_;
        pointing_.setDate(date_);
        if (horizonMargin() < kContextError || rotatorMargin() < kContextError * (1 + unsteadiness())) {
            date_ = DateContext(mjdTai);
            pointing_.setDate(date_);
        }
    }

    /** How long no check can change its answer, days. */
    double steadyFor() {
        const double cosDec = std::cos(pointing_.fieldCentre().toCirs(pointing_.dateContext()).dec);
        const double speed = kTurning * cosDec + kDrift;
        const double climbing = kTurning * std::min(cosDec, std::cos(telescope_.latitude)) + kDrift;
        // Until zenith and pole are at half their distance, the rotator turns at most twice as fast as it may now.
        return std::min({horizonMargin() / climbing, rotatorMargin() / (2 * speed * unsteadiness()),
                         1 / (2 * speed * unsteadiness())});
    }

private:
    /** The same pointing, seen through air wherever it is. */
    static FocalPlane airyPointing(const FocalPlane& pointing, Telescope telescope) {
        telescope.horizonLimit = -kPi / 2;
        return {telescope, {}, {}, pointing.fieldCentre(), pointing.positionAngle(), pointing.conditions()};
    }

    /** How far the field is from the altitudes at which something changes. */
    double horizonMargin() {
        const double margin = std::fabs(pointing_.zenithDistance() - largestZenithDistance_);
        const double refractionEnds = kPi / 2 - telescope_.horizonLimit;
        double margin2 = std::fabs(pointing_.zenithDistance() - refractionEnds);
        if (pointing_.zenithDistance() > refractionEnds) {
            airy_.setDate(date_);
            margin2 = std::fabs(airy_.zenithDistance() - refractionEnds);
        }
        return std::min(margin, margin2);
    }

    /** How far the rotator is from the angles at which something changes. */
    double rotatorMargin() const {
        const double angle = limits_.rotatorAngle();
        const auto to = [angle](double limit) { return std::fabs(wrapAngle(angle - limit)); };
        return std::min({to(telescope_.rotatorLowLimit), to(telescope_.rotatorHighLimit), to(kPi)});
    }

    /** By how much more than the place itself the parallactic angle may turn: it looks at zenith and pole. */
    double unsteadiness() const {
        return 1 / std::sin(pointing_.zenithDistance()) + 1 / std::cos(pointing_.tangentDec());
    }

    FocalPlane& pointing_;
    FocalPlane airy_;
    const Telescope& telescope_;
    double largestZenithDistance_;
    LimitsCalc limits_;
    DateContext kept_;
    DateContext date_ = kept_;
    double serves_ = 0.0; ///< the instant for which the kept context was made
};

} // namespace

std::vector<Interval> scannedWindows(FocalPlane pointing, const Telescope& telescope, double largestZenithDistance,
                                     double begin, double end) {
    Scan scan(pointing, telescope, largestZenithDistance);
    std::vector<Interval> found;
    const auto changeBetween = [&](double before, double after, bool passedBefore) {
        while (after - before > kBisected) {
            const double middle = before + (after - before) / 2;
            pointing.setDate(middle);
            (scan.passes() == passedBefore ? before : after) = middle;
        }
        return before + (after - before) / 2;
    };
    scan.pointAt(begin);
    bool passedBefore = scan.passes();
    if (passedBefore) {
        found.push_back({begin, end});
    }
    for (double instant = begin; instant < end;) {
        const double next = std::min(end, instant + std::clamp(scan.steadyFor(), kFinestStep, kLongestStep));
        scan.pointAt(next);
        const bool passes = scan.passes();
        if (passes && !passedBefore) {
            found.push_back({changeBetween(instant, next, false), end});
        } else if (!passes && passedBefore) {
            found.back().end = changeBetween(instant, next, true);
        }
        if (passes != passedBefore) {
            scan.pointAt(next);
        }
        passedBefore = passes;
        instant = next;
    }
    return found;
}
