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

/** A check of a pipe, which lasts until something has been written into it. */
class LongCheck {
public:
    /** @param err the error stream, a descriptor */
    LongCheck(const TemporaryFolder& folder, const std::string& name, int err) : pipe_(folder.path(name)) {
        EXPECT_EQ(::mkfifo(pipe_.c_str(), 0600), 0);
        process_ = ::fork();
        if (process_ == 0) {
            ::dup2(err, STDERR_FILENO);
            ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
            ::execl(VEKO_EXECUTABLE, "veko", "check", "missing.xml", pipe_.c_str(), nullptr);
            ::_exit(127);
        }
    }
    /** Writes the document, and waits for the end. */
    void finish() {
        std::ofstream(pipe_) << kFaultless;
        int status = 0;
        EXPECT_EQ(::waitpid(process_, &status, 0), process_);
        EXPECT_EQ(WEXITSTATUS(status), 2); // for the missing file
    }

private:
    std::string pipe_;
    pid_t process_;
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

    int terminal = -1;
    int programSide = -1;
    ASSERT_EQ(::openpty(&terminal, &programSide, nullptr, nullptr, nullptr), 0);
    LongCheck onTerminal(folder, "second", programSide);
    ::close(programSide);
    const std::string line = "\r\x1b[KChecking document 2 of 2, 1 s";
    EXPECT_EQ(shownUpTo(line, terminal), "missing.xml could not be opened\r\n" + line);

    onTerminal.finish();
    const std::string end = shownUpTo("\n", terminal); // there is none
    EXPECT_TRUE(end.ends_with("\r\x1b[K")) << testing::PrintToString(end);
    withoutTerminal.finish(); // It has lasted longer.
    EXPECT_EQ(folder.read("err"), "missing.xml could not be opened\n");
    ::close(terminal);
}
