#include "documentTree.h"

#include "checkedRun.h"

#include <QDomDocument>

namespace {

Node converted(const QDomElement& element) {
    Node node;
    node.name = element.tagName().toStdString();
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        node.attributes.emplace_back(attribute.name().toStdString(), attribute.value().toStdString());
    }
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement()) {
            node.children.push_back(converted(child.toElement()));
        } else if (child.isText()) {
            node.text += child.toText().data().toStdString();
        }
    }
    return node;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += character;
    }
    return result + '"';
}

void collect(Node& node, std::vector<Node*>& nodes) {
    nodes.push_back(&node);
    for (Node& child : node.children) {
        collect(child, nodes);
    }
}

} // namespace

Node nodeOf(const std::string& xml) {
    QDomDocument document;
    require(document.setContent(QByteArray::fromStdString(xml)), "a document to begin with is well-formed");
    return converted(document.documentElement());
}

std::string xmlText(const Node& node) {
    std::string result = "<" + node.name;
    for (const auto& [name, value] : node.attributes) {
        result += " " + name + "=\"" + escaped(value) + "\"";
    }
    result += ">" + escaped(node.text) + node.markup;
    for (const Node& child : node.children) {
        result += xmlText(child);
    }
    return result + "</" + node.name + ">";
}

std::string infoText(const Node& node) {
    std::string result = node.markup;
    for (const Node& child : node.children) {
        result += "\n" + child.name + " " + quoted(child.text);
        if (!child.children.empty() || !child.markup.empty()) {
            result += " {" + infoText(child) + "\n}";
        }
    }
    return result;
}

std::vector<Node*> nodesOf(Node& root) {
    std::vector<Node*> nodes;
    collect(root, nodes);
    return nodes;
}
