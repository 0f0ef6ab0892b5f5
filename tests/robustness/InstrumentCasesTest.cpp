#include "badValues.h"
#include "elementCases.h"
#include "hostileRun.h"
#include "xmlPlaces.h"

#include <gtest/gtest.h>

// Every attribute and element of a focal-plane map and of a bundle of ten fibres, with everything that can be wrong
// with it.

namespace {

class InstrumentCases : public HostileRun, public testing::WithParamInterface<std::string> {
protected:
    std::string original() const {
        return GetParam() == "map" ? smallInstrument().map : smallInstrument().bundle;
    }
    void runWith(const std::string& text, const std::string& caseName) {
        put(GetParam() + ".xml", text);
        judge(runSmall(document_), caseName);
    }

    const std::string document_ = example("sombrero_south");
};

} // namespace

TEST_P(InstrumentCases, MayBeCutAtEveryByte) {
    const std::string text = original();
    for (std::size_t length = 0; length <= text.size(); ++length) {
        runWith(text.substr(0, length), "the first " + std::to_string(length) + " bytes");
    }
    EXPECT_EQ(configured(), 2); // with and without the line break at its end
}

TEST_P(InstrumentCases, MayHaveAnyValue) {
    const std::string text = original();
    for (const ElementPlace& element : elementPlaces(text)) {
        for (const AttributePlace& attribute : element.attributes) {
            for (const BadValue& bad : badValues(attribute.value.in(text))) {
                runWith(withReplaced(text, attribute.value, bad.text),
                        element.startName.in(text) + " " + attribute.name.in(text) + " " + bad.name);
            }
        }
    }
    EXPECT_GT(cases(), 1000);
    EXPECT_GT(configured(), 50);
    EXPECT_LT(configured(), cases());
}

TEST_P(InstrumentCases, MayHaveItsElementsAnywhereOrNowhere) {
    for (const ElementCase& tested : elementCases(original())) {
        runWith(tested.document, tested.name);
    }
    EXPECT_GT(configured(), 10);
    EXPECT_LT(configured(), cases());
}

INSTANTIATE_TEST_SUITE_P(Files, InstrumentCases, testing::Values("map", "bundle"),
                         [](const auto& tested) { return tested.param; });
