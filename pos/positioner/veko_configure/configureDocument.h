/**
 * @file
 * The configuration run on a document in memory.
 */
#ifndef POS_CONFIGUREDOCUMENT_H
#define POS_CONFIGUREDOCUMENT_H

#include "Estimates.h"
#include "Instrument.h"

#include <QDomDocument>
#include <vector>

namespace pos {

/** A field of a document on which the bundle has been placed. */
struct PlacedField {
    QDomElement element;  ///< the field
    QDomElement science;  ///< the science target
    std::uint32_t fibre;  ///< for the science target
    Astrometric pointing; ///< the field centre that puts the science target on the fibre
};

/** A document that lacks nothing but its fibres' targets. */
struct PlacedDocument {
    Veko& veko;                      ///< the instrument's; its pointing is that of the last field
    const FibreTargets& fibres;      ///< of the bundle
    std::vector<PlacedField> fields; ///< in document order
};

/**
 * All of a run that can fail: reads an observation, points at its first field, and places the bundle on every field.
 *
 * Points the focal plane at the first field and checks horizon and rotator. Writes conditions, hour-angle limits and
 * focal-plane record into the "configure" element. For each field, places the bundle on the science target and writes
 * the field centre and the guide star's place. The optical model and the plate geometry of the process are then those
 * of this configuration.
 *
 * If there are several faults, the error is that of the first step, and among the fields that of the first field. In
 * each field the fibres are checked before the guide star, and each field before the next one is read.
 *
 * @param instrument its configuration's "default_epoch" is the epoch of generated positions
 * @param document as loadXmlFile gives it; changed in place. A failure leaves it partly changed and of no further use
 * @param estimates finite numbers
 * @throw NoEpoch "No epoch specified"; only a document's date of exactly 0 counts as missing
 * @throw BadHourAngle "Bad hour angle in XML"
 * @throw std::runtime_error "Configure element not found", "field is below the horizon limit", "field position angle is
 *     outside the rotator limits", "The output would be larger than 256 MiB", and what reading the document, the
 *     configuration and the bundle throws (createFieldXML, createVekoXML) and placing it on a field (findFieldTargets,
 *     placeVeko, FibreTargets::requirePlaces, saveGuideStar)
 */
PlacedDocument placeDocument(Instrument& instrument, QDomDocument document, const Estimates& estimates);

/** Writes one target per usable fibre into each field, which completes the document. */
void saveTargets(const PlacedDocument& placed);

/**
 * Configures the VEKO for every field of an observation: placeDocument, then saveTargets. Throws as the former does.
 *
 * @param config description of telescope and instrument
 * @param document as loadXmlFile gives it; configured in place. After a failure it has been changed in part, and only
 *     fit to be dropped
 * @param estimates finite numbers
 */
void configureDocument(const PosConfig& config, const QDomDocument& document, const Estimates& estimates);

} // namespace pos

#endif
