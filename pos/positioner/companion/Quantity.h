/**
 * @file
 * What the numbers of a field definition measure.
 */
#ifndef POS_QUANTITY_H
#define POS_QUANTITY_H

#include <QString>

namespace pos {

/** What a number of a document measures. */
enum class Quantity {
    RightAscension,  ///< degrees
    Declination,     ///< degrees
    PositionAngle,   ///< degrees
    HourAngle,       ///< hours
    ObservationDate, ///< Julian epoch, years
    CatalogueEpoch,  ///< Julian epoch, years
    Temperature,     ///< kelvin
    Pressure,        ///< millibar
    Humidity,        ///< 0 to 1
    ProperMotion,    ///< mas/yr
    Parallax,        ///< arcseconds
    RadialVelocity,  ///< km/s
    Priority,
    MaskRadius,
    WholeNumber ///< an identifier or a flag
};

/** The values that a quantity can have. */
struct Range {
    double low;
    double high;

    bool contains(double value) const {
        return low <= value && value <= high;
    }
};

/** The values of a quantity that can be meant, in the unit of the document. */
Range rangeOf(Quantity quantity);

/** What the document wants, such as "a plain number of degrees". */
const char* wantedText(Quantity quantity);

/** Whether it is a right ascension or a declination, which need five decimals. */
bool isPosition(Quantity quantity);

/** Whether it is an epoch. */
bool isEpoch(Quantity quantity);

/** How many digits follow the point of a number in fixed-point notation. */
int decimalsOf(const QString& text);

/** A right ascension or declination filled up with zeros to the decimals that the run wants; others as they are. */
QString withEnoughDecimals(Quantity quantity, const QString& text);

/** A number in fixed-point notation, without zeros at the end; a position has at least six decimals. */
QString writtenNumber(Quantity quantity, double value, int decimals);

} // namespace pos

#endif
