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
    const int steps = static_cast<int>((night.end - night.begin) / kTenMinutes);
    for (int step = 0; step <= steps; ++step) {
        const double instant = night.begin + step * kTenMinutes;
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
    const auto first = static_cast<qint64>(std::ceil((begin - taiLessUtc) / kTenMinutes));
    const auto last = static_cast<qint64>(std::floor((end - taiLessUtc) / kTenMinutes));
    std::vector<NightSample> samples;
    for (qint64 step = first; step <= last; ++step) {
        const double instant =
            std::round((static_cast<double>(step) * kTenMinutes + taiLessUtc) / kMicroday) * kMicroday;
        const DateContext context = contexts.at(instant);
        const FocalPlane& pointing = track.at(instant);
        samples.push_back({instant, pointing.altitude(), track.rotatorAngle(), pointing.parallacticAngle(),
                           sunFrom(track.telescope(), context).altitude,
                           moonFrom(track.telescope(), context).altitude});
    }
    return samples;
}

} // namespace pos
