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
 * The contexts of a span of time. The astronomy library makes some of them, at most half a day apart; the others are
 * interpolated between four of these by cubic polynomials, number by number.
 *
 * The fastest terms that matter are those of the nutation with periods of 9 to 14 days, 0.03 to 0.2 arcsec: half a day
 * apart they leave at most 0.05 mas.
 */
class DateContexts {
public:
    /** How far a place by an interpolated context may be from the library's, radians: 0.05 mas. */
    static constexpr double kLargestError = 2.5e-10;

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
