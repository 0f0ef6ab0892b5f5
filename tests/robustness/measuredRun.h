#ifndef POS_TESTS_MEASUREDRUN_H
#define POS_TESTS_MEASUREDRUN_H

#include "Program.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <string>

/** A run of the program whose memory was measured. */
struct MeasuredRun {
    ProgramResult result;
    double mebibytes = 0; ///< most that it had at a time
};

inline MeasuredRun measuredRun(const std::vector<std::string>& arguments, ProgramOptions options = {}) {
    const TemporaryFolder folder;
    for (const std::string& word : {std::string("python3"), std::string(POS_MEASURE_SCRIPT), folder.path("memory")}) {
        options.wrapper.push_back(word);
    }
    MeasuredRun run;
    run.result = runVekoConfigure(arguments, options);
    run.mebibytes = std::stod(folder.read("memory")) / 1024;
    return run;
}

/** What a document of up to 10 MB that is refused may take, MiB. */
inline constexpr double kMaxRefused = 256;
/** What may be read of a file without an end, MiB, and the program. */
inline constexpr double kMaxEndless = 256 + 32;

/** Fails the test when a run had more memory than so many MiB. The sanitizers need more of it. */
inline void expectLittleMemory(const MeasuredRun& run, double maxMebibytes = kMaxRefused) {
    EXPECT_GT(run.mebibytes, 1);
    EXPECT_LT(run.mebibytes, POS_SANITIZE ? 8 * maxMebibytes : maxMebibytes);
}

#endif
