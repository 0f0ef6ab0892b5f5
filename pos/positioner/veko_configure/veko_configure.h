/**
 * @file
 * The configuration run.
 */
#ifndef POS_VEKO_CONFIGURE_H
#define POS_VEKO_CONFIGURE_H

#include <string>

class QDomDocument;

namespace pos {
class PosConfig;
}

/**
 * Configures the VEKO for every field of an observation.
 *
 * Reads the field-definition document, points the focal plane at the first field, checks horizon and rotator, places
 * the bundle on each field's science target, writes one target per usable fibre, and saves the document. The output
 * file is touched only after every field has succeeded.
 *
 * @param config description of telescope and instrument
 * @param input name of the field-definition document
 * @param output name of the document to write; may be the input's
 * @param epoch Julian epoch of the observation, years; 0.0 for the document's
 * @param hourAngle hour angle of the first field's centre, hours; 100.0 for the document's
 * @param pressure millibar; 0.0 for the document's
 * @param zenithDistanceLimit the field must be nearer to the zenith than this, radians
 * @param kept receives the document that was read, as far as it was configured, for a caller that need not take its
 *     tree apart because the process ends; null to have that done
 * @return 0 when the output is on disk, whole. 1, with a message on the error stream, when the input cannot be read, no
 *     epoch is given, the document's hour angle is not a number, or the output cannot be opened or written
 * @throw std::runtime_error "The output file " + output + " is the configuration file in use", or the "focal-plane map"
 *     or the "bundle definition", by whatever name
 * @throw std::exception "Configure element not found", "field is below the horizon limit", "field position angle is
 *     outside the rotator limits", and whatever reading the document, the configuration and the bundle throws
 */
int veko_configure(const pos::PosConfig& config, const std::string& input, const std::string& output, double epoch,
                   double hourAngle, double pressure, double zenithDistanceLimit, QDomDocument* kept = nullptr);

#endif
