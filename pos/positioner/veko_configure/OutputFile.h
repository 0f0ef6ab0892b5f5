/**
 * @file
 * Writing the output so that it is whole or an error.
 */
#ifndef POS_OUTPUTFILE_H
#define POS_OUTPUTFILE_H

#include <QByteArray>
#include <string>

namespace pos {

/**
 * Writes a file whole.
 *
 * A missing or regular file is made or replaced in one step once the content is on disk, and then its folder is
 * synchronised, so that a power cut does not undo it. Symbolic links keep pointing at the file that is replaced or
 * made, and other hard links keep the old content. The file keeps mode, access control list, other extended attributes
 * and (where permitted) owner and group. Where that is not possible, a regular file that can be written is overwritten
 * in place; owner, group and hard links stay. That happens to a file in a folder that takes no new files or is
 * append-only, another user's file in a sticky folder, a mount point, and a file with attributes that a new file cannot
 * get. Anything else, such as a device or a FIFO (which waits for its reader), is opened and written as it is. So is a
 * name under /proc that stands for an open descriptor, such as /dev/stdout; a regular file behind it is overwritten in
 * place from its start.
 *
 * A regular file that is overwritten in place is locked meanwhile (flock), so that writers wait for each other and for
 * any other program that holds the lock.
 *
 * @param name file name, bytes as given
 * @param content the whole content
 * @throw std::runtime_error "File open error: Unable to open output file"; an older file is untouched. Names that can
 *     never be opened: an empty one, one that is not UTF-8, and one that begins with ":" (an embedded resource)
 * @throw std::runtime_error "File write error: Unable to write output file " + name + ": " + reason. The older file is
 *     whole; where one was being overwritten in place and its old contents could not be put back, the message ends with
 *     "; its old contents could not be put back". Where there was no file, there is none. Where only the folder could
 *     not be synchronised, the new file is there, whole, and the message ends with "; the new file stands under its
 *     name, but it is not certain that it survives a power cut"
 */
void writeFile(const std::string& name, const QByteArray& content);

} // namespace pos

#endif
