/**
 * @file
 * A square of the plate that fills a picture.
 */
#ifndef POS_PLATEVIEW_H
#define POS_PLATEVIEW_H

#include "PlateCoordinates.h"

#include <vector>

namespace pos {

/** A place in a picture, pixels from its upper left corner. */
struct Pixel {
    double x;
    double y;
};

/** A square of the plate, or of another plane, that fills a picture: x to the right, y up. */
class PlateView {
public:
    /** The side of the picture, pixels of its own. */
    static constexpr double kSize = 720;

    /** @param halfSize mm, or the unit of the other plane */
    PlateView(PlateCoordinates centre, double halfSize) : centre_(centre), scale_(kSize / 2 / halfSize) {}

    /** The square that holds all places, with a margin. @param places at least one */
    static PlateView around(const std::vector<PlateCoordinates>& places);

    PlateCoordinates centre() const {
        return centre_;
    }
    double pixelsPerMm() const {
        return scale_;
    }
    Pixel at(PlateCoordinates place) const {
        return {kSize / 2 + (place.x - centre_.x) * scale_, kSize / 2 - (place.y - centre_.y) * scale_};
    }
    double length(double mm) const {
        return mm * scale_;
    }
    bool shows(PlateCoordinates place) const {
        const Pixel pixel = at(place);
        return pixel.x > 0 && pixel.x < kSize && pixel.y > 0 && pixel.y < kSize;
    }

private:
    PlateCoordinates centre_;
    double scale_; ///< pixels per mm
};

} // namespace pos

#endif
