#include "commands.h"

#include "checkCommand.h"
#include "compareCommand.h"
#include "exportCommand.h"
#include "reportCommand.h"
#include "windowCommand.h"

namespace pos {

std::vector<Command> addCommands(CLI::App& program) {
    return {addCheckCommand(program), addWindowCommand(program), addReportCommand(program), addCompareCommand(program),
            addExportCommand(program)};
}

} // namespace pos
