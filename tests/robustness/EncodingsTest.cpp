#include "hostileRun.h"

#include <QTextCodec>
#include <gtest/gtest.h>
#include <random>

// A document in encodings that are cut, mixed and falsely declared.

namespace {

class Encodings : public HostileRun {
protected:
    Encodings() {
        useThreeFibres();
    }
    RunEnd judged(const std::string& document, const std::string& caseName) {
        const RunEnd end = run(document, [this] { return config_; });
        judge(end, caseName);
        return end;
    }
    void expectConfigured(const std::string& document, const std::string& caseName) {
        EXPECT_EQ(judged(document, caseName).kind, RunEnd::Kind::Configured) << caseName;
    }
    void expectRefused(const std::string& document, const std::string& caseName) {
        EXPECT_EQ(judged(document, caseName).message,
                  "Error parsing field definition file: " + folder_.path("in.xml") + " is not valid XML\n")
            << caseName;
    }

    const pos::PosConfig config_ = smallConfig();
};

/** An example that declares an encoding, or nothing, still as UTF-8. */
std::string declaring(const std::string& encoding) {
    const std::string text = example("sombrero_south");
    const std::string declaration = encoding.empty() ? "" : "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>";
    return declaration + text.substr(text.find("?>") + 2);
}

/** A text in another encoding, with a mark if that names no order of bytes. */
std::string encoded(const std::string& text, const std::string& codec) {
    const bool isMarked = codec == "UTF-16" || codec == "UTF-32";
    QTextCodec::ConverterState state(isMarked ? QTextCodec::DefaultConversion : QTextCodec::IgnoreHeader);
    const QString unicode = QString::fromStdString(text);
    return QTextCodec::codecForName(codec.c_str())->fromUnicode(unicode.data(), unicode.size(), &state).toStdString();
}

} // namespace

TEST_F(Encodings, MayBeCutAtEveryByte) {
    const std::string document = encoded(declaring("UTF-16"), "UTF-16");
    for (std::size_t length = 0; length + 4 < document.size(); ++length) {
        expectRefused(document.substr(0, length), "the first " + std::to_string(length) + " bytes");
    }
    expectConfigured(document, "all of it");
}

TEST_F(Encodings, MayChangeOnTheWay) {
    constexpr unsigned int kSeed = 16;
    const std::string utf8 = declaring("");
    const std::string utf16 = "\xff\xfe" + encoded(utf8, "UTF-16LE");
    std::mt19937 random(kSeed);
    for (int i = 0; i < 200; ++i) {
        const std::size_t place = 1 + random() % (utf8.size() - 2);
        expectRefused(utf8.substr(0, place) + utf16.substr(2 + 2 * place), "UTF-16 from " + std::to_string(place));
        expectRefused(utf16.substr(0, 2 + 2 * place) + utf8.substr(place), "UTF-8 from " + std::to_string(place));
    }
}

TEST_F(Encodings, MayHaveAStrangeByteAnywhere) {
    const std::string document = declaring("");
    for (const std::string& strange : {std::string(1, '\0'), std::string("\xff"), std::string("\x80"),
                                       std::string("\xef\xbf\xbe"), std::string("\xed\xa0\x80"), std::string("\x1f")}) {
        for (std::size_t place = 0; place < document.size(); ++place) {
            std::string changed = document;
            expectRefused(changed.replace(place, 1, strange), "at " + std::to_string(place));
            expectRefused(document.substr(0, place) + strange + document.substr(place), "at " + std::to_string(place));
        }
    }
}
