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

/**
 * The deepest nesting that the braces of an INFO text can have for the parser, or more: a closing brace behind a quote
 * or a ";" on its line, or within a word, does not count. Files that the text includes are not read.
 */
int infoNesting(std::string_view text);

} // namespace pos

#endif
