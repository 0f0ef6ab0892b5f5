#include "xml.h"

#include <gtest/gtest.h>
#include <list>
#include <map>
#include <sstream>

namespace {

void describe(const QDomNode& node, int depth, std::ostream& text) {
    text << std::string(static_cast<std::size_t>(depth), ' ');
    if (node.isElement()) {
        std::map<std::string, std::string> attributes;
        const QDomNamedNodeMap map = node.attributes();
        for (int i = 0; i < map.count(); ++i) {
            attributes[map.item(i).nodeName().toStdString()] = map.item(i).nodeValue().toStdString();
        }
        text << '<' << node.nodeName().toStdString();
        for (const auto& [name, value] : attributes) {
            text << ' ' << name << "='" << value << "'";
        }
        text << ">\n";
    } else {
        text << '[' << node.nodeType() << ' ' << node.nodeName().toStdString() << "] " << node.nodeValue().toStdString()
             << '\n';
    }
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        describe(child, depth + 1, text);
    }
}

} // namespace

QDomDocument parseDocument(const std::string& text) {
    QDomDocument document;
    QString error;
    EXPECT_TRUE(document.setContent(QByteArray::fromStdString(text), false, &error)) << error.toStdString() << " in\n"
                                                                                     << text;
    return document;
}

QDomElement parseElement(const std::string& text) {
    // A node does not keep its document, and reaches for freed memory once the document is gone.
    static std::list<QDomDocument> documents;
    documents.push_back(parseDocument(text));
    return documents.back().documentElement();
}

std::string treeText(const QDomNode& node) {
    std::ostringstream text;
    describe(node, 0, text);
    return text.str();
}

std::string attributeText(const QDomElement& element, const std::string& name) {
    return element.attribute(QString::fromStdString(name), QStringLiteral("(absent)")).toStdString();
}

std::string setterText(double value) {
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("e"));
    element.setAttribute(QStringLiteral("v"), value);
    return element.attribute(QStringLiteral("v")).toStdString();
}

std::string fixedPointText(double value, int decimals) {
    return QString::number(value, 'f', decimals).toStdString();
}
