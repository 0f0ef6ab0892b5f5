#include "FocalPlane.h"
#include "ProcessWideState.h"
#include "telescope.h"
#include "thrown.h"
#include "tolerances.h"

#include <boost/property_tree/exceptions.hpp>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using namespace pos;

namespace {

class FocalPlaneTest : public ProcessWideState {};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/** A site whose every value differs from the embedded ones, and a plate that is shifted and turned. */
TelescopeSettings otherTelescope() {
    TelescopeSettings telescope;
    telescope.eastLongitude = 149.0661;
    telescope.latitude = -31.2771;
    telescope.height = 1164.5;
    telescope.horizonLimit = 20.0;
    telescope.rotatorOffset = 12.5;
    return telescope;
}

/** The wrap into [-pi, pi], as stated. */
double wrapped(double angle) {
    const double rest = std::fmod(angle, 2 * kTestPi);
    return std::fabs(rest) > kTestPi ? rest - std::copysign(2 * kTestPi, angle) : rest;
}

PlateCoordinates plateOf(const FocalPlane& focalPlane, CIRS place) {
    return PlateCoordinates(FocalPlaneCoordinates(focalPlane.cirsToStd(place)));
}

/** Everything that follows from centre, date, site and weather, by the library alone. */
void expectAsTheLibraryHasIt(const FocalPlane& focalPlane, const TelescopeSettings& telescope) {
    const Conditions now = focalPlane.conditions();
    const ObservedPlace centre =
        libraryObserved(libraryCirs(focalPlane.fieldCentre(), now.epoch), libraryContext(telescope, now));
    EXPECT_EQ(focalPlane.zenithDistance(), centre.zenithDistance);
    EXPECT_EQ(focalPlane.hourAngle(), centre.hourAngle);
    EXPECT_EQ(focalPlane.tangentDec(), centre.dec);
    EXPECT_EQ(focalPlane.parallacticAngle(), eraHd2pa(centre.hourAngle, centre.dec, rad(telescope.latitude)));
}

} // namespace

TEST_F(FocalPlaneTest, TheSiteComesFromTheConfiguration) {
    const FocalPlane focalPlane(telescopeConfig(otherTelescope()), VEKO, {1.0, -0.5}, 0.2, kWinterNight);
    EXPECT_EQ(focalPlane.eastLongitude(), 149.0661 / 180 * kTestPi);
    EXPECT_EQ(focalPlane.latitude(), -31.2771 / 180 * kTestPi);
    EXPECT_EQ(focalPlane.height(), 1164.5);
    EXPECT_EQ(focalPlane.rotatorOffset(), 12.5 / 180 * kTestPi);
}

TEST_F(FocalPlaneTest, CentreConditionsAndPositionAngleAreKeptAsGiven) {
    const FocalPlane focalPlane(telescopeConfig(), VEKO, {7.5, -0.25}, 4.0, kWinterNight);
    EXPECT_EQ(focalPlane.fieldCentre().ra, 7.5);
    EXPECT_EQ(focalPlane.fieldCentre().dec, -0.25);
    EXPECT_EQ(focalPlane.positionAngle(), 4.0); // the constructor does not wrap
    EXPECT_EQ(focalPlane.date(), 57389.125);
    EXPECT_EQ(focalPlane.conditions().epoch, 57389.125);
    EXPECT_EQ(focalPlane.conditions().temperature, 283.15);
    EXPECT_EQ(focalPlane.conditions().pressure, 770.0);
    EXPECT_EQ(focalPlane.conditions().relativeHumidity, 0.2);
}

TEST_F(FocalPlaneTest, SettingTheCentreWrapsThePositionAngle) {
    FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, 0.0, kWinterNight);
    for (const double angle : {0.5, 4.0, -4.0, kTestPi, -kTestPi, 100.0, -100.0}) {
        focalPlane.setFieldCentre(Astrometric{1.1, 0.4}, angle);
        EXPECT_EQ(focalPlane.positionAngle(), wrapped(angle));
    }
    EXPECT_NEAR(wrapped(4.0), 4.0 - 2 * kTestPi, kAngleTolerance);
    EXPECT_EQ(focalPlane.fieldCentre().ra, 1.1);
    EXPECT_EQ(focalPlane.fieldCentre().dec, 0.4);
}

TEST_F(FocalPlaneTest, TheOpticsTurnByTheUnwrappedPositionAngle) {
    const double angle = 100.0;
    ASSERT_NE(std::cos(angle), std::cos(wrapped(angle)));
    const auto expectTurned = [&] {
        const auto [px, py] = FocalPlaneCoordinates(0, 0).project(-0.004, 0.011);
        const FocalPlaneCoordinates place(StandardCoordinates{0.004, 0.011});
        EXPECT_EQ(place.x, std::cos(angle) * px - std::sin(-angle) * py);
        EXPECT_EQ(place.y, std::cos(angle) * py + std::sin(-angle) * px);
    };
    FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, angle, kWinterNight);
    expectTurned();
    FocalPlaneCoordinates::setRotation(0.0);
    focalPlane.setFieldCentre(Astrometric{1.0, 0.5}, angle);
    expectTurned();
}

TEST_F(FocalPlaneTest, ThePointingIsTheLibrarysToTheBit) {
    const std::vector<Astrometric> centres = {{1.0, 0.5}, {1.2, -0.3}, {0.6, 1.4}, {6.9, 0.1}};
    for (const TelescopeSettings& telescope : {TelescopeSettings{}, otherTelescope()}) {
        // Far from the meridian at one of the sites: no refraction limit may interfere with this comparison.
        TelescopeSettings unlimited = telescope;
        unlimited.horizonLimit = -90.0;
        for (const Astrometric& centre : centres) {
            FocalPlane focalPlane(telescopeConfig(unlimited), PLATE_A, centre, 0.3, kWinterNight);
            expectAsTheLibraryHasIt(focalPlane, unlimited);
            focalPlane.setDate(57400.75);
            EXPECT_EQ(focalPlane.date(), 57400.75);
            EXPECT_EQ(focalPlane.conditions().pressure, 770.0);
            expectAsTheLibraryHasIt(focalPlane, unlimited);
            focalPlane.setConditions({57300.25, 290.0, 900.0, 0.9});
            expectAsTheLibraryHasIt(focalPlane, unlimited);
            focalPlane.setFieldCentre(Astrometric{2.0, 0.2}, -1.0);
            expectAsTheLibraryHasIt(focalPlane, unlimited);
            focalPlane.setHourAngle(0.5);
            expectAsTheLibraryHasIt(focalPlane, unlimited);
            focalPlane.update();
            expectAsTheLibraryHasIt(focalPlane, unlimited);
        }
    }
}

TEST_F(FocalPlaneTest, SkyToTangentPlaneIsTheLibrarysToTheBit) {
    const TelescopeSettings telescope;
    const FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, 0.3, kWinterNight);
    const eraASTROM context = libraryContext(telescope, kWinterNight);
    const ObservedPlace centre = libraryObserved(libraryCirs({1.0, 0.5}, 57389.125), context);
    for (const CIRS& target : std::vector<CIRS>{{1.0, 0.5}, {1.01, 0.51}, {0.99, 0.497}, {1.5, 0.2}}) {
        const ObservedPlace seen = libraryObserved(target, context);
        double xi = 0.0;
        double eta = 0.0;
        ASSERT_EQ(eraTpxes(seen.ra, seen.dec, centre.ra, centre.dec, &xi, &eta), 0);
        const StandardCoordinates standard = focalPlane.cirsToStd(target);
        EXPECT_EQ(standard.xi, xi);
        EXPECT_EQ(standard.eta, eta);
    }
}

TEST_F(FocalPlaneTest, PlateToSkyIsTheLibrarysToTheBit) {
    const TelescopeSettings telescope;
    const FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, 0.3, kWinterNight);
    eraASTROM context = libraryContext(telescope, kWinterNight);
    const ObservedPlace centre = libraryObserved(libraryCirs({1.0, 0.5}, 57389.125), context);
    for (const auto& [x, y] : std::vector<std::pair<double, double>>{{0, 0}, {10.5, -3.25}, {-150, 120}}) {
        const PlateCoordinates position(x, y);
        const auto standard = static_cast<StandardCoordinates>(FocalPlaneCoordinates(position));
        double ra = 0.0;
        double dec = 0.0;
        eraTpsts(standard.xi, standard.eta, centre.ra, centre.dec, &ra, &dec);
        CIRS expected{};
        eraAtoiq("R", ra, dec, &context, &expected.ra, &expected.dec);
        const CIRS place = focalPlane.xyToCirs(position);
        EXPECT_EQ(place.ra, expected.ra);
        EXPECT_EQ(place.dec, expected.dec);
    }
}

TEST_F(FocalPlaneTest, TheFieldCentreIsTheOriginOfTheTangentPlane) {
    const FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, 0.3, kWinterNight);
    const StandardCoordinates centre = focalPlane.cirsToStd(Astrometric{1.0, 0.5}.toCirs(57389.125));
    EXPECT_EQ(centre.xi, 0.0);
    EXPECT_EQ(centre.eta, 0.0);
}

TEST_F(FocalPlaneTest, PlateToSkyRoundTripsOverThePlate) {
    const FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, 2.1, kWinterNight);
    for (double x = -200.0; x <= 200.0; x += 50.0) {
        for (double y = -200.0; y <= 200.0; y += 50.0) {
            const PlateCoordinates back = plateOf(focalPlane, focalPlane.xyToCirs({x, y}));
            // The library undoes refraction to first order in the tangent of the zenith distance only.
            EXPECT_NEAR(back.x, x, kRefractionRoundTripMm);
            EXPECT_NEAR(back.y, y, kRefractionRoundTripMm);
        }
    }
}

TEST_F(FocalPlaneTest, AroundTheZenithAzimuthTurnsOnThePlate) {
    // Without air, and pointing at the zenith, a star one degree down in the north lies at tan(1 degree) north, and
    // one in the east as far towards negative x.
    const TelescopeSettings telescope;
    const Astrometric zenith = placeObservedAt("A", 0.0, 0.0, telescope, kAirlessNight);
    const FocalPlane focalPlane(telescopeConfig(), VEKO, zenith, 0.0, kAirlessNight);
    EXPECT_NEAR(focalPlane.zenithDistance(), 0.0, kNearZenith);
    EXPECT_NEAR(focalPlane.tangentDec(), rad(28.760583), kNearZenith);
    const double theta = std::tan(rad(1.0)) * 180 / kTestPi;
    const double radius = 202.841 * theta + 3.0191 * std::pow(theta, 3) - 0.0995944 * std::pow(theta, 5);
    struct Row {
        double azimuthDeg;
        double x;
        double y;
    };
    for (const Row& row : std::vector<Row>{{0, 0, radius}, {90, -radius, 0}, {180, 0, -radius}, {270, radius, 0}}) {
        const Astrometric star = placeObservedAt("A", rad(row.azimuthDeg), rad(1.0), telescope, kAirlessNight);
        const PlateCoordinates seen = plateOf(focalPlane, star.toCirs(kAirlessNight.epoch));
        EXPECT_NEAR(seen.x, row.x, kObservedPlaceMm) << row.azimuthDeg;
        EXPECT_NEAR(seen.y, row.y, kObservedPlaceMm) << row.azimuthDeg;
    }
}

TEST_F(FocalPlaneTest, TheParallacticAngleIsZeroSouthOfTheZenithAndHalfATurnNorthOfIt) {
    const TelescopeSettings telescope;
    const auto parallacticAngle = [&](double hourAngle, double dec) {
        const Astrometric centre = placeObservedAt("H", hourAngle, dec, telescope, kAirlessNight);
        return FocalPlane(telescopeConfig(), VEKO, centre, 0.0, kAirlessNight).parallacticAngle();
    };
    EXPECT_NEAR(parallacticAngle(0.0, 0.1), 0.0, kObservedAngleTolerance);
    EXPECT_NEAR(std::fabs(parallacticAngle(0.0, 1.0)), kTestPi, kObservedAngleTolerance);
    // In the west it is positive, in the east negative. On the equator six hours west: 90 degrees less the latitude.
    EXPECT_NEAR(parallacticAngle(kTestPi / 2, 0.0), kTestPi / 2 - rad(28.760583), kObservedAngleTolerance);
    EXPECT_NEAR(parallacticAngle(-kTestPi / 2, 0.0), rad(28.760583) - kTestPi / 2, kObservedAngleTolerance);
}

TEST_F(FocalPlaneTest, BelowTheHorizonLimitThereIsNoRefractionForCentreAndTargets) {
    const TelescopeSettings telescope;
    // The centre at an elevation of 4 degrees; a target above the limit of 5 degrees, in the same pointing.
    const Astrometric low = placeObservedAt("A", 2.0, rad(86.0), telescope, kAirlessNight);
    const Astrometric target = placeObservedAt("A", 2.0, rad(84.5), telescope, kAirlessNight);
    const FocalPlane focalPlane(telescopeConfig(), VEKO, low, 0.0, kWinterNight);

    eraASTROM airless = libraryContext(telescope, kWinterNight);
    ASSERT_GT(airless.refa, 0.0);
    airless.refa = 0.0;
    airless.refb = 0.0;
    const ObservedPlace centre = libraryObserved(libraryCirs(low, 57389.125), airless);
    EXPECT_EQ(focalPlane.zenithDistance(), centre.zenithDistance);
    EXPECT_EQ(focalPlane.hourAngle(), centre.hourAngle);
    EXPECT_EQ(focalPlane.tangentDec(), centre.dec);
    EXPECT_EQ(focalPlane.parallacticAngle(), eraHd2pa(centre.hourAngle, centre.dec, rad(28.760583)));
    EXPECT_NEAR(focalPlane.zenithDistance(), rad(86.0), kObservedAngleTolerance);

    const CIRS targetPlace = libraryCirs(target, 57389.125);
    const ObservedPlace seen = libraryObserved(targetPlace, airless);
    double xi = 0.0;
    double eta = 0.0;
    ASSERT_EQ(eraTpxes(seen.ra, seen.dec, centre.ra, centre.dec, &xi, &eta), 0);
    EXPECT_EQ(focalPlane.cirsToStd(targetPlace).xi, xi);
    EXPECT_EQ(focalPlane.cirsToStd(targetPlace).eta, eta);
    double ra = 0.0;
    double dec = 0.0;
    eraTpsts(0.0, 0.0, centre.ra, centre.dec, &ra, &dec);
    CIRS expected{};
    eraAtoiq("R", ra, dec, &airless, &expected.ra, &expected.dec);
    EXPECT_EQ(focalPlane.xyToCirs({0.0, 0.0}).ra, expected.ra);
    EXPECT_EQ(focalPlane.xyToCirs({0.0, 0.0}).dec, expected.dec);
}

TEST_F(FocalPlaneTest, RefractionReturnsWithTheNextPointingAboveTheHorizonLimit) {
    const TelescopeSettings telescope;
    const Astrometric low = placeObservedAt("A", 2.0, rad(86.0), telescope, kAirlessNight);
    const Astrometric high = placeObservedAt("A", 2.0, rad(40.0), telescope, kAirlessNight);
    FocalPlane focalPlane(telescopeConfig(), VEKO, low, 0.0, kWinterNight);
    focalPlane.setFieldCentre(high, 0.0);
    expectAsTheLibraryHasIt(focalPlane, telescope);
    // About 44" x tan(40 degrees) at this pressure, towards the zenith.
    EXPECT_LT(focalPlane.zenithDistance(), rad(40.0) - rad(30.0 / 3600));
}

TEST_F(FocalPlaneTest, TheHorizonLimitIsComparedWithTheRefractedZenithDistance) {
    // Refraction near an elevation of 20 degrees lifts by about two arcminutes.
    const TelescopeSettings telescope = otherTelescope();
    const auto seenElevationDeg = [&](double trueElevationDeg) {
        const Astrometric centre = placeObservedAt("A", 2.0, rad(90.0 - trueElevationDeg), telescope, kAirlessNight);
        const FocalPlane focalPlane(telescopeConfig(telescope), VEKO, centre, 0.0, kWinterNight);
        return 90.0 - focalPlane.zenithDistance() * 180 / kTestPi;
    };
    EXPECT_GT(seenElevationDeg(19.99), 20.0);
    EXPECT_NEAR(seenElevationDeg(19.90), 19.90, 1e-6);
}

TEST_F(FocalPlaneTest, ATargetThatCannotBeProjectedIsRefused) {
    const FocalPlane focalPlane(telescopeConfig(), VEKO, {1.0, 0.5}, 0.0, kWinterNight);
    const std::string message = "celestial position not in the tangent plane";
    EXPECT_EQ(messageOf([&] { focalPlane.cirsToStd({1.0 + kTestPi, -0.5}); }), message);
    EXPECT_EQ(messageOf([&] { focalPlane.cirsToStd({1.0, 0.5 - rad(91.0)}); }), message);
    EXPECT_EQ(messageOf([&] { focalPlane.cirsToStd({kNaN, 0.5}); }), message);
    EXPECT_NO_THROW(focalPlane.cirsToStd({1.0, 0.5 - rad(85.0)}));
}

TEST_F(FocalPlaneTest, AMissingSiteValueIsTheConfigurationsError) {
    const TemporaryFolder folder;
    const PosConfig config(folder
                               .write("c.xml", "<configure datamver='8.00'><telescope><focal_plane_map>"
                                               ":/focal_plane_map.xml</focal_plane_map></telescope></configure>")
                               .c_str(),
                           PosConfig::XML);
    const std::string text = messageOf<boost::property_tree::ptree_bad_path>([&] {
        FocalPlane(config, VEKO, {1.0, 0.5}, 0.0, kWinterNight);
    });
    EXPECT_EQ(text, "No such node (telescope.east_longitude)");
}

TEST_F(FocalPlaneTest, EachPointingReplacesTheOpticsAndThePlates) {
    const TemporaryFolder folder;
    TelescopeSettings telescope;
    telescope.focalPlaneMap = folder.write(
        "map.xml", "<focal_plane_map datamver='8.00' focal_length='5000'><optical_axis><PLATE_A x0='1' y0='2' r0='0'/>"
                   "<PLATE_B x0='3' y0='4' r0='0'/><VEKO x0='5' y0='6' r0='0'/></optical_axis>"
                   "<distortion_coefficients c1='100' c3='10' c5='1'/></focal_plane_map>");
    FocalPlaneCoordinates::setRotation(2.0);
    const FocalPlane focalPlane(telescopeConfig(telescope), PLATE_B, {1.0, 0.5}, 0.0, kWinterNight);
    const PlateCoordinates north(FocalPlaneCoordinates(StandardCoordinates{0.0, rad(1.0)}));
    EXPECT_NEAR(north.x, 3.0, kPlateToleranceMm);
    EXPECT_NEAR(north.y, 4.0 + 111.0, kPlateToleranceMm);
    const FocalPlane another(telescopeConfig(), VEKO, {1.0, 0.5}, 0.0, kWinterNight);
    EXPECT_NEAR(PlateCoordinates(FocalPlaneCoordinates(StandardCoordinates{0.0, rad(1.0)})).y, 205.7605056,
                kPlateToleranceMm);
}

TEST_F(FocalPlaneTest, ABadMapIsTheOpticsOrThePlatesError) {
    const TemporaryFolder folder;
    TelescopeSettings telescope;
    const auto refusal = [&](const std::string& map) {
        telescope.focalPlaneMap = folder.write("map.xml", map);
        const PosConfig config = telescopeConfig(telescope);
        return messageOf([&] { FocalPlane(config, VEKO, {1.0, 0.5}, 0.0, kWinterNight); });
    };
    EXPECT_EQ(refusal("<focal_plane_map datamver='8.00'/>"), "Bad focal length in focal plane map");
    EXPECT_EQ(refusal("<focal_plane_map datamver='8.00' focal_length='1'/>"), "Bad coefficient in focal plane map");
    EXPECT_EQ(refusal("<focal_plane_map datamver='8.00' focal_length='1'>"
                      "<distortion_coefficients c1='1' c3='1' c5='1'/></focal_plane_map>"),
              "Bad optical axis in focal plane map");
}
