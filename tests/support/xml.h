#ifndef POS_TESTS_XML_H
#define POS_TESTS_XML_H

#include "xmlParse.h"

#include <QDomDocument>
#include <gtest/gtest.h>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

/** A document from its text. Fails the test when the text is not well-formed. */
QDomDocument parseDocument(const std::string& text);

/** The document element of a document from its text. The document lives until the end of the process. */
QDomElement parseElement(const std::string& text);

/**
 * A node with all below it as text in which attributes stand in the order of their names, one node a line: equal texts
 * are equal trees.
 */
std::string treeText(const QDomNode& node);

/** An attribute of an element, UTF-8; "(absent)" where the element does not have it. */
std::string attributeText(const QDomElement& element, const std::string& name);

/** All elements of a name at or below a node, in document order. */
std::vector<QDomElement> elements(const QDomNode& node, const std::string& name);

/** The only element of a name at or below a node. Fails the test, and gives a null element, when there is another. */
QDomElement onlyElement(const QDomNode& node, const std::string& name);

/** The child elements of a name. */
std::vector<QDomElement> children(const QDomElement& parent, const std::string& name);

/** An attribute as a number. Fails the test when it is none. */
double number(const QDomElement& element, const std::string& attribute);

/** All attributes of an element. */
std::map<std::string, std::string> attributes(const QDomElement& element);

/** The text that the XML library's own setter gives a double. */
std::string setterText(double value);

/** A number in fixed-point notation, as the XML library's own formatting gives it. */
std::string fixedPointText(double value, int decimals);

/** How a document is refused, without its name; empty when it is taken. */
inline std::string refusal(const std::string& text) {
    const std::string name = "a.xml";
    try {
        pos::parseXml(QByteArray::fromStdString(text), name);
        return {};
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()).substr(0, name.size() + 1), name + ' ');
        return std::string(error.what()).substr(name.size() + 1);
    }
}

/** Fails the test for a document that is refused for another reason. */
inline bool wellFormed(const std::string& text) {
    const std::string reason = refusal(text);
    EXPECT_TRUE(reason.empty() || reason == "is not valid XML") << reason;
    return reason.empty();
}

inline QDomDocument parsed(const std::string& text) {
    return pos::parseXml(QByteArray::fromStdString(text), "a.xml").document;
}

#endif
