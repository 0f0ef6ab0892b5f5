/**
 * @file
 * Problems as people read them, in the way of compilers.
 */
#ifndef POS_PROBLEMTEXT_H
#define POS_PROBLEMTEXT_H

#include "Problem.h"
#include "SourceText.h"

#include <string>

namespace pos {

/** How text is shown. */
struct TextStyle {
    int width = 100;     ///< columns of the terminal
    bool colour = false; ///< by the escape sequences that all terminals know
};

/**
 * A problem with its place, the line of the document, and what to do:
 *
 *     field.xml:5:21: error: message [VK104]
 *         5 |   <conditions epoch="J2000" ha="0.5"/>
 *           |                      ^~~~~
 *     help: Write the Julian epoch in years
 *
 * A line that is too long is cut to the width around the place. Characters that would move the cursor are replaced.
 *
 * @param file the document's name
 */
std::string problemText(const Problem& problem, const SourceText& text, const std::string& file,
                        const TextStyle& style);

/** A text without characters that a terminal would obey. @param utf8 one or several lines */
std::string harmless(const std::string& utf8);

/** The same, and without the ends of lines. */
std::string harmlessLine(const std::string& utf8);

} // namespace pos

#endif
