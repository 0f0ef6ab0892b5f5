/**
 * Prints the tables of docs/window.md that hold windows to the run's own checks: see tools/window_figures.
 */
#include "ProcessState.h"
#include "measurements.h"
#include "windowDifferences.h"

#include <cstdlib>
#include <exception>

namespace {

constexpr std::uint64_t kSeed = 20261122;

void measure(const char* table, const char* head, const std::vector<WindowKind>& kinds, int nights) {
    const PrintedTable printed(
        table, {head, "Nights", "Windows", "Ends: worst, ms", "rms, ms", "Lost", "Invented", "By another limit"});
    std::uint64_t seed = kSeed;
    for (const WindowKind& kind : kinds) {
        Numbers numbers(seed++);
        WindowDifferences differences;
        for (int night = 0; night < nights; ++night) {
            differences.add(kind.make(numbers));
        }
        printed.row({kind.name, cell(differences.nights), cell(differences.windows), cell(differences.ends.worst()),
                     cell(differences.ends.rms()), cell(differences.lost), cell(differences.invented),
                     cell(differences.wrongLimits)});
        std::fflush(stdout);
    }
}

} // namespace

/** @param argv how many nights of each kind of site, and of each kind of grazing window */
int main(int argc, char* argv[]) {
    pos::prepareProcess();
    try {
        measure("windows-by-site", "Site", windowsBySite(), argc > 1 ? std::atoi(argv[1]) : 1500);
        measure("windows-grazing", "What lasts 1 to 3 s", grazingWindows(), argc > 2 ? std::atoi(argv[2]) : 200);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
