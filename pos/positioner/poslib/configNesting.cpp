#include "configNesting.h"

#include <algorithm>

namespace pos {

namespace {

/** How far the text goes on to the end of what begins at its start. */
std::size_t lengthUpTo(std::string_view text, std::string_view end) {
    const std::size_t place = text.find(end);
    return place == std::string_view::npos ? text.size() : place + end.size();
}

} // namespace

int xmlNesting(std::string_view text) {
    int depth = 0;
    int deepest = 0;
    // Beyond the limit there is no need to know how far: without this stop "<<<<…" would be searched for its ends in
    // vain.
    while (deepest <= kMaxConfigDepth && text.find('<') != std::string_view::npos) {
        text.remove_prefix(text.find('<'));
        std::size_t length = lengthUpTo(text, ">");
        if (text.starts_with("<!--")) {
            length = lengthUpTo(text, "-->");
        } else if (text.starts_with("<![CDATA[")) {
            length = lengthUpTo(text, "]]>");
        } else if (text.starts_with("</")) {
            --depth;
        } else if (!text.starts_with("<?") && !text.starts_with("<!") && !text.substr(0, length).ends_with("/>")) {
            ++depth;
            // The tag's ">" may be missing: what follows may begin another one.
            length = 1;
        }
        deepest = std::max(deepest, depth);
        text.remove_prefix(length);
    }
    return deepest;
}

int infoNesting(std::string_view text) {
    int depth = 0;
    int deepest = 0;
    for (const char character : text) {
        if (character == '{') {
            deepest = std::max(deepest, ++depth);
        } else if (character == '}') {
            --depth;
        }
    }
    return deepest;
}

} // namespace pos
