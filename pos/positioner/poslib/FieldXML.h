/**
 * @file
 * Fields as "field" elements of the field-definition document.
 */
#ifndef POS_FIELDXML_H
#define POS_FIELDXML_H

#include "Field.h"

#include <QDomDocument>
#include <QDomElement>
#include <memory>
#include <string>

namespace pos {

struct Plate;

/**
 * Reads a field: its centre, its targets, its sky masks.
 *
 * Targets that stand directly in the field go to group 0, those of each "group" element, nested or not, to a group of
 * its own; after the end of any group, group 0 is current again. A target without a configure target id gets the next
 * free one, which is written into its element, and goes to group 0 wherever it stands.
 *
 * @throw std::runtime_error "Target configid already exists", or what createAstrometricXML (beginning with "Field
 *     centre"), createTargetXML and createSkyMaskXML throw
 */
std::unique_ptr<Field> createFieldXML(const QDomElement& fieldElement);

/** Reads the field that is a file's document element. Throws also what loadXmlFile throws. */
std::unique_ptr<Field> createFieldXML(const std::string& filename);

/**
 * Writes a field as a new element, its targets and groups in order. The sky masks are not written.
 *
 * @param field the field; its targets are written as saveTargetXML does without a template
 * @param document creates the element, which is not attached to it
 */
QDomElement saveFieldXML(const Field& field, QDomDocument document);

/**
 * Writes the results of a run into the targets of a field's element. An automatic target without a fibre is removed.
 *
 * @param field holds the targets by the configure target ids that stand in the element
 * @param fieldElement the field's element
 * @param plate may be null; then no plate positions are written
 * @throw std::runtime_error "celestial position not in the tangent plane", from updateTargetXML
 * @throw std::out_of_range "map::at" for an element whose id the field does not hold, and as updateTargetXML throws it.
 *     After a failure the elements before that one are written
 */
void updateFieldXML(const Field& field, const QDomElement& fieldElement, const Plate* plate);

} // namespace pos

#endif
