/**
 * @file
 * Placing the bundle on a field, and the targets that its fibres then see.
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

/** How many targets saveVekoTargets adds to a field: one for each usable fibre but the science target's. */
qint64 countNewTargets(const Veko& veko);

/** Where the bundle's plate origin points: the field centre at the focal plane's date. Throws as xyToCirs does. */
Astrometric vekoFieldCentre(const Veko& veko);

/**
 * Writes one record per fibre, in ascending identifier; an absent fibre gets none.
 *
 * The science fibre's record goes onto the science target's own element. Every other fibre gets a new target, the last
 * child of the field, that begins as a copy of the science target's element. A fibre that is not enabled is marked by
 * a negative "fibreid".
 *
 * @param veko the bundle, placed on the field
 * @param field receives the new targets
 * @param science the science target's element
 * @param fibre the science target's fibre
 * @param epoch Julian epoch of the positions written, years
 * @throw std::runtime_error "Inverse distortion not converging at a radius of … mm", from FocalPlane::xyToCirs, for a
 *     fibre too far from the optical axis; those before it are written
 * @throw std::out_of_range "map::at" for a fibre without a name, which the reader of the bundle never makes
 */
void saveVekoTargets(const Veko& veko, QDomElement field, QDomElement science, std::uint32_t fibre, double epoch);

/** Writes the guide star's plate position onto its element. Throws as createTargetXML and FocalPlane::cirsToStd do. */
void saveGuideStar(const Veko& veko, QDomElement guide);

} // namespace pos

#endif
