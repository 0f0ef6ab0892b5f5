/**
 * @file
 * Loading a document, and finding the elements of the field-definition document.
 *
 * Elements are passed by value: they are shared handles of the XML library. A search that finds nothing returns a null
 * element and never throws; the caller decides what to report.
 */
#ifndef POS_XMLSTRUCTURE_H
#define POS_XMLSTRUCTURE_H

#include <QByteArray>
#include <QDomDocument>
#include <QDomElement>
#include <QString>
#include <cstdint>
#include <string>

namespace pos {

/**
 * Loads one XML document and checks its data model version.
 *
 * @param filename name of the file; a name beginning with ":" is an embedded resource
 * @throw std::runtime_error filename + " could not be opened"
 * @throw std::runtime_error filename + " is larger than 256 MiB"
 * @throw std::runtime_error filename + " is not valid XML", or what else decodeXml and parseXml throw
 * @throw std::runtime_error "Data model version mismatch" as requireDataModelVersion
 */
QDomDocument loadXmlFile(const std::string& filename);

/**
 * The same of a document in memory.
 *
 * @param bytes the whole document, in its own encoding
 * @param filename for messages
 * @throw std::runtime_error as loadXmlFile, for a document that has been opened
 */
QDomDocument loadXmlBytes(const QByteArray& bytes, const std::string& filename);

/**
 * Checks the data model version of a document.
 *
 * @throw std::runtime_error "Data model version mismatch" when pos::datamver is set and the document element's
 *     "datamver" is not the same text
 */
void requireDataModelVersion(const QDomDocument& document);

/**
 * The first element of a name: the element itself, else its first child of that name, else the first found by
 * searching its child elements one after the other by the same rules.
 */
QDomElement findElement(QDomElement element, const QString& name);

/** The "observation" element at or below the element. */
QDomElement findObservationElement(QDomElement element);

/** The element itself if it is "configure", else the first "configure" child of the observation element. */
QDomElement findConfigureElement(QDomElement element);

/** The element itself if it is "conditions", else the first "conditions" child of the configure element. */
QDomElement findConditionsElement(QDomElement element);

/** As findConditionsElement; appends a missing "conditions" to the configure element. Null without the latter. */
QDomElement findOrCreateConditionsElement(QDomElement element);

/** The element itself if it is "fields", else the first "fields" child of the observation element. */
QDomElement findFieldsElement(QDomElement element);

/** As findFieldsElement; appends a missing "fields" to the observation element. Null without the latter. */
QDomElement findOrCreateFieldsElement(QDomElement element);

/**
 * Iterates over the fields.
 *
 * @param root the element at or below which the first "fields" element is sought, wherever it stands
 * @param previous the field returned last, or a null element to begin
 * @return the first "field" of the fields element, or the one after the previous; null after the last
 */
QDomElement findFieldElement(QDomElement root, QDomElement previous);

/** The element itself if it is "field", else the first "field" child of the fields element; both are created. */
QDomElement findOrCreateFieldElement(QDomElement element);

/** The document element of a focal-plane map if it is "focal_plane_map", else its first child of that name. */
QDomElement findFocalPlaneMapElement(const QDomDocument& map);

/** The first child element of a name; the document creates it at the parent's end when there is none. */
QDomElement findOrCreateChild(QDomDocument document, QDomNode parent, const QString& name);

/**
 * The "configid" of a target element as a 64-bit id: the 32-bit integer widened with its sign; 0 where it is absent or
 * not an integer.
 */
std::uint64_t configidOf(const QDomElement& target);

/** The first target of a field, in document order and inside groups too, with a configure target id; else null. */
QDomElement findTargetElement(QDomElement field, std::uint64_t configid);

} // namespace pos

#endif
