#include "Night.h"

#include "CelestialPosition.h"
#include "angles.h"

#include <QTimeZone>
#include <erfa.h>
#include <gtest/gtest.h>

using namespace pos;

namespace {

constexpr double kSiteLongitude = -17.881639 / 180 * kPi;

double taiOf(int year, int month, int day, int hour, int minute, double second) {
    double utc1 = 0.0;
    double utc2 = 0.0;
    double tai1 = 0.0;
    double tai2 = 0.0;
    EXPECT_EQ(eraDtf2d("UTC", year, month, day, hour, minute, second, &utc1, &utc2), 0);
    EXPECT_EQ(eraUtctai(utc1, utc2, &tai1, &tai2), 0);
    return (tai1 - kMjdZero) + tai2;
}

} // namespace

TEST(Night, RunsFromMeanLocalNoonToTheNext) {
    const Night atGreenwich = nightOf(QDate(2016, 3, 1), 0.0);
    EXPECT_EQ(utcText(atGreenwich.begin, 3), "2016-03-01T12:00:00.000Z");
    EXPECT_EQ(utcText(atGreenwich.end, 3), "2016-03-02T12:00:00.000Z");
    // A degree is four minutes: 17.881639 degrees west are 71 min 31.593 s.
    const Night atTheSite = nightOf(QDate(2016, 3, 1), kSiteLongitude);
    EXPECT_EQ(utcText(atTheSite.begin, 3), "2016-03-01T13:11:31.593Z");
    EXPECT_EQ(utcText(atTheSite.end, 3), "2016-03-02T13:11:31.593Z");
}

TEST(Night, OfAnInstantHasTheDateOfTheEvening) {
    for (const double longitude : {-kPi, kSiteLongitude, 0.0, 3.1}) {
        const Night night = nightOf(QDate(2016, 2, 29), longitude);
        for (const double instant : {night.begin + 1e-5, night.end - 1e-5}) {
            EXPECT_EQ(nightAround(instant, longitude).evening, QDate(2016, 2, 29)) << longitude;
        }
        EXPECT_EQ(nightAround(night.begin - 1e-5, longitude).evening, QDate(2016, 2, 28));
        EXPECT_EQ(nightAround(night.end + 1e-5, longitude).evening, QDate(2016, 3, 1));
    }
}

TEST(Night, TellsInstantsInUtcWithLeapSeconds) {
    EXPECT_EQ(utcText(taiOf(2015, 6, 30, 23, 59, 59.25), 3), "2015-06-30T23:59:59.250Z");
    EXPECT_EQ(utcText(taiOf(2015, 6, 30, 23, 59, 60.25), 3), "2015-06-30T23:59:60.250Z");
    EXPECT_EQ(utcText(taiOf(2015, 7, 1, 0, 0, 0.25), 3), "2015-07-01T00:00:00.250Z");
    EXPECT_EQ(utcText(taiOf(2015, 12, 31, 23, 59, 59.9996), 3), "2016-01-01T00:00:00.000Z");
    EXPECT_EQ(utcText(taiOf(2015, 7, 1, 5, 6, 7.0), 0), "2015-07-01T05:06:07Z");
}

TEST(Night, TheJulianEpochLeadsTheRunBackToTheInstant) {
    constexpr double kMillisecond = 1e-3 / 86400;
    EXPECT_EQ(julianEpochOf(51544.5), 2000.0);
    for (const double mjd : {61442.824812028935, 51544.25, 87999.123456789}) {
        double zero = 0.0;
        double date = 0.0;
        eraEpj2jd(julianEpochOf(mjd), &zero, &date);
        EXPECT_NEAR(date, mjd, 0.02 * kMillisecond);
    }
}
