#ifndef POS_TESTS_GENERATORS_H
#define POS_TESTS_GENERATORS_H

#include "pointing.h"

#include <QString>
#include <cmath>
#include <cstdint>
#include <rapidcheck.h>
#include <string>
#include <vector>

/** Numbers spread evenly over [low, high], whatever the size of a case. */
inline rc::Gen<double> between(double low, double high) {
    constexpr std::int64_t kSteps = std::int64_t{1} << 40;
    return rc::gen::map(rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::int64_t>(0, kSteps + 1)),
                        [low, high](std::int64_t step) {
                            return low + (high - low) * (static_cast<double>(step) / static_cast<double>(kSteps));
                        });
}

/** Whole numbers spread evenly over [low, high]. */
inline rc::Gen<std::int64_t> wholeBetween(std::int64_t low, std::int64_t high) {
    return rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::int64_t>(low, high + 1));
}

/** Any angle of a turn, radians. */
inline rc::Gen<double> anyAngle() {
    return between(-kTestPi, kTestPi);
}

/** A pair of coordinates in a disc, spread evenly over its area. */
inline std::pair<double, double> inDisc(double radius) {
    const double distance = radius * std::sqrt(*between(0.0, 1.0));
    const double direction = *anyAngle();
    return {distance * std::cos(direction), distance * std::sin(direction)};
}

/** Texts of ordinary, escaped, accented, Greek, Chinese and supplementary characters, tabs and line ends. UTF-8. */
inline rc::Gen<std::string> anyText() {
    const auto character = rc::gen::oneOf(
        rc::gen::inRange<std::uint32_t>(0x20, 0x7f),
        rc::gen::elementOf(std::vector<std::uint32_t>{'<', '&', '"', '\t'}),
        rc::gen::elementOf(std::vector<std::uint32_t>{'\'', '>', '\n', '%'}),
        rc::gen::inRange<std::uint32_t>(0xa1, 0x250), rc::gen::inRange<std::uint32_t>(0x3b1, 0x3ca),
        rc::gen::inRange<std::uint32_t>(0x4e00, 0x4f00), rc::gen::inRange<std::uint32_t>(0x1f600, 0x1f650));
    return rc::gen::map(rc::gen::container<std::vector<std::uint32_t>>(character),
                        [](const std::vector<std::uint32_t>& points) {
                            return QString::fromUcs4(points.data(), static_cast<int>(points.size())).toStdString();
                        });
}

#endif
