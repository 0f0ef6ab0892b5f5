#include "FieldTrack.h"

#include "angles.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace pos {

namespace {

/** What an hour angle changes in a day, radians. */
constexpr double kHourAngleRate = 2 * kPi * 1.00273790934;

/** The range of rotator angles that are between the limits: those of a wrapped angle. */
struct Range {
    double low;
    double high;

    explicit Range(const Telescope& telescope)
        : low(std::max(telescope.rotatorLowLimit, -kPi)), high(std::min(telescope.rotatorHighLimit, kPi)) {}

    double middle() const {
        return (low + high) / 2;
    }
};

std::vector<double> merged(std::vector<double> instants, const std::vector<double>& more) {
    instants.insert(instants.end(), more.begin(), more.end());
    std::sort(instants.begin(), instants.end());
    return instants;
}

} // namespace

const FocalPlane& FieldTrack::at(double mjdTai) {
    pointing_.setDate(contexts_.at(mjdTai));
    return pointing_;
}

const FocalPlane& FieldTrack::exactlyAt(double mjdTai) {
    pointing_.setDate(DateContext(mjdTai));
    return pointing_;
}

double FieldTrack::rotatorAngle() {
    return LimitsCalc(telescope_, pointing_, 0.0).rotatorAngle();
}

bool FieldTrack::isRotatorInside() {
    return LimitsCalc(telescope_, pointing_, 0.0).checkRotator();
}

double FieldTrack::rotatorFromMiddle() {
    return wrapAngle(rotatorAngle() - Range(telescope_).middle());
}

std::vector<double> FieldTrack::transits(double hourAngle, double begin, double end) {
    const double toGo = hourAngle - at(begin).hourAngle();
    double instant = begin + (toGo < 0 ? toGo + 2 * kPi : toGo) / kHourAngleRate;
    std::vector<double> found;
    while (instant <= end) {
        for (int step = 0; step < 2; ++step) {
            instant -= wrapAngle(at(instant).hourAngle() - hourAngle) / kHourAngleRate;
        }
        found.push_back(instant);
        instant += 2 * kPi / kHourAngleRate;
    }
    return found;
}

std::vector<double> FieldTrack::culminations(double begin, double end) {
    return merged(transits(0.0, begin, end), transits(kPi, begin, end));
}

/**
 * Where a field passes due east and due west, the parallactic angle turns. A field that is nearer to the pole than the
 * zenith is never passes there.
 */
std::vector<double> FieldTrack::primeVerticals(double begin, double end) {
    const double cosine = std::tan(at(begin).tangentDec()) / std::tan(telescope_.latitude);
    if (!(std::fabs(cosine) < 1)) {
        return {};
    }
    return merged(transits(std::acos(cosine), begin, end), transits(-std::acos(cosine), begin, end));
}

Curve FieldTrack::altitudeAbove(double limit, double begin, double end) {
    const auto above = [limit](const FocalPlane& pointing) { return kPi / 2 - limit - pointing.zenithDistance(); };
    return {[this, above](double mjdTai) { return above(at(mjdTai)); },
            [this, above](double mjdTai) { return above(exactlyAt(mjdTai)); }, culminations(begin, end)};
}

Curve FieldTrack::rotatorInside(double begin, double end) {
    const Range range(telescope_);
    const double halfWidth = (range.high - range.low) / 2;
    const auto fromMiddle = [this](double mjdTai) {
        at(mjdTai);
        return rotatorFromMiddle();
    };
    const auto inside = [this, halfWidth] { return halfWidth - std::fabs(rotatorFromMiddle()); };
    std::vector<double> turns = merged(culminations(begin, end), primeVerticals(begin, end));
    // Where refraction ends, the parallactic angle jumps.
    turns = merged(turns, crossings(altitudeAbove(telescope_.horizonLimit, begin, end), begin, end));
    // In the middle of its range the rotator turns from one limit to the other, and half a turn away back again.
    turns = merged(turns, crossings({fromMiddle, fromMiddle, turns}, begin, end));
    return {[this, inside](double mjdTai) {
                at(mjdTai);
                return inside();
            },
            [this, inside](double mjdTai) {
                exactlyAt(mjdTai);
                return inside();
            },
            turns};
}

} // namespace pos
