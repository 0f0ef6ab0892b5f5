/**
 * @file
 * Sky masks as "mask" elements.
 */
#ifndef POS_SKYMASKXML_H
#define POS_SKYMASKXML_H

#include "SkyMask.h"

#include <QDomElement>
#include <vector>

namespace pos {

/**
 * Reads a mask: its centre from "RA_d" and "Dec_d", its "radius", 3.0 when absent.
 *
 * @throw std::runtime_error "Sky mask has an invalid radius 'text'", or what createAstrometricXML throws, beginning
 *     with "Sky mask"
 */
SkyMask createSkyMaskXML(const QDomElement& mask);

/** The masks of an "avoidance_list" in document order; other children are passed over. Throws as createSkyMaskXML. */
std::vector<SkyMask> createSkyMasksXML(const QDomElement& list);

/** Writes a mask as a new element, the last child of the parent. */
void saveSkyMaskXML(const SkyMask& mask, QDomNode parent);

} // namespace pos

#endif
