/**
 * @file
 * Numbers in notations that the run does not read.
 */
#ifndef POS_OTHERNOTATION_H
#define POS_OTHERNOTATION_H

#include "Quantity.h"

#include <QString>
#include <optional>

namespace pos {

/** A way to write a number that the run does not read. */
enum class Notation { Sexagesimal, DecimalComma, WithUnit, OtherCharacters, Date };

/** A number in another notation. */
struct OtherNotation {
    Notation notation;
    /** What it stands for, as the run reads it, in the document's unit; if known. */
    std::optional<QString> number = std::nullopt;
    /** Whether the text itself says so, and no other number can be meant. */
    bool isSure = false;
};

/**
 * Recognises a number in another notation.
 *
 * @param text a text that the run takes for no number
 * @param quantity what it measures
 * @return nothing for a text that is no number in any known notation
 */
std::optional<OtherNotation> otherNotation(const QString& text, Quantity quantity);

/**
 * A text with its characters from outside ASCII replaced by those that mean the same: digits of all scripts, minus
 * signs, blanks, signs of minutes and seconds. The sign of degrees stays. Blanks at both ends go.
 */
QString plainCharacters(const QString& text);

/** The Julian epoch of a Julian Date, of a Modified Julian Date, or of a date such as 20270401; else nothing. */
std::optional<QString> epochOfDayCount(Quantity quantity, double days);

/** Whether an epoch is one for which catalogues give positions, and hardly a date of observation. */
bool isCatalogueEpoch(double epoch);

} // namespace pos

#endif
