/**
 * @file
 * veko compare: what is different between two documents, and by how much.
 */
#ifndef POS_COMPARECOMMAND_H
#define POS_COMPARECOMMAND_H

#include "commands.h"

namespace pos {

/** Adds "compare". */
Command addCompareCommand(CLI::App& program);

} // namespace pos

#endif
