/**
 * @file
 * The files of an instrument.
 */
#ifndef POS_INSTRUMENTFILES_H
#define POS_INSTRUMENTFILES_H

#include "InstrumentDocument.h"

#include <string>
#include <utility>
#include <vector>

namespace pos {

/** The files that a configuration names, as it writes them; none for another document. */
std::vector<std::pair<InstrumentPart, const InstrumentValue*>> filesNamed(const InstrumentDocument& document);

/** The file that a configuration names, from the working directory as the name of the configuration. */
std::string fileBeside(const std::string& configuration, const std::string& name);

/** Whether a name is that of a file which is the same each time that it is read, as a pipe is not. */
bool isPlainFile(const std::string& name);

/** @throw std::runtime_error name + " could not be opened", or is too large; a pipe is not tried */
void requireFile(const std::string& name);

} // namespace pos

#endif
