/**
 * @file
 * Turning bytes into a document.
 */
#ifndef POS_XMLPARSE_H
#define POS_XMLPARSE_H

#include <QByteArray>
#include <QDomDocument>
#include <optional>

namespace pos {

/** Deepest nesting of elements that a document may have; its tree is walked recursively. */
inline constexpr int kMaxElementDepth = 1000;

/**
 * Every document may have this many nodes: elements, attributes, texts, comments, processing instructions. An element
 * with attributes counts twice, because it keeps a table of them.
 */
inline constexpr qint64 kSmallTree = 500'000;

/**
 * A document with more nodes must have at least this many bytes for each; those that the program writes have. Nodes
 * that entities or declared default attributes add count too, so that 10 MB never take more than 256 MiB of memory.
 */
inline constexpr qint64 kMinBytesPerNode = 14;

/** Every document's values and texts may add up to this many bytes; a larger sum must not exceed twice its size. */
inline constexpr qint64 kSmallText = qint64{8} * 1024 * 1024;

/** In how many bytes from its beginning a document's type must have ended: declarations cost more than their length. */
inline constexpr int kMaxDoctypeEnd = 16 * 1024;

/** Longest tag, comment or processing instruction, bytes, up to one piece more: the parser takes in each at once. */
inline constexpr int kMaxMarkup = 1024 * 1024;

/**
 * Builds the tree of a document that is well-formed XML 1.0 within the limits above.
 *
 * Entities of the document's own are replaced by their text, attributes with a declared default are added. Nothing but
 * the bytes is read: no external subset, no external entity. Text that is all blanks is left out, as is everything in
 * the document type but its name and identifiers. Line ends become LF.
 *
 * Encodings: UTF-8, UTF-16, ISO-8859-1, US-ASCII, and the single-byte ones that the XML library knows.
 *
 * @param text the bytes of the whole document
 * @return the document; nothing where it is malformed, beyond a limit or in another encoding, or refers to an entity
 *     that it does not declare or that is external, whose text would be lost
 */
std::optional<QDomDocument> parseXml(const QByteArray& text);

} // namespace pos

#endif
