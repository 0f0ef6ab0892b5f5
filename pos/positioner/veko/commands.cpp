#include "commands.h"

#include "checkCommand.h"

namespace pos {

std::vector<Command> addCommands(CLI::App& program) {
    return {
        addCheckCommand(program),
    };
}

} // namespace pos
