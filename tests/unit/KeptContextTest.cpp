#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "pointing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

// What is worked out once for a date, a site and the weather gives the bits of the library's plain calls, and is never
// used for another date, another site or other weather.

using namespace pos;

namespace {

constexpr unsigned int kSeed = 20260321;
constexpr int kSites = 16;

class KeptContext : public ProcessWideState {
protected:
    double between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    Astrometric place() {
        return {between(0.0, 2 * kTestPi), std::asin(between(-1.0, 1.0))};
    }
    /** 1990 to 2050, some centuries, all of history, or the whole calendar and beyond both of its ends. */
    double date() {
        const double span = std::array{0.0, 0.0, 1e5, 2.4e6, 1e9, 3e9}.at(random_() % 6);
        return span == 0.0 ? between(47892.0, 69807.0) : between(std::max(-span, -2.6e6), span);
    }
    /** Of a mountain site or of none on Earth. */
    Conditions conditions() {
        if (random_() % 7 == 0) {
            return {date(), between(-100.0, 500.0), between(-100.0, 12000.0), between(-1.0, 2.0)};
        }
        return {date(), between(260.0, 300.0), between(0.0, 1) < 0.2 ? 0.0 : between(500.0, 1020.0), between(0.0, 1.0)};
    }
    /** Both poles, and any site. */
    Telescope site(int number) {
        return {.eastLongitude = number == 0 ? kTestPi : between(-kTestPi, 2 * kTestPi),
                .latitude = number < 2 ? rad(90.0 - 180.0 * number) : between(rad(-90.0), rad(90.0)),
                .height = between(-400.0, 9000.0),
                .horizonLimit = rad(between(0.0, 20.0))};
    }
    /** Another date, another weather, one other value of it, or another field. */
    void change(FocalPlane& pointing) {
        Conditions now = pointing.conditions();
        switch (random_() % 7) {
        case 0:
            return random_() % 2 == 0 ? pointing.setDate(date()) : pointing.setDate(DateContext(date()));
        case 1:
            return pointing.setConditions(conditions());
        case 2:
            now.pressure += 10.0;
            break;
        case 3:
            now.temperature += 1.0;
            break;
        case 4:
            now.relativeHumidity /= 2;
            break;
        default:
            return pointing.setFieldCentre(place(), 0.0);
        }
        pointing.setConditions(now);
    }

    std::mt19937 random_{kSeed};
};

} // namespace

TEST_F(KeptContext, GivesTheBitsOfTheLibrarysOwnConversions) {
    for (int i = 0; i < 500; ++i) {
        const double mjdTai = between(47892.0, 69807.0);
        const DateContext context(mjdTai);
        for (int j = 0; j < 4; ++j) {
            const Astrometric sky = place();
            const CIRS cirs = sky.toCirs(context);
            const CIRS expected = libraryCirs(sky, mjdTai);
            EXPECT_EQ(cirs.ra, expected.ra);
            EXPECT_EQ(cirs.dec, expected.dec);
            const Astrometric back = cirs.toAstrometric(context);
            const Astrometric expectedBack = libraryAstrometric(cirs, mjdTai);
            EXPECT_EQ(back.ra, expectedBack.ra);
            EXPECT_EQ(back.dec, expectedBack.dec);
        }
    }
}

TEST_F(KeptContext, IsNeverThatOfAnotherDateOrSiteOrOtherWeather) {
    std::vector<Telescope> sites;
    std::vector<FocalPlane> pointings;
    for (int i = 0; i < kSites; ++i) {
        sites.push_back(site(i));
        pointings.push_back(pointedAt(place(), 0.0, kWinterNight, sites.back()));
    }
    int refused = 0;
    int warned = 0;
    int belowTheLimit = 0;
    for (int i = 0; i < 5000; ++i) {
        const std::size_t number = random_() % kSites;
        FocalPlane& pointing = pointings.at(number);
        change(pointing);
        SCOPED_TRACE(testing::Message() << "site " << number << ", row " << i << ", MJD " << pointing.date());
        double utc1 = 0.0;
        double utc2 = 0.0;
        const int status = eraTaiutc(2400000.5, pointing.date(), &utc1, &utc2);
        if (status < 0) {
            ++refused;
            EXPECT_TRUE(std::isnan(pointing.hourAngle()));
            continue;
        }
        warned += status;
        EXPECT_EQ(derivedValues(pointing),
                  libraryValues(pointing.fieldCentre(), pointing.conditions(), sites.at(number)));
        belowTheLimit += pointing.zenithDistance() > rad(90.0) - sites.at(number).horizonLimit ? 1 : 0;
    }
    // Each kind has had its share.
    EXPECT_GT(refused, 100);
    EXPECT_GT(warned, 1000);
    EXPECT_GT(belowTheLimit, 500);
}
