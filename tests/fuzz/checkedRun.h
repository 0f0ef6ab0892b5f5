#ifndef POS_TESTS_CHECKEDRUN_H
#define POS_TESTS_CHECKEDRUN_H

#include "TemporaryFolder.h"

#include <cstdint>
#include <functional>
#include <string>

namespace pos {
class PosConfig;
}

/** What a run takes from the command line beside its names. */
struct RunNumbers {
    double epoch = 0.0;       ///< Julian years; 0 for the document's
    double hourAngle = 100.0; ///< hours; 100 for the document's
    double pressure = 0.0;    ///< millibar; 0 for the document's
    double horizonLimit = 25; ///< degrees
};

/** Says what did not hold, and ends the process so that the fuzzer keeps the input. */
[[noreturn]] void fail(const std::string& what);

/** Fails unless a claim holds. */
inline void require(bool holds, const std::string& claim) {
    if (!holds) {
        fail(claim);
    }
}

/** The bytes of a file; none where it cannot be read. */
std::string bytesOf(const std::string& name);

/** Replaces or makes a file. */
void writeBytes(const std::string& name, const std::string& bytes);

/** Performs a call that may throw a std::exception, with a message. @return whether it did not */
bool endsOrExplains(const std::function<void()>& call);

/**
 * Performs a call that gives an exit status.
 *
 * Fails unless it gives 0 in silence, 1 with a message, or a std::exception with a message.
 *
 * @return the status with which the program would end
 */
int exitStatus(const std::function<int()>& run);

/**
 * A folder in which runs are held to what every run promises: a configuration of its own with a bundle of ten fibres,
 * an input, and an older output in a folder of its own.
 */
class RunFolder {
public:
    RunFolder();

    /** The absolute name of a file in the folder. */
    std::string path(const std::string& file) const {
        return folder_.path(file);
    }
    /** Names of the configuration and what it names. */
    std::string configuration() const {
        return path("conf/own.xml");
    }
    std::string map() const {
        return path("conf/data/map.xml");
    }
    std::string bundle() const {
        return path("conf/data/bundle.xml");
    }
    std::string input() const {
        return path("in.xml");
    }
    std::string output() const {
        return path("out/out.xml");
    }

    /**
     * Performs a call that gives an exit status. Fails as exitStatus does, and unless the output is a document that
     * loads after 0 and the older one otherwise, with nothing else beside it. Then puts the older output back.
     */
    void check(const std::function<int()>& run) const;

    /** A checked configuration run on the input. */
    void configure(const pos::PosConfig& config, const RunNumbers& numbers) const;

private:
    TemporaryFolder folder_;
};

/** The text of a file of the source tree. */
std::string sourceText(const std::string& file);

#endif
