#include <erfa.h>
#include <gtest/gtest.h>

// Arguments, values and tolerances are those of the library's own validation program, t_erfa_c.c of ERFA 2.0.0, which
// took them from the corresponding program of the IAU's library.

TEST(PublishedPlaces, SpaceMotionBetweenTwoEpochs) {
    double ra = 0.0;
    double dec = 0.0;
    double pmRa = 0.0;
    double pmDec = 0.0;
    double parallax = 0.0;
    double rv = 0.0;
    EXPECT_EQ(eraPmsafe(1.234, 0.789, 1e-5, -2e-5, 1e-2, 10.0, 2400000.5, 48348.5625, 2400000.5, 51544.5, &ra, &dec,
                        &pmRa, &pmDec, &parallax, &rv),
              0);
    EXPECT_NEAR(ra, 1.234087484501017061, 1e-12);
    EXPECT_NEAR(dec, 0.7888249982450468567, 1e-12);
    EXPECT_NEAR(pmRa, 0.9996457663586073988e-5, 1e-12);
    EXPECT_NEAR(pmDec, -0.2000040085106754565e-4, 1e-16);
    EXPECT_NEAR(parallax, 0.9999997295356830666e-2, 1e-12);
    EXPECT_NEAR(rv, 10.38468380293920069, 1e-10);
}

TEST(PublishedPlaces, FromTheCatalogueToTheApparentPlace) {
    double ra = 0.0;
    double dec = 0.0;
    double equationOfOrigins = 0.0;
    eraAtci13(2.71, 0.174, 1e-5, 5e-6, 0.1, 55.0, 2456165.5, 0.401182685, &ra, &dec, &equationOfOrigins);
    EXPECT_NEAR(ra, 2.710121572968696744, 1e-12);
    EXPECT_NEAR(dec, 0.1729371367219539137, 1e-12);
    EXPECT_NEAR(equationOfOrigins, -0.002900618712657375647, 1e-14);
}

TEST(PublishedPlaces, FromTheApparentToTheAstrometricPlace) {
    double ra = 0.0;
    double dec = 0.0;
    double equationOfOrigins = 0.0;
    eraAtic13(2.710121572969038991, 0.1729371367218230438, 2456165.5, 0.401182685, &ra, &dec, &equationOfOrigins);
    EXPECT_NEAR(ra, 2.710126504531716819, 1e-12);
    EXPECT_NEAR(dec, 0.1740632537627034482, 1e-12);
    EXPECT_NEAR(equationOfOrigins, -0.002900618712657375647, 1e-14);
}

TEST(PublishedPlaces, FromTheSkyToTheTangentPlane) {
    double xi = 0.0;
    double eta = 0.0;
    EXPECT_EQ(eraTpxes(1.3, 1.55, 2.3, 1.5, &xi, &eta), 0);
    EXPECT_NEAR(xi, -0.01753200983236980595, 1e-15);
    EXPECT_NEAR(eta, 0.05962940005778712891, 1e-15);
}

TEST(PublishedPlaces, FromTheTangentPlaneToTheSky) {
    double ra = 0.0;
    double dec = 0.0;
    eraTpsts(-0.03, 0.07, 2.3, 1.5, &ra, &dec);
    EXPECT_NEAR(ra, 0.7596127167359629775, 1e-14);
    EXPECT_NEAR(dec, 1.540864645109263028, 1e-13);
}

TEST(PublishedPlaces, TheParallacticAngleOfAnHourAngle) {
    EXPECT_NEAR(eraHd2pa(1.1, 1.2, 0.3), 1.906227428001995580, 1e-13);
}
