/**
 * @file
 * What the program sets in its process before it does anything.
 */
#ifndef POS_PROCESSSTATE_H
#define POS_PROCESSSTATE_H

namespace pos {

/**
 * Makes a run depend on nothing but its input and arguments.
 *
 * - Closed standard descriptors are opened, so that no file opened later gets such a number and receives the messages.
 * - A write to a closed pipe, or beyond the limit of a file's size, fails and does not end the process.
 * - File names are UTF-8 in every locale.
 * - The XML and file classes print nothing of their own.
 */
void prepareProcess();

} // namespace pos

#endif
