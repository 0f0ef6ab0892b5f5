/**
 * @file
 * What a report was made from.
 */
#ifndef POS_PROVENANCE_H
#define POS_PROVENANCE_H

#include <nlohmann/json_fwd.hpp>

namespace pos {

struct Report;

/** Versions of program, data model and libraries, the command, and the documents that were read. */
nlohmann::ordered_json provenanceJson(const Report& report);

} // namespace pos

#endif
