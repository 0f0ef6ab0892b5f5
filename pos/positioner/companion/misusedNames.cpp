#include "misusedNames.h"

#include "CheckedDocument.h"
#include "documentVocabulary.h"
#include "nearNames.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <algorithm>
#include <set>

namespace pos {

namespace {

/** The known names nearest to one: of the same word if there are any, else similar ones. */
struct NearNames {
    std::vector<QString> sameWord;
    std::vector<QString> similar;
};

bool differsInCaseOnly(const QString& name, const QString& known) {
    return foldedName(name) == foldedName(known);
}

NearNames nearAttributes(const QString& name, const KnownElement& element) {
    NearNames found;
    for (const auto& [known, attribute] : element.attributes) {
        if (differsInCaseOnly(name, known) || (attribute.isRead() && isSameWord(name, known))) {
            found.sameWord.push_back(known);
        } else if (isSimilar(name, known) || (attribute.isRead() && namesMeaning(name, attribute.meaning))) {
            found.similar.push_back(known);
        }
    }
    return found;
}

NearNames nearElements(const QString& name, const KnownElement& parent) {
    NearNames found;
    for (const auto& [known, isRepeatable] : parent.children) {
        if (differsInCaseOnly(name, known)) {
            found.sameWord.push_back(known);
        } else if (documentVocabulary().elements.at(known).isRead && isSimilar(name, known)) {
            found.similar.push_back(known);
        }
    }
    return found;
}

/** What is meant by a name: nothing where a name near it is there, since then both are meant for themselves. */
template <typename IsThere>
std::vector<QString> meantNames(const NearNames& near, const QString& name, const IsThere& isThere) {
    const std::vector<QString>& names = near.sameWord.empty() ? near.similar : near.sameWord;
    for (const QString& known : names) {
        if (differsInCaseOnly(name, known)) {
            return {known};
        }
    }
    return std::any_of(names.begin(), names.end(), isThere) ? std::vector<QString>{} : names;
}

/** The names of the children of one element. */
struct Siblings {
    std::set<QString> names;   ///< all
    std::set<QString> earlier; ///< those before the one that is looked at
};

/** Walks over a document with its vocabulary. */
class NameWalk {
public:
    explicit NameWalk(const CheckedDocument& document)
        : document_(document), fields_(findElement(document.root.node, tag::fields)) {}

    std::vector<MisusedName> walk() {
        const SourceElement& root = document_.root;
        const bool isNamedFreely = !isReadPart(root) && !isMeantForObservation(root);
        visit(root, isNamedFreely ? &vocabulary_.document
                                  : vocabulary_.find(isReadPart(root) ? root.name() : tag::observation));
        return found_;
    }

private:
    /** Whether the name of a document element is a slip of the pen, which it is only where nothing has the right one.
     */
    bool isMeantForObservation(const SourceElement& root) {
        const NearNames near = nearElements(root.name(), vocabulary_.document);
        const bool isNear = !near.sameWord.empty() || !near.similar.empty();
        if (document_.observation != nullptr || !isNear) {
            return false;
        }
        found_.push_back({Misuse::Near, &root, nullptr, {tag::observation}});
        return true;
    }

    /** Whether the run found the element where it looked for the one part of that name. */
    bool isReadPart(const SourceElement& element) const {
        return &element == document_.observation || &element == document_.configure ||
               &element == document_.conditions || element.node == fields_;
    }

    /** Whether the run reads another element as the one part of that name. */
    bool isPartElsewhere(const QString& name) const {
        return (name == tag::observation && document_.observation != nullptr) ||
               (name == tag::configure && document_.configure != nullptr) ||
               (name == tag::conditions && document_.conditions != nullptr) ||
               (name == tag::fields && !fields_.isNull());
    }

    /** @param known what the element may hold; null where it is not known */
    // NOLINTNEXTLINE(misc-no-recursion): the parser limits the depth
    void visit(const SourceElement& element, const KnownElement* known) {
        if (known != nullptr && known->isOpen) {
            return;
        }
        if (known != nullptr) {
            checkAttributes(element, *known);
        }
        Siblings siblings;
        for (const auto& child : element.children) {
            siblings.names.insert(child->name());
        }
        for (const auto& child : element.children) {
            visit(*child, definitionOf(*child, known, siblings));
            siblings.earlier.insert(child->name());
        }
    }

    void checkAttributes(const SourceElement& element, const KnownElement& known) {
        for (const SourceAttribute& attribute : element.attributes) {
            const QString& name = attribute.name;
            const bool isForeign = name.contains(':') || name == QLatin1String("xmlns");
            if (isForeign || known.attributes.contains(name) || (name == attr::datamver && element.parent == nullptr)) {
                continue;
            }
            const auto isThere = [&](const QString& other) { return element.node.hasAttribute(other); };
            const NearNames& near = nearTo(attributeNames_, name, known, nearAttributes);
            add({Misuse::Unknown, &element, &attribute, {}}, near, meantNames(near, name, isThere),
                vocabulary_.elementsThatRead(name));
        }
    }

    /** What a child may hold, once its name has been checked; null where it is not known. */
    const KnownElement* definitionOf(const SourceElement& child, const KnownElement* parent, const Siblings& siblings) {
        const QString name = child.name();
        const KnownElement* known = vocabulary_.find(name);
        const bool isRead = known != nullptr && known->isRead;
        const bool belongsHere = parent != nullptr && parent->children.contains(name);
        if (name.contains(':') || isReadPart(child)) {
            return known;
        }
        if (belongsHere || isRead) {
            const bool isSecond = belongsHere && !parent->children.at(name) && siblings.earlier.contains(name);
            if (isRead && (isSecond || (!belongsHere && isPartElsewhere(name)))) {
                found_.push_back({Misuse::Repeated, &child, nullptr, {}});
            } else if (!belongsHere) {
                found_.push_back({Misuse::Misplaced, &child, nullptr, placesOf(name)});
            }
            return known;
        }
        return parent != nullptr ? checkUnknown(child, *parent, siblings) : nullptr;
    }

    const KnownElement* checkUnknown(const SourceElement& child, const KnownElement& parent, const Siblings& siblings) {
        const QString name = child.name();
        const auto isThere = [&](const QString& other) {
            // An element that holds the one that may be meant is something else, as "targets" is around "target".
            return !child.node.firstChildElement(other).isNull() ||
                   (!parent.children.at(other) && siblings.names.contains(other));
        };
        const NearNames& near = nearTo(elementNames_, name, parent, nearElements);
        const bool isAttribute = parent.attributes.contains(name);
        add({Misuse::Unknown, &child, nullptr, {}}, near, meantNames(near, name, isThere),
            isAttribute ? std::vector<QString>{child.parent->name()} : std::vector<QString>{});
        const MisusedName& last = found_.back();
        return last.misuse == Misuse::Near && last.meant.size() == 1 ? vocabulary_.find(last.meant.front()) : nullptr;
    }

    /** Adds a name: the same word here counts more than the name itself elsewhere, and that more than similar ones. */
    void add(MisusedName name, const NearNames& near, const std::vector<QString>& meant,
             const std::vector<QString>& elsewhere) {
        const bool isMeantHere = !meant.empty() && (elsewhere.empty() || !near.sameWord.empty());
        name.misuse = isMeantHere ? Misuse::Near : !elsewhere.empty() ? Misuse::Misplaced : Misuse::Unknown;
        name.meant = isMeantHere ? meant : elsewhere;
        found_.push_back(name);
    }

    std::vector<QString> placesOf(const QString& element) const {
        std::vector<QString> places;
        for (const auto& [name, known] : vocabulary_.elements) {
            if (known.children.contains(element)) {
                places.push_back(name);
            }
        }
        return places;
    }

    using NearByName = std::map<std::pair<const KnownElement*, QString>, NearNames>;

    /** What a function finds near to a name, looked for once. */
    static const NearNames& nearTo(NearByName& cache, const QString& name, const KnownElement& place,
                                   NearNames (*find)(const QString&, const KnownElement&)) {
        const auto key = std::make_pair(&place, name);
        const auto found = cache.find(key);
        return found != cache.end() ? found->second : cache.emplace(key, find(name, place)).first->second;
    }

    const CheckedDocument& document_;
    const QDomElement fields_;
    const DocumentVocabulary& vocabulary_ = documentVocabulary();
    NearByName attributeNames_;
    NearByName elementNames_;
    std::vector<MisusedName> found_;
};

} // namespace

std::vector<MisusedName> findMisusedNames(const CheckedDocument& document) {
    return NameWalk(document).walk();
}

bool lacksAttribute(const SourceElement& element, const QString& attribute) {
    const KnownElement* known = documentVocabulary().find(element.name());
    const auto isMeant = [&](const SourceAttribute& other) {
        return !known->attributes.contains(other.name) &&
               (isSameWord(other.name, attribute) || isSimilar(other.name, attribute) ||
                namesMeaning(other.name, known->attributes.at(attribute).meaning));
    };
    return !element.node.hasAttribute(attribute) &&
           std::none_of(element.attributes.begin(), element.attributes.end(), isMeant);
}

} // namespace pos
