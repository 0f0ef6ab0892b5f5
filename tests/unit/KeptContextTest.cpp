#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "TestPointing.h"
#include "telescope.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <erfa.h>
#include <limits>
#include <random>

// What is worked out once for a date, a site and the weather gives the bits of the library's plain calls, and is never
// used for another date, another site or other weather.

using namespace pos;

namespace {

constexpr unsigned int kSeed = 20260321;

class KeptContext : public ProcessWideState {
protected:
    double between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    Astrometric place() {
        return {between(0.0, 2 * kTestPi), std::asin(between(-1.0, 1.0))};
    }
    /** 1990 to 2050. */
    double date() {
        return between(47892.0, 69807.0);
    }
    Conditions conditions() {
        return {date(), between(260.0, 300.0), between(0.0, 1) < 0.2 ? 0.0 : between(500.0, 1020.0), between(0.0, 1.0)};
    }

    std::mt19937 random_{kSeed};
};

/** The library's own context for all conversions at once. @return its status, negative for a date that it refuses */
int fullContext(const TelescopeSettings& telescope, const Conditions& now, eraASTROM& context) {
    double utc1 = 0.0;
    double utc2 = 0.0;
    if (eraTaiutc(2400000.5, now.epoch, &utc1, &utc2) < 0) {
        return -1;
    }
    double equationOfOrigins = 0.0;
    return eraApco13(utc1, utc2, 0.0, rad(telescope.eastLongitude), rad(telescope.latitude), telescope.height, 0.0, 0.0,
                     now.pressure, now.temperature - 273.15, now.relativeHumidity, 0.6, &context, &equationOfOrigins);
}

/** Fails the test unless a pointing observes its centre, and sees the sky, through this context. */
void expectSeenThrough(const FocalPlane& focalPlane, eraASTROM context, double horizonLimit) {
    const CIRS place = libraryCirs(focalPlane.fieldCentre(), focalPlane.date());
    ObservedPlace centre = libraryObserved(place, context);
    if (centre.zenithDistance > kTestPi / 2 - horizonLimit) {
        context.refa = 0.0;
        context.refb = 0.0;
        centre = libraryObserved(place, context);
    }
    EXPECT_EQ(focalPlane.zenithDistance(), centre.zenithDistance);
    EXPECT_EQ(focalPlane.hourAngle(), centre.hourAngle);
    EXPECT_EQ(focalPlane.tangentDec(), centre.dec);
    const PlateCoordinates position(30.0, -80.0);
    const auto standard = static_cast<StandardCoordinates>(FocalPlaneCoordinates(position));
    double ra = 0.0;
    double dec = 0.0;
    eraTpsts(standard.xi, standard.eta, centre.ra, centre.dec, &ra, &dec);
    CIRS expected{};
    eraAtoiq("R", ra, dec, &context, &expected.ra, &expected.dec);
    const CIRS back = focalPlane.xyToCirs(position);
    EXPECT_EQ(back.ra, expected.ra);
    EXPECT_EQ(back.dec, expected.dec);
    const ObservedPlace seen = libraryObserved(expected, context);
    double xi = 0.0;
    double eta = 0.0;
    ASSERT_EQ(eraTpxes(seen.ra, seen.dec, centre.ra, centre.dec, &xi, &eta), 0);
    EXPECT_EQ(focalPlane.cirsToStd(expected).xi, xi);
    EXPECT_EQ(focalPlane.cirsToStd(expected).eta, eta);
}

/** Fails the test unless two pointings agree in every bit of what they derive. */
void expectSame(const FocalPlane& one, const FocalPlane& other) {
    EXPECT_EQ(one.date(), other.date());
    EXPECT_EQ(one.hourAngle(), other.hourAngle());
    EXPECT_EQ(one.tangentDec(), other.tangentDec());
    EXPECT_EQ(one.zenithDistance(), other.zenithDistance());
    EXPECT_EQ(one.parallacticAngle(), other.parallacticAngle());
    EXPECT_EQ(one.dateContext().date, other.dateContext().date);
    for (const PlateCoordinates position : {PlateCoordinates(0.0, 0.0), PlateCoordinates(30.0, -80.0)}) {
        const CIRS place = one.xyToCirs(position);
        const CIRS expected = other.xyToCirs(position);
        EXPECT_EQ(place.ra, expected.ra);
        EXPECT_EQ(place.dec, expected.dec);
        const Astrometric sky = place.toAstrometric(one.dateContext());
        const Astrometric expectedSky = expected.toAstrometric(other.date());
        EXPECT_EQ(sky.ra, expectedSky.ra);
        EXPECT_EQ(sky.dec, expectedSky.dec);
        const StandardCoordinates standard = one.cirsToStd(place);
        const StandardCoordinates expectedStandard = other.cirsToStd(expected);
        EXPECT_EQ(standard.xi, expectedStandard.xi);
        EXPECT_EQ(standard.eta, expectedStandard.eta);
    }
}

} // namespace

TEST_F(KeptContext, GivesTheBitsOfTheLibrarysOwnConversions) {
    for (int i = 0; i < 500; ++i) {
        const double mjdTai = date();
        const DateContext context(mjdTai);
        for (int j = 0; j < 4; ++j) {
            const Astrometric sky = place();
            const CIRS cirs = sky.toCirs(context);
            const Astrometric back = cirs.toAstrometric(context);
            double tt1 = 0.0;
            double tt2 = 0.0;
            eraTaitt(2400000.5, mjdTai, &tt1, &tt2);
            double ra = 0.0;
            double dec = 0.0;
            double equationOfOrigins = 0.0;
            eraAtci13(sky.ra, sky.dec, 0.0, 0.0, 0.0, 0.0, tt1, tt2, &ra, &dec, &equationOfOrigins);
            EXPECT_EQ(cirs.ra, ra);
            EXPECT_EQ(cirs.dec, dec);
            eraAtic13(cirs.ra, cirs.dec, tt1, tt2, &ra, &dec, &equationOfOrigins);
            EXPECT_EQ(back.ra, ra);
            EXPECT_EQ(back.dec, dec);
        }
    }
}

TEST_F(KeptContext, OfTheObserverGivesTheBitsOfTheLibrarysContextForAllConversions) {
    int refused = 0;
    int warned = 0;
    int belowTheLimit = 0;
    for (int site = 0; site < 16; ++site) {
        TelescopeSettings telescope;
        telescope.eastLongitude = site == 0 ? 180.0 : between(-180.0, 360.0);
        telescope.latitude = site < 2 ? 90.0 - 180.0 * site : between(-90.0, 90.0);
        telescope.height = between(-400.0, 9000.0);
        const PosConfig config = telescopeConfig(telescope);
        FocalPlane focalPlane(config, PlateName::VEKO, highField(), 0.0, ordinaryConditions());
        for (int i = 0; i < 250; ++i) {
            Conditions now = conditions();
            // Ordinary ones, some centuries, all of history, the whole calendar and beyond both of its ends.
            const double span = std::array{0.0, 1e5, 2.4e6, 1e9, 3e9}.at(static_cast<std::size_t>(i % 5));
            now.epoch = span == 0.0 ? now.epoch : between(std::max(-span, -2.6e6), span);
            if (i % 7 == 0) {
                now = {now.epoch, between(-100.0, 500.0), between(-100.0, 12000.0), between(-1.0, 2.0)};
            }
            focalPlane.setConditions(now);
            focalPlane.setFieldCentre(place(), 0.0);
            eraASTROM context{};
            const int status = fullContext(telescope, now, context);
            SCOPED_TRACE(testing::Message() << "site " << site << ", row " << i << ", MJD " << now.epoch);
            if (status < 0) {
                ++refused;
                EXPECT_TRUE(std::isnan(focalPlane.hourAngle()));
                continue;
            }
            warned += status;
            expectSeenThrough(focalPlane, context, rad(telescope.horizonLimit));
            belowTheLimit += focalPlane.zenithDistance() > rad(90.0 - telescope.horizonLimit) ? 1 : 0;
        }
    }
    // Each kind has had its share of the 4000.
    EXPECT_GT(refused, 100);
    EXPECT_GT(warned, 1000);
    EXPECT_GT(belowTheLimit, 500);
}

TEST_F(KeptContext, IsNeverThatOfAnotherDateOrOtherWeather) {
    const PosConfig config = embeddedConfig();
    FocalPlane changing(config, PlateName::VEKO, highField(), 0.0, ordinaryConditions());
    for (int i = 0; i < 200; ++i) {
        Conditions now = changing.conditions();
        const Astrometric centre = place();
        switch (i % 5) {
        case 0:
            now.epoch = date();
            changing.setDate(now.epoch);
            break;
        case 1:
            now = conditions();
            changing.setConditions(now);
            break;
        case 2:
            now.pressure += 10.0;
            changing.setConditions(now);
            break;
        case 3:
            now.temperature += 1.0;
            changing.setConditions(now);
            break;
        default:
            now.relativeHumidity /= 2;
            changing.setConditions(now);
        }
        changing.setFieldCentre(centre, 0.0);
        expectSame(changing, FocalPlane(config, PlateName::VEKO, centre, 0.0, now));
    }
}

TEST_F(KeptContext, IsNeverThatOfAnotherSite) {
    TelescopeSettings southern;
    southern.eastLongitude = -70.4;
    southern.latitude = -24.6;
    southern.height = 2635.0;
    const PosConfig northConfig = telescopeConfig();
    const PosConfig southConfig = telescopeConfig(southern);
    FocalPlane north(northConfig, PlateName::VEKO, highField(), 0.0, ordinaryConditions());
    FocalPlane south(southConfig, PlateName::VEKO, highField(), 0.0, ordinaryConditions());
    for (int i = 0; i < 50; ++i) {
        const Conditions now = conditions();
        const Astrometric centre = place();
        north.setConditions(now);
        south.setConditions(now);
        north.setFieldCentre(centre, 0.0);
        south.setFieldCentre(centre, 0.0);
        EXPECT_NE(north.hourAngle(), south.hourAngle());
        expectSame(north, FocalPlane(northConfig, PlateName::VEKO, centre, 0.0, now));
        expectSame(south, FocalPlane(southConfig, PlateName::VEKO, centre, 0.0, now));
    }
}

TEST_F(KeptContext, ComesBackAfterADateThatTheLibraryRefuses) {
    const PosConfig config = embeddedConfig();
    const Conditions now = ordinaryConditions();
    const FocalPlane fresh(config, PlateName::VEKO, highField(), 0.0, now);
    FocalPlane changing(config, PlateName::VEKO, highField(), 0.0, now);
    for (const double refused : {std::nan(""), std::numeric_limits<double>::infinity(), -1e12}) {
        changing.setDate(refused);
        EXPECT_TRUE(std::isnan(changing.hourAngle())) << refused;
        changing.setDate(now.epoch);
        expectSame(changing, fresh);
    }
}

TEST_F(KeptContext, HasRefractionAgainWhenTheCentreRises) {
    const PosConfig config = embeddedConfig();
    const Conditions now = ordinaryConditions();
    const FocalPlane fresh(config, PlateName::VEKO, highField(), 0.0, now);
    FocalPlane changing(config, PlateName::VEKO, highField(), 0.0, now);
    const Astrometric belowTheHorizon = {highField().ra + kTestPi, -rad(60.0)};
    changing.setFieldCentre(belowTheHorizon, 0.0);
    EXPECT_GT(changing.zenithDistance(), kTestPi / 2);
    changing.setFieldCentre(highField(), 0.0);
    expectSame(changing, fresh);
}
