#include "InstrumentDocument.h"

#include "CheckedDocument.h"
#include "FocalPlaneMapXML.h"
#include "VekoXML.h"
#include "fileAccess.h"
#include "readByItself.h"
#include "xmlKeywords.h"
#include "xmlParse.h"
#include "xmlStructure.h"

#include <algorithm>
#include <array>
#include <boost/property_tree/ptree.hpp>

namespace pos {

namespace {

/** The text of an element itself, as the configuration store takes it. */
QString ownText(const SourceElement& element) {
    QString text;
    for (QDomNode child = element.node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        text += child.isText() ? child.nodeValue() : QString();
    }
    return text;
}

/** The first place of a text in the content of an element, outside of comments; negative where there is none. */
int indexOutsideComments(const QByteArray& content, const QByteArray& text) {
    int found = content.indexOf(text);
    int comment = content.indexOf("<!--");
    while (comment >= 0 && comment < found) {
        const int end = content.indexOf("-->", comment);
        found = found < end ? content.indexOf(text, end) : found;
        comment = content.indexOf("<!--", end);
    }
    return found;
}

/** Where the text of an element stands, without blanks around it; the element's name where it is not written so. */
Span textPlace(const SourceText& text, const SourceElement& element, const QString& ownText) {
    const QByteArray written = ownText.trimmed().toUtf8();
    if (written.isEmpty() || !element.endNamePlace) {
        return element.namePlace;
    }
    const int begin = element.tag.end;
    const int size = element.endNamePlace->begin - 2 - begin; // without the "</"
    const int index = indexOutsideComments(text.utf8().mid(begin, size), written);
    return index >= 0 ? Span{begin + index, begin + index + written.size()} : element.namePlace;
}

/** The message with which the configuration store refuses a text, or that there is none. */
std::optional<std::string> storeRefusal(const KnownAttribute& known, const std::string& key,
                                        const std::optional<QString>& text) {
    boost::property_tree::ptree tree;
    if (text) {
        tree.put(key, text->toStdString());
    }
    auto failure = failureOf([&] { static_cast<void>(tree.get<std::string>(key)); });
    if (!failure && known.numbers) {
        failure = failureOf([&] { static_cast<void>(tree.get<double>(key)); });
        failure = failure ? std::optional(*failure + " (" + key + ")") : std::nullopt;
    }
    return failure;
}

QDomDocument parsed(const QByteArray& text) {
    return parseXml(text, "right document").document;
}

/** A right document, in which one value after the other is replaced. */
QDomDocument rightDocument(InstrumentPart part) {
    static const QDomDocument map = parsed(readFile(":/focal_plane_map.xml").value());
    static const QDomDocument plate = parsed("<plate_definition centre_x='0' centre_y='0' orientation='0'>"
                                             "<fibre id='1' pos_x='0' pos_y='0' fibre_name='C01'/></plate_definition>");
    return (part == InstrumentPart::FocalPlaneMap ? map : plate).cloneNode().toDocument();
}

/** Reads a document as the run does. */
void read(InstrumentPart part, const QDomDocument& document) {
    if (part == InstrumentPart::FocalPlaneMap) {
        createOpticsXML(document);
        createPlateGeometryXML(document, VEKO);
    } else {
        const Veko::VekoCentre centre = createVekoCentreXML(document.documentElement());
        createFibreXML(document.documentElement().firstChildElement(tag::fibre), centre);
    }
}

/** The message with which a reader of the run refuses an attribute, or that there is none. */
std::optional<std::string> readerRefusal(InstrumentPart part, const QString& element, const QString& attribute,
                                         const std::optional<QString>& text) {
    const QDomDocument document = rightDocument(part);
    QDomElement changed = findElement(document.documentElement(), element);
    changed.removeAttribute(attribute);
    if (text) {
        changed.setAttribute(attribute, *text);
    }
    return failureOf([&] { read(part, document); });
}

/** Gathers the values of a document. */
class ValueGatherer {
public:
    explicit ValueGatherer(InstrumentDocument& document) : document_(document) {}

    void gather() {
        const bool isThere = document_.content != nullptr;
        addElement(document_.rootName, document_.content, isThere ? *document_.content : document_.root, "",
                   isThere ? "" : "the document has no " + document_.rootName.toStdString());
    }

private:
    /**
     * Adds the values of an element and of all that it may hold.
     *
     * @param element null where it is missing
     * @param holder the element, or that which lacks it
     */
    // NOLINTNEXTLINE(misc-no-recursion): follows the nesting of the schema
    void addElement(const QString& name, const SourceElement* element, const SourceElement& holder,
                    const std::string& path, const std::string& lack) {
        const KnownElement& known = document_.vocabulary.elements.at(name);
        const bool isRightFibre = name == tag::fibre && addFibre(holder);
        for (const auto& [attribute, facts] : known.attributes) {
            if (attribute != attr::datamver) {
                addAttribute(facts, name, element, holder, lack, isRightFibre);
            }
        }
        for (const auto& [child, isRepeated] : known.children) {
            const std::string childPath = path + (path.empty() ? "" : ".") + child.toStdString();
            if (isRepeated) {
                addEach(child, holder, childPath);
                continue;
            }
            const KnownElement& knownChild = document_.vocabulary.elements.at(child);
            const SourceElement* found = element != nullptr ? firstChild(*element, child) : nullptr;
            const std::string childLack = found != nullptr ? ""
                                          : !lack.empty()  ? lack
                                                           : (name + " has no " + child).toStdString();
            if (!knownChild.value.name.isEmpty()) {
                addText(knownChild.value, found, holder, childPath, childLack);
            } else if (found != nullptr || knownChild.isRead) {
                addElement(child, found, found != nullptr ? *found : holder, childPath, childLack);
            }
        }
    }

    // NOLINTNEXTLINE(misc-no-recursion): follows the nesting of the schema
    void addEach(const QString& name, const SourceElement& parent, const std::string& path) {
        for (const auto& child : parent.children) {
            if (child->name() == name) {
                addElement(name, child.get(), *child, path, "");
            }
        }
    }

    void addText(const KnownAttribute& known, const SourceElement* element, const SourceElement& holder,
                 const std::string& key, const std::string& lack) {
        InstrumentValue value{&known, key, std::nullopt, opening(holder), lack, std::nullopt};
        if (element != nullptr) {
            value.text = ownText(*element);
            value.place = textPlace(document_.text, *element, *value.text);
        }
        if (known.isRead()) {
            value.refusal = storeRefusal(known, key, value.text);
        }
        document_.values.push_back(value);
    }

    void addAttribute(const KnownAttribute& known, const QString& elementName, const SourceElement* element,
                      const SourceElement& holder, const std::string& lack, bool isRight) {
        const SourceAttribute* attribute = element != nullptr ? element->attribute(known.name) : nullptr;
        InstrumentValue value{&known, known.name.toStdString(), std::nullopt, opening(holder), lack, std::nullopt};
        if (attribute != nullptr) {
            value.text = attribute->value;
            value.place = attribute->valuePlace;
        } else if (lack.empty()) {
            value.lack = (elementName + " has no " + known.name).toStdString();
        }
        if (known.isRead() && !isRight) {
            value.refusal = readerRefusal(document_.part, elementName, known.name, value.text);
        }
        document_.values.push_back(value);
    }

    /** Adds a fibre. @return whether it can be read */
    bool addFibre(const SourceElement& element) {
        if (!centre_) {
            centre_.emplace(Veko::VekoCentre{});
            failureOf([&] { centre_ = createVekoCentreXML(document_.root.node); });
        }
        return !failureOf([&] {
            SatelliteFibre<Veko::VekoCentre> fibre = createFibreXML(element.node, *centre_);
            const PlateCoordinates place = fibre.platePosition();
            fibre.centre = nullptr;
            document_.fibres.push_back({&element, fibre, place});
        });
    }

    InstrumentDocument& document_;
    std::optional<Veko::VekoCentre> centre_; ///< the middle of the plate where the document has none
};

/** In the order of InstrumentPart. */
constexpr std::array<PartFacts, 5> kParts = {{
    {"", "configuration", "configure", true, VEKO},
    {"telescope.focal_plane_map", "focal_plane_map", "focal_plane_map", true, VEKO},
    {"veko_definition", "plate", "plate_definition", true, VEKO},
    {"plate_a_definition", "plate", "plate_definition", false, PLATE_A},
    {"plate_b_definition", "plate", "plate_definition", false, PLATE_B},
}};

} // namespace

const PartFacts& factsOf(InstrumentPart part) {
    return kParts.at(static_cast<std::size_t>(part));
}

const InstrumentValue* InstrumentDocument::value(const std::string& key) const {
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const InstrumentValue& candidate) { return candidate.key == key; });
    return found == values.end() ? nullptr : &*found;
}

const SourceElement* firstChild(const SourceElement& element, const QString& name) {
    const auto found = std::find_if(element.children.begin(), element.children.end(),
                                    [&](const auto& child) { return child->name() == name; });
    return found == element.children.end() ? nullptr : found->get();
}

void findParts(InstrumentDocument& document) {
    const bool isBelow = document.part == InstrumentPart::FocalPlaneMap && document.root.name() != document.rootName;
    document.content = isBelow ? firstChild(document.root, document.rootName) : &document.root;
    ValueGatherer(document).gather();
}

} // namespace pos
