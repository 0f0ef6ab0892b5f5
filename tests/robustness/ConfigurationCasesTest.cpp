#include "badValues.h"
#include "elementCases.h"
#include "hostileRun.h"
#include "xmlPlaces.h"

#include <gtest/gtest.h>
#include <sstream>

// Every value, element and line of a configuration, in both syntaxes, with everything that can be wrong with it.

namespace {

class ConfigurationCases : public HostileRun {
protected:
    void runXml(const std::string& configuration, const std::string& caseName) {
        put("configure.xml", configuration);
        judge(runSmall(document_), caseName);
    }
    void runInfo(const std::string& configuration, const std::string& caseName) {
        put("configure.info", configuration);
        const std::string name = folder_.path("configure.info");
        RunEnd end = run(document_, [&] {
            return pos::PosConfig("configure_version", "3.3.5", name.c_str(), pos::PosConfig::INFO);
        });
        end.instrumentIsWhole = false;
        judge(end, caseName);
    }

    const std::string document_ = example("sombrero_south");
};

/** The lines of a text, each with its line break. */
std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line + "\n");
    }
    return lines;
}

} // namespace

TEST_F(ConfigurationCases, XmlMayBeCutAtEveryByte) {
    const std::string text = smallInstrument().configuration;
    for (std::size_t length = 0; length <= text.size(); ++length) {
        runXml(text.substr(0, length), "the first " + std::to_string(length) + " bytes");
    }
    EXPECT_EQ(configured(), 2); // with and without the line break at its end
}

TEST_F(ConfigurationCases, XmlMayHaveAnyValue) {
    const std::string text = smallInstrument().configuration;
    for (const ElementPlace& element : elementPlaces(text)) {
        std::vector<Place> places;
        for (const AttributePlace& attribute : element.attributes) {
            places.push_back(attribute.value);
        }
        if (!element.hasChildren) {
            places.push_back(element.content);
        }
        for (const Place& place : places) {
            for (const BadValue& bad : badValues(place.in(text))) {
                runXml(withReplaced(text, place, bad.text), element.startName.in(text) + " " + bad.name);
            }
        }
    }
    EXPECT_GT(cases(), 1000);
    EXPECT_GT(configured(), 50);
    EXPECT_LT(configured(), cases());
}

TEST_F(ConfigurationCases, XmlElementsMayBeAnywhereOrNowhere) {
    for (const ElementCase& tested : elementCases(smallInstrument().configuration)) {
        runXml(tested.document, tested.name);
    }
    EXPECT_GT(configured(), 20);
    EXPECT_LT(configured(), cases());
}

TEST_F(ConfigurationCases, InfoMayBeCutAtEveryByte) {
    const std::string text = smallInfoConfiguration();
    for (std::size_t length = 0; length <= text.size(); ++length) {
        runInfo(text.substr(0, length), "the first " + std::to_string(length) + " bytes");
    }
    EXPECT_EQ(configured(), 2); // with and without the line break at its end
}

TEST_F(ConfigurationCases, InfoMayHaveAnyValue) {
    const std::string text = smallInfoConfiguration();
    for (std::size_t quote = text.find('"'); quote != std::string::npos; quote = text.find('"', quote)) {
        const Place value = {quote + 1, text.find('"', quote + 1)};
        for (const BadValue& bad : badValues(value.in(text))) {
            runInfo(withReplaced(text, value, bad.text), std::to_string(quote) + " " + bad.name);
            runInfo(withReplaced(text, {quote, value.end + 1}, bad.text), std::to_string(quote) + " bare " + bad.name);
        }
        quote = value.end + 1;
    }
    EXPECT_GT(cases(), 1000);
    EXPECT_GT(configured(), 50);
    EXPECT_LT(configured(), cases());
}

TEST_F(ConfigurationCases, InfoLinesMayBeAnythingAnywhere) {
    const std::vector<std::string> lines = linesOf(smallInfoConfiguration());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string& line = lines.at(i);
        for (const std::string& replacement :
             {std::string(), line + line, "x" + line, "{\n" + line, "}\n" + line, line + "{\n", line + "}\n",
              line + "{\n" + line + "}\n", "; " + line, "#" + line, "#include \"" + line, "\"" + line, line + "\\\n",
              line.substr(0, line.size() - 1) + "\\\n", "#include \"nothing.info\"\n" + line,
              "#include \"" + folder_.path("configure.info") + "\"\n" + line}) {
            std::string text;
            for (std::size_t j = 0; j < lines.size(); ++j) {
                text += j == i ? replacement : lines.at(j);
            }
            runInfo(text, "line " + std::to_string(i) + " as " + replacement);
        }
    }
    EXPECT_GT(configured(), 20);
    EXPECT_LT(configured(), cases());
}
