/**
 * @file
 * A comparison as texts for people and programs, and as a picture.
 */
#ifndef POS_COMPARISONRECORDS_H
#define POS_COMPARISONRECORDS_H

#include "compareDocuments.h"

#include <string>
#include <vector>

namespace pos {

/** Whether the documents are the same, and what moved each field: one sentence or more, without full stops. */
std::vector<std::string> comparisonSentences(const Comparison& comparison);

/** The sentences, a table for each field, and all other differences, a line each. */
std::string comparisonText(const Comparison& comparison);

/** JSON: {"version": 1, "same", "fields": […], "differences": […]}. */
std::string comparisonJson(const Comparison& comparison);

/** SVG: each fibre with an arrow to where it went, field by field; the scale of the arrows is told. */
std::string comparisonPicture(const Comparison& comparison);

} // namespace pos

#endif
