/**
 * @file
 * Turning a document back into bytes.
 */
#ifndef POS_XMLSERIALISE_H
#define POS_XMLSERIALISE_H

#include <QByteArray>
#include <QDomDocument>

namespace pos {

/**
 * The document's text in the encoding that its XML declaration names (UTF-8 without one), indented by one space a
 * level. Characters that the encoding lacks become character references.
 */
QByteArray serialiseXml(const QDomDocument& document);

} // namespace pos

#endif
