/**
 * @file
 * The numbers of a document, as the rules of values see them.
 */
#ifndef POS_DOCUMENTNUMBER_H
#define POS_DOCUMENTNUMBER_H

#include "OtherNotation.h"
#include "Quantity.h"
#include "SourceTree.h"

#include <optional>
#include <string>
#include <vector>

namespace pos {

struct CheckedDocument;

/** An attribute that stands for a number. */
struct DocumentNumber {
    const SourceElement* element = nullptr;
    const SourceAttribute* attribute = nullptr;
    Quantity quantity = Quantity::WholeNumber;
    bool isRead = false;                   ///< whether the run reads it
    std::optional<double> value;           ///< nothing where the run takes it for no number
    std::optional<OtherNotation> notation; ///< what else it is, if known, where it is no number

    const QString& text() const {
        return attribute->value;
    }
};

/**
 * The numbers of conditions, observation, fields, targets and masks, in no certain order. Missing values, and those
 * that an option replaces, are left out.
 */
std::vector<DocumentNumber> numbersOf(const CheckedDocument& document);

/** The message with which the run refuses a number; nothing where it takes it or does not read it. */
std::optional<std::string> refusalOf(const DocumentNumber& number);

} // namespace pos

#endif
