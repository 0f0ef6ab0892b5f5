/**
 * @file
 * Pictures of the bundle and of the plate.
 */
#ifndef POS_PLATEPICTURES_H
#define POS_PLATEPICTURES_H

#include <nlohmann/json_fwd.hpp>

namespace pos {

struct ReportedField;

/** What the template needs to draw the bundle of a field: the plate's x to the right, its y up. */
nlohmann::ordered_json bundlePicture(const ReportedField& field);

/** What the template needs to draw the whole plate of a field. */
nlohmann::ordered_json platePicture(const ReportedField& field);

} // namespace pos

#endif
