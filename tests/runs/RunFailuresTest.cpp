#include "fieldDefinition.h"
#include "outputRun.h"

#include <gtest/gtest.h>

// Runs that fail: the whole message, the exit status, both streams, no output file, and an older one as it was.

namespace {

using Names = std::set<std::string>;

constexpr const char* kOlderOutput = "<older>output</older>\n";

struct FailingRun {
    std::string name;
    std::string document;
    /** The whole error stream; "INPUT" stands for the name of the input file. */
    std::string message;
    std::vector<std::string> arguments;
};

void PrintTo(const FailingRun& run, std::ostream* stream) {
    *stream << run.name;
}

void expectFailure(const ProgramResult& result, const std::string& message) {
    expectEnd(result, 1, message);
}

class RunFailures : public testing::TestWithParam<FailingRun> {
protected:
    ProgramResult run() const {
        std::vector<std::string> arguments = {"-i", folder.write("in.xml", GetParam().document), "-o",
                                              folder.path("out.xml")};
        arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
        return runVekoConfigure(arguments);
    }

    std::string message() const {
        const std::string& text = GetParam().message;
        return text.find("INPUT") == std::string::npos ? text : replaced(text, "INPUT", folder.path("in.xml"));
    }

    const TemporaryFolder folder;
};

} // namespace

TEST_P(RunFailures, SayWhyAndLeaveTheOutputAsItWas) {
    for (const bool exists : {false, true}) {
        if (exists) {
            folder.write("out.xml", kOlderOutput);
        }
        expectFailure(run(), message());
        EXPECT_EQ(entriesOf(folder.name()), exists ? Names({"in.xml", "out.xml"}) : Names({"in.xml"}));
    }
    EXPECT_EQ(folder.read("out.xml"), kOlderOutput);
}

namespace {

std::string nameOf(const testing::TestParamInfo<FailingRun>& info) {
    return info.param.name;
}

std::string withConfigure(const std::string& configure) {
    FieldDefinition definition;
    definition.configure = configure;
    return definition.text();
}

std::string withRoot(const std::string& attributes) {
    FieldDefinition definition;
    definition.rootAttributes = attributes;
    return definition.text();
}

/** A field of these targets in front of which nothing stands, and behind a field that succeeds. */
std::string inSecondField(const std::string& targets) {
    return documentWithFields({ordinaryFieldXml(), fieldXml(targets)});
}

/** A document whose field is 70 degrees from the zenith when it culminates. */
std::string southernField(const std::string& positionAngle) {
    FieldDefinition definition;
    definition.observationAttributes = "pa=\"" + positionAngle + "\"";
    definition.fields = {R"(<field RA_d="150.000000" Dec_d="-41.000000">)" +
                         targetXml("T", "Galaxy", "150.10000000", "-41.10000000") +
                         targetXml("G", "Star", "150.10000000", "-41.20000000") + "</field>"};
    return definition.text();
}

const std::string kUnparsable = "Error parsing field definition file: INPUT is not valid XML\n";
const std::string kMismatch = "Error parsing field definition file: Data model version mismatch\n";
const std::string kNoConfigure = "Configure element not found\n";
const std::string kBadHourAngle = "Bad hour angle in XML";
const std::string kHorizon = "field is below the horizon limit\n";
const std::string kRotator = "field position angle is outside the rotator limits\n";
const std::string kNoScience = "No science target in field\n";
const std::string kNoFibre = "fibre assigned to science target does not exist\n";

const FailingRun kDocumentRuns[] = {
    {"InputThatEndsEarly", FieldDefinition().text().substr(0, 200), kUnparsable, {}},
    {"InputWithAnotherDataModelVersion", withRoot(R"(datamver="8.0")"), kMismatch, {}},
    {"NoConfigureElement", withConfigure(""), kNoConfigure, {}},
    {"ConfigureElementOutsideTheObservation", withConfigure("<x><configure/></x>"), kNoConfigure, {}},
    {"BadEpoch", documentWithConditions(R"(epoch="soon")"), "bad epoch attribute in conditions element\n", {}},
    {"HourAngleOfLetters", documentWithConditions(R"(epoch="2024.5" ha="abc")"), kBadHourAngle, {}},
    {"EmptyHourAngle", documentWithConditions(R"(epoch="2024.5" ha="")"), kBadHourAngle, {}},
    {"BadHourAngleBesideAnOptionOf100",
     documentWithConditions(R"(epoch="2024.5" ha="abc")"),
     kBadHourAngle,
     {"--ha", "100"}},
};

const FailingRun kPointingRuns[] = {
    {"BelowTheHorizonLimit", southernField("0"), kHorizon, {}},
    {"BelowAHorizonLimitOfTheZenith", FieldDefinition().text(), kHorizon, {"--horizon_limit", "90"}},
    {"BelowTheHorizonLimitAtTheHourAngle", FieldDefinition().text(), kHorizon, {"--ha", "6"}},
    {"OutsideTheRotatorLimits", documentWithObservation(R"(pa="180")"), kRotator, {}},
    {"JustOutsideTheRotatorHighLimit", documentWithObservation(R"(pa="136")"), kRotator, {}},
    {"JustOutsideTheRotatorLowLimit", documentWithObservation(R"(pa="-136")"), kRotator, {}},
    {"BelowTheHorizonLimitAndOutsideTheRotatorLimits", southernField("180"), kHorizon, {}},
    {"OutsideTheLimitsWithoutScienceTarget",
     replaced(documentWithObservation(R"(pa="180")"), "targuse=\"T\"", "targuse=\"C\""),
     kRotator,
     {}},
};

const FailingRun kFieldRuns[] = {
    {"NoScienceTarget", documentWithFields({fieldXml(guideStarXml())}), kNoScience, {}},
    {"NoGuideStar", documentWithFields({fieldXml(scienceTargetXml())}), kNoScience, {}},
    {"ScienceTargetInAGroup",
     documentWithFields({fieldXml("<group>" + scienceTargetXml() + "</group>" + guideStarXml())}),
     kNoScience,
     {}},
    {"FibreBeyondTheBundle",
     documentWithFields({fieldXml(scienceTargetXml("fibreid=\"604\"") + guideStarXml())}),
     kNoFibre,
     {}},
    {"FibreZero", documentWithFields({fieldXml(scienceTargetXml("fibreid=\"0\"") + guideStarXml())}), kNoFibre, {}},
    {"GuideStarOnTheOtherSideOfTheSky",
     documentWithFields({fieldXml(scienceTargetXml() + targetXml("G", "Star", "330.10000000", "-20.10000000"))}),
     "celestial position not in the tangent plane\n",
     {}},
};

const FailingRun kSecondFieldRuns[] = {
    {"NoScienceTarget", inSecondField(guideStarXml()), kNoScience, {}},
    {"NoGuideStar", inSecondField(scienceTargetXml()), kNoScience, {}},
    {"LowerCaseScienceTarget",
     inSecondField(targetXml("t", "Galaxy", "150.10000000", "20.10000000") + guideStarXml()),
     kNoScience,
     {}},
    {"MissingFibre", inSecondField(scienceTargetXml("fibreid=\"604\"") + guideStarXml()), kNoFibre, {}},
    {"BadScienceTarget",
     inSecondField(targetXml("T", "Galaxy", "150.1", "20.10000000") + guideStarXml()),
     "Target Galaxy targra '150.1' does not have enough precision\n",
     {}},
    // Found only after the science target's 603 records have been written into the tree.
    {"BadGuideStar",
     inSecondField(scienceTargetXml() + targetXml("G", "Star", "10:00:24", "20.20000000")),
     "Target Star has an invalid targra '10:00:24'\n",
     {}},
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Document, RunFailures, testing::ValuesIn(kDocumentRuns), nameOf);
INSTANTIATE_TEST_SUITE_P(Pointing, RunFailures, testing::ValuesIn(kPointingRuns), nameOf);
INSTANTIATE_TEST_SUITE_P(Field, RunFailures, testing::ValuesIn(kFieldRuns), nameOf);
INSTANTIATE_TEST_SUITE_P(SecondField, RunFailures, testing::ValuesIn(kSecondFieldRuns), nameOf);

TEST(RunFailure, NamesAnInputThatCannotBeOpened) {
    const TemporaryFolder folder;
    for (const std::string& input : {folder.path("none.xml"), folder.name(), std::string()}) {
        expectFailure(runVekoConfigure({"-i", input, "-o", folder.path("out.xml")}),
                      "Error parsing field definition file: " + input + " could not be opened\n");
        EXPECT_FALSE(folder.contains("out.xml"));
    }
}
