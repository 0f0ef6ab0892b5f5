#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "xml.h"
#include "xmlParse.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <QXmlStreamReader>
#include <map>
#include <optional>
#include <random>
#include <vector>

using namespace pos;

namespace {

constexpr unsigned kSeed = 20160815;

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

/** Writes a random document, and beside it the tree that it means, in the form of treeText. */
class DocumentMaker {
public:
    explicit DocumentMaker(std::mt19937& random) : random_(random) {}

    void make() {
        source = "<!DOCTYPE a [<!ENTITY e 'entity &#38;lt;text>'>]>";
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
    std::mt19937& random_;

    int below(int count) {
        return std::uniform_int_distribution<int>(0, count - 1)(random_);
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
        switch (below(5)) {
        case 0:
            comment(depth);
            break;
        case 1:
            instruction(depth);
            break;
        case 2: {
            const auto content = anyOf<std::string>({"x", "<y>&z;", "]]", "-->", "<?p q?>\nz", "<!--"});
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

class XmlGenerated : public ProcessWideState {
protected:
    TemporaryFolder folder_;
    std::mt19937 random_{kSeed};

    QDomDocument load(const std::string& bytes) const {
        return loadXmlFile(folder_.write("a.xml", bytes));
    }

    /** Loses, inserts or overwrites a byte. */
    std::string damaged(std::string text) {
        const std::string alphabet = "<>&;'\"/=!-[]?%# ab\x80\xff\x01";
        const auto place = std::uniform_int_distribution<std::size_t>(0, text.size() - 1)(random_);
        const char byte = alphabet.at(std::uniform_int_distribution<std::size_t>(0, alphabet.size() - 1)(random_));
        switch (std::uniform_int_distribution<int>(0, 2)(random_)) {
        case 0:
            return text.erase(place, 1);
        case 1:
            return text.insert(place, 1, byte);
        default:
            text.at(place) = byte;
            return text;
        }
    }
};

TEST_F(XmlGenerated, DocumentsMeanWhatTheyWereMadeToMean) {
    for (int i = 0; i < 300; ++i) {
        DocumentMaker maker(random_);
        maker.make();
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", document " + std::to_string(i) + ":\n" + maker.source);
        const QDomDocument document = load(maker.source);
        ASSERT_EQ(treeText(document), maker.tree);
        const std::string saved = serialiseXml(document).toStdString();
        const QDomDocument again = load(saved);
        ASSERT_EQ(treeText(again), maker.tree) << saved;
        ASSERT_EQ(serialiseXml(again).toStdString(), saved);
    }
}

TEST_F(XmlGenerated, DocumentsBecomeTheTreeThatTheXmlLibraryItselfBuilds) {
    for (int i = 0; i < 300; ++i) {
        DocumentMaker maker(random_);
        maker.make();
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", document " + std::to_string(i) + ":\n" + maker.source);
        QXmlStreamReader reader(QByteArray::fromStdString(maker.source));
        reader.setNamespaceProcessing(false);
        QDomDocument expected;
        ASSERT_TRUE(expected.setContent(&reader, false));
        const QDomDocument document = load(maker.source);
        ASSERT_EQ(treeText(document), treeText(expected));
        ASSERT_EQ(document.toByteArray(1), expected.toByteArray(1));
    }
}

TEST_F(XmlGenerated, DamagedDocumentsAreRefusedOrKeepTheirMeaning) {
    int accepted = 0;
    int refused = 0;
    for (int i = 0; i < 600; ++i) {
        DocumentMaker maker(random_);
        maker.make();
        const std::size_t prologue = maker.source.find("]>") + 2;
        const std::string text = maker.source.substr(0, prologue) + damaged(maker.source.substr(prologue));
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", document " + std::to_string(i) + ":\n" + text);
        const std::optional<QDomDocument> document = parseXml(QByteArray::fromStdString(text));
        ++(document ? accepted : refused);
        if (document) {
            ASSERT_EQ(treeText(load(serialiseXml(*document).toStdString())), treeText(*document));
        }
    }
    // Both answers must have been put to the test.
    EXPECT_GT(accepted, 100);
    EXPECT_GT(refused, 100);
}
