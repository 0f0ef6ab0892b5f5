#include "Program.h"
#include "TemporaryFolder.h"
#include "fieldDefinition.h"
#include "hostileRun.h"
#include "surroundings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What a document names is never opened: neither a file nor a place on the network, by the account of the kernel's
// calls that the program makes.

namespace {

class ExternalEntities : public testing::Test {
protected:
    void SetUp() override {
        ProgramOptions options;
        options.wrapper = {"strace", "-qq", "-e", "trace=none", "-o", folder_.path("trace")};
        REQUIRE_PRIVILEGE(runCommand({"true"}, options).status == 0, "strace and the right to trace");
    }

    /** A run of which every call with a file's name in it, and every one of the network, is written down. */
    ProgramResult traced(const std::vector<std::string>& arguments) const {
        ProgramOptions options;
        options.wrapper = {
            "strace", "-f", "-qq", "-s", "4096", "-e", "trace=%file,%network", "-o", folder_.path("trace")};
        // The search for leaks traces the program too, which only one can do.
        options.environment = {"ASAN_OPTIONS=detect_leaks=0"};
        return runVekoConfigure(arguments, options);
    }

    /** Fails the test unless the last run opened its input and neither the secret nor anything on the network. */
    void expectNothingElseRead(const std::string& input) const {
        const std::string trace = folder_.read("trace");
        EXPECT_THAT(trace, testing::HasSubstr(input));
        EXPECT_THAT(trace, testing::Not(testing::HasSubstr("secret")));
        for (const std::string call : {"socket(", "connect(", "sendto(", "127.0.0.1", "resolv.conf", "/etc/hosts"}) {
            EXPECT_THAT(trace, testing::Not(testing::HasSubstr(call)));
        }
    }

    const TemporaryFolder folder_;
    const std::string output_ = folder_.path("out.xml");
    const std::string secret_ = folder_.write("secret", "<!ENTITY s 'secret'><!ATTLIST target targuse CDATA 'S'>");
};

/** A document type and what stands in the text, with FILE for the name of a file or another place. */
struct Reference {
    std::string doctype;
    std::string attribute; ///< in the observation's name
    std::string text;      ///< in the observation
    std::string refusal;   ///< empty where the document is configured
};

const std::string kUnknown = "refers to an entity that cannot be known without reading another file";
const std::string kMalformed = "is not valid XML";

const std::vector<Reference> kReferences = {
    {"<!DOCTYPE field_definition SYSTEM 'FILE'>", "", "", ""},
    {"<!DOCTYPE field_definition PUBLIC '-//A//B' 'FILE'>", "", "", ""},
    {"<!DOCTYPE field_definition SYSTEM 'FILE'>", "", "&s;", kUnknown},
    {"<!DOCTYPE field_definition SYSTEM 'FILE'>", "&s;", "", kUnknown},
    {"<!DOCTYPE field_definition [<!ENTITY e SYSTEM 'FILE'>]>", "", "", ""},
    {"<!DOCTYPE field_definition [<!ENTITY e SYSTEM 'FILE'>]>", "", "&e;", kUnknown},
    {"<!DOCTYPE field_definition [<!ENTITY e PUBLIC 'p' 'FILE'>]>", "", "&e;", kUnknown},
    {"<!DOCTYPE field_definition [<!ENTITY e SYSTEM 'FILE'>]>", "&e;", "", kMalformed},
    {"<!DOCTYPE field_definition [<!ENTITY e SYSTEM 'FILE'><!ENTITY f '&e;'>]>", "", "&f;", kUnknown},
    {"<!DOCTYPE field_definition [<!ENTITY % p SYSTEM 'FILE'> %p;]>", "", "", ""},
    {"<!DOCTYPE field_definition [<!ENTITY % p SYSTEM 'FILE'> %p;]>", "", "&s;", kUnknown},
    {"<!DOCTYPE field_definition [<!NOTATION n SYSTEM 'FILE'><!ENTITY e SYSTEM 'FILE' NDATA n>]>", "", "", ""},
    {"", "", "<include xmlns='http://www.w3.org/2001/XInclude' href='FILE'/>", ""},
    {"<?xml-stylesheet href='FILE'?>", "FILE", "<?include FILE?><a href='FILE'>FILE</a>", ""}};

std::string withFile(const std::string& text, const std::string& file) {
    return text.find("FILE") == std::string::npos ? text : replaced(text, "FILE", file);
}

std::string withReference(const std::string& text, const Reference& reference, const std::string& file) {
    const std::size_t root = text.find("<field_definition");
    const std::size_t name = text.find("name=\"") + 6;
    const std::size_t content = text.find(">", name) + 1;
    return text.substr(0, root) + withFile(reference.doctype, file) + text.substr(root, name - root) +
           withFile(reference.attribute, file) + text.substr(name, content - name) + withFile(reference.text, file) +
           text.substr(content);
}

} // namespace

TEST_F(ExternalEntities, OfADocumentAreNeverRead) {
    const std::string document = example("sombrero_south");
    for (const Reference& reference : kReferences) {
        for (const std::string& file :
             {secret_, "file://" + secret_, std::string("secret"), std::string("http://127.0.0.1:1/secret")}) {
            SCOPED_TRACE(withFile(reference.doctype + reference.text, file));
            const std::string input = folder_.write("in.xml", withReference(document, reference, file));
            const ProgramResult result = traced({"-i", input, "-o", output_});
            EXPECT_EQ(result.status, reference.refusal.empty() ? 0 : 1);
            EXPECT_EQ(result.err, reference.refusal.empty() ? ""
                                                            : "Error parsing field definition file: " + input + ' ' +
                                                                  reference.refusal + '\n');
            expectNothingElseRead(input);
        }
    }
}

TEST_F(ExternalEntities, OfTheInstrumentsFilesAreNeverRead) {
    const SmallInstrument instrument = smallInstrument();
    const std::string doctype = "<!DOCTYPE a SYSTEM '" + secret_ + "' [<!ENTITY e SYSTEM '" + secret_ +
                                "'><!ENTITY % p SYSTEM '" + secret_ + "'> %p;]>";
    const auto withDoctype = [&](std::string text) { return text.insert(text.find("?>") + 2, doctype); };
    const std::string configuration = folder_.write("configure.xml", withDoctype(instrument.configuration));
    folder_.write("map.xml", withDoctype(instrument.map));
    folder_.write("bundle.xml", withDoctype(instrument.bundle));
    const std::string input = folder_.write("in.xml", example("sombrero_south"));
    const ProgramResult result = traced({"-c", configuration, "-i", input, "-o", output_});
    EXPECT_EQ(result.status, 0) << result.err;
    for (const std::string& file : {configuration, folder_.path("map.xml"), folder_.path("bundle.xml")}) {
        expectNothingElseRead(file);
    }
}
