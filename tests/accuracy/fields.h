/**
 * Fields, places and weather for measurements, the same in every run and on every machine.
 */
#ifndef POS_TESTS_ACCURACY_FIELDS_H
#define POS_TESTS_ACCURACY_FIELDS_H

#include "pointing.h"

#include <array>
#include <cstdint>
#include <random>
#include <utility>

/** Numbers spread evenly, from a seed. */
class Numbers {
public:
    explicit Numbers(std::uint64_t seed) : engine_(seed) {}

    double between(double low, double high);
    /** Coordinates in a disc, spread evenly over its area. */
    std::pair<double, double> inDisc(double radius);
    /** Coordinates on a circle. */
    std::pair<double, double> onCircle(double radius);

private:
    std::mt19937_64 engine_;
};

/** A range of angles, degrees, with the name that it has in the tables. */
struct Range {
    const char* name;
    double lowest;
    double highest;
};

/** Altitudes of the field centre. The lowest ends just above the limit below which the model has no refraction. */
inline constexpr std::array<Range, 5> kAltitudes = {
    {{"5–10", 5.1, 10}, {"10–20", 10, 20}, {"20–30", 20, 30}, {"30–60", 30, 60}, {"60–90", 60, 90}}};

/** Observed declinations, north and south alike. */
inline constexpr std::array<Range, 6> kDeclinations = {{{"0–60", 0, 60},
                                                        {"60–80", 60, 80},
                                                        {"80–85", 80, 85},
                                                        {"85–88", 85, 88},
                                                        {"88–89", 88, 89},
                                                        {"89–89.9", 89, 89.9}}};

/** Radius of a field, degrees. */
inline constexpr double kFieldRadiusDeg = 1.0;
/** The same on the plate, mm. */
inline constexpr double kFieldRadiusMm = 205.8;
/** One nanometre, mm. */
inline constexpr double kNanometre = 1e-6;
/** One micrometre, mm. */
inline constexpr double kMicrometre = 1e-3;

/** A site up to 70 degrees north or south, a plate shifted and turned, a date from 2000 to 2022, and weather. */
Pointing anySituation(Numbers& numbers, bool airless);

/** A field at an altitude, in any direction. */
Pointing fieldAtAltitude(Numbers& numbers, const Range& altitude, bool airless);

/** A field at an observed declination, at least 30 degrees above the horizon. */
Pointing fieldAtDeclination(Numbers& numbers, const Range& declination, bool airless);

/** An astrometric place within the field. */
pos::Astrometric placeInField(Numbers& numbers, const pos::Astrometric& centre);

#endif
