#include "problemText.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

const Rule kRule{"VK000", Severity::Warning, "title", "explanation", "", ""};

/** How a problem between two marks of a document is shown; the marks are not part of it. */
std::string shown(QByteArray marked, const TextStyle& style = {60, false}) {
    const int begin = marked.indexOf('[');
    const int end = marked.indexOf(']') - 1;
    marked.remove(end + 1, 1).remove(begin, 1);
    return problemText({&kRule, kRule.severity, {begin, end}, "what is wrong", "Do this", std::nullopt},
                       SourceText(marked), "f.xml", style);
}

} // namespace

TEST(ProblemText, ShowsTheLineTheCaretAndTheHelp) {
    EXPECT_EQ(shown("<a>\n <b x='[value]'/>\n</a>"), "f.xml:2:8: warning: what is wrong [VK000]\n"
                                                     "    2 |  <b x='value'/>\n"
                                                     "      |        ^~~~~\n"
                                                     "help: Do this\n");
}

TEST(ProblemText, AlignsWideAndCombiningCharactersAndShowsATabAsOneColumn) {
    EXPECT_EQ(shown("\t\u65e5e\u0301[\u672c]"), "f.xml:1:5: warning: what is wrong [VK000]\n"
                                                "    1 |  \u65e5e\u0301\u672c\n"
                                                "      |     ^~\n"
                                                "help: Do this\n");
}

TEST(ProblemText, CutsALongLineAroundThePlace) {
    const std::string text = shown(QByteArray(500, 'a') + "[bad]" + QByteArray(500, 'c'), {40, false});
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "f.xml:1:501: warning: what is wrong [VK000]");
    std::getline(lines, line);
    EXPECT_LE(QString::fromStdString(line).size(), 40);
    const int column = QString::fromStdString(line).indexOf("bad");
    EXPECT_GT(column, 0) << line;
    std::getline(lines, line);
    EXPECT_EQ(QString::fromStdString(line).indexOf("^~~"), column) << text;
}

TEST(ProblemText, AProblemBehindTheEndOrOverSeveralLinesIsMarkedOnItsFirst) {
    EXPECT_NE(shown("<a>\n[]").find("      | ^\n"), std::string::npos);
    EXPECT_NE(shown("x[ab\ncd]").find("    1 | xab\n      |  ^~\n"), std::string::npos);
}

TEST(ProblemText, WhatATerminalWouldObeyIsReplaced) {
    const std::string text = shown("a\x1b[2J\u202e[b]");
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
    EXPECT_EQ(text.find("\u202e"), std::string::npos);
    EXPECT_EQ(harmless("x\x07\r\ny"), "x\ufffd\ufffd\ny");
}

TEST(ProblemText, ColoursTheSeverityOnlyWhenAsked) {
    EXPECT_NE(shown("[a]", {60, true}).find("\x1b[1;35mwarning: \x1b[0m"), std::string::npos);
}
