#include "Spread.h"
#include "fields.h"
#include "measurements.h"
#include "tolerances.h"

using namespace pos;

namespace {

constexpr int kFields = 200;
constexpr int kPlacesPerField = 10;

struct RoundTrips {
    Spread sky;     ///< µas
    Spread plate;   ///< nm
    Spread library; ///< µas

    void add(Numbers& numbers, const Pointing& pointing);
};

/** To the observed place and back by the astronomy library alone: no tangent plane, no plate. */
double libraryRoundTrip(CIRS apparent, eraASTROM context) {
    const ObservedPlace seen = libraryObserved(apparent, context);
    CIRS back{};
    eraAtoiq("R", seen.ra, seen.dec, &context, &back.ra, &back.dec);
    return separation(back, apparent);
}

void RoundTrips::add(Numbers& numbers, const Pointing& pointing) {
    const FocalPlane plane = focalPlaneOf(pointing);
    const eraASTROM context = libraryContext(pointing.conditions, pointing.telescope);
    const double date = pointing.conditions.epoch;
    for (int i = 0; i < kPlacesPerField; ++i) {
        const Astrometric place = placeInField(numbers, pointing.centre);
        const CIRS apparent = place.toCirs(date);
        const Astrometric back = plane.xyToCirs(plane.cirsToXy(apparent)).toAstrometric(date);
        sky.add(separation(back, place) / kMicroarcsecond);
        library.add(libraryRoundTrip(apparent, context) / kMicroarcsecond);

        const auto [dx, dy] = numbers.inDisc(kFieldRadiusMm);
        const PlateCoordinates position(pointing.plate.x0 + dx, pointing.plate.y0 + dy);
        const PlateCoordinates again = plane.cirsToXy(plane.xyToCirs(position).toAstrometric(date).toCirs(date));
        plate.add(std::hypot(again.x - position.x, again.y - position.y) / kNanometre);
    }
}

RoundTrips roundTripsAt(const Range& altitude, bool airless, std::uint64_t seed) {
    Numbers numbers(seed);
    RoundTrips trips;
    for (int i = 0; i < kFields; ++i) {
        trips.add(numbers, fieldAtAltitude(numbers, altitude, airless));
    }
    return trips;
}

} // namespace

void measureRoundTrips() {
    const PrintedTable table("round-trips", {"Altitude, degrees", "Air", "Places", "Sky → plate → sky: worst, µas",
                                             "rms, µas", "the astronomy library alone: worst, µas", "rms, µas",
                                             "Plate → sky → plate: worst, nm", "rms, nm"});
    std::uint64_t seed = 1000;
    for (const bool airless : {false, true}) {
        for (const Range& altitude : kAltitudes) {
            const RoundTrips trips = roundTripsAt(altitude, airless, ++seed);
            table.row({altitude.name, airless ? "without" : "with", cell(trips.sky.count()), cell(trips.sky.worst()),
                       cell(trips.sky.rms()), cell(trips.library.worst()), cell(trips.library.rms()),
                       cell(trips.plate.worst()), cell(trips.plate.rms())});
        }
    }
}
