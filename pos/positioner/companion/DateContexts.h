/**
 * @file
 * The date's part of the conversions, for many instants of some nights.
 */
#ifndef POS_DATECONTEXTS_H
#define POS_DATECONTEXTS_H

#include "CelestialPosition.h"

#include <vector>

namespace pos {

/**
 * The contexts of a span of time. The astronomy library makes some of them, at most 0.4 days apart; the others are
 * interpolated between twelve of these, or all, by a polynomial, number by number.
 *
 * Nothing that matters in the model takes less than some days to turn, so that what is left is hardly more than the
 * rounding of the numbers.
 */
class DateContexts {
public:
    /** How far a place by an interpolated context may be from the library's, radians: 0.002 microarcseconds. */
    static constexpr double kLargestError = 1e-14;

    /** @param begin, end of the span, MJD, TAI */
    DateContexts(double begin, double end);

    /** The context of an instant within the span. */
    DateContext at(double mjdTai) const;

private:
    double begin_;
    double spacing_; ///< days
    std::vector<DateContext> nodes_;
};

} // namespace pos

#endif
