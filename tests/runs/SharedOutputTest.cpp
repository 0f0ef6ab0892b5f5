#include "fileAccess.h"
#include "outputRun.h"

#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/file.h>
#include <unistd.h>

// Runs that overwrite one file in place at the same time.

namespace {

namespace fs = std::filesystem;

/** The lock by which one writer of a file keeps the others waiting, until it is left or the object goes. */
class FileLock {
public:
    explicit FileLock(const std::string& name) : file_(::open(name.c_str(), O_RDWR | O_CLOEXEC)) {
        EXPECT_EQ(::flock(file_, LOCK_EX), 0) << name;
    }
    ~FileLock() {
        leave();
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    FileLock(FileLock&&) = delete;
    FileLock& operator=(FileLock&&) = delete;

    void leave() {
        if (file_ >= 0) {
            ::close(file_);
        }
        file_ = -1;
    }

private:
    int file_;
};

/** Whether the kernel lists somebody as waiting for the lock of a file. */
bool isAwaited(const std::string& name) {
    const std::string inode = ":" + std::to_string(statusOf(name).st_ino) + " ";
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        if (line.find("-> FLOCK") != std::string::npos && line.find(inode) != std::string::npos) {
            return true;
        }
    }
    return false;
}

class SharedOutput : public OutputRun {
protected:
    /** A run over the file "out.xml", open as descriptor 9, which therefore cannot be replaced. */
    ProgramResult runInPlace(const Command& wrapper = {}) const {
        return run(kInPlace, joined(kWithOpenOutput, wrapper));
    }

    /** Starts such a run while the file is locked. @return when the run waits for the lock, or has ended */
    std::future<ProgramResult> startWaiting(const Command& wrapper = {}) const {
        std::future<ProgramResult> result =
            std::async(std::launch::async, [this, wrapper] { return runInPlace(wrapper); });
        while (!isAwaited(path("out.xml"))) {
            if (result.wait_for(std::chrono::seconds(0)) == std::future_status::ready) {
                ADD_FAILURE() << "a run has ended without waiting";
                break;
            }
        }
        return result;
    }
};

class SharedOutputLock : public TracedRun {};

const std::string kLongOld(500'000, 'o');

} // namespace

TEST_F(SharedOutput, IsNotTouchedWhileAnotherWriterHasIt) {
    write("out.xml", kLongOld);
    FileLock lock(path("out.xml"));
    std::future<ProgramResult> result = startWaiting();
    EXPECT_TRUE(readBytes(path("out.xml")) == kLongOld);
    lock.leave();
    expectEnd(result.get(), 0, "");
    EXPECT_TRUE(readBytes(path("out.xml")) == expected_);
}

TEST_F(SharedOutput, GetsBackWhatTheWriterBeforeHasLeft) {
    write("out.xml", kLongOld);
    FileLock lock(path("out.xml"));
    std::future<ProgramResult> result = startWaiting(limitedTo(8));
    const std::string left(300'000, 'l');
    write("out.xml", left);
    lock.leave();
    expectEnd(result.get(), 1, notWritten(kInPlace, "File too large"));
    EXPECT_TRUE(readBytes(path("out.xml")) == left);
}

TEST_F(SharedOutput, IsOneWholeDocumentInTheEnd) {
    // Of another length, so that a mixture shows.
    const std::string longer = folder_.write("longer.xml", kPlainField + "<!--" + std::string(30'000, 'l') + "-->");
    // Nobody else looks at the output before the last of the runs has ended.
    const auto runOnLonger = [&](const std::string& output) {
        return runCommand({folder_.path("program"), "-i", longer, "-o", output});
    };
    expectEnd(runOnLonger(path("longer.xml")), 0, "");
    const std::string expectedLonger = readBytes(path("longer.xml"));
    ASSERT_GT(expectedLonger.size(), expected_.size());
    write("out.xml", kLongOld);
    const int file = ::open(path("out.xml").c_str(), O_RDWR);
    const std::string inPlace = "/dev/fd/" + std::to_string(file);
    for (int time = 0; time < 20; ++time) {
        auto first = std::async(std::launch::async, [&] { return runOnLonger(inPlace); });
        auto second = std::async(std::launch::async, [&] { return run(inPlace); });
        auto third = std::async(std::launch::async, [&] { return runOnLonger(inPlace); });
        for (auto* const result : {&first, &second, &third}) {
            expectEnd(result->get(), 0, "");
        }
        const std::string now = readBytes(path("out.xml"));
        EXPECT_TRUE(now == expected_ || now == expectedLonger) << time << ": " << now.size() << " bytes";
    }
    EXPECT_EQ(::close(file), 0);
}

TEST_F(SharedOutputLock, ThatCannotBeHadLeavesTheOutputUntouched) {
    write("out.xml", kLongOld);
    expectEnd(runTraced(kInPlace, {"-e", "inject=flock:error=ENOLCK"}), 1, notWritten(kInPlace, "No locks available"));
    EXPECT_TRUE(readBytes(path("out.xml")) == kLongOld);
    expectEnd(runTraced(kInPlace, {"-e", "inject=flock:error=EINTR:when=1..3"}), 0, "");
    EXPECT_TRUE(readBytes(path("out.xml")) == expected_);
    EXPECT_NE(trace().find("EINTR (Interrupted system call) (INJECTED)"), std::string::npos);
}

TEST_F(SharedOutput, OfMoreThanCanBeReadIsOverwrittenAllTheSame) {
    write("out.xml", "old");
    fs::resize_file(path("out.xml"), pos::kMaxFileSize + 1);
    expectEnd(runInPlace(), 0, "");
    EXPECT_TRUE(readBytes(path("out.xml")) == expected_);
}
