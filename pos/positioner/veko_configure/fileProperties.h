/**
 * @file
 * What a file has beside its content: owner, group, mode and extended attributes, such as an access control list.
 */
#ifndef POS_FILEPROPERTIES_H
#define POS_FILEPROPERTIES_H

#include <string>
#include <sys/stat.h>

namespace pos {

/**
 * Gives a new file the properties of the one that it will replace.
 *
 * Owner and group are set where the user may set them. Mode and extended attributes, the access control list among
 * them, must all be set, or the file is of no use. An attribute that only the new file has, such as a list from its
 * folder, is removed. A file system without extended attributes has none.
 *
 * @param file the new file, open
 * @param previous name of the file that will be replaced
 * @param status what the file system knows about that file
 * @return false where mode or attributes cannot be read or set
 */
bool takeOverProperties(int file, const std::string& previous, const struct stat& status);

} // namespace pos

#endif
