/**
 * @file
 * Options about nights, and about what must hold in them, that mean the same to every command.
 */
#ifndef POS_NIGHTOPTIONS_H
#define POS_NIGHTOPTIONS_H

#include "requirements.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <QDate>
#include <string>

namespace pos {

/** What a window needs beside the limits of the run. */
struct RequirementOptions {
    std::string twilight = "nautical";
    double airmass = 0.0; ///< 0 for any
    double moon = 0.0;    ///< degrees
    double minimum = 0.0; ///< minutes

    /** @param zenithDistanceLimit of the run, radians */
    WindowOptions windowOptions(double zenithDistanceLimit) const;
};

/** Adds the options to a command. @param options must live as long as the command */
void addRequirementOptions(CLI::App& command, RequirementOptions& options);

/** Why a text is no night; empty where it is one. */
std::string refusalOfNight(const std::string& text);

/** The date of a text that is a night. */
QDate dateOf(const std::string& text);

} // namespace pos

#endif
