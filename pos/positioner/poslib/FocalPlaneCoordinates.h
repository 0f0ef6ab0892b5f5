/**
 * @file
 * Positions in the telescope's focal plane, and the optical model that links them to the sky.
 */
#ifndef POS_FOCALPLANECOORDINATES_H
#define POS_FOCALPLANECOORDINATES_H

#include "CelestialPosition.h"
#include "Optics.h"

#include <array>
#include <utility>

class QDomDocument;

namespace pos {

class PosConfig;

/**
 * A position in the focal plane, millimetres from the optical axis, in the frame of the field.
 *
 * The optical model is class-wide, one per process: a distortion polynomial that maps a field angle θ in degrees to a
 * radius in millimetres at the nominal focal length,
 *     P(θ) = c1·θ + c3·θ³ + c5·θ⁵,
 * the ratio of the focal length in use to the nominal one, a reflection of the sky's east-west axis, and the rotation
 * by the field's position angle. The seventh-order coefficient "c7" of the map has no effect.
 *
 * Objects are plain numbers; a change of the model does not touch them, and a conversion uses the model of its time.
 */
class FocalPlaneCoordinates {
public:
    double x; ///< millimetres
    double y; ///< millimetres

    /** The optical parameters that callers save and restore; neither nominal focal length nor rotation. */
    struct params {
        double focalLength; ///< focal length in use, mm
        double c1;          ///< mm/degree
        double c3;          ///< mm/degree³
        double c5;          ///< mm/degree⁵
    };

    /** A position in the focal plane, mm. */
    FocalPlaneCoordinates(double xMm, double yMm) : x(xMm), y(yMm) {}

    /** The focal-plane position of a point of the tangent plane. The sky's east lies towards negative x. */
    FocalPlaneCoordinates(StandardCoordinates sc); // NOLINT(google-explicit-constructor): the same place

    /**
     * The point of the tangent plane that lies at this position.
     *
     * @throw std::runtime_error "Inverse distortion not converging at a radius of … mm"
     */
    operator StandardCoordinates() const; // NOLINT(google-explicit-constructor): the same place

    /**
     * The position of a point of the tangent plane before rotation: in the direction of (xi, eta), at the radius P(θ)
     * times the ratio of the focal lengths, with the length of (xi, eta) in degrees as θ. Below 1e-9 radians the radius
     * is the focal length in use times the length of (xi, eta).
     *
     * @param xi, eta tangent-plane coordinates, radians, xi already reflected
     * @return (x, y), mm
     */
    std::pair<double, double> project(double xi, double eta) const;

    /**
     * The inverse of project, by Newton iteration on P(θ) = radius until a step is at most 1e-10 degrees. The result is
     * (0, 0) within 1e-10 mm of the axis.
     *
     * @param xMm, yMm position before rotation, mm
     * @return (xi, eta), radians, xi still reflected
     * @throw std::runtime_error "Inverse distortion not converging at a radius of … mm", after 1000 steps, as happens
     *     with NaN and where the polynomial is not monotonic
     */
    std::pair<double, double> unproject(double xMm, double yMm) const;

    /** P(θ) − r. @param r radius, mm @param theta field angle, degrees */
    double func(double r, double theta) const;

    /** P′(θ), mm/degree. @param theta field angle, degrees */
    double derivFunc(double theta) const;

    /**
     * Loads the focal-plane map that the configuration names at "telescope.focal_plane_map" and initialises from it.
     * Throws what PosConfig::getFilename, loadXmlFile and the other overload throw.
     */
    static void initialise(const PosConfig& config);

    /**
     * Takes focal length and distortion coefficients from a focal-plane map; the rotation becomes 0.
     *
     * What was read before a failure stays stored.
     *
     * @throw std::runtime_error "Bad focal length in focal plane map"
     * @throw std::runtime_error "Bad coefficient in focal plane map"
     */
    static void initialise(const QDomDocument& map);

    /** The focal length in use, mm. */
    static double focalLength();
    /** The focal length for which the polynomial holds, mm. */
    static double nominalFocalLength();
    /** Sets the focal length in use, mm, and with it the plate scale; the nominal one stays. */
    static void setFocalLength(double mm);
    /** Sets the coefficients of the polynomial, mm/degree, mm/degree³ and mm/degree⁵. */
    static void setDistortion(double c1, double c3, double c5);
    /** Sets the rotation of the field. @param angle position angle, radians */
    static void setRotation(double angle);
    /** The angle last given to setRotation, radians; 0 after initialise. */
    static double rotation();

    /** The optical model in force. */
    static Optics optics();
    /** Puts an optical model in force; the rotation stays. */
    static void setOptics(const Optics& optics);

    /** The parameters in force. */
    static params save();
    /** Puts saved parameters in force again. */
    static void restore(const params& saved);

private:
    static double nominal_fl_;
    static double focal_length_;
    static std::array<double, 3> coeffs_; ///< c1, c3, c5
    static double r_;                     ///< the negative of the angle last given to setRotation
    static double cos_r_;
    static double sin_r_; ///< sin of r_
};

} // namespace pos

#endif
