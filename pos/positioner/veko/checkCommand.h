/**
 * @file
 * veko check: every problem of a document, where it stands, what to do.
 */
#ifndef POS_CHECKCOMMAND_H
#define POS_CHECKCOMMAND_H

#include "commands.h"

namespace pos {

/** Adds "check". */
Command addCheckCommand(CLI::App& program);

} // namespace pos

#endif
