#ifndef POS_TESTS_DOCUMENTS_H
#define POS_TESTS_DOCUMENTS_H

#include "TemporaryFolder.h"
#include "generators.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <QDomDocument>
#include <rapidcheck.h>

/** A new document with an empty document element, of the data model version that the loader may ask for. */
inline QDomDocument emptyDocument(const char* name) {
    QDomDocument document;
    QDomElement root = document.createElement(QString::fromLatin1(name));
    root.setAttribute(QStringLiteral("datamver"), QStringLiteral("8.00"));
    document.appendChild(root);
    return document;
}

/** A document as it comes back from a file. Its elements do not keep it: hold it as long as they are looked at. */
inline QDomDocument writtenAndLoaded(const QDomDocument& document) {
    const TemporaryFolder folder;
    return pos::loadXmlFile(folder.write("document.xml", pos::serialiseXml(document).toStdString()));
}

/** That a number came back from a text of some decimals: off by half of the last one and the rounding of doubles. */
inline void requireToDecimals(double actual, double expected, int decimals) {
    const double tolerance = 0.5 * std::pow(10.0, -decimals) + 1e-12 * std::fabs(expected);
    RC_ASSERT(std::fabs(actual - expected) <= tolerance);
}

/** The same for an angle in radians whose text is in degrees. */
inline void requireAngleToDecimals(double actual, double expected, int decimals) {
    requireToDecimals(actual * 180 / kTestPi, expected * 180 / kTestPi, decimals);
}

#endif
