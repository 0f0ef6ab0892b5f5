/**
 * @file
 * Where the fields of a document stand at the date of the run.
 */
#ifndef POS_POINTDOCUMENT_H
#define POS_POINTDOCUMENT_H

#include "CheckedDocument.h"

namespace pos {

class Veko;

/**
 * Reads the places of a document's fields, and points at each field at the date of the run.
 *
 * The date is the one to which the first field's hour angle leads, found as the run finds it. Where the run fails for
 * another reason, what that spoils is left out: a field without a place, or every field where date or hour angle cannot
 * be read, or the end of the document. Weather that cannot be read counts as absent.
 *
 * @param document its parts must have been found. If it has a pointing, that is taken for the run's
 */
void pointDocument(CheckedDocument& document);

/**
 * The place of a target, after its motion up to a date; motions that cannot be read count as absent.
 *
 * @param mjdTai MJD, TAI; nothing for the catalogue's place
 * @return nothing where right ascension or declination cannot be read
 */
std::optional<Astrometric> placeOfTarget(const QDomElement& target, std::optional<double> mjdTai);

/**
 * The bundle of the instrument, pointed at the date of the run.
 *
 * @param document must have a pointing
 */
Veko& bundleOfRun(const CheckedDocument& document);

/**
 * Places the bundle on a field as the run does.
 *
 * @param veko at the date of the run
 * @param field must have a science target
 * @throw what the run throws for it
 */
void placeOnScience(Veko& veko, const CheckedField& field);

} // namespace pos

#endif
