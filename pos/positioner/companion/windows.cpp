#include "windows.h"

#include "FieldTrack.h"
#include "SunAndMoon.h"
#include "angles.h"
#include "numberText.h"

#include <algorithm>
#include <erfa.h>

namespace pos {

namespace {

/** The parts of some stretches in which a requirement holds. */
std::vector<Stretch> narrowed(const std::vector<Stretch>& stretches, Requirement& requirement) {
    const std::vector<Curve> curves = requirement.curves(stretches.front().begin, stretches.back().end);
    std::vector<Stretch> kept;
    for (const Stretch& stretch : stretches) {
        std::vector<double> cuts = {stretch.begin, stretch.end};
        for (const Curve& curve : curves) {
            const std::vector<double> found = crossings(curve, stretch.begin, stretch.end);
            cuts.insert(cuts.end(), found.begin(), found.end());
        }
        std::sort(cuts.begin(), cuts.end());
        const auto isSame = [](double one, double other) { return other - one < 2 * kRootError; };
        cuts.erase(std::unique(cuts.begin(), cuts.end(), isSame), cuts.end());
        bool heldBefore = false;
        for (std::size_t i = 1; i < cuts.size(); ++i) {
            const Stretch part = {cuts.at(i - 1), cuts.at(i), stretch.beginLimit, stretch.endLimit};
            const bool holds = requirement.holds(part.begin + (part.end - part.begin) / 2);
            if (holds && heldBefore) {
                kept.back().end = part.end;
            } else if (holds) {
                kept.push_back(part);
                if (i > 1) {
                    kept.back().beginLimit = requirement.limitAt(part.begin);
                }
            } else if (heldBefore) {
                kept.back().endLimit = requirement.limitAt(part.begin);
            }
            heldBefore = holds;
        }
    }
    return kept;
}

/** Local apparent sidereal time (ERFA eraGst00b, good to a millisecond), radians. */
double siderealTime(double mjdTai, double eastLongitude) {
    return eraAnp(eraGst00b(kMjdZero, utcOf(mjdTai)) + eastLongitude);
}

Moment momentAt(FieldTrack& track, double mjdTai) {
    const FocalPlane& pointing = track.at(mjdTai);
    const double altitude = pointing.altitude();
    return {mjdTai,
            siderealTime(mjdTai, pointing.eastLongitude()),
            pointing.hourAngle(),
            altitude,
            airmass(altitude),
            pointing.azimuth(),
            pointing.parallacticAngle(),
            track.rotatorAngle(),
            pointing.hourAngle()};
}

Window windowOf(FieldTrack& track, const Stretch& stretch) {
    Window window{
        momentAt(track, stretch.begin), momentAt(track, stretch.end), {}, stretch.beginLimit, stretch.endLimit};
    window.best = window.start.altitude < window.end.altitude ? window.end : window.start;
    for (const double culmination : track.upperCulminations(stretch.begin, stretch.end)) {
        const Moment highest = momentAt(track, culmination);
        if (culmination < stretch.end && highest.altitude > window.best.altitude) {
            window.best = highest;
        }
    }
    return window;
}

/** Moves the ends of a stretch inwards, where it is not too short for that. */
Stretch inside(Stretch stretch, double margin) {
    if (stretch.end - stretch.begin > 4 * margin) {
        stretch.begin += margin;
        stretch.end -= margin;
    }
    return stretch;
}

/** The beginning of a sentence: when all else holds that was required. */
std::string whenElse(const std::vector<Stretch>& stretches, const Night& night) {
    const double begin = stretches.front().begin;
    const double end = stretches.back().end;
    const bool isWholeNight = begin == night.begin && end == night.end;
    return isWholeNight ? "In this night "
                        : "From " + utcText(begin, 0).substr(11, 5) + " to " + utcText(end, 0).substr(11, 5) +
                              " UTC, while all else holds, ";
}

std::string minutesText(double days) {
    return fixedText(days * 24 * 60, 1).toStdString();
}

NightWindows without(const Night& night, const std::vector<Stretch>& stretches, const std::string& why) {
    return {night, {}, whenElse(stretches, night) + why};
}

} // namespace

NightWindows findWindows(const FocalPlane& pointing, const Telescope& telescope, const DateContexts& contexts,
                         const Night& night, const WindowOptions& options) {
    FieldTrack track(pointing, telescope, contexts);
    std::vector<Stretch> stretches = {{night.begin, night.end, WindowLimit::Noon, WindowLimit::Noon}};
    for (const auto& requirement : requirements(track, contexts, options)) {
        std::vector<Stretch> narrower = narrowed(stretches, *requirement);
        if (narrower.empty()) {
            return without(night, stretches, requirement->whyNever(stretches));
        }
        stretches = std::move(narrower);
    }
    const auto length = [](const Stretch& stretch) { return stretch.end - stretch.begin; };
    const auto isShorter = [&](const Stretch& a, const Stretch& b) { return length(a) < length(b); };
    const Stretch longest = *std::max_element(stretches.begin(), stretches.end(), isShorter);
    if (length(longest) < options.shortest) {
        return without(night, {longest},
                       "the longest window of the night lasts " + minutesText(length(longest)) + " minutes, and " +
                           minutesText(options.shortest) + " are asked for");
    }
    NightWindows found{night, {}, {}};
    for (const Stretch& stretch : stretches) {
        if (length(stretch) >= options.shortest) {
            found.windows.push_back(windowOf(track, inside(stretch, options.margin)));
            found.windows.back().isLongest = stretch.begin == longest.begin;
        }
    }
    return found;
}

} // namespace pos
