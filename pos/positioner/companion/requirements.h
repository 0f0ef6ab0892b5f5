/**
 * @file
 * What must hold while a field is observed.
 */
#ifndef POS_REQUIREMENTS_H
#define POS_REQUIREMENTS_H

#include "curves.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pos {

class DateContexts;
class FieldTrack;

/** More than an epoch rounds when a run is given it, days: with ends told so far inwards the run accepts them, too. */
inline constexpr double kMarginOfRuns = 1e-4 / 86400;

/** Below which altitude, degrees, the Sun is in a twilight that has a name; nothing for "none", which any Sun fits. */
const std::map<std::string, std::optional<double>>& twilights();

/** What a window needs, beside the limits of the rotator. */
struct WindowOptions {
    double zenithDistanceLimit = 0.0;          ///< the field must be nearer to the zenith, radians
    std::optional<double> sunAltitude = {};    ///< the Sun must be lower, radians
    std::optional<double> largestAirmass = {}; ///< at least 1
    std::optional<double> moonDistance = {};   ///< while the Moon is up it must be farther away, radians
    double shortest = 0.0;                     ///< shorter windows do not count, days
    double margin = 0.0;                       ///< how far inwards ends are told, days
};

/** What ends a window. */
enum class WindowLimit { Horizon, RotatorLow, RotatorHigh, Twilight, Airmass, Moon, Noon };

/** "horizon", "rotator low", … */
const char* wordOf(WindowLimit limit);

/** A part of a night, MJD, TAI, and what ends it. */
struct Stretch {
    double begin;
    double end;
    WindowLimit beginLimit;
    WindowLimit endLimit;
};

/** Something that must hold. */
class Requirement {
public:
    Requirement() = default;
    virtual ~Requirement() = default;
    Requirement(const Requirement&) = delete;
    Requirement& operator=(const Requirement&) = delete;
    Requirement(Requirement&&) = delete;
    Requirement& operator=(Requirement&&) = delete;

    /** It begins and ceases to hold only where one of these passes zero. */
    virtual std::vector<Curve> curves(double begin, double end) = 0;

    /** Whether it holds at an instant at which none of its curves is zero. */
    virtual bool holds(double mjdTai) = 0;

    /** What it is that ends a window at an instant at which it ceases to hold. */
    virtual WindowLimit limitAt(double mjdTai) = 0;

    /** Why it never holds in some stretches: a sentence without its beginning, which tells these. */
    virtual std::string whyNever(const std::vector<Stretch>& stretches) = 0;
};

/**
 * All that must hold, the most telling first.
 *
 * @param track, contexts, options must outlive what is returned
 */
std::vector<std::unique_ptr<Requirement>> requirements(FieldTrack& track, const DateContexts& contexts,
                                                       const WindowOptions& options);

} // namespace pos

#endif
