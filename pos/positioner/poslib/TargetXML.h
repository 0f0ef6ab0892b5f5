/**
 * @file
 * Targets as "target" elements of the field-definition document.
 */
#ifndef POS_TARGETXML_H
#define POS_TARGETXML_H

#include "Target.h"

#include <QDomElement>
#include <cstdint>

namespace pos {

struct Plate;

/**
 * Reads a target.
 *
 * A "fibreid" that is absent, empty or "%%%" is none. A "configid" is 0 where it is absent; an empty text and "%%%" are
 * refused.
 *
 * @throw std::runtime_error "Target " + name + " has an invalid priority 'text'" (not a number, or negative), "fibre
 *     id", "configure target id" or "automatic flag" (not a 32-bit integer); text + " is not a valid target use"; or
 *     what createIcrsXML throws, beginning with "Target " + name
 */
Target createTargetXML(const QDomElement& element);

/**
 * Writes a target as a new element, the last child of a parent.
 *
 * Without a fibre "fibreid" becomes "%%%". So does "configid" for the id 0, which createTargetXML then refuses: a
 * target that is to be read again needs an id first.
 *
 * @param target what to write. Where its name or survey is empty, the template's stays; the template's priority always
 *     stays. The parallax and proper motion attributes of an automatic target become 0.
 * @param parent receives the element
 * @param templ the element to begin with a deep copy of, or a null element to begin with an empty "target". A
 *     target of use C does not take over a template's "cname", "targclass" and "photometry".
 * @return the new element
 */
QDomElement saveTargetXML(const Target& target, QDomNode parent, const QDomElement& templ);

/**
 * Writes the fibre of a target, and its place on a plate, into an existing element.
 *
 * Without a fibre "fibreid" is removed. An id from 1008 to 1027 names a mini bundle and is replaced by that of the
 * bundle's central fibre. With a plate, "targx" and "targy" (mm, 3 decimals) are written, and for a fibre above 1007
 * "ifu_spaxel" and "ifu_pa" (degrees, 1 decimal).
 *
 * @param target its fibre and its catalogue position are used
 * @param element the target's element
 * @param plate may be null
 * @throw std::runtime_error "celestial position not in the tangent plane", from FocalPlane::cirsToXy
 * @throw std::out_of_range for a fibre above 1007 that the plate's tables do not hold
 */
void updateTargetXML(const Target& target, QDomElement element, const Plate* plate);

/** Sets "configid", as a signed 32-bit integer. */
void updateTargetIdXML(QDomElement element, std::uint64_t configid);

} // namespace pos

#endif
