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
 * Owner and group are given where the user may do that. Mode and extended attributes, the access control list among
 * them, are given all or the file is of no use; an attribute that only the new file has, as one gets a list from its
 * folder, is removed. A file system without extended attributes has none.
 *
 * @param file the new file, open
 * @param previous name of the file that will be replaced
 * @param status what the file system knows about that file
 * @return false where mode or attributes cannot be read or given
 */
bool takeOverProperties(int file, const std::string& previous, const struct stat& status);

} // namespace pos

#endif
