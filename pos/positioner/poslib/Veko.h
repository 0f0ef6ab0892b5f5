/**
 * @file
 * The VEKO, the instrument's large integral-field unit.
 */
#ifndef POS_VEKO_H
#define POS_VEKO_H

#include "FocalPlane.h"
#include "SatelliteFibre.h"

#include <cstdint>
#include <map>
#include <string>

namespace pos {

/** The bundle: where it is on its plate, the pointing of its plate, its fibres and their names. */
class Veko {
public:
    /** Centre and orientation of the bundle on the VEKO plate. */
    struct VekoCentre {
        double x;           ///< mm
        double y;           ///< mm
        double orientation; ///< rotation of the bundle about its centre, radians
    };

    /** A bundle without fibres, at a centre; the pointing is copied. */
    Veko(VekoCentre bundleCentre, const FocalPlane& pointing) : centre(bundleCentre), focalPlane(pointing) {}
    // The fibres point at the centre.
    Veko(const Veko&) = delete;
    Veko& operator=(const Veko&) = delete;
    Veko(Veko&&) = delete;
    Veko& operator=(Veko&&) = delete;
    ~Veko() = default;

    VekoCentre centre;                                          ///< the fibres follow its changes
    FocalPlane focalPlane;                                      ///< the pointing of the bundle's plate
    std::map<std::uint32_t, SatelliteFibre<VekoCentre>> fibres; ///< by fibre identifier
    std::map<std::uint32_t, std::string> names;                 ///< spaxel names, UTF-8, by fibre identifier
};

} // namespace pos

#endif
