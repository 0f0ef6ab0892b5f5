/**
 * @file
 * Problems as other programs read them.
 */
#ifndef POS_PROBLEMJSON_H
#define POS_PROBLEMJSON_H

#include "checkDocument.h"

#include <string>
#include <vector>

namespace pos {

/** A document that was to be checked. */
struct CheckedFile {
    std::string name;
    CheckResult result;       ///< nothing where the document could not be checked
    std::string trouble = {}; ///< why it could not; empty where it could
};

/**
 * Problems as JSON: {"version": 1, "documents": [{"file", "problems": [{"code", "severity", "line", "column",
 * "endLine", "endColumn", "message", "help", "fix"}], "errors", "warnings", "trouble"}]}; "fix" is null or {"text"}.
 * The end is the last character of the place. "trouble" is there where the document could not be checked.
 */
std::string problemJson(const std::vector<CheckedFile>& files);

} // namespace pos

#endif
