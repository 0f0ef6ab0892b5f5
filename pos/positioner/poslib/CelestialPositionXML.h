/**
 * @file
 * Positions on the sky as attributes of an element.
 *
 * Right ascension and declination are decimal degrees in the document and need enough decimals for a tenth of an
 * arcsecond: the readers refuse a number whose value changes by more when "999" follows its last digit (before an
 * exponent). They do not accept sexagesimal notation.
 */
#ifndef POS_CELESTIALPOSITIONXML_H
#define POS_CELESTIALPOSITIONXML_H

#include "CelestialPosition.h"

#include <QDomElement>
#include <string>

namespace pos {

/**
 * Reads a catalogue position.
 *
 * "targra" and "targdec" (degrees) are required. If they are absent or empty, "targepoch" (Julian years) is 2015.5, and
 * "targpmra", "targpmdec" (mas/yr), "targparal" (taken unchanged as arcseconds) and "targrv" (km/s) are 0.
 *
 * @param name description of the element, with which every message begins
 * @param e the element that carries the attributes
 * @throw std::runtime_error name + " has no targra", name + " has an invalid targra 'text'",
 *     name + " targra is an invalid number 'text'" (for "nan" and "inf", which take no further digits),
 *     name + " targra 'text' does not have enough precision", the same for targdec, and
 *     name + " position has an invalid epoch 'text'" (or "proper motion", "parallax", "radial velocity")
 */
ICRS createIcrsXML(const std::string& name, const QDomElement& e);

/**
 * Reads a plain position from "RA_d" and "Dec_d" (degrees); each is 0 where it is absent or "%%%".
 *
 * @param name description of the element, with which every message begins
 * @param e the element that carries the attributes
 * @throw std::runtime_error name + " has an invalid RA 'text'", name + " RA_d is an invalid number 'text'" (for "nan"
 *     and "inf"), name + " RA_d 'text' does not have enough precision", and the same for Dec and Dec_d
 */
Astrometric createAstrometricXML(const std::string& name, const QDomElement& e);

/**
 * Writes "targra" and "targdec", degrees with 6 decimals; the element's other attributes stay as they are.
 *
 * @param ra right ascension, ICRS, radians
 * @param dec declination, ICRS, radians
 * @param e receives the attributes
 */
void saveCataloguePlaceXML(double ra, double dec, QDomElement e);

/**
 * Writes a catalogue position: "targra" and "targdec" with 6 decimals and "targepoch" with 2; both proper motions, if
 * either is not zero, the parallax in milliarcseconds and the radial velocity, if not zero, without decimals. An
 * attribute that is not written keeps its value.
 */
void saveIcrsXML(const ICRS& p, QDomElement e);

/** Writes "RA_d" and "Dec_d", degrees with 6 decimals. */
void saveAstrometricXML(const Astrometric& p, QDomElement e);

} // namespace pos

#endif
