#include "LimitsCalc.h"
#include "Spread.h"
#include "angles.h"
#include "fields.h"
#include "measurements.h"
#include "tolerances.h"

#include <array>
#include <optional>
#include <stdexcept>

using namespace pos;

namespace {

/** Finer than those of the round trips: from some altitude down the solve no longer arrives. */
constexpr std::array<Range, 9> kSolvedAltitudes = {{{"5–10", 5.1, 10},
                                                    {"10–12.5", 10, 12.5},
                                                    {"12.5–15", 12.5, 15},
                                                    {"15–17.5", 15, 17.5},
                                                    {"17.5–20", 17.5, 20},
                                                    {"20–25", 20, 25},
                                                    {"25–30", 25, 30},
                                                    {"30–60", 30, 60},
                                                    {"60–90", 60, 90}}};
/** Steps of the solves that the tables show one by one. */
constexpr int kShownSteps = 3;

/** How one solve went: what was missed before the first step and after each, and whether it arrived. */
struct Course {
    std::vector<double> misses;
    bool arrived = false;
};

/** What many solves of a kind have in common. */
struct Courses {
    int failed = 0;
    int mostSteps = 0;
    Spread left;
    std::vector<Spread> afterStep{kShownSteps + 1};

    void add(const Course& course) {
        if (!course.arrived) {
            ++failed;
            return;
        }
        mostSteps = std::max(mostSteps, static_cast<int>(course.misses.size()) - 1);
        left.add(course.misses.back());
        for (std::size_t i = 0; i < std::min(afterStep.size(), course.misses.size()); ++i) {
            afterStep.at(i).add(course.misses.at(i));
        }
    }
    std::vector<std::string> cells() const {
        std::vector<std::string> all = {cell(left.count() + failed), cell(failed), cell(mostSteps)};
        for (int step = 1; step <= kShownSteps; ++step) {
            const Spread& spread = afterStep.at(static_cast<std::size_t>(step));
            all.push_back(spread.count() > 0 ? cell(spread.worst()) : "–");
        }
        all.push_back(cell(left.worst()));
        all.push_back(cell(left.rms()));
        return all;
    }
};

std::vector<std::string> courseHeads(const std::string& first, const std::string& unit) {
    return {first,
            "Solves",
            "not converging",
            "Most steps",
            "Missed after 1 step: worst, " + unit,
            "2 steps, " + unit,
            "3 steps, " + unit,
            "At the end: worst, " + unit,
            "rms, " + unit};
}

double missUm(const FocalPlane& plane, CIRS target, PlateCoordinates wanted) {
    const PlateCoordinates landed = plane.cirsToXy(target);
    return std::hypot(landed.x - wanted.x, landed.y - wanted.y) / kMicrometre;
}

/** The field-centre solve, step by step from outside; the model itself says whether these were its steps. */
Course centreCourse(const Pointing& pointing, Astrometric target, PlateCoordinates wanted) {
    FocalPlane solved = focalPlaneOf(pointing);
    Course course;
    try {
        solved.setFieldCentre(target, wanted);
        course.arrived = true;
    } catch (const std::runtime_error&) {
        return course;
    }
    FocalPlane plane = focalPlaneOf(pointing);
    const CIRS apparent = target.toCirs(plane.date());
    const auto pointAt = [&](Astrometric centre) {
        plane.setFieldCentre(centre, plane.positionAngle());
        course.misses.push_back(missUm(plane, apparent, wanted));
    };
    pointAt(target);
    const PlateCoordinates origin = plane.cirsToXy(apparent);
    while (course.misses.back() * kMicrometre > kPlacementToleranceMm) {
        const PlateCoordinates landed = plane.cirsToXy(apparent);
        const PlateCoordinates shifted(origin.x - (wanted.x - landed.x), origin.y - (wanted.y - landed.y));
        pointAt(plane.xyToCirs(shifted).toAstrometric(plane.date()));
    }
    if (plane.fieldCentre().ra != solved.fieldCentre().ra || plane.fieldCentre().dec != solved.fieldCentre().dec) {
        throw std::runtime_error("The steps that were counted are not those of the field-centre solve");
    }
    return course;
}

double missSeconds(const FocalPlane& plane, double hourAngle) {
    return std::fabs(wrapAngle(plane.hourAngle() - hourAngle)) / kSecondOfTime;
}

/** The hour-angle solve, likewise. */
Course hourAngleCourse(const Pointing& pointing, double wanted) {
    FocalPlane solved = focalPlaneOf(pointing);
    Course course;
    try {
        solved.setHourAngle(wanted);
        course.arrived = true;
    } catch (const std::runtime_error&) {
        return course;
    }
    FocalPlane plane = focalPlaneOf(pointing);
    course.misses.push_back(missSeconds(plane, wanted));
    while (std::fabs(wrapAngle(plane.hourAngle() - wanted)) > kSecondOfTime) {
        plane.setDate(plane.date() - wrapAngle(plane.hourAngle() - wanted) * 12 / kPi / 24 / 1.00273790934);
        course.misses.push_back(missSeconds(plane, wanted));
    }
    if (plane.date() != solved.date()) {
        throw std::runtime_error("The steps that were counted are not those of the hour-angle solve");
    }
    return course;
}

/** By how much the altitude misses the limit at the hour angle at which the field is said to set, arcsec. */
std::optional<double> missAtSetting(const Pointing& pointing, double largestZenithDistance) {
    FocalPlane plane = focalPlaneOf(pointing);
    const auto [earliest, latest] = LimitsCalc(pointing.telescope, plane, largestZenithDistance).hourAngleLimits();
    if (earliest == 0 && latest == 0) {
        return std::nullopt;
    }
    double azimuth = 0.0;
    double altitude = 0.0;
    eraHd2ae(latest, plane.tangentDec(), plane.latitude(), &azimuth, &altitude);
    // A limit of the rotator, or none at all.
    if (!(std::fabs(altitude - (kTestPi / 2 - largestZenithDistance)) < 1e-9)) {
        return std::nullopt;
    }
    plane.setHourAngle(latest);
    return (plane.zenithDistance() - largestZenithDistance) / kMicroarcsecond / 1e6;
}

/** A row for each range, of the courses of as many solves. */
template <typename Ranges, typename AnyCourse>
void printCourses(const PrintedTable& table, const Ranges& ranges, std::uint64_t seed, const AnyCourse& anyCourse) {
    constexpr int kSolves = 200;
    for (const Range& range : ranges) {
        Numbers numbers(++seed);
        Courses courses;
        for (int i = 0; i < kSolves; ++i) {
            courses.add(anyCourse(numbers, range));
        }
        std::vector<std::string> cells = courses.cells();
        cells.insert(cells.begin(), range.name);
        table.row(cells);
    }
}

} // namespace

void measureFieldCentreSolve() {
    const auto course = [](const auto& fieldAt) {
        return [fieldAt](Numbers& numbers, const Range& range) {
            const Pointing pointing = fieldAt(numbers, range);
            const Astrometric target = placeInField(numbers, pointing.centre);
            const auto [dx, dy] = numbers.inDisc(kFieldRadiusMm);
            return centreCourse(pointing, target, {pointing.plate.x0 + dx, pointing.plate.y0 + dy});
        };
    };
    printCourses(PrintedTable("field-centre-altitude", courseHeads("Altitude, degrees", "µm")), kSolvedAltitudes, 2000,
                 course([](Numbers& numbers, const Range& altitude) {
                     for (;;) {
                         const Pointing pointing = fieldAtAltitude(numbers, altitude, false);
                         if (std::fabs(pointing.centre.dec) < rad(80)) {
                             return pointing;
                         }
                     }
                 }));
    printCourses(PrintedTable("field-centre-declination", courseHeads("Declination, degrees", "µm")), kDeclinations,
                 2100, course([](Numbers& numbers, const Range& declination) {
                     return fieldAtDeclination(numbers, declination, false);
                 }));
}

void measureHourAngleSolve() {
    printCourses(PrintedTable("hour-angle", courseHeads("Declination, degrees", "s")), kDeclinations, 3000,
                 [](Numbers& numbers, const Range& declination) {
                     const Pointing pointing = fieldAtDeclination(numbers, declination, false);
                     return hourAngleCourse(pointing, rad(15) * numbers.between(-5, 5));
                 });
}

void measureHourAngleLimits() {
    constexpr int kLimits = 500;
    constexpr double kHorizonLimitDeg = 25;
    const PrintedTable table("hour-angle-limits",
                             {"Air", "Fields", "Altitude at the limit: worst, arcsec", "rms, arcsec"});
    for (const bool airless : {false, true}) {
        Numbers numbers(4000);
        Spread miss;
        while (miss.count() < kLimits) {
            Pointing pointing = fieldAtAltitude(numbers, {"", kHorizonLimitDeg, 90}, airless);
            if (const auto arcseconds = missAtSetting(pointing, rad(90 - kHorizonLimitDeg))) {
                miss.add(*arcseconds);
            }
        }
        table.row({airless ? "without" : "with", cell(miss.count()), cell(miss.worst()), cell(miss.rms())});
    }
}
