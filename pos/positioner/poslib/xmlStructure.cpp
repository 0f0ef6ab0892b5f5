#include "xmlStructure.h"

#include "TargetWalk.h"
#include "Version.h"
#include "fileAccess.h"
#include "xmlEncoding.h"
#include "xmlKeywords.h"
#include "xmlParse.h"

#include <stdexcept>

namespace pos {

QDomDocument loadXmlFile(const std::string& filename) {
    return loadXmlBytes(loadFile(filename), filename);
}

QDomDocument loadXmlBytes(const QByteArray& bytes, const std::string& filename) {
    const QDomDocument document = parseXml(decodeXml(bytes, filename), filename).document;
    requireDataModelVersion(document);
    return document;
}

void requireDataModelVersion(const QDomDocument& document) {
    if (!datamver.empty() && document.documentElement().attribute(attr::datamver).toStdString() != datamver) {
        throw std::runtime_error("Data model version mismatch");
    }
}

QDomElement findElement(QDomElement element, const QString& name) {
    if (element.tagName() == name) {
        return element;
    }
    const QDomElement ownChild = element.firstChildElement(name);
    if (!ownChild.isNull()) {
        return ownChild;
    }
    for (QDomElement child = element.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        const QDomElement found = findElement(child, name);
        if (!found.isNull()) {
            return found;
        }
    }
    return {};
}

QDomElement findObservationElement(QDomElement element) {
    return findElement(element, tag::observation);
}

QDomElement findConfigureElement(QDomElement element) {
    if (element.tagName() == tag::configure) {
        return element;
    }
    return findObservationElement(element).firstChildElement(tag::configure);
}

QDomElement findConditionsElement(QDomElement element) {
    if (element.tagName() == tag::conditions) {
        return element;
    }
    return findConfigureElement(element).firstChildElement(tag::conditions);
}

QDomElement findOrCreateConditionsElement(QDomElement element) {
    if (element.tagName() == tag::conditions) {
        return element;
    }
    const QDomElement configure = findConfigureElement(element);
    return configure.isNull() ? configure : findOrCreateChild(configure.ownerDocument(), configure, tag::conditions);
}

QDomElement findFieldsElement(QDomElement element) {
    if (element.tagName() == tag::fields) {
        return element;
    }
    return findObservationElement(element).firstChildElement(tag::fields);
}

QDomElement findOrCreateFieldsElement(QDomElement element) {
    if (element.tagName() == tag::fields) {
        return element;
    }
    const QDomElement observation = findObservationElement(element);
    return observation.isNull() ? observation
                                : findOrCreateChild(observation.ownerDocument(), observation, tag::fields);
}

QDomElement findFieldElement(QDomElement root, QDomElement previous) {
    if (previous.isNull()) {
        return findElement(root, tag::fields).firstChildElement(tag::field);
    }
    return previous.nextSiblingElement(tag::field);
}

QDomElement findOrCreateFieldElement(QDomElement element) {
    if (element.tagName() == tag::field) {
        return element;
    }
    const QDomElement fields = findOrCreateFieldsElement(element);
    return fields.isNull() ? fields : findOrCreateChild(fields.ownerDocument(), fields, tag::field);
}

QDomElement findFocalPlaneMapElement(const QDomDocument& map) {
    const QDomElement root = map.documentElement();
    return root.tagName() == tag::focalPlaneMap ? root : root.firstChildElement(tag::focalPlaneMap);
}

QDomElement findOrCreateChild(QDomDocument document, QDomNode parent, const QString& name) {
    QDomElement child = parent.firstChildElement(name);
    if (child.isNull()) {
        child = document.createElement(name);
        parent.appendChild(child);
    }
    return child;
}

std::uint64_t configidOf(const QDomElement& target) {
    return static_cast<std::uint64_t>(std::int64_t{target.attribute(attr::configid).toInt()});
}

QDomElement findTargetElement(QDomElement field, std::uint64_t configid) {
    TargetWalk walk(field);
    for (auto step = walk.next(); step != TargetWalk::Step::End; step = walk.next()) {
        if (step == TargetWalk::Step::Target && configidOf(walk.element()) == configid) {
            return walk.element();
        }
    }
    return {};
}

} // namespace pos
