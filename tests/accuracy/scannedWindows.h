#ifndef POS_TESTS_ACCURACY_SCANNEDWINDOWS_H
#define POS_TESTS_ACCURACY_SCANNEDWINDOWS_H

#include "FocalPlane.h"

#include <vector>

/** One second of a date, days. */
inline constexpr double kSecond = 1.0 / 86400;

/** An interval of time, MJD, TAI. */
struct Interval {
    double begin;
    double end;
};

/**
 * The intervals in which the run's own checks let a field pass, by asking them again and again.
 *
 * Each step is so short that no check can change its answer on it: how far the field is from each limit is divided by
 * the fastest that anything on the sky can move there. Near a limit a step is 0.4 s, so that nothing that lasts longer
 * is missed. A change is bisected with the date's part of the model worked out at each instant, to 10 µs.
 */
std::vector<Interval> scannedWindows(pos::FocalPlane pointing, const pos::Telescope& telescope,
                                     double largestZenithDistance, double begin, double end);

#endif
