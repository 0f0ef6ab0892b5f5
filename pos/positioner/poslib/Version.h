/**
 * @file
 * The two version texts of the system.
 */
#ifndef POS_VERSION_H
#define POS_VERSION_H

#include <string>

namespace pos {

/** Version of the configuration software, and the "configure_version" that a configuration file must carry. */
extern const std::string configure_version;

/**
 * Data model version of the run: the "datamver" that every document must carry.
 *
 * Empty until the first XML configuration file is loaded, which sets it; while it is empty, documents are not checked.
 */
extern std::string datamver;

} // namespace pos

#endif
