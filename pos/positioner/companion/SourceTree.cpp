#include "SourceTree.h"

#include <algorithm>
#include <cstring>

namespace pos {

namespace {

bool isBlank(char c) {
    return std::strchr(" \t\r\n", c) != nullptr && c != '\0';
}

/** Walks over one well-formed start tag. */
class TagScanner {
public:
    TagScanner(const QByteArray& text, int begin) : text_(text), place_(begin + 1) {}

    /** A name, behind blanks. */
    Span name() {
        skipBlanks();
        const int begin = place_;
        while (!isBlank(current()) && std::strchr("=/>", current()) == nullptr) {
            ++place_;
        }
        return {begin, place_};
    }

    /** A value between its quotes, behind "=". */
    Span value() {
        while (current() != '"' && current() != '\'') {
            ++place_;
        }
        const int begin = place_ + 1;
        place_ = text_.indexOf(current(), begin) + 1;
        return {begin, place_ - 1};
    }

    bool hasEnded() {
        skipBlanks();
        return current() == '>' || current() == '/';
    }

    /** Behind the closing bracket. */
    int end() const {
        return text_.indexOf('>', place_) + 1;
    }

private:
    char current() const {
        return text_.at(place_);
    }
    void skipBlanks() {
        while (isBlank(current())) {
            ++place_;
        }
    }

    const QByteArray& text_;
    int place_;
};

/** Pairs the elements of a tree with the places of their tags. */
class Locator {
public:
    Locator(const QByteArray& text, const std::vector<TagPlaces>& tags) : text_(text), nextTag_(tags.begin()) {}

    // NOLINTNEXTLINE(misc-no-recursion): the parser limits the depth
    std::unique_ptr<SourceElement> locate(const QDomElement& node, const SourceElement* parent) {
        auto element = std::make_unique<SourceElement>();
        element->node = node;
        element->parent = parent;
        const TagPlaces tags = *nextTag_++;
        element->isWhole = tags.end >= 0;
        if (text_.at(tags.start) == '<') {
            scanTags(*element, tags);
        } else {
            placeAtReference(*element, tags.start);
        }
        for (QDomElement child = node.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
            element->children.push_back(locate(child, element.get()));
        }
        return element;
    }

private:
    void scanTags(SourceElement& element, TagPlaces tags) {
        TagScanner scanner(text_, tags.start);
        element.namePlace = scanner.name();
        while (!scanner.hasEnded()) {
            const Span name = scanner.name();
            const QString nameText = QString::fromUtf8(text_.mid(name.begin, name.end - name.begin));
            element.attributes.push_back({nameText, element.node.attribute(nameText), name, scanner.value()});
        }
        element.tag = {tags.start, scanner.end()};
        if (element.isWhole && !isEmptyTag(element.tag)) {
            element.endNamePlace = TagScanner(text_, tags.end + 1).name();
        }
    }

    bool isEmptyTag(Span tag) const {
        return text_.at(tag.end - 2) == '/';
    }

    void placeAtReference(SourceElement& element, int begin) {
        const Span reference{begin, text_.indexOf(';', begin) + 1};
        element.tag = element.namePlace = reference;
        const QDomNamedNodeMap attributes = element.node.attributes();
        for (int i = 0; i < attributes.count(); ++i) {
            const QDomAttr attribute = attributes.item(i).toAttr();
            element.attributes.push_back({attribute.name(), attribute.value(), reference, reference});
        }
    }

    const QByteArray& text_;
    std::vector<TagPlaces>::const_iterator nextTag_;
};

} // namespace

const SourceAttribute* SourceElement::attribute(const QString& attributeName) const {
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](const SourceAttribute& candidate) { return candidate.name == attributeName; });
    return found == attributes.end() ? nullptr : &*found;
}

std::unique_ptr<SourceElement> locateElements(const QByteArray& text, const ParsedXml& parsed) {
    return Locator(text, parsed.tags).locate(parsed.document.documentElement(), nullptr);
}

} // namespace pos
