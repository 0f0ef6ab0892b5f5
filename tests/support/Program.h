#ifndef POS_TESTS_PROGRAM_H
#define POS_TESTS_PROGRAM_H

#include <QDomDocument>
#include <string>
#include <vector>

/** What a finished program left behind. */
struct ProgramResult {
    int status = -1; ///< exit status
    int signal = 0;  ///< the signal that ended it, 0 if it ended by itself
    std::string out; ///< standard output, every byte
    std::string err; ///< error stream, every byte
};

/** How to start a program. */
struct ProgramOptions {
    std::string folder = {};                   ///< working directory; empty for the test's own
    std::vector<std::string> environment = {}; ///< "NAME=value" settings on top of the test's own environment
    std::vector<std::string> wrapper = {};     ///< a command that is put in front, such as {"setpriv", "--reuid=65534"}
    std::string shellRedirection = {}; ///< appended to the command line of a shell, such as ">&-" or "| head -c 9"
};

/**
 * Runs veko_configure with these arguments, standard input from /dev/null, and waits for its end. Fails the test where
 * the input keeps to the schema of field definitions and the output not to that of configured ones.
 */
ProgramResult runVekoConfigure(const std::vector<std::string>& arguments, const ProgramOptions& options = {});

/** Runs any command, found on PATH, in the same way. */
ProgramResult runCommand(const std::vector<std::string>& command, const ProgramOptions& options = {});

/** The name of the veko_configure executable under test. */
std::string vekoConfigureExecutable();

/**
 * Runs the program on a document in a folder of its own. Fails the test when the run does not end with status 0, says
 * anything, or leaves no output file.
 *
 * @param document the bytes of the input
 * @param arguments further arguments
 * @return the bytes of the output
 */
std::string configuredBytes(const std::string& document, const std::vector<std::string>& arguments = {},
                            const ProgramOptions& options = {});

/** The same, parsed. */
QDomDocument configured(const std::string& document, const std::vector<std::string>& arguments = {},
                        const ProgramOptions& options = {});

/** Fails the test unless a run ended with status 0 and said nothing. */
void expectSilentSuccess(const ProgramResult& result);

#endif
