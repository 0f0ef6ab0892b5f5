/**
 * Nights for which windows are measured, the same in every run and on every machine.
 */
#ifndef POS_TESTS_ACCURACY_WINDOWCASES_H
#define POS_TESTS_ACCURACY_WINDOWCASES_H

#include "Night.h"
#include "fields.h"

#include <functional>
#include <vector>

/** A field in a night, and the limits. */
struct WindowCase {
    Pointing pointing;
    pos::Night night{};
    double zenithDistanceLimit = 0.0; ///< radians
};

/** Cases of a kind. */
struct WindowKind {
    const char* name;
    std::function<WindowCase(Numbers&)> make;
};

/** By site: fields, limits and weather of every kind, many of them awkward. */
std::vector<WindowKind> windowsBySite();

/** By what makes the window, or the gap between two: each lasts 1 to 3 seconds. */
std::vector<WindowKind> grazingWindows();

#endif
