#include "CelestialPosition.h"
#include "tolerances.h"

#include <cmath>
#include <erfa.h>
#include <gtest/gtest.h>
#include <vector>

using namespace pos;

namespace {

constexpr double kPiText = 3.141592653589793;

/** A date on the TAI scale whose TT in days differs from it in more than the last bit. */
constexpr double kDate = 57754.375;

/** TT of a date as the library takes it: 2400000.5 and the MJD, plus 32.184 s. */
struct TerrestrialTime {
    double first = 0.0;
    double second = 0.0;

    explicit TerrestrialTime(double mjdTai) {
        EXPECT_EQ(eraTaitt(2400000.5, mjdTai, &first, &second), 0);
        // The library adds the seconds to the smaller part.
        EXPECT_NEAR(((first - 2400000.5) + (second - mjdTai)) * 86400.0, 32.184, 1e-4);
    }
};

/** Proper motions of the bright and near stars, as catalogues give them. */
const std::vector<ICRS> kStars = {
    {4.69, 0.08, 2000.0, -798.58, 10328.12, 0.5469, -110.5}, // fast, near, approaching
    {1.77, -0.29, 2016.0, -546.01, -1223.07, 0.37921, -5.5}, // bright
    {0.66, 1.5578, 2000.0, 44.48, -11.85, 0.00754, -16.4},   // less than a degree from the pole
    {3.1, -1.2, 1991.25, -3781.0, 769.0, 0.7687, -22.4},     // south
    {-0.5, 0.4, 2015.5, 3.0, -4.0, 0.0, 0.0},                // no known distance; right ascension below 0
    // Of these the library warns: it replaces the distance, sets the speed to zero, or both.
    {1.0, 0.5, 2000.0, 0.0, 0.0, -1.0, 10.0},
    {1.0, 0.5, 2000.0, 0.0, 0.0, 0.5, 4e5},
    {1.0, 0.5, 2000.0, 0.0, 0.0, -1.0, -4e5},
};

} // namespace

TEST(CelestialPosition, ProperMotionIsConvertedInTheStatedOrder) {
    for (const ICRS& star : kStars) {
        const auto [raRate, decRate] = star.pmAsRadYr();
        EXPECT_EQ(raRate, star.pmRa / 1000 / 3600 / 180 * kPiText / std::cos(star.dec));
        EXPECT_EQ(decRate, star.pmDec / 1000 / 3600 / 180 * kPiText);
    }
}

TEST(CelestialPosition, ProperMotionInRightAscensionIsDroppedWithinAMilliarcsecondOfAPole) {
    for (const double side : {1.0, -1.0}) {
        const auto ratesAt = [&](double distance) {
            return ICRS{1.0, side * (kPiText / 2 - distance), 2000.0, 1.0, 500.0, 0.0, 0.0}.pmAsRadYr();
        };
        EXPECT_EQ(ratesAt(0.0), std::pair(0.0, 500.0 / 1000 / 3600 / 180 * kPiText));
        EXPECT_EQ(ratesAt(4.84e-9).first, 0.0);
        // One milliarcsecond a year at one milliarcsecond (4.848e-9 rad) of distance is about a radian a year.
        EXPECT_NEAR(ratesAt(4.86e-9).first, 4.8481368 / 4.86, 1e-6);
    }
}

TEST(CelestialPosition, WithoutAnEpochNoSpaceMotionIsApplied) {
    for (const double epoch : {0.0, -0.0, -2000.0, kNaN}) {
        const Astrometric place = ICRS{7.5, -1.9, epoch, 1e6, -1e6, 0.7, 300.0}.toAstrometric(kDate);
        EXPECT_EQ(place.ra, 7.5) << epoch;
        EXPECT_EQ(place.dec, -1.9) << epoch;
    }
}

TEST(CelestialPosition, ThePositionMovesByItsProperMotion) {
    // 17 years from J2000.0 to J2017.0 (JD 2457754.25 TT) at 0.1" a year northwards and 0.2" westwards.
    const double arcsecond = 4.84813681109536e-6;
    const ICRS star{2.0, 0.5, 2000.0, -200.0, 100.0, 0.0, 0.0};
    const Astrometric place = star.toAstrometric(57753.75);
    const double tolerance = arcsecond / 10000; // the path is a great circle
    EXPECT_NEAR(place.dec - star.dec, 1.7 * arcsecond, tolerance);
    EXPECT_NEAR((place.ra - star.ra) * std::cos(0.5), -3.4 * arcsecond, tolerance);
}

TEST(CelestialPosition, SpaceMotionIsTheLibrarysFromTheEpochToTerrestrialTime) {
    const TerrestrialTime tt(kDate);
    for (const ICRS& star : kStars) {
        double start1 = 0.0;
        double start2 = 0.0;
        eraEpj2jd(star.epoch, &start1, &start2);
        const double raRate = star.pmRa / 1000 / 3600 / 180 * kPiText / std::cos(star.dec);
        const double decRate = star.pmDec / 1000 / 3600 / 180 * kPiText;
        Astrometric expected{};
        double unused[4] = {};
        eraPmsafe(star.ra, star.dec, raRate, decRate, star.parallax, star.rv, start1, start2, tt.first, tt.second,
                  &expected.ra, &expected.dec, &unused[0], &unused[1], &unused[2], &unused[3]);
        const Astrometric place = star.toAstrometric(kDate);
        EXPECT_EQ(place.ra, expected.ra) << star.ra << ' ' << star.rv;
        EXPECT_EQ(place.dec, expected.dec) << star.ra << ' ' << star.rv;
    }
}

TEST(CelestialPosition, ApparentAndAstrometricPlacesAreTheLibrarysWithoutSpaceMotion) {
    for (const double date : {kDate, 0.0, -678955.5, 2457389.0}) {
        const TerrestrialTime tt(date);
        for (const auto& [ra, dec] : std::vector<std::pair<double, double>>{{0.0, 0.0}, {6.2, -1.5}, {7.5, 1.9}}) {
            CIRS apparent{};
            Astrometric astrometric{};
            double equationOfOrigins = 0.0;
            eraAtci13(ra, dec, 0.0, 0.0, 0.0, 0.0, tt.first, tt.second, &apparent.ra, &apparent.dec,
                      &equationOfOrigins);
            eraAtic13(ra, dec, tt.first, tt.second, &astrometric.ra, &astrometric.dec, &equationOfOrigins);
            EXPECT_EQ((Astrometric{ra, dec}.toCirs(date).ra), apparent.ra) << date;
            EXPECT_EQ((Astrometric{ra, dec}.toCirs(date).dec), apparent.dec) << date;
            EXPECT_EQ((CIRS{ra, dec}.toAstrometric(date).ra), astrometric.ra) << date;
            EXPECT_EQ((CIRS{ra, dec}.toAstrometric(date).dec), astrometric.dec) << date;
        }
    }
}

TEST(CelestialPosition, DatesThatAreNoNumbersComeToAnEnd) {
    EXPECT_TRUE(std::isnan((Astrometric{1.0, 0.5}.toCirs(kNaN).ra)));
    EXPECT_TRUE(std::isnan((CIRS{1.0, 0.5}.toAstrometric(kNaN).ra)));
    const Astrometric still = ICRS{1.0, 0.5, 0.0, 1.0, 1.0, 1.0, 1.0}.toAstrometric(kNaN);
    EXPECT_EQ(still.ra, 1.0);
    EXPECT_EQ(still.dec, 0.5);
}
