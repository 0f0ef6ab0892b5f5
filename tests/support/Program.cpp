#include "Program.h"

#include "TemporaryFolder.h"
#include "schemaCheck.h"
#include "xml.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/** In the child: sets up streams, folder and environment, and becomes the command. Never returns. */
[[noreturn]] void becomeCommand(std::vector<char*> arguments, const ProgramOptions& options, const std::string& out,
                                const std::string& err) {
    const auto redirect = [](const char* name, int flags, int descriptor) {
        const int file = ::open(name, flags, 0600);
        if (file < 0 || ::dup2(file, descriptor) < 0) {
            ::_exit(126);
        }
        ::close(file);
    };
    // The tests' own process ignores these two, which a child would inherit.
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    static_cast<void>(std::signal(SIGXFSZ, SIG_DFL));
    redirect("/dev/null", O_RDONLY, STDIN_FILENO);
    redirect(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    redirect(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    for (const std::string& setting : options.environment) {
        const std::size_t equals = setting.find('=');
        ::setenv(setting.substr(0, equals).c_str(), setting.substr(equals + 1).c_str(), 1);
    }
    if (!options.folder.empty() && ::chdir(options.folder.c_str()) != 0) {
        ::_exit(126);
    }
    ::execvp(arguments.front(), arguments.data());
    ::_exit(127);
}

/** The value of an option, in the three ways of giving one. @return empty where it is not given */
std::string optionValue(const std::vector<std::string>& arguments, const std::string& shortName,
                        const std::string& longName) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if ((arguments[i] == shortName || arguments[i] == longName) && i + 1 < arguments.size()) {
            return arguments[i + 1];
        }
        if (arguments[i].starts_with(longName + "=")) {
            return arguments[i].substr(longName.size() + 1);
        }
    }
    return "";
}

/** The bytes of a regular file of usual size; empty for anything else. */
std::string fileBytes(const std::string& name, const ProgramOptions& options) {
    constexpr std::uintmax_t kUsualSize = 4'000'000;
    const std::filesystem::path path = std::filesystem::path(options.folder) / name;
    std::error_code error;
    const bool isRegular = !name.empty() && std::filesystem::is_regular_file(path, error);
    return isRegular && std::filesystem::file_size(path, error) <= kUsualSize ? readBytes(path) : "";
}

} // namespace

ProgramResult runCommand(const std::vector<std::string>& command, const ProgramOptions& options) {
    std::vector<std::string> words = options.wrapper;
    if (!options.shellRedirection.empty()) {
        words.insert(words.end(), {"bash", "-c", "\"$0\" \"$@\" " + options.shellRedirection});
    }
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);

    const TemporaryFolder streams;
    const pid_t child = ::fork();
    if (child == 0) {
        becomeCommand(arguments, options, streams.path("out"), streams.path("err"));
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    ProgramResult result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.out = streams.read("out");
    result.err = streams.read("err");
    return result;
}

ProgramResult runVekoConfigure(const std::vector<std::string>& arguments, const ProgramOptions& options) {
    std::vector<std::string> command = {vekoConfigureExecutable()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    // Read before the run, which may replace it.
    const std::string input = fileBytes(optionValue(arguments, "-i", "--input"), options);
    ProgramResult result = runCommand(command, options);
    const std::string output = fileBytes(optionValue(arguments, "-o", "--output"), options);
    if (result.status == 0 && !input.empty() && !output.empty()) {
        EXPECT_EQ(againstOutput(input, output), "");
    }
    return result;
}

std::string vekoConfigureExecutable() {
    return VEKO_CONFIGURE_EXECUTABLE;
}

std::string configuredBytes(const std::string& document, const std::vector<std::string>& arguments,
                            const ProgramOptions& options) {
    const TemporaryFolder folder;
    std::vector<std::string> all = {"-i", folder.write("in.xml", document), "-o", folder.path("out.xml")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    expectSilentSuccess(runVekoConfigure(all, options));
    return folder.read("out.xml");
}

QDomDocument configured(const std::string& document, const std::vector<std::string>& arguments,
                        const ProgramOptions& options) {
    return parseDocument(configuredBytes(document, arguments, options));
}

void expectSilentSuccess(const ProgramResult& result) {
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
}
