#include "randomDocuments.h"

#include <QTextCodec>
#include <algorithm>
#include <vector>

namespace {

/** As documents of comparisons name targets: by the fibre, else the name, else the configid. */
std::string nameOf(const QDomElement& target) {
    const int fibre = std::abs(target.attribute("fibreid").toInt());
    const QString name = target.attribute("targname");
    const QString configid = target.attribute("configid");
    return (fibre != 0            ? "fibre " + QString::number(fibre)
            : !name.isEmpty()     ? name
            : !configid.isEmpty() ? "configid " + configid
                                  : QString("target"))
        .toStdString();
}

QDomElement ancestor(QDomElement element, const QString& name) {
    while (!element.isNull() && element.tagName() != name) {
        element = element.parentNode().toElement();
    }
    return element;
}

int numberAmongSiblings(QDomElement element) {
    int number = 0;
    for (; !element.isNull(); element = element.previousSiblingElement(element.tagName())) {
        ++number;
    }
    return number;
}

/** An element and all below it. */
// NOLINTNEXTLINE(misc-no-recursion)
std::vector<QDomElement> all(const QDomElement& element) {
    std::vector<QDomElement> elements = {element};
    for (QDomElement child = element.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        const std::vector<QDomElement> below = all(child);
        elements.insert(elements.end(), below.begin(), below.end());
    }
    return elements;
}

} // namespace

QString RandomDocuments::word() {
    static const QString letters = QString::fromUtf8("aZ09 -_/.<>&\"'éß漢𝔐\t\n");
    QString text = "w";
    for (int i = below(8); i > 0; --i) {
        const int at = below(letters.size());
        // A character beyond the first plane takes two.
        text += letters.at(at).isSurrogate() ? QString::fromUtf8("𝔐") : QString(letters.at(at));
    }
    return text;
}

QString RandomDocuments::blank() {
    static const std::vector<QString> blanks = {" ", "  ", "\n", "\t", "\n    "};
    return blanks[static_cast<std::size_t>(below(static_cast<int>(blanks.size())))];
}

void RandomDocuments::addTarget(QDomElement parent, int fibre, int number) {
    QDomElement target = document_.createElement("target");
    parent.appendChild(target);
    target.setAttribute("targra", QString::number(between(0, 360), 'f', 6));
    target.setAttribute("targdec", QString::number(between(-90, 90), 'f', 6));
    target.setAttribute("targuse", fibre == 0 && isHeads() ? "G" : "T");
    target.setAttribute("targprio", below(3) + 1);
    if (fibre == 0) {
        target.setAttribute("targname", word() + QString::number(number));
        if (isHeads()) {
            target.setAttribute("configid", isHeads() ? 0 : number);
        }
    } else {
        target.setAttribute("fibreid", isHeads() ? fibre : -fibre);
        target.setAttribute("configid", fibre);
        target.setAttribute("targname", "one for all");
        target.setAttribute("automatic", 1);
        target.setAttribute("targx", QString::number(between(-30, 30), 'g', 17));
        target.setAttribute("targy", QString::number(between(-30, 30), 'g', 17));
    }
    if (isHeads()) {
        QDomElement photometry = document_.createElement("photometry");
        target.appendChild(photometry);
        photometry.setAttribute("mag_g", QString::number(between(10, 20), 'f', 2));
        photometry.appendChild(document_.createTextNode(word()));
    }
}

void RandomDocuments::addField(QDomElement fields) {
    QDomElement field = document_.createElement("field");
    fields.appendChild(field);
    field.setAttribute("RA_d", QString::number(between(0, 360), 'f', 6));
    field.setAttribute("Dec_d", QString::number(between(-90, 90), 'f', 6));
    QDomElement parent = field;
    for (int i = below(5); i > 0; --i) {
        if (below(3) == 0) {
            const QDomElement group = document_.createElement("group");
            parent = (isHeads() ? field : parent).appendChild(group).toElement();
        }
        addTarget(parent, 0, i);
    }
    for (int i = below(9); i > 0; --i) {
        addTarget(field, i * 7, 0);
    }
    if (isHeads()) {
        QDomElement mask = document_.createElement("mask");
        field.appendChild(document_.createElement("avoidance_list")).appendChild(mask);
        mask.setAttribute("radius", QString::number(between(1, 9), 'f', 1));
    }
}

QDomDocument RandomDocuments::make() {
    document_ = QDomDocument();
    QDomElement root = document_.createElement("field_definition");
    document_.appendChild(root);
    root.setAttribute("datamver", "8.00");
    QDomElement observation = document_.createElement("observation");
    root.appendChild(observation);
    observation.setAttribute("pa", QString::number(between(-180, 180), 'f', 2));
    observation.setAttribute("name", word());
    QDomElement conditions = document_.createElement("conditions");
    observation.appendChild(document_.createElement("configure")).appendChild(conditions);
    conditions.setAttribute("temperature", QString::number(between(270, 290), 'f', 1));
    const QDomElement fields = document_.createElement("fields");
    observation.appendChild(fields);
    for (int i = below(3); i >= 0; --i) {
        addField(fields);
    }
    return document_;
}

QString RandomDocuments::escaped(const QString& text, bool isLatin) {
    QString result;
    for (const uint character : text.toUcs4()) {
        const bool isPlain = character >= 0x20 && character < (isLatin ? 0x100U : 0x110000U) &&
                             !QString("<>&\"'").contains(QChar(character));
        result += isPlain ? QString::fromUcs4(&character, 1) : QString("&#%1;").arg(character);
    }
    return result;
}

// NOLINTNEXTLINE(misc-no-recursion)
QString RandomDocuments::written(const QDomElement& element, const QString& margin, bool isLatin) {
    std::vector<QString> attributes;
    for (int i = 0; i < element.attributes().count(); ++i) {
        const QDomNode attribute = element.attributes().item(i);
        const QString quote = isHeads() ? "'" : "\"";
        attributes.push_back(blank() + attribute.nodeName() + '=' + quote + escaped(attribute.nodeValue(), isLatin) +
                             quote);
    }
    std::shuffle(attributes.begin(), attributes.end(), random_);
    QString text = '<' + element.tagName();
    for (const QString& attribute : attributes) {
        text += attribute;
    }
    text += '>';
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        text += child.isElement()
                    ? margin + written(child.toElement(), margin.isEmpty() ? margin : margin + blank(), isLatin)
                    : escaped(child.nodeValue(), isLatin);
        text += below(9) == 0 ? "<!-- a remark -->" : "";
    }
    return text + (element.firstChildElement().isNull() ? QString() : margin) + "</" + element.tagName() + '>';
}

QByteArray RandomDocuments::writtenAnew(const QDomDocument& document) {
    static const std::vector<const char*> encodings = {"UTF-8", "UTF-16", "ISO-8859-1"};
    const char* const encoding = encodings[static_cast<std::size_t>(below(static_cast<int>(encodings.size())))];
    const QString text =
        QString("<?xml version=\"1.0\" encoding=\"%1\"?>").arg(encoding) +
        written(document.documentElement(), isHeads() ? QString() : blank(), encoding == encodings.back());
    return QTextCodec::codecForName(encoding)->fromUnicode(text);
}

RandomDocuments::Change RandomDocuments::change(const QDomDocument& document) {
    std::vector<QDomElement> elements = all(document.documentElement());
    QDomElement element = elements[static_cast<std::size_t>(below(static_cast<int>(elements.size())))];
    const QDomElement target = ancestor(element, "target");
    Change change;
    change.field = numberAmongSiblings(ancestor(element, "field"));
    change.before = target.isNull() ? "" : nameOf(target);
    const int attributes = element.attributes().count();
    const int kind = below(10);
    if (kind == 0 && ancestor(element, "field").tagName() == "field" && element.tagName() != "field") {
        change.element = element.tagName().toStdString();
        change.what = "removed <" + change.element + ">";
        element.parentNode().removeChild(element);
    } else if (kind == 1 || attributes == 0) {
        change.attribute = "remark";
        change.what = "added remark";
        element.setAttribute("remark", word());
    } else {
        const QString name = element.attributes().item(below(attributes)).nodeName();
        const QString value = element.attribute(name);
        bool isNumber = false;
        const double number = value.toDouble(&isNumber);
        change.attribute = name.toStdString();
        if (kind == 2) {
            element.removeAttribute(name);
        } else if (isNumber && name != "datamver") {
            // Identifiers stay unique, and values change in the last digit of a place.
            element.setAttribute(name, QString::number(number + (value.contains('.') ? 1e-6 : 1000), 'g', 17));
        } else {
            element.setAttribute(name, value + "x");
        }
        change.what = (kind == 2 ? "removed " : "changed ") + change.attribute;
    }
    const bool isRemoved = element == target && element.parentNode().isNull();
    change.after = target.isNull() || isRemoved ? "" : nameOf(target);
    return change;
}
