#ifndef POS_TESTS_SURROUNDINGS_H
#define POS_TESTS_SURROUNDINGS_H

#include "Program.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

/** Makes a folder the working directory of this process until the object goes. */
class WorkingFolder {
public:
    explicit WorkingFolder(const std::string& folder) : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    WorkingFolder(WorkingFolder&&) = delete;
    WorkingFolder& operator=(WorkingFolder&&) = delete;

private:
    std::filesystem::path before_;
};

/** Gives an environment variable of this process a value, or takes it away, until the object goes. */
class EnvironmentVariable {
public:
    EnvironmentVariable(const std::string& name, const std::optional<std::string>& value) : name_(name) {
        if (const char* const before = std::getenv(name.c_str())) {
            before_ = before;
        }
        set(value);
    }
    ~EnvironmentVariable() {
        set(before_);
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    EnvironmentVariable(EnvironmentVariable&&) = delete;
    EnvironmentVariable& operator=(EnvironmentVariable&&) = delete;

private:
    void set(const std::optional<std::string>& value) const {
        if (value) {
            ::setenv(name_.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> before_;
};

/** Lets no file of this process grow beyond a size, in bytes, until the object goes. */
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        const struct rlimit limit { size, before_.rlim_max };
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    FileSizeLimit(FileSizeLimit&&) = delete;
    FileSizeLimit& operator=(FileSizeLimit&&) = delete;

private:
    struct rlimit before_ {};
};

/**
 * Ends a test that needs what this process may not do or does not have: as a failure where the environment variable CI
 * is set, because there everything must be tested, and as a visible skip elsewhere.
 */
#define REQUIRE_PRIVILEGE(granted, what)                                                                               \
    if (!(granted)) {                                                                                                  \
        if (std::getenv("CI") != nullptr) {                                                                            \
            GTEST_FAIL() << "needs " << (what);                                                                        \
        }                                                                                                              \
        GTEST_SKIP() << "needs " << (what);                                                                            \
    }                                                                                                                  \
    static_assert(true, "a semicolon follows")

inline bool isRoot() {
    return ::geteuid() == 0;
}

/** Something mounted over a file or a folder of a test's own until the object goes, where that is permitted. */
class Mount {
public:
    /** A file system in memory, of this size ("64k"). */
    static Mount small(const std::string& folder, const std::string& size) {
        return {folder, ::mount("none", folder.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0};
    }
    /** Another file. */
    static Mount file(const std::string& name, const std::string& point) {
        return {point, ::mount(name.c_str(), point.c_str(), nullptr, MS_BIND, nullptr) == 0};
    }
    /** The file system in an image file, with these options ("commit=300"). */
    static Mount image(const std::string& name, const std::string& folder, const std::string& options) {
        return {folder, runCommand({"mount", "-o", "loop," + options, name, folder}).status == 0};
    }
    ~Mount() {
        if (mounted_) {
            EXPECT_EQ(::umount(point_.c_str()), 0) << point_;
        }
    }
    Mount(const Mount&) = delete;
    Mount& operator=(const Mount&) = delete;
    Mount(Mount&&) = delete;
    Mount& operator=(Mount&&) = delete;

    bool mounted() const {
        return mounted_;
    }

private:
    Mount(const std::string& point, bool mounted) : point_(point), mounted_(mounted) {}

    std::string point_;
    bool mounted_;
};

/** Makes a copy of a device of the kernel's memory driver. @return whether that is permitted, here and now */
inline bool makeMemoryDevice(const std::string& name, unsigned int minor) {
    if (::mknod(name.c_str(), S_IFCHR | 0666, makedev(1, minor)) != 0) {
        return false;
    }
    const int file = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    ::close(file);
    return file >= 0;
}

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
