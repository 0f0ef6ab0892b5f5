// Documents of every kind of markup, in many encodings: all that a document says is in its tree, and in what is
// written.

#include "DocumentMaker.h"
#include "checkedRun.h"
#include "xml.h"
#include "xmlEncoding.h"
#include "xmlParse.h"
#include "xmlSerialise.h"

#include <QTextCodec>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

constexpr const char* kEncodings[] = {"UTF-8",    "UTF-16",       "UTF-16LE", "UTF-32",  "UTF-7",
                                      "US-ASCII", "ISO-8859-1",   "KOI8-R",   "GB18030", "Shift_JIS",
                                      "EUC-JP",   "windows-1252", "Big5",     "EUC-KR",  "ISO-2022-JP"};

QDomDocument loaded(const QByteArray& bytes) {
    return pos::parseXml(pos::decodeXml(bytes, "a.xml"), "a.xml").document;
}

/** The tree below the declaration, in whose encoding it need not stay. */
std::string treeWithoutDeclaration(const QDomDocument& document) {
    const std::string tree = treeText(document);
    const std::size_t begin = tree.find(" [7 xml]");
    return begin == std::string::npos ? tree : std::string(tree).erase(begin, tree.find('\n', begin) + 1 - begin);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider bytes(data, size);
    const char* const encoding = bytes.PickValueInArray(kEncodings);
    const MadeDocument made = makeDocument([&](int count) { return bytes.ConsumeIntegralInRange<int>(0, count - 1); });
    const QTextCodec& codec = *QTextCodec::codecForName(encoding);
    const QString text =
        QString::fromStdString("<?xml version='1.0' encoding='" + std::string(encoding) + "'?>" + made.source);
    const QByteArray source = codec.fromUnicode(text);
    if (codec.toUnicode(source) != text) {
        return 0; // it holds what the encoding lacks
    }
    const QDomDocument document = loaded(source);
    require(treeWithoutDeclaration(document) == made.tree, "the tree is what the document means");
    const QByteArray written = pos::serialiseXml(document);
    require(treeWithoutDeclaration(loaded(written)) == made.tree, "what is written means the same");
    require(pos::serialiseXml(loaded(written)) == written, "it is written in the same bytes again");
    return 0;
}
