#include "OutputFile.h"
#include "TemporaryFolder.h"
#include "surroundings.h"
#include "thrown.h"

#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace pos;

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

/** More than a pipe holds. */
const QByteArray kLongContent(300'000, 'n');

/** A file of the test's own, open until the object goes, and the names that the kernel gives to it meanwhile. */
class OpenFile {
public:
    OpenFile(const std::string& name, int flags) : number_(::open(name.c_str(), flags | O_CLOEXEC, 0600)) {
        EXPECT_GE(number_, 0) << name;
    }
    ~OpenFile() {
        ::close(number_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    OpenFile(OpenFile&&) = delete;
    OpenFile& operator=(OpenFile&&) = delete;

    int number() const {
        return number_;
    }
    std::string procName() const {
        return "/proc/self/fd/" + std::to_string(number_);
    }
    std::string devName() const {
        return "/dev/fd/" + std::to_string(number_);
    }

private:
    int number_;
};

/** Reads all that is written into a FIFO, in the background, starting when a writer has come. */
std::future<std::string> readInBackground(const std::string& fifo) {
    return std::async(std::launch::async, [fifo] { return readBytes(fifo); });
}

/** Makes a folder append-only until the object goes: what is in it keeps its name. */
class AppendOnly {
public:
    explicit AppendOnly(const std::string& folder) : folder_(folder, O_RDONLY | O_DIRECTORY) {
        made_ = ::ioctl(folder_.number(), FS_IOC_GETFLAGS, &before_) == 0 && set(before_ | FS_APPEND_FL);
    }
    ~AppendOnly() {
        EXPECT_TRUE(!made_ || set(before_));
    }
    AppendOnly(const AppendOnly&) = delete;
    AppendOnly& operator=(const AppendOnly&) = delete;
    AppendOnly(AppendOnly&&) = delete;
    AppendOnly& operator=(AppendOnly&&) = delete;

    /** Whether that is permitted, and the file system knows such folders. */
    bool made() const {
        return made_;
    }

private:
    bool set(unsigned int flags) const {
        return ::ioctl(folder_.number(), FS_IOC_SETFLAGS, &flags) == 0;
    }

    OpenFile folder_;
    unsigned int before_ = 0;
    bool made_ = false;
};

constexpr unsigned int kNull = 3;
constexpr unsigned int kFull = 7;

void expectMemoryDevice(const std::string& name, unsigned int minor) {
    const struct stat status = statusOf(name);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
    EXPECT_EQ(status.st_rdev, makedev(1, minor));
}

} // namespace

TEST(OutputFileNode, FifoPassesEverythingOnAndStaysAFifo) {
    const TemporaryFolder folder;
    const std::string fifo = folder.path("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    fs::create_symlink("fifo", folder.path("link"));
    for (const std::string name : {"fifo", "link"}) {
        std::future<std::string> received = readInBackground(fifo);
        writeFile(folder.path(name), kLongContent);
        EXPECT_TRUE(received.get() == kLongContent.toStdString()) << name;
        EXPECT_TRUE(S_ISFIFO(statusOf(fifo).st_mode)) << name;
    }
    EXPECT_EQ(entriesOf(folder.name()), Names({"fifo", "link"}));
}

TEST(OutputFileNode, FifoWhoseReaderLeavesIsAnErrorAndStaysAFifo) {
    const TemporaryFolder folder;
    const std::string fifo = folder.path("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    std::future<void> reader = std::async(std::launch::async, [&] {
        const OpenFile file(fifo, O_RDONLY);
        char firstByte = 0;
        EXPECT_EQ(::read(file.number(), &firstByte, 1), 1);
    });
    EXPECT_EQ(messageOf([&] { writeFile(fifo, kLongContent); }),
              "File write error: Unable to write output file " + fifo + ": Broken pipe");
    reader.get();
    EXPECT_TRUE(S_ISFIFO(statusOf(fifo).st_mode));
    EXPECT_EQ(entriesOf(folder.name()), Names({"fifo"}));
}

TEST(OutputFileNode, DeviceTakesTheContentAndStaysADevice) {
    const TemporaryFolder folder;
    REQUIRE_PRIVILEGE(makeMemoryDevice(folder.path("null"), kNull), "the right to make and use device nodes");
    fs::create_symlink("null", folder.path("link"));
    writeFile(folder.path("null"), kLongContent);
    writeFile(folder.path("link"), kLongContent);
    expectMemoryDevice(folder.path("null"), kNull);
    EXPECT_EQ(entriesOf(folder.name()), Names({"link", "null"}));
}

TEST(OutputFileNode, FullDeviceIsAnErrorAndStaysADevice) {
    const TemporaryFolder folder;
    const std::string full = folder.path("full");
    REQUIRE_PRIVILEGE(makeMemoryDevice(full, kFull), "the right to make and use device nodes");
    for (const QByteArray& content : {kLongContent, QByteArray("x")}) {
        EXPECT_EQ(messageOf([&] { writeFile(full, content); }),
                  "File write error: Unable to write output file " + full + ": No space left on device");
    }
    expectMemoryDevice(full, kFull);
    EXPECT_EQ(entriesOf(folder.name()), Names({"full"}));
}

TEST(OutputFileNode, SocketCannotBeOpenedAndStaysASocket) {
    const TemporaryFolder folder;
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    struct sockaddr_un address {};
    address.sun_family = AF_UNIX;
    folder.path("socket").copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(socket, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(messageOf([&] { writeFile(folder.path("socket"), kLongContent); }),
              "File open error: Unable to open output file");
    ::close(socket);
    EXPECT_TRUE(S_ISSOCK(statusOf(folder.path("socket")).st_mode));
}

TEST(OutputFileNode, PipeBehindADescriptorTakesTheContent) {
    const TemporaryFolder folder;
    for (const bool throughLink : {false, true}) {
        int ends[2] = {};
        ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        std::future<std::string> received =
            std::async(std::launch::async, [&] { return readBytes("/dev/fd/" + std::to_string(ends[0])); });
        std::string name = "/proc/self/fd/" + std::to_string(ends[1]);
        if (throughLink) {
            fs::create_symlink(name, folder.path("link"));
            name = folder.path("link");
        }
        writeFile(name, kLongContent);
        ::close(ends[1]);
        EXPECT_TRUE(received.get() == kLongContent.toStdString());
        ::close(ends[0]);
    }
    EXPECT_EQ(entriesOf(folder.name()), Names({"link"}));
}

TEST(OutputFileNode, FileBehindADescriptorIsOverwrittenInPlace) {
    for (const std::string& old : {std::string(), std::string("old"), std::string(500'000, 'o')}) {
        const TemporaryFolder folder;
        const std::string name = folder.write("out.xml", old);
        fs::create_hard_link(name, folder.path("other.xml"));
        ASSERT_EQ(::chmod(name.c_str(), 0640), 0);
        const ino_t inode = statusOf(name).st_ino;
        const OpenFile file(name, O_RDWR);
        fs::create_symlink(file.procName(), folder.path("link"));
        for (const std::string& alias : {file.procName(), file.devName(), folder.path("link")}) {
            folder.write("out.xml", old);
            writeFile(alias, kLongContent);
            EXPECT_TRUE(folder.read("out.xml") == kLongContent.toStdString()) << alias;
            EXPECT_TRUE(folder.read("other.xml") == kLongContent.toStdString()) << alias;
        }
        EXPECT_EQ(statusOf(name).st_ino, inode);
        EXPECT_EQ(modeOf(name), 0640u);
        EXPECT_EQ(entriesOf(folder.name()), Names({"link", "other.xml", "out.xml"}));
    }
}

TEST(OutputFileNode, FileThatIsOverwrittenInPlaceGetsItsOldContentBack) {
    for (const std::string& old : {std::string(), std::string("old"), std::string(2000, 'o'), std::string(9000, 'o')}) {
        const TemporaryFolder folder;
        const OpenFile file(folder.write("out.xml", old), O_RDWR);
        const std::string message = messageOf([&] {
            const FileSizeLimit limit(1000);
            writeFile(file.procName(), QByteArray(3000, 'n'));
        });
        EXPECT_EQ(message, "File write error: Unable to write output file " + file.procName() + ": File too large");
        EXPECT_EQ(folder.read("out.xml"), old);
        EXPECT_EQ(entriesOf(folder.name()), Names({"out.xml"}));
    }
}

TEST(OutputFileNode, DeletedFileBehindADescriptorGetsTheContentAndNoName) {
    const TemporaryFolder folder;
    const OpenFile file(folder.write("out.xml", "old"), O_RDWR);
    fs::remove(folder.path("out.xml"));
    writeFile(file.procName(), kLongContent);
    EXPECT_TRUE(readBytes(file.procName()) == kLongContent.toStdString());
    EXPECT_EQ(entriesOf(folder.name()), Names());
}

TEST(OutputFileNode, DescriptorOfAFolderCannotBeOpened) {
    const TemporaryFolder folder;
    const OpenFile file(folder.name(), O_RDONLY | O_DIRECTORY);
    EXPECT_EQ(messageOf([&] { writeFile(file.procName(), kLongContent); }),
              "File open error: Unable to open output file");
    EXPECT_EQ(entriesOf(folder.name()), Names());
}

TEST(OutputFileNode, MountPointIsOverwrittenInPlace) {
    const TemporaryFolder folder;
    const std::string point = folder.write("point.xml", "below the mount");
    const std::string file = folder.write("file.xml", std::string(500'000, 'o'));
    {
        const Mount mount = Mount::file(file, point);
        REQUIRE_PRIVILEGE(mount.mounted(), "the right to mount");
        writeFile(point, kLongContent);
        EXPECT_TRUE(readBytes(point) == kLongContent.toStdString());
    }
    EXPECT_TRUE(readBytes(file) == kLongContent.toStdString());
    EXPECT_EQ(readBytes(point), "below the mount");
    EXPECT_EQ(entriesOf(folder.name()), Names({"file.xml", "point.xml"}));
}

TEST(OutputFileNode, AppendOnlyFolderTakesANewFileAndLetsTheOlderOneBeOverwritten) {
    const TemporaryFolder folder;
    const std::string old = folder.write("old.xml", std::string(500'000, 'o'));
    const ino_t inode = statusOf(old).st_ino;
    const AppendOnly appendOnly(folder.name());
    REQUIRE_PRIVILEGE(appendOnly.made(), "the right to make a folder append-only");
    writeFile(old, kLongContent);
    writeFile(folder.path("new.xml"), kLongContent);
    EXPECT_TRUE(readBytes(old) == kLongContent.toStdString());
    EXPECT_TRUE(folder.read("new.xml") == kLongContent.toStdString());
    EXPECT_EQ(statusOf(old).st_ino, inode);
    EXPECT_EQ(entriesOf(folder.name()), Names({"new.xml", "old.xml"}));
}

TEST(OutputFileNode, AppendOnlyFolderKeepsTheOlderContentAndTakesNoUnfinishedFile) {
    const TemporaryFolder folder;
    const std::string old = folder.write("old.xml", "old");
    const AppendOnly appendOnly(folder.name());
    REQUIRE_PRIVILEGE(appendOnly.made(), "the right to make a folder append-only");
    for (const std::string& name : {old, folder.path("new.xml")}) {
        EXPECT_EQ(messageOf([&] {
                      const FileSizeLimit limit(1000);
                      writeFile(name, kLongContent);
                  }),
                  "File write error: Unable to write output file " + name + ": File too large");
    }
    EXPECT_EQ(readBytes(old), "old");
    EXPECT_EQ(entriesOf(folder.name()), Names({"old.xml"}));
}
