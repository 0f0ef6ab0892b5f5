/**
 * @file
 * Positions in the frame of the plate in use.
 */
#ifndef POS_PLATECOORDINATES_H
#define POS_PLATECOORDINATES_H

#include "FocalPlaneCoordinates.h"
#include "PlateGeometry.h"

#include <array>

class QDomDocument;

namespace pos {

class PosConfig;

/**
 * A position in the frame of the current plate, millimetres.
 *
 * The plate geometry is class-wide: one set of offsets per plate, one current plate and one rotation per process.
 * The plate position is the focal-plane position, turned by the rotation from x towards y and shifted by the current
 * plate's x0 and y0. While that state does not change, converting to the focal plane and back is exact except for
 * rounding.
 */
class PlateCoordinates {
public:
    double x; ///< millimetres
    double y; ///< millimetres

    /** A position on the current plate, mm. */
    PlateCoordinates(double xMm, double yMm) : x(xMm), y(yMm) {}

    /** The plate position of a position in the focal plane. */
    PlateCoordinates(FocalPlaneCoordinates f); // NOLINT(google-explicit-constructor): the same place

    /** The focal-plane position of this plate position. */
    operator FocalPlaneCoordinates() const; // NOLINT(google-explicit-constructor): the same place

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
     * The rotation in force afterwards is that of VEKO, the plate read last, even if another plate becomes current;
     * that plate's own rotation takes effect with setPlate. What was read before a failure stays stored.
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

    /** The plate geometry in force. */
    static PlateGeometry geometry();
    /** Puts a plate geometry in force. */
    static void setGeometry(const PlateGeometry& geometry);

private:
    static void setPlateRotation(double angle);

    static std::array<double, kPlateCount> x0_;
    static std::array<double, kPlateCount> y0_;
    static std::array<double, kPlateCount> r0_;
    static PlateName plate_;
    static double rotation_; ///< radians; its cosine and sine are cos_r_ and sin_r_
    static double cos_r_;
    static double sin_r_;
};

} // namespace pos

#endif
