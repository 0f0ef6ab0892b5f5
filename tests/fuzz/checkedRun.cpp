#include "checkedRun.h"

#include "Estimates.h"
#include "PosConfig.h"
#include "ProcessState.h"
#include "fieldDefinition.h"
#include "ownConfiguration.h"
#include "veko_configure.h"
#include "xmlStructure.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

namespace {

const std::string kOlderOutput = "the older output\n";

/** What the program under test says on the error stream. */
std::ostringstream& messages() {
    static std::ostringstream caught;
    return caught;
}

/** What it says on the standard output, which is not looked at. */
std::ostringstream& listings() {
    static std::ostringstream caught;
    return caught;
}

} // namespace

/** Called by the fuzzing engine before anything else: sets the process up as the program does. */
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    ::setenv("QT_HASH_SEED", "0", 1);
    pos::prepareProcess();
    std::cout.rdbuf(listings().rdbuf());
    std::cerr.rdbuf(messages().rdbuf());
    return 0;
}

void fail(const std::string& what) {
    // The streams are caught, and the fuzzer tells the rest.
    static_cast<void>(std::fprintf(stderr, "Not so: %s\n", what.c_str()));
    std::abort();
}

void writeBytes(const std::string& name, const std::string& bytes) {
    std::ofstream stream(name, std::ios::binary | std::ios::trunc);
    stream << bytes;
    stream.close();
    require(stream.good(), name + " can be written");
}

std::string bytesOf(const std::string& name) {
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

bool endsOrExplains(const std::function<void()>& call) {
    messages().str({});
    listings().str({});
    try {
        call();
        return true;
    } catch (const std::exception& error) {
        require(*error.what() != '\0', "an exception has a message");
        return false;
    }
}

int exitStatus(const std::function<int()>& run) {
    int status = 1;
    if (!endsOrExplains([&] { status = run(); })) {
        return 1;
    }
    require(status == 0 || status == 1, "the status is 0 or 1");
    require((status == 0) == messages().str().empty(), "there is a message exactly when the status is 1");
    return status;
}

RunFolder::RunFolder() {
    OwnConfiguration configuration;
    configuration.datamver = "8.00";
    configuration.fibres = tenFibres();
    configuration.write(folder_);
    fs::create_directory(path("out"));
    writeBytes(input(), kPlainField);
    writeBytes(output(), kOlderOutput);
}

void RunFolder::check(const std::function<int()>& run) const {
    const int status = exitStatus(run);
    if (status == 0) {
        require(endsOrExplains([&] { pos::loadXmlFile(output()); }), "the output is a document");
        writeBytes(output(), kOlderOutput);
    } else {
        require(bytesOf(output()) == kOlderOutput, "the older output is whole");
    }
    require(std::distance(fs::directory_iterator(path("out")), {}) == 1, "nothing is left beside the output");
}

void RunFolder::configure(const pos::PosConfig& config, const RunNumbers& numbers) const {
    check([&] {
        return veko_configure(config, input(), output(), numbers.epoch, numbers.hourAngle, numbers.pressure,
                              pos::zenithDistanceOf(numbers.horizonLimit));
    });
}

std::string sourceText(const std::string& file) {
    const std::string text = bytesOf(std::string(POS_SOURCE_FOLDER "/") + file);
    require(!text.empty(), file + " can be read");
    return text;
}
