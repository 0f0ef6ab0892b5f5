#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "xmlStructure.h"

#include <stdexcept>

using namespace pos;
using namespace std::string_literals;

namespace {

enum class ByteOrder { Little, Big };

/** A text in UTF-16. */
std::string utf16(const std::string& utf8, ByteOrder order, bool mark = true) {
    std::string bytes;
    const auto append = [&](ushort unit) {
        const char high = static_cast<char>(unit >> 8);
        const char low = static_cast<char>(unit & 0xff);
        bytes += order == ByteOrder::Big ? high : low;
        bytes += order == ByteOrder::Big ? low : high;
    };
    if (mark) {
        append(0xfeff);
    }
    for (const QChar unit : QString::fromStdString(utf8)) {
        append(unit.unicode());
    }
    return bytes;
}

std::string declared(const std::string& encoding, const std::string& document) {
    return "<?xml version='1.0' encoding='" + encoding + "'?>" + document;
}

constexpr const char* kRefused = "(refused)";

} // namespace

class XmlEncoding : public ProcessWideState {
protected:
    /** The text of the document element, or kRefused. */
    std::string textOf(const std::string& bytes) const {
        const std::string name = folder_.write("a.xml", bytes);
        try {
            return loadXmlFile(name).documentElement().text().toStdString();
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), name + " is not valid XML");
            return kRefused;
        }
    }

private:
    TemporaryFolder folder_;
};

TEST_F(XmlEncoding, Utf8IsTheDefaultWithOrWithoutAByteOrderMark) {
    EXPECT_EQ(textOf("<a>\xc3\xa9\xf0\x9f\x98\x80</a>"), "\xc3\xa9\xf0\x9f\x98\x80");
    EXPECT_EQ(textOf("\xef\xbb\xbf<a>\xc3\xa9</a>"), "\xc3\xa9");
    EXPECT_EQ(textOf("\xef\xbb\xbf" + declared("UTF-8", "<a>\xc3\xa9</a>")), "\xc3\xa9");
    EXPECT_EQ(textOf(declared("utf-8", "<a>\xc3\xa9</a>")), "\xc3\xa9");
    EXPECT_EQ(textOf("\xef\xbb\xbf\xef\xbb\xbf<a/>"), kRefused);
}

TEST_F(XmlEncoding, Utf8IsKnownUnderItsCommonMisspelling) {
    EXPECT_EQ(textOf(declared("UTF8", "<a>\xc3\xa9\xf0\x9f\x98\x80</a>")), "\xc3\xa9\xf0\x9f\x98\x80");
    EXPECT_EQ(textOf(declared("utf8", "<a>\xe9</a>")), kRefused);
    EXPECT_EQ(textOf(declared("UTF8", "<a>")), kRefused);
}

TEST_F(XmlEncoding, Utf16IsReadInBothByteOrders) {
    const std::string text = "\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80";
    for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
        EXPECT_EQ(textOf(utf16(declared("UTF-16", "<a>" + text + "</a>"), order)), text);
        EXPECT_EQ(textOf(utf16("<a>" + text + "</a>", order)), text);
    }
    EXPECT_EQ(textOf(utf16(declared("UTF-16LE", "<a>" + text + "</a>"), ByteOrder::Little, false)), text);
    EXPECT_EQ(textOf(utf16(declared("UTF-16BE", "<a>" + text + "</a>"), ByteOrder::Big, false)), text);
}

TEST_F(XmlEncoding, BadUtf16IsRefused) {
    const std::string begin = "\xff\xfe<\0a\0>\0"s;
    const std::string end = "<\0/\0a\0>\0"s;
    EXPECT_EQ(textOf(begin + "x\0"s + end), "x");
    EXPECT_EQ(textOf(begin + "\x3d\xd8\x00\xde"s + end), "\xf0\x9f\x98\x80");
    EXPECT_EQ(textOf(begin + "\x3d\xd8x\0"s + end), kRefused);      // the first half of a pair alone
    EXPECT_EQ(textOf(begin + "\x3d\xd8"s + end), kRefused);         // the same before markup
    EXPECT_EQ(textOf(begin + "\x00\xdex\0"s + end), kRefused);      // the second half alone
    EXPECT_EQ(textOf(begin + "\x3d\xd8\x3d\xd8"s + end), kRefused); // two first halves
    EXPECT_EQ(textOf(begin + "\xff\xff"s + end), kRefused);         // a forbidden character
    EXPECT_EQ(textOf(begin + "\x01\0"s + end), kRefused);           // another
    EXPECT_EQ(textOf(begin + "x\0"s + end + "\n"s), kRefused);      // half a character
    EXPECT_EQ(textOf(utf16("<a/>", ByteOrder::Big) + "\0"s), kRefused);
}

TEST_F(XmlEncoding, SingleByteEncodingsAreRead) {
    EXPECT_EQ(textOf(declared("ISO-8859-1", "<a>\xe9&#x1F600;</a>")), "\xc3\xa9\xf0\x9f\x98\x80");
    EXPECT_EQ(textOf(declared("iso-8859-1", "<a>\xe9</a>")), "\xc3\xa9");
    EXPECT_EQ(textOf(declared("latin1", "<a>\xe9</a>")), "\xc3\xa9");
    EXPECT_EQ(textOf(declared("ISO-8859-15", "<a>\xa4</a>")), "\xe2\x82\xac");
    EXPECT_EQ(textOf(declared("windows-1252", "<a>\x80\xe9</a>")), "\xe2\x82\xac\xc3\xa9");
    EXPECT_EQ(textOf(declared("KOI8-R", "<a>\xc1</a>")), "\xd0\xb0");
}

TEST_F(XmlEncoding, EncodingsThatLeaveBytesUnassignedAreReadWithoutThose) {
    EXPECT_EQ(textOf(declared("ISO-8859-3", "<a>\xe9</a>")), "\xc3\xa9");
    EXPECT_EQ(textOf(declared("ISO-8859-3", "<a>\xa5</a>")), kRefused);
}

TEST_F(XmlEncoding, AsciiHasNoOtherBytes) {
    EXPECT_EQ(textOf(declared("US-ASCII", "<a>x&#233;</a>")), "x\xc3\xa9");
    EXPECT_EQ(textOf(declared("US-ASCII", "<a>\xe9</a>")), kRefused);
    EXPECT_EQ(textOf(declared("ASCII", "<a>\xe9</a>")), kRefused);
}

TEST_F(XmlEncoding, SingleByteEncodingsAreHeldToTheMarkupToo) {
    EXPECT_EQ(textOf(declared("windows-1252", "<a b='1' b='2'>x</a>")), kRefused);
    EXPECT_EQ(textOf(declared("ISO-8859-1", "<a>\x01</a>")), kRefused);
}

TEST_F(XmlEncoding, EncodingsOfSeveralBytesOrOfAnotherAlphabetAreRefused) {
    for (const std::string encoding : {"Shift_JIS", "EUC-JP", "GBK", "GB18030", "Big5", "EUC-KR", "UTF-7", "UTF-32",
                                       "ISO-2022-JP", "HZ-GB-2312", "ISO-10646-UCS-2", "IBM037", "no-such-encoding"}) {
        EXPECT_EQ(textOf(declared(encoding, "<a>x</a>")), kRefused) << encoding;
    }
}

TEST_F(XmlEncoding, EncodingThatContradictsTheBytesIsRefused) {
    EXPECT_EQ(textOf(declared("UTF-16", "<a>x</a>")), kRefused);
    EXPECT_EQ(textOf(utf16(declared("UTF-8", "<a>x</a>"), ByteOrder::Big)), kRefused);
    EXPECT_EQ(textOf(utf16(declared("UTF-16LE", "<a>x</a>"), ByteOrder::Big)), kRefused);
    EXPECT_EQ(textOf("\xef\xbb\xbf" + declared("ISO-8859-1", "<a>x</a>")), kRefused);
}

TEST_F(XmlEncoding, Version11IsRefused) {
    EXPECT_EQ(textOf("<?xml version='1.1'?><a>x</a>"), kRefused);
    EXPECT_EQ(textOf("<?xml version='1.0'?><a>x</a>"), "x");
}
