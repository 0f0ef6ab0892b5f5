#ifndef POS_TESTS_ATTRIBUTETEXT_H
#define POS_TESTS_ATTRIBUTETEXT_H

#include <QDomDocument>
#include <string>

/** An attribute of an element, UTF-8; "(absent)" where the element does not have it. */
inline std::string attributeText(const QDomElement& element, const char* name) {
    const QString key = QString::fromLatin1(name);
    return element.hasAttribute(key) ? element.attribute(key).toStdString() : "(absent)";
}

/** The text that the XML library's own setter gives a double. */
inline std::string setterText(double value) {
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("e"));
    element.setAttribute(QStringLiteral("v"), value);
    return element.attribute(QStringLiteral("v")).toStdString();
}

/** A number in fixed-point notation, as the XML library's own formatting gives it. */
inline std::string fixedPointText(double value, int decimals) {
    return QString::number(value, 'f', decimals).toStdString();
}

#endif
