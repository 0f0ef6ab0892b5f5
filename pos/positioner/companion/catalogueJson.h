/**
 * @file
 * The catalogue of rules as other programs read it.
 */
#ifndef POS_CATALOGUEJSON_H
#define POS_CATALOGUEJSON_H

#include "Problem.h"

#include <string>
#include <vector>

namespace pos {

/**
 * Rules as JSON: {"version": 1, "rules": [{"code", "severity", "title", "explanation", "wrong", "right"}]}. A rule
 * without examples has empty ones.
 */
std::string catalogueJson(const std::vector<const Rule*>& rules);

} // namespace pos

#endif
