/**
 * @file
 * The units in which a comparison is told.
 */
#ifndef POS_COMPARISONUNITS_H
#define POS_COMPARISONUNITS_H

#include "angles.h"
#include "numberText.h"

#include <cmath>
#include <string>
#include <vector>

namespace pos {

/** An angle in arcseconds. */
constexpr double arcseconds(double radians) {
    return radiansToDegrees(radians) * 3600;
}

/** The unit of a length on the plate, or on the sky. */
struct LengthUnit {
    const char* name;
    double factor; ///< from mm, or from radians
    bool isSky;
    const char* where;

    double of(double value) const {
        return value * factor;
    }
};

inline constexpr LengthUnit kOnPlate{"µm", 1000.0, false, "on the plate"};
inline constexpr LengthUnit kOnSky{"arcsec", arcseconds(1.0), true, "on the sky"};

/** An angle of a degree and more, for people. */
inline constexpr LengthUnit kInDegrees{"degrees", radiansToDegrees(1.0), true, "on the sky"};

/** The unit in which people read a length: that of it, but degrees for a large angle. */
inline const LengthUnit& readable(double value, const LengthUnit& unit) {
    return unit.isSky && std::fabs(radiansToDegrees(value)) >= 1 ? kInDegrees : unit;
}

/** Three digits, but no more than three decimals; never "-0.000". */
inline std::string digits(double value) {
    const double size = std::fabs(value);
    const int decimals = size >= 99.95 ? 0 : size >= 9.995 ? 1 : size >= 0.9995 ? 2 : 3;
    return fixedText(size < 0.0005 ? 0.0 : value, decimals).toStdString();
}

/** A length, or an angle, in the unit in which people read it: "3.20 µm", "12.4 arcsec", "179 degrees". */
inline std::string lengthText(double value, const LengthUnit& unit) {
    const LengthUnit& shown = readable(value, unit);
    return digits(shown.of(value)) + ' ' + shown.name;
}

/** "1 fibre", "2 fibres". */
template <typename Count> std::string plural(Count number, const std::string& noun) {
    return std::to_string(number) + ' ' + noun + (number == 1 ? "" : "s");
}

/** "a, b and c". @param last what stands before the last word */
inline std::string joined(const std::vector<std::string>& words, const std::string& last) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == words.size() ? last : ", ") + words[i];
    }
    return text;
}

} // namespace pos

#endif
