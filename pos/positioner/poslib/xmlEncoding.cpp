#include "xmlEncoding.h"

#include "MalformedXml.h"

#include <QRegularExpression>
#include <QTextCodec>
#include <algorithm>

namespace pos {

namespace {

const QRegularExpression& encodingPattern() {
    static const QRegularExpression pattern(QStringLiteral("\\bencoding\\s*=\\s*[\"']([^\"']*)[\"']"));
    return pattern;
}

/** The XML declaration at the beginning of a text, read as ASCII; empty without one. */
QString declarationAtBeginning(const QByteArray& text) {
    static const QRegularExpression begin(QStringLiteral("^<\\?xml\\s"));
    if (!begin.match(QString::fromLatin1(text.left(6))).hasMatch()) {
        return {};
    }
    return QString::fromLatin1(text.left(text.indexOf("?>")));
}

/** Where the name of the encoding stands in a declaration; 0 without one. */
int placeOfEncoding(const QString& declaration) {
    return std::max(0, encodingPattern().match(declaration).capturedStart(1));
}

const QTextCodec& requireKnown(const QString& declaration, const std::string& name) {
    const QTextCodec* const encoding = declaredEncoding(declaration);
    if (encoding == nullptr) {
        throw UnreadableXml(name + " declares an encoding that is not known", placeOfEncoding(declaration));
    }
    return *encoding;
}

/** The encoding that the bytes themselves show: by a mark, or as UTF-16 by the NUL beside the first character. */
const QTextCodec* encodingByBytes(const QByteArray& bytes) {
    if (const QTextCodec* const marked = QTextCodec::codecForUtfText(bytes, nullptr)) {
        return marked;
    }
    if (bytes.size() < 2 || (bytes.at(0) != '\0' && bytes.at(1) != '\0')) {
        return nullptr;
    }
    return QTextCodec::codecForName(bytes.at(0) == '\0' ? "UTF-16BE" : "UTF-16LE");
}

QByteArray fromUnicode(const QTextCodec& encoding, const QString& text) {
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return encoding.fromUnicode(text.constData(), text.size(), &state);
}

QByteArray withoutMark(const QString& text) {
    return (text.startsWith(QChar::ByteOrderMark) ? text.mid(1) : text).toUtf8();
}

/**
 * Converts from any encoding. Some converters do not count what they replace, so a replacement character counts only if
 * the bytes stand for it.
 *
 * @throw MalformedXml for bytes that stand for nothing
 */
QByteArray toUtf8(const QTextCodec& encoding, const QByteArray& bytes, const std::string& name) {
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text = encoding.toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars != 0 || state.remainingChars != 0 || !text.isValidUtf16() ||
        (text.contains(QChar::ReplacementCharacter) && fromUnicode(encoding, text) != bytes)) {
        throw MalformedXml(name, withoutMark(text.left(text.indexOf(QChar::ReplacementCharacter))).size(),
                           "these bytes are not " + encoding.name().toStdString());
    }
    return withoutMark(text);
}

} // namespace

const QTextCodec* declaredEncoding(const QString& declaration) {
    const QRegularExpressionMatch match = encodingPattern().match(declaration);
    return QTextCodec::codecForName(match.hasMatch() ? match.captured(1).toLatin1() : QByteArrayLiteral("UTF-8"));
}

QString declaredAsUtf8(QString declaration) {
    return declaration.replace(encodingPattern(), QStringLiteral("encoding='UTF-8'"));
}

bool isUtf8(const QTextCodec& encoding) {
    constexpr int kRegisteredNumber = 106;
    return encoding.mibEnum() == kRegisteredNumber;
}

QByteArray decodeXml(const QByteArray& bytes, const std::string& name) {
    const QTextCodec* const told = encodingByBytes(bytes);
    if (told == nullptr) {
        const QTextCodec& declared = requireKnown(declarationAtBeginning(bytes), name);
        if (isUtf8(declared)) {
            return bytes;
        }
        // A character that is cut off at the end shows only if something follows it.
        QByteArray text = toUtf8(declared, bytes + '\n', name);
        text.chop(1);
        return text;
    }
    QByteArray text = isUtf8(*told) ? bytes.mid(3) : toUtf8(*told, bytes, name);
    const QString declaration = declarationAtBeginning(text);
    // "UTF-16" may be declared for either order of bytes.
    if (declaration.contains(encodingPattern()) && !told->name().startsWith(requireKnown(declaration, name).name())) {
        throw MalformedXml(name, placeOfEncoding(declaration),
                           "its bytes are " + told->name().toStdString() + ", in spite of its declaration");
    }
    return text;
}

QByteArray decodedForPeople(const QByteArray& bytes) {
    const QTextCodec* const told = encodingByBytes(bytes);
    const QTextCodec* const encoding = told != nullptr ? told : declaredEncoding(declarationAtBeginning(bytes));
    return withoutMark((encoding != nullptr ? encoding : QTextCodec::codecForName("UTF-8"))->toUnicode(bytes));
}

std::optional<QByteArray> encodeXml(const QByteArray& text, const QByteArray& document) {
    const QByteArray before = decodeXml(document, "");
    if (document.endsWith(before)) { // as it is, behind a mark
        return document.left(document.size() - before.size()) + text;
    }
    const QTextCodec* const told = encodingByBytes(document);
    const QTextCodec& encoding = told != nullptr ? *told : *declaredEncoding(declarationAtBeginning(document));
    const auto encoded = [&encoding](const QString& unicode) {
        const QByteArray bytes = fromUnicode(encoding, unicode);
        // The converter to UTF-32 leaves room behind for both halves of each surrogate pair.
        return encoding.name().startsWith("UTF-32") ? bytes.left(4 * unicode.toUcs4().size()) : bytes;
    };
    for (const QString& mark : {QString(), QString(QChar::ByteOrderMark)}) {
        QByteArray bytes = encoded(mark + QString::fromUtf8(text));
        if (encoded(mark + QString::fromUtf8(before)) == document && decodeXml(bytes, "") == text) {
            return bytes;
        }
    }
    return std::nullopt;
}

} // namespace pos
