#include "HelpFormatter.h"
#include "ProcessState.h"
#include "Version.h"
#include "commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <new>

namespace {

int run(int argc, char** argv) {
    CLI::App program("help with field definitions, beside veko_configure", "veko");
    program.formatter(std::make_shared<pos::HelpFormatter>());
    program.require_subcommand(1);
    program.set_help_flag("-h,--help", "list the options");
    program.set_version_flag("--version", "veko " + pos::configure_version, "tell the version");
    const std::vector<pos::Command> commands = pos::addCommands(program);
    for (const pos::Command& command : commands) {
        command.arguments->group("Commands")->fallthrough(); // --version is an option of each
    }
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : pos::kTrouble;
    }
    const auto asked = std::find_if(commands.begin(), commands.end(),
                                    [](const pos::Command& command) { return command.arguments->parsed(); });
    const int status = asked->run();
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "The standard output could not be written" << std::endl;
        return pos::kTrouble;
    }
    return status;
}

} // namespace

int main(int argc, char* argv[]) {
    // The XML library orders attributes by a hash with a random seed; with this one the same input gives the same
    // bytes.
    ::setenv("QT_HASH_SEED", "0", 1);
    pos::prepareProcess();
    // A reader that has seen enough, as head does, ends a command as it ends other tools.
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "There is not enough memory" << std::endl;
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
    }
    return pos::kTrouble;
}
