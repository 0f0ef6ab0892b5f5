/**
 * The whole way between catalogue and plate against tests/golden/, where astropy's frames and plain vector algebra
 * went the same way. The tables' heads say how they were made.
 */
#include "ProcessWideState.h"
#include "Spread.h"
#include "angles.h"
#include "pointing.h"
#include "table.h"
#include "tolerances.h"

#include <cmath>
#include <functional>

using namespace pos;

namespace {

const std::string kGolden = std::string(POS_SOURCE_FOLDER) + "/tests/golden/";

/** A row of sites.csv, pointed as a row of pointings.csv says. */
FocalPlane pointed(const TableRow& site, const TableRow& pointing) {
    const Telescope telescope{.eastLongitude = degreesToRadians(site.number("east_longitude_deg")),
                              .latitude = degreesToRadians(site.number("latitude_deg")),
                              .height = site.number("height_m"),
                              .horizonLimit = degreesToRadians(site.number("horizon_limit_deg"))};
    const Optics optics{kOptics.nominalFocalLength, kOptics.focalLength, site.number("c1"), site.number("c3"),
                        site.number("c5")};
    // The rotation of the plate VEKO is in force for every plate, so that of another has no effect.
    const double rotation = degreesToRadians(site.number("r0_deg"));
    const PlateGeometry plates{{{{site.number("plate_a_x0"), site.number("plate_a_y0"), -0.5},
                                 {9.0, 9.0, 0.2},
                                 {site.number("veko_x0"), site.number("veko_y0"), rotation}}},
                               pointing.text("plate") == "VEKO" ? VEKO : PLATE_A,
                               rotation};
    return {telescope,
            optics,
            plates,
            {pointing.number("centre_ra"), pointing.number("centre_dec")},
            degreesToRadians(pointing.number("pa_deg")),
            {pointing.number("mjd_tai"), pointing.number("temperature_k"), pointing.number("pressure_mbar"),
             pointing.number("humidity")}};
}

/** Speed of a point of the equator as the Earth turns, over the speed of light. */
constexpr double kTurningSpeed = 465.1 / 299792458;
/** Radius of a field of 1 degree, mm, in which the chain is to agree within kFieldToleranceMm. */
constexpr double kFieldRadiusMm = 210.0;

double altitudeDeg(const TableRow& pointing) {
    return 90 - radiansToDegrees(pointing.number("zd_resting"));
}

/** Distance of two nearby places, radians. */
double onSky(double ra, double dec, double otherRa, double otherDec) {
    return std::hypot(wrapAngle(ra - otherRa) * std::cos(dec), dec - otherDec);
}

ICRS cataloguePlace(const TableRow& row) {
    return {row.number("ra"),     row.number("dec"),      row.number("epoch"), row.number("pm_ra"),
            row.number("pm_dec"), row.number("parallax"), row.number("rv")};
}

/** How far a catalogue place moves up to the date, radians. */
double motion(const TableRow& row, double mjdTai) {
    const double epoch = row.number("epoch");
    const double years = epoch > 0 ? 2000 + (mjdTai - 51544.5) / 365.25 - epoch : 0;
    return std::fabs(years) * std::hypot(row.number("pm_ra"), row.number("pm_dec")) * 1e3 * kMicroarcsecond;
}

/** Whether the astronomy library's answer hangs on no rounding: see kRelativeMotionWithoutParallax. */
bool spaceMotionIsStable(const TableRow& row, double mjdTai) {
    return row.number("parallax") > 0 || motion(row, mjdTai) == 0;
}

/** How well two programs can agree on a place with space motion, radians. */
double spaceMotionTolerance(const TableRow& row, double mjdTai) {
    return kSpaceMotionTolerance +
           (spaceMotionIsStable(row, mjdTai) ? 0 : kRelativeMotionWithoutParallax * motion(row, mjdTai));
}

double distanceMm(PlateCoordinates a, const TableRow& row, const std::string& observer) {
    return std::hypot(a.x - row.number("x_" + observer), a.y - row.number("y_" + observer));
}

/** Where the row's catalogue place lands. */
PlateCoordinates landed(const FocalPlane& plane, const TableRow& row) {
    return plane.cirsToXy(cataloguePlace(row).toAstrometric(plane.date()).toCirs(plane.date()));
}

/** Disagreements by altitude of the field centre, or by declination: each band reaches from its degree to the next. */
class Disagreements {
public:
    Disagreements(std::string kind, double unit, std::vector<int> bands = {0, 5, 10, 20, 30, 60})
        : kind_(std::move(kind)), unit_(unit), bands_(std::move(bands)), spreads_(bands_.size()) {}
    Disagreements(const Disagreements&) = delete;
    Disagreements& operator=(const Disagreements&) = delete;
    Disagreements(Disagreements&&) = delete;
    Disagreements& operator=(Disagreements&&) = delete;

    void add(double degrees, double disagreement) {
        std::size_t band = bands_.size() - 1;
        while (band > 0 && degrees < bands_.at(band)) {
            --band;
        }
        spreads_.at(band).add(disagreement / unit_);
    }
    /** Leaves them in the test's report (--gtest_output=xml), where tools/accuracy finds them. */
    ~Disagreements() {
        for (std::size_t i = 0; i < bands_.size(); ++i) {
            const Spread& spread = spreads_.at(i);
            const std::string name = kind_ + "_from_" + std::to_string(bands_.at(i)) + "_degrees_";
            if (spread.count() > 0) {
                testing::Test::RecordProperty(name + "count", spread.count());
                testing::Test::RecordProperty(name + "worst", std::to_string(spread.worst()));
                testing::Test::RecordProperty(name + "rms", std::to_string(spread.rms()));
            }
        }
    }

private:
    std::string kind_;
    double unit_;
    std::vector<int> bands_; ///< the lowest degree of each
    std::vector<Spread> spreads_;
};

constexpr std::size_t kFewestPositions = 500;
constexpr double kNanometre = 1e-6;  // mm
constexpr double kMicrometre = 1e-3; // mm

class IndependentChainTest : public ProcessWideState {
protected:
    using Visit = std::function<void(const FocalPlane&, const TableRow& pointing, const TableRow& row)>;

    /** Visits every row of a table with the library pointed as the row's pointing says. */
    void forEach(const std::string& table, const Visit& visit) {
        std::map<std::string, TableRow> sites;
        for (const TableRow& site : readTable(kGolden + "sites.csv")) {
            sites.emplace(site.text("site"), site);
        }
        const std::vector<TableRow> rows = readTable(kGolden + table);
        for (const TableRow& pointing : readTable(kGolden + "pointings.csv")) {
            SCOPED_TRACE("pointing " + pointing.text("pointing"));
            const FocalPlane plane = pointed(sites.at(pointing.text("site")), pointing);
            for (const TableRow& row : rows) {
                if (row.text("pointing") == pointing.text("pointing")) {
                    visit(plane, pointing, row);
                    ++visited_;
                }
            }
        }
        EXPECT_EQ(visited_, rows.size());
    }
    std::size_t visited_ = 0;
};

} // namespace

TEST_F(IndependentChainTest, FieldCentreIsObservedWhereTheChainObservesIt) {
    Disagreements disagreements("observed_centre_microarcseconds", kMicroarcsecond);
    forEach("pointings.csv", [&](const FocalPlane& plane, const TableRow& pointing, const TableRow& row) {
        const double distance =
            onSky(plane.hourAngle(), plane.tangentDec(), row.number("ha_resting"), row.number("dec_resting"));
        EXPECT_LT(distance, kDateResolution);
        disagreements.add(altitudeDeg(pointing), distance);
        EXPECT_NEAR(plane.zenithDistance(), pointing.number("zd_resting"), kDateResolution);
    });
}

TEST_F(IndependentChainTest, SpaceMotionLeadsWhereTheChainIsLed) {
    Disagreements withParallax("space_motion_microarcseconds", kMicroarcsecond, {0});
    Disagreements withoutParallax("space_motion_without_parallax_microarcseconds", kMicroarcsecond, {0});
    forEach("places.csv", [&](const FocalPlane& plane, const TableRow&, const TableRow& row) {
        const Astrometric place = cataloguePlace(row).toAstrometric(plane.date());
        const double distance = onSky(place.ra, place.dec, row.number("at_date_ra"), row.number("at_date_dec"));
        EXPECT_LE(distance, spaceMotionTolerance(row, plane.date()));
        if (motion(row, plane.date()) > 0) {
            (row.number("parallax") > 0 ? withParallax : withoutParallax).add(0, distance);
        }
    });
    EXPECT_GE(visited_, kFewestPositions);
}

TEST_F(IndependentChainTest, CataloguePlacesLandWhereTheChainPutsThem) {
    Disagreements disagreements("landing_nanometres", kNanometre);
    forEach("places.csv", [&](const FocalPlane& plane, const TableRow& pointing, const TableRow& row) {
        const double distance = distanceMm(landed(plane, row), row, "resting");
        const double motionMm = spaceMotionTolerance(row, plane.date()) * kSteepestPlateScale;
        EXPECT_LE(distance, kChainToleranceMm + motionMm);
        if (spaceMotionIsStable(row, plane.date())) {
            disagreements.add(altitudeDeg(pointing), distance);
        }
    });
    EXPECT_GE(visited_, kFewestPositions);
}

// The model takes the aberration of the Earth's centre for that of the telescope. What the telescope's own speed adds
// stretches the field by the ratio of that speed to that of light, and moves the tangent point, from which north is
// another direction the nearer the pole.
TEST_F(IndependentChainTest, OnlyTheSpeedOfTheTurningEarthIsMissing) {
    Disagreements byDeclination("turning_micrometres", kMicrometre, {0, 45, 60, 85, 89});
    int inTheField = 0;
    forEach("places.csv", [&](const FocalPlane& plane, const TableRow& pointing, const TableRow& row) {
        const double radius = std::hypot(row.number("x_resting"), row.number("y_resting"));
        const double motionMm = spaceMotionTolerance(row, plane.date()) * kSteepestPlateScale;
        const double distance = distanceMm(landed(plane, row), row, "turning");
        EXPECT_LE(distance, radius * kTurningSpeed * (1 + std::tan(std::fabs(plane.tangentDec()))) + motionMm);
        if (altitudeDeg(pointing) > 30 && radius < kFieldRadiusMm && spaceMotionIsStable(row, plane.date())) {
            byDeclination.add(radiansToDegrees(std::fabs(plane.tangentDec())), distance);
            if (std::fabs(plane.tangentDec()) < kPi / 4) {
                EXPECT_LE(distance, kFieldToleranceMm);
                ++inTheField;
            }
        }
    });
    EXPECT_GT(inTheField, 100);
}

TEST_F(IndependentChainTest, PlatePositionsSeeThePlacesThatAstropySaysTheySee) {
    Disagreements disagreements("way_back_by_the_library_microarcseconds", kMicroarcsecond);
    forEach("way_back.csv", [&](const FocalPlane& plane, const TableRow& pointing, const TableRow& row) {
        const Astrometric place = plane.xyToCirs({row.number("x"), row.number("y")}).toAstrometric(plane.date());
        const double distance = onSky(place.ra, place.dec, row.number("ra_library"), row.number("dec_library"));
        EXPECT_LT(distance, kMicroarcsecond);
        disagreements.add(altitudeDeg(pointing), distance);
    });
    EXPECT_GE(visited_, kFewestPositions);
}

// The way there inverted numerically. The astronomy library takes refraction off by an approximation that is the worse
// the lower the field.
TEST_F(IndependentChainTest, PlatePositionsSeeThePlacesThatLandThere) {
    Disagreements disagreements("way_back_microarcseconds", kMicroarcsecond);
    int unrefracted = 0;
    forEach("way_back.csv", [&](const FocalPlane& plane, const TableRow& pointing, const TableRow& row) {
        const Astrometric place = plane.xyToCirs({row.number("x"), row.number("y")}).toAstrometric(plane.date());
        const double distance = onSky(place.ra, place.dec, row.number("ra_resting"), row.number("dec_resting"));
        if (pointing.text("refracted") == "0") {
            ++unrefracted;
            EXPECT_LT(distance, kMicroarcsecond);
            return;
        }
        disagreements.add(altitudeDeg(pointing), distance);
        EXPECT_LT(distance, refractionInverseTolerance(altitudeDeg(pointing)));
    });
    EXPECT_GE(visited_, kFewestPositions);
    EXPECT_GT(unrefracted, 100);
}
