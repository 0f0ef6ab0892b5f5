#include <array>
#include <erfa.h>
#include <gtest/gtest.h>

// Arguments, values and tolerances are those of the library's own validation program, t_erfa_c.c of ERFA 2.0.0, which
// took them from the corresponding program of the IAU's library.

namespace {

/** The site, the date and the weather of every check. The observed places have the context without the Earth's place.
 */
eraASTROM publishedContext() {
    eraASTROM context{};
    EXPECT_EQ(eraApio13(2456384.5, 0.969254051, 0.1550675, -0.527800806, -1.2345856, 2738.0, 2.47230737e-7,
                        1.82640464e-6, 731.0, 12.8, 0.59, 0.55, &context),
              0);
    return context;
}

} // namespace

TEST(PublishedPointing, TheContextOfASiteADateAndTheWeather) {
    eraASTROM context{};
    double equationOfOrigins = 0.0;
    EXPECT_EQ(eraApco13(2456384.5, 0.969254051, 0.1550675, -0.527800806, -1.2345856, 2738.0, 2.47230737e-7,
                        1.82640464e-6, 731.0, 12.8, 0.59, 0.55, &context, &equationOfOrigins),
              0);
    struct Check {
        const char* name;
        double actual;
        double expected;
        double tolerance;
    };
    const std::array checks = {
        Check{"pmt", context.pmt, 13.25248468622475727, 1e-11},
        Check{"eb(1)", context.eb[0], -0.9741827107320875162, 1e-12},
        Check{"eb(2)", context.eb[1], -0.2115130190489716682, 1e-12},
        Check{"eb(3)", context.eb[2], -0.09179840189496755339, 1e-12},
        Check{"eh(1)", context.eh[0], -0.9736425572586935247, 1e-12},
        Check{"eh(2)", context.eh[1], -0.2092452121603336166, 1e-12},
        Check{"eh(3)", context.eh[2], -0.09075578153885665295, 1e-12},
        Check{"em", context.em, 0.9998233240913898141, 1e-12},
        Check{"v(1)", context.v[0], 0.2078704994520489246e-4, 1e-16},
        Check{"v(2)", context.v[1], -0.8955360133238868938e-4, 1e-16},
        Check{"v(3)", context.v[2], -0.3863338993055887398e-4, 1e-16},
        Check{"bm1", context.bm1, 0.9999999950277561004, 1e-12},
        Check{"bpn(1,1)", context.bpn[0][0], 0.9999991390295147999, 1e-12},
        Check{"bpn(2,1)", context.bpn[1][0], 0.4978650075315529277e-7, 1e-12},
        Check{"bpn(3,1)", context.bpn[2][0], 0.001312227200850293372, 1e-12},
        Check{"bpn(1,2)", context.bpn[0][1], -0.1136336652812486604e-7, 1e-12},
        Check{"bpn(2,2)", context.bpn[1][1], 0.9999999995713154865, 1e-12},
        Check{"bpn(3,2)", context.bpn[2][1], -0.2928086230975367296e-4, 1e-12},
        Check{"bpn(1,3)", context.bpn[0][2], -0.001312227201745553566, 1e-12},
        Check{"bpn(2,3)", context.bpn[1][2], 0.2928082218847679162e-4, 1e-12},
        Check{"bpn(3,3)", context.bpn[2][2], 0.9999991386008312212, 1e-12},
        Check{"along", context.along, -0.5278008060295995733, 1e-12},
        Check{"xpl", context.xpl, 0.1133427418130752958e-5, 1e-17},
        Check{"ypl", context.ypl, 0.1453347595780646207e-5, 1e-17},
        Check{"sphi", context.sphi, -0.9440115679003211329, 1e-12},
        Check{"cphi", context.cphi, 0.3299123514971474711, 1e-12},
        Check{"diurab", context.diurab, 0, 0},
        Check{"eral", context.eral, 2.617608909189664000, 1e-12},
        Check{"refa", context.refa, 0.2014187785940396921e-3, 1e-15},
        Check{"refb", context.refb, -0.2361408314943696227e-6, 1e-18},
        Check{"eo", equationOfOrigins, -0.003020548354802412839, 1e-14},
    };
    for (const Check& check : checks) {
        EXPECT_NEAR(check.actual, check.expected, check.tolerance) << check.name;
    }
}

TEST(PublishedPointing, FromTheApparentToTheObservedPlace) {
    eraASTROM context = publishedContext();
    double azimuth = 0.0;
    double zenithDistance = 0.0;
    double hourAngle = 0.0;
    double dec = 0.0;
    double ra = 0.0;
    eraAtioq(2.710121572969038991, 0.1729371367218230438, &context, &azimuth, &zenithDistance, &hourAngle, &dec, &ra);
    EXPECT_NEAR(azimuth, 0.9233952224895122499e-1, 1e-12);
    EXPECT_NEAR(zenithDistance, 1.407758704513549991, 1e-12);
    EXPECT_NEAR(hourAngle, -0.9247619879881698140e-1, 1e-12);
    EXPECT_NEAR(dec, 0.1717653435756234676, 1e-12);
    EXPECT_NEAR(ra, 2.710085107988480746, 1e-12);
}

TEST(PublishedPointing, FromTheObservedToTheApparentPlace) {
    eraASTROM context = publishedContext();
    struct Check {
        const char* type;
        double first;
        double second;
        double ra;
        double dec;
    };
    // Right ascension and declination; hour angle and declination; azimuth and zenith distance.
    const std::array checks = {
        Check{"R", 2.710085107986886201, 0.1717653435758265198, 2.710121574447540810, 0.17293718391166087785},
        Check{"H", -0.09247619879782006106, 0.1717653435758265198, 2.710121574448138676, 0.1729371839116608778},
        Check{"A", 0.09233952224794989993, 1.407758704513722461, 2.710121574448138676, 0.1729371839116608781},
    };
    for (const Check& check : checks) {
        double ra = 0.0;
        double dec = 0.0;
        eraAtoiq(check.type, check.first, check.second, &context, &ra, &dec);
        EXPECT_NEAR(ra, check.ra, 1e-12) << check.type;
        EXPECT_NEAR(dec, check.dec, 1e-12) << check.type;
    }
}
