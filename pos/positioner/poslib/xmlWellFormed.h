/**
 * @file
 * The check that a document passes before its tree is built.
 */
#ifndef POS_XMLWELLFORMED_H
#define POS_XMLWELLFORMED_H

#include <QByteArray>

namespace pos {

/** Deepest nesting of elements that a document may have; the tree is walked recursively when it is written. */
inline constexpr int kMaxElementDepth = 1000;

/** Most attributes that one element may have; the tree builder takes time quadratic in their number. */
inline constexpr int kMaxAttributes = 1000;

/**
 * Whether a document is well-formed XML 1.0 within the limits above.
 *
 * The tree builder by itself lets some malformed documents pass and is open to floods of nested or long entities. No
 * external entity is ever read; a document that refers to one is refused, because its text would be lost. Encodings:
 * UTF-8, UTF-16, ISO-8859-1, US-ASCII, and the single-byte ones that the XML library knows; a document in any other is
 * refused.
 *
 * @param text the bytes of the whole document
 */
bool isWellFormedXml(const QByteArray& text);

} // namespace pos

#endif
