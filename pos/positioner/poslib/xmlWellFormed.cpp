#include "xmlWellFormed.h"

#include <QTextCodec>
#include <cstring>
#include <expat.h>
#include <memory>
#include <new>
#include <type_traits>

namespace pos {

namespace {

using ParserOwner = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

/** The registered number of the encoding UTF-8. */
constexpr int kMibUtf8 = 106;

/**
 * Attributes that the document type declares with a default value come with every element, and the parser's own limit
 * on entities does not count them. Up to this many bytes, and this many times the document, they pass.
 */
constexpr qint64 kSmallExpansion = qint64{8} * 1024 * 1024;
constexpr qint64 kMaxExpansionFactor = 10;

/** What the handlers know about the place where the parser stands. */
struct ParserState {
    XML_Parser parser = nullptr;
    int depth = 0;
    qint64 attributeBytes = 0;    ///< of all values so far
    qint64 maxAttributeBytes = 0; ///< what they may add up to
    bool isUtf8Alias = false;     ///< the declared encoding is UTF-8 under a name that the parser does not know
};

void XMLCALL startElement(void* userData, const XML_Char* /*name*/, const XML_Char** attributes) {
    auto* const state = static_cast<ParserState*>(userData);
    int attributeCount = 0;
    for (; *attributes != nullptr; attributes += 2) {
        ++attributeCount;
        state->attributeBytes += static_cast<qint64>(std::strlen(attributes[1]));
    }
    ++state->depth;
    if (state->depth > kMaxElementDepth || attributeCount > kMaxAttributes ||
        state->attributeBytes > state->maxAttributeBytes) {
        XML_StopParser(state->parser, XML_FALSE);
    }
}

void XMLCALL endElement(void* userData, const XML_Char* /*name*/) {
    --static_cast<ParserState*>(userData)->depth;
}

/** A reference in the content to an entity in another file: nothing is read, so the text would be lost. */
int XMLCALL refuseExternalEntity(XML_Parser /*parser*/, const XML_Char* /*context*/, const XML_Char* /*base*/,
                                 const XML_Char* /*systemId*/, const XML_Char* /*publicId*/) {
    return XML_STATUS_ERROR;
}

/** Describes a single-byte encoding that the parser does not know by itself. */
int XMLCALL describeEncoding(void* userData, const XML_Char* name, XML_Encoding* info) {
    const QTextCodec* const codec = QTextCodec::codecForName(name);
    if (codec == nullptr) {
        return XML_STATUS_ERROR;
    }
    if (codec->mibEnum() == kMibUtf8) {
        static_cast<ParserState*>(userData)->isUtf8Alias = true;
        return XML_STATUS_ERROR;
    }
    for (int byte = 0; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
        const QString decoded = codec->toUnicode(&character, 1, &state);
        if (decoded.isEmpty()) {
            return XML_STATUS_ERROR; // the first byte of several
        }
        const bool complete =
            state.invalidChars == 0 && decoded.size() == 1 && decoded.at(0) != QChar::ReplacementCharacter;
        if (!complete && byte < 128) {
            return XML_STATUS_ERROR;
        }
        info->map[byte] = complete ? decoded.at(0).unicode() : -1;
    }
    info->data = nullptr;
    info->convert = nullptr;
    info->release = nullptr;
    return XML_STATUS_OK;
}

/** Parses a document. @param encoding overrides what the document declares; null to follow that */
bool parse(const QByteArray& text, const XML_Char* encoding, ParserState& state) {
    const ParserOwner parser(XML_ParserCreate(encoding), &XML_ParserFree);
    if (!parser) {
        throw std::bad_alloc();
    }
    state.parser = parser.get();
    state.depth = 0;
    state.attributeBytes = 0;
    state.maxAttributeBytes = kSmallExpansion + kMaxExpansionFactor * qint64{text.size()};
    XML_SetUserData(parser.get(), &state);
    XML_SetElementHandler(parser.get(), startElement, endElement);
    XML_SetExternalEntityRefHandler(parser.get(), refuseExternalEntity);
    XML_SetUnknownEncodingHandler(parser.get(), describeEncoding, &state);
    return XML_Parse(parser.get(), text.constData(), text.size(), XML_TRUE) == XML_STATUS_OK;
}

} // namespace

bool isWellFormedXml(const QByteArray& text) {
    ParserState state;
    return parse(text, nullptr, state) || (state.isUtf8Alias && parse(text, "UTF-8", state));
}

} // namespace pos
