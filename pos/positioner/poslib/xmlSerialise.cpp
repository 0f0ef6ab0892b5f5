#include "xmlSerialise.h"

#include <QRegularExpression>
#include <QTextCodec>
#include <QTextStream>
#include <algorithm>
#include <vector>

namespace pos {

namespace {

/** The XML declaration, or a null node. The XML library keeps it as the first processing instruction. */
QDomNode declarationOf(const QDomDocument& document) {
    const QDomNode first = document.firstChild();
    return first.isProcessingInstruction() && first.nodeName() == QLatin1String("xml") ? first : QDomNode();
}

/** The encoding that a declaration names; UTF-8 where it names none. */
const QTextCodec& declaredCodec(const QDomNode& declaration) {
    static const QRegularExpression pattern(QStringLiteral("encoding\\s*=\\s*[\"']([^\"']*)[\"']"));
    const QString name = pattern.match(declaration.nodeValue()).captured(1);
    const QTextCodec* const codec = QTextCodec::codecForName(name.toLatin1());
    return codec != nullptr ? *codec : *QTextCodec::codecForName("UTF-8");
}

/**
 * An encoding that has every character. The XML library asks the declared encoding about each character that it writes,
 * and the ordinary ones answer by encoding it.
 */
class EveryCharacter : public QTextCodec {
public:
    QByteArray name() const override {
        return "x-every-character";
    }
    int mibEnum() const override {
        return kPrivateMib;
    }

protected:
    QString convertToUnicode(const char* /*text*/, int /*length*/, ConverterState* /*state*/) const override {
        return {};
    }
    QByteArray convertFromUnicode(const QChar* /*text*/, int /*length*/, ConverterState* /*state*/) const override {
        return {};
    }

private:
    static constexpr int kPrivateMib = -20160815; ///< of no registered encoding
};

/** The declaration by which the XML library finds that encoding. */
QString declarationOfEveryCharacter() {
    // It registers itself and then belongs to the library.
    static const EveryCharacter* const codec = new EveryCharacter;
    return QStringLiteral("encoding='") + QString::fromLatin1(codec->name()) + QLatin1Char('\'');
}

/**
 * The text of a whole document, as characters.
 *
 * The XML library replaces what the declared encoding lacks by references, but halves a character beyond the basic
 * plane, into what no reader accepts. So it is made to believe in an encoding that lacks nothing.
 */
QString characters(const QDomDocument& document) {
    QDomNode declaration = declarationOf(document);
    const QString value = declaration.nodeValue();
    declaration.setNodeValue(declarationOfEveryCharacter());
    QString text;
    QTextStream stream(&text);
    document.save(stream, 1);
    stream.flush();
    if (!declaration.isNull()) {
        declaration.setNodeValue(value);
        text.replace(0, text.indexOf(QLatin1Char('\n')), QStringLiteral("<?xml ") + value + QStringLiteral("?>"));
    }
    return text;
}

/** For each processing instruction of a tree, in document order: whether text follows it directly. */
void findInstructionsBeforeText(const QDomNode& parent, std::vector<bool>& found) {
    for (QDomNode node = parent.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isProcessingInstruction()) {
            found.push_back(node.nextSibling().isText());
        }
        findInstructionsBeforeText(node, found);
    }
}

/** Takes away the line break that the XML library puts between a processing instruction and the text behind it. */
QString joinTextToInstructions(const QString& text, const std::vector<bool>& beforeText) {
    static const QRegularExpression pattern(QStringLiteral("<!--.*?-->|<!\\[CDATA\\[.*?\\]\\]>|<\\?.*?\\?>"),
                                            QRegularExpression::DotMatchesEverythingOption);
    QString joined;
    int copied = 0;
    std::size_t instruction = 0;
    for (auto matches = pattern.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        if (match.capturedRef().startsWith(QLatin1String("<?")) && beforeText.at(instruction++)) {
            joined += text.midRef(copied, match.capturedEnd() - copied);
            copied = match.capturedEnd() + 1;
        }
    }
    return joined + text.midRef(copied);
}

/** The bytes of a text in an encoding, with references for the characters that the encoding lacks. */
QByteArray encode(const QString& text, const QTextCodec& codec) {
    if (codec.canEncode(text)) {
        return codec.fromUnicode(text);
    }
    QString escaped;
    for (const uint codePoint : text.toUcs4()) {
        const QString character = QString::fromUcs4(&codePoint, 1);
        escaped += codec.canEncode(character) ? character : QStringLiteral("&#x%1;").arg(codePoint, 0, 16);
    }
    return codec.fromUnicode(escaped);
}

} // namespace

QByteArray serialiseXml(const QDomDocument& document) {
    QString text = characters(document);
    std::vector<bool> beforeText;
    findInstructionsBeforeText(document, beforeText);
    if (std::find(beforeText.begin(), beforeText.end(), true) != beforeText.end()) {
        text = joinTextToInstructions(text, beforeText);
    }
    return encode(text, declaredCodec(declarationOf(document)));
}

} // namespace pos
