#ifndef POS_TESTS_OUTPUTFOLDER_H
#define POS_TESTS_OUTPUTFOLDER_H

#include "TemporaryFolder.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

/** What stands in a folder, by name, without what is further below. */
inline std::set<std::string> entriesOf(const std::string& folder) {
    std::set<std::string> entries;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        entries.insert(entry.path().filename().string());
    }
    return entries;
}

/** What the file system knows about a name; a symbolic link is not followed. Fails the test when nothing is there. */
inline struct stat statusOf(const std::string& name) {
    struct stat status {};
    EXPECT_EQ(::lstat(name.c_str(), &status), 0) << name;
    return status;
}

/** The permissions of a file, set-id bits included. */
inline mode_t modeOf(const std::string& name) {
    return statusOf(name).st_mode & ALLPERMS;
}

/** Makes a copy of a device of the kernel's memory driver. @return whether that is permitted, here and now */
inline bool makeMemoryDevice(const std::string& name, unsigned int minor) {
    if (::mknod(name.c_str(), S_IFCHR | 0666, makedev(1, minor)) != 0) {
        return false;
    }
    const int file = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    ::close(file);
    return file >= 0;
}

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

#endif
