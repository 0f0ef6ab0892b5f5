/**
 * @file
 * The elements and attributes of a document with their places in its text.
 */
#ifndef POS_SOURCETREE_H
#define POS_SOURCETREE_H

#include "SourceText.h"
#include "xmlParse.h"

#include <QDomElement>
#include <memory>
#include <optional>
#include <vector>

namespace pos {

/** An attribute and its places. */
struct SourceAttribute {
    QString name;
    QString value; ///< as the tree has it: references replaced, blanks made spaces
    Span namePlace;
    Span valuePlace; ///< without its quotes
};

/** An element and its places. Those of an element that an entity brings are those of the reference. */
struct SourceElement {
    QDomElement node; ///< the same element in the tree
    Span tag;         ///< the start tag with its brackets
    Span namePlace;
    std::optional<Span> endNamePlace;      ///< in the end tag; nothing where none is written
    bool isWhole = false;                  ///< whether its end has been read
    const SourceElement* parent = nullptr; ///< null for the document element
    std::vector<SourceAttribute> attributes;
    std::vector<std::unique_ptr<SourceElement>> children;

    QString name() const {
        return node.tagName();
    }
    /** The attribute of a name; null where there is none. */
    const SourceAttribute* attribute(const QString& attributeName) const;
};

/**
 * Finds the places of a document's elements and attributes.
 *
 * @param text the text that was parsed
 * @param parsed what parseXml or parseXmlBeginning made of it, with a document element
 * @return the document element
 */
std::unique_ptr<SourceElement> locateElements(const QByteArray& text, const ParsedXml& parsed);

} // namespace pos

#endif
