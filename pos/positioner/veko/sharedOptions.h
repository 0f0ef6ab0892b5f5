/**
 * @file
 * Options that mean the same to every command.
 */
#ifndef POS_SHAREDOPTIONS_H
#define POS_SHAREDOPTIONS_H

#include "Estimates.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <string>

namespace pos {

class Instrument;

/** The instrument and the estimates, as veko_configure has them. */
struct RunOptions {
    std::string configFile = ":/configure.xml";
    Estimates estimates = {};
};

/** Adds the options of the run to a command. @param options must live as long as the command */
void addRunOptions(CLI::App& command, RunOptions& options);

/** The same without the hour angle, for commands that look at all hour angles. */
void addRunOptionsOfNights(CLI::App& command, RunOptions& options);

/** How far apart centre and targets of a field may be. @param radius radians; must live as long as the command */
void addFieldRadiusOption(CLI::App& command, double& radius);

/** Accepts finite numbers of a range alone. */
CLI::Validator within(double low, double high);

/** Tells on the error stream what is wrong with the numbers that options give. */
void tellOptions(const Estimates& estimates, Instrument& instrument);

/** When text is coloured: "auto", "always" or "never". */
void addColourOption(CLI::App& command, std::string& colour);

/** Whether to colour what goes to the standard output: "auto" is a terminal where NO_COLOR is not set. */
bool useColour(const std::string& colour);

/** The width of the terminal that the standard output is; 100 columns where it is none. */
int terminalWidth();

} // namespace pos

#endif
