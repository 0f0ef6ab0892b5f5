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
 * Refuses a document that could not be read again.
 *
 * @param bytes its least size
 * @throw std::runtime_error "The output would be larger than 256 MiB"
 */
void checkOutputSize(qint64 bytes);

/**
 * The text of a document, indented by one space a level, in the encoding that its XML declaration names (UTF-8 without
 * one).
 *
 * parseXml makes the same tree of it, except that a CDATA section with a carriage return becomes text; it refuses a
 * text with more than 500,000 nodes and less than 14 bytes for each. Characters that the encoding lacks become
 * character references; where there can be none, as in names, comments, CDATA sections and instructions, the whole text
 * is in UTF-8 and declares that.
 *
 * @throw std::runtime_error as checkOutputSize, for the exact size; "The output would have more than 256 attributes in
 *     one tag" or "The output would be nested more than 256 levels deep", because it could not be read again
 */
QByteArray serialiseXml(const QDomDocument& document);

} // namespace pos

#endif
