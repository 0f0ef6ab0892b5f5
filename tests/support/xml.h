#ifndef POS_TESTS_XML_H
#define POS_TESTS_XML_H

#include <QDomDocument>
#include <string>

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

/** The text that the XML library's own setter gives a double. */
std::string setterText(double value);

/** A number in fixed-point notation, as the XML library's own formatting gives it. */
std::string fixedPointText(double value, int decimals);

#endif
