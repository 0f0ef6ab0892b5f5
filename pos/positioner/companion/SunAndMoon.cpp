#include "SunAndMoon.h"

#include "Telescope.h"
#include "angles.h"

#include <array>
#include <cmath>
#include <erfam.h>

namespace pos {

namespace {

using Vector = std::array<double, 3>;

/** Metres in an astronomical unit. */
constexpr double kMetresPerAu = ERFA_DAU;

/** The Earth's rotation angle, radians. */
double earthRotation(double mjdTai) {
    double utc1 = 0.0;
    double utc2 = 0.0;
    // A positive status only says that leap seconds are not known for the date.
    static_cast<void>(eraTaiutc(kMjdZero, mjdTai, &utc1, &utc2));
    return eraEra00(utc1, utc2);
}

/** The site from the Earth's centre on the intermediate axes, astronomical units. */
Vector sitePosition(const Telescope& site, double rotation) {
    Vector position{};
    // The status is that of an unknown ellipsoid.
    static_cast<void>(eraGd2gc(ERFA_WGS84, site.eastLongitude, site.latitude, site.height, position.data()));
    const double cosine = std::cos(rotation);
    const double sine = std::sin(rotation);
    const auto [x, y, z] = position;
    return {(x * cosine - y * sine) / kMetresPerAu, (x * sine + y * cosine) / kMetresPerAu, z / kMetresPerAu};
}

/** @param body from the Earth's centre on the celestial axes of the date's context, astronomical units */
BodyPlace seenFrom(const Telescope& site, const DateContext& context, Vector body) {
    eraASTROM astrom = context.astrom; // the library takes its inputs by pointers to non-const
    Vector position{};
    eraRxp(astrom.bpn, body.data(), position.data());
    const double rotation = earthRotation(context.date);
    const Vector observer = sitePosition(site, rotation);
    for (std::size_t i = 0; i < position.size(); ++i) {
        position.at(i) -= observer.at(i);
    }
    BodyPlace seen{};
    eraC2s(position.data(), &seen.place.ra, &seen.place.dec);
    seen.place.ra = eraAnp(seen.place.ra);
    const double hourAngle = rotation + site.eastLongitude - seen.place.ra;
    eraHd2ae(hourAngle, seen.place.dec, site.latitude, &seen.azimuth, &seen.altitude);
    return seen;
}

} // namespace

BodyPlace sunFrom(const Telescope& site, const DateContext& context) {
    eraASTROM astrom = context.astrom; // as above
    Vector towards = {-astrom.eh[0], -astrom.eh[1], -astrom.eh[2]};
    Vector apparent{};
    eraAb(towards.data(), astrom.v, astrom.em, astrom.bm1, apparent.data());
    for (double& coordinate : apparent) {
        coordinate *= astrom.em;
    }
    return seenFrom(site, context, apparent);
}

BodyPlace moonFrom(const Telescope& site, const DateContext& context) {
    double tt1 = 0.0;
    double tt2 = 0.0;
    // The status is always 0: TT − TAI is a constant.
    static_cast<void>(eraTaitt(kMjdZero, context.date, &tt1, &tt2));
    double placeAndSpeed[2][3]; // NOLINT(*-avoid-c-arrays): what the library fills
    eraMoon98(tt1, tt2, placeAndSpeed);
    return seenFrom(site, context, {placeAndSpeed[0][0], placeAndSpeed[0][1], placeAndSpeed[0][2]});
}

double airmass(double altitude) {
    const double degrees = radiansToDegrees(altitude);
    const double lifted = degrees + 244.0 / (165.0 + 47.0 * std::pow(degrees, 1.1));
    return 1.0 / std::sin(degreesToRadians(lifted));
}

} // namespace pos
