/**
 * @file
 * veko report: one page to see a field definition on.
 */
#ifndef POS_REPORTCOMMAND_H
#define POS_REPORTCOMMAND_H

#include "commands.h"

namespace pos {

/** Adds "report". */
Command addReportCommand(CLI::App& program);

} // namespace pos

#endif
