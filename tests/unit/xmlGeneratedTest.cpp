#include "DocumentMaker.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "xml.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <QTextStream>
#include <array>
#include <map>
#include <random>

using namespace pos;

class XmlGenerated : public ProcessWideState {
protected:
    static constexpr unsigned kSeed = 20160815;
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
