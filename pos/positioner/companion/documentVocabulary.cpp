#include "documentVocabulary.h"

#include "CheckResources.h"
#include "fileAccess.h"
#include "xmlParse.h"

#include <QDomElement>
#include <algorithm>
#include <cmath>
#include <limits>

namespace pos {

namespace {

/** Whether a run reads an attribute of an element, or an element that it may hold. */
bool hasReadContent(const KnownElement& element, const DocumentVocabulary& vocabulary) {
    return element.value.isRead() ||
           std::any_of(element.attributes.begin(), element.attributes.end(),
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
    explicit SchemaReader(const std::string& name) {
        takeDefinitions("values");
        takeDefinitions(name);
    }

    DocumentVocabulary read() {
        for (const auto& [name, definition] : definitions_) {
            const QDomNodeList patterns = definition.elementsByTagName("element");
            for (int i = 0; i < patterns.count(); ++i) {
                addElement(patterns.at(i).toElement());
            }
        }
        markReadElements(vocabulary_);
        return vocabulary_;
    }

private:
    /** Takes the definitions of a schema, and its start as one without a name. */
    void takeDefinitions(const std::string& schema) {
        const std::string file = ":/" + schema + ".rng";
        const QDomElement grammar = parseXml(readFile(file).value(), file).document.documentElement();
        for (QDomElement e = grammar.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
            definitions_[e.attribute("name")] = e;
        }
    }

    void addElement(const QDomElement& pattern) {
        const QString name = pattern.attribute("name");
        // The document element has any name but some; what has any name at all stands in an open element.
        const bool isDocument = !pattern.firstChildElement("anyName").firstChildElement("except").isNull();
        if (!isDocument && name.isEmpty()) {
            return;
        }
        KnownElement& element = isDocument ? vocabulary_.document : vocabulary_.elements[name];
        addContent(pattern, false, element);
        if (pattern.hasAttribute("r:run")) {
            element.value = factsOf(pattern);
        }
    }

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

    void addName(const QDomElement& pattern, bool isRepeated, KnownElement& element) {
        const QString name = pattern.attribute("name");
        if (name.isEmpty()) {
            element.isOpen = true;
        } else if (pattern.tagName() == "element") {
            element.children[name] |= isRepeated;
        } else if (element.attributes[name].run.isEmpty()) {
            // Of several descriptions of one attribute, one says what it means.
            element.attributes[name] = factsOf(pattern);
        }
    }

    KnownAttribute factsOf(const QDomElement& pattern) {
        return {pattern.attribute("name"),
                pattern.attribute("r:unit"),
                pattern.attribute("r:default"),
                pattern.attribute("r:range"),
                pattern.attribute("r:run"),
                pattern.firstChildElement("a:documentation").text().simplified(),
                numbersOf(pattern)};
    }

    /** The numbers that a pattern allows; nothing where it is not that of a number. */
    std::optional<Range> numbersOf(const QDomElement& pattern) {
        const QDomElement data = pattern.firstChildElement("data");
        const QDomElement reference = pattern.firstChildElement("ref");
        if (!reference.isNull()) {
            return numbersOf(definitions_[reference.attribute("name")]);
        }
        if (data.attribute("type") != QLatin1String("double")) {
            return std::nullopt;
        }
        Range range{-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
        for (QDomElement e = data.firstChildElement("param"); !e.isNull(); e = e.nextSiblingElement("param")) {
            const QString name = e.attribute("name");
            const double limit = e.text().toDouble();
            if (name == QLatin1String("minInclusive")) {
                range.low = limit;
            } else if (name == QLatin1String("minExclusive")) {
                range.low = std::nextafter(limit, range.high);
            } else if (name == QLatin1String("maxInclusive")) {
                range.high = limit;
            }
        }
        return range;
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

const DocumentVocabulary& vocabularyOf(const std::string& schema) {
    static std::map<std::string, DocumentVocabulary> vocabularies;
    const auto known = vocabularies.find(schema);
    if (known != vocabularies.end()) {
        return known->second;
    }
    qInitResources_check_files();
    return vocabularies.emplace(schema, SchemaReader(schema).read()).first->second;
}

const DocumentVocabulary& documentVocabulary() {
    static const DocumentVocabulary& vocabulary = vocabularyOf("field_definition");
    return vocabulary;
}

} // namespace pos
