#ifndef POS_TESTS_DOCUMENTMAKER_H
#define POS_TESTS_DOCUMENTMAKER_H

#include <functional>
#include <string>

/** Chooses a number from 0 to below the count. */
using Choose = std::function<int(int count)>;

/** A well-formed document, and beside it the tree that it means. */
struct MadeDocument {
    std::string source; ///< UTF-8, without a declaration
    std::string tree;   ///< in the form of treeText
};

/**
 * Makes a document of every kind of markup: entities that hold text and markup of every kind, declared as they are or
 * by a parameter entity, declared attributes, references, comments, CDATA sections, instructions.
 */
MadeDocument makeDocument(const Choose& choose);

#endif
