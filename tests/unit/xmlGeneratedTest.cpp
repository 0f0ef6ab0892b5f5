#include "DocumentMaker.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "xml.h"
#include "xmlParse.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <QTextStream>
#include <array>
#include <map>
#include <random>
#include <vector>

using namespace pos;

namespace {

constexpr unsigned kSeed = 20160815;

} // namespace

class XmlGenerated : public ProcessWideState {
protected:
    TemporaryFolder folder_;
    std::mt19937 random_{kSeed};
    const Choose choose_ = [this](int count) { return std::uniform_int_distribution<int>(0, count - 1)(random_); };

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
        const MadeDocument made = makeDocument(choose_);
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", document " + std::to_string(i) + ":\n" + made.source);
        const QDomDocument document = load(made.source);
        ASSERT_EQ(treeText(document), made.tree);
        const std::string saved = serialiseXml(document).toStdString();
        const QDomDocument again = load(saved);
        ASSERT_EQ(treeText(again), made.tree) << saved;
        ASSERT_EQ(serialiseXml(again).toStdString(), saved);
    }
}

TEST_F(XmlGenerated, DocumentsBecomeTheTreeThatTheXmlLibraryItselfBuilds) {
    int compared = 0;
    for (int i = 0; i < 300; ++i) {
        const MadeDocument made = makeDocument(choose_);
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", document " + std::to_string(i) + ":\n" + made.source);
        // That reader halves what a reference to a character beyond the basic plane stands for, keeps what stands in a
        // document type, and some entities are too much for it: it refuses them or leaves their references.
        const QString source = QString::fromStdString(made.source)
                                   .replace("&#x1F600;", "\xf0\x9f\x98\x80")
                                   .replace("<?q?><!-- ]> -->", "");
        QDomDocument expected;
        if (expected.setContent(source.toUtf8(), false) && treeText(expected).find("[5 ") == std::string::npos) {
            ASSERT_EQ(treeText(load(source.toStdString())), treeText(expected));
            ++compared;
        }
    }
    EXPECT_GT(compared, 50);
}

TEST_F(XmlGenerated, DocumentsAreWrittenAsTheXmlLibraryItselfWritesThem) {
    std::map<QByteArray, int> compared;
    for (int i = 0; i < 900; ++i) {
        const MadeDocument made = makeDocument(choose_);
        const QByteArray encoding = std::array{"UTF-8", "ISO-8859-1", "US-ASCII"}.at(static_cast<std::size_t>(i % 3));
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", document " + std::to_string(i) + " in " +
                     encoding.toStdString() + ":\n" + made.source);
        QDomDocument document = load(made.source);
        document.insertBefore(document.createProcessingInstruction("xml", "version='1.0' encoding='" + encoding + "'"),
                              document.firstChild());
        // The library puts a line break between an instruction and a text, halves characters beyond the basic plane,
        // and writes references where there can be none.
        const QByteArray written = serialiseXml(document);
        if (made.tree.find("[7 ") == std::string::npos && written.contains(encoding) &&
            (encoding == "UTF-8" || made.tree.find('\xf0') == std::string::npos)) {
            QByteArray expected;
            QTextStream stream(&expected);
            document.save(stream, 1);
            stream.flush();
            ASSERT_EQ(written.toStdString(), expected.toStdString());
            ++compared[encoding];
        }
    }
    for (const char* const encoding : {"UTF-8", "ISO-8859-1", "US-ASCII"}) {
        EXPECT_GT(compared[encoding], 30) << encoding;
    }
}

/** One that the XML library's own reader takes for something else, as docs/input-and-output.md tells. */
struct Difference {
    std::string source;
    std::string library; ///< the tree below the document element, in the form of treeText
    std::string program; ///< the same, or the reason of the refusal
};

TEST_F(XmlGenerated, DifferencesFromTheXmlLibrarysOwnReaderAreThese) {
    const std::string malformed = folder_.path("a.xml") + " is not valid XML";
    const std::string unknown =
        folder_.path("a.xml") + " refers to an entity that cannot be known without reading another file";
    for (const auto& [source, library, program] : std::vector<Difference>{
             // Blanks in attributes.
             {"<a b='x\ty\nz'/>", "<a b='x\ty\nz'>\n", "<a b='x y z'>\n"},
             // Text of blanks that are none to XML.
             {"<a>\xc2\xa0</a>", "<a>\n", "<a>\n [3 #text] \xc2\xa0\n"},
             // References beyond the basic plane.
             {"<a>&#x1F600;</a>", "<a>\n [3 #text] \xef\x98\x80\n", "<a>\n [3 #text] \xf0\x9f\x98\x80\n"},
             // What is not well-formed.
             {"<a b='&u;'/>", "<a b=''>\n", malformed},
             {"<a>&u;</a>", "<a>\n [5 u] \n", malformed},
             {"<a b='1' b='2'/>", "<a b='2'>\n", malformed},
             {"<a>&#1;</a>", "<a>\n [3 #text] \x01\n", malformed},
             {"<a>\xc3(</a>", "<a>\n [3 #text] \xef\xbf\xbd(\n", malformed},
             // What other files may declare.
             {"<!DOCTYPE a SYSTEM 'x'><a b='&u;'/>", "<a b=''>\n", unknown},
             {"<!DOCTYPE a [<!ENTITY e SYSTEM 'x'>]><a>&e;</a>", "<a>\n [5 e] \n", unknown},
             {"<!DOCTYPE a [<!ENTITY % p SYSTEM 'x'>%p;<!ENTITY e 'E'>]><a b='&e;'/>", "<a b='E'>\n", unknown},
             // Versions and encodings.
             {"<?xml version='1.1'?><a/>", "<a>\n",
              folder_.path("a.xml") + " is written in version 1.1 of XML, and only 1.0 is read"},
             {"<?xml version='1.0' encoding='nothing'?><a/>", "<a>\n",
              folder_.path("a.xml") + " declares an encoding that is not known"},
         }) {
        EXPECT_EQ(treeText(parseDocument(source).documentElement()), library) << source;
        std::string actual;
        try {
            actual = treeText(load(source).documentElement());
        } catch (const std::runtime_error& error) {
            actual = error.what();
        }
        EXPECT_EQ(actual, program) << source;
    }
    // Instructions and comments within a document type.
    const std::string type = "<!DOCTYPE a [<?p q?><!--c-->]><a/>";
    EXPECT_EQ(treeText(parseDocument(type)), "[9 #document] \n [7 p] q\n [8 #comment] c\n <a>\n");
    EXPECT_EQ(treeText(load(type)), "[9 #document] \n <a>\n");
}

TEST_F(XmlGenerated, DamagedDocumentsAreRefusedOrKeepTheirMeaning) {
    int accepted = 0;
    int refused = 0;
    for (int i = 0; i < 600; ++i) {
        const MadeDocument made = makeDocument(choose_);
        const std::size_t prologue = made.source.find("]>") + 2;
        const std::string text = made.source.substr(0, prologue) + damaged(made.source.substr(prologue));
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", document " + std::to_string(i) + ":\n" + text);
        QDomDocument document;
        try {
            document = load(text);
        } catch (const std::runtime_error&) {
            ++refused;
            continue;
        }
        ++accepted;
        ASSERT_EQ(treeText(load(serialiseXml(document).toStdString())), treeText(document));
    }
    // Both answers must have been put to the test.
    EXPECT_GT(accepted, 100);
    EXPECT_GT(refused, 100);
}
