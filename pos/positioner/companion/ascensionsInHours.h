/**
 * @file
 * Right ascensions that are in hours instead of degrees.
 */
#ifndef POS_ASCENSIONSINHOURS_H
#define POS_ASCENSIONSINHOURS_H

#include "CheckedDocument.h"

#include <vector>

namespace pos {

/**
 * The right ascensions of field centres and targets that are in hours: the place lies farther than the radius of a
 * field from centre, science target or guide star, and with 15 times the right ascension within it.
 */
std::vector<DocumentNumber> ascensionsInHours(const CheckedDocument& document);

} // namespace pos

#endif
