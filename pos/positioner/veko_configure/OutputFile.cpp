#include "OutputFile.h"

#include "fileAccess.h"
#include "fileProperties.h"

#include <QSaveFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <linux/magic.h>
#include <optional>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace pos {

namespace {

namespace fs = std::filesystem;

/** The place that a name leads to. */
struct Place {
    fs::path path;            ///< the name behind all symbolic links
    bool throughProc = false; ///< the path is one of the kernel's links for an open descriptor, not followed
    bool exists = false;      ///< something is there, even if only behind such a link
    struct stat status {};    ///< of what is there

    bool isRegular() const {
        return exists && S_ISREG(status.st_mode);
    }
};

/** An open file, closed with the object. */
class Descriptor {
public:
    Descriptor(const char* name, int flags) : number_(::open(name, flags | O_CLOEXEC | O_NOCTTY, 0666)) {}
    /** Another descriptor of an open file. */
    explicit Descriptor(int file) : number_(::fcntl(file, F_DUPFD_CLOEXEC, 0)) {}
    ~Descriptor() {
        if (number_ >= 0) {
            // What must be kept has been synchronised.
            static_cast<void>(::close(number_));
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;

    /** Negative where there is none. */
    int number() const {
        return number_;
    }

private:
    int number_;
};

[[noreturn]] void failToOpen() {
    throw std::runtime_error("File open error: Unable to open output file");
}

[[noreturn]] void failToWrite(const std::string& name, const std::string& reason) {
    throw std::runtime_error("File write error: Unable to write output file " + name + ": " + reason);
}

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : ".";
}

/** Follows symbolic links one by one, as the kernel does; the file classes would take "x/../y" for "y" on the way. */
void followLinks(Place& place) {
    constexpr int kMaxLinks = 40; // the kernel's own limit
    for (int links = 0; links < kMaxLinks; ++links) {
        std::error_code error;
        const fs::path target = fs::read_symlink(place.path, error);
        if (error) {
            return;
        }
        const fs::path folder = folderOf(place.path);
        struct statfs fileSystem {};
        if (::statfs(folder.c_str(), &fileSystem) == 0 && fileSystem.f_type == PROC_SUPER_MAGIC) {
            place.throughProc = true;
            return;
        }
        place.path = folder / target;
    }
}

/** @throw std::runtime_error for a name that can never be opened */
Place findPlace(const std::string& name) {
    if (!fileNameFromBytes(name) || name.front() == ':') {
        failToOpen();
    }
    Place place{name};
    place.exists = ::stat(name.c_str(), &place.status) == 0;
    if (!place.exists && errno != ENOENT) {
        failToOpen();
    }
    followLinks(place);
    return place;
}

/** Whether an error says that a file system, a pipe or a device has no way of being synchronised. */
bool cannotSynchronise(int error) {
    return error == EINVAL || error == ENOTSUP || error == EROFS;
}

/**
 * Writes at the current offset of an open file, cuts the file to a size and synchronises both.
 *
 * @return the reason of a failure, or nothing
 */
std::optional<std::string> writeAll(int file, const QByteArray& content, qint64 size) {
    for (qint64 written = 0; written < content.size();) {
        errno = ENOSPC; // for a write that takes nothing and names no reason
        const ssize_t count = ::write(file, content.constData() + written, size_t(content.size() - written));
        if (count <= 0) {
            return std::strerror(errno);
        }
        written += count;
    }
    // Pipes and devices can be neither cut nor synchronised.
    if (::ftruncate(file, size) != 0 && errno != EINVAL) {
        return std::strerror(errno);
    }
    if (::fdatasync(file) != 0 && !cannotSynchronise(errno)) {
        return std::strerror(errno);
    }
    return std::nullopt;
}

/** A folder to synchronise; it opens only where the user may read it. */
Descriptor openFolder(const fs::path& folder) {
    return {folder.c_str(), O_RDONLY | O_DIRECTORY};
}

/**
 * Makes sure that a file's new name is on disk.
 *
 * @param name the name for the message
 * @param folder the folder that holds the name; where it is not open, its whole file system is synchronised
 * @param file the file, open
 */
void synchroniseFolder(const std::string& name, const Descriptor& folder, int file) {
    const int result = folder.number() >= 0 ? ::fsync(folder.number()) : ::syncfs(file);
    if (result != 0 && !cannotSynchronise(errno)) {
        failToWrite(name,
                    std::string(std::strerror(errno)) +
                        "; the new file stands under its name, but it is not certain that it survives a power cut");
    }
}

/** Whether files in a folder keep their names: a temporary one made there could be neither renamed nor removed. */
bool isAppendOnly(const fs::path& folder) {
    struct statx status {};
    return ::statx(AT_FDCWD, folder.c_str(), 0, STATX_TYPE, &status) == 0 &&
           (status.stx_attributes & STATX_ATTR_APPEND) != 0;
}

/** Makes or replaces a file in one step. @return false where that is not possible; then nothing has changed */
bool replaceFile(const std::string& name, const Place& place, const QByteArray& content) {
    std::error_code error;
    const fs::path folder = fs::canonical(folderOf(place.path), error);
    const std::optional<QString> fileName = fileNameFromBytes(folder / place.path.filename());
    if (error || !fileName || (place.exists && isAppendOnly(folder))) {
        return false;
    }
    QSaveFile file(*fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return false;
    }
    if (place.exists && !takeOverProperties(file.handle(), place.path, place.status)) {
        return false;
    }
    const Descriptor openedFolder = openFolder(folder);
    const Descriptor written(file.handle()); // stays open when the file gets its name
    if (written.number() < 0) {
        return false;
    }
    if (const auto reason = writeAll(file.handle(), content, content.size())) {
        failToWrite(name, *reason);
    }
    if (!file.commit()) {
        return false;
    }
    synchroniseFolder(name, openedFolder, written.number());
    return true;
}

/** Puts back what writeAll() has changed so far. @return whether the file has its old content again */
bool putBack(int file, const QByteArray& oldContent) {
    const off_t overwritten = ::lseek(file, 0, SEEK_CUR);
    const bool cut = ::lseek(file, 0, SEEK_END) < oldContent.size();
    // Bytes that are still there are not written again: beyond a limit of the file size that would fail.
    const QByteArray lost = cut ? oldContent : oldContent.left(static_cast<int>(overwritten));
    return overwritten >= 0 && ::lseek(file, 0, SEEK_SET) == 0 && !writeAll(file, lost, oldContent.size());
}

/** Waits until no other run is writing into an open file and keeps them all waiting until it is closed. */
void lock(int file, const std::string& name) {
    while (::flock(file, LOCK_EX) != 0) {
        if (errno != EINTR) {
            failToWrite(name, std::strerror(errno));
        }
    }
}

/** The content of a file, to put back; nothing where it cannot be read or is too large for that. */
std::optional<QByteArray> contentOf(const std::string& name) {
    try {
        return readFile(name);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

/**
 * Writes into what stands under a name, or makes the file, where replaceFile() cannot. A regular file is written by one
 * run after the other, and cut only after the last byte is written, so that on a full disk, or beyond the limit of file
 * sizes, putting back the old content needs no space.
 */
void writeInPlace(const std::string& name, const Place& place, const QByteArray& content) {
    const std::string opened = place.exists ? name : place.path.string();
    const Descriptor file(opened.c_str(), O_WRONLY | (place.exists ? 0 : O_CREAT | O_EXCL));
    if (file.number() < 0) {
        failToOpen();
    }
    std::optional<QByteArray> oldContent;
    if (place.isRegular()) {
        lock(file.number(), name);
        oldContent = contentOf(name);
    }
    if (const auto reason = writeAll(file.number(), content, content.size())) {
        if (!place.exists) {
            static_cast<void>(::unlink(opened.c_str()) == 0);
        }
        const bool whole = !place.isRegular() || (oldContent && putBack(file.number(), *oldContent));
        failToWrite(name, *reason + (whole ? "" : "; its old contents could not be put back"));
    }
    if (!place.exists) {
        synchroniseFolder(name, openFolder(folderOf(place.path)), file.number());
    }
}

} // namespace

void writeFile(const std::string& name, const QByteArray& content) {
    const Place place = findPlace(name);
    const bool replaceable = !place.throughProc && (place.isRegular() || !place.exists);
    if (!replaceable || !replaceFile(name, place, content)) {
        writeInPlace(name, place, content);
    }
}

} // namespace pos
