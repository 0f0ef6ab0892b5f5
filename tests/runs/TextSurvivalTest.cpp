#include "Program.h"
#include "fieldDefinition.h"
#include "xml.h"

#include <QSet>
#include <QTextCodec>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

// Everything that the input says is in the output, in the encoding that the input declares.

namespace {

const QSet<QString> kPlaceAttributes = {"RA_d", "Dec_d"};
const QSet<QString> kFibreAttributes = {"fibreid", "targx", "targy", "ifu_pa", "ifu_spaxel", "configid"};

/** The attributes that a run writes on an element of the input. */
QSet<QString> writtenAttributes(const QString& element, const QXmlStreamAttributes& attributes) {
    if (element == "field" || element == "observation") {
        return kPlaceAttributes;
    }
    if (element == "configure") {
        return {"configure_version"};
    }
    if (element == "conditions") {
        return {"epoch", "temperature", "pressure", "relative_humidity", "tlr", "ha"};
    }
    const auto name = attributes.value("targname");
    const bool configured =
        element == "target" && (name.startsWith(QLatin1String("Galaxy")) || name.startsWith(QLatin1String("Star")));
    return configured ? kFibreAttributes : QSet<QString>();
}

/** Whether a run has added the element. */
bool isAdded(const QString& element, const QXmlStreamAttributes& attributes) {
    return element == "hour_angle_limits" || element == "telescope" || element == "focal_plane_map" ||
           (element == "target" && attributes.value("automatic") == QLatin1String("1"));
}

/** What a document says, one thing a line, without what a run writes: the same for its input and its output. */
class Essence {
public:
    explicit Essence(const std::string& bytes) : reader_(QByteArray::fromStdString(bytes)) {
        reader_.setNamespaceProcessing(false);
        while (!reader_.atEnd()) {
            add(reader_.readNext());
        }
        EXPECT_FALSE(reader_.hasError()) << reader_.errorString().toStdString();
        endText();
    }

    std::string lines() const {
        return lines_.toUtf8().toStdString();
    }

private:
    void add(QXmlStreamReader::TokenType token) {
        if (token == QXmlStreamReader::Characters && !reader_.isCDATA()) {
            text_ += reader_.text();
            return;
        }
        endText();
        if (token == QXmlStreamReader::StartElement) {
            addElement();
        } else if (token == QXmlStreamReader::EndElement) {
            lines_ += "end\n";
        } else if (token == QXmlStreamReader::Characters) {
            lines_ += "cdata [" + reader_.text() + "]\n";
        } else if (token == QXmlStreamReader::Comment) {
            lines_ += "comment [" + reader_.text() + "]\n";
        } else if (token == QXmlStreamReader::ProcessingInstruction) {
            lines_ += "instruction [" + reader_.processingInstructionTarget() + "] [" +
                      reader_.processingInstructionData() + "]\n";
        }
    }

    void addElement() {
        const QString name = reader_.qualifiedName().toString();
        const QXmlStreamAttributes attributes = reader_.attributes();
        if (isAdded(name, attributes)) {
            reader_.skipCurrentElement();
            return;
        }
        const QSet<QString> written = writtenAttributes(name, attributes);
        QStringList texts;
        for (const QXmlStreamAttribute& attribute : attributes) {
            if (!written.contains(attribute.qualifiedName().toString())) {
                texts += attribute.qualifiedName() + "=[" + attribute.value() + "]";
            }
        }
        texts.sort();
        lines_ += "element " + name + " " + texts.join(' ') + "\n";
    }

    /** Blank text between the elements is layout, which the run makes anew. */
    void endText() {
        if (!text_.trimmed().isEmpty()) {
            lines_ += "text [" + text_ + "]\n";
        }
        text_.clear();
    }

    QXmlStreamReader reader_;
    QString text_;
    QString lines_;
};

/** A document with everything that XML has, in characters of UTF-8. @param beyond text that not every encoding has */
std::string richDocument(const std::string& encoding, const std::string& beyond) {
    const std::string comment = "<!-- é " + beyond + " & < > &amp; ]]> -->";
    const std::string unknown =
        R"(<own:note own:kind="ü &quot;q&quot; 'a' &lt;&amp;&gt; &#9;&#10;&#13; &#x1F600;&#x10000; )" + beyond +
        R"(" plain='"'> leading, ß &amp; &lt;tag&gt; ]]&gt; &#x1F600; &#x10000; &#13; )" + beyond +
        R"( trailing <b>bold</b> tail <![CDATA[ <raw> & ]] é )" + beyond + R"(]]> after<empty/></own:note>)";
    const std::string instruction = "<?own-tool do=\"é " + beyond + "\" & more ?>";
    FieldDefinition definition;
    definition.declaration =
        "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n" + comment + "<?xml-stylesheet href=\"a.xsl\"?>";
    definition.rootAttributes = R"(datamver="8.00" xmlns="http://example.org/a" xmlns:o="urn:b" o:x="y")";
    definition.observationAttributes = R"(pa="7.5" name="é )" + beyond + R"(" obs_type='say "&lt;"')";
    definition.configure = "<configure configure_version=\"old\" own=\"1\">" + comment + unknown + instruction +
                           R"(<conditions epoch="2024.5" seeing="0.8">)" + unknown +
                           "</conditions>tail text</configure>" + unknown;
    const std::string other =
        targetXml("C", "Other é", "150.3000000", "20.3000000", "configid=\"700\" free=\"" + beyond + "\"", unknown);
    definition.fields = {
        fieldXml(comment + "<group name=\"ü\">" + other + "<group/></group>" +
                 targetXml("T", "Galaxy", "150.10000000", "20.10000000", "note=\"&#10;é\"", comment + unknown) +
                 "between" + guideStarXml() + instruction + "<avoidance_list>" + comment +
                 R"(<mask RA_d="150.300000" Dec_d="20.300000"/></avoidance_list>)"),
        comment, secondFieldXml()};
    return definition.text() + comment + instruction + "\n";
}

std::string encoded(const std::string& utf8, const char* codec, const std::string& byteOrderMark = "") {
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text = QString::fromStdString(utf8);
    const QByteArray bytes = QTextCodec::codecForName(codec)->fromUnicode(text.constData(), text.size(), &state);
    EXPECT_EQ(state.invalidChars, 0) << codec;
    return byteOrderMark + bytes.toStdString();
}

void expectToSurvive(const std::string& input) {
    const std::string before = Essence(input).lines();
    ASSERT_NE(before.find("cdata [ <raw> & ]] "), std::string::npos);
    EXPECT_EQ(Essence(configuredBytes(input)).lines(), before);
}

/** Omega, a character beyond the basic plane, and one that takes three bytes. */
const std::string kBeyond = "Ω😀€";

} // namespace

TEST(TextSurvival, KeepsEverythingOfAUtf8Document) {
    expectToSurvive(richDocument("UTF-8", kBeyond));
}

TEST(TextSurvival, KeepsEverythingOfAUtf8DocumentWithAByteOrderMark) {
    expectToSurvive("\xef\xbb\xbf" + richDocument("UTF-8", kBeyond));
}

TEST(TextSurvival, KeepsEverythingOfAUtf16DocumentInEitherByteOrder) {
    const std::string document = richDocument("UTF-16", kBeyond);
    expectToSurvive(encoded(document, "UTF-16LE", "\xff\xfe"));
    expectToSurvive(encoded(document, "UTF-16BE", "\xfe\xff"));
}

TEST(TextSurvival, KeepsEverythingOfALatin1Document) {
    expectToSurvive(encoded(richDocument("ISO-8859-1", "ÿ"), "ISO-8859-1"));
}

TEST(TextSurvival, KeepsCharactersThatTheEncodingLacks) {
    // Possible in text and attributes only, by reference.
    const std::string input =
        replaced(encoded(richDocument("ISO-8859-1", "ÿ"), "ISO-8859-1"), "datamver=\"8.00\"",
                 "datamver=\"8.00\" far=\"&#937;&#x1F600;&#x20AC;\" pair=\"&#x10000;&#x10FFFF;\"");
    expectToSurvive(input);
}

TEST(TextSurvival, KeepsEverythingOfADocumentWithCarriageReturns) {
    expectToSurvive(replaced(richDocument("UTF-8", kBeyond), "><", ">\r\n<"));
}

TEST(TextSurvival, WritesTheBytesOfTheDeclaredEncoding) {
    const struct {
        const char* encoding;
        const char* codec;
        std::string mark;
    } rows[] = {{"UTF-8", "UTF-8", ""},
                {"ISO-8859-1", "ISO-8859-1", ""},
                {"UTF-16", "UTF-16LE", "\xff\xfe"},
                {"UTF-16", "UTF-16BE", "\xfe\xff"}};
    for (const auto& [encoding, codec, mark] : rows) {
        SCOPED_TRACE(codec);
        FieldDefinition definition;
        definition.declaration = "<?xml version=\"1.0\" encoding=\"" + std::string(encoding) + "\"?>";
        definition.observationAttributes = R"(pa="0" name="é")";
        const std::string output = configuredBytes(encoded(definition.text(), codec, mark));
        // A UTF-16 document may come back in the other byte order, as its mark then says.
        const bool utf16 = !mark.empty();
        const bool bigEndian = utf16 && output.substr(0, 2) == "\xfe\xff";
        ASSERT_TRUE(!utf16 || bigEndian || output.substr(0, 2) == "\xff\xfe");
        const char* const written = !utf16 ? codec : bigEndian ? "UTF-16BE" : "UTF-16LE";
        const std::string attribute = encoded("name=\"é\"", written);
        const std::string declared = encoded(encoding, written);
        EXPECT_NE(output.find(attribute), std::string::npos);
        EXPECT_NE(output.substr(0, 120).find(declared), std::string::npos);
    }
}

TEST(TextSurvival, WritesUtf8WhereNothingIsDeclared) {
    FieldDefinition definition;
    definition.declaration = "";
    definition.observationAttributes = "pa=\"0\" name=\"" + kBeyond + "\"";
    EXPECT_NE(configuredBytes(definition.text()).find("name=\"" + kBeyond + "\""), std::string::npos);
}

TEST(TextSurvival, IndentsByOneBlankForALevel) {
    const std::string output = configuredBytes(FieldDefinition().text());
    EXPECT_NE(output.find("\n<vante "), std::string::npos);
    EXPECT_NE(output.find("\n <observation "), std::string::npos);
    EXPECT_NE(output.find("\n  <fields>\n"), std::string::npos);
    EXPECT_NE(output.find("\n   <field "), std::string::npos);
    EXPECT_NE(output.find("\n    <target "), std::string::npos);
    EXPECT_EQ(output.find("\n     <target "), std::string::npos);
}

TEST(TextSurvival, ResolvesTheEntitiesThatADocumentDeclares) {
    FieldDefinition definition;
    definition.declaration += "<!DOCTYPE vante [<!ENTITY who \"the &#233;t&#233; observer\">]>";
    definition.observationAttributes = R"(pa="0" observer="&who;")";
    definition.configure = "<configure><note>by &who;!</note><conditions epoch=\"2024.5\"/></configure>";
    const std::string lines = Essence(configuredBytes(definition.text())).lines();
    EXPECT_NE(lines.find("observer=[the été observer]"), std::string::npos) << lines.substr(0, 2000);
    EXPECT_NE(lines.find("text [by the été observer!]"), std::string::npos) << lines.substr(0, 2000);
}
