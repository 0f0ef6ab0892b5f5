#include "schemaCheck.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/relaxng.h>
#include <memory>

namespace {

/** Adds a message of the schema to the text. */
void addMessage(void* text, const char* format, ...) { // NOLINT(cert-dcl50-cpp): the library's signature
    std::array<char, 500> message{};
    va_list arguments;
    va_start(arguments, format);
    static_cast<void>(std::vsnprintf(message.data(), message.size(), format, arguments));
    va_end(arguments);
    static_cast<std::string*>(text)->append(message.data());
}

/** A schema of the tree, read once for all documents. */
class Schema {
public:
    explicit Schema(const std::string& name) {
        const std::string file = std::string(POS_SOURCE_FOLDER) + "/schemas/" + name;
        const std::unique_ptr<xmlRelaxNGParserCtxt, decltype(&xmlRelaxNGFreeParserCtxt)> parser(
            xmlRelaxNGNewParserCtxt(file.c_str()), &xmlRelaxNGFreeParserCtxt);
        schema_.reset(xmlRelaxNGParse(parser.get()));
        EXPECT_NE(schema_, nullptr) << file;
    }

    std::string against(const std::string& text) const {
        constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
        const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
            xmlReadMemory(text.data(), static_cast<int>(text.size()), "document", nullptr, kOptions), &xmlFreeDoc);
        if (document == nullptr) {
            return "the document does not parse";
        }
        const std::unique_ptr<xmlRelaxNGValidCtxt, decltype(&xmlRelaxNGFreeValidCtxt)> validation(
            xmlRelaxNGNewValidCtxt(schema_.get()), &xmlRelaxNGFreeValidCtxt);
        std::string messages;
        xmlRelaxNGSetValidErrors(validation.get(), addMessage, addMessage, &messages);
        if (xmlRelaxNGValidateDoc(validation.get(), document.get()) == 0) {
            return "";
        }
        return messages.empty() ? "the document does not keep to the schema" : messages;
    }

private:
    std::unique_ptr<xmlRelaxNG, decltype(&xmlRelaxNGFree)> schema_{nullptr, &xmlRelaxNGFree};
};

} // namespace

std::string againstFieldDefinition(const std::string& document) {
    static const Schema schema("field_definition.rng");
    return schema.against(document);
}

std::string againstConfiguredField(const std::string& document) {
    static const Schema schema("configured_field.rng");
    return schema.against(document);
}

std::string againstOutput(const std::string& input, const std::string& output) {
    return againstFieldDefinition(input).empty() ? againstConfiguredField(output) : "";
}
