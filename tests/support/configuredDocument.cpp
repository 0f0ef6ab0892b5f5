#include "configuredDocument.h"

#include "TemporaryFolder.h"
#include "xml.h"

#include <gtest/gtest.h>

namespace {

void collect(const QDomNode& node, const QString& name, std::vector<QDomElement>& found) {
    if (node.nodeName() == name) {
        found.push_back(node.toElement());
    }
    for (QDomElement child = node.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        collect(child, name, found);
    }
}

} // namespace

std::string configuredBytes(const std::string& document, const std::vector<std::string>& arguments,
                            const ProgramOptions& options) {
    const TemporaryFolder folder;
    std::vector<std::string> all = {"-i", folder.write("in.xml", document), "-o", folder.path("out.xml")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    expectSilentSuccess(runVekoConfigure(all, options));
    return folder.read("out.xml");
}

QDomDocument configured(const std::string& document, const std::vector<std::string>& arguments,
                        const ProgramOptions& options) {
    return parseDocument(configuredBytes(document, arguments, options));
}

void expectSilentSuccess(const ProgramResult& result) {
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
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
