#include "fieldDefinition.h"
#include "fileAccess.h"
#include "hostileRun.h"
#include "measuredRun.h"

#include <gtest/gtest.h>

// Each field adds 602 targets, so that a small document can ask for more than the memory holds.

namespace {

class ManyFields : public testing::Test {
protected:
    /** An example with its field many times over, then once more as it is given here. */
    static std::string document(int fields, const std::string& last) {
        std::string text = example("sombrero_south");
        const std::size_t begin = text.find("<field ");
        return text.replace(begin, fieldOf(text).size(), repeated(fields, fieldOf(text)) + last);
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

namespace {

/** A field that is written in megabytes. */
struct LargeField {
    std::string name;
    std::string science; ///< further attributes of the science target
    std::string bundle;
};

void PrintTo(const LargeField& value, std::ostream* stream) {
    *stream << value.name;
}

std::string bundleOf(const std::string& fibres) {
    return R"(<plate_definition centre_x="0" centre_y="0" orientation="0" datamver="8.00">)" + fibres +
           "</plate_definition>";
}

std::string fibreNamed(int id, const std::string& name) {
    return "<fibre id='" + std::to_string(id) + "' pos_x='0' pos_y='-" + std::to_string(id) + "' fibre_name='" + name +
           "'/>";
}

const std::string kMegabytes(3'000'000, 'x');

const std::vector<LargeField> kLargeFields = {
    {"LongFibreNames", "", bundleOf(fibreNamed(304, kMegabytes) + fibreNamed(2, kMegabytes))},
    {"LongNoteToBeEscaped", "note='" + std::string(500'000, '"') + "&#233;' ",
     bundleOf(fibreNamed(304, "C14") + fibreNamed(2, "1A"))}};

class LargeFields : public ManyFields, public testing::WithParamInterface<LargeField> {
protected:
    /** Runs on so many fields. @return the size of the output; nothing where it was refused as too large */
    std::optional<std::uintmax_t> sizeOf(int fields) const {
        const std::string science = R"(targuse="T" )";
        folder_.write("in.xml", document(0, repeated(fields, changed(field(), science, science + GetParam().science))));
        const std::string output = folder_.path("out.xml");
        std::filesystem::remove(output);
        const ProgramResult result =
            runVekoConfigure({"-c", folder_.path("configure.xml"), "-i", folder_.path("in.xml"), "-o", output});
        if (result.status != 0) {
            EXPECT_EQ(result.err, "The output would be larger than 256 MiB\n");
            EXPECT_FALSE(std::filesystem::exists(output));
            return std::nullopt;
        }
        return std::filesystem::file_size(output);
    }

    const TemporaryFolder folder_;
};

} // namespace

TEST_P(LargeFields, AreWrittenUpToTheLimitExactly) {
    const SmallInstrument instrument = smallInstrument();
    folder_.write("configure.xml", instrument.configuration);
    folder_.write("map.xml", instrument.map);
    folder_.write("bundle.xml", GetParam().bundle);
    const std::uintmax_t one = sizeOf(1).value();
    const std::uintmax_t each = sizeOf(2).value() - one;
    const auto most = static_cast<int>(1 + (pos::kMaxFileSize - one) / each);
    EXPECT_EQ(sizeOf(most), one + (static_cast<unsigned int>(most) - 1) * each);
    EXPECT_EQ(sizeOf(most + 1), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Kinds, LargeFields, testing::ValuesIn(kLargeFields),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(ManyFields, AreNotRefusedForFibresThatAreAbsent) {
    const TemporaryFolder folder;
    const SmallInstrument instrument = smallInstrument();
    const std::string configuration = folder.write("configure.xml", instrument.configuration);
    folder.write("map.xml", instrument.map);
    std::string fibres = fibreNamed(304, "C14") + fibreNamed(2, "1A");
    for (int id = 1000; id < 1600; ++id) {
        fibres += changed(fibreNamed(id, "1B"), "/>", " status='absent'/>");
    }
    folder.write("bundle.xml", bundleOf(fibres));
    const std::string note = "note='" + std::string(520'000, 'x') + "' targuse=\"T\"";
    const std::string input = folder.write("in.xml", document(0, changed(field(), R"(targuse="T")", note)));
    const std::string output = folder.path("out.xml");
    EXPECT_EQ(runVekoConfigure({"-c", configuration, "-i", input, "-o", output}).err, "");
    EXPECT_GT(std::filesystem::file_size(output), 1'040'000);
}
