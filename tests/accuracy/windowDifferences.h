/**
 * Windows that are found, held to those that the run's own checks show.
 */
#ifndef POS_TESTS_ACCURACY_WINDOWDIFFERENCES_H
#define POS_TESTS_ACCURACY_WINDOWDIFFERENCES_H

#include "Spread.h"
#include "windowCases.h"

/** What was found for some cases. */
struct WindowDifferences {
    int nights = 0;
    int windows = 0;
    Spread ends;         ///< milliseconds
    int lost = 0;        ///< windows that last more than a second and are not found, and gaps between two
    int invented = 0;    ///< windows that are none, and gaps
    int wrongLimits = 0; ///< ends that are put down to a limit that the field keeps a millisecond later

    void add(const WindowCase& made);
};

#endif
