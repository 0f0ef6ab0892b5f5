/**
 * @file
 * Placing the bundle on a field's two targets.
 *
 * The position angle, the date and the rest of the pointing are those of the bundle's focal plane.
 */
#ifndef POS_PLACEVEKO_H
#define POS_PLACEVEKO_H

#include "Target.h"

#include <QDomElement>

namespace pos {

class Veko;

/**
 * The fibre for the science target: the one that the target carries, else fibre 304.
 *
 * @return fibre identifier, not necessarily one of the bundle's
 */
std::uint32_t scienceFibre(const Target& science);

/**
 * Points the bundle's focal plane so that the science target falls on a fibre.
 *
 * @throw std::runtime_error "fibre assigned to science target does not exist", or what FocalPlane::setFieldCentre
 *     throws
 */
void placeVeko(Veko& veko, const Target& science, std::uint32_t fibre);

/** Where the bundle's plate origin points: the field centre at the focal plane's date. Throws as xyToCirs does. */
Astrometric vekoFieldCentre(const Veko& veko);

/** Writes the guide star's plate position onto its element. Throws as createTargetXML and FocalPlane::cirsToXy do. */
void saveGuideStar(const Veko& veko, QDomElement guide);

} // namespace pos

#endif
