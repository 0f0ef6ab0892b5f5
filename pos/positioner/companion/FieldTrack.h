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
    FieldTrack(const FocalPlane& pointing, const Telescope& telescope, const DateContexts& contexts);

    /** The pointing at an instant, good until the next call. */
    const FocalPlane& at(double mjdTai);

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

    /**
     * What passes zero where the rotator reaches a limit, or the angle half a turn from it: the sine of the angle
     * between them, times those of the field's distances from zenith and pole. It changes no faster than the field
     * moves, while the rotator turns half about in no time where the field passes the zenith.
     */
    std::vector<Curve> rotatorLimits(double begin, double end);

private:
    std::vector<double> transits(double hourAngle, double begin, double end);
    std::vector<double> oppositeTransits(double hourAngle, double begin, double end);
    Curve rotatorAbove(double limit, double begin, double end, const std::vector<double>& jumps);

    FocalPlane pointing_;
    FocalPlane airless_;
    Telescope telescope_;
    const DateContexts& contexts_;
};

} // namespace pos

#endif
