/** The worked example of docs/position.md: inputs and results are read from the page's own tables. */
#include "Field.h"
#include "FocalPlane.h"
#include "FocalPlaneCoordinates.h"
#include "ProcessWideState.h"
#include "SatelliteFibre.h"
#include "Veko.h"
#include "VekoXML.h"
#include "angles.h"
#include "pointing.h"
#include "table.h"

#include <cmath>
#include <fstream>
#include <regex>
#include <set>

using namespace pos;

namespace {

const std::string kPage = std::string(POS_SOURCE_FOLDER) + "/docs/position.md";
const std::string kGolden = std::string(POS_SOURCE_FOLDER) + "/tests/golden/worked_example.csv";
constexpr double kMicrometresInAMillimetre = 1000;

using Texts = std::map<std::string, std::string>;
using Numbers = std::map<std::string, double>;

/** Name and number, as text, of every row of the page's tables that begins with a name in backticks. */
Texts shownNumbers() {
    Texts shown;
    const std::regex row(R"(^\| `(\w+)` \| ([-+0-9.]+) \|.*)");
    std::ifstream page(kPage);
    for (std::string line; std::getline(page, line);) {
        std::smatch cells;
        if (std::regex_match(line, cells, row)) {
            EXPECT_TRUE(shown.emplace(cells[1], cells[2]).second) << cells[1] << " stands there twice";
        }
    }
    return shown;
}

/** Half a unit of the last decimal of a number's text, and the rounding of doubles. */
double halfOfTheLastDecimal(const std::string& text) {
    const std::size_t point = text.find('.');
    const auto decimals = point == std::string::npos ? 0.0 : static_cast<double>(text.size() - point - 1);
    return 0.5000001 * std::pow(10.0, -decimals);
}

double hours(double radians) {
    return radiansToDegrees(radians) / 15;
}

double arcsec(double radians) {
    return radiansToDegrees(radians) * 3600;
}

/** What the page's inputs mean to the library. */
struct Given {
    ICRS star;
    Conditions conditions;
    Astrometric centre;
    double positionAngle;
};

Given givenBy(const Texts& shown) {
    const auto number = [&](const char* name) { return std::stod(shown.at(name)); };
    const auto angle = [&](const char* name) { return degreesToRadians(number(name)); };
    return {{angle("star_ra"), angle("star_dec"), number("star_epoch"), number("star_pmra"), number("star_pmdec"),
             number("star_parallax"), number("star_rv")},
            {number("date"), number("temperature"), number("pressure"), number("humidity")},
            {angle("centre_ra"), angle("centre_dec")},
            angle("pa")};
}

/** Steps 1 to 3. */
Numbers onTheSky(const Given& given, const FocalPlane& focalPlane) {
    const double date = given.conditions.epoch;
    const Astrometric moved = given.star.toAstrometric(date);
    const CIRS apparent = moved.toCirs(date);
    const ObservedPlace seen = libraryObserved(apparent, libraryContext(given.conditions));
    Conditions airless = given.conditions;
    airless.pressure = 0;
    const ObservedPlace without = libraryObserved(apparent, libraryContext(airless));
    return {{"centre_ha", hours(focalPlane.hourAngle())},
            {"centre_observed_dec", radiansToDegrees(focalPlane.tangentDec())},
            {"centre_zd", radiansToDegrees(focalPlane.zenithDistance())},
            {"centre_parallactic", radiansToDegrees(focalPlane.parallacticAngle())},
            {"moved_by", arcsec(separation(Astrometric{given.star.ra, given.star.dec}, moved))},
            {"moved_ra", radiansToDegrees(moved.ra)},
            {"moved_dec", radiansToDegrees(moved.dec)},
            {"cirs_ra", radiansToDegrees(apparent.ra)},
            {"cirs_dec", radiansToDegrees(apparent.dec)},
            {"lifted", arcsec(without.zenithDistance - seen.zenithDistance)},
            {"star_ha", hours(seen.hourAngle)},
            {"star_observed_dec", radiansToDegrees(seen.dec)}};
}

/** Steps 4 to 7. */
Numbers inTheFocalPlane(const Given& given, const FocalPlane& focalPlane) {
    const double date = given.conditions.epoch;
    const StandardCoordinates flat = focalPlane.cirsToStd(given.star.toAstrometric(date).toCirs(date));
    const PlateCoordinates plate = plateOf(focalPlane, date, given.star);
    const auto [x, y] = FocalPlaneCoordinates(0, 0).project(-flat.xi, flat.eta);
    const double fieldAngle = radiansToDegrees(std::hypot(flat.xi, flat.eta));
    const double radius = std::hypot(x, y);
    return {{"xi", arcsec(flat.xi)},
            {"eta", arcsec(flat.eta)},
            {"field_angle", fieldAngle},
            {"radius", radius},
            {"distortion", (radius - FocalPlaneCoordinates::save().c1 * fieldAngle) * kMicrometresInAMillimetre},
            {"unturned_x", x},
            {"unturned_y", y},
            {"plate_x", plate.x},
            {"plate_y", plate.y}};
}

/** Step 8. */
Numbers ofTheBundle(const Given& given, const FocalPlane& focalPlane, PlateCoordinates fibre) {
    const Astrometric seen = focalPlane.xyToCirs(fibre).toAstrometric(given.conditions.epoch);
    return {{"fibre_x", fibre.x},
            {"fibre_y", fibre.y},
            {"fibre_ra", radiansToDegrees(seen.ra)},
            {"fibre_dec", radiansToDegrees(seen.dec)}};
}

Numbers byTheLibrary(const Given& given) {
    const PosConfig config = embeddedConfig();
    const auto veko = createVekoXML(config, ":/VEKO.xml", Field(given.centre), given.conditions);
    const PlateCoordinates middleFibre = veko->fibres.at(304).platePosition();
    const FocalPlane focalPlane(config, VEKO, given.centre, given.positionAngle, given.conditions);
    Numbers all = onTheSky(given, focalPlane);
    all.merge(inTheFocalPlane(given, focalPlane));
    all.merge(ofTheBundle(given, focalPlane, middleFibre));
    return all;
}

class WorkedExample : public ProcessWideState {};

} // namespace

TEST_F(WorkedExample, EveryNumberOnThePageIsAnInputOrWhatTheLibraryComputes) {
    const Texts shown = shownNumbers();
    const Numbers computed = byTheLibrary(givenBy(shown));
    const std::set<std::string> inputs = {"star_ra",       "star_dec",  "star_epoch", "star_pmra",   "star_pmdec",
                                          "star_parallax", "star_rv",   "date",       "temperature", "pressure",
                                          "humidity",      "centre_ra", "centre_dec", "pa"};
    EXPECT_EQ(shown.size(), inputs.size() + computed.size());
    for (const auto& [name, text] : shown) {
        if (!inputs.contains(name)) {
            ASSERT_TRUE(computed.contains(name)) << name;
            EXPECT_NEAR(computed.at(name), std::stod(text), halfOfTheLastDecimal(text)) << name;
        }
    }
}

TEST_F(WorkedExample, EveryIndependentNumberIsOnThePage) {
    const Texts shown = shownNumbers();
    const std::vector<TableRow> independent = readTable(kGolden);
    EXPECT_EQ(independent.size(), 23U);
    for (const TableRow& row : independent) {
        const std::string& text = shown.at(row.text("quantity"));
        EXPECT_NEAR(row.number("value"), std::stod(text), halfOfTheLastDecimal(text)) << row.text("quantity");
    }
}
