#include "badValues.h"

#include <cctype>

namespace {

constexpr std::size_t kMany = 10'000;

std::string otherCase(std::string text) {
    for (char& c : text) {
        const auto byte = static_cast<unsigned char>(c);
        c = static_cast<char>(std::isupper(byte) != 0 ? std::tolower(byte) : std::toupper(byte));
    }
    return text;
}

/** Values that do not depend on the one that is replaced and are their own names. */
const std::vector<std::string> kPlain = {
    // no numbers
    "", " ", "%%%", "%1", "%1 %2 %n %s", "true", "None", ".", "+", "-", "e5", "1e", "1e+", "--1", "1.5.2", "12:30:00",
    "12h30m", "0x10", "0x1p3", "1,5", "1 000", "1_000", "1d3", "&quot;&apos;", "&lt;&amp;&gt;", "C:\\a\\b", "../..",
    // numbers of a kind
    "nan", "NaN", "-nan", "inf", "-inf", "Infinity", "-0", "-0.0", "+1", " 1 ", "&#9;1&#10;", "007", "1e400", "-1e400",
    "1e-400", "1e308", "-1e308", "5e-324", "1e15", "1E3", "0.1", "90.000001", "-90.000001", "360.000001", "-1",
    "0.30000000000000004",
    // the edges of 31, 32, 63 and 64 bits
    "2147483647", "2147483648", "-2147483648", "-2147483649", "4294967295", "4294967296", "9223372036854775807",
    "9223372036854775808", "-9223372036854775809", "18446744073709551615", "18446744073709551616"};

/** Values that a message had better not show. */
const std::vector<BadValue> kHidden = {{"Arabic digits", "\xd9\xa1\xd9\xa2"},
                                       {"fullwidth digits", "\xef\xbc\x91\xef\xbc\x92"},
                                       {"Devanagari digits", "\xe0\xa5\xa7\xe0\xa5\xa8"},
                                       {"minus sign", "\xe2\x88\x92"
                                                      "1"},
                                       {"no-break space", "\xc2\xa0"
                                                          "1"},
                                       {"text direction", "\xe2\x80\xae"
                                                          "1"},
                                       {"byte-order mark", "\xef\xbb\xbf"
                                                           "1"},
                                       {"beyond the basic plane", "\xf0\x9f\x98\x80"},
                                       {"lone surrogate", "\xed\xa0\x80"},
                                       {"U+FFFE", "\xef\xbf\xbe"},
                                       {"no UTF-8", "\xff\xfe"},
                                       {"cut UTF-8", "\xe2\x82"},
                                       {"NUL", std::string("1\0"
                                                           "2",
                                                           3)},
                                       {"NUL by reference", "&#0;"},
                                       {"control character", "\x01"},
                                       {"control character by reference", "&#1;"},
                                       {"delete", "\x7f"},
                                       {"escape sequence", "\x1b[31m"},
                                       {"line breaks", "1\r\n2\r3"},
                                       {"double quote", "\""},
                                       {"single quote", "'"},
                                       {"less-than", "<"},
                                       {"end of tag", "\"/>"},
                                       {"ampersand", "&"},
                                       {"undeclared entity", "&nothing;"},
                                       {"reference out of range", "&#x110000;"},
                                       {"backslash", "\\"}};

} // namespace

std::vector<BadValue> badValues(const std::string& original, std::size_t longest) {
    std::vector<BadValue> values = kHidden;
    for (const std::string& text : kPlain) {
        values.push_back({"'" + text + "'", text});
    }
    values.push_back({"many letters", std::string(longest, 'x')});
    values.push_back({"many digits", std::string(kMany, '9')});
    values.push_back({"many decimals", "0." + std::string(kMany, '3')});
    values.push_back({"many blanks", std::string(kMany, ' ')});
    values.push_back({"the other case", otherCase(original)});
    values.push_back({"the opposite", "-" + original});
    values.push_back({"doubled", original + original});
    values.push_back({"with blanks around", "  " + original + "\t"});
    return values;
}
