/**
 * @file
 * Windows as texts for people and programs.
 */
#ifndef POS_WINDOWRECORDS_H
#define POS_WINDOWRECORDS_H

#include "plannedFields.h"

#include <QTimeZone>
#include <optional>
#include <string>
#include <vector>

namespace pos {

/** How windows are written. */
struct WindowStyle {
    std::optional<QTimeZone> timeZone = {}; ///< in which times are given beside UTC
    Telescope telescope = {};               ///< whose rotator has limits
    std::string place = {};                 ///< title of a place that is none of a document
    bool isSeason = false;                  ///< whether each window of a table is one line
};

/** JSON: {"version": 1, "nights": […]}. Times in UTC by ISO 8601; what is no number is null. */
std::string windowJson(const std::vector<FieldNight>& nights, const WindowStyle& style);

/** CSV with one line a window, and one for a night without; the names are those of the JSON, joined by a dot. */
std::string windowCsv(const std::vector<FieldNight>& nights, const WindowStyle& style);

/** Tables to read, 80 columns wide: all about the windows of one night, or one line a window of a season. */
std::string windowTable(const std::vector<FieldNight>& nights, const WindowStyle& style);

/** An instant in a time zone, by ISO 8601 with its offset from UTC, to the millisecond. */
std::string localText(double mjdTai, const QTimeZone& timeZone);

} // namespace pos

#endif
