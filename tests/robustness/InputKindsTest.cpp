#include "TemporaryFolder.h"
#include "fileAccess.h"
#include "hostileRun.h"
#include "measuredRun.h"
#include "surroundings.h"

#include <filesystem>
#include <future>
#include <gtest/gtest.h>

// Inputs that are no ordinary files, and files without an end.

namespace {

class InputKinds : public testing::Test {
protected:
    /** Fails the test unless the program refuses such a document and such a configuration, in little memory. */
    void expectRefused(const std::string& name, const std::string& asDocument, const std::string& asConfiguration,
                       const ProgramOptions& options = {}) const {
        const MeasuredRun document = measuredRun({"-i", name, "-o", output_}, options);
        EXPECT_EQ(document.result.status, 1);
        EXPECT_EQ(document.result.err, asDocument);
        expectLittleMemory(document, kMaxEndless);
        const MeasuredRun configuration = measuredRun({"-c", name, "-i", name, "-o", output_}, options);
        EXPECT_EQ(configuration.result.status, 1);
        EXPECT_EQ(configuration.result.err, asConfiguration);
        expectLittleMemory(configuration, kMaxEndless);
        EXPECT_EQ(folder_.read("out.xml"), "old");
    }
    static std::string tooLarge(const std::string& name) {
        return "Error parsing field definition file: " + name + " is larger than 256 MiB\n";
    }
    static std::string tooLargeAsConfiguration(const std::string& name) {
        return name + " is larger than 1 MiB\n";
    }
    static std::string notOpened(const std::string& name) {
        return "Error parsing field definition file: " + name + " could not be opened\n";
    }
    static std::string notOpenedAsConfiguration(const std::string& name) {
        return "Unable to open config file: " + name + "\n";
    }

    const TemporaryFolder folder_;
    const std::string output_ = folder_.write("out.xml", "old");
};

} // namespace

TEST_F(InputKinds, DirectoryIsNotOpened) {
    expectRefused(folder_.name(), notOpened(folder_.name()), notOpenedAsConfiguration(folder_.name()));
}

TEST_F(InputKinds, FifoIsReadToItsEnd) {
    const std::string fifo = folder_.path("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const std::string document = example("sombrero_south");
    const std::future<void> writer = std::async(std::launch::async, [&] { folder_.write("fifo", document); });
    const ProgramResult result = runVekoConfigure({"-i", fifo, "-o", output_});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_NE(folder_.read("out.xml").find("Sombrero"), std::string::npos);
}

TEST_F(InputKinds, FifoWithoutAnEndIsGivenUp) {
    const std::string fifo = folder_.path("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string endless : {"yes '<field_definition>'", R"(tr '\0' '\r' </dev/zero)"}) {
        SCOPED_TRACE(endless);
        ProgramOptions options;
        options.wrapper = {"bash", "-c", endless + R"( >"$0" & exec "$@")", fifo};
        expectRefused(fifo, tooLarge(fifo), tooLargeAsConfiguration(fifo), options);
    }
}

TEST_F(InputKinds, DevicesThatGiveNothingAreNoDocuments) {
    const std::string null = folder_.path("null");
    REQUIRE_PRIVILEGE(makeMemoryDevice(null, 3), "the right to make devices");
    expectRefused(null, "Error parsing field definition file: " + null + " is not valid XML\n",
                  "No such node (<xmlattr>.datamver)\n");
}

TEST_F(InputKinds, DevicesWithoutAnEndAreGivenUp) {
    for (const unsigned int minor : {5U, 7U, 9U}) { // zero, full, urandom
        const std::string device = folder_.path("device" + std::to_string(minor));
        REQUIRE_PRIVILEGE(makeMemoryDevice(device, minor), "the right to make devices");
        expectRefused(device, tooLarge(device), tooLargeAsConfiguration(device));
    }
}

TEST_F(InputKinds, FilesOverTheLimitAreGivenUp) {
    const std::string name = folder_.write("large.xml", "<field_definition/>");
    std::filesystem::resize_file(name, pos::kMaxFileSize + 1);
    expectRefused(name, tooLarge(name), tooLargeAsConfiguration(name));
}
