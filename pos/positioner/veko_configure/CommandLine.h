/**
 * @file
 * The command line.
 */
#ifndef POS_COMMANDLINE_H
#define POS_COMMANDLINE_H

#include "Estimates.h"

#include <boost/program_options.hpp>
#include <optional>
#include <string>

namespace pos {

/** What the command line asks for. */
struct CommandLine {
    bool help = false;                 ///< print the options and end
    bool version = false;              ///< print the versions and end
    std::string configFile;            ///< name of the configuration file, ":/configure.xml" when not given
    std::optional<std::string> input;  ///< name of the field definition, bytes as given
    std::optional<std::string> output; ///< name of the document to write, bytes as given
    Estimates estimates;               ///< values for the observation from outside its document
};

/** The options in the order of the help listing. */
boost::program_options::options_description describeOptions();

/**
 * Reads the command line.
 *
 * @param argc how many arguments there are, the program's name included
 * @param argv the arguments, beginning with the program's name
 * @param options all options, as describeOptions() lists them
 * @return what the arguments ask for, with defaults for what they leave out
 * @throw boost::program_options::error for an unknown option, a missing or malformed value (one that is not a finite
 *     number included), or an argument that belongs to no option
 */
CommandLine parseCommandLine(int argc, const char* const* argv,
                             const boost::program_options::options_description& options);

/**
 * Does what the command line asks for.
 *
 * @param argc how many arguments there are, the program's name included
 * @param argv the arguments, beginning with the program's name
 * @return the exit status
 * @throw std::exception for a failure that is to be reported on the error stream
 */
int runCommandLine(int argc, const char* const* argv);

} // namespace pos

#endif
