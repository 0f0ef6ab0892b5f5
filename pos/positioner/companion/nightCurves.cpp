#include "nightCurves.h"

#include "SunAndMoon.h"
#include "angles.h"

#include <algorithm>
#include <cmath>

namespace pos {

namespace {

constexpr double kTenMinutes = 10.0 / 1440;
constexpr double kHalfAnHour = 0.5 / 24;

} // namespace

std::pair<double, double> darkPart(const Telescope& site, const DateContexts& contexts, const Night& night) {
    double first = night.end;
    double last = night.begin;
    for (double instant = night.begin; instant < night.end; instant += kTenMinutes) {
        if (sunFrom(site, contexts.at(instant)).altitude < 0) {
            first = std::min(first, instant);
            last = instant;
        }
    }
    if (first > last) {
        return {night.begin, night.end};
    }
    return {std::max(night.begin, first - kHalfAnHour), std::min(night.end, last + kHalfAnHour)};
}

std::vector<NightSample> sampleNight(FieldTrack& track, const DateContexts& contexts, double begin, double end) {
    constexpr double kMicroday = 1e-6; // written with so many decimals, an instant stays what it is
    const double taiLessUtc = begin - utcOf(begin);
    std::vector<NightSample> samples;
    for (double steps = std::ceil((begin - taiLessUtc) / kTenMinutes);; steps += 1) {
        const double instant = std::round((steps * kTenMinutes + taiLessUtc) / kMicroday) * kMicroday;
        if (instant > end) {
            return samples;
        }
        const DateContext context = contexts.at(instant);
        const FocalPlane& pointing = track.at(instant);
        samples.push_back({instant, kPi / 2 - pointing.zenithDistance(), track.rotatorAngle(),
                           pointing.parallacticAngle(), sunFrom(track.telescope(), context).altitude,
                           moonFrom(track.telescope(), context).altitude});
    }
}

} // namespace pos
