/**
 * @file
 * Where quantities of a night pass zero.
 */
#ifndef POS_CURVES_H
#define POS_CURVES_H

#include <functional>
#include <vector>

namespace pos {

/** A quantity of an instant, MJD, TAI. */
using Quantities = std::function<double(double)>;

/** A continuous quantity, an angle in radians, and what is known about it. */
struct Curve {
    Quantities value;          ///< to DateContexts::kLargestError
    Quantities exact;          ///< without an error, and slowly
    std::vector<double> turns; ///< between which it rises or falls, to a few minutes; ascending
};

/**
 * The instants at which a curve passes zero, to 0.1 ms, ascending.
 *
 * Each is the root between two turns (TOMS 748). A turn that comes near zero is sought anew (Brent) without an error,
 * so that two roots a second apart are found, and so is a root through which the curve passes slowly.
 */
std::vector<double> crossings(const Curve& curve, double begin, double end);

/** The instants, ascending and to some minutes, at which a quantity that takes hours to turn does so (Brent). */
std::vector<double> turnsOf(const Quantities& value, double begin, double end);

} // namespace pos

#endif
