#include "xml.h"

#include <gtest/gtest.h>
#include <list>
#include <sstream>

namespace {

void describe(const QDomNode& node, int depth, std::ostream& text) {
    text << std::string(static_cast<std::size_t>(depth), ' ');
    if (node.isElement()) {
        text << '<' << node.nodeName().toStdString();
        for (const auto& [name, value] : attributes(node.toElement())) {
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

void collect(const QDomNode& node, const QString& name, std::vector<QDomElement>& found) {
    if (node.nodeName() == name) {
        found.push_back(node.toElement());
    }
    for (QDomElement child = node.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        collect(child, name, found);
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

std::vector<QDomElement> elements(const QDomNode& node, const std::string& name) {
    std::vector<QDomElement> found;
    collect(node, QString::fromStdString(name), found);
    return found;
}

QDomElement onlyElement(const QDomNode& node, const std::string& name) {
    const std::vector<QDomElement> found = elements(node, name);
    EXPECT_EQ(found.size(), 1U) << name;
    return found.size() == 1 ? found.front() : QDomElement();
}

std::vector<QDomElement> children(const QDomElement& parent, const std::string& name) {
    std::vector<QDomElement> found;
    const QString tag = QString::fromStdString(name);
    for (QDomElement child = parent.firstChildElement(tag); !child.isNull(); child = child.nextSiblingElement(tag)) {
        found.push_back(child);
    }
    return found;
}

double number(const QDomElement& element, const std::string& attribute) {
    bool ok = false;
    const double value = element.attribute(QString::fromStdString(attribute)).toDouble(&ok);
    EXPECT_TRUE(ok) << attribute << " is '" << attributeText(element, attribute) << "'";
    return value;
}

std::map<std::string, std::string> attributes(const QDomElement& element) {
    std::map<std::string, std::string> all;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i) {
        all[map.item(i).nodeName().toStdString()] = map.item(i).nodeValue().toStdString();
    }
    return all;
}
