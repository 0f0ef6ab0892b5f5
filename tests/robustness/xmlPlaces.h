#ifndef POS_TESTS_XMLPLACES_H
#define POS_TESTS_XMLPLACES_H

#include <string>
#include <vector>

/** A piece of a text: offset of its first byte and of the byte behind its last. */
struct Place {
    std::size_t begin = 0;
    std::size_t end = 0;

    std::string in(const std::string& text) const {
        return text.substr(begin, end - begin);
    }
};

/** A text with a piece replaced. */
std::string withReplaced(const std::string& text, Place place, const std::string& replacement);

struct AttributePlace {
    Place name;
    Place value; ///< between the quotes
};

/** An element of a document's text. */
struct ElementPlace {
    Place whole;
    Place startName;
    Place endName; ///< empty for an element without an end tag
    Place content; ///< empty likewise
    std::vector<AttributePlace> attributes;
    bool hasChildren = false;
};

/** The elements of a tidy document, in the order of their start tags. Fails the test when it is not tidy. */
std::vector<ElementPlace> elementPlaces(const std::string& text);

#endif
