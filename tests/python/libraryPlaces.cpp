/**
 * Leads places from the sky to the plate and back by the library alone: what the Python module must give to the bit.
 *
 * Usage: library_places CONFIG, with a pointing on the standard input (right ascension, declination and position angle
 * in radians, date, temperature, pressure, humidity), then places: the seven numbers of a catalogue place, in the
 * library's own units, and a place on the plate in mm. All are doubles as they are in memory, as are the four numbers
 * that go to the standard output for each place: x and y, and the right ascension and declination that are seen.
 */
#include "EmbeddedResources.h"
#include "FocalPlane.h"
#include "PosConfig.h"

#include <array>
#include <cstdio>

namespace {

template <std::size_t N> bool read(std::array<double, N>& numbers) {
    return std::fread(numbers.data(), sizeof(double), N, stdin) == N;
}

} // namespace

int main(int /*argc*/, char* argv[]) {
    qInitResources_config_files();
    qInitResources_plate_files();
    std::array<double, 7> p{};
    if (!read(p)) {
        return 1;
    }
    pos::FocalPlane pointing(pos::PosConfig(argv[1], pos::PosConfig::XML), pos::VEKO, {p[0], p[1]}, 0.0,
                             {p[3], p[4], p[5], p[6]});
    pointing.setFieldCentre({p[0], p[1]}, p[2]);
    for (std::array<double, 9> in{}; read(in);) {
        const pos::ICRS star{in[0], in[1], in[2], in[3], in[4], in[5], in[6]};
        const pos::Astrometric place = star.toAstrometric(pointing.date());
        const pos::PlateCoordinates there = pointing.cirsToXy(place.toCirs(pointing.dateContext()));
        const pos::Astrometric seen = pointing.xyToCirs({in[7], in[8]}).toAstrometric(pointing.dateContext());
        const std::array<double, 4> out = {there.x, there.y, seen.ra, seen.dec};
        static_cast<void>(std::fwrite(out.data(), sizeof(double), out.size(), stdout));
    }
    return 0;
}
