#include "FieldTargets.h"

#include "xmlKeywords.h"

#include <stdexcept>

namespace pos {

FieldTargets findFieldTargets(const QDomElement& field) {
    FieldTargets found;
    for (QDomElement target = field.firstChildElement(tag::target);
         !target.isNull() && (found.science.isNull() || found.guide.isNull());
         target = target.nextSiblingElement(tag::target)) {
        const QString use = target.attribute(attr::targuse);
        if (use == QLatin1String("T")) {
            found.science = target;
        } else if (use == QLatin1String("G")) {
            found.guide = target;
        }
    }
    if (found.science.isNull() || found.guide.isNull()) {
        throw std::runtime_error("No science target in field");
    }
    return found;
}

} // namespace pos
