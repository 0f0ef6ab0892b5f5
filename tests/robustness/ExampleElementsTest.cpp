#include "elementCases.h"
#include "hostileRun.h"

#include <gtest/gtest.h>

// Every element of the example documents, missing, doubled, renamed, and where it should not be.

namespace {

class ExampleElements : public HostileRun, public testing::WithParamInterface<std::string> {
protected:
    ExampleElements() {
        useThreeFibres();
    }
};

} // namespace

TEST_P(ExampleElements, MayBeAnywhereOrNowhere) {
    const std::string document = example(GetParam());
    const pos::PosConfig config = smallConfig();
    for (const ElementCase& tested : elementCases(document)) {
        judge(run(tested.document, [&] { return config; }), tested.name);
    }
    EXPECT_GT(cases(), 50);
    EXPECT_GT(configured(), 10);
    EXPECT_LT(configured(), cases());
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleElements, testing::ValuesIn(exampleNames()),
                         [](const auto& tested) { return tested.param; });
