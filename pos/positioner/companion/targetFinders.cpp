#include "targetFinders.h"

#include "Instrument.h"
#include "numberText.h"
#include "placeVeko.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <algorithm>
#include <set>

namespace pos {

namespace {

/** How messages call a target. */
std::string labelOf(const SourceElement& target) {
    const QString name = target.node.attribute(attr::targname);
    return name.isEmpty() ? "a target without a name" : "target '" + name.toStdString() + "'";
}

QString useOf(const SourceElement& target) {
    return target.node.attribute(attr::targuse);
}

/** Whether a person wrote the target to be a science target or a guide star. */
bool isScienceOrGuide(const SourceElement& target) {
    return !isGenerated(target) && (useOf(target) == QLatin1String("T") || useOf(target) == QLatin1String("G"));
}

std::string roleOf(const SourceElement& target) {
    return useOf(target) == QLatin1String("T") ? "science target" : "guide star";
}

/** The targets of a field that people wrote, those of its groups too, in document order. */
std::vector<const SourceElement*> writtenTargets(const CheckedField& field) {
    std::vector<const SourceElement*> written;
    std::merge(field.targets.begin(), field.targets.end(), field.groupedTargets.begin(), field.groupedTargets.end(),
               std::back_inserter(written),
               [](const SourceElement* a, const SourceElement* b) { return a->tag.begin < b->tag.begin; });
    written.erase(std::remove_if(written.begin(), written.end(),
                                 [](const SourceElement* target) { return isGenerated(*target); }),
                  written.end());
    return written;
}

/** How many targets an element of a field is or holds. */
// NOLINTNEXTLINE(misc-no-recursion): the parser limits the depth
int countTargets(const SourceElement& element) {
    int count = element.name() == tag::target ? 1 : 0;
    if (element.name() == tag::group) {
        for (const auto& child : element.children) {
            count += countTargets(*child);
        }
    }
    return count;
}

/** Finds the first empty group on each level that the run walks through, as TargetWalk does. */
// NOLINTNEXTLINE(misc-no-recursion): the parser limits the depth
void findEmptyGroupIn(const Rule& rule, const SourceElement& level, Problems& problems) {
    const SourceElement* empty = nullptr;
    int hidden = 0;
    for (const auto& child : level.children) {
        if (empty != nullptr) {
            hidden += countTargets(*child);
        } else if (child->name() == tag::group && child->children.empty()) {
            empty = child.get();
        } else if (child->name() == tag::group) {
            findEmptyGroupIn(rule, *child, problems);
        }
    }
    if (hidden > 0) {
        problems.add(rule, opening(*empty),
                     "The group is empty, and the run does not read " +
                         (hidden == 1 ? std::string("the target") : "the " + std::to_string(hidden) + " targets") +
                         " behind it in " + level.name().toStdString(),
                     "Remove the empty group, or put it behind all targets");
    }
}

/** Tells the targets whose id another target of the field has. @param keyOf what makes it unique; empty where unset */
template <typename KeyOf> void findRepeatedIdsIn(const Rule& rule, Severity severity, const CheckedField& field,
                                                 const QString& attribute, Problems& problems, const KeyOf& keyOf) {
    std::set<QString> keys;
    for (const SourceElement* target : writtenTargets(field)) {
        const QString key = keyOf(target->node);
        if (!key.isEmpty() && !keys.insert(key).second) {
            problems.add(rule, severity, valueOrOpening(*target, attribute),
                         attribute.toStdString() + " '" + target->node.attribute(attribute).toStdString() +
                             "' is that of another target of the field too",
                         "Give each target an id of its own, or leave " + attribute.toStdString() + " out");
        }
    }
}

/** The fibre that the run gives a science target; nothing where "fibreid" cannot be read. */
std::optional<std::uint32_t> scienceFibreOf(const SourceElement& science) {
    const QString text = science.node.attribute(attr::fibreid);
    const bool isNotSet = text.isEmpty() || text == kMissingValue;
    const std::optional<std::int32_t> id = isNotSet ? kNoFibre : integerOf(text);
    if (!id) {
        return std::nullopt;
    }
    Target target;
    target.fibreid = *id;
    return scienceFibre(target);
}

} // namespace

bool isMeantInGroup(const CheckedField& field, const QString& use) {
    const SourceElement* const found = use == QLatin1String("T") ? field.science : field.guide;
    return found == nullptr &&
           std::any_of(field.groupedTargets.begin(), field.groupedTargets.end(),
                       [&](const SourceElement* target) { return isScienceOrGuide(*target) && useOf(*target) == use; });
}

void findSmallUses(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const CheckedField& field : document.fields) {
        for (const SourceElement* target : writtenTargets(field)) {
            const SourceAttribute* use = target->attribute(attr::targuse);
            const bool isSmall = use != nullptr && use->value.size() == 1 && QString("tcgser").contains(use->value);
            if (!isSmall) {
                continue;
            }
            const bool isLookedFor = use->value == QLatin1String("t") || use->value == QLatin1String("g");
            const std::string message = "targuse '" + use->value.toStdString() + "' is a small letter";
            const QString capital = use->value.toUpper();
            problems.add(rule, isLookedFor ? rule.severity : Severity::Note, use->valuePlace,
                         message + (isLookedFor ? ", which makes no science target or guide star" : ""),
                         "Write " + capital.toStdString(), capital.toUtf8());
        }
    }
}

void findSeveralTargets(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const CheckedField& field : document.fields) {
        for (const SourceElement* target : field.targets) {
            if (!isScienceOrGuide(*target) || target == field.science || target == field.guide) {
                continue;
            }
            const SourceElement* used = useOf(*target) == QLatin1String("T") ? field.science : field.guide;
            problems.add(rule, valueOrOpening(*target, attr::targuse),
                         "The field has several targets of use " + useOf(*target).toStdString() + ": " +
                             labelOf(*used) + " counts as the " + roleOf(*target) + ", and " + labelOf(*target) +
                             " is an ordinary target",
                         "Remove one of them, or give one another use");
        }
    }
}

void findGroupedTargets(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const CheckedField& field : document.fields) {
        for (const SourceElement* target : field.groupedTargets) {
            if (isScienceOrGuide(*target)) {
                const bool isMissed = isMeantInGroup(field, useOf(*target));
                problems.add(rule, isMissed ? Severity::Error : rule.severity, valueOrOpening(*target, attr::targuse),
                             labelOf(*target) + " has use " + useOf(*target).toStdString() +
                                 " inside a group, where the run looks for no " + roleOf(*target) +
                                 (isMissed ? "; the run says: No science target in field" : ""),
                             "Move it to the field itself, or give it another use");
            }
        }
    }
}

void findEmptyGroups(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (!document.fields.empty()) {
        findEmptyGroupIn(rule, *document.fields.front().element, problems);
    }
}

void findRepeatedNames(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const CheckedField& field : document.fields) {
        std::set<QString> names;
        for (const SourceElement* target : writtenTargets(field)) {
            const SourceAttribute* name = target->attribute(attr::targname);
            if (name != nullptr && !name->value.isEmpty() && !names.insert(name->value).second) {
                problems.add(rule, name->valuePlace,
                             "targname '" + name->value.toStdString() + "' is that of another target of the field too",
                             "Give each target a name of its own");
            }
        }
    }
}

void findRepeatedTargetIds(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const CheckedField& field : document.fields) {
        findRepeatedIdsIn(rule, Severity::Note, field, attr::targid, problems, [](const QDomElement& target) {
            const QString id = target.attribute(attr::targid);
            const bool isSet = !id.isEmpty() && id != kMissingValue;
            return isSet ? target.attribute(attr::targcat) + '\n' + id : QString();
        });
        // The run itself refuses it in the first field.
        if (&field != &document.fields.front()) {
            findRepeatedIdsIn(rule, Severity::Warning, field, attr::configid, problems, [](const QDomElement& target) {
                return configidOf(target) != 0 ? QString::number(configidOf(target)) : QString();
            });
        }
    }
}

void findUnusableFibres(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const auto* fibres = document.instrument.fibres();
    for (const CheckedField& field : document.fields) {
        const std::optional<std::uint32_t> id =
            field.science != nullptr ? scienceFibreOf(*field.science) : std::nullopt;
        if (!id || fibres == nullptr || !fibres->contains(*id) || fibres->at(*id).status == FibreStatus::Enabled) {
            continue;
        }
        const FibreStatus status = fibres->at(*id).status;
        problems.add(rule, valueOrOpening(*field.science, attr::fibreid),
                     "Fibre " + std::to_string(*id) + " of " + labelOf(*field.science) + " is " + std::string(status) +
                         (status == FibreStatus::Absent ? ", and the run gives the target neither place nor fibre"
                                                        : ", and the run places the target on it all the same"),
                     "Ask for an enabled fibre in fibreid");
    }
}

void findUselessFibres(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const auto* fibres = document.instrument.fibres();
    for (const CheckedField& field : document.fields) {
        for (const SourceElement* target : writtenTargets(field)) {
            const SourceAttribute* fibre = target->attribute(attr::fibreid);
            const std::optional<std::int32_t> id = fibre != nullptr ? integerOf(fibre->value) : std::nullopt;
            if (target != field.science && fibres != nullptr && id &&
                !fibres->contains(static_cast<std::uint32_t>(*id))) {
                problems.add(rule, fibre->valuePlace,
                             "fibreid '" + fibre->value.toStdString() + "' of " + labelOf(*target) +
                                 " is no fibre of the bundle, and the run does not use it",
                             "Leave fibreid out, except on the science target");
            }
        }
    }
}

void findGeneratedTargets(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const CheckedField& field : document.fields) {
        const auto first = std::find_if(field.targets.begin(), field.targets.end(),
                                        [](const SourceElement* target) { return isGenerated(*target); });
        const auto count =
            std::count_if(first, field.targets.end(), [](const SourceElement* target) { return isGenerated(*target); });
        if (count > 0) {
            problems.add(rule, valueOrOpening(**first, attr::automatic),
                         "The field holds generated targets already (" + std::to_string(count) +
                             "), and the run adds its own to them",
                         "Start from the document that has not been run");
        }
    }
}

} // namespace pos
