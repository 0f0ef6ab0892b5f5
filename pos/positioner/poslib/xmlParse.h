/**
 * @file
 * Turning the text of a document into a tree.
 */
#ifndef POS_XMLPARSE_H
#define POS_XMLPARSE_H

#include "MalformedXml.h"

#include <QByteArray>
#include <QDomDocument>
#include <string>
#include <vector>

namespace pos {

/** Deepest nesting of elements that a document may have; its tree is walked recursively. */
inline constexpr int kMaxElementDepth = 256;

/** Most attributes that a tag may have: the tree searches those with the same hash one by one. */
inline constexpr int kMaxAttributes = 256;

/** Most entities that a document may declare: the parser calls itself for each that stands within another. */
inline constexpr int kMaxEntities = 256;

/**
 * Every document may have this many nodes: elements, attributes, texts, comments, processing instructions. An element
 * with attributes counts twice, because it keeps a table of them.
 */
inline constexpr qint64 kSmallTree = 500'000;

/** A document with more nodes must have this many bytes for each, so that 10 MB of short texts take 256 MiB at the
 * most. */
inline constexpr qint64 kMinBytesPerNode = 14;

/** Every document may grow by its entities to this many bytes, a larger one to twice its size. */
inline constexpr qint64 kSmallText = qint64{8} * 1024 * 1024;

/** Most bytes of declarations in a document type, parameter entities replaced: they cost more than their length. */
inline constexpr qint64 kMaxDeclarations = qint64{64} * 1024;

/** Where the tags of an element begin, bytes; those of an entity's element stand at its reference. */
struct TagPlaces {
    int start = -1; ///< the tag that begins it
    int end = -1;   ///< its end tag: behind the tag of an empty element; -1 where the text ends before
};

/** What parseXml makes of a text. */
struct ParsedXml {
    QDomDocument document;       ///< the tree
    int contentBegin = 0;        ///< offset of the first byte behind the document type; 0 without one
    std::vector<TagPlaces> tags; ///< of each element in document order
};

/**
 * Builds the tree of a document that is well-formed XML 1.0 within the limits above.
 *
 * - Entities that the document declares are replaced by their text. Nothing else is read: a reference that only another
 *   file may explain is refused.
 * - Of a document type the tree keeps name and identifiers. Defaults and types that it declares for attributes change
 *   nothing.
 * - Text between tags that is all blanks (space, tab, line end) is left out. Line ends become LF, and in attributes all
 *   blanks become spaces, unless they are written as references.
 *
 * @param text the whole document in UTF-8 without a byte-order mark, as decodeXml gives it
 * @param name of the file, for messages
 * @throw MalformedXml name + " is not valid XML"
 * @throw UnreadableXml name + " refers to an entity that cannot be known without reading another file", + " is
 *     written in version … of XML, and only 1.0 is read", or name + the limit that the document exceeds, with its value
 */
ParsedXml parseXml(const QByteArray& text, const std::string& name);

/**
 * Builds the tree of what stands before the place at which parseXml fails: whole tags, texts and other markup.
 *
 * @param text as above
 * @return a tree that may be without elements; the last ones may lack their ends
 */
ParsedXml parseXmlBeginning(const QByteArray& text);

} // namespace pos

#endif
