#include "DocumentMaker.h"

#include <map>
#include <vector>

namespace {

/** What stands in a document, and what it means. */
struct Piece {
    const char* source;
    const char* meaning;
};

const std::vector<Piece> kPieces = {{"t", "t"},
                                    {" ", " "},
                                    {"&lt;", "<"},
                                    {"&gt;", ">"},
                                    {"&amp;", "&"},
                                    {"&quot;", "\""},
                                    {"&apos;", "'"},
                                    {"&#10;", "\n"},
                                    {"&#13;", "\r"},
                                    {"&#x9;", "\t"},
                                    {"]", "]"},
                                    {"--", "--"},
                                    {"?>", "?>"},
                                    {"%%%", "%%%"},
                                    {"&#233;", "\xc3\xa9"},
                                    {"/", "/"},
                                    {"{}", "{}"},
                                    {"\x7f", "\x7f"},
                                    {"\xc3\xa9", "\xc3\xa9"},
                                    {"\xe2\x80\xa8", "\xe2\x80\xa8"},
                                    {"\xf0\x9f\x98\x80", "\xf0\x9f\x98\x80"},
                                    {"&#x1F600;", "\xf0\x9f\x98\x80"},
                                    {"&e;", "entity <text>"}};

/** An entity that holds markup, and the tree that it means, without indentation. */
struct MarkupEntity {
    const char* name;
    const char* value; ///< without quotes
    std::vector<const char*> lines;
};

const std::vector<MarkupEntity> kMarkupEntities = {
    {"m", "<i j=&#39;1&#39;>v</i>", {"<i j='1'>", " [3 #text] v"}},
    {"c", "<!-- c <x> -->", {"[8 #comment]  c <x> "}},
    {"d", "<![CDATA[<d>]]>", {"[4 #cdata-section] <d>"}},
    {"p", "<?p q?>", {"[7 p] q"}},
    {"n", "<k><l/>\xc3\xa9<l/></k>", {"<k>", " <l>", " [3 #text] \xc3\xa9", " <l>"}}};

/** Writes a document, and beside it the tree that it means. */
class DocumentMaker {
public:
    explicit DocumentMaker(const Choose& choose) : choose_(choose) {}

    void make() {
        documentType();
        tree = "[9 #document] \n";
        if (one(3)) {
            comment(1);
        }
        element(1);
        if (one(3)) {
            instruction(1);
        }
    }

    std::string source;
    std::string tree;

private:
    const Choose& choose_;

    int below(int count) {
        return choose_(count);
    }
    bool one(int in) {
        return below(in) == 0;
    }
    template <typename T> const T& anyOf(const std::vector<T>& choices) {
        return choices.at(static_cast<std::size_t>(below(static_cast<int>(choices.size()))));
    }
    std::string name() {
        return anyOf<std::string>({"a", "target", "p:q", "x-y", "_z", "a.1", "\xc3\xa9t\xc3\xa9", "xml:space", "A"});
    }
    void line(int depth, const std::string& text) {
        tree += std::string(static_cast<std::size_t>(depth), ' ') + text + "\n";
    }

    void documentType() {
        source = anyOf<std::string>({"<!DOCTYPE a [", "<!DOCTYPE p:a SYSTEM 'b?c=1&d=<2' [",
                                     "<!DOCTYPE a PUBLIC '-//A//B' \"it's\" [<?q?><!-- ]> -->"});
        // A parameter entity's own value is read once more.
        source += one(2) ? "<!ENTITY e 'entity &#38;lt;text>'>"
                         : "<!ENTITY % q \"<!ENTITY e 'entity &#38;#38;lt;text>'>\"> %q;";
        for (const auto& [name, value, lines] : kMarkupEntities) {
            const std::string declaration = std::string("<!ENTITY ") + name + " \"" + value + "\">";
            source +=
                one(2) ? declaration : std::string("<!ENTITY % ") + name + " '" + declaration + "'> %" + name + ";";
        }
        source += anyOf<std::string>({"", "<!ATTLIST a A CDATA 'default' x-y NMTOKENS #IMPLIED>"}) + "]>";
    }

    /** Some pieces; their source is appended to the document. @return what they mean */
    std::string pieces() {
        std::string meaning;
        for (int i = below(5); i > 0; --i) {
            const Piece& piece = anyOf(kPieces);
            source += piece.source;
            meaning += piece.meaning;
        }
        return meaning;
    }

    void element(int depth) {
        const std::string tag = name();
        std::map<std::string, std::string> attributes;
        source += "<" + tag;
        for (int i = below(4); i > 0; --i) {
            const std::string attribute = name();
            if (attributes.count(attribute) == 0) {
                source += " " + attribute + "=\"";
                attributes[attribute] = pieces();
                source += "\"";
            }
        }
        std::string described = "<" + tag;
        for (const auto& [attribute, value] : attributes) {
            described += " " + attribute + "='" + value + "'";
        }
        line(depth, described + ">");
        source += ">";
        for (int i = depth < 5 ? below(5) : 0; i > 0; --i) {
            child(depth + 1);
        }
        source += "</" + tag + ">";
    }

    /** A child, with text behind it now and then: never two texts in a row, which would be one. */
    void child(int depth) {
        switch (below(6)) {
        case 5: {
            const MarkupEntity& entity = anyOf(kMarkupEntities);
            source += std::string("&") + entity.name + ";";
            for (const char* const text : entity.lines) {
                line(depth, text);
            }
            break;
        }
        case 0:
            comment(depth);
            break;
        case 1:
            instruction(depth);
            break;
        case 2: {
            const auto content = anyOf<std::string>({"", " ", "x", "<y>&z;", "]]", "-->", "<?p q?>\nz", "<!--"});
            source += "<![CDATA[" + content + "]]>";
            line(depth, "[4 #cdata-section] " + content);
            break;
        }
        default:
            element(depth);
        }
        if (one(2)) {
            source += "w";
            line(depth, "[3 #text] w" + pieces());
        }
    }

    void comment(int depth) {
        const auto content = anyOf<std::string>({"", " c ", "a-b", "<x>&y;", "?>\n", "]]>", "<?p", "\xf0\x9f\x98\x80"});
        source += "<!--" + content + "-->";
        line(depth, "[8 #comment] " + content);
    }

    void instruction(int depth) {
        const auto content = anyOf<std::string>({"", "d", "a='1' <!-- ", "]]>", "\xc3\xa9"});
        source += "<?pi " + content + "?>";
        line(depth, "[7 pi] " + content);
    }
};

} // namespace

MadeDocument makeDocument(const Choose& choose) {
    DocumentMaker maker(choose);
    maker.make();
    return {maker.source, maker.tree};
}
