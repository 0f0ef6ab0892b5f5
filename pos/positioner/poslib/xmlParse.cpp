#include "xmlParse.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <expat.h>
#include <functional>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <vector>

namespace pos {

namespace {

using ParserOwner = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

/** A text that may be missing; then it is null. */
QString decoded(const XML_Char* text, int length = -1) {
    const QString unicode = QString::fromUtf8(text, length);
    // The decoder takes this character at the beginning for a mark, and drops it.
    const bool isDropped = text != nullptr && std::strncmp(text, "\xef\xbb\xbf", 3) == 0;
    return isDropped ? QChar(QChar::ByteOrderMark) + unicode : unicode;
}

QString decoded(const QByteArray& text) {
    return decoded(text.constData(), text.size());
}

bool isBlank(const QByteArray& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return std::strchr(" \t\r\n", c) != nullptr; });
}

/** Keeps one copy of names and values that come again soon, as most do. No text costs more than its length. */
class SharedTexts {
public:
    /** @param size of the document, bytes */
    explicit SharedTexts(int size) : slots_(std::min(kMaxSlots, static_cast<std::size_t>(size) / kBytesPerSlot + 1)) {}

    QString of(const XML_Char* text) {
        const std::string_view utf8(text);
        Slot& slot = slots_.at(std::hash<std::string_view>{}(utf8) % slots_.size());
        if (slot.text.isNull() || slot.utf8 != utf8) {
            slot = {std::string(utf8), decoded(text)};
        }
        return slot.text;
    }

private:
    struct Slot {
        std::string utf8;
        QString text; ///< null as long as the slot is empty
    };
    static constexpr std::size_t kMaxSlots = 4096;
    static constexpr std::size_t kBytesPerSlot = 16; ///< of a document: few tags have more names and values
    std::vector<Slot> slots_;
};

/** The entities of a document type, to declare in a document type that holds nothing else. */
class Entities {
public:
    void add(const QByteArray& name, const QByteArray& replacement) {
        QByteArray literal = replacement;
        for (const char special : {'&', '%', '"', '\r'}) { // the ampersand first: the others bring new ones
            literal.replace(special, "&#" + QByteArray::number(special) + ';');
        }
        declarations_ += "<!ENTITY " + name + " \"" + literal + "\">";
    }
    /** An entity whose text is in another file. */
    void addExternal(const QByteArray& name) {
        declarations_ += "<!ENTITY " + name + " SYSTEM ''>";
    }
    /** An entity that is not text at all. */
    void addUnparsed(const QByteArray& name) {
        declarations_ += "<!ENTITY " + name + " SYSTEM '' NDATA n>";
    }
    QByteArray documentType() const {
        return "<!DOCTYPE d [<!NOTATION n SYSTEM ''>" + declarations_ + "]>";
    }

private:
    QByteArray declarations_;
};

/**
 * Builds a tree from what the parser reports.
 *
 * The parser gets the document twice: first up to the end of its document type, then from there on behind a document
 * type that declares the same entities and nothing else. So it knows no defaults or types of attributes, and every
 * reference to an undeclared entity is an error; with declarations in other files it would drop such references.
 */
class TreeBuilder {
public:
    TreeBuilder(const QByteArray& text, const std::string& name)
        : text_(text), name_(name), maxNodes_(std::max(kSmallTree, text.size() / kMinBytesPerNode)) {}

    void build() {
        // From another beginning the parser would guess another encoding than the given one, or pass over a mark.
        const bool beginsAsXml = text_.isEmpty() || std::strchr("< \t\r\n", text_.front()) != nullptr;
        if (!beginsAsXml || text_.left(2).contains('\0')) {
            throw MalformedXml(name_, 0, "it does not begin with a tag");
        }
        makeParser();
        XML_SetDoctypeDeclHandler(parser_.get(), call<&TreeBuilder::startDoctype>, call<&TreeBuilder::endDoctype>);
        XML_SetEntityDeclHandler(parser_.get(), call<&TreeBuilder::declareEntity>);
        XML_SetSkippedEntityHandler(parser_.get(), call<&TreeBuilder::skipDeclarations>);
        XML_SetDefaultHandlerExpand(parser_.get(), call<&TreeBuilder::otherMarkup>);
        // The call fails only once parsing has begun.
        static_cast<void>(XML_SetParamEntityParsing(parser_.get(), XML_PARAM_ENTITY_PARSING_ALWAYS));
        if (!parse(text_, XML_TRUE) && contentBegin_ == 0) {
            fail();
        }
        if (contentBegin_ > 0) {
            makeParser();
            const QByteArray documentType = entities_.documentType();
            const auto content =
                QByteArray::fromRawData(text_.constData() + contentBegin_, text_.size() - contentBegin_);
            inputBegin_ = contentBegin_ - documentType.size();
            if (!parse(documentType, XML_FALSE) || !parse(content, XML_TRUE)) {
                fail();
            }
        }
    }

    /** What has been built so far. */
    ParsedXml built() && {
        return {document_, contentBegin_, std::move(tags_)};
    }

private:
    void makeParser() {
        isStopped_ = false;
        parser_.reset(XML_ParserCreate("UTF-8"));
        if (!parser_) {
            throw std::bad_alloc();
        }
        XML_SetUserData(parser_.get(), this);
        XML_SetXmlDeclHandler(parser_.get(), call<&TreeBuilder::declaration>);
        XML_SetElementHandler(parser_.get(), call<&TreeBuilder::startElement>, call<&TreeBuilder::endElement>);
        XML_SetCharacterDataHandler(parser_.get(), call<&TreeBuilder::characters>);
        XML_SetCdataSectionHandler(parser_.get(), call<&TreeBuilder::startCdata>, call<&TreeBuilder::endCdata>);
        XML_SetCommentHandler(parser_.get(), call<&TreeBuilder::comment>);
        XML_SetProcessingInstructionHandler(parser_.get(), call<&TreeBuilder::instruction>);
        XML_SetExternalEntityRefHandler(parser_.get(), externalEntity);
        // Above the threshold nothing may come from entities. So it limits all that is parsed, wherever they stand.
        const auto maxParsed = static_cast<unsigned long long>(std::max(kSmallText, 2 * qint64{text_.size()}));
        // The calls fail only for other values and for parsers of entities.
        static_cast<void>(XML_SetBillionLaughsAttackProtectionActivationThreshold(parser_.get(), maxParsed));
        static_cast<void>(XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser_.get(), 1.0F));
    }

    /** In one piece: the parser would look at an unfinished token again with every further piece. */
    bool parse(const QByteArray& text, XML_Bool isLast) {
        return XML_Parse(parser_.get(), text.constData(), text.size(), isLast) == XML_STATUS_OK;
    }

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

    void stop() {
        isStopped_ = true;
        // The call fails only where the parser has stopped already.
        static_cast<void>(XML_StopParser(parser_.get(), XML_FALSE));
    }

    /** Where the parser is in the text, bytes. */
    int place() const {
        return inputBegin_ + static_cast<int>(XML_GetCurrentByteIndex(parser_.get()));
    }

    /** What the parser found; where elements do not end as they begin, the element whose end is missing. */
    std::string reasonOf(XML_Error error) const {
        const bool isEndMissing = error == XML_ERROR_TAG_MISMATCH || error == XML_ERROR_NO_ELEMENTS;
        if (isEndMissing && current_.isElement()) {
            return "</" + current_.nodeName().toStdString() + "> is missing";
        }
        return XML_ErrorString(error);
    }

    [[noreturn]] void fail() {
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        const XML_Error error = XML_GetErrorCode(parser_.get());
        if (error == XML_ERROR_NO_MEMORY) {
            throw std::bad_alloc();
        }
        if (error == XML_ERROR_AMPLIFICATION_LIMIT_BREACH) {
            refuse("has entities that make it larger than 8 MiB and than twice its size");
        }
        if (error == XML_ERROR_UNDEFINED_ENTITY && isDeclaredElsewhere_) {
            refuseUnknownEntity();
        }
        // Without any token the parser has no place.
        throw MalformedXml(name_, std::max(place(), contentBegin_), reasonOf(error));
    }

    [[noreturn]] void refuse(const std::string& what) const {
        throw UnreadableXml(name_ + ' ' + what, std::max(place(), contentBegin_));
    }

    [[noreturn]] void refuseUnknownEntity() const {
        refuse("refers to an entity that cannot be known without reading another file");
    }

    void countNode() {
        if (++nodes_ > maxNodes_) {
            refuse("has more than " + std::to_string(maxNodes_) + " elements, attributes and other nodes");
        }
    }

    void countDeclarations(std::size_t bytes) {
        declarations_ += static_cast<qint64>(bytes);
        if (declarations_ > kMaxDeclarations) {
            refuse("declares more than 64 KiB in its document type");
        }
    }

    void append(const QDomNode& node) {
        appendText();
        appendNode(node);
    }

    void appendNode(const QDomNode& node) {
        countNode();
        current_.appendChild(node);
    }

    /** Appends the text that has come in pieces. */
    void appendText() {
        if (!isBlank(pendingText_)) {
            appendNode(document_.createTextNode(decoded(pendingText_)));
        }
        pendingText_.clear();
    }

    void declaration(const XML_Char* version, const XML_Char* encoding, int standalone) {
        if (std::strcmp(version, "1.0") != 0) {
            throw UnreadableXml(name_ + " is written in version " + version + " of XML, and only 1.0 is read",
                                text_.indexOf(version, text_.indexOf('=')));
        }
        QString value = QStringLiteral("version='1.0'");
        if (encoding != nullptr) {
            value += QStringLiteral(" encoding='") + decoded(encoding) + QLatin1Char('\'');
        }
        if (standalone >= 0) {
            isStandalone_ = standalone == 1;
            value += isStandalone_ ? QStringLiteral(" standalone='yes'") : QStringLiteral(" standalone='no'");
        }
        append(document_.createProcessingInstruction(QStringLiteral("xml"), value));
    }

    void startDoctype(const XML_Char* name, const XML_Char* systemId, const XML_Char* publicId, int /*hasSubset*/) {
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
        contentBegin_ = place() + XML_GetCurrentByteCount(parser_.get());
        inDoctype_ = false;
        stop();
    }

    void declareEntity(const XML_Char* name, int isParameter, const XML_Char* value, int length,
                       const XML_Char* /*base*/, const XML_Char* /*systemId*/, const XML_Char* /*publicId*/,
                       const XML_Char* notation) {
        countDeclarations(std::strlen(name) + static_cast<std::size_t>(length));
        if (++declaredEntities_ > kMaxEntities) {
            refuse("declares more than " + std::to_string(kMaxEntities) + " entities");
        }
        if (isParameter != 0) {
            return;
        }
        if (value != nullptr) {
            entities_.add(name, QByteArray(value, length));
        } else if (notation == nullptr) {
            entities_.addExternal(name);
        } else {
            entities_.addUnparsed(name);
        }
    }

    /** A reference to a parameter entity that the document does not declare. */
    void skipDeclarations(const XML_Char* /*name*/, int /*isParameter*/) {
        isDeclaredElsewhere_ = !isStandalone_;
    }

    /** The other declarations of a document type. */
    void otherMarkup(const XML_Char* /*text*/, int length) {
        if (inDoctype_) {
            countDeclarations(static_cast<std::size_t>(length));
        }
    }

    void startElement(const XML_Char* name, const XML_Char** attributes) {
        if (XML_GetSpecifiedAttributeCount(parser_.get()) > 2 * kMaxAttributes) {
            refuse("has more than " + std::to_string(kMaxAttributes) + " attributes in one tag");
        }
        if (open_.size() == std::size_t{kMaxElementDepth}) {
            refuse("is nested more than " + std::to_string(kMaxElementDepth) + " levels deep");
        }
        QDomElement element = document_.createElement(texts_.of(name));
        if (*attributes != nullptr) {
            countNode();
        }
        for (; *attributes != nullptr; attributes += 2) {
            countNode();
            element.setAttribute(texts_.of(attributes[0]), texts_.of(attributes[1]));
        }
        append(element);
        open_.push_back(tags_.size());
        tags_.push_back({place()});
        current_ = element;
    }

    void endElement(const XML_Char* /*name*/) {
        appendText();
        current_ = current_.parentNode();
        tags_[open_.back()].end = place();
        open_.pop_back();
    }

    void characters(const XML_Char* text, int length) {
        pendingText_.append(text, length);
    }

    void startCdata() {
        appendText();
    }

    void endCdata() {
        appendNode(document_.createCDATASection(decoded(pendingText_)));
        pendingText_.clear();
    }

    void comment(const XML_Char* text) {
        if (!inDoctype_) {
            append(document_.createComment(decoded(text)));
        }
    }

    void instruction(const XML_Char* target, const XML_Char* data) {
        if (!inDoctype_) {
            append(document_.createProcessingInstruction(texts_.of(target), decoded(data)));
        }
    }

    /** A reference to another file: in a document type for declarations, which are passed over, else for text. */
    static int XMLCALL externalEntity(XML_Parser parser, const XML_Char* context, const XML_Char* /*base*/,
                                      const XML_Char* /*systemId*/, const XML_Char* /*publicId*/) {
        void* const builder = XML_GetUserData(parser);
        if (context == nullptr) {
            call<&TreeBuilder::skipDeclarations>(builder, static_cast<const XML_Char*>(nullptr), 1);
            return XML_STATUS_OK;
        }
        call<&TreeBuilder::refuseUnknownEntity>(builder);
        return XML_STATUS_ERROR;
    }

    const QByteArray& text_;
    const std::string& name_;
    const qint64 maxNodes_;
    ParserOwner parser_{nullptr, &XML_ParserFree};
    QDomDocument document_{QString()}; ///< without a document type
    QDomNode current_ = document_;
    SharedTexts texts_{text_.size()};
    Entities entities_;
    QByteArray pendingText_;
    qint64 nodes_ = 0;
    qint64 declarations_ = 0; ///< bytes
    int declaredEntities_ = 0;
    int contentBegin_ = 0;
    int inputBegin_ = 0; ///< where the parser's input would begin in the text
    std::vector<TagPlaces> tags_;
    std::vector<std::size_t> open_; ///< the elements without their ends, by number
    bool inDoctype_ = false;
    bool isStandalone_ = false;
    bool isDeclaredElsewhere_ = false; ///< another file may declare entities
    bool isStopped_ = false;
    std::exception_ptr failure_;
};

} // namespace

ParsedXml parseXml(const QByteArray& text, const std::string& name) {
    TreeBuilder builder(text, name);
    builder.build();
    return std::move(builder).built();
}

ParsedXml parseXmlBeginning(const QByteArray& text) {
    const std::string noName;
    TreeBuilder builder(text, noName);
    try {
        builder.build();
    } catch (const std::runtime_error&) {
        // That is why the tree is a beginning.
    }
    return std::move(builder).built();
}

} // namespace pos
