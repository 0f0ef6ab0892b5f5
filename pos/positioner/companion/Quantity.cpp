#include "Quantity.h"

#include "numberText.h"

#include <algorithm>
#include <limits>

namespace pos {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
/** UTC begins then, and docs/documents.md allows no other date of an observation. Julian years. */
constexpr Range kObservationDates = {1960.0, 2200.0};
/** The oldest catalogue in use is of the 18th century. 0 or less means none. Julian years. */
constexpr double kOldestCatalogue = 1700.0;
/** Outside of it refraction takes the nearer end. Kelvin. */
constexpr Range kTemperatures = {123.15, 473.15};
/** Outside of it refraction takes the nearer end. Millibar. */
constexpr Range kPressures = {0.0, 10000.0};
/** The fastest star known moves by 10400 mas in a year. */
constexpr double kFastestMotion = 11000.0;
/** The nearest star has 0.769 arcseconds; measured parallaxes may be negative. */
constexpr double kLargestParallax = 0.77;
/** The speed of light, km/s. */
constexpr double kLight = 299792.458;

/** What the run wants of a position. */
constexpr int kLeastDecimals = 5;
/** What the run itself writes for a position. */
constexpr int kUsualDecimals = 6;

} // namespace

Range rangeOf(Quantity quantity) {
    switch (quantity) {
    case Quantity::RightAscension:
        return {0.0, 360.0};
    case Quantity::Declination:
        return {-90.0, 90.0};
    case Quantity::PositionAngle:
        return {-360.0, 360.0};
    case Quantity::HourAngle:
        return {-12.0, 12.0};
    case Quantity::ObservationDate:
        return kObservationDates;
    case Quantity::CatalogueEpoch:
        return {kOldestCatalogue, kObservationDates.high};
    case Quantity::Temperature:
        return kTemperatures;
    case Quantity::Pressure:
        return kPressures;
    case Quantity::Humidity:
        return {0.0, 1.0};
    case Quantity::ProperMotion:
        return {-kFastestMotion, kFastestMotion};
    case Quantity::Parallax:
        return {-kLargestParallax, kLargestParallax};
    case Quantity::RadialVelocity:
        return {-kLight, kLight};
    case Quantity::Priority:
    case Quantity::MaskRadius:
        return {0.0, kInfinity};
    case Quantity::WholeNumber:
        break;
    }
    return {-kInfinity, kInfinity};
}

const char* wantedText(Quantity quantity) {
    switch (quantity) {
    case Quantity::RightAscension:
    case Quantity::Declination:
    case Quantity::PositionAngle:
        return "a plain number of degrees";
    case Quantity::HourAngle:
        return "a plain number of hours";
    case Quantity::ObservationDate:
    case Quantity::CatalogueEpoch:
        return "a Julian epoch as a plain number of years";
    case Quantity::Temperature:
        return "a plain number of kelvin";
    case Quantity::Pressure:
        return "a plain number of millibar";
    case Quantity::Humidity:
        return "a plain number from 0 to 1";
    case Quantity::ProperMotion:
        return "a plain number of milliarcseconds a year";
    case Quantity::Parallax:
        return "a plain number of arcseconds";
    case Quantity::RadialVelocity:
        return "a plain number of kilometres a second";
    case Quantity::WholeNumber:
        return "a plain whole number";
    case Quantity::Priority:
    case Quantity::MaskRadius:
        break;
    }
    return "a plain number";
}

bool isPosition(Quantity quantity) {
    return quantity == Quantity::RightAscension || quantity == Quantity::Declination;
}

bool isEpoch(Quantity quantity) {
    return quantity == Quantity::ObservationDate || quantity == Quantity::CatalogueEpoch;
}

int decimalsOf(const QString& text) {
    const int point = text.indexOf('.');
    int end = point + 1;
    while (point >= 0 && end < text.size() && text.at(end).isDigit()) {
        ++end;
    }
    return point < 0 ? 0 : end - point - 1;
}

QString withEnoughDecimals(Quantity quantity, const QString& text) {
    const int decimals = decimalsOf(text);
    if (!isPosition(quantity) || decimals >= kLeastDecimals) {
        return text;
    }
    if (text.contains('e', Qt::CaseInsensitive)) {
        return fixedText(numberOf(text).value_or(0.0), kUsualDecimals);
    }
    return text + (text.contains('.') ? "" : ".") + QString(kLeastDecimals - decimals, '0');
}

QString writtenNumber(Quantity quantity, double value, int decimals) {
    const int least = isPosition(quantity) ? kUsualDecimals : 0;
    QString text = fixedText(value, std::max(decimals, least));
    while (decimalsOf(text) > least && text.endsWith('0')) {
        text.chop(1);
    }
    if (text.endsWith('.')) {
        text.chop(1);
    }
    return text;
}

} // namespace pos
