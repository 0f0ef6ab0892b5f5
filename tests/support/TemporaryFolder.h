#ifndef POS_TESTS_TEMPORARYFOLDER_H
#define POS_TESTS_TEMPORARYFOLDER_H

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/stat.h>

/** Beginnings of names that decoders change: U+FFFD, which they put in the place of bad bytes, and U+FEFF. */
inline const std::string kReplacementCharacter = "\xef\xbf\xbd";
inline const std::string kByteOrderMark = "\xef\xbb\xbf";

/** A folder of a test's own, removed with all that is in it when the object goes. */
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    TemporaryFolder(TemporaryFolder&&) = delete;
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    /** The folder's own absolute name. */
    const std::string& name() const {
        return name_;
    }
    /** The absolute name of a file in the folder. */
    std::string path(const std::string& file) const;
    /** Writes a file with these bytes. @return its absolute name */
    std::string write(const std::string& file, const std::string& content) const;
    /** The bytes of a file. Fails the test when there is no such file. */
    std::string read(const std::string& file) const;
    bool contains(const std::string& file) const;

private:
    std::string name_;
};

/** The bytes of any file, by its name. Fails the test when it cannot be read. */
std::string readBytes(const std::string& name);

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

#endif
