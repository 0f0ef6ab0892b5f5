#include "xmlPlaces.h"

#include <gtest/gtest.h>

namespace {

/** Where a search goes on behind an occurrence. Fails the test when there is none. */
std::size_t behind(const std::string& text, const std::string& expected, std::size_t from) {
    const std::size_t place = text.find(expected, from);
    EXPECT_NE(place, std::string::npos) << expected;
    return place == std::string::npos ? text.size() : place + expected.size();
}

Place nameAt(const std::string& text, std::size_t begin) {
    return {begin, text.find_first_of(" \t\r\n/>=", begin)};
}

/** Reads a start tag. @return the offset behind it */
std::size_t readStartTag(const std::string& text, std::size_t begin, ElementPlace& element) {
    element.startName = nameAt(text, begin + 1);
    std::size_t at = text.find_first_not_of(" \t\r\n", element.startName.end);
    while (text[at] != '>' && text[at] != '/') {
        AttributePlace attribute;
        attribute.name = nameAt(text, at);
        EXPECT_EQ(text.substr(attribute.name.end, 2), "=\"");
        attribute.value.begin = attribute.name.end + 2;
        attribute.value.end = text.find('"', attribute.value.begin);
        element.attributes.push_back(attribute);
        at = text.find_first_not_of(" \t\r\n", attribute.value.end + 1);
    }
    return at;
}

} // namespace

std::string withReplaced(const std::string& text, Place place, const std::string& replacement) {
    return text.substr(0, place.begin) + replacement + text.substr(place.end);
}

std::vector<ElementPlace> elementPlaces(const std::string& text) {
    std::vector<ElementPlace> elements;
    std::vector<std::size_t> open;
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at)) {
        if (text.compare(at, 4, "<!--") == 0) {
            at = behind(text, "-->", at);
        } else if (text.compare(at, 2, "<?") == 0) {
            at = behind(text, "?>", at);
        } else if (text.compare(at, 2, "</") == 0) {
            ElementPlace& element = elements.at(open.back());
            open.pop_back();
            element.content.end = at;
            element.endName = nameAt(text, at + 2);
            at = element.whole.end = behind(text, ">", at);
        } else {
            if (!open.empty()) {
                elements.at(open.back()).hasChildren = true;
            }
            ElementPlace element;
            element.whole.begin = at;
            const std::size_t end = readStartTag(text, at, element);
            const bool isEmpty = text[end] == '/';
            at = behind(text, ">", end);
            element.whole.end = element.content.begin = element.content.end = at;
            elements.push_back(element);
            if (!isEmpty) {
                open.push_back(elements.size() - 1);
            }
        }
    }
    EXPECT_TRUE(open.empty());
    EXPECT_FALSE(elements.empty());
    return elements;
}
