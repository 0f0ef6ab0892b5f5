#include "FocalPlaneCoordinates.h"
#include "ProcessWideState.h"
#include "pointing.h"
#include "thrown.h"
#include "tolerances.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace pos;

namespace {

class FocalPlaneCoordinatesTest : public ProcessWideState {};

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/** One degree of field angle in the embedded map: 202.841 + 3.0191 - 0.0995944 mm. */
constexpr double kRadiusAtOneDegree = 205.7605056;
constexpr double kFocalLength = kOptics.focalLength;

/** The embedded map's polynomial, degrees to mm. */
double polynomial(double theta) {
    return 202.841 * theta + 3.0191 * std::pow(theta, 3) - 0.0995944 * std::pow(theta, 5);
}

/** The position of a point of the tangent plane before rotation, mm. */
std::pair<double, double> project(double xi, double eta) {
    return FocalPlaneCoordinates(0, 0).project(xi, eta);
}

std::pair<double, double> unproject(double x, double y) {
    return FocalPlaneCoordinates(0, 0).unproject(x, y);
}

} // namespace

TEST_F(FocalPlaneCoordinatesTest, TheOpticalAxisMapsToTheOriginBothWays) {
    const FocalPlaneCoordinates origin(StandardCoordinates{0.0, 0.0});
    EXPECT_EQ(origin.x, 0.0);
    EXPECT_EQ(origin.y, 0.0);
    const StandardCoordinates back(FocalPlaneCoordinates(0.0, 0.0));
    EXPECT_EQ(back.xi, 0.0);
    EXPECT_EQ(back.eta, 0.0);
}

TEST_F(FocalPlaneCoordinatesTest, OneDegreeLiesAtTheSumOfTheCoefficientsNorthUpAndEastLeftUnlessTurned) {
    struct Row {
        double rotation;
        double xiDeg;
        double etaDeg;
        double x;
        double y;
    };
    for (const Row& row :
         {Row{0.0, 0.0, 1.0, 0.0, kRadiusAtOneDegree}, Row{0.0, 1.0, 0.0, -kRadiusAtOneDegree, 0.0},
          Row{kTestPi / 2, 0.0, 1.0, kRadiusAtOneDegree, 0.0}, Row{kTestPi / 2, 1.0, 0.0, 0.0, kRadiusAtOneDegree}}) {
        FocalPlaneCoordinates::setRotation(row.rotation);
        const FocalPlaneCoordinates place(StandardCoordinates{rad(row.xiDeg), rad(row.etaDeg)});
        EXPECT_NEAR(place.x, row.x, kPlateToleranceMm);
        EXPECT_NEAR(place.y, row.y, kPlateToleranceMm);
        const StandardCoordinates back = place;
        EXPECT_NEAR(back.xi, rad(row.xiDeg), kAngleTolerance);
        EXPECT_NEAR(back.eta, rad(row.etaDeg), kAngleTolerance);
    }
}

TEST_F(FocalPlaneCoordinatesTest, ThePolynomialIsOfTheFieldAngleInDegrees) {
    for (const double degrees : {0.01, 0.3, 0.7, 1.0, 1.2}) {
        // Along the direction (3, 4) / 5; project takes xi as it comes, unreflected.
        const auto [x, y] = project(rad(degrees) * 0.6, rad(degrees) * 0.8);
        EXPECT_NEAR(x, 0.6 * polynomial(degrees), kPlateToleranceMm) << degrees;
        EXPECT_NEAR(y, 0.8 * polynomial(degrees), kPlateToleranceMm) << degrees;
    }
}

TEST_F(FocalPlaneCoordinatesTest, ProjectionIsLinearBelowANanoradian) {
    // The focal length per radian and c1 per degree differ by nearly one per cent.
    const auto [x, y] = project(0.6e-9, -0.7e-9);
    EXPECT_EQ(x, kFocalLength * 0.6e-9);
    EXPECT_EQ(y, kFocalLength * -0.7e-9);
    const double atTheEdge = project(0.0, 1e-9).second;
    EXPECT_NEAR(atTheEdge, 202.841 * 180e-9 / kTestPi, 1e-18);
    EXPECT_NE(atTheEdge, kFocalLength * 1e-9);
}

TEST_F(FocalPlaneCoordinatesTest, TheResidualAndTheSlopeAreThoseOfThePolynomial) {
    const FocalPlaneCoordinates any(1.0, 2.0);
    EXPECT_NEAR(any.func(5.0, 1.0), kRadiusAtOneDegree - 5.0, kPlateToleranceMm);
    // At 2 degrees: 405.682 + 24.1528 - 3.1870208 mm; 202.841 + 36.2292 - 7.967552 mm/degree.
    EXPECT_NEAR(any.func(0.0, 2.0), 426.6477792, kPlateToleranceMm);
    EXPECT_NEAR(any.derivFunc(2.0), 231.102648, kPlateToleranceMm);
    EXPECT_EQ(any.derivFunc(0.0), 202.841);
}

TEST_F(FocalPlaneCoordinatesTest, TheRotationUsesTheCosineOfTheAngleAndTheSineOfItsNegative) {
    for (const double angle : {0.3, -2.5, 4.0, 100.0}) {
        FocalPlaneCoordinates::setRotation(angle);
        const auto [px, py] = project(-0.004, 0.011);
        const FocalPlaneCoordinates place(StandardCoordinates{0.004, 0.011});
        EXPECT_EQ(place.x, std::cos(angle) * px - std::sin(-angle) * py) << angle;
        EXPECT_EQ(place.y, std::cos(angle) * py + std::sin(-angle) * px) << angle;

        const FocalPlaneCoordinates given(31.0, -17.0);
        const auto [xi, eta] = unproject(std::cos(angle) * 31.0 + std::sin(-angle) * -17.0,
                                         std::cos(angle) * -17.0 - std::sin(-angle) * 31.0);
        const StandardCoordinates back(given);
        EXPECT_EQ(back.xi, -xi) << angle;
        EXPECT_EQ(back.eta, eta) << angle;
    }
}

TEST_F(FocalPlaneCoordinatesTest, TheLastStepOfTheInverseIsApplied) {
    // The step within the tolerance still removes an error of up to 1e-12 degrees; only rounding is left.
    for (const double degrees : {0.5, 0.8, 1.0, 1.2}) {
        const double eta = unproject(0.0, polynomial(degrees)).second;
        EXPECT_NEAR(eta * 180 / kTestPi, degrees, 5e-15) << degrees;
    }
}

TEST_F(FocalPlaneCoordinatesTest, AStartWithinTheToleranceIsKeptAsItIs) {
    // A straight line that misses the start value of one degree by a little less than the tolerance of 1e-10 degrees.
    const double perDegree = kFocalLength * kTestPi / 180;
    FocalPlaneCoordinates::setDistortion(perDegree * (1 + 0.99e-10), 0.0, 0.0);
    EXPECT_NEAR(unproject(0.0, perDegree).second * 180 / kTestPi, 1.0, 1e-14);
    // By a little more: the line's own root is found.
    FocalPlaneCoordinates::setDistortion(perDegree * (1 + 1.01e-10), 0.0, 0.0);
    EXPECT_NEAR(unproject(0.0, perDegree).second * 180 / kTestPi, 1.0 - 1.01e-10, 1e-14);
}

TEST_F(FocalPlaneCoordinatesTest, TheInverseStartsFromTheFocalLengthInUse) {
    // 200a - 50a^3 = 93.75 has the roots 0.5 and (-25 +- sqrt(38125)) / 100. With a quarter
    // of the focal length the start value lies beyond the maximum of the curve and leads to the second.
    FocalPlaneCoordinates::setDistortion(200.0, -50.0, 0.0);
    EXPECT_NEAR(unproject(0.0, 93.75).second * 180 / kTestPi, 0.5, 1e-12);
    FocalPlaneCoordinates::setFocalLength(kFocalLength / 4);
    EXPECT_NEAR(unproject(0.0, 93.75 / 4).second * 180 / kTestPi, (-25 + std::sqrt(38125.0)) / 100, 1e-12);
}

TEST_F(FocalPlaneCoordinatesTest, ANearlyVanishingRadiusIsTheOpticalAxis) {
    const auto [xi, eta] = unproject(0.6e-10, 0.7e-10);
    EXPECT_EQ(xi, 0.0);
    EXPECT_EQ(eta, 0.0);
    EXPECT_EQ(unproject(0.0, 0.99e-10).second, 0.0);
    // So near to the axis the start value, the radius by the focal length, is within the tolerance.
    EXPECT_NEAR(unproject(0.0, 1.01e-10).second, 1.01e-10 / kFocalLength, 1e-26);
    // The radius is taken at the nominal focal length.
    FocalPlaneCoordinates::setFocalLength(kFocalLength * 4);
    EXPECT_EQ(unproject(0.0, 2e-10).second, 0.0);
}

TEST_F(FocalPlaneCoordinatesTest, DoublingTheFocalLengthDoublesEveryRadius) {
    const auto [x, y] = project(0.003, -0.012);
    const auto linear = project(0.0, 0.5e-9).second;
    FocalPlaneCoordinates::setFocalLength(2 * FocalPlaneCoordinates::focalLength());
    EXPECT_EQ(project(0.003, -0.012), std::make_pair(2 * x, 2 * y));
    EXPECT_EQ(project(0.0, 0.5e-9).second, 2 * linear);
    EXPECT_EQ(FocalPlaneCoordinates::focalLength(), 2 * kFocalLength);
    EXPECT_EQ(FocalPlaneCoordinates::nominalFocalLength(), kFocalLength);
    const auto [xi, eta] = unproject(2 * x, 2 * y);
    EXPECT_NEAR(xi, 0.003, kAngleTolerance);
    EXPECT_NEAR(eta, -0.012, kAngleTolerance);
}

TEST_F(FocalPlaneCoordinatesTest, AnInverseThatConvergesSlowlyIsNotCutShort) {
    // On a^3 each step of a far start takes a third off: from 1e102 down to 1 degree in some 580 steps.
    FocalPlaneCoordinates::setDistortion(0.0, 1.0, 0.0);
    FocalPlaneCoordinates::setFocalLength(1e-100);
    EXPECT_NEAR(unproject(0.0, 1e-100 / kFocalLength).second * 180 / kTestPi, 1.0, 1e-12);
}

TEST_F(FocalPlaneCoordinatesTest, AnInverseThatDoesNotConvergeEndsWithAnError) {
    const std::string prefix = "Inverse distortion not converging at a radius of ";
    EXPECT_EQ(messageOf([] { unproject(kNaN, 0.0); }), prefix + "nan mm");
    EXPECT_EQ(messageOf([] { unproject(0.0, kNaN); }), prefix + "nan mm");
    EXPECT_EQ(messageOf([] { unproject(kInfinity, 0.0); }), prefix + "inf mm");
    EXPECT_EQ(messageOf([] { static_cast<void>(StandardCoordinates(FocalPlaneCoordinates(kNaN, 1.0))); }),
              prefix + "nan mm");
    // A curve without any slope, and one that is no number.
    FocalPlaneCoordinates::setDistortion(0.0, 0.0, 0.0);
    EXPECT_EQ(messageOf([] { unproject(3.0, 4.0); }), prefix + "5.000 mm");
    FocalPlaneCoordinates::setDistortion(kNaN, 0.0, 0.0);
    EXPECT_EQ(messageOf([] { unproject(3.0, 4.0); }), prefix + "5.000 mm");
    // The radius is told at the nominal focal length.
    FocalPlaneCoordinates::setFocalLength(2 * kFocalLength);
    EXPECT_EQ(messageOf([] { unproject(3.0, 4.0); }), prefix + "2.500 mm");
}

TEST_F(FocalPlaneCoordinatesTest, AnInverseThatGoesInCirclesEndsWithAnError) {
    // The textbook cycle of Newton's iteration: on 2a - a^3 = 2 it goes from 0 to 1 and back, and draws in what starts
    // near 0. The curve is not monotonic.
    FocalPlaneCoordinates::setDistortion(2.0, -1.0, 0.0);
    EXPECT_EQ(messageOf([] { unproject(0.0, 2.0); }), "Inverse distortion not converging at a radius of 2.000 mm");
}
