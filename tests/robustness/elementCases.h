#ifndef POS_TESTS_ELEMENTCASES_H
#define POS_TESTS_ELEMENTCASES_H

#include <string>
#include <vector>

/** A document in which something is wrong with one element. */
struct ElementCase {
    std::string name;
    std::string document;
};

/**
 * Each element of a tidy document removed, doubled, repeated a hundred times, renamed, nested in itself, emptied, put
 * into its sibling's place, without its start tag, without its end tag.
 */
std::vector<ElementCase> elementCases(const std::string& document);

#endif
