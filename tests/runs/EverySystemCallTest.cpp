#include "outputRun.h"
#include "ownConfiguration.h"
#include "surroundings.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

// Runs in which each system call of the writing phase fails, and runs that are killed at each of them. The phase begins
// with the first call that touches the output's name and ends with the process.

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;
using testing::MatchesRegex;

/** A call of the kernel that a run makes. */
struct SystemCall {
    std::string name;
    int occurrence;    ///< which of its name, from 1
    std::size_t place; ///< which of all, from 0
    std::string line;  ///< the tracer's, with the arguments
};

/** What stands under the output's name before the run, and how it is reached. */
struct Situation {
    std::string name;
    std::string output; ///< as the command line names it
    std::string old;    ///< content; empty where no file is there
    std::size_t fewest; ///< calls that the phase has at least
    Names needed;       ///< some of them
};

void PrintTo(const Situation& situation, std::ostream* stream) {
    *stream << situation.name;
}

/** Calls in what a tracer has written. */
std::vector<SystemCall> callsIn(const std::string& trace) {
    std::vector<SystemCall> calls;
    std::map<std::string, int> occurrences;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        const std::string name = line.substr(0, line.find('('));
        // Other lines tell of signals and of the end.
        if (name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") == std::string::npos) {
            calls.push_back({name, ++occurrences[name], calls.size(), line});
        }
    }
    return calls;
}

/** Ways in which a call may fail, in the tracer's words. */
std::vector<std::string> faultsOf(const std::string& call) {
    static const Names kNeedSpace = {"write", "ftruncate", "fdatasync", "fsync", "openat", "linkat", "rename"};
    static const Names kMayWait = {"write", "ftruncate", "fdatasync", "fsync", "openat", "read", "flock", "close"};
    static const Names kNeedMemory = {"mmap", "munmap"};
    if (call == "brk") {
        // Gives no error but the old end of the heap; any that is below the wanted one is refused in the same way.
        return {"retval=0"};
    }
    std::vector<std::string> faults = {kNeedMemory.count(call) != 0 ? "error=ENOMEM" : "error=EIO"};
    if (kNeedSpace.count(call) != 0) {
        faults.emplace_back("error=ENOSPC");
    }
    if (kMayWait.count(call) != 0) {
        faults.emplace_back("error=EINTR");
    }
    return faults;
}

class EverySystemCall : public TracedRun, public testing::WithParamInterface<Situation> {
protected:
    /** A bundle of one fibre makes the runs short; the content is written by one call however long it is. */
    void SetUp() override {
        TracedRun::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        OwnConfiguration configuration;
        configuration.datamver = "8.00";
        arguments_ = {"-c", configuration.write(folder_)};
        expectEnd(run("expected.xml"), 0, "");
        expected_ = readBytes(path("expected.xml"));
        if (situation_.name == "MountPoint") {
            folder_.write("mounted.xml", "");
            write("out.xml", "");
            mount_.reset(new Mount(Mount::file(folder_.path("mounted.xml"), path("out.xml"))));
            REQUIRE_PRIVILEGE(mount_->mounted(), "the right to mount");
        }
        ASSERT_NO_FATAL_FAILURE(record());
    }

    /** Lists the calls of the phase. */
    void record() {
        prepare();
        expectEnd(runTraced(situation_.output, {}), 0, "");
        EXPECT_EQ(readBytes(path("out.xml")), expected_);
        phase_ = callsIn(trace());
        const std::string quotedName = '"' + situation_.output + '"';
        const auto isFirst = [&](const SystemCall& call) {
            return call.name != "execve" && call.line.find(quotedName) != std::string::npos;
        };
        phase_.erase(phase_.begin(), std::find_if(phase_.begin(), phase_.end(), isFirst));
        Names names;
        for (const SystemCall& call : phase_) {
            names.insert(call.name);
        }
        ASSERT_GE(phase_.size(), situation_.fewest);
        ASSERT_TRUE(std::includes(names.begin(), names.end(), situation_.needed.begin(), situation_.needed.end()))
            << testing::PrintToString(names);
    }

    /** Makes the folder of the output as it is before a run. */
    void prepare() const {
        for (const std::string& file : outputs()) {
            if (file != "out.xml" || situation_.old.empty()) {
                fs::remove(path(file));
            }
        }
        if (!situation_.old.empty()) {
            write("out.xml", situation_.old);
        }
        if (situation_.output == "link") {
            fs::create_symlink("out.xml", path("link"));
        }
    }

    /** A run with a fault in one call, which must have happened where the undisturbed run makes that call. */
    ProgramResult runWith(const SystemCall& call, const std::string& fault, const std::string& mark) const {
        prepare();
        const std::string inject = "inject=" + call.name + ":" + fault + ":when=" + std::to_string(call.occurrence);
        const ProgramResult result = runTraced(situation_.output, {"-e", inject});
        const std::vector<SystemCall> calls = callsIn(trace());
        EXPECT_NE(trace().find(mark), std::string::npos);
        EXPECT_EQ(calls.size() > call.place ? calls[call.place].name : "none", call.name);
        return result;
    }

    /** What is in the folder of the output beside the output and a link to it, which must still be one. */
    Names leftBehind() const {
        Names names = outputs();
        names.erase("out.xml");
        if (situation_.output == "link") {
            EXPECT_TRUE(fs::is_symlink(path("link")));
            names.erase("link");
        }
        return names;
    }
    /** Expects the old state under the output's name. */
    void expectOld() const {
        EXPECT_EQ(outputs().count("out.xml"), situation_.old.empty() ? 0U : 1U);
        if (!situation_.old.empty()) {
            EXPECT_TRUE(readBytes(path("out.xml")) == situation_.old);
        }
    }

    const Situation& situation_ = GetParam();
    std::unique_ptr<Mount> mount_;
    std::vector<SystemCall> phase_;
};

/** Said where the names of the files in use, which the output must not be, cannot be completed. */
const std::string kNoWorkingFolder = "boost::filesystem::current_path: Input/output error\n";

/** Expects at most one file, named as temporary ones are. */
void expectTemporary(const Names& names) {
    EXPECT_LE(names.size(), 1U) << testing::PrintToString(names);
    for (const std::string& name : names) {
        EXPECT_THAT(name, MatchesRegex("out\\.xml\\.[A-Za-z]{6}"));
    }
}

} // namespace

TEST_P(EverySystemCall, MayFailWithoutLoss) {
    int written = 0;
    int refused = 0;
    int uncertain = 0; // the new document is there, the folder not synchronised
    for (const SystemCall& call : phase_) {
        if (call.name == "exit_group") {
            continue; // cannot fail
        }
        for (const std::string& fault : faultsOf(call.name)) {
            SCOPED_TRACE(call.line + " fails with " + fault);
            const ProgramResult result = runWith(call, fault, "(INJECTED)");
            if (result.status == 0) {
                ++written;
                expectEnd(result, 0, "");
                EXPECT_TRUE(readBytes(path("out.xml")) == expected_);
            } else if (call.name == "fsync") {
                ++uncertain;
                expectEnd(result, 1, result.err);
                EXPECT_THAT(result.err, MatchesRegex(notCertain("[^:]*", "[A-Z][^;\n]*")));
                EXPECT_TRUE(readBytes(path("out.xml")) == expected_);
            } else {
                ++refused;
                expectEnd(result, 1, result.err);
                EXPECT_THAT(result.err, testing::AnyOf(kNotOpened, kNoWorkingFolder,
                                                       MatchesRegex(notWritten("[^:]*", "[A-Z][^;\n]*"))));
                expectOld();
            }
            // A temporary file that cannot be removed stays.
            expectTemporary(leftBehind());
            EXPECT_EQ(leftBehind().size(), call.name == "unlink" ? 1U : 0U);
        }
    }
    RecordProperty("calls", static_cast<int>(phase_.size()));
    RecordProperty("written", written);
    RecordProperty("refused", refused);
    RecordProperty("uncertain", uncertain);
    EXPECT_GE(written + refused + uncertain, static_cast<int>(situation_.fewest) - 1);
    EXPECT_GT(refused, 0);
}

TEST_P(EverySystemCall, MayBeTheLastWithoutLoss) {
    const bool isInPlace = situation_.name == "Descriptor" || situation_.name == "MountPoint";
    std::string leaving; // calls at which a temporary file was left behind
    int kept = 0;
    int replaced = 0;
    for (const SystemCall& call : phase_) {
        SCOPED_TRACE("killed at " + call.line);
        EXPECT_EQ(runWith(call, "signal=KILL", "+++ killed by SIGKILL +++").signal, SIGKILL);
        expectTemporary(leftBehind());
        leaving += leftBehind().empty() ? "" : call.name + " ";
        const std::string now = outputs().count("out.xml") != 0 ? readBytes(path("out.xml")) : "";
        if (now == situation_.old) {
            ++kept;
        } else if (isInPlace && call.name == "ftruncate") {
            // The rest of a longer old file is still there behind the new document.
            ++replaced;
            const std::size_t newSize = expected_.size();
            EXPECT_TRUE(now == expected_ + situation_.old.substr(std::min(newSize, situation_.old.size())));
        } else {
            ++replaced;
            EXPECT_TRUE(now == expected_);
        }
    }
    RecordProperty("leaving", leaving);
    RecordProperty("kept", kept);
    RecordProperty("replaced", replaced);
    EXPECT_GE(kept + replaced, static_cast<int>(situation_.fewest));
    EXPECT_GT(kept, 0);
    EXPECT_GT(replaced, 0);
}

INSTANTIATE_TEST_SUITE_P(
    OfThePhase, EverySystemCall,
    testing::Values(
        Situation{"NewOutput", "out.xml", "", 15, {"openat", "write", "ftruncate", "fdatasync", "fsync", "close"}},
        Situation{"ReplacedOutput",
                  "out.xml",
                  "old",
                  20,
                  {"openat", "fchmod", "fchown", "write", "ftruncate", "fdatasync", "rename", "fsync", "close"}},
        Situation{"DanglingLink", "link", "", 18, {"readlink", "openat", "write", "fdatasync", "fsync", "close"}},
        Situation{"LinkedOutput", "link", "old", 23, {"readlink", "openat", "write", "rename", "fsync", "close"}},
        Situation{"Descriptor",
                  kInPlace,
                  std::string(20'000, 'o'),
                  12,
                  {"openat", "read", "write", "ftruncate", "fdatasync", "close"}},
        Situation{"MountPoint",
                  "out.xml",
                  "old",
                  30,
                  {"openat", "read", "write", "ftruncate", "fdatasync", "rename", "unlink", "close"}}),
    [](const auto& situation) { return situation.param.name; });
