/**
 * @file
 * Numbers as the documents write them.
 */
#ifndef POS_NUMBERTEXT_H
#define POS_NUMBERTEXT_H

#include <QString>

namespace pos {

/**
 * A number in fixed-point notation, never widened, exact ties rounded away from zero.
 *
 * @param value the number
 * @param decimals how many digits follow the point
 */
inline QString fixedText(double value, int decimals) {
    return QString::number(value, 'f', decimals);
}

/** A number as the XML library's setter of attributes writes a double: 17 significant digits, in either notation. */
inline QString generalText(double value) {
    return QString::number(value, 'g', 17);
}

} // namespace pos

#endif
