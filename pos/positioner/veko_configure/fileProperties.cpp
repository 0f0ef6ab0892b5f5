#include "fileProperties.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <linux/limits.h>
#include <map>
#include <optional>
#include <sstream>
#include <sys/xattr.h>
#include <unistd.h>

namespace pos {

namespace {

using Attributes = std::map<std::string, std::string>;

/** Writes bytes into a buffer of a given size. @return their number, negative for a failure */
using Reader = std::function<ssize_t(char*, std::size_t)>;

/** What a reader reads: a list of names or a value. @return nothing where it fails */
std::optional<std::string> readBytes(const Reader& read) {
    // The kernel allows no longer list and no longer value.
    std::string bytes(std::max(XATTR_LIST_MAX, XATTR_SIZE_MAX), '\0');
    const ssize_t size = read(bytes.data(), bytes.size());
    if (size < 0) {
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

/**
 * The extended attributes of a file.
 *
 * @param list reads the names, a NUL behind each
 * @param valueOf reads the value of a name
 * @return nothing where one cannot be read
 */
std::optional<Attributes> readAttributes(const Reader& list, const std::function<Reader(const char*)>& valueOf) {
    const std::optional<std::string> names = readBytes(list);
    if (!names) {
        return errno == ENOTSUP || errno == ENOSYS ? std::optional(Attributes()) : std::nullopt;
    }
    Attributes attributes;
    std::istringstream stream(*names);
    for (std::string name; std::getline(stream, name, '\0');) {
        const std::optional<std::string> value = readBytes(valueOf(name.c_str()));
        if (!value) {
            return std::nullopt;
        }
        attributes[name] = *value;
    }
    return attributes;
}

std::optional<Attributes> attributesOf(const std::string& name) {
    const char* const file = name.c_str();
    return readAttributes([=](char* to, std::size_t size) { return ::listxattr(file, to, size); },
                          [=](const char* attribute) {
                              return [=](char* to, std::size_t size) { return ::getxattr(file, attribute, to, size); };
                          });
}

std::optional<Attributes> attributesOf(int file) {
    return readAttributes([=](char* to, std::size_t size) { return ::flistxattr(file, to, size); },
                          [=](const char* attribute) {
                              return [=](char* to, std::size_t size) { return ::fgetxattr(file, attribute, to, size); };
                          });
}

/** Gives a new file the extended attributes of another and no others. @return whether it has them now */
bool takeOverAttributes(int file, const std::string& previous) {
    const std::optional<Attributes> wanted = attributesOf(previous);
    const std::optional<Attributes> present = attributesOf(file);
    if (!wanted || !present) {
        return false;
    }
    const auto remove = [&](const auto& attribute) {
        return wanted->count(attribute.first) != 0 || ::fremovexattr(file, attribute.first.c_str()) == 0;
    };
    // What is the same already is not set again: not every user may set every attribute.
    const auto give = [&](const auto& attribute) {
        const auto& [name, value] = attribute;
        const auto same = present->find(name);
        return (same != present->end() && same->second == value) ||
               ::fsetxattr(file, name.c_str(), value.data(), value.size(), 0) == 0;
    };
    return std::all_of(present->begin(), present->end(), remove) && std::all_of(wanted->begin(), wanted->end(), give);
}

} // namespace

bool takeOverProperties(int file, const std::string& previous, const struct stat& status) {
    if (::fchown(file, status.st_uid, status.st_gid) != 0) {
        // Without the privilege the file goes to the user who runs the program, and stays in its group if it can.
        static_cast<void>(::fchown(file, static_cast<uid_t>(-1), status.st_gid) == 0);
    }
    // The mode comes last, because a change of owner, and an access control list, change some of its bits.
    return takeOverAttributes(file, previous) && ::fchmod(file, status.st_mode & ALLPERMS) == 0;
}

} // namespace pos
