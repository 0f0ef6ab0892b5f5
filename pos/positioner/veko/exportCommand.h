/**
 * @file
 * veko export: the targets of a document in formats of other tools.
 */
#ifndef POS_EXPORTCOMMAND_H
#define POS_EXPORTCOMMAND_H

#include "commands.h"

namespace pos {

/** Adds "export". */
Command addExportCommand(CLI::App& program);

} // namespace pos

#endif
