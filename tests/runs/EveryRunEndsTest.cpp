#include "fieldDefinition.h"
#include "outputRun.h"
#include "ownConfiguration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Runs with numbers that make no sense end by themselves: with an output that was written or with a message.

namespace {

struct Ending {
    ProgramResult result;
    bool written = false;
};

/** A run that is stopped, with the status 124, where it does not end. */
Ending run(const std::string& document, const std::vector<std::string>& arguments = {}) {
    const TemporaryFolder folder;
    std::vector<std::string> all = {"-i", folder.write("in.xml", document), "-o", folder.path("out.xml")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    ProgramOptions options;
    options.wrapper = {"timeout", "--signal=KILL", "200"};
    Ending ending;
    ending.result = runVekoConfigure(all, options);
    ending.written = folder.contains("out.xml");
    return ending;
}

void expectFailure(const Ending& ending, const std::string& message) {
    expectEnd(ending.result, 1, message);
    EXPECT_FALSE(ending.written);
}

/** Either an output and no message, or a message of one line and no output. */
void expectEnd(const Ending& ending) {
    EXPECT_EQ(ending.result.signal, 0);
    EXPECT_EQ(ending.result.out, "");
    if (ending.result.status == 0) {
        EXPECT_EQ(ending.result.err, "");
        EXPECT_TRUE(ending.written);
    } else {
        EXPECT_EQ(ending.result.status, 1);
        EXPECT_THAT(ending.result.err, testing::MatchesRegex("[A-Za-z][^\n]+\n"));
        EXPECT_FALSE(ending.written);
    }
}

FieldDefinition fieldAt(const std::string& declination, const std::string& positionAngle) {
    FieldDefinition definition;
    definition.observationAttributes = "pa=\"" + positionAngle + "\"";
    definition.fields = {"<field RA_d=\"150.000000\" Dec_d=\"" + declination + "\">" +
                         targetXml("T", "Galaxy", "150.10000000", declination) +
                         targetXml("G", "Star", "150.30000000", declination) + "</field>"};
    return definition;
}

std::string withOwn(const TemporaryFolder& folder, const std::string& mapAttributes, const std::string& distortion,
                    const std::string& veko) {
    OwnConfiguration configuration;
    configuration.datamver = "8.00";
    configuration.mapAttributes = mapAttributes;
    configuration.distortion = distortion;
    configuration.veko = veko;
    configuration.fibres = R"(<fibre id="304" pos_x="0" pos_y="-20" fibre_name="C14"/>)";
    return configuration.write(folder);
}

} // namespace

TEST(EveryRunEnds, WithAJulianDateAsTheEpoch) {
    // 51544.5 + (2460000.5 - 2000) × 365.25 = 897836227.125, a date far from which the solve has not come.
    const Ending ending = run(FieldDefinition().text(), {"--epoch", "2460000.5"});
    EXPECT_THAT(ending.result.err,
                testing::MatchesRegex("Hour angle not converging at MJD 8978362[0-9][0-9]\\.[0-9][0-9]\n"));
    expectFailure(ending, ending.result.err);
}

TEST(EveryRunEnds, WithAModifiedJulianDateAsTheEpoch) {
    expectEnd(run(documentWithConditions(R"(epoch="60000")")));
}

TEST(EveryRunEnds, WithAnEpochThatIsNoDate) {
    for (const char* epoch : {"1e300", "-1e300", "1e10", "-1e10"}) {
        SCOPED_TRACE(epoch);
        const Ending given = run(FieldDefinition().text(), {"--epoch=" + std::string(epoch)});
        EXPECT_THAT(given.result.err,
                    testing::MatchesRegex("Hour angle not converging at MJD -?[0-9]+\\.[0-9][0-9]\n"));
        expectFailure(given, given.result.err);
        // The document's epoch is no different.
        expectFailure(run(documentWithConditions("epoch=\"" + std::string(epoch) + "\"")), given.result.err);
    }
    expectFailure(run(documentWithConditions(R"(epoch="nan")")), "Hour angle not converging at MJD nan\n");
    expectFailure(run(documentWithConditions(R"(epoch="inf")")), "Hour angle not converging at MJD inf\n");
}

TEST(EveryRunEnds, WithAnHourAngleOfTheDocumentThatIsNotFinite) {
    for (const char* value : {"nan", "inf", "-inf"}) {
        SCOPED_TRACE(value);
        expectFailure(run(documentWithConditions("epoch=\"2024.5\" ha=\"" + std::string(value) + "\"")),
                      "Bad hour angle in XML");
    }
}

TEST(EveryRunEnds, WithAPositionAngleThatIsNoAngle) {
    // A rotator at NaN is not between its limits.
    for (const char* value : {"nan", "inf", "-inf"}) {
        SCOPED_TRACE(value);
        expectFailure(run(documentWithObservation("pa=\"" + std::string(value) + "\"")),
                      "field position angle is outside the rotator limits\n");
    }
    expectEnd(run(documentWithObservation(R"(pa="1e300")")));
}

TEST(EveryRunEnds, WithAPositionThatIsNoPlace) {
    expectFailure(run(replaced(FieldDefinition().text(), "RA_d=\"150.000000\"", "RA_d=\"nan\"")),
                  "Field centre RA_d is an invalid number 'nan'\n");
    expectFailure(run(replaced(FieldDefinition().text(), "targdec=\"20.10000000\"", "targdec=\"inf\"")),
                  "Target Galaxy targdec is an invalid number 'inf'\n");
    for (const char* attribute : {"targepoch", "targpmra", "targpmdec", "targparal", "targrv"}) {
        for (const char* value : {"nan", "inf", "1e300", "-1e300"}) {
            SCOPED_TRACE(std::string(attribute) + " " + value);
            const std::string motion = std::string(attribute) + "=\"" + value + "\"";
            expectEnd(run(documentWithFields({fieldXml(scienceTargetXml(motion) + guideStarXml())})));
        }
    }
}

TEST(EveryRunEnds, AtTheCelestialPoles) {
    for (const char* declination : {"89.500000", "89.900000", "89.990000", "89.999000", "89.999900", "90.000000"}) {
        for (const char* hourAngle : {"0", "5"}) {
            SCOPED_TRACE(std::string(declination) + " at " + hourAngle);
            expectEnd(run(fieldAt(declination, "180").text(), {"--ha", hourAngle}));
        }
    }
    // The southern pole is 28.8 degrees below the horizon, where the rotator needs no turn.
    for (const char* declination : {"-90.000000", "-89.990000"}) {
        SCOPED_TRACE(declination);
        expectEnd(run(fieldAt(declination, "0").text(), {"--horizon_limit", "-60"}));
    }
}

TEST(EveryRunEnds, WithNotANumberInTheFocalPlaneMap) {
    const char* const focalLength = R"(focal_length="11724.24")";
    const char* const distortion = R"(c1="202.841" c3="3.0191" c5="-0.0995944")";
    const char* const axis = R"(x0="0" y0="0" r0="0")";
    // The solve asks first for the sky at the place where the target is wanted, 20 mm from the axis.
    const std::string inverse = "Inverse distortion not converging at a radius of 20.000 mm\n";
    // Where the target lands is no number, and cannot come nearer.
    const std::string nowhere = "Field centre not converging\n";
    const struct {
        const char* mapAttributes;
        const char* distortion;
        const char* veko;
        std::string message;
    } rows[] = {
        {focalLength, R"(c1="nan" c3="3.0191" c5="0")", axis, inverse},
        {focalLength, R"(c1="202.841" c3="nan" c5="0")", axis, inverse},
        {focalLength, R"(c1="202.841" c3="3.0191" c5="nan")", axis, inverse},
        {focalLength, R"(c1="0" c3="0" c5="0")", axis, inverse},
        {R"(focal_length="nan")", distortion, axis, nowhere},
        {focalLength, distortion, R"(x0="nan" y0="0" r0="0")", nowhere},
        {focalLength, distortion, R"(x0="0" y0="nan" r0="0")", nowhere},
        {focalLength, distortion, R"(x0="0" y0="0" r0="nan")", nowhere},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.mapAttributes) + " " + row.distortion + " " + row.veko);
        const TemporaryFolder folder;
        const std::string configuration = withOwn(folder, row.mapAttributes, row.distortion, row.veko);
        expectFailure(run(FieldDefinition().text(), {"-c", configuration}), row.message);
    }
}

TEST(EveryRunEnds, WithADistortionThatCannotBeInverted) {
    const char* const focalLength = R"(focal_length="11724.24")";
    const char* const axis = R"(x0="0" y0="0" r0="0")";
    for (const char* distortion :
         {R"(c1="202.841" c3="-50000" c5="0")", R"(c1="-202.841" c3="0" c5="0")", R"(c1="1e-300" c3="0" c5="0")",
          R"(c1="1e300" c3="0" c5="0")", R"(c1="inf" c3="0" c5="0")"}) {
        SCOPED_TRACE(distortion);
        const TemporaryFolder folder;
        const Ending ending = run(FieldDefinition().text(), {"-c", withOwn(folder, focalLength, distortion, axis)});
        expectEnd(ending);
    }
}
