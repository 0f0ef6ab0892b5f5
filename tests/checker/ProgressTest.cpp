#include "TemporaryFolder.h"
#include "checked.h"

#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/** Starts a check of a missing file and of another one. @param in the standard input, @param err the error stream */
pid_t startCheck(const std::string& file, int in, int err) {
    const pid_t process = ::fork();
    if (process == 0) {
        ::dup2(in, STDIN_FILENO);
        ::dup2(err, STDERR_FILENO);
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        ::execl(VEKO_EXECUTABLE, "veko", "check", "missing.xml", file.c_str(), nullptr);
        ::_exit(127);
    }
    return process;
}

void expectEnd(pid_t check) {
    int status = 0;
    EXPECT_EQ(::waitpid(check, &status, 0), check);
    EXPECT_EQ(WEXITSTATUS(status), 2); // for the missing file
}

/** A check of a pipe, which lasts until something has been written into it. */
class LongCheck {
public:
    /** @param err the error stream, a descriptor */
    LongCheck(const TemporaryFolder& folder, const std::string& name, int err) : pipe_(folder.path(name)) {
        EXPECT_EQ(::mkfifo(pipe_.c_str(), 0600), 0);
        process_ = startCheck(pipe_, STDIN_FILENO, err);
    }
    /** Writes the document, and waits for the end. */
    void finish() {
        std::ofstream(pipe_) << kFaultless;
        expectEnd(process_);
    }

private:
    std::string pipe_;
    pid_t process_;
};

/** A terminal, which a program and a person use. */
struct Terminal {
    Terminal() {
        EXPECT_EQ(::openpty(&person, &program, nullptr, nullptr, nullptr), 0);
    }
    int person = -1;
    int program = -1;
};

/** What a terminal shows, up to some text of it, or to the end of all that can write to it. */
std::string shownUpTo(const std::string& text, int terminal) {
    std::string shown;
    char byte = 0;
    while (shown.find(text) == std::string::npos && ::read(terminal, &byte, 1) == 1) {
        shown += byte;
    }
    return shown;
}

} // namespace

TEST(Progress, IsALineOfItsOwnOnATerminalAfterASecondAndGoesAwayAtTheEnd) {
    const TemporaryFolder folder;
    const int file = ::open(folder.write("err", "").c_str(), O_WRONLY);
    LongCheck withoutTerminal(folder, "first", file);
    ::close(file);

    const Terminal terminal;
    LongCheck onTerminal(folder, "second", terminal.program);
    ::close(terminal.program);
    const std::string line = "\r\x1b[KChecking document 2 of 2, 1 s";
    EXPECT_EQ(shownUpTo(line, terminal.person), "missing.xml could not be opened\r\n" + line);

    onTerminal.finish();
    const std::string end = shownUpTo("\n", terminal.person); // there is none
    EXPECT_TRUE(end.ends_with("\r\x1b[K")) << testing::PrintToString(end);
    withoutTerminal.finish(); // It has lasted longer.
    EXPECT_EQ(folder.read("err"), "missing.xml could not be opened\n");
    ::close(terminal.person);
}

TEST(Progress, StaysAwayWhileTheDocumentMayBeTyped) {
    const TemporaryFolder folder;
    const Terminal terminal;
    const pid_t typed = startCheck("-", terminal.program, terminal.program);
    shownUpTo("missing.xml could not be opened\r\n", terminal.person);

    const Terminal other;
    LongCheck later(folder, "later", other.program);
    shownUpTo("Checking document 2 of 2, 1 s", other.person); // The first check has waited longer.
    later.finish();

    EXPECT_EQ(::write(terminal.person, "typed\n", 6), 6);
    EXPECT_EQ(shownUpTo("\n", terminal.person), "typed\r\n");
    EXPECT_EQ(::write(terminal.person, "\x04", 1), 1); // the end of the input
    expectEnd(typed);
    for (const int side : {terminal.person, terminal.program, other.person, other.program}) {
        ::close(side);
    }
}
