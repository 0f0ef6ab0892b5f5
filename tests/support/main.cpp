#include "ProcessState.h"

#include <cstdlib>
#include <gtest/gtest.h>

/** The tests run in the state that the program itself sets up. */
int main(int argc, char* argv[]) {
    ::setenv("QT_HASH_SEED", "0", 1);
    pos::prepareProcess();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
