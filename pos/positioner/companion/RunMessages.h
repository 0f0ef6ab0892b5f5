/**
 * @file
 * The catalogue of what the run prints.
 */
#ifndef POS_RUNMESSAGES_H
#define POS_RUNMESSAGES_H

#include <string>

namespace pos {

/** What to do about a message of the run, one sentence without its full stop; empty where it is not known. */
std::string whatToDo(const std::string& message);

} // namespace pos

#endif
