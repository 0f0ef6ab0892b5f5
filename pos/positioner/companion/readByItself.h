/**
 * @file
 * Asking a reader of the run about one attribute by itself.
 */
#ifndef POS_READBYITSELF_H
#define POS_READBYITSELF_H

#include "SourceTree.h"

#include <QDomElement>
#include <exception>
#include <optional>
#include <string>

namespace pos {

/** The message with which an action fails; nothing where it succeeds. */
template <typename Action> std::optional<std::string> failureOf(const Action& action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return std::nullopt;
}

/** An element that has one attribute of another, and of the rest only what a reader cannot do without. */
QDomElement only(const SourceElement& element, const SourceAttribute& attribute);

} // namespace pos

#endif
