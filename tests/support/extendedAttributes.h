#ifndef POS_TESTS_EXTENDEDATTRIBUTES_H
#define POS_TESTS_EXTENDEDATTRIBUTES_H

#include <cerrno>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/xattr.h>
#include <vector>

inline const std::string kAccessList = "system.posix_acl_access";
inline const std::string kDefaultList = "system.posix_acl_default";

/** Whom an entry of an access control list is about, as the kernel numbers them. */
enum Tag : std::uint16_t { kOwner = 1, kUser = 2, kOwningGroup = 4, kMask = 0x10, kOthers = 0x20 };

struct Entry {
    Tag tag;
    std::uint16_t permissions; ///< as the digits of a mode
    std::uint32_t id = 0xffffffff;
};

/** An access control list as the kernel takes it: numbers of little-endian order. */
inline std::string accessList(const std::vector<Entry>& entries) {
    std::string bytes;
    const auto append = [&bytes](std::uint32_t number, int size) {
        for (int i = 0; i < size; ++i) {
            bytes += static_cast<char>(number >> (8 * i));
        }
    };
    append(2, 4);
    for (const Entry& entry : entries) {
        append(entry.tag, 2);
        append(entry.permissions, 2);
        append(entry.id, 4);
    }
    return bytes;
}

/** User 1 may write, the owning group may do nothing: as a mode, 0660. */
inline const std::string kNamedUser =
    accessList({{kOwner, 6}, {kUser, 6, 1}, {kOwningGroup, 0}, {kMask, 6}, {kOthers, 0}});

/** @return whether that is permitted, and the file system has such attributes */
inline bool setAttribute(const std::string& file, const std::string& name, const std::string& value) {
    return ::setxattr(file.c_str(), name.c_str(), value.data(), value.size(), 0) == 0;
}

/** The value of an attribute; nothing where the file does not have it. */
inline std::optional<std::string> attribute(const std::string& file, const std::string& name) {
    std::string value(65536, '\0');
    const ssize_t size = ::getxattr(file.c_str(), name.c_str(), value.data(), value.size());
    if (size < 0) {
        EXPECT_EQ(errno, ENODATA) << file << ' ' << name;
        return std::nullopt;
    }
    value.resize(static_cast<std::size_t>(size));
    return value;
}

#endif
