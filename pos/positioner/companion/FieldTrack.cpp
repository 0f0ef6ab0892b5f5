#include "FieldTrack.h"

#include "angles.h"

#include <algorithm>
#include <cmath>

namespace pos {

namespace {

/** What an hour angle changes in a day, radians. */
constexpr double kHourAngleRate = 2 * kPi * 1.00273790934;

/** The range of rotator angles that are between the limits: those of a wrapped angle. */
struct RotatorRange {
    double low;
    double high;

    explicit RotatorRange(const Telescope& telescope)
        : low(std::max(telescope.rotatorLowLimit, -kPi)), high(std::min(telescope.rotatorHighLimit, kPi)) {}

    double middle() const {
        return (low + high) / 2;
    }
    bool isWholeTurn() const {
        return high - low >= 2 * kPi;
    }
};

FocalPlane withoutAir(FocalPlane pointing) {
    Conditions conditions = pointing.conditions();
    conditions.pressure = 0.0;
    pointing.setConditions(conditions);
    return pointing;
}

std::vector<double> merged(std::vector<double> instants, const std::vector<double>& more) {
    instants.insert(instants.end(), more.begin(), more.end());
    std::sort(instants.begin(), instants.end());
    return instants;
}

} // namespace

FieldTrack::FieldTrack(const FocalPlane& pointing, const Telescope& telescope, const DateContexts& contexts)
    : pointing_(pointing), airless_(withoutAir(pointing)), telescope_(telescope), contexts_(contexts) {}

const FocalPlane& FieldTrack::at(double mjdTai) {
    pointing_.setDate(contexts_.at(mjdTai));
    return pointing_;
}

double FieldTrack::rotatorAngle() {
    return LimitsCalc(telescope_, pointing_, 0.0).rotatorAngle();
}

bool FieldTrack::isRotatorInside() {
    return LimitsCalc(telescope_, pointing_, 0.0).checkRotator();
}

double FieldTrack::rotatorFromMiddle() {
    return wrapAngle(rotatorAngle() - RotatorRange(telescope_).middle());
}

/** Without air, through which the hour angle would not change evenly near the pole. */
std::vector<double> FieldTrack::transits(double hourAngle, double begin, double end) {
    const auto toGo = [&](double mjdTai) {
        airless_.setDate(contexts_.at(mjdTai));
        return wrapAngle(hourAngle - airless_.hourAngle());
    };
    const double fromBegin = toGo(begin);
    double instant = begin + (fromBegin < 0 ? fromBegin + 2 * kPi : fromBegin) / kHourAngleRate;
    std::vector<double> found;
    while (instant <= end) {
        instant += toGo(instant) / kHourAngleRate;
        found.push_back(instant);
        instant += 2 * kPi / kHourAngleRate;
    }
    return found;
}

std::vector<double> FieldTrack::oppositeTransits(double hourAngle, double begin, double end) {
    return merged(transits(hourAngle, begin - kTurnError, end + kTurnError),
                  transits(hourAngle + kPi, begin - kTurnError, end + kTurnError));
}

Curve FieldTrack::altitudeAbove(double limit, double begin, double end) {
    const auto above = [this, limit](double mjdTai) { return kPi / 2 - limit - at(mjdTai).zenithDistance(); };
    // Where the field hardly rises or sets, precession, nutation and aberration turn it at other times.
    constexpr double kLeastSwing = 1e-5; // radians
    const bool isStill = std::cos(at(begin).tangentDec()) * std::cos(telescope_.latitude) < kLeastSwing;
    return {above, isStill ? turnsOf(above, begin, end) : oppositeTransits(0.0, begin, end)};
}

/**
 * With the parallactic angle p of the limit, the quantity is sin p · C − cos p · S, where
 *     S = cos φ · cos δ · sin H,
 *     C = cos δ · (sin φ · cos δ − cos φ · sin δ · cos H)
 * are sine and cosine of the field's parallactic angle, times sin z · cos δ. Its derivative by H is zero where
 *     tan H = cos p / (sin p · sin δ).
 */
Curve FieldTrack::rotatorAbove(double limit, double begin, double end, const std::vector<double>& jumps) {
    const double ofLimit = pointing_.rotatorOffset() + pointing_.positionAngle() - limit;
    airless_.setDate(contexts_.at(begin));
    const double turn = std::atan2(std::cos(ofLimit), std::sin(ofLimit) * std::sin(airless_.tangentDec()));
    const auto above = [this, limit](double mjdTai) {
        const FocalPlane& pointing = at(mjdTai);
        return std::sin(pointing.zenithDistance()) * std::cos(pointing.tangentDec()) * std::sin(rotatorAngle() - limit);
    };
    return {above, oppositeTransits(turn, begin, end), jumps};
}

std::vector<Curve> FieldTrack::rotatorLimits(double begin, double end) {
    const RotatorRange range(telescope_);
    if (range.isWholeTurn()) {
        return {};
    }
    const std::vector<double> refractionEnds =
        crossings(altitudeAbove(telescope_.horizonLimit, begin - kTurnError, end + kTurnError), begin - kTurnError,
                  end + kTurnError);
    return {rotatorAbove(range.low, begin, end, refractionEnds), rotatorAbove(range.high, begin, end, refractionEnds)};
}

} // namespace pos
