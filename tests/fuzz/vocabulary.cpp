#include "vocabulary.h"

#include "badValues.h"
#include "checkedRun.h"

#include <regex>

namespace {

/** The system's own names of a kind, "tag" or "attr", as its source lists them. */
std::vector<std::string> namesOf(const std::string& kind) {
    const std::string source = sourceText("pos/positioner/poslib/xmlKeywords.h");
    const std::size_t begin = source.find("namespace pos::" + kind + " {");
    const std::string part = source.substr(begin, source.find("} // namespace", begin) - begin);
    static const std::regex name(R"re(QStringLiteral\("(\w+)"\))re");
    return {std::sregex_token_iterator(part.begin(), part.end(), name, 1), {}};
}

std::vector<std::string> joined(std::vector<std::string> first, const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/** What the system's own documents hold, and what is just beside it. */
const std::vector<std::string> kWords = {
    // vocabularies
    "T", "t", "G", "g", "S", "C", "TT", "enabled", "Enabled", "absent", "ABSENT", "no prism", "8.00", "8.0", "3.3.5",
    // numbers of fibres
    "304", "0", "1", "1007", "1008", "1119",
    // angles
    "12.000000", "90.000000", "-90.000000", "360.000000", "89.999999", "180.00000001"};

} // namespace

const std::vector<std::string>& elementNames() {
    static const std::vector<std::string> names =
        joined({"anything", "plate_definition", "configure_version"}, namesOf("tag"));
    return names;
}

const std::vector<std::string>& attributeNames() {
    static const std::vector<std::string> names = joined({"anything", "xmlns", "xml:space", "p:q"}, namesOf("attr"));
    return names;
}

const std::vector<std::string>& chosenValues() {
    static const std::vector<std::string> values = [] {
        std::vector<std::string> all = kWords;
        for (const BadValue& bad : badValues("1", 5000)) {
            all.push_back(bad.text);
        }
        return all;
    }();
    return values;
}

const std::vector<std::string>& markups() {
    static const std::vector<std::string> texts = {
        // of XML
        "<!-- a comment -->", "<!---->", "<?instruction with text?>", "<?a?>", "<![CDATA[ a < b ]]>", "<![CDATA[]]>",
        "&e;", "&long;", "&unknown;", "&#x41;", "&#0;", "&#xD;&#xA;&#9;", "&#x10FFFF;", "&#xFFFE;", "&lt;",
        "plain text", "\r\n", "]]>", "<", "</target>",
        // of INFO
        "\n; comment {\n", "\nkey \"a\\\n \"b\"\n", "{", "}", "\n\"quoted key\" value\n"};
    return texts;
}

const std::vector<std::string>& prologues() {
    static const std::vector<std::string> texts = {
        "",
        "\n",
        "\xef\xbb\xbf",
        "<!-- first -->",
        "<?xml-stylesheet href='a'?>\n",
        "<!DOCTYPE field_definition>",
        "<!DOCTYPE a PUBLIC 'public' 'http://localhost/none.dtd'>",
        "<!DOCTYPE a SYSTEM '/none.dtd' [<!ENTITY e 'text'>]>",
        "<!DOCTYPE a [<!ENTITY e 'text &#60;b/>'><!ENTITY long '&e;&e;&e;&e;&e;&e;&e;&e;'>]>",
        "<!DOCTYPE a [<!ENTITY e '12.345678'><!ATTLIST target targra CDATA '1.500000' fibreid CDATA '&e;'>]>",
        "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST field RA_d NMTOKEN #FIXED '10.000000'><!NOTATION n SYSTEM 'n'>]>",
        "<!DOCTYPE a [<!ENTITY e SYSTEM 'in.xml'>]>",
        "<!DOCTYPE a [<!ENTITY % p '<!ENTITY e \"1\">'>%p;]>",
        "<!DOCTYPE a [<!ENTITY e '&long;'><!ENTITY long '&e;'>]>"};
    return texts;
}
