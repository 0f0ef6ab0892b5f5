/**
 * @file
 * Reading the bundle's plate definition.
 */
#ifndef POS_VEKOXML_H
#define POS_VEKOXML_H

#include "Conditions.h"
#include "Veko.h"

#include <QDomElement>
#include <memory>
#include <string>

namespace pos {

class Field;
class PosConfig;

/**
 * Reads where a bundle is.
 *
 * @param root "centre_x", "centre_y" (plate mm) and "orientation" (degrees), all required
 * @throw std::runtime_error "plate definition has no centre_x attribute", "plate definition has a bad centre x", "plate
 *     definition has a bad centre y" (also when it is missing), "plate definition has no orientation attribute", "plate
 *     definition has a bad orientation"
 */
Veko::VekoCentre createVekoCentreXML(const QDomElement& root);

/**
 * Reads a fibre. Without "status" it is enabled.
 *
 * @param element "id" (0 to 2147483647), "pos_x", "pos_y" (mm), "fibre_name", and optionally "status"
 * @param centre the bundle's, which must outlive the fibre
 * @throw std::runtime_error "fibre has no id attribute" (or "pos_x", "pos_y", "fibre_name"), "fibre element has a bad
 *     identifier" (or "pos x", "pos y")
 */
SatelliteFibre<Veko::VekoCentre> createFibreXML(const QDomElement& element, const Veko::VekoCentre& centre);

/**
 * Reads a bundle and points its plate at a field, at position angle 0.
 *
 * The root element's tag is not examined. Of two fibres with one identifier the first keeps its place and status, and
 * the last its name.
 *
 * @param config site and focal-plane map, as the constructor of FocalPlane takes them
 * @param root as createVekoCentreXML takes it; its child elements "fibre" as createFibreXML takes them
 * @param field at whose centre the plate is pointed
 * @param conditions date and weather of the pointing
 * @throw std::runtime_error as both, and what the constructor of FocalPlane throws
 */
std::unique_ptr<Veko> createVekoXML(const PosConfig& config, const QDomElement& root, const Field& field,
                                    const Conditions& conditions);

/** Reads a bundle from a file. Throws also what loadXmlFile throws. */
std::unique_ptr<Veko> createVekoXML(const PosConfig& config, const std::string& filename, const Field& field,
                                    const Conditions& conditions);

} // namespace pos

#endif
