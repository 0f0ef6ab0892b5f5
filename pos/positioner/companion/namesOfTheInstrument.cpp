#include "instrumentFinders.h"
#include "nearNames.h"
#include "xmlKeywords.h"

#include <algorithm>
#include <functional>
#include <set>

namespace pos {

namespace {

/** A name that the schema does not have at its place. */
struct StrayName {
    enum class Kind { Near, Misplaced, Repeated, Unknown };
    Kind kind;
    Span place;
    std::string name;
    std::string where; ///< the element that has the attribute, or holds the element
    std::string meant; ///< Near: the name that is meant; Misplaced: the element it belongs to; Unknown: the right root
    bool isThere = false;                       ///< whether the name that is meant is there too
    bool isCertain = false;                     ///< whether to write the name that is meant is surely all that is to do
    std::optional<Span> endName = std::nullopt; ///< in the end tag
};

/** Walks over a document of the instrument with its vocabulary. */
class InstrumentNameWalk {
public:
    explicit InstrumentNameWalk(const InstrumentDocument& document) : document_(document) {}

    std::vector<StrayName> walk() {
        const SourceElement& root = document_.root;
        if (root.name() != document_.rootName) {
            const bool isNear =
                isSameWord(root.name(), document_.rootName) || isSimilar(root.name(), document_.rootName);
            const bool isAround = document_.content != nullptr && document_.content != &root;
            if (!isAround) {
                add(isNear ? StrayName::Kind::Near : StrayName::Kind::Unknown, root.namePlace, root.name(),
                    "the document", document_.rootName);
            }
        }
        if (document_.content != nullptr) {
            visit(*document_.content, document_.vocabulary.elements.at(document_.rootName));
        }
        return found_;
    }

private:
    // NOLINTNEXTLINE(misc-no-recursion): the parser limits the depth
    void visit(const SourceElement& element, const KnownElement& known) {
        std::set<std::string> certain; // An element has an attribute once.
        for (const SourceAttribute& attribute : element.attributes) {
            const bool isForeign = attribute.name.contains(':') || attribute.name == QLatin1String("xmlns");
            const bool isVersion = attribute.name == attr::datamver && element.parent == nullptr;
            if (!isForeign && !isVersion && !known.attributes.contains(attribute.name)) {
                addUnknown(element, attribute.namePlace, attribute.name, known.attributes,
                           [&](const QString& name) { return element.attribute(name) != nullptr; });
                StrayName& name = found_.back();
                name.isCertain = name.isCertain && isWritten(element) && certain.insert(name.meant).second;
            }
        }
        std::set<QString> siblings;
        for (const auto& child : element.children) {
            siblings.insert(child->name());
        }
        std::set<QString> earlier;
        for (const auto& child : element.children) {
            const auto place = known.children.find(child->name());
            if (place == known.children.end()) {
                if (!child->name().contains(':')) {
                    addUnknown(element, child->namePlace, child->name(), known.children, [&](const QString& name) {
                        return siblings.contains(name) && !known.children.at(name);
                    });
                    found_.back().isCertain = found_.back().isCertain && isWritten(*child);
                    found_.back().endName = child->endNamePlace;
                }
                continue;
            }
            if (!earlier.insert(child->name()).second && !place->second) {
                add(StrayName::Kind::Repeated, child->namePlace, child->name(), element.name(), "");
            }
            visit(*child, document_.vocabulary.elements.at(child->name()));
        }
    }

    /** Whether an element is written where it stands; one that an entity brings is not. */
    static bool isWritten(const SourceElement& element) {
        return !(element.namePlace == element.tag);
    }

    /** Adds a name that an element does not know. @param known names; those that are there mean themselves */
    template <typename Known> void addUnknown(const SourceElement& element, Span place, const QString& name,
                                              const std::map<QString, Known>& known,
                                              const std::function<bool(const QString&)>& isThere) {
        for (const auto& isNear : {isSameWord, isSimilar}) {
            std::vector<QString> near;
            for (const auto& [candidate, facts] : known) {
                const bool isCaseOnly = foldedName(name) == foldedName(candidate);
                if (isNear(name, candidate) && (isCaseOnly || !isThere(candidate))) {
                    near.push_back(candidate);
                }
            }
            if (!near.empty()) {
                add(StrayName::Kind::Near, place, name, element.name(), near.front());
                found_.back().isThere = isThere(near.front());
                found_.back().isCertain = near.size() == 1 && !found_.back().isThere;
                return;
            }
        }
        const QString home = homeOf(name);
        add(home.isEmpty() ? StrayName::Kind::Unknown : StrayName::Kind::Misplaced, place, name, element.name(), home);
    }

    /** The element to which an attribute or an element of this name belongs; empty for an unknown name. */
    QString homeOf(const QString& name) const {
        for (const auto& [home, known] : document_.vocabulary.elements) {
            if (known.children.contains(name) || known.attributes.contains(name)) {
                return home;
            }
        }
        return {};
    }

    void add(StrayName::Kind kind, Span place, const QString& name, const QString& where, const QString& meant) {
        found_.push_back({kind, place, name.toStdString(), where.toStdString(), meant.toStdString()});
    }

    const InstrumentDocument& document_;
    std::vector<StrayName> found_;
};

std::string notKnown(const InstrumentDocument& document, const StrayName& name) {
    const bool isRoot = name.place == document.root.namePlace;
    return isRoot && document.content == &document.root
               ? "The document element is " + name.name + " instead of " + name.meant +
                     "; the run does not look at its name"
               : name.name + " is not known in " + name.where + ", and the run passes over it";
}

template <typename Add> void visitStray(const InstrumentDocument& document, StrayName::Kind kind, const Add& add) {
    for (const StrayName& name : InstrumentNameWalk(document).walk()) {
        if (name.kind == kind) {
            add(name);
        }
    }
}

} // namespace

void findNearInstrumentNames(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    visitStray(document, StrayName::Kind::Near, [&](const StrayName& name) {
        problems.add(rule, name.place, notKnown(document, name),
                     name.isThere   ? "Remove it, or correct it: " + name.meant + " stands there too"
                     : name.endName ? "Write " + name.meant + ", in the end tag too"
                                    : "Write " + name.meant,
                     name.isCertain ? std::optional(QByteArray::fromStdString(name.meant)) : std::nullopt,
                     name.endName);
    });
}

void findMisplacedInstrumentNames(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    visitStray(document, StrayName::Kind::Misplaced, [&](const StrayName& name) {
        problems.add(rule, name.place, name.name + " is not read in " + name.where, "Move it into " + name.meant);
    });
}

void findRepeatedInstrumentElements(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    visitStray(document, StrayName::Kind::Repeated, [&](const StrayName& name) {
        problems.add(rule, name.place, "The run reads another " + name.name + ", and passes over this one",
                     "Remove one of them");
    });
}

void findUnknownInstrumentNames(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    visitStray(document, StrayName::Kind::Unknown, [&](const StrayName& name) {
        problems.add(rule, name.place, notKnown(document, name),
                     name.meant.empty() ? "Remove it, unless other programs read it"
                                        : "Name the right file, or call the document element " + name.meant);
    });
}

} // namespace pos
