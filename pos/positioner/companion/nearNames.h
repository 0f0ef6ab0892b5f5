/**
 * @file
 * Which known name a person may have meant by another.
 */
#ifndef POS_NEARNAMES_H
#define POS_NEARNAMES_H

#include <QString>

namespace pos {

/** A name as it is compared: without letter case and without the separators "_", "-" and ".". */
QString foldedName(const QString& name);

/**
 * Whether two names are the same word: alike but for letter case and separators, for the prefix "targ", which the
 * attributes of a target share, or for a unit behind the last separator, as `RA` or `ra_deg` for `RA_d`.
 */
bool isSameWord(const QString& name, const QString& known);

/**
 * Whether one name looks like another: a slip of the pen (one letter wrong, missing, too many, or two exchanged; two
 * such slips in a word of eight letters), or one begins or ends the other.
 */
bool isSimilar(const QString& name, const QString& known);

/** Whether a name begins a description of what is meant, as "position angle" begins that of `pa`. */
bool namesMeaning(const QString& name, const QString& meaning);

} // namespace pos

#endif
