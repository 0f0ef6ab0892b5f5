#include "OutputFile.h"
#include "TemporaryFolder.h"
#include "surroundings.h"
#include "thrown.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace pos;
using testing::PrintToString;

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

const QByteArray kContent = "<?xml version='1.0'?>\n<new/>\n";

/** Sets the mask of permissions that new files do not get, until the object goes. */
class FileModeMask {
public:
    explicit FileModeMask(mode_t mask) : before_(::umask(mask)) {}
    ~FileModeMask() {
        ::umask(before_);
    }
    FileModeMask(const FileModeMask&) = delete;
    FileModeMask& operator=(const FileModeMask&) = delete;
    FileModeMask(FileModeMask&&) = delete;
    FileModeMask& operator=(FileModeMask&&) = delete;

private:
    mode_t before_;
};

/** Writes the content under a name and expects a file to hold it then. */
void writeAndExpectIn(const std::string& file, const std::string& name) {
    writeFile(name, kContent);
    EXPECT_EQ(readBytes(file), kContent.toStdString());
    EXPECT_TRUE(S_ISREG(statusOf(file).st_mode));
}

/** How many descriptors this process has open, with the one that reads the list. */
std::size_t openDescriptors() {
    return entriesOf("/proc/self/fd").size();
}

/** What is thrown when over a limit of 1000 bytes per file 3000 bytes are written under a name. */
std::string messageBeyondTheLimit(const std::string& name) {
    return messageOf([&] {
        const FileSizeLimit limit(1000);
        writeFile(name, QByteArray(3000, 'n'));
    });
}

} // namespace

TEST(OutputFile, HoldsEveryByteOfAnyContentWhateverWasThere) {
    QByteArray everyByte;
    for (int byte = 0; byte < 1'000'000; ++byte) {
        everyByte.append(static_cast<char>(byte % 251));
    }
    const TemporaryFolder folder;
    const std::string name = folder.path("out.xml");
    for (const QByteArray& content : {QByteArray(), QByteArray("\0\r\n\0", 4), everyByte}) {
        for (const std::string old : {"missing", "", "old", "a much longer older content"}) {
            if (old == "missing") {
                fs::remove(name);
            } else {
                folder.write("out.xml", old);
            }
            writeFile(name, content);
            EXPECT_TRUE(readBytes(name) == content.toStdString()) << content.size() << " over " << old;
            EXPECT_EQ(entriesOf(folder.name()), Names({"out.xml"}));
        }
    }
}

TEST(OutputFile, KeepsTheModeOfTheFileWhateverTheMask) {
    const FileModeMask mask(077);
    for (const mode_t mode : {0600U, 0640U, 0644U, 0664U, 0666U, 0755U, 0222U, 02664U}) {
        const TemporaryFolder folder;
        const std::string name = folder.write("out.xml", "old");
        ASSERT_EQ(::chmod(name.c_str(), mode), 0);
        writeFile(name, kContent);
        EXPECT_EQ(modeOf(name), mode) << std::oct << mode;
    }
}

TEST(OutputFile, MaskShapesTheModeOfANewFile) {
    const std::vector<std::pair<mode_t, mode_t>> rows = {{0, 0666}, {022, 0644}, {027, 0640}, {077, 0600}};
    for (const auto& [mask, mode] : rows) {
        const TemporaryFolder folder;
        const FileModeMask guard(mask);
        writeFile(folder.path("out.xml"), kContent);
        EXPECT_EQ(modeOf(folder.path("out.xml")), mode) << std::oct << mask;
        // The longest name that a file can have leaves no room for that of a temporary file.
        writeFile(folder.path(std::string(255, 'n')), kContent);
        EXPECT_EQ(modeOf(folder.path(std::string(255, 'n'))), mode) << std::oct << mask;
    }
}

TEST(OutputFile, OtherHardLinksKeepTheOldContent) {
    const TemporaryFolder folder;
    const std::string name = folder.write("out.xml", "old");
    fs::create_hard_link(name, folder.path("other.xml"));
    writeAndExpectIn(name, name);
    EXPECT_EQ(folder.read("other.xml"), "old");
    EXPECT_EQ(entriesOf(folder.name()), Names({"other.xml", "out.xml"}));
}

TEST(OutputFile, SymbolicLinksStayAndTheFileBehindThemIsMadeOrReplaced) {
    const TemporaryFolder folder;
    const std::string file = folder.path("data/file.xml");
    fs::create_directory(folder.path("data"));
    fs::create_directory(folder.path("links"));
    fs::create_symlink("../data/file.xml", folder.path("links/relative"));
    fs::create_symlink(file, folder.path("absolute"));
    fs::create_symlink("links/relative", folder.path("chain"));
    for (const std::string link : {"links/relative", "absolute", "chain"}) {
        fs::remove(file);
        for (int time = 0; time < 2; ++time) {
            writeAndExpectIn(file, folder.path(link));
            EXPECT_TRUE(S_ISLNK(statusOf(folder.path(link)).st_mode)) << link;
            EXPECT_EQ(entriesOf(folder.path("data")), Names({"file.xml"})) << link;
            EXPECT_EQ(entriesOf(folder.path("links")), Names({"relative"})) << link;
            folder.write("data/file.xml", "old");
        }
    }
}

TEST(OutputFile, LinkBehindALinkedFolderLeadsFromTheRealFolder) {
    const TemporaryFolder folder;
    fs::create_directories(folder.path("real/deep"));
    fs::create_symlink("../file.xml", folder.path("real/deep/out.xml"));
    // "shown/deep/../file.xml" is real/file.xml, not shown/file.xml.
    folder.write("shown/file.xml", "precious");
    fs::create_symlink(folder.path("real/deep"), folder.path("shown/deep"));
    for (const std::string old : {"missing", "old"}) {
        if (old != "missing") {
            folder.write("real/file.xml", old);
        }
        writeAndExpectIn(folder.path("real/file.xml"), folder.path("shown/deep/out.xml"));
        EXPECT_EQ(folder.read("shown/file.xml"), "precious");
        EXPECT_EQ(entriesOf(folder.path("real/deep")), Names({"out.xml"}));
    }
}

TEST(OutputFile, StepBackFromALinkedFolderLeadsToTheRealParent) {
    const TemporaryFolder folder;
    fs::create_directories(folder.path("real/deep"));
    folder.write("shown/file.xml", "precious");
    fs::create_symlink(folder.path("real/deep"), folder.path("shown/deep"));
    writeAndExpectIn(folder.path("real/file.xml"), folder.path("shown/deep/../file.xml"));
    writeAndExpectIn(folder.path("real/file.xml"), folder.path("shown/deep/../file.xml"));
    EXPECT_EQ(folder.read("shown/file.xml"), "precious");
    EXPECT_EQ(entriesOf(folder.path("shown")), Names({"deep", "file.xml"}));
    EXPECT_EQ(entriesOf(folder.path("real")), Names({"deep", "file.xml"}));
}

TEST(OutputFile, NameThatCannotBeOpenedIsAnErrorAndChangesNothing) {
    const TemporaryFolder folder;
    const std::string file = folder.write("file.xml", "old");
    fs::create_directory(folder.path("folder"));
    fs::create_symlink("loop2", folder.path("loop1"));
    fs::create_symlink("loop1", folder.path("loop2"));
    fs::create_symlink("made/", folder.path("to-a-missing-folder"));
    fs::create_symlink("folder", folder.path("to-a-folder"));
    fs::create_symlink("file.xml/", folder.path("to-a-file-as-a-folder"));
    const Names before = entriesOf(folder.name());
    for (const std::string& name : {
             std::string(),
             folder.path("folder"),
             folder.path("folder/"),
             folder.path("folder/."),
             folder.path("missing/"),
             folder.path("missing/."),
             folder.path("missing/.."),
             folder.path("missing/out.xml"),
             folder.path("file.xml/"),
             folder.path("file.xml/out.xml"),
             folder.path("loop1"),
             folder.path("loop1/out.xml"),
             folder.path("to-a-folder"),
             folder.path("to-a-missing-folder"),
             folder.path("to-a-file-as-a-folder"),
             folder.path(std::string(256, 'n')),
             folder.path(std::string(5000, '/') + "out.xml"),
             file + std::string(1, '\0'),
             std::string("/proc/self/fd/9999999"),
         }) {
        EXPECT_EQ(messageOf([&] { writeFile(name, kContent); }), "File open error: Unable to open output file")
            << PrintToString(name);
        EXPECT_EQ(entriesOf(folder.name()), before) << PrintToString(name);
        EXPECT_EQ(entriesOf(folder.path("folder")), Names()) << PrintToString(name);
        EXPECT_EQ(readBytes(file), "old") << PrintToString(name);
    }
}

TEST(OutputFile, ContentThatDoesNotFitLeavesTheOlderFileOrNone) {
    for (const std::string& name : {std::string("out.xml"), std::string(255, 'n')}) {
        for (const std::string& old : {std::string(), std::string("old"), std::string(5000, 'o')}) {
            const TemporaryFolder folder;
            if (!old.empty()) {
                ASSERT_EQ(::chmod(folder.write(name, old).c_str(), 0640), 0);
            }
            fs::create_symlink(name, folder.path("link"));
            for (const std::string& written : {name, std::string("link")}) {
                EXPECT_EQ(messageBeyondTheLimit(folder.path(written)),
                          "File write error: Unable to write output file " + folder.path(written) + ": File too large");
                EXPECT_EQ(entriesOf(folder.name()), old.empty() ? Names({"link"}) : Names({"link", name}));
            }
            if (!old.empty()) {
                EXPECT_EQ(folder.read(name), old);
                EXPECT_EQ(modeOf(folder.path(name)), 0640u);
            }
        }
    }
}

TEST(OutputFile, NoDescriptorStaysOpen) {
    const TemporaryFolder folder;
    const std::string file = folder.write("out.xml", "old");
    const std::string longName = folder.path(std::string(255, 'n')); // no room for a temporary file's ending
    const int inPlace = ::open(file.c_str(), O_RDWR);
    ASSERT_GE(inPlace, 0);
    const std::size_t before = openDescriptors();
    for (const std::string& name : {file, longName, "/proc/self/fd/" + std::to_string(inPlace)}) {
        writeFile(name, kContent);
        EXPECT_EQ(openDescriptors(), before) << name;
        EXPECT_NE(messageBeyondTheLimit(name), "") << name;
        EXPECT_EQ(openDescriptors(), before) << name;
    }
    EXPECT_EQ(::close(inPlace), 0);
}
