#include "OtherUnit.h"

#include <algorithm>
#include <cmath>

namespace pos {

namespace {

/** The air at an observatory, degrees Celsius. */
constexpr Range kCelsius = {-60.0, 60.0};
/** The rest of what a thermometer in degrees Fahrenheit can show. */
constexpr Range kFahrenheit = {60.0, 123.0};
/** From the highest mountain to the sea, with room: in kilopascal, in bar, in pascal. */
constexpr Range kKilopascal = {30.0, 110.0};
constexpr Range kBar = {0.3, 1.1};
constexpr Range kPascal = {30000.0, 110000.0};
/** Hour angles beyond are no hours counted from 0 to 24. */
constexpr double kHoursInADay = 24.0;
constexpr double kFullTurn = 360.0;

/** A number of another unit in the document's. */
OtherUnit converted(const char* unit, const DocumentNumber& number, double factor, double offset, int moreDecimals) {
    return {unit, writtenNumber(number.quantity, *number.value * factor + offset,
                                std::max(0, decimalsOf(number.text()) + moreDecimals))};
}

std::optional<OtherUnit> otherTemperature(const DocumentNumber& number) {
    if (kCelsius.contains(*number.value)) {
        return converted("degrees Celsius", number, 1.0, 273.15, std::max(0, 2 - decimalsOf(number.text())));
    }
    return kFahrenheit.contains(*number.value)
               ? std::optional(converted("degrees Fahrenheit", number, 5.0 / 9, 2298.35 / 9,
                                         std::max(0, 2 - decimalsOf(number.text()))))
               : std::nullopt;
}

std::optional<OtherUnit> otherPressure(const DocumentNumber& number) {
    if (kPascal.contains(*number.value)) {
        return converted("pascal", number, 0.01, 0.0, 2);
    }
    if (kKilopascal.contains(*number.value)) {
        return converted("kilopascal", number, 10.0, 0.0, 0);
    }
    return kBar.contains(*number.value) ? std::optional(converted("bar", number, 1000.0, 0.0, 0)) : std::nullopt;
}

std::optional<OtherUnit> otherHumidity(const DocumentNumber& number) {
    return *number.value > 1.0 && *number.value <= 100.0 ? std::optional(converted("per cent", number, 0.01, 0.0, 2))
                                                         : std::nullopt;
}

std::optional<OtherUnit> otherHourAngle(const DocumentNumber& number) {
    const double size = std::fabs(*number.value);
    if (size <= kHoursInADay || size > kFullTurn) {
        return std::nullopt;
    }
    return size <= kFullTurn / 2 ? converted("degrees", number, 1.0 / 15, 0.0, 4) : OtherUnit{"degrees", std::nullopt};
}

std::optional<OtherUnit> otherParallax(const DocumentNumber& number) {
    return rangeOf(Quantity::Parallax).contains(*number.value)
               ? std::nullopt
               : std::optional(converted("milliarcseconds", number, 0.001, 0.0, 3));
}

} // namespace

std::optional<OtherUnit> otherUnitOf(const DocumentNumber& number) {
    if (!number.value || !std::isfinite(*number.value)) {
        return std::nullopt;
    }
    switch (number.quantity) {
    case Quantity::Temperature:
        return otherTemperature(number);
    case Quantity::Pressure:
        return otherPressure(number);
    case Quantity::Humidity:
        return otherHumidity(number);
    case Quantity::HourAngle:
        return otherHourAngle(number);
    case Quantity::Parallax:
        return otherParallax(number);
    default:
        return std::nullopt;
    }
}

} // namespace pos
