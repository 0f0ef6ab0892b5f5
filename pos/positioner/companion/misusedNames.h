/**
 * @file
 * The names of elements and attributes in a document that its vocabulary does not have at their place.
 */
#ifndef POS_MISUSEDNAMES_H
#define POS_MISUSEDNAMES_H

#include "SourceTree.h"

#include <QString>
#include <vector>

namespace pos {

struct CheckedDocument;

/** What is the matter with a name. */
enum class Misuse {
    Near,      ///< not known, but near one that is known at its place
    Misplaced, ///< known, and read at another place
    Repeated,  ///< an element that the run reads once, and not this one
    Unknown    ///< anything else that the run does not know at this place
};

/** A name that is not known at its place. */
struct MisusedName {
    Misuse misuse;
    const SourceElement* element;
    const SourceAttribute* attribute; ///< of the element; null where the element's own name is meant
    std::vector<QString> meant;       ///< Near: the names that may be meant; Misplaced: the elements it belongs to

    QString name() const {
        return attribute != nullptr ? attribute->name : element->name();
    }
    Span place() const {
        return attribute != nullptr ? attribute->namePlace : element->namePlace;
    }
};

/**
 * Finds them in a document whose parts have been found, an element before its attributes and children. Names with a
 * colon belong to other vocabularies; what stands in an unknown element may have any name that the run does not read.
 */
std::vector<MisusedName> findMisusedNames(const CheckedDocument& document);

/** Whether an element neither has an attribute nor one that may be meant for it. */
bool lacksAttribute(const SourceElement& element, const QString& attribute);

} // namespace pos

#endif
