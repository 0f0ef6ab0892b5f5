#include "outputRun.h"
#include "surroundings.h"

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

class WrittenOrError : public OutputRun {
protected:
    /** A run on a disk of so many pages; it must succeed where the pages that it needs are there. */
    void runOnDisk(std::size_t pages, std::size_t needed, const std::string& old, bool inPlace) const {
        SCOPED_TRACE(std::to_string(pages) + " pages, of which " + std::to_string(needed) + " are needed");
        const Mount disk = Mount::small(folder_.path("out"), std::to_string(pages * kPage));
        REQUIRE_PRIVILEGE(disk.mounted(), "the right to mount");
        if (!old.empty()) {
            write("out.xml", old);
        }
        const bool fits = pages >= needed;
        const std::string name = inPlace ? kInPlace : "out.xml";
        const ProgramResult result = run(name, inPlace ? kWithOpenOutput : Command());
        expectEnd(result, fits ? 0 : 1, fits ? "" : notWritten(name, "No space left on device"));
        EXPECT_EQ(outputs(), fits || !old.empty() ? Names({"out.xml"}) : Names());
        if (fits || !old.empty()) {
            EXPECT_TRUE(readBytes(path("out.xml")) == (fits ? expected_ : old));
        }
    }

    static std::size_t pagesOf(std::size_t size) {
        return (size + kPage - 1) / kPage;
    }

    /** Sizes from one page to twice a size, page by page around it and where it begins. */
    static std::set<std::size_t> sizesAround(std::size_t pages) {
        std::set<std::size_t> sizes = {1, 2, 3};
        for (std::size_t size = pages / 4; size <= 2 * pages; size += std::max<std::size_t>(pages / 4, 1)) {
            sizes.insert(size);
        }
        for (std::size_t size = pages - 2; size <= pages + 2; ++size) {
            sizes.insert(size);
        }
        return sizes;
    }

    inline static const std::size_t kPage = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
};

} // namespace

TEST_F(WrittenOrError, DiskOfAnySizeTakesTheOutputWholeOrKeepsTheOlderOne) {
    const std::string old(5 * kPage, 'o');
    const std::size_t needed = pagesOf(expected_.size());
    ASSERT_GT(needed, 20U);
    for (const std::size_t pages : sizesAround(needed)) {
        ASSERT_NO_FATAL_FAILURE(runOnDisk(pages, needed, "", false));
        if (pages >= 5) {
            ASSERT_NO_FATAL_FAILURE(runOnDisk(pages, needed, old, true));
        }
        if (IsSkipped()) {
            return;
        }
    }
    for (const std::size_t pages : sizesAround(5 + needed)) {
        if (pages >= 5) {
            ASSERT_NO_FATAL_FAILURE(runOnDisk(pages, 5 + needed, old, false));
        }
    }
}

TEST_F(WrittenOrError, DiskThatTakesNoFurtherFileLeavesNone) {
    // One for the folder itself.
    const Mount disk = Mount::small(folder_.path("out"), "1m,nr_inodes=1");
    REQUIRE_PRIVILEGE(disk.mounted(), "the right to mount");
    expectEnd(run("out.xml"), 1, kNotOpened);
    EXPECT_EQ(outputs(), Names());
}

TEST_F(WrittenOrError, DiskThatTakesNoFurtherFileLetsTheOlderOneBeOverwritten) {
    const Mount disk = Mount::small(folder_.path("out"), "1m,nr_inodes=2");
    REQUIRE_PRIVILEGE(disk.mounted(), "the right to mount");
    write("out.xml", "old");
    expectEnd(run("out.xml", limitedTo(8)), 1, notWritten("out.xml", "File too large"));
    EXPECT_EQ(readBytes(path("out.xml")), "old");
    expectEnd(run("out.xml"), 0, "");
    EXPECT_EQ(readBytes(path("out.xml")), expected_);
    EXPECT_EQ(outputs(), Names({"out.xml"}));
}

TEST_F(WrittenOrError, DiskWithoutWritingCannotBeOpened) {
    Mount disk = Mount::small(folder_.path("out"), "1m");
    REQUIRE_PRIVILEGE(disk.mounted(), "the right to mount");
    write("out.xml", "old");
    ASSERT_EQ(::mount("none", folder_.path("out").c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    for (const std::string name : {"out.xml", "new.xml"}) {
        expectEnd(run(name), 1, kNotOpened);
    }
    EXPECT_EQ(readBytes(path("out.xml")), "old");
    EXPECT_EQ(outputs(), Names({"out.xml"}));
}

TEST_F(WrittenOrError, FileSizeLimitIsAnErrorAndNoSignal) {
    expectEnd(run("out.xml", limitedTo(8)), 1, notWritten("out.xml", "File too large"));
    EXPECT_EQ(outputs(), Names());
    const std::string old(20'000, 'o');
    write("out.xml", old);
    fs::create_symlink("out.xml", path("link"));
    expectEnd(run("link", limitedTo(8)), 1, notWritten("link", "File too large"));
    expectEnd(run("/dev/stdout", limitedTo(8), ">> out.xml"), 1, notWritten("/dev/stdout", "File too large"));
    EXPECT_EQ(readBytes(path("out.xml")), old);
    EXPECT_EQ(outputs(), Names({"link", "out.xml"}));
}

TEST_F(WrittenOrError, UnopenableTargetGivesTheOneMessage) {
    write("file.xml", "old");
    fs::create_directory(path("folder"));
    for (const std::string name : {"", "folder", "missing/out.xml", "missing/", "file.xml/", ":/configure.xml"}) {
        expectEnd(run(name), 1, kNotOpened);
        EXPECT_EQ(outputs(), Names({"file.xml", "folder"})) << name;
    }
    EXPECT_EQ(readBytes(path("file.xml")), "old");
}

TEST_F(WrittenOrError, StandardOutputTakesTheDocumentAndNothingElse) {
    const ProgramResult plain = run("/dev/stdout");
    EXPECT_EQ(plain.status, 0);
    EXPECT_EQ(plain.err, "");
    EXPECT_EQ(plain.out, expected_);
    const ProgramResult piped = run("/dev/stdout", {}, "| cat");
    EXPECT_EQ(piped.err, "");
    EXPECT_EQ(piped.out, expected_);
    const ProgramResult substituted = run("/proc/self/fd/1", {}, "> file.xml");
    expectEnd(substituted, 0, "");
    EXPECT_EQ(readBytes(path("file.xml")), expected_);
}

TEST_F(WrittenOrError, PipeThatNobodyReadsIsAnErrorAndNoSignal) {
    const std::vector<std::string> closedPipe = {"bash", "-c",
                                                 "exec 3> >(exec true); wait $!; exec \"$0\" \"$@\" >&3 3>&-"};
    expectEnd(run("/dev/stdout", closedPipe), 1, notWritten("/dev/stdout", "Broken pipe"));
}

TEST_F(WrittenOrError, ClosedStandardOutputCannotBeOpened) {
    expectEnd(run("/dev/stdout", {}, ">&-"), 1, kNotOpened);
}
