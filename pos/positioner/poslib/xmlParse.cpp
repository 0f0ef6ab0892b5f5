#include "xmlParse.h"

#include <QTextCodec>
#include <QXmlStreamEntityResolver>
#include <QXmlStreamReader>
#include <algorithm>
#include <cstring>
#include <exception>
#include <expat.h>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>

namespace pos {

namespace {

using ParserOwner = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

/** The parser gets the document in pieces of so many bytes, of which the first must hold all of a document type. */
constexpr int kPieceSize = kMaxDoctypeEnd;

/** The registered number of the encoding UTF-8. */
constexpr int kMibUtf8 = 106;

bool isUtf8(const QTextCodec* codec) {
    return codec != nullptr && codec->mibEnum() == kMibUtf8;
}

bool isBlank(const QString& text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
}

/** A text that may be missing; then it is null. */
QString decoded(const XML_Char* text) {
    return QString::fromUtf8(text);
}

/**
 * Whether a text in UTF-16, as the parser recognises it, has half of a surrogate pair alone. Some versions of the
 * parser take that, with whatever follows, for a character.
 */
bool hasLoneSurrogate(const QByteArray& text) {
    if (text.size() < 2) {
        return false;
    }
    const bool isBigEndian = text.startsWith("\xfe\xff") || text.at(0) == '\0';
    if (!isBigEndian && !text.startsWith("\xff\xfe") && text.at(1) != '\0') {
        return false; // not UTF-16
    }
    bool secondIsDue = false;
    for (int i = isBigEndian ? 0 : 1; i < text.size(); i += 2) {
        const int highBits = static_cast<unsigned char>(text.at(i)) & 0xfc;
        if (secondIsDue != (highBits == 0xdc)) {
            return true;
        }
        secondIsDue = highBits == 0xd8;
    }
    return secondIsDue;
}

/** Describes a single-byte encoding that the parser does not know by itself. @return whether it is one */
bool describeEncoding(const QTextCodec& codec, XML_Encoding& info) {
    for (int byte = 0; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
        const QString unicode = codec.toUnicode(&character, 1, &state);
        if (unicode.isEmpty()) {
            return false; // the first byte of several
        }
        const bool complete =
            state.invalidChars == 0 && unicode.size() == 1 && unicode.at(0) != QChar::ReplacementCharacter;
        if (!complete && byte < 128) {
            return false;
        }
        info.map[byte] = complete ? unicode.at(0).unicode() : -1;
    }
    info.data = nullptr;
    info.convert = nullptr;
    info.release = nullptr;
    return true;
}

/** Lets texts be looked up as they stand in the parser's memory. */
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>{}(text);
    }
};

/** Builds a tree from what the parser reports. */
class TreeBuilder {
public:
    /** @param encoding overrides what the document declares; null to follow that */
    TreeBuilder(const QByteArray& text, const XML_Char* encoding)
        : text_(text), parser_(XML_ParserCreate(encoding), &XML_ParserFree) {
        if (!parser_) {
            throw std::bad_alloc();
        }
        XML_SetUserData(parser_.get(), this);
        XML_SetXmlDeclHandler(parser_.get(), call<&TreeBuilder::declaration>);
        XML_SetDoctypeDeclHandler(parser_.get(), call<&TreeBuilder::startDoctype>, call<&TreeBuilder::endDoctype>);
        XML_SetElementHandler(parser_.get(), call<&TreeBuilder::startElement>, call<&TreeBuilder::endElement>);
        XML_SetCharacterDataHandler(parser_.get(), call<&TreeBuilder::characters>);
        XML_SetCdataSectionHandler(parser_.get(), call<&TreeBuilder::startCdata>, call<&TreeBuilder::endCdata>);
        XML_SetCommentHandler(parser_.get(), call<&TreeBuilder::comment>);
        XML_SetProcessingInstructionHandler(parser_.get(), call<&TreeBuilder::instruction>);
        XML_SetNotStandaloneHandler(parser_.get(), noteDeclarationsElsewhere);
        XML_SetExternalEntityRefHandler(parser_.get(), refuseExternalEntity);
        XML_SetUnknownEncodingHandler(parser_.get(), unknownEncoding, this);
    }

    /** @return whether the tree is complete; otherwise something was refused */
    bool build() {
        bool isTaken = true;
        for (int begin = 0; isTaken && begin <= text_.size(); begin += kPieceSize) {
            isTaken = parsePiece(begin, std::min(begin + kPieceSize, text_.size()));
        }
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        return isTaken;
    }

    QDomDocument document() const {
        return document_;
    }

    /** Whether the declared encoding is UTF-8 under a name that the parser does not know. */
    bool isUtf8Alias() const {
        return isUtf8Alias_;
    }

    /** Whether entities may be declared in an external subset or the like. */
    bool hasDeclarationsElsewhere() const {
        return hasDeclarationsElsewhere_;
    }

private:
    /** Calls a member function as the parser, which is written in C, can: no exception may leave it. */
    template <auto kHandler, typename... Arguments>
    static void XMLCALL call(void* builder, Arguments... arguments) noexcept {
        auto* const self = static_cast<TreeBuilder*>(builder);
        if (self->isStopped_) {
            return;
        }
        try {
            (self->*kHandler)(arguments...);
        } catch (...) {
            self->failure_ = std::current_exception();
            self->stop();
        }
    }

    /** @return whether the document can go on, or be complete, behind the end of the piece */
    bool parsePiece(int begin, int end) {
        const int isLast = end < text_.size() ? 0 : 1;
        const bool isTaken = XML_Parse(parser_.get(), text_.constData() + begin, end - begin, isLast) == XML_STATUS_OK;
        isInPrologue_ = false;
        return isTaken && !inDoctype_ && end - XML_GetCurrentByteIndex(parser_.get()) <= kMaxMarkup;
    }

    void stop() {
        isStopped_ = true;
        XML_StopParser(parser_.get(), XML_FALSE);
    }

    void count(qint64 nodes, qint64 bytes) {
        nodes_ += nodes;
        bytes_ += bytes;
        if (nodes_ > std::max(kSmallTree, text_.size() / kMinBytesPerNode) ||
            bytes_ > std::max(kSmallText, 2 * qint64{text_.size()})) {
            stop();
        }
    }

    void append(const QDomNode& node) {
        appendText();
        count(1, 0);
        current_.appendChild(node);
    }

    /** Appends the text that has come in pieces. */
    void appendText() {
        const QString text = QString::fromUtf8(pendingText_);
        if (!isBlank(text)) {
            current_.appendChild(inCdata_ ? document_.createCDATASection(text) : document_.createTextNode(text));
            count(1, 0);
        }
        pendingText_.clear();
    }

    /** Names and values that come again, as most do, are kept once. */
    const QString& shared(const XML_Char* text) {
        const auto known = strings_.find(std::string_view(text));
        return known != strings_.end() ? known->second : strings_.emplace(text, decoded(text)).first->second;
    }

    void declaration(const XML_Char* version, const XML_Char* encoding, int standalone) {
        QString value = QStringLiteral("version='") + decoded(version) + QLatin1Char('\'');
        if (encoding != nullptr) {
            value += QStringLiteral(" encoding='") + decoded(encoding) + QLatin1Char('\'');
        }
        if (standalone == 1) {
            value += QStringLiteral(" standalone='yes'");
        }
        // Against a UTF-8 byte-order mark the parser would follow the declaration.
        const bool contradictsMark =
            encoding != nullptr && text_.startsWith("\xef\xbb\xbf") && !isUtf8(QTextCodec::codecForName(encoding));
        if (contradictsMark || std::strcmp(version, "1.0") != 0) {
            stop();
        }
        append(document_.createProcessingInstruction(QStringLiteral("xml"), value));
    }

    void startDoctype(const XML_Char* name, const XML_Char* systemId, const XML_Char* publicId, int /*hasSubset*/) {
        if (!isInPrologue_) {
            stop();
            return;
        }
        inDoctype_ = true;
        // The XML library takes a document type only when a document is made.
        QDomDocument typed(
            QDomImplementation().createDocumentType(decoded(name), decoded(publicId), decoded(systemId)));
        for (QDomNode node = document_.firstChild(); !node.isNull(); node = node.nextSibling()) {
            typed.appendChild(typed.importNode(node, true));
        }
        document_ = typed;
        current_ = document_;
    }

    void endDoctype() {
        inDoctype_ = false;
    }

    void startElement(const XML_Char* name, const XML_Char** attributes) {
        QDomElement element = document_.createElement(shared(name));
        append(element);
        if (*attributes != nullptr) {
            count(1, 0);
        }
        for (; *attributes != nullptr && !isStopped_; attributes += 2) {
            count(1, static_cast<qint64>(std::strlen(attributes[1])));
            element.setAttribute(shared(attributes[0]), shared(attributes[1]));
        }
        current_ = element;
        if (++depth_ > kMaxElementDepth) {
            stop();
        }
    }

    void endElement(const XML_Char* /*name*/) {
        appendText();
        current_ = current_.parentNode();
        --depth_;
    }

    void characters(const XML_Char* text, int length) {
        count(0, length);
        pendingText_.append(text, length);
    }

    void startCdata() {
        appendText();
        inCdata_ = true;
    }

    void endCdata() {
        appendText();
        inCdata_ = false;
    }

    void comment(const XML_Char* text) {
        if (!inDoctype_) {
            append(document_.createComment(decoded(text)));
        }
    }

    void instruction(const XML_Char* target, const XML_Char* data) {
        if (!inDoctype_) {
            append(document_.createProcessingInstruction(shared(target), decoded(data)));
        }
    }

    /** A reference in the content to an entity in another file. */
    static int XMLCALL refuseExternalEntity(XML_Parser /*parser*/, const XML_Char* /*context*/,
                                            const XML_Char* /*base*/, const XML_Char* /*systemId*/,
                                            const XML_Char* /*publicId*/) {
        return XML_STATUS_ERROR;
    }

    static int XMLCALL noteDeclarationsElsewhere(void* builder) {
        static_cast<TreeBuilder*>(builder)->hasDeclarationsElsewhere_ = true;
        return XML_STATUS_OK;
    }

    static int XMLCALL unknownEncoding(void* builder, const XML_Char* name, XML_Encoding* info) {
        const QTextCodec* const codec = QTextCodec::codecForName(name);
        static_cast<TreeBuilder*>(builder)->isUtf8Alias_ = isUtf8(codec);
        const bool isKnown = codec != nullptr && !isUtf8(codec) && describeEncoding(*codec, *info);
        return isKnown ? XML_STATUS_OK : XML_STATUS_ERROR;
    }

    const QByteArray& text_;
    const ParserOwner parser_;
    QDomDocument document_{QString()}; ///< without a document type
    QDomNode current_ = document_;
    QByteArray pendingText_;
    std::unordered_map<std::string, QString, TextHash, std::equal_to<>> strings_; ///< by their UTF-8
    qint64 nodes_ = 0;
    qint64 bytes_ = 0; ///< of all values and texts
    int depth_ = 0;
    bool isInPrologue_ = true;
    bool inDoctype_ = false;
    bool inCdata_ = false;
    bool isStopped_ = false;
    bool isUtf8Alias_ = false;
    bool hasDeclarationsElsewhere_ = false;
    std::exception_ptr failure_;
};

/** Notes whether a document refers to an entity that it does not declare. */
class UndeclaredEntities : public QXmlStreamEntityResolver {
public:
    bool found() const {
        return found_;
    }

protected:
    QString resolveUndeclaredEntity(const QString& /*name*/) override {
        found_ = true;
        return {};
    }

private:
    bool found_ = false;
};

/** For a document with declarations elsewhere: the parser passes over what might be declared there. */
bool refersToUndeclaredEntity(const QByteArray& text) {
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    UndeclaredEntities undeclared;
    reader.setEntityResolver(&undeclared);
    while (!reader.atEnd()) {
        reader.readNext();
    }
    return undeclared.found() || reader.hasError();
}

} // namespace

std::optional<QDomDocument> parseXml(const QByteArray& text) {
    if (hasLoneSurrogate(text)) {
        return std::nullopt;
    }
    std::optional<TreeBuilder> builder(std::in_place, text, nullptr);
    bool isTaken = builder->build();
    if (builder->isUtf8Alias()) {
        builder.emplace(text, "UTF-8");
        isTaken = builder->build();
    }
    if (!isTaken || (builder->hasDeclarationsElsewhere() && refersToUndeclaredEntity(text))) {
        return std::nullopt;
    }
    return builder->document();
}

} // namespace pos
