/**
 * @file
 * The configuration run.
 */
#ifndef POS_VEKO_CONFIGURE_H
#define POS_VEKO_CONFIGURE_H

#include <stdexcept>
#include <string>

namespace pos {

class PosConfig;

/**
 * Does a step of loading a field definition.
 *
 * @throw std::runtime_error "Error parsing field definition file: ", and what the step throws
 */
template <typename Step> auto loadingFieldDefinition(const Step& step) {
    try {
        return step();
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(std::string("Error parsing field definition file: ") + error.what());
    }
}

/**
 * Refuses an output that would replace a file that every run needs.
 *
 * @throw std::runtime_error "The output file " + output + " is the configuration file in use" (or "focal-plane map",
 *     "bundle definition"), and what PosConfig::getFilename throws
 */
void checkOutput(const PosConfig& config, const std::string& output);

} // namespace pos

/**
 * Configures the VEKO for every field of an observation: loads the field-definition document, configures it as
 * `configureDocument` does, and saves it. The output file is touched only after every field has succeeded.
 *
 * The document stays in memory until the next run, so that the process can end without taking its tree apart.
 *
 * @param config description of telescope and instrument
 * @param input name of the field-definition document
 * @param output name of the document to write; may be the input's
 * @param epoch Julian epoch of the observation, years; 0.0 for the document's
 * @param hourAngle hour angle of the first field's centre, hours; 100.0 for the document's
 * @param pressure millibar; 0.0 for the document's
 * @param zenithDistanceLimit the field must be nearer to the zenith than this, radians
 * @return 0 when the output is on disk, whole. 1, with a message on the error stream, when the input cannot be read, no
 *     epoch is given, the document's hour angle is not a number, or the output cannot be opened or written
 * @throw std::runtime_error "The output file " + output + " is the configuration file in use", or the "focal-plane map"
 *     or the "bundle definition", by whatever name
 * @throw std::exception "No such node (default_epoch)" before anything is read, and whatever else `configureDocument`
 *     throws
 */
int veko_configure(const pos::PosConfig& config, const std::string& input, const std::string& output, double epoch,
                   double hourAngle, double pressure, double zenithDistanceLimit);

#endif
