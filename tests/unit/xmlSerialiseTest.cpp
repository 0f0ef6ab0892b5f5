#include "xmlSerialise.h"

#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "thrown.h"
#include "xml.h"
#include "xmlStructure.h"

using namespace pos;

namespace {

std::string saved(const QDomDocument& document) {
    return serialiseXml(document).toStdString();
}

/** Every kind of node. Outside ASCII only characters that ISO-8859-1 has stand unescaped. */
std::string everything(const std::string& declaration) {
    return declaration +
           "<!-- f\xc3\xafrst --><?style sheet='\xc3\xa9'?><!DOCTYPE observation SYSTEM 'field.dtd'>\n"
           "<observation datamver='8.00' \xc3\xa9t\xc3\xa9='\xc3\xa0 &amp; &lt;&gt;&quot;&apos;&#9;&#10;&#13;'>"
           "text \xc2\xb0 &amp; &lt; ]]&gt; &#x1F600;&#x20AC;&#13; end"
           "<!-- comment: <a> & \xc2\xa7 -->"
           "<empty/><blank attribute=''/><p:prefixed q:a='1'/>"
           "<mixed>one<b>two</b>three<?target some data?>four<!--five-->six<![CDATA[<seven> & \xc2\xb5]]>eight</mixed>"
           "<![CDATA[a]]]]><![CDATA[>b]]><astral name='&#x1F600;&#x10FFFF;'>&#x10000;</astral>"
           "</observation><!-- last --><?end?>";
}

/** A UTF-8 text of characters up to U+00FF in ISO-8859-1. */
std::string latin1(const std::string& utf8) {
    return QString::fromStdString(utf8).toLatin1().toStdString();
}

std::string littleEndian(const std::string& utf8) {
    std::string bytes = "\xff\xfe";
    for (const QChar unit : QString::fromStdString(utf8)) {
        bytes += static_cast<char>(unit.unicode() & 0xff);
        bytes += static_cast<char>(unit.unicode() >> 8);
    }
    return bytes;
}

} // namespace

class XmlSerialise : public ProcessWideState {
protected:
    TemporaryFolder folder_;

    QDomDocument load(const std::string& bytes) const {
        return loadXmlFile(folder_.write("a.xml", bytes));
    }

    /** Loads, saves and loads again; the trees must be equal, and a further save the same bytes. @return the bytes */
    std::string expectSurvives(const std::string& bytes) const {
        const QDomDocument first = load(bytes);
        const std::string firstBytes = saved(first);
        const QDomDocument second = load(firstBytes);
        EXPECT_EQ(treeText(second), treeText(first)) << firstBytes;
        EXPECT_EQ(saved(second), firstBytes);
        return firstBytes;
    }
};

TEST_F(XmlSerialise, EveryKindOfNodeSurvivesInUtf16) {
    const std::string text = littleEndian(everything("<?xml version='1.0' encoding='UTF-16'?>"));
    const std::string bytes = expectSurvives(text);
    EXPECT_EQ(bytes.substr(0, 4), std::string("\xff\xfe<\0", 4));
    EXPECT_EQ(bytes.size() % 2, 0U);
}

TEST_F(XmlSerialise, EveryKindOfNodeSurvivesInLatin1) {
    const std::string text = latin1(everything("<?xml version='1.0' encoding='ISO-8859-1'?>"));
    const std::string bytes = expectSurvives(text);
    EXPECT_NE(bytes.find("text \xb0 &amp; "), std::string::npos);
    EXPECT_NE(bytes.find("&#x1f600;&#x20ac;&#xd; end"), std::string::npos);
    EXPECT_NE(bytes.find("name=\"&#x1f600;&#x10ffff;\">&#x10000;</astral>"), std::string::npos);
}

TEST_F(XmlSerialise, OtherDeclaredEncodingsAreKeptWithReferencesForWhatTheyLack) {
    const std::string ascii =
        expectSurvives("<?xml version='1.0' encoding='US-ASCII'?><a b='&#233;&#x1F600;'>&#233;&#x20AC;&#x1F600;</a>");
    EXPECT_EQ(ascii, "<?xml version='1.0' encoding='US-ASCII'?>\n"
                     "<a b=\"&#xe9;&#x1f600;\">&#xe9;&#x20ac;&#x1f600;</a>\n");
    const std::string windows = expectSurvives("<?xml version='1.0' encoding='windows-1252'?><a>\x80\xe9&#x1F600;</a>");
    EXPECT_EQ(windows, "<?xml version='1.0' encoding='windows-1252'?>\n<a>\x80\xe9&#x1f600;</a>\n");
}

TEST_F(XmlSerialise, DocumentsAreWrittenLikeThis) {
    struct Row {
        std::string read;
        std::string written;
    };
    for (const auto& [read, written] : std::vector<Row>{
             {"<a><b><c x='1'/>\n\n   <!--d--></b></a>", "<a>\n <b>\n  <c x=\"1\"/>\n  <!--d-->\n </b>\n</a>\n"},
             {"<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\" ?>\n<a/>",
              "<?xml version='1.0' encoding='utf-8' standalone='yes'?>\n<a/>\n"},
             {"<?xml version='1.0'?><a/>", "<?xml version='1.0'?>\n<a/>\n"},
             // Blank text is left out, unless it stands in a section.
             {"<a> <b> \n\t </b><c>&#32;</c><d>\xc2\xa0</d><e><![CDATA[ ]]></e></a>",
              "<a>\n <b/>\n <c/>\n <d>\xc2\xa0</d>\n <e><![CDATA[ ]]></e>\n</a>\n"},
             // Line ends are folded, and blanks of attributes are spaces, unless they are referred to.
             {"<a b='1\r\n2\r3\t4'>x\r\ny\rz<!--p\r\nq--><![CDATA[u\r\nv]]>&#13;&#10;w</a>",
              "<a b=\"1 2 3 4\">x\ny\nz<!--p\nq--><![CDATA[u\nv]]>&#xd;\nw</a>\n"},
             {"<a b='&#9;&#10;&#13;&quot;&apos;&lt;&amp;&gt;&amp;lt;' c='&#13;&#10;'>&quot;]]&gt;]&gt;</a>",
              "<a b=\"&#x9;&#xa;&#xd;&quot;'&lt;&amp;>&amp;lt;\" c=\"&#xd;&#xa;\">\"]]&gt;]></a>\n"},
             {"<?xml version='1.0' encoding='US-ASCII'?><a b='&amp;#233;'>&amp;#xd83d;&amp;#xde00;</a>",
              "<?xml version='1.0' encoding='US-ASCII'?>\n<a b=\"&amp;#233;\">&amp;#xd83d;&amp;#xde00;</a>\n"},
             // Entities are replaced by what they stand for.
             {"<!DOCTYPE a [<!ENTITY e 'val &#x1F600;'><!ENTITY m '<b c=\"1\">v</b>'><!ATTLIST a d CDATA 'D'>]>"
              "<a b='&e;'>x&e;y&m;z</a>",
              "<!DOCTYPE a>\n<a b=\"val \xf0\x9f\x98\x80\">xval \xf0\x9f\x98\x80y<b c=\"1\">v</b>z</a>\n"},
             // Document types keep their identifiers.
             {"<!DOCTYPE p:a SYSTEM 'x\"y.dtd?c=1&d=<2'><p:a/>", "<!DOCTYPE p:a SYSTEM 'x\"y.dtd?c=1&d=<2'>\n<p:a/>\n"},
             {"<!DOCTYPE a PUBLIC \"p'x\" 's\"y' [<!-- c --><?p?>]><a/>", "<!DOCTYPE a PUBLIC \"p'x\" 's\"y'>\n<a/>\n"},
             {"<!DOCTYPE a SYSTEM ''><a/>", "<!DOCTYPE a SYSTEM ''>\n<a/>\n"}}) {
        EXPECT_EQ(expectSurvives(read), written);
    }
}

TEST_F(XmlSerialise, DocumentWithoutADeclarationIsWrittenInUtf8AndStaysAsItIs) {
    const QDomDocument document = load("<a b='\xc3\xa9'>t<?p q?>u</a>");
    const std::string before = treeText(document);
    EXPECT_EQ(saved(document), "<a b=\"\xc3\xa9\">t<?p q?>u</a>\n");
    EXPECT_EQ(treeText(document), before);
    EXPECT_EQ(saved(QDomDocument()), "");
}

TEST_F(XmlSerialise, TextBehindAnInstructionDoesNotGrow) {
    EXPECT_EQ(expectSurvives("<a>t<?p d?>more<?q?>\nlast</a>"), "<a>t<?p d?>more<?q ?>\nlast</a>\n");
    const std::string decoys = expectSurvives("<a><!--<?x--><![CDATA[<?y]]><?p -->?>t<b><?p?></b></a>");
    EXPECT_NE(decoys.find("<?p -->?>t<b>"), std::string::npos) << decoys;
    EXPECT_EQ(expectSurvives("<?xml version='1.0'?><?o?><a><?p?>t</a><?q?>"),
              "<?xml version='1.0'?>\n<?o ?>\n<a>\n<?p ?>t</a>\n<?q ?>\n");
}

TEST_F(XmlSerialise, ReferencesInsideCommentsCdataAndInstructionsStayAsTheyAre) {
    const std::string bytes = expectSurvives("<?xml version='1.0' encoding='ISO-8859-1'?><a b='&#x1F600;'>"
                                             "<!--&#xd83d;&#xde00;--><![CDATA[&#xd83d;&#xde00;]]>"
                                             "<?p &#xd83d;&#xde00;?></a>");
    EXPECT_NE(bytes.find("<!--&#xd83d;&#xde00;-->"), std::string::npos);
    EXPECT_NE(bytes.find("<![CDATA[&#xd83d;&#xde00;]]>"), std::string::npos);
    EXPECT_NE(bytes.find("<?p &#xd83d;&#xde00;?>"), std::string::npos);
    EXPECT_NE(bytes.find("b=\"&#x1f600;\""), std::string::npos);
}

TEST_F(XmlSerialise, DeeperDocumentsThanCanBeReadAreNotWritten) {
    QDomDocument document = load("<a/>");
    QDomNode parent = document.documentElement();
    for (int i = 0; i < 255; ++i) {
        parent = parent.appendChild(document.createElement("a"));
    }
    expectSurvives(saved(document));
    parent.appendChild(document.createElement("a"));
    EXPECT_EQ(messageOf([&] { saved(document); }), "The output would be nested more than 256 levels deep");
}

TEST_F(XmlSerialise, LongTextSurvives) {
    const std::string text(1'000'000, '"');
    EXPECT_EQ(load(expectSurvives("<a b='" + text + "'><!--" + text + "--><?p?>" + text + "</a>"))
                  .documentElement()
                  .text()
                  .size(),
              1'000'000);
}

TEST_F(XmlSerialise, WhatCannotBeReferredToMakesTheDocumentUtf8) {
    const std::string japanese = "\xe6\x97\xa5";
    const std::string declaration = "<?xml version='1.0' encoding='ISO-8859-1'?><!DOCTYPE a [<!ENTITY e '<&#x65e5;/>'>"
                                    "<!ENTITY c '<!--&#x65e5;-->'><!ENTITY d '<![CDATA[&#x65e5;]]>'>"
                                    "<!ENTITY p '<?&#x65e5; q?>'><!ENTITY q '<?p &#x65e5;?>'>"
                                    "<!ENTITY n '<b &#x65e5;=\"\"/>'>]>";
    for (const std::string entity : {"e", "c", "d", "p", "q", "n"}) {
        const QDomDocument document = load(declaration + "<a b='\xe9&#x65e5;'>&" + entity + ";</a>");
        const std::string bytes = expectSurvives(saved(document));
        EXPECT_EQ(treeText(load(bytes).documentElement()), treeText(document.documentElement()));
        EXPECT_EQ(bytes.substr(0, 38), "<?xml version='1.0' encoding='UTF-8'?>") << bytes;
        EXPECT_NE(bytes.find("<a b=\"\xc3\xa9" + japanese + "\">"), std::string::npos) << bytes;
    }
    EXPECT_EQ(expectSurvives(declaration + "<a b='\xe9&#x65e5;'/>"),
              "<?xml version='1.0' encoding='ISO-8859-1'?>\n<!DOCTYPE a>\n<a b=\"\xe9&#x65e5;\"/>\n");
}

TEST_F(XmlSerialise, MultiByteEncodingsAreKept) {
    for (const auto& [encoding, japanese] :
         std::vector<std::pair<std::string, std::string>>{{"GB18030", "\xc8\xd5"},
                                                          {"Shift_JIS", "\x93\xfa"},
                                                          {"EUC-JP", "\xc6\xfc"},
                                                          {"ISO-2022-JP", "\x1b$BF|\x1b(B"}}) {
        const std::string declaration = "<?xml version='1.0' encoding='" + encoding + "'?>\n";
        EXPECT_EQ(expectSurvives(declaration + "<a b=\"" + japanese + "\"><!--" + japanese + "--></a>"),
                  declaration + "<a b=\"" + japanese + "\">\n <!--" + japanese + "-->\n</a>\n");
    }
    EXPECT_EQ(expectSurvives("<?xml version='1.0' encoding='EUC-JP'?><a>&#x1F600;</a>"),
              "<?xml version='1.0' encoding='EUC-JP'?>\n<a>&#x1f600;</a>\n");
}

TEST_F(XmlSerialise, EncodingsThatChangeTheDeclarationItselfGiveWayToUtf8) {
    for (const std::string encoding : {"HZ-GB-2312", "ISO-2022-KR", "Adobe-Standard-Encoding"}) {
        const QDomDocument document = load(R"(<?xml version="1.0" encoding=")" + encoding + R"("?><a b="1"/>)");
        EXPECT_EQ(saved(document), "<?xml version='1.0' encoding='UTF-8'?>\n<a b=\"1\"/>\n");
    }
}

TEST_F(XmlSerialise, CarriageReturnsOfASectionSurviveAsThoseOfAText) {
    const QDomDocument document = load("<!DOCTYPE a [<!ENTITY e '<![CDATA[x&#13;<y]]>'>]><a>&e;</a>");
    EXPECT_EQ(saved(document), "<!DOCTYPE a>\n<a>x&#xd;&lt;y</a>\n");
}

TEST_F(XmlSerialise, TagMayHave256AttributesAsWhenItIsRead) {
    QDomDocument document = load("<a/>");
    for (int i = 0; i < 256; ++i) {
        document.documentElement().setAttribute(QStringLiteral("b%1").arg(i), "");
    }
    expectSurvives(saved(document));
    document.documentElement().setAttribute("c", "");
    EXPECT_EQ(messageOf([&] { saved(document); }), "The output would have more than 256 attributes in one tag");
}

TEST_F(XmlSerialise, OutputMayHave256MiB) {
    // All but the text: "<a></a>" and a line end.
    const auto withText = [](int size) {
        QDomDocument document;
        QDomElement root = document.createElement("a");
        root.appendChild(document.createTextNode(QString(size - 8, QLatin1Char('x'))));
        document.appendChild(root);
        return document;
    };
    EXPECT_EQ(serialiseXml(withText(256 << 20)).size(), 256 << 20);
    const std::string tooLarge = "The output would be larger than 256 MiB";
    EXPECT_EQ(messageOf([&] { serialiseXml(withText((256 << 20) + 1)); }), tooLarge);
    // A character that takes two bytes, and an escape.
    QDomDocument accented = withText(256 << 20);
    accented.documentElement().setAttribute("b", QString(QChar(0xe9)));
    EXPECT_EQ(messageOf([&] { serialiseXml(accented); }), tooLarge);
    QDomDocument escaped = withText(100 << 20);
    escaped.documentElement().setAttribute("b", QString(30 << 20, QLatin1Char('"')));
    EXPECT_EQ(messageOf([&] { serialiseXml(escaped); }), tooLarge);
}
