#include "xmlSerialise.h"

#include "fileAccess.h"
#include "xmlEncoding.h"
#include "xmlParse.h"

#include <QTextCodec>
#include <map>
#include <stdexcept>

namespace pos {

namespace {

/** The characters that an encoding has. */
class Repertoire {
public:
    explicit Repertoire(const QTextCodec& encoding) : encoding_(encoding) {}

    bool has(const QString& text) const {
        return encoding_.canEncode(text);
    }
    bool has(uint codePoint) {
        const auto known = known_.find(codePoint);
        if (known != known_.end()) {
            return known->second;
        }
        return known_[codePoint] = has(QString::fromUcs4(&codePoint, 1));
    }

private:
    const QTextCodec& encoding_;
    std::map<uint, bool> known_;
};

/** The XML declaration, or a null node. The XML library keeps it as the first processing instruction. */
QDomNode declarationOf(const QDomDocument& document) {
    const QDomNode first = document.firstChild();
    return first.isProcessingInstruction() && first.nodeName() == QLatin1String("xml") ? first : QDomNode();
}

/** Writes a tree as the XML library does, but in one pass over every text. */
class Writer {
public:
    /** @param repertoire of the encoding; null if that has every character */
    explicit Writer(Repertoire* repertoire) : repertoire_(repertoire) {}

    QString write(const QDomDocument& document) {
        QDomNode node = document.firstChild();
        if (!declarationOf(document).isNull()) {
            // Without a repertoire the document is written in UTF-8, whatever encoding it declares.
            put("<?xml ").put(repertoire_ != nullptr ? node.nodeValue() : utf8Declaration(node)).put("?>\n");
            node = node.nextSibling();
        }
        putDocumentType(document.doctype());
        putSiblings(node, 0);
        return text_;
    }

private:
    static QString utf8Declaration(const QDomNode& declaration) {
        const QString value = declaration.nodeValue();
        const QTextCodec* const declared = declaredEncoding(value);
        return declared != nullptr && isUtf8(*declared) ? value : declaredAsUtf8(value);
    }

    template <typename Text> Writer& put(const Text& text) {
        text_ += text;
        checkOutputSize(text_.size()); // a character takes at least a byte
        return *this;
    }
    Writer& put(const char* text) {
        return put(QLatin1String(text));
    }
    Writer& put(char character) {
        return put(QLatin1Char(character));
    }

    void putDocumentType(const QDomDocumentType& type) {
        if (type.name().isEmpty()) {
            return;
        }
        put("<!DOCTYPE ").put(type.name());
        if (!type.publicId().isNull()) {
            put(" PUBLIC ").putQuoted(type.publicId());
        } else if (!type.systemId().isNull()) {
            put(" SYSTEM");
        }
        if (!type.systemId().isNull()) {
            put(' ').putQuoted(type.systemId());
        }
        put(">\n");
    }

    void putQuoted(const QString& identifier) {
        const char quote = identifier.contains(QLatin1Char('\'')) ? '"' : '\'';
        put(quote).put(identifier).put(quote);
    }

    /** Writes a node and all that follow it in its parent. */
    void putSiblings(QDomNode node, int depth) {
        bool isBehindText = false;
        for (; !node.isNull(); node = node.nextSibling()) {
            const bool isText = node.isText(); // of CDATA sections too
            if (!isText && !isBehindText && !node.isProcessingInstruction()) {
                indent(depth);
            }
            putNode(node, depth);
            if (!isText && !node.nextSibling().isText()) {
                put('\n');
            }
            isBehindText = isText;
        }
    }

    void putNode(const QDomNode& node, int depth) {
        if (node.isElement()) {
            putElement(node.toElement(), depth);
        } else if (node.isCDATASection() && !node.nodeValue().contains(QLatin1Char('\r'))) {
            put("<![CDATA[").put(node.nodeValue()).put("]]>");
        } else if (node.isText()) { // and a section that holds what only a reference can stand for
            putEscaped(node.nodeValue(), false);
        } else if (node.isComment()) {
            put("<!--").put(node.nodeValue()).put("-->");
        } else if (node.isProcessingInstruction()) {
            put("<?").put(node.nodeName()).put(' ').put(node.nodeValue()).put("?>");
        }
    }

    /** @param depth how many elements this one stands in */
    void putElement(const QDomElement& element, int depth) {
        if (depth >= kMaxElementDepth) {
            throw std::runtime_error("The output would be nested more than " + std::to_string(kMaxElementDepth) +
                                     " levels deep");
        }
        const QString name = element.tagName();
        put('<').put(name);
        const QDomNamedNodeMap attributes = element.attributes();
        if (attributes.size() > kMaxAttributes) {
            throw std::runtime_error("The output would have more than " + std::to_string(kMaxAttributes) +
                                     " attributes in one tag");
        }
        for (int i = 0; i < attributes.size(); ++i) {
            const QDomNode attribute = attributes.item(i);
            put(' ').put(attribute.nodeName()).put("=\"");
            putEscaped(attribute.nodeValue(), true);
            put('"');
        }
        const QDomNode first = element.firstChild();
        if (first.isNull()) {
            put("/>");
            return;
        }
        put(first.isText() ? ">" : ">\n");
        putSiblings(first, depth + 1);
        if (!element.lastChild().isText()) {
            indent(depth);
        }
        put("</").put(name).put('>');
    }

    void indent(int depth) {
        put(QString(depth, QLatin1Char(' ')));
    }

    void putEscaped(const QString& text, bool isAttribute) {
        if (repertoire_ != nullptr && !repertoire_->has(text)) {
            putWithReferences(text, isAttribute);
            return;
        }
        int begin = 0;
        for (int i = 0; i < text.size(); ++i) {
            if (const char* const escape = escapeOf(text, i, isAttribute)) {
                put(text.midRef(begin, i - begin)).put(escape);
                begin = i + 1;
            }
        }
        put(text.midRef(begin));
    }

    /** Writes a text with characters that the encoding lacks. */
    void putWithReferences(const QString& text, bool isAttribute) {
        for (int i = 0; i < text.size(); ++i) {
            const bool isPair = text.at(i).isHighSurrogate();
            const uint codePoint = isPair ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1)) : text.at(i).unicode();
            if (const char* const escape = escapeOf(text, i, isAttribute)) {
                put(escape);
            } else if (repertoire_->has(codePoint)) {
                put(text.midRef(i, isPair ? 2 : 1));
            } else {
                put("&#x").put(QString::number(codePoint, 16)).put(';');
            }
            i += isPair ? 1 : 0;
        }
    }

    /** What must stand for a character; null if the character can stand for itself. */
    static const char* escapeOf(const QString& text, int place, bool isAttribute) {
        const ushort unit = text.at(place).unicode();
        if (unit > '>') {
            return nullptr; // most characters end here
        }
        switch (unit) {
        case '<':
            return "&lt;";
        case '&':
            return "&amp;";
        case '>':
            return place >= 2 && text.at(place - 1) == QLatin1Char(']') && text.at(place - 2) == QLatin1Char(']')
                       ? "&gt;"
                       : nullptr;
        case '"':
            return isAttribute ? "&quot;" : nullptr;
        case '\t':
            return isAttribute ? "&#x9;" : nullptr;
        case '\n':
            return isAttribute ? "&#xa;" : nullptr;
        case '\r':
            return "&#xd;";
        default:
            return nullptr;
        }
    }

    Repertoire* const repertoire_;
    QString text_;
};

/** Whether bytes decode to a text: some encodings put something before a declaration, or have no way back. */
bool isReadAs(const QString& text, const QByteArray& bytes) {
    try {
        return decodeXml(bytes, "") == text.toUtf8();
    } catch (const MalformedXml&) {
        return false;
    }
}

} // namespace

void checkOutputSize(qint64 bytes) {
    if (bytes > kMaxFileSize) {
        throw std::runtime_error("The output would be larger than 256 MiB");
    }
}

QByteArray serialiseXml(const QDomDocument& document) {
    const QTextCodec* const declared = declaredEncoding(declarationOf(document).nodeValue());
    if (declared != nullptr && !isUtf8(*declared)) {
        Repertoire repertoire(*declared);
        const QString text = Writer(&repertoire).write(document);
        QByteArray bytes = declared->fromUnicode(text);
        if (isReadAs(text, bytes)) {
            checkOutputSize(bytes.size());
            return bytes;
        }
    }
    QByteArray bytes = Writer(nullptr).write(document).toUtf8();
    checkOutputSize(bytes.size());
    return bytes;
}

} // namespace pos
