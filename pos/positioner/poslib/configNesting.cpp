#include "configNesting.h"

#include <algorithm>
#include <cctype>

namespace pos {

namespace {

/** How far the text goes on to the end of what begins at its start. */
std::size_t lengthUpTo(std::string_view text, std::string_view end) {
    const std::size_t place = text.find(end);
    return place == std::string_view::npos ? text.size() : place + end.size();
}

/**
 * How far an opening tag goes on: to its ">", or to a "<" where that is missing.
 *
 * As for the parser, a name ends only at a blank, "/", ">" or "?", and quotes mean something only behind a "=".
 */
std::size_t tagLength(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    std::size_t place = text.find_first_of(" \t\r\n/>?", 1);
    place = text.find_first_of("<>=", std::min(place, text.size()));
    while (place != std::string_view::npos && text[place] == '=') {
        const std::size_t quote = text.find_first_not_of(kBlanks, place + 1);
        const bool isQuoted = quote != std::string_view::npos && (text[quote] == '"' || text[quote] == '\'');
        const std::size_t closing = isQuoted ? text.find(text[quote], quote + 1) : place;
        place = closing == std::string_view::npos ? closing : text.find_first_of("<>=", closing + 1);
    }
    if (place == std::string_view::npos) {
        return text.size();
    }
    return text[place] == '>' ? place + 1 : place;
}

} // namespace

int xmlNesting(std::string_view text) {
    int depth = 0;
    int deepest = 0;
    while (text.find('<') != std::string_view::npos) {
        text.remove_prefix(text.find('<'));
        std::size_t length = 0;
        if (text.starts_with("<!--")) {
            length = lengthUpTo(text, "-->");
        } else if (text.starts_with("<![CDATA[")) {
            length = lengthUpTo(text, "]]>");
        } else if (text.starts_with("<?")) {
            length = lengthUpTo(text, "?>");
        } else if (text.starts_with("<!")) {
            length = lengthUpTo(text, ">");
        } else if (text.starts_with("</")) {
            length = lengthUpTo(text, ">");
            --depth;
        } else {
            length = tagLength(text);
            depth += text.substr(0, length).ends_with("/>") ? 0 : 1;
        }
        deepest = std::max(deepest, depth);
        text.remove_prefix(length);
    }
    return deepest;
}

int infoNesting(std::string_view text) {
    int depth = 0;
    int deepest = 0;
    bool isPlain = true;   // neither a quote nor a comment has begun on this line
    bool isInWord = false; // a word ends only at a blank or a ";"
    for (const char character : text) {
        if (character == '\n') {
            isPlain = true;
        }
        isPlain = isPlain && character != '"' && character != ';';
        const bool isBlank = std::isspace(static_cast<unsigned char>(character)) != 0;
        const bool isBrace = character == '{' || character == '}';
        if (character == '{') {
            deepest = std::max(deepest, ++depth);
        } else if (character == '}' && isPlain && !isInWord) {
            --depth;
        }
        isInWord = !isBlank && (isInWord || !isBrace);
    }
    return deepest;
}

} // namespace pos
