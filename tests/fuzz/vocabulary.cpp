#include "vocabulary.h"

#include "checkedRun.h"

#include <regex>

namespace {

/** Adds the names of a namespace of xmlKeywords.h, in their order. */
std::vector<std::string> withKeywords(const std::string& space, std::vector<std::string> names) {
    const std::string header = sourceText("pos/positioner/poslib/xmlKeywords.h");
    const std::size_t begin = header.find("namespace pos::" + space + " {");
    const std::string part = header.substr(begin, header.find("} // namespace pos::" + space) - begin);
    const std::regex literal("QStringLiteral\\(\"(\\w+)\"\\)");
    for (std::sregex_iterator found(part.begin(), part.end(), literal), end; found != end; ++found) {
        names.push_back((*found)[1]);
    }
    return names;
}

} // namespace

const std::vector<std::string>& elementNames() {
    static const std::vector<std::string> names = withKeywords(
        "tag", {"anything", "plate_definition", "configure_version", "east_longitude", "latitude", "height"});
    return names;
}

const std::vector<std::string>& attributeNames() {
    static const std::vector<std::string> names = withKeywords("attr", {"anything", "xmlns", "xml:space", "p:q"});
    return names;
}

const std::vector<std::string>& badValues() {
    static const std::vector<std::string> values = {"",
                                                    " ",
                                                    "\t \n",
                                                    "nan",
                                                    "NAN",
                                                    "-nan",
                                                    "inf",
                                                    "-inf",
                                                    "infinity",
                                                    "-0",
                                                    "-0.0",
                                                    "+1",
                                                    "1e400",
                                                    "-1e400",
                                                    "1e-400",
                                                    "1e308",
                                                    "-1e308",
                                                    "1e-308",
                                                    "5e-324",
                                                    "1e300",
                                                    "0x10",
                                                    "0X1p3",
                                                    "1,5",
                                                    "1.5.5",
                                                    "1.5 1.5",
                                                    "1e",
                                                    "e5",
                                                    ".",
                                                    "-",
                                                    ".5",
                                                    "5.",
                                                    "1d5",
                                                    "12:30:00",
                                                    "%%%",
                                                    "%%",
                                                    "%1",
                                                    "%s%n",
                                                    "2147483647",
                                                    "2147483648",
                                                    "-2147483648",
                                                    "-2147483649",
                                                    "4294967295",
                                                    "4294967296",
                                                    "9223372036854775807",
                                                    "18446744073709551616",
                                                    "\xd9\xa1\xd9\xa2",
                                                    "\xef\xbc\x91\xef\xbc\x92",
                                                    "\xef\xbb\xbf"
                                                    "1",
                                                    "1\xc2\xa0",
                                                    "\xf0\x9f\x98\x80",
                                                    "\xef\xbf\xbe",
                                                    "\xed\xa0\x80",
                                                    "\xff\xfe",
                                                    std::string(1, '\0'),
                                                    "1" + std::string(1, '\0') + "2",
                                                    "\x01",
                                                    "\x7f",
                                                    "\x1b[0m",
                                                    "\"",
                                                    "'",
                                                    "&",
                                                    "<",
                                                    "]]>",
                                                    "-->",
                                                    "T",
                                                    "t",
                                                    "G",
                                                    "g",
                                                    "S",
                                                    "C",
                                                    "TT",
                                                    "enabled",
                                                    "Enabled",
                                                    "absent",
                                                    "ABSENT",
                                                    "no prism",
                                                    "8.00",
                                                    "8.0",
                                                    "3.3.5",
                                                    std::string(5000, '9'),
                                                    std::string(5000, 'a'),
                                                    "0." + std::string(400, '0') + "1",
                                                    "1" + std::string(400, '0'),
                                                    "304",
                                                    "0",
                                                    "1",
                                                    "-1",
                                                    "1007",
                                                    "1008",
                                                    "1119",
                                                    "12.000000",
                                                    "90.000000",
                                                    "-90.000000",
                                                    "360.000000",
                                                    "89.999999",
                                                    "180.00000001"};
    return values;
}

const std::vector<std::string>& markups() {
    static const std::vector<std::string> texts = {"<!-- a comment -->",
                                                   "<!---->",
                                                   "<?instruction with text?>",
                                                   "<?a?>",
                                                   "<![CDATA[ a < b ]]>",
                                                   "<![CDATA[]]>",
                                                   "&e;",
                                                   "&long;",
                                                   "&unknown;",
                                                   "&#x41;",
                                                   "&#0;",
                                                   "&#xD;&#xA;&#9;",
                                                   "&#x10FFFF;",
                                                   "&#xFFFE;",
                                                   "&lt;",
                                                   "plain text",
                                                   "\r\n",
                                                   "]]>",
                                                   "<",
                                                   "</target>",
                                                   "\n; comment {\n",
                                                   "\nkey \"a\\\n \"b\"\n",
                                                   "{",
                                                   "}",
                                                   "\n\"quoted key\" value\n"};
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
