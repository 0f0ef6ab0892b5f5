/**
 * @file
 * veko window: when fields can be observed.
 */
#ifndef POS_WINDOWCOMMAND_H
#define POS_WINDOWCOMMAND_H

#include "commands.h"

namespace pos {

/** Adds the command to the program. */
Command addWindowCommand(CLI::App& program);

} // namespace pos

#endif
