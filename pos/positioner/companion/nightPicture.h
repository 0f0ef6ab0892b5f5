/**
 * @file
 * The picture of a field's night.
 */
#ifndef POS_NIGHTPICTURE_H
#define POS_NIGHTPICTURE_H

#include <nlohmann/json_fwd.hpp>

namespace pos {

struct Report;
struct ReportedField;

/** What the template needs to draw a field's altitude and rotator angle, and the table behind it. */
nlohmann::ordered_json nightPicture(const Report& report, const ReportedField& field);

} // namespace pos

#endif
