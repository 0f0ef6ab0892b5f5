/**
 * @file
 * When a field can be observed.
 */
#ifndef POS_WINDOWS_H
#define POS_WINDOWS_H

#include "DateContexts.h"
#include "FocalPlane.h"
#include "Night.h"
#include "Telescope.h"
#include "requirements.h"

#include <string>
#include <vector>

namespace pos {

/** Where a field stands at an instant. Angles are radians. */
struct Moment {
    double mjdTai;
    double siderealTime; ///< local apparent, 0 to 2π
    double hourAngle;    ///< observed, −π to π
    double altitude;     ///< observed
    double airmass;      ///< NaN below the horizon
    double azimuth;      ///< observed, from north through east, 0 to 2π
    double parallacticAngle;
    double rotatorAngle; ///< −π to π
    double runHourAngle; ///< what a run takes for the moment: the hour angle of its document's first field, −π to π
};

/** An interval in which everything holds that is required. */
struct Window {
    Moment start{};
    Moment end{};
    Moment best{}; ///< the highest
    WindowLimit startLimit = WindowLimit::Noon;
    WindowLimit endLimit = WindowLimit::Noon;
    bool isLongest = false;

    /** Days. */
    double length() const {
        return end.mjdTai - start.mjdTai;
    }
};

/** The windows of a field in a night. */
struct NightWindows {
    Night night;
    std::vector<Window> windows; ///< in the order of time; the longest is marked
    std::string reason;          ///< why there is none, in a sentence; empty where there is one
};

/**
 * Finds the windows of a field in a night: each end to less than 1 ms, and every window longer than a second.
 *
 * @param pointing at the field, with position angle and weather
 * @param telescope site, and limits of the rotator
 * @param contexts of a span that holds the night
 */
NightWindows findWindows(const FocalPlane& pointing, const Telescope& telescope, const DateContexts& contexts,
                         const Night& night, const WindowOptions& options);

} // namespace pos

#endif
