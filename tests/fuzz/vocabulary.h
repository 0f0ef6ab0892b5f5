#ifndef POS_TESTS_VOCABULARY_H
#define POS_TESTS_VOCABULARY_H

#include <string>
#include <vector>

/** Names of elements and attributes: the system's own, and a few that it does not know. */
const std::vector<std::string>& elementNames();
const std::vector<std::string>& attributeNames();

/** Values of the system's own, and those that no attribute expects. */
const std::vector<std::string>& chosenValues();

/** What can stand in an element beside elements, in XML or INFO. */
const std::vector<std::string>& markups();

/** What can stand between the declaration and the document element. */
const std::vector<std::string>& prologues();

#endif
