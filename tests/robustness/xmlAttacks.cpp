#include "xmlAttacks.h"

#include <sstream>

namespace {

/** A document with this document type and content, whose data model version is that of the embedded configuration. */
std::string document(const std::string& declarations, const std::string& content) {
    const std::string doctype = declarations.empty() ? "" : "<!DOCTYPE f [" + declarations + "]>";
    return doctype + "<f datamver=\"8.00\">" + content + "</f>";
}

/** Entities of which each stands ten times for the one before. */
std::string nestedEntities(const std::string& innermost, int levels) {
    std::string text = "<!ENTITY e0 '" + innermost + "'>";
    for (int level = 1; level <= levels; ++level) {
        text += "<!ENTITY e" + std::to_string(level) + " '" + times(10, "&e" + std::to_string(level - 1) + ";") + "'>";
    }
    return text;
}

/** An element with a thousand attributes. */
std::string broadElement() {
    return "<a" + numbered(1000, " a#=''") + "/>";
}

constexpr int kMillion = 1'000'000;

} // namespace

std::string times(int count, const std::string& text) {
    std::string all;
    all.reserve(static_cast<std::size_t>(count) * text.size());
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string numbered(int count, const std::string& text) {
    std::vector<std::string> pieces;
    std::istringstream stream(text + "#");
    for (std::string piece; std::getline(stream, piece, '#');) {
        pieces.push_back(piece);
    }
    std::string all;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        all += pieces.front();
        for (std::size_t piece = 1; piece < pieces.size(); ++piece) {
            all += number;
            all += pieces.at(piece);
        }
    }
    return all;
}

std::vector<XmlAttack> refusedAttacks() {
    return {
        {"entities nested in text", [] { return document(nestedEntities("x", 9), "&e9;"); }},
        {"entities nested in an attribute", [] { return document(nestedEntities("x", 9), "<a b='&e9;'/>"); }},
        {"entities of elements, nested", [] { return document(nestedEntities("<a/>", 9), "&e9;"); }},
        {"entity used for itself", [] { return document("<!ENTITY e '&f;'><!ENTITY f '&e;'>", "&e;"); }},
        {"long entity used often",
         [] { return document("<!ENTITY e '" + std::string(kMillion, 'x') + "'>", times(kMillion, "&e;")); }},
        {"entity used a million times",
         [] { return document("<!ENTITY e '" + std::string(300, 'x') + "'>", times(3 * kMillion, "&e;")); }},
        {"entity used a million times in attributes",
         [] {
             return document("<!ENTITY e '" + std::string(300, 'x') + "'>",
                             times(300, "<a b='" + times(10'000, "&e;") + "'/>"));
         }},
        {"entity of a thousand elements",
         [] { return document("<!ENTITY e '" + times(1000, "<a/>") + "'>", times(2000, "&e;")); }},
        {"entity that opens what it does not close", [] { return document("<!ENTITY e '<a>'>", "&e;</a>"); }},
        {"parameter entity that declares",
         [] { return document("<!ENTITY % p '<!ENTITY e SYSTEM \"x\">'>" + times(3 * kMillion, "%p;"), ""); }},
        {"parameter entities nested",
         [] {
             return document("<!ENTITY % p '<!ENTITY e \"\">'><!ENTITY % q '" + times(500, "&#37;p;") + "'>" +
                                 times(20'000, "%q;"),
                             "");
         }},
        {"many declared attributes",
         [] { return document("<!ATTLIST f" + numbered(400'000, " a# CDATA #IMPLIED") + ">", ""); }},
        {"default attributes",
         [] { return document("<!ATTLIST a" + numbered(1000, " a# CDATA 'v'") + ">", times(10'000, "<a/>")); }},
        {"long default attribute",
         [] { return document("<!ATTLIST a b CDATA '" + std::string(100'000, 'v') + "'>", times(10'000, "<a/>")); }},
        {"declared attributes of another element",
         [] { return document("<!ATTLIST b" + numbered(1000, " a# CDATA 'v'") + ">", times(kMillion, "<a/>")); }},
        {"many entities", [] { return document(numbered(450'000, "<!ENTITY e# 'x'>"), ""); }},
        {"one entity declared often", [] { return document(times(700'000, "<!ENTITY e ''>"), ""); }},
        {"many notations", [] { return document(numbered(300'000, "<!NOTATION n# SYSTEM 'x'>"), ""); }},
        {"many declared elements", [] { return document(numbered(450'000, "<!ELEMENT e# ANY>"), ""); }},
        {"content model nested",
         [] { return document("<!ELEMENT e " + times(kMillion, "(") + "a" + times(kMillion, ")") + ">", ""); }},
        {"long document type", [] { return document("<!--" + std::string(2 * kMillion, 'x') + "-->", ""); }},
        {"a million levels", [] { return times(kMillion, "<a>") + times(kMillion, "</a>"); }},
        {"a million levels that never end", [] { return times(kMillion, "<a>"); }},
        {"a million ends", [] { return "<a>" + times(kMillion, "</a>"); }},
        {"a million attributes", [] { return "<f" + numbered(kMillion, " a#=''") + "/>"; }},
        {"one attribute a million times", [] { return "<f" + times(kMillion, " a=''") + "/>"; }},
        {"a thousand attributes a thousand times", [] { return document("", times(1100, broadElement())); }},
        {"2.5 million siblings", [] { return document("", times(2'500'000, "<a/>")); }},
        {"two million texts", [] { return document("", times(2 * kMillion, "x<a/>")); }},
        {"many CDATA sections", [] { return document("", times(700'000, "<![CDATA[x]]>")); }},
        {"many comments", [] { return document("", times(1'400'000, "<!---->")); }},
        {"many instructions", [] { return document("", times(2 * kMillion, "<?a?>")); }},
        {"many targets", [] { return document("", times(160'000, "<target targra='1e-9' targdec='1e-9'/>")); }},
        {"tag that never ends", [] { return "<" + std::string(10 * kMillion, 'a'); }},
        {"attribute that never ends", [] { return "<a b='" + std::string(10 * kMillion, 'x'); }},
        {"comment that never ends", [] { return "<!--" + times(5 * kMillion, "- "); }},
        {"CDATA section that never ends", [] { return "<a><![CDATA[" + times(5 * kMillion, "]>"); }},
        {"instruction that never ends", [] { return "<?a " + std::string(10 * kMillion, '?'); }},
        {"document type that never ends", [] { return "<!DOCTYPE f [" + times(1'600'000, "<!-- x"); }},
        {"ten megabytes of name", [] { return document("", "<" + std::string(9'900'000, 'x') + "/>"); }},
        {"ten million less-thans", [] { return std::string(10 * kMillion, '<'); }},
        {"ten million ampersands", [] { return "<a>" + std::string(10 * kMillion, '&'); }},
        {"ten million NULs", [] { return std::string(10 * kMillion, '\0'); }},
        {"ten million blanks", [] { return std::string(10 * kMillion, ' '); }},
        {"ten million bytes of U+FFFE", [] { return times(5 * kMillion, "\xff\xfe"); }},
    };
}

std::vector<XmlAttack> loadedAttacks() {
    return {
        {"siblings", [] { return document("", times(650'000, "<abcdefghijkl/>")); }},
        {"a thousand attributes often", [] { return document("", times(490, broadElement())); }},
        {"elements with an attribute", [] { return document("", times(166'000, "<a b=''/>")); }},
        {"elements with ten attributes",
         [] { return document("", times(41'000, "<a" + numbered(10, " a#='1'") + "/>")); }},
        {"texts", [] { return document("", times(249'000, "x<a/>")); }},
        {"CDATA sections", [] { return document("", times(499'000, "<![CDATA[x]]>")); }},
        {"comments", [] { return document("", times(499'000, "<!---->")); }},
        {"instructions", [] { return document("", times(499'000, "<?a?>")); }},
        {"ten megabytes of text", [] { return document("", std::string(9'900'000, 'x')); }},
        {"ten megabytes of lines", [] { return document("", times(4'950'000, "x\n")); }},
        {"ten megabytes of blanks", [] { return document("", std::string(9'900'000, ' ')); }},
        {"ten megabytes of references", [] { return document("", times(1'100'000, "&lt;&#65;")); }},
        {"megabytes of comment", [] { return document("", times(9, "<!--" + std::string(kMillion, 'x') + "-->")); }},
        {"megabytes of attribute",
         [] { return document("", times(9, "<a b='" + std::string(kMillion, 'x') + "'/>")); }},
        {"entities, as many as fit", [] { return document(numbered(800, "<!ENTITY e# ''>"), "&e0;"); }},
        {"entity used often", [] { return document("<!ENTITY e 'xxxxx'>", times(1'900'000, "&e;")); }},
        {"declared attributes",
         [] { return document("<!ATTLIST b" + numbered(1000, " a# CDATA 'v'") + ">", times(499'000, "<a/>")); }},
        {"a thousand levels", [] { return times(1000, "<f datamver='8.00'>") + times(1000, "</f>"); }},
    };
}
