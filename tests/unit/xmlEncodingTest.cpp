#include "xmlEncoding.h"

#include "MalformedXml.h"
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
constexpr const char* kUnknown = "(unknown)";

} // namespace

class XmlEncoding : public ProcessWideState {
protected:
    /** The text of the document element, or kRefused for a document that is not valid XML, or kUnknown. */
    std::string textOf(const std::string& bytes) const {
        const std::string name = folder_.write("a.xml", bytes);
        try {
            return loadXmlFile(name).documentElement().text().toStdString();
        } catch (const std::runtime_error& error) {
            if (error.what() == name + " declares an encoding that is not known") {
                return kUnknown;
            }
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
    EXPECT_EQ(textOf("\xef\xbb\xbf\xef\xbb\xbf<a/>"), kRefused);
    // Its common misspelling is known.
    EXPECT_EQ(textOf(declared("utf8", "<a>\xc3\xa9</a>")), "\xc3\xa9");
    EXPECT_EQ(textOf(declared("UTF8", "<a>\xe9</a>")), kRefused);
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

TEST_F(XmlEncoding, OneCharacterShowsThatItIsUtf16) {
    EXPECT_EQ(pos::decodeXml(QByteArray("\0<", 2), "a.xml"), "<");
    EXPECT_EQ(pos::decodeXml(QByteArray("<\0", 2), "a.xml"), "<");
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

TEST_F(XmlEncoding, DeclaredEncodingsAreRead) {
    struct Row {
        const char* encoding;
        const char* bytes;
        const char* utf8;
    };
    // From their tables; 日本 in those of several bytes.
    for (const auto& [encoding, bytes, utf8] :
         {Row{"iso-8859-1", "\xe9&#x1F600;", "\xc3\xa9\xf0\x9f\x98\x80"}, Row{"latin1", "\xe9", "\xc3\xa9"},
          Row{"ISO-8859-3", "\xe9", "\xc3\xa9"}, Row{"ISO-8859-15", "\xa4", "\xe2\x82\xac"},
          Row{"windows-1252", "\x80\xe9", "\xe2\x82\xac\xc3\xa9"}, Row{"KOI8-R", "\xc1", "\xd0\xb0"},
          Row{"US-ASCII", "x&#233;", "x\xc3\xa9"}, Row{"Shift_JIS", "\x93\xfa\x96\x7b", "\xe6\x97\xa5\xe6\x9c\xac"},
          Row{"EUC-JP", "\xc6\xfc\xcb\xdc", "\xe6\x97\xa5\xe6\x9c\xac"},
          Row{"GBK", "\xc8\xd5\xb1\xbe", "\xe6\x97\xa5\xe6\x9c\xac"},
          Row{"GB18030", "\xc8\xd5\xb1\xbe", "\xe6\x97\xa5\xe6\x9c\xac"},
          Row{"Big5", "\xa4\xe9\xa5\xbb", "\xe6\x97\xa5\xe6\x9c\xac"},
          Row{"ISO-2022-JP", "\x1b$BF|K\\\x1b(B", "\xe6\x97\xa5\xe6\x9c\xac"},
          Row{"UTF-7", "+ZeVnLA-", "\xe6\x97\xa5\xe6\x9c\xac"},
          // The character that stands for what was not understood can be meant.
          Row{"GB18030", "\x84\x31\xa4\x37", "\xef\xbf\xbd"}}) {
        EXPECT_EQ(textOf(declared(encoding, std::string("<a>") + bytes + "</a>")), utf8) << encoding;
    }
    const std::string utf32 = declared("UTF-32", "<a>x</a>");
    std::string bytes("\xff\xfe\0\0", 4);
    for (const char character : utf32) {
        bytes += character + std::string(3, '\0');
    }
    EXPECT_EQ(textOf(bytes), "x");
}

TEST(XmlEncodingErrors, ArePlacedWhereReadingStops) {
    const auto readPart = [](const std::string& document) {
        const QByteArray bytes = QByteArray::fromStdString(document);
        try {
            decodeXml(bytes, "a.xml");
        } catch (const UnreadableXml& error) {
            return decodedForPeople(bytes).left(error.offset()).toStdString();
        }
        return std::string("(taken)");
    };
    EXPECT_EQ(readPart(declared("none", "<a/>")), "<?xml version='1.0' encoding='");
    EXPECT_EQ(readPart("\xef\xbb\xbf" + declared("none", "<a/>")), "<?xml version='1.0' encoding='");
    EXPECT_EQ(readPart(utf16(declared("UTF-8", "<a/>"), ByteOrder::Big)), "<?xml version='1.0' encoding='");
    EXPECT_EQ(readPart(declared("EUC-JP", "<a>\xc6\xfc\xa4</a>")),
              declared("EUC-JP", "<a>\xe6\x97\xa5")); // the first of two bytes alone
    EXPECT_EQ(readPart(utf16("<a/>", ByteOrder::Little) + "x"), "<a/>");
}

TEST_F(XmlEncoding, BytesThatMeanNothingAreRefusedWhereverTheyStand) {
    for (const auto& [encoding, bytes] : std::vector<std::pair<std::string, std::string>>{{"ISO-8859-1", "\x01"},
                                                                                          {"ISO-8859-3", "\xa5"},
                                                                                          {"US-ASCII", "\xe9"},
                                                                                          {"ASCII", "\xe9"},
                                                                                          {"Shift_JIS", "\x81\xff"},
                                                                                          {"EUC-JP", "\xa4"},
                                                                                          {"GB18030", "\xff"},
                                                                                          {"UTF-7", "\xa4"},
                                                                                          {"ISO-2022-JP", "\xa4"}}) {
        EXPECT_EQ(textOf(declared(encoding, "<a>" + bytes + "</a>")), kRefused) << encoding;
        EXPECT_EQ(textOf(declared(encoding, "<a b='" + bytes + "'/>")), kRefused) << encoding;
        EXPECT_EQ(textOf(declared(encoding, "<a/>" + bytes)), kRefused) << encoding;
    }
    EXPECT_EQ(textOf(declared("windows-1252", "<a b='1' b='2'>x</a>")), kRefused);
}

TEST_F(XmlEncoding, EncodingsThatAreNotKnownAreTold) {
    EXPECT_EQ(textOf(declared("no-such-encoding", "<a>x</a>")), kUnknown);
    EXPECT_EQ(textOf(declared(std::string(1'000'000, 'U'), "<a>x</a>")), kUnknown);
    EXPECT_EQ(textOf(declared("", "<a>x</a>")), kUnknown);
}

TEST_F(XmlEncoding, EncodingsInWhichTheDeclarationIsNoDeclarationAreRefused) {
    for (const std::string encoding : {"IBM037", "UTF-32", "UTF-16BE", "ISO-10646-UCS-2"}) {
        EXPECT_EQ(textOf(declared(encoding, "<a>x</a>")), kRefused) << encoding;
    }
}

TEST_F(XmlEncoding, EncodingThatContradictsTheBytesIsRefused) {
    EXPECT_EQ(textOf(declared("UTF-16", "<a>x</a>")), kRefused);
    EXPECT_EQ(textOf(utf16(declared("UTF-8", "<a>x</a>"), ByteOrder::Big)), kRefused);
    EXPECT_EQ(textOf(utf16(declared("UTF-16LE", "<a>x</a>"), ByteOrder::Big)), kRefused);
    EXPECT_EQ(textOf("\xef\xbb\xbf" + declared("ISO-8859-1", "<a>x</a>")), kRefused);
}
