#include "documentVocabulary.h"

#include "CheckResources.h"
#include "fileAccess.h"
#include "xmlParse.h"

#include <QDomElement>
#include <algorithm>

namespace pos {

namespace {

/** Whether a run reads an attribute of an element, or an element that it may hold. */
bool hasReadContent(const KnownElement& element, const DocumentVocabulary& vocabulary) {
    return std::any_of(element.attributes.begin(), element.attributes.end(),
                       [](const auto& attribute) { return attribute.second.isRead(); }) ||
           std::any_of(element.children.begin(), element.children.end(),
                       [&](const auto& child) { return vocabulary.elements.at(child.first).isRead; });
}

/** Marks the elements that are read, from the innermost outwards. */
void markReadElements(DocumentVocabulary& vocabulary) {
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (auto& [name, element] : vocabulary.elements) {
            if (!element.isRead && hasReadContent(element, vocabulary)) {
                element.isRead = isChanged = true;
            }
        }
    }
}

/** Takes the names from a schema in RELAX NG. */
class SchemaReader {
public:
    explicit SchemaReader(const QDomElement& grammar) {
        for (QDomElement e = grammar.firstChildElement("define"); !e.isNull(); e = e.nextSiblingElement("define")) {
            definitions_[e.attribute("name")] = e;
        }
    }

    DocumentVocabulary read() {
        for (const auto& [name, definition] : definitions_) {
            for (QDomElement e = definition.firstChildElement("element"); !e.isNull();
                 e = e.nextSiblingElement("element")) {
                // The document element has any name but some; what has any name at all stands in an open element.
                const bool isDocument = !e.firstChildElement("anyName").firstChildElement("except").isNull();
                if (isDocument || e.hasAttribute("name")) {
                    addContent(e, false, isDocument ? vocabulary_.document : vocabulary_.elements[e.attribute("name")]);
                }
            }
        }
        markReadElements(vocabulary_);
        return vocabulary_;
    }

private:
    // NOLINTNEXTLINE(misc-no-recursion): follows the nesting of the schema
    void addContent(const QDomElement& pattern, bool isRepeated, KnownElement& element) {
        for (QDomElement e = pattern.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
            const QString kind = e.tagName();
            if (kind == "attribute" || kind == "element") {
                addName(e, isRepeated, element);
            } else if (kind == "ref") {
                addContent(definitions_[e.attribute("name")], isRepeated, element);
            } else {
                addContent(e, isRepeated || kind == "zeroOrMore" || kind == "oneOrMore", element);
            }
        }
    }

    static void addName(const QDomElement& pattern, bool isRepeated, KnownElement& element) {
        const QString name = pattern.attribute("name");
        if (name.isEmpty()) {
            element.isOpen = true;
        } else if (pattern.tagName() == "element") {
            element.children[name] |= isRepeated;
        } else if (element.attributes[name].run.isEmpty()) {
            // Of several descriptions of one attribute, one says what it means.
            element.attributes[name] = {name, pattern.attribute("r:unit"), pattern.attribute("r:default"),
                                        pattern.attribute("r:run"),
                                        pattern.firstChildElement("a:documentation").text().simplified()};
        }
    }

    std::map<QString, QDomElement> definitions_; ///< by name
    DocumentVocabulary vocabulary_;
};

} // namespace

const KnownElement* DocumentVocabulary::find(const QString& element) const {
    const auto found = elements.find(element);
    return found == elements.end() ? nullptr : &found->second;
}

std::vector<QString> DocumentVocabulary::elementsThatRead(const QString& attribute) const {
    std::vector<QString> names;
    for (const auto& [name, element] : elements) {
        const auto found = element.attributes.find(attribute);
        if (found != element.attributes.end() && found->second.isRead()) {
            names.push_back(name);
        }
    }
    return names;
}

const DocumentVocabulary& documentVocabulary() {
    static const DocumentVocabulary vocabulary = [] {
        qInitResources_check_files();
        const std::string name = ":/field_definition.rng";
        return SchemaReader(parseXml(readFile(name).value(), name).document.documentElement()).read();
    }();
    return vocabulary;
}

} // namespace pos
