#ifndef POS_TESTS_BADVALUES_H
#define POS_TESTS_BADVALUES_H

#include <string>
#include <vector>

/** A value that stands where another is expected. */
struct BadValue {
    std::string name;
    std::string text; ///< as it stands in the file between the quotes, well-formed or not
};

/**
 * Values in place of any other.
 *
 * @param original the value that is replaced; some are made from it
 * @param longest how many characters the longest of them have
 */
std::vector<BadValue> badValues(const std::string& original, std::size_t longest = 1'000'000);

#endif
