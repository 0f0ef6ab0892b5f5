#ifndef POS_TESTS_PRIVILEGE_H
#define POS_TESTS_PRIVILEGE_H

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

/**
 * Ends a test that needs what this process may not do or does not have: as a failure where the environment variable CI
 * is set, because there everything must be tested, and as a visible skip elsewhere.
 */
#define REQUIRE_PRIVILEGE(granted, what)                                                                               \
    if (!(granted)) {                                                                                                  \
        if (std::getenv("CI") != nullptr) {                                                                            \
            GTEST_FAIL() << "needs " << (what);                                                                        \
        }                                                                                                              \
        GTEST_SKIP() << "needs " << (what);                                                                            \
    }                                                                                                                  \
    static_assert(true, "a semicolon follows")

inline bool isRoot() {
    return ::geteuid() == 0;
}

#endif
