#include "Problem.h"

#include <gtest/gtest.h>

using namespace pos;

TEST(Problem, OfTwoMessagesThatBeginAlikeAtOnePlaceTheLongerOneIsTold) {
    const Rule rule = {"VK000", Severity::Error, "", "", "", ""};
    Problems problems;
    for (const char* const message : {"bad epoch", "bad", "bad end", "bad epoch, a date"}) {
        problems.add(rule, {7, 9}, message, "");
    }
    problems.add(rule, {7, 8}, "bad epoch", "");
    problems.add(rule, {3, 4}, "bad", "");
    std::vector<std::string> told;
    for (const Problem& problem : std::move(problems).sorted()) {
        told.push_back(std::to_string(problem.place.begin) + ' ' + problem.message);
    }
    EXPECT_EQ(told, (std::vector<std::string>{"3 bad", "7 bad epoch", "7 bad end", "7 bad epoch, a date"}));
}
