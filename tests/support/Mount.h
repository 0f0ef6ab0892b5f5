#ifndef POS_TESTS_MOUNT_H
#define POS_TESTS_MOUNT_H

#include "Program.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/mount.h>

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

#endif
