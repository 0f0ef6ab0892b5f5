/**
 * @file
 * The commands of veko.
 */
#ifndef POS_COMMANDS_H
#define POS_COMMANDS_H

#include <CLI/App.hpp>
#include <functional>
#include <vector>

namespace pos {

/** How a command ends. */
enum ExitStatus {
    kGood = 0,   ///< it found nothing amiss
    kBad = 1,    ///< it found problems, a field without a window, differences
    kTrouble = 2 ///< something could not be done
};

/** A command that is part of the program. */
struct Command {
    CLI::App* arguments;      ///< parses them
    std::function<int()> run; ///< does what they ask for. @return the exit status
};

/** Adds every command to the program. */
std::vector<Command> addCommands(CLI::App& program);

} // namespace pos

#endif
