#include "ProcessState.h"
#include "outputRun.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const std::string kNotWritten = "The standard output could not be written\n";

/** Every way to give or to close the three standard descriptors. */
const char* const kClosings[] = {"", "<&-", ">&-", "2>&-", "<&- >&-", "<&- 2>&-", ">&- 2>&-", "<&- >&- 2>&-"};

bool closesErrorStream(const std::string& closing) {
    return closing.ends_with("2>&-");
}

/** A folder with a field definition, and a program whose streams a shell redirects. */
class StandardStreams : public testing::Test {
protected:
    StandardStreams() {
        folder_.write("in.xml", kPlainField);
        EXPECT_EQ(::mkfifo(folder_.path("pipe").c_str(), 0600), 0);
    }

    ProgramResult run(const std::vector<std::string>& arguments, const std::string& redirection) const {
        ProgramOptions options;
        options.folder = folder_.name();
        options.shellRedirection = redirection;
        return runVekoConfigure(arguments, options);
    }

    const TemporaryFolder folder_;
    /** Redirections to a pipe that nobody reads any more. */
    const std::string outputToClosedPipe_ = "3<>pipe 4>pipe 3>&- >&4 4>&-";
    const std::string errorsToClosedPipe_ = "3<>pipe 4>pipe 3>&- 2>&4 4>&-";
};

/** How a child process ends that does this. */
template <typename Action> int statusOfChild(const Action& action) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(action());
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool writable(int descriptor) {
    return ::write(descriptor, "x", 1) == 1;
}

} // namespace

TEST_F(StandardStreams, AnswerThatCannotBeWrittenIsAnError) {
    for (const std::string option : {"--help", "--version"}) {
        for (const std::string& redirection :
             {std::string("> /dev/full"), outputToClosedPipe_, std::string(">&-"), std::string("<&- >&-")}) {
            SCOPED_TRACE(option + redirection);
            expectEnd(run({option}, redirection), 1, kNotWritten);
        }
        EXPECT_EQ(run({option}, "<&- >&- 2>&-").status, 1) << option;
    }
}

TEST_F(StandardStreams, AnswerNeedsNoOtherStream) {
    for (const std::string closing : {"", "<&-", "2>&-", "<&- 2>&-"}) {
        const ProgramResult result = run({"--version"}, closing);
        EXPECT_EQ(result.status, 0) << closing;
        EXPECT_EQ(result.out, "VANTE veko_configure version 3.3.5\nVANTE data model version 8.00\n") << closing;
        EXPECT_EQ(result.err, "") << closing;
    }
}

TEST_F(StandardStreams, MessageThatCannotBeWrittenStillFails) {
    for (const std::string& redirection : {std::string("2> /dev/full"), std::string("2>&-"), errorsToClosedPipe_}) {
        for (const std::vector<std::string>& arguments :
             {std::vector<std::string>{}, {"--bogus"}, {"-i", "missing.xml", "-o", "out.xml"}}) {
            SCOPED_TRACE(redirection);
            expectEnd(run(arguments, redirection), 1, "");
            EXPECT_FALSE(folder_.contains("out.xml")) << redirection;
        }
    }
}

TEST_F(StandardStreams, RunWithClosedDescriptorsWritesTheSameDocument) {
    ASSERT_EQ(run({"-i", "in.xml", "-o", "expected.xml"}, "").status, 0);
    const std::string expected = folder_.read("expected.xml");
    ASSERT_EQ(expected.substr(expected.size() - 17), "</configuration>\n");
    for (const std::string closing : kClosings) {
        const ProgramResult result = run({"-i", "in.xml", "-o", "out.xml"}, closing);
        EXPECT_EQ(result.status, 0) << closing;
        EXPECT_EQ(folder_.read("out.xml"), expected) << closing;
        std::filesystem::remove(folder_.path("out.xml"));
    }
}

TEST_F(StandardStreams, MessageOfAFailedRunLandsInNoFile) {
    for (const std::string closing : kClosings) {
        folder_.write("out.xml", "older\n");
        const ProgramResult result = run({"-i", "in.xml", "-o", "out.xml", "--horizon_limit", "90"}, closing);
        EXPECT_EQ(result.status, 1) << closing;
        EXPECT_EQ(result.err, closesErrorStream(closing) ? "" : "field is below the horizon limit\n") << closing;
        EXPECT_EQ(folder_.read("out.xml"), "older\n") << closing;
        EXPECT_EQ(folder_.read("in.xml"), kPlainField) << closing;
    }
}

TEST_F(StandardStreams, MessageOfAFailedWriteLandsInNoFile) {
    const std::string message = "File write error: Unable to write output file out.xml: File too large\n";
    for (const std::string closing : kClosings) {
        folder_.write("out.xml", "older\n");
        ProgramOptions options;
        options.folder = folder_.name();
        // The output has over 100 kB, and a file may have 8.
        options.wrapper = {"bash", "-c", "ulimit -f 8; exec \"$0\" \"$@\" " + closing};
        SCOPED_TRACE(closing);
        expectEnd(runVekoConfigure({"-i", "in.xml", "-o", "out.xml"}, options), 1,
                  closesErrorStream(closing) ? "" : message);
        EXPECT_EQ(folder_.read("out.xml"), "older\n");
        EXPECT_EQ(entriesOf(folder_.name()), std::set<std::string>({"in.xml", "out.xml", "pipe"}));
    }
}

TEST(StandardDescriptors, ClosedOnesAreTakenAndRefuseEveryWrite) {
    for (int closed = 1; closed < 8; ++closed) {
        const int status = statusOfChild([closed] {
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                if ((closed >> descriptor & 1) != 0) {
                    ::close(descriptor);
                }
            }
            pos::prepareProcess();
            for (int descriptor = 0; descriptor < 3; ++descriptor) {
                if ((closed >> descriptor & 1) != 0 && writable(descriptor)) {
                    return 1;
                }
            }
            return ::open("/dev/null", O_WRONLY) < 3 ? 2 : 0;
        });
        EXPECT_EQ(status, 0) << "closed: " << closed;
    }
}

TEST(StandardDescriptors, OpenOnesStayWhatTheyAre) {
    const TemporaryFolder folder;
    const std::string name = folder.write("stream", "");
    const int status = statusOfChild([&] {
        const int file = ::open(name.c_str(), O_WRONLY | O_APPEND);
        for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
            if (::dup2(file, descriptor) < 0) {
                return 3;
            }
        }
        ::close(STDIN_FILENO);
        pos::prepareProcess();
        return writable(STDOUT_FILENO) && writable(STDERR_FILENO) && !writable(STDIN_FILENO) ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(folder.read("stream"), "xx");
}

TEST(StandardDescriptors, WriteToAClosedPipeIsAnErrorAndNoSignal) {
    const int status = statusOfChild([] {
        int ends[2] = {};
        if (std::signal(SIGPIPE, SIG_DFL) == SIG_ERR || ::pipe(ends) != 0) {
            return 3;
        }
        pos::prepareProcess();
        ::close(ends[0]);
        return writable(ends[1]) ? 1 : 0;
    });
    EXPECT_EQ(status, 0);
}
