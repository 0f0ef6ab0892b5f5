#include "elementCases.h"

#include "fieldDefinition.h"
#include "xmlPlaces.h"

namespace {

/** An element with this name in both its tags. */
std::string renamed(const std::string& document, const ElementPlace& element, const std::string& name) {
    std::string text = document;
    if (element.endName.end != 0) {
        text = withReplaced(text, element.endName, name);
    }
    return withReplaced(text, element.startName, name);
}

/** An element with a copy of itself before its own content, many times over. */
std::string nestedInItself(const std::string& document, const ElementPlace& element, int times) {
    const Place startTag = {element.whole.begin, element.content.begin};
    std::string start = startTag.in(document);
    std::string end = Place{element.content.end, element.whole.end}.in(document);
    if (element.endName.end == 0) {
        start = start.substr(0, start.rfind("/>")) + ">";
        end = "</" + element.startName.in(document) + ">";
    }
    std::string nested = element.content.in(document);
    for (int i = 0; i <= times; ++i) {
        nested.insert(0, start);
        nested += end;
    }
    return withReplaced(document, element.whole, nested);
}

} // namespace

std::vector<ElementCase> elementCases(const std::string& document) {
    std::vector<ElementCase> cases;
    const std::vector<ElementPlace> elements = elementPlaces(document);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const ElementPlace& element = elements.at(i);
        const std::string name = element.startName.in(document);
        const std::string text = element.whole.in(document);
        const auto add = [&](const std::string& what, const std::string& changed) {
            cases.push_back({name + " " + std::to_string(i) + " " + what, changed});
        };
        add("removed", withReplaced(document, element.whole, ""));
        add("doubled", withReplaced(document, element.whole, text + text));
        add("a hundred times", withReplaced(document, element.whole, repeated(100, text)));
        for (const std::string& other :
             std::vector<std::string>{"x" + name, "X", name + ":" + name, ":", "1", "configure", "conditions", "fields",
                                      "field", "group", "target", "observation", "\xff"}) {
            add("renamed " + other, renamed(document, element, other));
        }
        add("renamed at its start", withReplaced(document, element.startName, "other"));
        add("nested in itself", nestedInItself(document, element, 1));
        add("nested in itself ten times", nestedInItself(document, element, 10));
        add("nested in itself a thousand times", nestedInItself(document, element, 1000));
        add("emptied", withReplaced(document, element.content, ""));
        add("full of text", withReplaced(document, element.content, "text &amp; text"));
        add("in a comment", withReplaced(document, element.whole, "<!--" + text + "-->"));
        add("in a CDATA section", withReplaced(document, element.whole, "<![CDATA[" + text + "]]>"));
        add("without its start tag", withReplaced(document, {element.whole.begin, element.content.begin}, ""));
        add("without its end", withReplaced(document, {element.content.end, element.whole.end}, ""));
        // The element that follows in the text is often this one's child, so that both trade places.
        if (i + 1 < elements.size()) {
            add("replaced by the next", withReplaced(document, element.whole, elements.at(i + 1).whole.in(document)));
            add("inside the next", withReplaced(document, elements.at(i + 1).content, text));
        }
    }
    return cases;
}
