/**
 * @file
 * The way of a field across the sky of a night.
 */
#ifndef POS_FIELDTRACK_H
#define POS_FIELDTRACK_H

#include "DateContexts.h"
#include "FocalPlane.h"
#include "LimitsCalc.h"
#include "curves.h"

#include <vector>

namespace pos {

/**
 * Where a field stands at the instants of a span of time, as the run points at it: with its model, refraction and
 * weather. Its optical model and plates are not used.
 */
class FieldTrack {
public:
    /**
     * @param pointing at the field, with the weather
     * @param telescope limits of the rotator
     * @param contexts of the span, which must outlive this object
     */
    FieldTrack(const FocalPlane& pointing, const Telescope& telescope, const DateContexts& contexts)
        : pointing_(pointing), telescope_(telescope), contexts_(contexts) {}

    /** The pointing at an instant, to DateContexts::kLargestError; good until the next call. */
    const FocalPlane& at(double mjdTai);

    /** The same without an error, a hundred times as slow. */
    const FocalPlane& exactlyAt(double mjdTai);

    /** The rotator angle at the instant asked for last, radians, in [−π, π]. */
    double rotatorAngle();

    /** Whether it is between the limits. */
    bool isRotatorInside();

    /** On which side of the middle of its range it is, radians, in [−π, π]: negative is the low one. */
    double rotatorFromMiddle();

    const Telescope& telescope() const {
        return telescope_;
    }

    /** The instants at which the field culminates, ascending. */
    std::vector<double> upperCulminations(double begin, double end) {
        return transits(0.0, begin, end);
    }

    /** The altitude less a limit, radians. */
    Curve altitudeAbove(double limit, double begin, double end);

    /** How far the rotator is inside its limits, radians. */
    Curve rotatorInside(double begin, double end);

private:
    std::vector<double> transits(double hourAngle, double begin, double end);
    std::vector<double> culminations(double begin, double end);
    std::vector<double> primeVerticals(double begin, double end);

    FocalPlane pointing_;
    Telescope telescope_;
    const DateContexts& contexts_;
};

} // namespace pos

#endif
