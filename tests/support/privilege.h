#ifndef POS_TESTS_PRIVILEGE_H
#define POS_TESTS_PRIVILEGE_H

#include "Program.h"
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

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

#endif
