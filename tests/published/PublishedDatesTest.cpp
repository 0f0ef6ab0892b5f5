#include <erfa.h>
#include <gtest/gtest.h>

// Arguments, values and tolerances are those of the library's own validation program, t_erfa_c.c of ERFA 2.0.0, which
// took them from the corresponding program of the IAU's library.

TEST(PublishedDates, AJulianEpochIsADate) {
    double first = 0.0;
    double second = 0.0;
    eraEpj2jd(1996.8, &first, &second);
    EXPECT_NEAR(first, 2400000.5, 1e-9);
    EXPECT_NEAR(second, 50375.7, 1e-9);
}

TEST(PublishedDates, ADateIsAJulianEpoch) {
    EXPECT_NEAR(eraEpj(2451545, -7392.5), 1979.760438056125941, 1e-12);
}

TEST(PublishedDates, TerrestrialTimeFollowsAtomicTime) {
    double first = 0.0;
    double second = 0.0;
    EXPECT_EQ(eraTaitt(2453750.5, 0.892482639, &first, &second), 0);
    EXPECT_NEAR(first, 2453750.5, 1e-6);
    EXPECT_NEAR(second, 0.892855139, 1e-12);
}

TEST(PublishedDates, CoordinatedTimeFollowsAtomicTime) {
    double first = 0.0;
    double second = 0.0;
    EXPECT_EQ(eraTaiutc(2453750.5, 0.892482639, &first, &second), 0);
    EXPECT_NEAR(first, 2453750.5, 1e-6);
    EXPECT_NEAR(second, 0.8921006945555555556, 1e-12);
}
