#include "Program.h"
#include "badValues.h"
#include "elementCases.h"
#include "hostileRun.h"
#include "xmlPlaces.h"
#include "xmlStructure.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sstream>

// Every file that a run reads, with everything that can be wrong with it: field definitions, the configuration in both
// syntaxes, the focal-plane map and the bundle.

namespace {

const std::string kInfo = "configure.info";

/** What is between the quotes of a text: the values of INFO. */
std::vector<Place> quotedPlaces(const std::string& text) {
    std::vector<Place> places;
    for (std::size_t quote = text.find('"'); quote != std::string::npos; quote = text.find('"', quote)) {
        places.push_back({quote + 1, text.find('"', quote + 1)});
        quote = places.back().end + 1;
    }
    return places;
}

/** The values of XML: attributes, and the texts of elements that hold no others. */
std::vector<Place> xmlValuePlaces(const std::string& text) {
    std::vector<Place> places;
    for (const ElementPlace& element : elementPlaces(text)) {
        for (const AttributePlace& attribute : element.attributes) {
            places.push_back(attribute.value);
        }
        if (!element.hasChildren) {
            places.push_back(element.content);
        }
    }
    return places;
}

/**
 * Whether a value leads to the bound of the hour-angle solve, seconds away: an hour angle so large that its fraction of
 * a turn is lost in rounding. EveryRunEnds has one of them, and two more follow here.
 */
bool isEndlessHourAngle(const std::string& text, const Place& place, const std::string& value) {
    const double hours = std::strtod(value.c_str(), nullptr);
    return text.substr(place.begin - 5, 5) == " ha=\"" && std::isfinite(hours) && std::fabs(hours) > 1e12;
}

/** Cases in each of which the same file is wrong: an example, by its name, or a file of the small instrument. */
class BrokenFiles : public HostileRun, public testing::WithParamInterface<std::string> {
protected:
    BrokenFiles() {
        useThreeFibres();
    }
    static bool isExample() {
        return GetParam().find('.') == std::string::npos;
    }
    std::string original() const {
        return isExample() ? example(GetParam()) : folder_.read(GetParam());
    }
    void judgeRunWith(const std::string& text, const std::string& caseName) {
        if (isExample()) {
            judge(run(text, [this] { return config_; }), caseName);
            return;
        }
        put(GetParam(), text);
        RunEnd end = GetParam() == kInfo ? run(document_, [this] { return infoConfig(); }) : runSmall(document_);
        end.instrumentIsWhole = false;
        judge(end, caseName);
    }

    const pos::PosConfig config_ = smallConfig();
    const std::string document_ = example("sombrero_south");
};

/** The same for the files in XML alone, and for INFO alone. */
class BrokenXmlFiles : public BrokenFiles {};
class BrokenInfoFile : public BrokenFiles {};

std::vector<std::string> xmlFiles() {
    std::vector<std::string> files = exampleNames();
    files.insert(files.end(), {"configure.xml", "map.xml", "bundle.xml"});
    return files;
}

const auto kName = [](const auto& tested) { return tested.param.substr(0, tested.param.find(".xml")); };

} // namespace

TEST(BadValues, AreAtLeastFortyAndNoTwoAreTheSame) {
    std::set<std::string> texts;
    for (const BadValue& bad : badValues("T")) {
        EXPECT_TRUE(texts.insert(bad.text).second) << bad.name;
    }
    EXPECT_GE(texts.size(), 40);
}

TEST_P(BrokenFiles, MayBeCutAtEveryByte) {
    const std::string text = original();
    for (std::size_t length = 0; length <= text.size(); ++length) {
        judgeRunWith(text.substr(0, length), "the first " + std::to_string(length) + " bytes");
    }
    EXPECT_EQ(configured(), 2); // with and without the line break at its end
}

TEST_P(BrokenFiles, MayHaveAnyValue) {
    const std::string text = original();
    for (const Place& place : GetParam() == kInfo ? quotedPlaces(text) : xmlValuePlaces(text)) {
        for (const BadValue& bad : badValues(place.in(text))) {
            const std::string name = std::to_string(place.begin) + " " + bad.name;
            if (!isEndlessHourAngle(text, place, bad.text)) {
                judgeRunWith(withReplaced(text, place, bad.text), name);
            }
            if (GetParam() == kInfo) {
                judgeRunWith(withReplaced(text, {place.begin - 1, place.end + 1}, bad.text), "bare " + name);
            }
        }
    }
    EXPECT_GT(cases(), 1000);
    EXPECT_GT(configured(), 50);
    EXPECT_LT(configured(), cases());
}

TEST_P(BrokenXmlFiles, MayHaveTheirElementsAnywhereOrNowhere) {
    for (const ElementCase& tested : elementCases(original())) {
        judgeRunWith(tested.document, tested.name);
    }
    EXPECT_GT(cases(), 50);
    EXPECT_GT(configured(), 10);
    EXPECT_LT(configured(), cases());
}

TEST_P(BrokenXmlFiles, MayHaveTheirAttributesMissingDoubledOrRenamed) {
    const std::string text = original();
    for (const ElementPlace& element : elementPlaces(text)) {
        for (const AttributePlace& attribute : element.attributes) {
            const Place place = {attribute.name.begin, attribute.value.end + 1};
            const std::string whole = place.in(text);
            for (const std::string& replacement :
                 {std::string(), whole + " " + whole, "x" + whole, ":" + whole, "1" + whole, attribute.name.in(text),
                  "xmlns=\"a\" " + whole, "=" + whole}) {
                judgeRunWith(withReplaced(text, place, replacement), whole + " as " + replacement);
            }
        }
    }
    EXPECT_GT(configured(), 0);
}

TEST_P(BrokenInfoFile, MayHaveAnythingInAnyLine) {
    std::vector<std::string> lines;
    std::istringstream stream(original());
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line + "\n");
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string& line = lines.at(i);
        for (const std::string& replacement :
             {std::string(), line + line, "x" + line, "{\n" + line, "}\n" + line, line + "{\n", line + "}\n",
              line + "{\n" + line + "}\n", "; " + line, "#" + line, "#include \"" + line, "\"" + line, line + "\\\n",
              line.substr(0, line.size() - 1) + "\\\n", "#include \"nothing.info\"\n" + line,
              "#include \"" + folder_.path(kInfo) + "\"\n" + line}) {
            std::string text;
            for (std::size_t j = 0; j < lines.size(); ++j) {
                text += j == i ? replacement : lines.at(j);
            }
            judgeRunWith(text, "line " + std::to_string(i) + " as " + replacement);
        }
    }
    EXPECT_GT(configured(), 20);
    EXPECT_LT(configured(), cases());
}

INSTANTIATE_TEST_SUITE_P(Xml, BrokenFiles, testing::ValuesIn(xmlFiles()), kName);
INSTANTIATE_TEST_SUITE_P(Info, BrokenFiles, testing::Values(kInfo), [](const auto&) { return "info"; });
INSTANTIATE_TEST_SUITE_P(Xml, BrokenXmlFiles, testing::ValuesIn(xmlFiles()), kName);
INSTANTIATE_TEST_SUITE_P(Info, BrokenInfoFile, testing::Values(kInfo), [](const auto&) { return "info"; });

TEST(BrokenFilesInTheProgram, LeaveTheOlderOutputOrAWholeOne) {
    constexpr unsigned int kSeed = 40;
    constexpr int kSamples = 60;
    const std::vector<std::string> names = exampleNames();
    std::mt19937 random(kSeed);
    const TemporaryFolder folder;
    for (int i = 0; i < kSamples; ++i) {
        const std::string text = example(names.at(random() % names.size()));
        const std::vector<Place> places = xmlValuePlaces(text);
        const Place place = places.at(random() % places.size());
        const std::vector<BadValue> values = badValues(place.in(text), 1000);
        const BadValue& bad = values.at(random() % values.size());
        if (isEndlessHourAngle(text, place, bad.text)) {
            continue;
        }
        SCOPED_TRACE(std::to_string(place.begin) + " " + bad.name);
        const std::string output = folder.write("out.xml", "old");
        const std::string input =
            folder.write("in.xml", i % 2 == 0 ? withReplaced(text, place, bad.text) : text.substr(0, place.begin));
        const ProgramResult result = runVekoConfigure({"-i", input, "-o", output});
        EXPECT_EQ(result.signal, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.status, result.err.empty() ? 0 : 1);
        if (result.status == 0) {
            EXPECT_NO_THROW(pos::loadXmlFile(output));
        } else {
            EXPECT_EQ(readBytes(output), "old");
        }
    }
}

class EndlessHourAngle : public HostileRun {};

TEST_F(EndlessHourAngle, EndsAtTheBoundOfTheSolve) {
    const std::string document = example("sombrero_south");
    const std::string given = R"( ha="-1.0")";
    const Place place = {document.find(given) + 5, document.find(given) + given.size() - 1};
    for (const std::string value : {"1e308", "-9223372036854775809"}) {
        ASSERT_TRUE(isEndlessHourAngle(document, place, value));
        const RunEnd end = runSmall(withReplaced(document, place, value));
        judge(end, value);
        EXPECT_EQ(end.kind, RunEnd::Kind::Thrown);
        EXPECT_EQ(end.message.substr(0, 33), "Hour angle not converging at MJD ");
    }
}
