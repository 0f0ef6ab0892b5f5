#ifndef POS_TESTS_HOSTILERUN_H
#define POS_TESTS_HOSTILERUN_H

#include "PosConfig.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "surroundings.h"

#include <functional>
#include <string>

/** How a run in this process ended. */
struct RunEnd {
    enum class Kind {
        Configured, ///< result 0
        Refused,    ///< result 1
        Thrown,     ///< a standard exception
        Other       ///< anything else
    };
    Kind kind = Kind::Other;
    std::string message; ///< what the error stream got, or the exception said
    std::string out;     ///< standard output
    /** The instrument is the tests' own, so that a document that keeps to its schema has an output that does. */
    bool instrumentIsWhole = true;
};

/** A configuration of ten fibres, with files of its own in a folder, each of which a test may replace. */
struct SmallInstrument {
    std::string configuration; ///< XML
    std::string map;
    std::string bundle;
};

/** The site and limits of the embedded configuration, its optics, and ten fibres of every kind. */
SmallInstrument smallInstrument();

/** The same configuration in the INFO syntax. */
std::string smallInfoConfiguration();

/** The example documents, by name. */
std::vector<std::string> exampleNames();
std::string example(const std::string& name);

/**
 * Runs in this process, each over an old output file, and the promise that holds for every one of them: it ends with a
 * result of 0 or 1 or with a standard exception; a result of 1 and an exception come with a message; nothing else is
 * printed; the old output is whole unless the result is 0, and then the output is a document that loads and,
 * where the instrument is whole, keeps to its schema if the input did.
 */
class HostileRun : public ProcessWideState {
protected:
    HostileRun();
    void SetUp() override;
    void TearDown() override;

    /** Replaces the bundle by one of three fibres, with which a run takes a third of the time. */
    void useThreeFibres() const;

    /** Writes a file in the folder anew; to overwrite one waits for the disk in some file systems. */
    void put(const std::string& file, const std::string& content) const;

    /** Runs on a document. @param config stands for the configuration, and may throw */
    RunEnd run(const std::string& document, const std::function<pos::PosConfig()>& config);

    /** Runs on a document with the small instrument, as it is in the folder. */
    RunEnd runSmall(const std::string& document);

    /** The configuration of the small instrument, as it is in the folder. */
    pos::PosConfig smallConfig() const;
    /** The same, from the file in the INFO syntax. */
    pos::PosConfig infoConfig() const;

    /** Counts an end, and keeps the promise's breach under the name of the case, if there is one. */
    void judge(const RunEnd& end, const std::string& caseName);

    int cases() const {
        return cases_;
    }
    /** How many of the cases were configured. */
    int configured() const {
        return configured_;
    }

private:
    // Every output is synchronised; in memory that takes no time.
    EnvironmentVariable temporaryFolders_{
        "TMPDIR", std::filesystem::is_directory("/dev/shm") ? std::optional<std::string>("/dev/shm") : std::nullopt};

protected:
    const TemporaryFolder folder_;

private:
    std::string breach(const RunEnd& end);

    std::string breaches_;
    int breachCount_ = 0;
    int cases_ = 0;
    int configured_ = 0;
};

#endif
