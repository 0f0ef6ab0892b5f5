#include "hostileRun.h"
#include "measuredRun.h"
#include "xmlAttacks.h"

#include <gtest/gtest.h>

// Each field adds 602 targets, so that a small document can ask for more than the memory holds.

namespace {

class ManyFields : public testing::Test {
protected:
    /** An example with its field many times over, then once more as it is given here. */
    static std::string document(int fields, const std::string& last) {
        std::string text = example("sombrero_south");
        const std::size_t begin = text.find("<field ");
        return text.replace(begin, fieldOf(text).size(), times(fields, fieldOf(text)) + last);
    }
    static std::string field() {
        return fieldOf(example("sombrero_south"));
    }
    static std::string changed(std::string text, const std::string& part, const std::string& replacement) {
        EXPECT_NE(text.find(part), std::string::npos) << part;
        return text.replace(text.find(part), part.size(), replacement);
    }

    /** Fails the test unless a document is refused before any targets are written. */
    void expectRefused(const std::string& text, const std::string& message) const {
        const TemporaryFolder folder;
        const std::string output = folder.write("out.xml", "old");
        const MeasuredRun run = measuredRun({"-i", folder.write("in.xml", text), "-o", output});
        EXPECT_EQ(run.result.status, 1);
        EXPECT_EQ(run.result.err, message);
        EXPECT_EQ(folder.read("out.xml"), "old");
        expectLittleMemory(run);
    }

private:
    static std::string fieldOf(const std::string& text) {
        const std::size_t begin = text.find("<field ");
        return text.substr(begin, text.find("</field>") + 8 - begin);
    }
};

} // namespace

TEST_F(ManyFields, AreRefusedForTheLastOfThemBeforeTheOthersFillTheMemory) {
    constexpr int kFields = 150;
    expectRefused(document(kFields, changed(field(), R"(targuse="G")", R"(targuse="R")")),
                  "No science target in field\n");
    expectRefused(document(kFields, changed(field(), R"(targuse="T")", R"(targuse="T" fibreid="9999")")),
                  "fibre assigned to science target does not exist\n");
    expectRefused(document(kFields, changed(field(), R"(targuse="T")", R"(targuse="T" targprio="x")")),
                  "Target M 104 has an invalid priority 'x'\n");
    expectRefused(document(kFields, changed(field(), R"(targuse="G")", R"(targuse="G" targprio="x")")),
                  "Target invented guide star 1 has an invalid priority 'x'\n");
    expectRefused(document(kFields, changed(field(), R"(targra="190.120000")", R"(targra="10.120000")")),
                  "celestial position not in the tangent plane\n");
}

TEST_F(ManyFields, ThatWouldFillTheMemoryAreRefused) {
    expectRefused(document(20'000, ""), "The output would be larger than 256 MiB\n");
}

TEST_F(ManyFields, OfATargetWhoseCopiesWouldFillTheMemoryAreRefused) {
    const std::string name = R"(targname="M 104")";
    expectRefused(changed(document(1, ""), name, "targname=\"" + std::string(900'000, 'x') + "\""),
                  "The output would be larger than 256 MiB\n");
}
