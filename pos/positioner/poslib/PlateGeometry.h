/**
 * @file
 * The interchangeable plates, and how they lie in the focal plane.
 */
#ifndef POS_PLATEGEOMETRY_H
#define POS_PLATEGEOMETRY_H

#include <array>

namespace pos {

/** The interchangeable plates; the values are indices of the per-plate tables. */
enum PlateName { PLATE_A = 0, PLATE_B = 1, VEKO = 2 };

/** Number of plates. */
inline constexpr int kPlateCount = 3;

/** Where the optical axis meets a plate, and how the plate is turned. */
struct OpticalAxis {
    double x0; ///< mm
    double y0; ///< mm
    double r0; ///< rotation of the plate frame relative to the focal-plane frame, radians
};

/** The axes of all plates, and the plate in use. */
struct PlateGeometry {
    std::array<OpticalAxis, kPlateCount> axes; ///< by PlateName
    PlateName plate;                           ///< the plate in use: its offsets count
    double rotation;                           ///< the rotation that counts, radians; not always the plate's own
};

} // namespace pos

#endif
