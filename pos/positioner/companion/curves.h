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

/** How far a root may be from where it is found: 0.01 ms, in days. */
inline constexpr double kRootError = 1e-5 / 86400;

/** How far a turn may be from where it is thought to be: an hour, in days. */
inline constexpr double kTurnError = 1.0 / 24;

/** A quantity, at most about 1, and what is known about it. */
struct Curve {
    Quantities value;
    /** Here, to kTurnError, it turns; those up to kTurnError outside the interval in question count too. Ascending. */
    std::vector<double> turns;
    /** Here, to kRootError, it jumps. */
    std::vector<double> jumps = {};
};

/**
 * The instants at which a curve passes zero, to kRootError, ascending.
 *
 * Each is the root between two turns (TOMS 748). A turn that comes near zero is sought first (Brent), so that two roots
 * a second apart are found.
 */
std::vector<double> crossings(const Curve& curve, double begin, double end);

/** The instants, ascending and to some minutes, at which a quantity that takes hours to turn does so (Brent). */
std::vector<double> turnsOf(const Quantities& value, double begin, double end);

} // namespace pos

#endif
