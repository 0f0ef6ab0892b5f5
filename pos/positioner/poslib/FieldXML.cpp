#include "FieldXML.h"

#include "CelestialPositionXML.h"
#include "SkyMaskXML.h"
#include "TargetWalk.h"
#include "TargetXML.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

namespace pos {

namespace {

/** A target that waits for its configure target id. */
struct UnnumberedTarget {
    Target target;
    QDomElement element;
};

/** Adds the targets that have an id, in their groups. @return the others, in document order */
std::vector<UnnumberedTarget> addNumberedTargets(Field& field, const QDomElement& fieldElement) {
    std::vector<UnnumberedTarget> unnumbered;
    TargetWalk walk(fieldElement);
    for (auto step = walk.next(); step != TargetWalk::Step::End; step = walk.next()) {
        if (step == TargetWalk::Step::GroupEntered) {
            field.currentGroup = field.groups.size();
            field.groups.emplace_back();
        } else if (step == TargetWalk::Step::LevelLeft) {
            field.currentGroup = 0;
        } else {
            Target target = createTargetXML(walk.element());
            if (target.configid == 0) {
                unnumbered.push_back({target, walk.element()});
            } else {
                field.addTarget(target);
            }
        }
    }
    return unnumbered;
}

void saveTargets(const std::vector<Target>& targets, QDomElement parent) {
    for (const Target& target : targets) {
        saveTargetXML(target, parent, QDomElement());
    }
}

} // namespace

std::unique_ptr<Field> createFieldXML(const QDomElement& fieldElement) {
    auto field = std::make_unique<Field>(createAstrometricXML("Field centre", fieldElement));
    for (auto& [target, element] : addNumberedTargets(*field, fieldElement)) {
        updateTargetIdXML(element, field->addTarget(target));
    }
    field->skyMasks = createSkyMasksXML(fieldElement.firstChildElement(tag::avoidanceList));
    return field;
}

std::unique_ptr<Field> createFieldXML(const std::string& filename) {
    return createFieldXML(loadXmlFile(filename).documentElement());
}

QDomElement saveFieldXML(const Field& field, QDomDocument document) {
    QDomElement fieldElement = document.createElement(tag::field);
    saveAstrometricXML(field.centre, fieldElement);
    saveTargets(field.groups.front(), fieldElement);
    for (std::size_t group = 1; group < field.groups.size(); ++group) {
        QDomElement groupElement = document.createElement(tag::group);
        fieldElement.appendChild(groupElement);
        saveTargets(field.groups.at(group), groupElement);
    }
    return fieldElement;
}

void updateFieldXML(const Field& field, const QDomElement& fieldElement, const Plate* plate) {
    TargetWalk walk(fieldElement);
    for (auto step = walk.next(); step != TargetWalk::Step::End; step = walk.next()) {
        if (step != TargetWalk::Step::Target) {
            continue;
        }
        QDomElement element = walk.element();
        const Target& target = field.targetById(configidOf(element));
        if (target.automatic && target.fibreid < 0) {
            element.parentNode().removeChild(element);
        } else {
            updateTargetXML(target, element, plate);
        }
    }
}

} // namespace pos
