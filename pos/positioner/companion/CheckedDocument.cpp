#include "CheckedDocument.h"

#include "TargetWalk.h"
#include "numberText.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

namespace pos {

namespace {

/** The element and its places; null for a null element. */
const SourceElement* located(const SourceElement& root, const QDomElement& node) {
    const SourceElement* found = nullptr;
    if (!node.isNull()) {
        visitElements(root, [&](const SourceElement& element) {
            if (element.node == node) {
                found = &element;
            }
        });
    }
    return found;
}

/** Takes an element for a field's science target or guide star where the run does. */
void takeTarget(CheckedField& field, const SourceElement& target) {
    const QString use = target.node.attribute(attr::targuse);
    if (field.science != nullptr && field.guide != nullptr) {
        return;
    }
    if (use == QLatin1String("T")) {
        field.science = &target;
    } else if (use == QLatin1String("G")) {
        field.guide = &target;
    }
}

CheckedField partsOfField(const SourceElement& element) {
    CheckedField field{&element, {}, {}, nullptr, nullptr};
    for (const auto& child : element.children) {
        if (child->name() == tag::target) {
            field.targets.push_back(child.get());
            takeTarget(field, *child);
        } else if (child->name() == tag::group) {
            visitElements(*child, [&](const SourceElement& inner) {
                if (inner.name() == tag::target) {
                    field.groupedTargets.push_back(&inner);
                }
            });
        }
    }
    return field;
}

/** Adds the targets that the run's walk over a field visits. */
void addVisitedTargets(const SourceElement& field, std::vector<const SourceElement*>& visited) {
    std::vector<const SourceElement*> elements;
    visitElements(field, [&](const SourceElement& element) { elements.push_back(&element); });
    auto next = elements.begin();
    TargetWalk walk(field.node);
    for (auto step = walk.next(); step != TargetWalk::Step::End; step = walk.next()) {
        if (step == TargetWalk::Step::Target) {
            // Both go in document order.
            while ((*next)->node != walk.element()) {
                ++next;
            }
            visited.push_back(*next);
        }
    }
}

/** The targets that the run reads: all that it visits in the first field, of the others the two that it needs. */
std::vector<const SourceElement*> findTargetsRead(const std::vector<CheckedField>& fields) {
    std::vector<const SourceElement*> read;
    for (const CheckedField& field : fields) {
        if (&field == &fields.front()) {
            addVisitedTargets(*field.element, read);
            continue;
        }
        for (const SourceElement* target : {field.science, field.guide}) {
            if (target != nullptr) {
                read.push_back(target);
            }
        }
    }
    return read;
}

} // namespace

bool isGenerated(const SourceElement& target) {
    return integerOf(target.node.attribute(attr::automatic)).value_or(0) != 0;
}

void findParts(CheckedDocument& document) {
    const SourceElement& root = document.root;
    document.observation = located(root, findObservationElement(root.node));
    document.configure = located(root, findConfigureElement(root.node));
    document.conditions = located(root, findConfigureElement(root.node).firstChildElement(tag::conditions));
    const SourceElement* fields = located(root, findElement(root.node, tag::fields));
    if (fields != nullptr) {
        for (const auto& child : fields->children) {
            if (child->name() == tag::field) {
                document.fields.push_back(partsOfField(*child));
            }
        }
    }
    document.misusedNames = findMisusedNames(document);
    document.targetsRead = findTargetsRead(document.fields);
    document.numbers = numbersOf(document);
}

} // namespace pos
