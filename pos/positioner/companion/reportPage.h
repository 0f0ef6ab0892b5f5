/**
 * @file
 * A report as a page of HTML.
 */
#ifndef POS_REPORTPAGE_H
#define POS_REPORTPAGE_H

#include <QByteArray>
#include <string>

namespace pos {

struct Report;

/**
 * The page, in UTF-8, of the template ":/report.html". It needs nothing beside itself. The same report gives the same
 * bytes.
 */
QByteArray reportPage(const Report& report);

/**
 * What the page shows as JSON: {"version": 1, "fields": […], "problems": […], "provenance": {…}}. Names end in the
 * unit; what is no number is null.
 */
std::string reportJson(const Report& report);

} // namespace pos

#endif
