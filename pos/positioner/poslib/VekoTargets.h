/**
 * @file
 * A field's two targets, and placing the bundle on them.
 *
 * The position angle, the date and the rest of the pointing are those of the bundle's focal plane.
 */
#ifndef POS_VEKOTARGETS_H
#define POS_VEKOTARGETS_H

#include "Target.h"

#include <QDomElement>

namespace pos {

class Veko;

/** The two targets on which a field is configured. */
struct VekoTargets {
    QDomElement science; ///< the science target's element; null where none was found
    QDomElement guide;   ///< the guide star's element; null where none was found
};

/**
 * Finds the science target ("targuse" T) and the guide star (G) among a field's own targets, not those of its groups.
 *
 * The search ends as soon as both have been seen; of several up to there the last one counts. The letters are compared
 * with regard to case.
 *
 * @throw std::runtime_error "No science target in field" when either is missing
 */
VekoTargets findVekoTargets(const QDomElement& field);

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

/** A new target is written in no fewer bytes: so many its own attributes take, with the shortest of values. */
inline constexpr qint64 kMinTargetSize = 256;

/** How many targets FibreTargets::save adds to a field: one for each usable fibre but the science target's. */
qint64 countNewTargets(const Veko& veko);

/** Where the bundle's plate origin points: the field centre at the focal plane's date. Throws as xyToCirs does. */
Astrometric vekoFieldCentre(const Veko& veko);

/** Writes the guide star's plate position onto its element. Throws as createTargetXML and FocalPlane::cirsToStd do. */
void saveGuideStar(const Veko& veko, QDomElement guide);

} // namespace pos

#endif
