/**
 * @file
 * Numbers that are in another unit than the document's.
 */
#ifndef POS_OTHERUNIT_H
#define POS_OTHERUNIT_H

#include "DocumentNumber.h"

#include <QString>
#include <optional>
#include <string>

namespace pos {

/** A unit that a number looks like. */
struct OtherUnit {
    std::string name;
    std::optional<QString> number; ///< the same in the document's unit, where it can be meant
};

/** The unit that a number looks like, where its value is none that it can have in its own. */
std::optional<OtherUnit> otherUnitOf(const DocumentNumber& number);

} // namespace pos

#endif
