/**
 * @file
 * Numbers as the documents write them.
 */
#ifndef POS_NUMBERTEXT_H
#define POS_NUMBERTEXT_H

#include <QString>
#include <cstdint>
#include <optional>

namespace pos {

/** The number that a text stands for, with a decimal point in every locale; nothing if it stands for none. */
inline std::optional<double> numberOf(const QString& text) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

/** The 32-bit integer that a text stands for; nothing if it stands for none. */
inline std::optional<std::int32_t> integerOf(const QString& text) {
    bool ok = false;
    const std::int32_t value = text.toInt(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

/** The integer from 0 to 4294967295 that a text stands for; nothing if it stands for none, as "-0" does. */
inline std::optional<std::uint32_t> unsignedOf(const QString& text) {
    bool ok = false;
    const std::uint32_t value = text.toUInt(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

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
