/**
 * @file
 * Pages made of a template.
 */
#ifndef POS_PAGETEMPLATE_H
#define POS_PAGETEMPLATE_H

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace pos {

/**
 * Fills a template with values.
 *
 * @param text with the tags of Mustache: {{name}} is replaced by a value, in which the characters that mean something
 * to HTML are escaped, {{{name}}} by a value as it is; {{#name}} to {{/name}} is repeated for each value of a list, and
 *     left out for one that is false, null or missing, for which {{^name}} to {{/name}} stands
 * @param values an object of texts, lists, objects, true, false and null
 * @throw std::runtime_error for a template with a section that does not end
 */
std::string filledTemplate(const std::string& text, const nlohmann::ordered_json& values);

/** Values as JSON that may stand in a script element: what could end the element, or begin a comment, is escaped. */
std::string jsonForScript(const nlohmann::ordered_json& values);

} // namespace pos

#endif
