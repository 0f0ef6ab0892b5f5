#include "Program.h"
#include "TemporaryFolder.h"
#include "fieldDefinition.h"

#include <gtest/gtest.h>

// Nested input within small stacks and little memory.

namespace {

/** Starts the program within limits of bash's "ulimit". */
ProgramResult runWithin(const std::string& limit, const std::vector<std::string>& arguments) {
    ProgramOptions options;
    options.wrapper = {"bash", "-c", "ulimit -c 0; ulimit " + limit + "; exec \"$0\" \"$@\""};
    return runVekoConfigure(arguments, options);
}

} // namespace

TEST(StackLimit, NestedInputNeverOverflowsTheStack) {
    const TemporaryFolder folder;
    const std::string output = folder.path("out.xml");
    for (const int levels : {200, 256, 257, 1000, 40'000}) {
        const std::string nested = repeated(levels, "<a>") + repeated(levels, "</a>");
        const std::string input = folder.write("in.xml", nested);
        const std::string withType =
            folder.write("type.xml", "<!DOCTYPE a [" + repeated(levels, "</a>") + "]>" + repeated(levels, "<a>"));
        for (const std::string limit : {"-s 512", "-s 700", "-s 1000", "-s 1300", "-v 60000", "-v 70000"}) {
            for (const std::vector<std::string>& arguments :
                 std::vector<std::vector<std::string>>{{"-i", input, "-o", output},
                                                       {"-c", input, "-i", input, "-o", output},
                                                       {"-c", withType, "-i", input, "-o", output}}) {
                const ProgramResult result = runWithin(limit, arguments);
                EXPECT_EQ(result.signal, 0) << levels << " levels, " << limit << ", " << arguments.front();
                EXPECT_EQ(result.status, 1);
                EXPECT_NE(result.err, "");
            }
        }
    }
}

TEST(StackLimit, DeepestDocumentIsConfiguredWithinHalfAMebibyte) {
    const TemporaryFolder folder;
    const std::string example = readBytes(std::string(POS_SOURCE_FOLDER) + "/examples/sombrero_south.xml");
    const std::string root = "</field_definition>";
    const std::size_t end = example.find(root);
    // The document element is the first level.
    const std::string input = folder.write("in.xml", example.substr(0, end) + repeated(255, "<a>") +
                                                         repeated(255, "</a>") + example.substr(end));
    const ProgramResult result = runWithin("-s 512", {"-i", input, "-o", folder.path("out.xml")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_NE(folder.read("out.xml").find(std::string(255, ' ') + "<a/>"), std::string::npos);
}
