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

/** A document that was checked. */
struct CheckedFile {
    std::string name;
    CheckResult result;
};

/**
 * Problems as JSON: {"version": 1, "documents": [{"file", "problems": [{"code", "severity", "line", "column",
 * "endLine", "endColumn", "message", "help", "fix"}], "errors", "warnings"}]}; "fix" is null or {"text"}. The end is
 * the last character of the place.
 */
std::string problemJson(const std::vector<CheckedFile>& files);

} // namespace pos

#endif
