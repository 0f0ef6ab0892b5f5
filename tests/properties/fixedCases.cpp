#include <cstdlib>
#include <gtest/gtest.h>

namespace {

/** Gives a run without parameters in its environment the same cases as every other. */
class FixedCases : public testing::Environment {
public:
    void SetUp() override {
        constexpr int kKeepAGivenOne = 0;
        ASSERT_EQ(::setenv("RC_PARAMS", PROPERTY_PARAMETERS, kKeepAGivenOne), 0);
    }
};

/** RapidCheck reads its parameters with the first property, after the environments are set up. */
const testing::Environment* const kFixedCases = testing::AddGlobalTestEnvironment(new FixedCases);

} // namespace
