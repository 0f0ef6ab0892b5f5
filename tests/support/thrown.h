#ifndef POS_TESTS_THROWN_H
#define POS_TESTS_THROWN_H

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

/** The message of the exception of type E that an action throws. Fails the test when it throws none or another. */
template <typename E = std::runtime_error, typename Action> std::string messageOf(const Action& action) {
    try {
        action();
    } catch (const E& error) {
        return error.what();
    } catch (const std::exception& error) {
        ADD_FAILURE() << "another exception was thrown: " << error.what();
        return {};
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

#endif
