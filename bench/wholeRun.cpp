/**
 * @file
 * Time of a whole run within a process, from reading the input document to writing the output.
 */
#include "pointing.h"
#include "repeatedField.h"
#include "veko_configure.h"

#include "CommandLine.h"
#include "Estimates.h"
#include "ProcessState.h"
#include "angles.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <unistd.h>

namespace {

void wholeRun(benchmark::State& state) {
    const auto folder = std::filesystem::temp_directory_path() / ("veko-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directory(folder);
    const std::string input = folder / "input.xml";
    std::ofstream(input) << repeatedField(static_cast<int>(state.range(0)));
    for (auto iteration : state) {
        const pos::PosConfig config = embeddedConfig();
        const double zenithDistanceLimit = pos::degreesToRadians(65.0);
        if (veko_configure(config, input, folder / "output.xml", pos::kNotGiven, pos::kHourAngleNotGiven,
                           pos::kNotGiven, zenithDistanceLimit) != 0) {
            state.SkipWithError("the run failed");
            break;
        }
    }
    std::filesystem::remove_all(folder);
}

void help(benchmark::State& state) {
    const char* const arguments[] = {"veko_configure", "--help"};
    std::ostringstream listing;
    std::streambuf* const standardOutput = std::cout.rdbuf(listing.rdbuf());
    for (auto iteration : state) {
        listing.str({});
        benchmark::DoNotOptimize(pos::runCommandLine(2, arguments));
    }
    std::cout.rdbuf(standardOutput);
}

BENCHMARK(wholeRun)->Name("WholeRun/fields")->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(help)->Name("Help");

} // namespace

int main(int argc, char* argv[]) {
    // As the program does.
    ::setenv("QT_HASH_SEED", "0", 1);
    pos::prepareProcess();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
