#ifndef POS_TESTS_RUNS_OUTPUTRUN_H
#define POS_TESTS_RUNS_OUTPUTRUN_H

#include "Program.h"
#include "TemporaryFolder.h"
#include "fieldDefinition.h"
#include "surroundings.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

/** A program and its arguments, or what is put in front of another such command. */
using Command = std::vector<std::string>;

inline Command joined(Command first, const Command& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/** Runs a command as a user who may not do everything. */
inline const Command kAsOtherUser = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};

/** Runs a command with the file "out.xml" open, under a name by which it can only be overwritten in place. */
inline const Command kWithOpenOutput = {"bash", "-c", "exec \"$0\" \"$@\" 9<>out.xml"};
inline const std::string kInPlace = "/dev/fd/9";

/** Whole runs in a folder of their own, with all that they need in it, so that another user can perform them too. */
class OutputRun : public testing::Test {
protected:
    OutputRun() {
        std::filesystem::copy_file(vekoConfigureExecutable(), folder_.path("program"));
        folder_.write("in.xml", kPlainField);
        permit("", 0755);
        permit("in.xml", 0644);
        permit("program", 0755);
        std::filesystem::create_directory(folder_.path("out"));
        const ProgramResult undisturbed = runVekoConfigure({"-i", folder_.path("in.xml"), "-o", path("expected.xml")});
        EXPECT_EQ(undisturbed.status, 0) << undisturbed.err;
        expected_ = readBytes(path("expected.xml"));
        std::filesystem::remove(path("expected.xml"));
        EXPECT_EQ(expected_.substr(expected_.size() - 17), "</configuration>\n");
    }

    /** The name of a file in the folder of the output. */
    std::string path(const std::string& file) const {
        return folder_.path("out/" + file);
    }
    std::string write(const std::string& file, const std::string& content) const {
        return folder_.write("out/" + file, content);
    }
    void permit(const std::string& file, mode_t mode) const {
        EXPECT_EQ(::chmod(folder_.path(file).c_str(), mode), 0) << file;
    }
    void give(const std::string& file, uid_t user, gid_t group) const {
        EXPECT_EQ(::chown(folder_.path(file).c_str(), user, group), 0) << file;
    }
    std::set<std::string> outputs() const {
        return entriesOf(folder_.path("out"));
    }

    /** Lets the coverage counters of an instrumented program go where every user can write. */
    void prepareForOtherUsers() {
        std::filesystem::create_directory(folder_.path("coverage"));
        permit("coverage", 0777);
        environment_.push_back("GCOV_PREFIX=" + folder_.path("coverage"));
    }

    /** A run with this output name, in the folder of the output, behind a command that ends in running the program. */
    ProgramResult run(const std::string& output, Command wrapper = {}, const std::string& redirection = "") const {
        ProgramOptions options;
        options.folder = folder_.path("out");
        options.wrapper = std::move(wrapper);
        options.shellRedirection = redirection;
        options.environment = environment_;
        return runCommand(joined({folder_.path("program"), "-i", folder_.path("in.xml"), "-o", output}, arguments_),
                          options);
    }

    const TemporaryFolder folder_;
    std::string expected_;                 ///< what an undisturbed run writes
    std::vector<std::string> environment_; ///< settings for every run
    Command arguments_;                    ///< further arguments of every run
};

/** Runs whose calls of the kernel a tracer writes down, or makes fail. */
class TracedRun : public OutputRun {
protected:
    void SetUp() override {
        REQUIRE_PRIVILEGE(runCommand({"strace", "-o", "/dev/null", "true"}).status == 0,
                          "strace and the right to trace");
        // The search for leaks traces the program too, which only one can do.
        environment_ = {"ASAN_OPTIONS=detect_leaks=0"};
    }

    /** A run behind the tracer with these further arguments, which may end in another command. */
    ProgramResult runTraced(const std::string& output, const Command& arguments, const Command& before = {}) const {
        Command wrapper = joined(before, {"strace", "-q", "-o", folder_.path("trace")});
        wrapper = joined(output == kInPlace ? joined(kWithOpenOutput, wrapper) : wrapper, arguments);
        return run(output, wrapper);
    }
    /** What the tracer has written of the last run. */
    std::string trace() const {
        return folder_.read("trace");
    }
};

/** Expects that a program has ended by itself, with this status and this message, and has said nothing else. */
inline void expectEnd(const ProgramResult& result, int status, const std::string& message) {
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, message);
}

inline const std::string kNotOpened = "File open error: Unable to open output file\n";

inline std::string notWritten(const std::string& name, const std::string& reason) {
    return "File write error: Unable to write output file " + name + ": " + reason + "\n";
}

/** Said where a new file is there and its folder could not be synchronised. */
inline std::string notCertain(const std::string& name, const std::string& reason) {
    return notWritten(name, reason + "; the new file stands under its name, but it is not certain that it survives a "
                                     "power cut");
}

/** A command that lets no file of a program grow beyond so many KiB; the output has over 100. */
inline Command limitedTo(int kibibytes) {
    return {"bash", "-c", "ulimit -f " + std::to_string(kibibytes) + "; exec \"$0\" \"$@\""};
}

#endif
