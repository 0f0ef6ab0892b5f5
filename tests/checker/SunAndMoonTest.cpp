#include "SunAndMoon.h"
#include "Telescope.h"
#include "angles.h"
#include "table.h"
#include "tolerances.h"

#include <cmath>
#include <erfa.h>

using namespace pos;

namespace {

/** What the Moon moves in the time of its light, and the site's own speed: 2 arcsec, radians. */
constexpr double kBodyTolerance = 9.7e-6;

} // namespace

// tests/golden/sun_and_moon.py says how astropy made the table.
TEST(SunAndMoon, StandWhereAnIndependentChainSeesThem) {
    const std::vector<TableRow> rows = readTable(std::string(POS_SOURCE_FOLDER) + "/tests/golden/sun_and_moon.csv");
    ASSERT_EQ(rows.size(), 600U);
    double greatestPlace = 0.0;
    double greatestHorizon = 0.0;
    for (const TableRow& row : rows) {
        Telescope site;
        site.eastLongitude = degreesToRadians(row.number("east_longitude_deg"));
        site.latitude = degreesToRadians(row.number("latitude_deg"));
        site.height = row.number("height_m");
        const DateContext context(row.number("mjd_tai"));
        const BodyPlace body = row.text("body") == "sun" ? sunFrom(site, context) : moonFrom(site, context);
        const double place = eraSeps(body.place.ra, body.place.dec, row.number("ra"), row.number("dec"));
        const double horizon = eraSeps(body.azimuth, body.altitude, row.number("azimuth"), row.number("altitude"));
        EXPECT_LT(place, kBodyTolerance) << row.text("body") << " at " << row.text("mjd_tai");
        EXPECT_LT(horizon, kBodyTolerance) << row.text("body") << " at " << row.text("mjd_tai");
        greatestPlace = std::max(greatestPlace, place);
        greatestHorizon = std::max(greatestHorizon, horizon);
    }
    RecordProperty("greatestPlaceArcsec", std::to_string(radiansToDegrees(greatestPlace) * 3600));
    RecordProperty("greatestHorizonArcsec", std::to_string(radiansToDegrees(greatestHorizon) * 3600));
}

// The secant holds high in the sky; at the horizon F. Kasten and A. T. Young, Applied Optics 28, 4735 (1989),
// have 37.92.
TEST(SunAndMoon, AirmassIsTheSecantHighUpAndFiniteAtTheHorizon) {
    EXPECT_NEAR(airmass(kPi / 2), 1.0, 1e-6);
    EXPECT_NEAR(airmass(degreesToRadians(60)), 1.1547, 1e-3);
    EXPECT_NEAR(airmass(degreesToRadians(30)), 2.0, 0.01);
    EXPECT_NEAR(airmass(0.0), 37.92, 1.0);
}
