#include "outputRun.h"
#include "surroundings.h"

#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

// What status 0 promises must still be there after a power cut.

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

const std::string kOld = "old";

/** What a run does to bring its output onto the disk, as a tracer tells it. */
class SynchronisedRun : public TracedRun {
protected:
    /** Expects a run's calls, successful or made to fail, in this order, repeated ones once, and the last of them to be
     * of this file. */
    void expectCalls(const std::vector<std::string>& expected, const std::string& lastOf, const std::string& output,
                     const Command& injection = {}) const {
        const std::string calls = "trace=fdatasync,fsync,syncfs,linkat,rename";
        expectEnd(runTraced(output, joined({"-y", "-e", calls}, injection)), 0, "");
        std::vector<std::string> names;
        std::string last;
        std::istringstream lines(trace());
        for (std::string line; std::getline(lines, line);) {
            const std::string name = line.substr(0, line.find('('));
            const bool counts = line.ends_with(" = 0") || line.ends_with("(INJECTED)");
            if (counts && (names.empty() || names.back() != name)) {
                names.push_back(name);
                last = line;
            }
        }
        EXPECT_EQ(names, expected) << trace();
        EXPECT_NE(last.find("<" + fs::canonical(lastOf).string() + ">)"), std::string::npos) << last;
    }
};

/** An ext4 file system in a file, on which the output is written. It makes nothing durable that nobody asked for. */
class PowerCut : public OutputRun {
protected:
    void SetUp() override {
        if (!fs::exists("/dev/loop-control")) {
            GTEST_SKIP() << "this machine has no loop devices";
        }
        folder_.write("disk", "");
        fs::resize_file(folder_.path("disk"), 16'000'000);
        const bool made =
            runCommand({"mkfs.ext4", "-q", "-E", "lazy_itable_init=0,lazy_journal_init=0", folder_.path("disk")})
                .status == 0;
        if (made) {
            disk_.reset(new Mount(Mount::image(folder_.path("disk"), folder_.path("out"), "commit=300")));
        }
        REQUIRE_PRIVILEGE(disk_ && disk_->mounted(), "mkfs.ext4 and the right to mount an image");
        fs::create_directory(folder_.path("after"));
    }

    /** Makes what has been written so far survive. */
    void synchronise() const {
        ASSERT_EQ(runCommand({"sync", "-f", folder_.path("out")}).status, 0);
    }

    /** Expects the new document on a disk whose power is cut now: what is in the image and nothing from memory. */
    void expectOutputAfterCut(const std::string& file, const Names& names) const {
        fs::copy_file(folder_.path("disk"), folder_.path("copy"), fs::copy_options::overwrite_existing);
        const Mount after = Mount::image(folder_.path("copy"), folder_.path("after"), "noatime");
        ASSERT_TRUE(after.mounted());
        Names found = entriesOf(folder_.path("after"));
        found.erase("lost+found");
        EXPECT_EQ(found, names);
        if (found.count(file) != 0) {
            EXPECT_TRUE(readBytes(folder_.path("after/" + file)) == expected_);
        }
    }

    std::unique_ptr<Mount> disk_;
};

} // namespace

TEST_F(SynchronisedRun, MakesSureOfTheContentThenOfItsName) {
    expectCalls({"fdatasync", "linkat", "fsync"}, folder_.path("out"), "out.xml");
    expectCalls({"fdatasync", "linkat", "rename", "fsync"}, folder_.path("out"), "out.xml");
}

TEST_F(SynchronisedRun, MakesSureOfTheFolderBehindALink) {
    fs::create_directory(path("folder"));
    fs::create_symlink("folder/out.xml", path("link"));
    expectCalls({"fdatasync", "linkat", "fsync"}, path("folder"), "link");
    expectCalls({"fdatasync", "linkat", "rename", "fsync"}, path("folder"), "link");
}

TEST_F(SynchronisedRun, MakesSureOfAFileThatHasItsNameFromTheStart) {
    expectCalls({"fdatasync", "linkat", "fdatasync", "fsync"}, folder_.path("out"), "out.xml",
                {"-e", "inject=linkat:error=EPERM"});
}

TEST_F(SynchronisedRun, HasNoNameToMakeSureOfWhereItOverwritesAFile) {
    expectCalls({"fdatasync"}, path("out.xml"), kInPlace);
}

TEST_F(PowerCut, LeavesANewFile) {
    synchronise();
    expectEnd(run("out.xml"), 0, "");
    expectOutputAfterCut("out.xml", {"out.xml"});
}

TEST_F(PowerCut, LeavesTheFileThatHasReplacedAnother) {
    write("out.xml", kOld);
    synchronise();
    expectEnd(run("out.xml"), 0, "");
    expectOutputAfterCut("out.xml", {"out.xml"});
}

TEST_F(PowerCut, LeavesAFileThatHasBeenOverwritten) {
    write("out.xml", kOld);
    synchronise();
    expectEnd(run(kInPlace, kWithOpenOutput), 0, "");
    expectOutputAfterCut("out.xml", {"out.xml"});
}

TEST_F(PowerCut, LeavesAFileInAFolderThatCannotBeRead) {
    prepareForOtherUsers();
    permit("out", 0333);
    synchronise();
    expectEnd(run("out.xml", kAsOtherUser), 0, "");
    expectOutputAfterCut("out.xml", {"out.xml"});
}
