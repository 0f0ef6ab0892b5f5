/**
 * @file
 * The configuration run on a document in memory.
 */
#ifndef POS_CONFIGUREDOCUMENT_H
#define POS_CONFIGUREDOCUMENT_H

#include "Estimates.h"

#include <QDomDocument>

namespace pos {

class PosConfig;

/**
 * Configures the VEKO for every field of an observation.
 *
 * Points the focal plane at the first field and checks horizon and rotator. Writes conditions, hour-angle limits and
 * focal-plane record into the "configure" element. For each field, places the bundle on the science target and writes
 * the field centre, one target per fibre that is not absent, and the guide star's place. The optical model and the
 * plate geometry of the process are then those of this configuration.
 *
 * If there are several faults, the error is that of the first step, and among the fields that of the first field. In
 * each field the fibres are checked before the guide star, and each field before the next one is read.
 *
 * @param config description of telescope and instrument; "default_epoch" is the epoch of generated positions
 * @param document as loadXmlFile gives it; configured in place. A failure leaves it partly changed and of no further
 *     use
 * @param estimates finite numbers
 * @throw NoEpoch "No epoch specified"; only a document's date of exactly 0 counts as missing
 * @throw BadHourAngle "Bad hour angle in XML"
 * @throw std::runtime_error "Configure element not found", "field is below the horizon limit", "field position angle is
 *     outside the rotator limits", "The output would be larger than 256 MiB", and what reading the document, the
 *     configuration and the bundle throws (createFieldXML, createVekoXML) and placing it on a field (findFieldTargets,
 *     placeVeko, FibreTargets::requirePlaces, saveGuideStar)
 */
void configureDocument(const PosConfig& config, QDomDocument document, const Estimates& estimates);

} // namespace pos

#endif
