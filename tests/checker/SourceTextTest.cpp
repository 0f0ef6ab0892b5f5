#include "SourceText.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

std::pair<int, int> placeOf(const SourceText& text, int offset) {
    const LineColumn place = text.at(offset);
    return {place.line, place.column};
}

} // namespace

TEST(SourceText, CountsCharactersNotBytesAndATabAsOne) {
    const SourceText text("\t\u00e9\u65e5\U0001f52dx"); // of 1, 2, 3 and 4 bytes
    EXPECT_EQ(placeOf(text, 0), std::pair(1, 1));
    EXPECT_EQ(placeOf(text, 1), std::pair(1, 2));
    EXPECT_EQ(placeOf(text, 3), std::pair(1, 3));
    EXPECT_EQ(placeOf(text, 6), std::pair(1, 4));
    EXPECT_EQ(placeOf(text, 9), std::pair(1, 4)) << "the last byte of the same";
    EXPECT_EQ(placeOf(text, 10), std::pair(1, 5));
    EXPECT_EQ(placeOf(text, 11), std::pair(1, 6)) << "behind the end";
}

TEST(SourceText, EndsALineWithLfCrOrBoth) {
    const SourceText text("a\nb\rc\r\n\r\nd");
    EXPECT_EQ(placeOf(text, 2), std::pair(2, 1));
    EXPECT_EQ(placeOf(text, 4), std::pair(3, 1));
    EXPECT_EQ(placeOf(text, 6), std::pair(3, 3)) << "the LF of CR LF";
    EXPECT_EQ(placeOf(text, 9), std::pair(5, 1));
    EXPECT_EQ(text.line(3), (Span{4, 5}));
    EXPECT_EQ(text.line(4), (Span{7, 7}));
    EXPECT_EQ(text.line(5), (Span{9, 10}));
}

TEST(SourceText, PlacesInAnyOrderAreTheSame) {
    const SourceText text("one\ntwo \u00e9 three\nfour");
    for (const int offset : {12, 4, 14, 0, 9, 21}) {
        EXPECT_EQ(placeOf(text, offset), placeOf(SourceText(text.utf8()), offset)) << offset;
    }
}
