#include "TelescopeConfig.h"
#include "ProcessWideState.h"
#include "telescope.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

class TelescopeConfigTest : public ProcessWideState {};

} // namespace

TEST_F(TelescopeConfigTest, DegreesBecomeRadiansAndMetresStay) {
    const Telescope telescope =
        readTelescope(telescopeConfig({10.0, 20.0, 1164.5, 30.0, 40.0, 50.0, 60.0, 70.0, 80.0}));
    EXPECT_EQ(telescope.eastLongitude, rad(10.0));
    EXPECT_EQ(telescope.latitude, rad(20.0));
    EXPECT_EQ(telescope.height, 1164.5);
    EXPECT_EQ(telescope.horizonLimit, rad(30.0));
    EXPECT_EQ(telescope.rotatorOffset, rad(40.0));
    EXPECT_EQ(telescope.rotatorLowLimit, rad(50.0));
    EXPECT_EQ(telescope.rotatorHighLimit, rad(60.0));
    EXPECT_EQ(telescope.optimumPlateA, rad(70.0));
    EXPECT_EQ(telescope.optimumPlateB, rad(80.0));
}
