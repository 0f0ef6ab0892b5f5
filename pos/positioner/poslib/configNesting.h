/**
 * @file
 * How deep a configuration file is nested.
 */
#ifndef POS_CONFIGNESTING_H
#define POS_CONFIGNESTING_H

#include <string_view>

namespace pos {

/** Deepest nesting that a configuration file may have; its parsers and its tree are recursive. */
inline constexpr int kMaxConfigDepth = 1000;

/**
 * The deepest nesting of tags in an XML text, comments and CDATA sections left out. Tags need not match, as they need
 * not for the parser; a "<" within a document type is taken for a tag.
 */
int xmlNesting(std::string_view text);

/** The deepest nesting of braces in an INFO text, quoted ones included; files that it includes are not read. */
int infoNesting(std::string_view text);

} // namespace pos

#endif
