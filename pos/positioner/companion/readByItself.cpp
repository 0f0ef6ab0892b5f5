#include "readByItself.h"

#include "xmlKeywords.h"

namespace pos {

QDomElement only(const SourceElement& element, const SourceAttribute& attribute) {
    QDomElement copy = element.node.cloneNode(false).toElement();
    for (const SourceAttribute& other : element.attributes) {
        if (other.name != attribute.name && other.name != attr::targname) {
            copy.removeAttribute(other.name);
        }
    }
    if (element.name() == tag::target) {
        for (const QString& required : {attr::targra, attr::targdec}) {
            if (required != attribute.name) {
                copy.setAttribute(required, QStringLiteral("1.000000"));
            }
        }
        if (attribute.name != attr::targuse) {
            copy.setAttribute(attr::targuse, QStringLiteral("T"));
        }
    }
    return copy;
}

} // namespace pos
