#include "fixes.h"

#include "Program.h"
#include "TemporaryFolder.h"
#include "checked.h"

#include <QTextCodec>
#include <gtest/gtest.h>

using namespace pos;

namespace {

/** The faultless document with a version, and with other text that must stay. */
QString documentWith(const QString& version) {
    QString document = QString::fromStdString(kFaultless);
    document.replace(QStringLiteral("encoding=\"UTF-8\""), QStringLiteral("encoding='%1'"));
    document.replace(QStringLiteral("datamver=\"8.00\""), "datamver = '" + version + "'");
    return document.replace(QStringLiteral("<fields>\n"), QStringLiteral("<fields><!-- \u00e9 -->\r\n"));
}

std::optional<QByteArray> mended(const QByteArray& bytes) {
    const CheckResult result = checkDocument(bytes, "field.xml", builtInInstrument(), {});
    const auto mended = mendedDocument(bytes, result, "field.xml", builtInInstrument(), {});
    return mended ? std::optional(mended->bytes) : std::nullopt;
}

/** A text in UTF-32 behind a byte-order mark. */
QByteArray utf32(const QString& text) {
    QByteArray bytes("\xff\xfe\0\0", 4);
    for (const uint character : text.toUcs4()) {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes += static_cast<char>(character >> shift);
        }
    }
    return bytes;
}

} // namespace

TEST(Fixes, LeaveEverythingElseByteForByte) {
    for (const char* const name : {"UTF-8", "ISO-8859-1", "windows-1252", "UTF-16", "UTF-16BE", "GB18030"}) {
        const QTextCodec& codec = *QTextCodec::codecForName(name);
        const QByteArray wrong = codec.fromUnicode(documentWith(QStringLiteral("8.0")).arg(name));
        const QByteArray right = codec.fromUnicode(documentWith(QStringLiteral("8.00")).arg(name));
        EXPECT_EQ(mended(wrong), right) << name;
        EXPECT_EQ(mended(right), std::nullopt) << name;
    }
    const QByteArray marked = "\xef\xbb\xbf" + documentWith(QStringLiteral("8.0")).arg("utf-8").toUtf8();
    EXPECT_EQ(mended(marked), "\xef\xbb\xbf" + documentWith(QStringLiteral("8.00")).arg("utf-8").toUtf8());
    // Two of Qt's characters are one of UTF-32.
    const QString star = documentWith("8.0").arg("UTF-32") + QStringLiteral("<!-- \U0001F31F -->");
    EXPECT_EQ(mended(utf32(star)), utf32(QString(star).replace("8.0", "8.00")));
}

TEST(Fixes, MendANameInBothTags) {
    QByteArray wrong = QByteArray::fromStdString(kFaultless);
    wrong.replace("observation", "Observation").replace("<fields>", "<Fields >").replace("</fields>", "</Fields\n>");
    QByteArray right = wrong;
    EXPECT_EQ(mended(wrong), right.replace("Observation", "observation").replace("Fields", "fields"));
}

TEST(Fixes, TheDiffIsOneThatPatchApplies) {
    const QByteArray before = "1\n2\n3\n4\nold\n6\n7\n8\n9\n10\n11\n12\n13\nold";
    const QByteArray after = "1\n2\n3\n4\nnew\n6\n7\n8\n9\n10\n11\n12\n13\nnew";
    const TemporaryFolder folder;
    const std::string file = folder.write("f.xml", before.toStdString());
    const std::string diff = folder.write("f.diff", unifiedDiff(before, after, "f.xml").toStdString());
    const ProgramResult patch = runCommand({"patch", "--batch", file, diff});
    EXPECT_EQ(patch.status, 0) << patch.out << patch.err;
    EXPECT_EQ(folder.read("f.xml"), after.toStdString());
}
