/**
 * @file
 * Problems in the format that code reviews show.
 */
#ifndef POS_PROBLEMSARIF_H
#define POS_PROBLEMSARIF_H

#include "problemJson.h"

#include <string>
#include <vector>

namespace pos {

/**
 * Problems as SARIF 2.1.0 (OASIS, 2020): one run of the tool with all its rules, one result for each problem, and a
 * notification for each document that could not be checked.
 */
std::string problemSarif(const std::vector<CheckedFile>& files);

} // namespace pos

#endif
