/**
 * @file
 * Finding every problem of the documents of an instrument.
 */
#ifndef POS_CHECKINSTRUMENT_H
#define POS_CHECKINSTRUMENT_H

#include "Instrument.h"
#include "PosConfig.h"
#include "problemJson.h"

#include <memory>
#include <string>
#include <vector>

namespace pos {

/** An instrument and what is wrong with its documents. */
struct CheckedInstrument {
    std::unique_ptr<PosConfig> config; ///< without any value where it cannot be read
    std::unique_ptr<Instrument> instrument;
    std::vector<CheckedFile> files; ///< configuration, focal-plane map, bundle, plates, as far as they are files
    bool isSound = true;            ///< whether runs can use it; if not, a problem is an error
};

/**
 * Opens an instrument and finds every problem of its documents. If each run fails for the instrument's sake, there is
 * at least one error, whose message holds the run's own; if not, there is none. Built-in documents are right, and so
 * they are only used, and so are pipes, which can be read once.
 *
 * The data model version of the process becomes that of the configuration.
 *
 * @param configFile the configuration
 * @param fieldRadius field angle up to which fibres may stand, radians; at least 1 degree
 * @throw std::runtime_error as the constructor of PosConfig, for a file that cannot be opened or is too large
 */
CheckedInstrument checkInstrument(const std::string& configFile, double fieldRadius);

} // namespace pos

#endif
