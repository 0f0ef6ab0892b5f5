/**
 * @file
 * The encodings of documents.
 */
#ifndef POS_XMLENCODING_H
#define POS_XMLENCODING_H

#include <QByteArray>
#include <QString>
#include <optional>
#include <string>

class QTextCodec;

namespace pos {

/**
 * The encoding that an XML declaration names.
 *
 * @param declaration the declaration, or its part behind "xml"; empty for a document without one
 * @return the encoding, UTF-8 if the declaration names none; null if it is not known
 */
const QTextCodec* declaredEncoding(const QString& declaration);

/** A declaration with the name of its encoding replaced by UTF-8. */
QString declaredAsUtf8(QString declaration);

/** Whether an encoding is UTF-8, under whatever name. */
bool isUtf8(const QTextCodec& encoding);

/**
 * The text of a document in UTF-8, without a byte-order mark.
 *
 * A byte-order mark or the first NUL shows the encoding; without either it is the declared one, else UTF-8. UTF-8 is
 * handed on unchecked: the parser knows its rules.
 *
 * @param bytes the whole document
 * @param name of the file, for messages
 * @throw MalformedXml name + " is not valid XML" for bytes that the encoding does not have, and for a declaration that
 *     contradicts the bytes
 * @throw UnreadableXml name + " declares an encoding that is not known"
 */
QByteArray decodeXml(const QByteArray& bytes, const std::string& name);

/**
 * The same for people to look at, of any bytes: U+FFFD stands for those that the encoding does not have, and a document
 * whose encoding is not known counts as UTF-8. Offsets of decodeXml's errors are in this text.
 */
QByteArray decodedForPeople(const QByteArray& bytes);

/**
 * A text in the encoding of a document, with a byte-order mark if the document has one.
 *
 * @param text in UTF-8, without a byte-order mark
 * @param document what decodeXml takes
 * @return the bytes; nothing where the encoding cannot hold the text, or would not bring the document's own text back
 *     to its bytes
 */
std::optional<QByteArray> encodeXml(const QByteArray& text, const QByteArray& document);

} // namespace pos

#endif
