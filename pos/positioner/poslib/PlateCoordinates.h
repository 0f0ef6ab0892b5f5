/**
 * @file
 * Positions in the frame of the plate in use.
 */
#ifndef POS_PLATECOORDINATES_H
#define POS_PLATECOORDINATES_H

#include "FocalPlaneCoordinates.h"

#include <array>

class QDomDocument;

namespace pos {

class PosConfig;

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

/**
 * A position in the frame of the current plate, millimetres.
 *
 * The plate geometry is class-wide: one set of offsets per plate, one current plate and one rotation per process.
 * Converting to the focal plane and back is exact but for rounding while that state does not change.
 */
class PlateCoordinates {
public:
    double x; ///< millimetres
    double y; ///< millimetres

    /** A position on the current plate, mm. */
    PlateCoordinates(double xMm, double yMm) : x(xMm), y(yMm) {}

    /** The plate position of a position in the focal plane. */
    explicit PlateCoordinates(FocalPlaneCoordinates f);

    /** The focal-plane position of this plate position. */
    explicit operator FocalPlaneCoordinates() const;

    /**
     * Loads the focal-plane map that the configuration names at "telescope.focal_plane_map" and initialises from it.
     * Throws what PosConfig::getFilename, loadXmlFile and the other overload throw.
     *
     * @return the map
     */
    static QDomDocument initialise(const PosConfig& config, PlateName plate);

    /**
     * Takes the optical axes of all three plates from a focal-plane map and makes a plate current.
     *
     * The rotation in force afterwards is that of the plate read last, VEKO, whichever plate is made current; another
     * plate's own rotation takes effect with setPlate. What was read before a failure stays stored.
     *
     * @throw std::runtime_error "Bad optical axis in focal plane map"
     * @throw std::runtime_error "Bad plate rotation in focal plane map"
     */
    static void initialise(const QDomDocument& map, PlateName plate);

    /** Makes a plate current, with its rotation. */
    static void setPlate(PlateName plate);

    /**
     * Overwrites the optical axis of the current plate. The offsets act at once, the rotation with the next setPlate.
     *
     * @param x0, y0 mm
     * @param r0 radians
     */
    static void setPlatePosition(double x0, double y0, double r0);

    /** The optical axis of a plate as it is stored. */
    static OpticalAxis opticalAxis(PlateName plate);

private:
    static std::array<double, kPlateCount> x0_;
    static std::array<double, kPlateCount> y0_;
    static std::array<double, kPlateCount> r0_;
    static PlateName plate_;
    static double cos_r_;
    static double sin_r_;
};

} // namespace pos

#endif
