#include "Spread.h"
#include "fields.h"
#include "measurements.h"
#include "tolerances.h"

#include <array>
#include <limits>

using namespace pos;

namespace {

constexpr int kCases = 2000;
/** A microsecond of time, radians. */
constexpr double kMicrosecond = kSecondOfTime * 1e-6;

void optics(const PrintedTable& table) {
    Numbers numbers(5000);
    focalPlaneOf(Pointing{});
    Spread sky;
    Spread plate;
    for (int i = 0; i < kCases; ++i) {
        const auto [xi, eta] = numbers.inDisc(rad(kFieldRadiusDeg));
        const auto back = static_cast<StandardCoordinates>(FocalPlaneCoordinates(StandardCoordinates{xi, eta}));
        sky.add(std::hypot(back.xi - xi, back.eta - eta) / kMicroarcsecond);
        const auto [x, y] = numbers.inDisc(kFieldRadiusMm);
        const FocalPlaneCoordinates again(static_cast<StandardCoordinates>(FocalPlaneCoordinates(x, y)));
        plate.add(std::hypot(again.x - x, again.y - y) / kNanometre);
    }
    table.row(
        {"Tangent plane → focal plane → tangent plane", "µas", cell(sky.count()), cell(sky.worst()), cell(sky.rms())});
    table.row({"Focal plane → tangent plane → focal plane", "nm", cell(plate.count()), cell(plate.worst()),
               cell(plate.rms())});
}

/** What parallacticToHour finds, by the formula for the parallactic angle and by the hour angle it started from. */
struct HoursOfAngles {
    Spread angle;         ///< µas
    Spread hour;          ///< µs of time
    Spread hourAtExtreme; ///< µs of time, where the parallactic angle hardly changes with the hour angle

    void add(const Pointing& pointing, double hourAngle) {
        const FocalPlane plane = focalPlaneOf(pointing);
        const double dec = plane.tangentDec();
        const double q = eraHd2pa(hourAngle, dec, plane.latitude());
        const auto [first, second] = plane.parallacticToHour(q);
        double nearest = std::numeric_limits<double>::infinity();
        for (const double found : {first, second}) {
            if (!std::isnan(found)) {
                angle.add(std::remainder(eraHd2pa(found, dec, plane.latitude()) - q, 2 * kTestPi) / kMicroarcsecond);
                nearest = std::min(nearest, std::fabs(found - hourAngle));
            }
        }
        const double change = std::remainder(eraHd2pa(hourAngle + 1e-4, dec, plane.latitude()) - q, 2 * kTestPi) / 1e-4;
        (std::fabs(change) < 0.01 ? hourAtExtreme : hour).add(nearest / kMicrosecond);
    }
};

void parallacticAngle(const PrintedTable& table) {
    Numbers numbers(5001);
    HoursOfAngles found;
    while (found.angle.count() < 2 * kCases) {
        const Pointing pointing = fieldAtAltitude(numbers, {"", 5.1, 89}, false);
        // An hour angle of its own, so that the pointing's may not show through.
        const double hourAngle = numbers.between(-kTestPi, kTestPi);
        if (std::fabs(std::fabs(pointing.centre.dec) - kTestPi / 2) > rad(1)) {
            found.add(pointing, hourAngle);
        }
    }
    table.row({"Parallactic angle at the hour angles found from one", "µas", cell(found.angle.count()),
               cell(found.angle.worst()), cell(found.angle.rms())});
    table.row({"Hour angle found from its parallactic angle", "µs of time", cell(found.hour.count()),
               cell(found.hour.worst()), cell(found.hour.rms())});
    table.row({"the same where the angle is greatest and changes by less than 1 % of the hour angle", "µs of time",
               cell(found.hourAtExtreme.count()), cell(found.hourAtExtreme.worst()), cell(found.hourAtExtreme.rms())});
}

void height(const PrintedTable& table) {
    Numbers numbers(5002);
    Spread change;
    for (int i = 0; i < kCases / 10; ++i) {
        Pointing pointing = fieldAtAltitude(numbers, {"", 5.1, 90}, false);
        const CIRS place = placeInField(numbers, pointing.centre).toCirs(pointing.conditions.epoch);
        pointing.telescope.height = 0;
        const PlateCoordinates low = focalPlaneOf(pointing).cirsToXy(place);
        pointing.telescope.height = 5000;
        const PlateCoordinates high = focalPlaneOf(pointing).cirsToXy(place);
        change.add(std::hypot(high.x - low.x, high.y - low.y) / kNanometre);
    }
    table.row({"Plate position, site height 0 m against 5000 m", "nm", cell(change.count()), cell(change.worst()),
               cell(change.rms())});
}

/** By how much a star's place at a date jumps among stars whose right ascensions differ in the last bits, µas. */
double jump(ICRS star, double date) {
    const Astrometric first = star.toAstrometric(date);
    double worst = 0.0;
    for (int i = 0; i < 20; ++i) {
        star.ra = std::nextafter(star.ra, 10);
        worst = std::max(worst, separation(star.toAstrometric(date), first));
    }
    return worst / kMicroarcsecond;
}

} // namespace

void measureOtherQuantities() {
    const PrintedTable table("others", {"Quantity", "Unit", "Cases", "Worst", "rms"});
    optics(table);
    parallacticAngle(table);
    height(table);
}

void measureSpaceMotion() {
    struct Star {
        const char* motion;   ///< arcsec/yr
        const char* parallax; ///< arcsec
        const char* rv;       ///< km/s
    };
    constexpr std::array<Star, 6> kKinds = {{{"0.05", "0", "0"},
                                             {"1", "0", "0"},
                                             {"10", "0", "0"},
                                             {"10", "0", "20"},
                                             {"10", "0.5", "0"},
                                             {"10", "0.5", "20"}}};
    constexpr int kStars = 500;
    const PrintedTable table("space-motion",
                             {"Proper motion, arcsec/yr", "Parallax, arcsec", "Radial velocity, km/s", "Stars",
                              "whose place jumps by more than 1 µas", "Jump: worst, µas", "rms, µas"});
    std::uint64_t seed = 6000;
    for (const Star& kind : kKinds) {
        Numbers numbers(++seed);
        Spread jumps;
        int jumping = 0;
        for (int i = 0; i < kStars; ++i) {
            const auto [pmRa, pmDec] = numbers.onCircle(std::stod(kind.motion) * 1000);
            const double ra = numbers.between(0, 2 * kTestPi);
            const double dec = std::asin(numbers.between(-0.99, 0.99));
            const double date = numbers.between(51545, 59580);
            const ICRS star{ra, dec, 2000.0, pmRa, pmDec, std::stod(kind.parallax), std::stod(kind.rv)};
            const double microarcseconds = jump(star, date);
            jumps.add(microarcseconds);
            jumping += microarcseconds > 1 ? 1 : 0;
        }
        table.row(
            {kind.motion, kind.parallax, kind.rv, cell(kStars), cell(jumping), cell(jumps.worst()), cell(jumps.rms())});
    }
}
