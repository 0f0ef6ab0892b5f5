#include "Program.h"
#include "TemporaryFolder.h"
#include "fieldDefinition.h"
#include "xmlParse.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

// What happens when there is only so much memory.

namespace {

constexpr int kFields = 10;
constexpr int kLargestLimit = 4 * 1024 * 1024; // KiB; every run ends well below it

/** Starts the program with a limit of its address space, in KiB. */
ProgramResult runWithin(int limit, const std::vector<std::string>& arguments) {
    ProgramOptions options;
    options.wrapper = {"bash", "-c", "ulimit -c 0; ulimit -v " + std::to_string(limit) + "; exec \"$0\" \"$@\""};
    return runVekoConfigure(arguments, options);
}

/** The least memory, in KiB, in which the program is loaded with its libraries, which shows by its giving help. */
int neededForLoading() {
    int tooLittle = 0;
    int enough = kLargestLimit;
    while (enough - tooLittle > 4) {
        const int between = tooLittle + (enough - tooLittle) / 2;
        (runWithin(between, {"--help"}).status == 0 ? enough : tooLittle) = between;
    }
    return enough;
}

/** Ends a process that parses a document with so much memory left: with 0 where it could, 1 where that is too little.
 */
[[noreturn]] void parseWithin(const QByteArray& document, std::size_t bytes) {
    constexpr rlimit kNoMore = {0, 0};
    ::setrlimit(RLIMIT_AS, &kNoMore);
    void* const left = std::malloc(bytes);
    for (std::size_t size = 1 << 20; size >= 16; size /= 2) {
        while (std::malloc(size) != nullptr) {
        }
    }
    std::free(left);
    int status = 0;
    try {
        pos::parseXml(document, "a.xml");
    } catch (const std::bad_alloc&) {
        status = 1;
    } catch (...) {
        status = 2;
    }
    ::_exit(status);
}

} // namespace

TEST(MemoryLimit, OfTheParserIsNoFaultOfTheDocument) {
    constexpr std::size_t kStep = 128;
    const QByteArray document = "<a b='c'><d/></a>";
    int status = 1;
    int refused = 0;
    for (std::size_t bytes = kStep; status == 1; bytes += kStep) {
        const pid_t child = ::fork();
        if (child == 0) {
            parseWithin(document, bytes);
        }
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status)) << bytes;
        status = WEXITSTATUS(status);
        refused += status;
    }
    EXPECT_EQ(status, 0);
    EXPECT_GE(refused, 20);
}

TEST(MemoryLimit, EndsARunWithTheWholeDocumentOrAMessage) {
    constexpr int kStep = 3 * 1024 + 512; // KiB, for about 20 runs
    const TemporaryFolder folder;
    const std::string input =
        folder.write("in.xml", documentWithFields(std::vector<std::string>(kFields, ordinaryFieldXml())));
    const std::string output = folder.path("out.xml");
    ASSERT_EQ(runVekoConfigure({"-i", input, "-o", output}).status, 0);
    const std::string expected = readBytes(output);

    int limit = neededForLoading();
    int refused = 0;
    for (bool isWritten = false; !isWritten; limit += kStep) {
        ASSERT_LT(limit, kLargestLimit);
        SCOPED_TRACE(std::to_string(limit) + " KiB");
        folder.write("out.xml", "old");
        const ProgramResult result = runWithin(limit, {"-i", input, "-o", output});
        isWritten = result.status == 0;
        EXPECT_EQ(result.status, isWritten ? 0 : 1);
        EXPECT_EQ(result.signal, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, isWritten ? "" : "There is not enough memory to configure the field definition\n");
        EXPECT_TRUE(folder.read("out.xml") == (isWritten ? expected : "old"));
        EXPECT_EQ(entriesOf(folder.name()), std::set<std::string>({"in.xml", "out.xml"}));
        refused += isWritten ? 0 : 1;
    }
    EXPECT_GE(refused, 10);
}

TEST(MemoryLimit, IsNoFaultOfTheInput) {
    // Just above what loading needs, memory ends while the configuration is read, and a little later with the input.
    const TemporaryFolder folder;
    const std::string input = folder.write("in.xml", FieldDefinition().text());
    const int least = neededForLoading();
    int refused = 0;
    for (int limit = least; limit < least + 4096; limit += 64) {
        const ProgramResult result = runWithin(limit, {"-i", input, "-o", folder.path("out.xml")});
        EXPECT_EQ(result.status, 1) << limit;
        EXPECT_EQ(result.err, "There is not enough memory to configure the field definition\n") << limit;
        EXPECT_FALSE(folder.contains("out.xml")) << limit;
        ++refused;
    }
    EXPECT_EQ(refused, 64);
}
