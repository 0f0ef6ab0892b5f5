// Where a star falls on the plate of the VEKO, millimetres:
//     star_on_plate CENTRE_RA CENTRE_DEC JULIAN_EPOCH STAR_RA STAR_DEC      (degrees, years)
#include "FocalPlane.h"
#include "PosConfig.h"
#include "angles.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char* argv[]) {
    if (argc != 6) {
        return EXIT_FAILURE;
    }
    //! [star on plate]
    const auto radians = [argv](int i) { return pos::degreesToRadians(std::atof(argv[i])); };
    const pos::PosConfig config(":/configure.xml", pos::PosConfig::XML);
    const double mjd = 51544.5 + (std::atof(argv[3]) - 2000.0) * 365.25;
    const pos::Conditions conditions{mjd, 281.5, 770.0, 0.25}; // date, kelvin, millibar, relative humidity
    const pos::FocalPlane pointing(config, pos::VEKO, {radians(1), radians(2)}, 0.0, conditions);
    const pos::CIRS star = pos::Astrometric{radians(4), radians(5)}.toCirs(mjd);
    const pos::PlateCoordinates position = pointing.cirsToXy(star);
    std::printf("%.6f %.6f\n", position.x, position.y);
    //! [star on plate]
    return EXIT_SUCCESS;
}
