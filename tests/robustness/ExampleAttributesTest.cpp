#include "Program.h"
#include "badValues.h"
#include "hostileRun.h"
#include "xmlPlaces.h"
#include "xmlStructure.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <set>

// Every attribute of the example documents, with every bad value in its place.

namespace {

class ExampleAttributes : public HostileRun, public testing::WithParamInterface<std::string> {
protected:
    ExampleAttributes() {
        useThreeFibres();
    }
};

/**
 * Whether a value leads to the bound of the hour-angle solve, seconds away: an hour angle so large that its fraction of
 * a turn is lost in rounding. EveryRunEnds has one of them, and two more follow here.
 */
bool isEndlessHourAngle(const std::string& attribute, const std::string& value) {
    const double hours = std::strtod(value.c_str(), nullptr);
    return attribute == "ha" && std::isfinite(hours) && std::fabs(hours) > 1e12;
}

struct Case {
    std::string name;
    std::string document;
};

/** All cases of a document but the endless ones. */
std::vector<Case> casesOf(const std::string& document, std::size_t longest) {
    std::vector<Case> cases;
    for (const ElementPlace& element : elementPlaces(document)) {
        for (const AttributePlace& attribute : element.attributes) {
            const std::string name = attribute.name.in(document);
            for (const BadValue& bad : badValues(attribute.value.in(document), longest)) {
                if (!isEndlessHourAngle(name, bad.text)) {
                    cases.push_back({element.startName.in(document) + " " + name + " " + bad.name,
                                     withReplaced(document, attribute.value, bad.text)});
                }
            }
        }
    }
    return cases;
}

} // namespace

TEST(BadValues, AreAtLeastFortyAndNoTwoAreTheSame) {
    std::set<std::string> texts;
    for (const BadValue& bad : badValues("T")) {
        EXPECT_TRUE(texts.insert(bad.text).second) << bad.name;
    }
    EXPECT_GE(texts.size(), 40);
}

TEST_P(ExampleAttributes, MayHaveAnyValue) {
    const std::string document = example(GetParam());
    const pos::PosConfig config = smallConfig();
    for (const ElementPlace& element : elementPlaces(document)) {
        for (const AttributePlace& attribute : element.attributes) {
            const std::string name = attribute.name.in(document);
            for (const BadValue& bad : badValues(attribute.value.in(document))) {
                if (!isEndlessHourAngle(name, bad.text)) {
                    judge(run(withReplaced(document, attribute.value, bad.text), [&] { return config; }),
                          element.startName.in(document) + " " + name + " " + bad.name);
                }
            }
        }
    }
    EXPECT_GT(cases(), 1000);
    EXPECT_GT(configured(), 100);
    EXPECT_LT(configured(), cases());
}

TEST_P(ExampleAttributes, MayBeMissingDoubledOrRenamed) {
    const std::string document = example(GetParam());
    const pos::PosConfig config = smallConfig();
    for (const ElementPlace& element : elementPlaces(document)) {
        for (const AttributePlace& attribute : element.attributes) {
            const Place whole = {attribute.name.begin, attribute.value.end + 1};
            const std::string text = whole.in(document);
            for (const std::string& replacement : {std::string(), text + " " + text, "x" + text, ":" + text, "1" + text,
                                                   attribute.name.in(document), "xmlns=\"a\" " + text, "=" + text}) {
                judge(run(withReplaced(document, whole, replacement), [&] { return config; }),
                      element.startName.in(document) + " " + text + " as " + replacement);
            }
        }
    }
    EXPECT_GT(configured(), 0);
}

TEST_P(ExampleAttributes, MayHaveAnyValueInTheProgram) {
    constexpr unsigned int kSeed = 40;
    constexpr int kSamples = 15;
    const std::string text = example(GetParam());
    const std::vector<Case> all = casesOf(text, 1000);
    std::mt19937 random(kSeed);
    const TemporaryFolder folder;
    for (int i = 0; i < kSamples; ++i) {
        const Case& chosen = all.at(random() % all.size());
        SCOPED_TRACE(chosen.name);
        const std::string output = folder.write("out" + std::to_string(i), "old");
        const std::string input = folder.write("in" + std::to_string(i), chosen.document);
        const ProgramResult result = runVekoConfigure({"-i", input, "-o", output});
        EXPECT_EQ(result.signal, 0);
        EXPECT_EQ(result.out, "");
        if (result.status == 0) {
            EXPECT_EQ(result.err, "");
            EXPECT_NO_THROW(pos::loadXmlFile(output));
        } else {
            EXPECT_EQ(result.status, 1);
            EXPECT_NE(result.err, "");
            EXPECT_EQ(readBytes(output), "old");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleAttributes, testing::ValuesIn(exampleNames()),
                         [](const auto& tested) { return tested.param; });

class EndlessHourAngle : public HostileRun {};

TEST_F(EndlessHourAngle, EndsAtTheBoundOfTheSolve) {
    const std::string document = example("sombrero_south");
    const std::string given = R"( ha="-1.0")";
    const Place place = {document.find(given), document.find(given) + given.size()};
    ASSERT_NE(place.begin, std::string::npos);
    for (const std::string value : {"1e308", "-9223372036854775809"}) {
        ASSERT_TRUE(isEndlessHourAngle("ha", value));
        const RunEnd end = runSmall(withReplaced(document, place, " ha=\"" + value + "\""));
        judge(end, value);
        EXPECT_EQ(end.kind, RunEnd::Kind::Thrown);
        EXPECT_EQ(end.message.substr(0, 33), "Hour angle not converging at MJD ");
    }
}
