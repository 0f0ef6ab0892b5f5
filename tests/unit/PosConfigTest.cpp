#include "PosConfig.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "Version.h"
#include "fieldDefinition.h"
#include "surroundings.h"
#include "thrown.h"

#include <boost/property_tree/xml_parser.hpp>
#include <sstream>

using namespace pos;

using boost::property_tree::ptree_bad_data;
using boost::property_tree::ptree_bad_path;
using boost::property_tree::xml_parser_error;

namespace {

/** A configuration file on disk and its loading. */
class PosConfigTest : public ProcessWideState {
protected:
    PosConfig load(const std::string& content) const {
        return {folder_.write("configure.xml", content).c_str(), PosConfig::XML};
    }
    PosConfig loadForVersion(const std::string& version, const std::string& content) const {
        return {"configure_version", version, folder_.write("configure.xml", content).c_str(), PosConfig::XML};
    }
    template <typename E = std::runtime_error> std::string refusalOf(const std::string& content) const {
        return messageOf<E>([&] { load(content); });
    }

    const TemporaryFolder folder_;
};

std::string openingFailureOf(const std::string& name) {
    return messageOf([&] { const PosConfig config(name.c_str(), PosConfig::XML); });
}

/** What the parser itself says about a text. */
std::string xmlErrorOf(const std::string& content) {
    return messageOf<xml_parser_error>([&] {
        std::istringstream text(content);
        boost::property_tree::ptree tree;
        boost::property_tree::read_xml(text, tree);
    });
}

} // namespace

TEST_F(PosConfigTest, ProgramVersionIsAConstantAndDataModelVersionStartsEmpty) {
    EXPECT_EQ(configure_version, "3.3.5");
    EXPECT_EQ(datamver, "");
}

TEST_F(PosConfigTest, EmbeddedConfigurationPassesTheVersionCheckAndSetsTheDataModelVersion) {
    const PosConfig config("configure_version", "3.3.5", ":/configure.xml", PosConfig::XML);
    EXPECT_EQ(datamver, "8.00");
    EXPECT_EQ(config.get<std::string>("<xmlattr>.datamver"), "8.00");
}

TEST_F(PosConfigTest, KeysAreRelativeToTheRootElementWhateverItsName) {
    const PosConfig config = load("<site datamver='8.00' name='x'><a><b c='3'>2</b></a></site>");
    EXPECT_EQ(config.get<std::string>("a.b"), "2");
    EXPECT_EQ(config.get<std::string>("a.b.<xmlattr>.c"), "3");
    EXPECT_EQ(config.get<std::string>("<xmlattr>.name"), "x");
    EXPECT_EQ(messageOf<ptree_bad_path>([&] { config.get<std::string>("site.a.b"); }), "No such node (site.a.b)");
}

TEST_F(PosConfigTest, FirstElementOfANameAnswersWithItsTextWithoutComments) {
    const std::pair<std::string, std::string> rows[] = {
        {"<?xml version='1.0' encoding='UTF-8'?>\n<!-- one -->\n<!DOCTYPE c>\n<!-- two -->\n"
         "<c datamver='8.00'><a>1</a></c>\n<!-- three -->\n",
         "1"},
        {"<one datamver='8.00'><a>1</a></one><two datamver='9.00'><a>2</a></two>", "1"},
        {"<c datamver='8.00'><a>1</a><a>2</a></c>", "1"},
        {"<c datamver='8.00'><!-- a --><a><!-- b -->5.5<!-- c --></a></c>", "5.5"},
        {"<c datamver='8.00'><a>\n 2.5 \n</a></c>", "\n 2.5 \n"},
        {"<c datamver='8.00'><a>1\r\n2</a></c>", "1\n2"},
    };
    for (const auto& [content, text] : rows) {
        EXPECT_EQ(load(content).get<std::string>("a"), text) << content;
        EXPECT_EQ(datamver, "8.00");
    }
    EXPECT_EQ(load("<c datamver='8.00'><a>\n 2.5 \n</a></c>").get<double>("a"), 2.5);
}

TEST_F(PosConfigTest, FirstLoadDefinesTheDataModelVersionOfAll) {
    const std::string mismatch = "data model version mismatch";
    load("<c datamver='7.00'/>");
    EXPECT_EQ(datamver, "7.00");
    EXPECT_NO_THROW(load("<c datamver='7.00'/>"));
    EXPECT_EQ(messageOf([] { const PosConfig config(":/configure.xml", PosConfig::XML); }), mismatch);
    for (const std::string version : {"8.00", "7.0", " 7.00", ""}) {
        EXPECT_EQ(refusalOf("<c datamver='" + version + "'/>"), mismatch) << version;
    }
    EXPECT_EQ(datamver, "7.00");
}

TEST_F(PosConfigTest, EmptyDataModelVersionLeavesTheVersionOpen) {
    load("<c datamver=''/>");
    EXPECT_EQ(datamver, "");
    load("<c datamver='7.00'/>");
    EXPECT_EQ(datamver, "7.00");
}

TEST_F(PosConfigTest, FileWithoutDataModelVersionIsRefused) {
    for (const std::string content : {"<c/>", "<c><d datamver='8.00'/></c>", "<c><datamver>8.00</datamver></c>", "",
                                      "<!-- nothing but a comment -->", "<?xml version='1.0'?>\n"}) {
        EXPECT_EQ(refusalOf<ptree_bad_path>(content), "No such node (<xmlattr>.datamver)") << content;
    }
    EXPECT_EQ(datamver, "");
}

TEST_F(PosConfigTest, FileForAnotherProgramVersionIsRefused) {
    for (const std::string version : {"3.3.4", "3.3.50", "3.3", "", " 3.3.5", "3.3.5\n"}) {
        const std::string content = "<c datamver='8.00'><configure_version>" + version + "</configure_version></c>";
        EXPECT_EQ(messageOf([&] { loadForVersion("3.3.5", content); }), "config file version mismatch") << version;
    }
}

TEST_F(PosConfigTest, VersionIsTheTextAtTheGivenKey) {
    const std::string name = folder_.write("c.xml", "<c datamver='8.00'><v><w>1.x</w></v></c>");
    EXPECT_NO_THROW(PosConfig("v.w", "1.x", name.c_str(), PosConfig::XML));
    EXPECT_NO_THROW(PosConfig("<xmlattr>.datamver", "8.00", name.c_str(), PosConfig::XML));
    EXPECT_EQ(messageOf([&] { PosConfig("v.w", "1.X", name.c_str(), PosConfig::XML); }),
              "config file version mismatch");
    EXPECT_EQ(messageOf<ptree_bad_path>([&] { PosConfig("w", "1.x", name.c_str(), PosConfig::XML); }),
              "No such node (w)");
}

TEST_F(PosConfigTest, DataModelVersionIsFixedAndCheckedBeforeTheProgramVersion) {
    const std::string content = "<c datamver='7.00'><configure_version>3.3.4</configure_version></c>";
    EXPECT_EQ(messageOf([&] { loadForVersion("3.3.5", content); }), "config file version mismatch");
    EXPECT_EQ(datamver, "7.00");
    datamver = "8.00";
    EXPECT_EQ(messageOf([&] { loadForVersion("3.3.5", content); }), "data model version mismatch");
}

TEST_F(PosConfigTest, FileThatCannotBeOpenedIsNamed) {
    const std::string failure = "Unable to open config file: ";
    EXPECT_EQ(openingFailureOf("/nonexistent/x.xml"), failure + "/nonexistent/x.xml");
    EXPECT_EQ(openingFailureOf(":/missing.xml"), failure + ":/missing.xml");
    EXPECT_EQ(openingFailureOf(folder_.name()), failure + folder_.name());
    EXPECT_EQ(openingFailureOf(""), failure);
    EXPECT_EQ(openingFailureOf("\xff.xml"), failure + "\xff.xml");
}

TEST_F(PosConfigTest, MalformedXmlIsRefusedWithTheParsersMessage) {
    const std::pair<const char*, const char*> rows[] = {
        {"<c datamver='8.00'>\n<a", "<unspecified file>(2): expected >"},
        {"<c datamver='8.00'>", "<unspecified file>(1): unexpected end of data"},
        {"text", "<unspecified file>(1): expected <"},
        {"<c datamver=8/>", "<unspecified file>(1): expected ' or \""},
        {"<!-- comment", "<unspecified file>(1): unexpected end of data"},
    };
    for (const auto& [content, message] : rows) {
        EXPECT_EQ(xmlErrorOf(content), message);
        EXPECT_EQ(refusalOf<xml_parser_error>(content), message);
    }
    EXPECT_EQ(datamver, "");
}

TEST_F(PosConfigTest, LevelsAreLimitedWhateverTheTreesReaderTakesThemFor) {
    const auto nested = [&](int levels) {
        return "<c datamver='8.00'>" + repeated(levels, "<a>") + repeated(levels, "</a>") + "</c>";
    };
    EXPECT_NO_THROW(load(nested(255)));
    const std::string name = folder_.path("configure.xml");
    EXPECT_EQ(refusalOf(nested(256)), name + " is nested more than 256 levels deep");
    EXPECT_EQ(refusalOf(nested(40'000)), name + " is nested more than 256 levels deep");
    const std::string manyTags = repeated(40'000, "<a>");
    EXPECT_EQ(refusalOf("<!DOCTYPE a [" + repeated(40'000, "</a>") + "]>" + manyTags), name + " is not valid XML");
    EXPECT_EQ(refusalOf("<c datamver='8.00'>" + repeated(40'000, "<a></b>")), name + " is not valid XML");
    // To the tree's reader this document type ends at the first bracket.
    EXPECT_EQ(load("<!DOCTYPE c [<!ENTITY e ']>" + repeated(10'000, "<a>") + "'>]><c datamver='8.00'><a>1</a></c>")
                  .get<double>("a"),
              1.0);
}

TEST_F(PosConfigTest, EveryEncodingOfADocumentIsRead) {
    const auto utf16 = [](const std::string& text) {
        std::string bytes = "\xff\xfe";
        for (const char character : text) {
            bytes += {character, '\0'};
        }
        return bytes;
    };
    EXPECT_EQ(load(utf16("<c datamver='8.00'><a>1.5</a></c>")).get<double>("a"), 1.5);
    EXPECT_EQ(
        load("<?xml version='1.0' encoding='ISO-8859-1'?><c datamver='8.00'><a>\xe9</a></c>").get<std::string>("a"),
        "\xc3\xa9");
}

TEST_F(PosConfigTest, NullNameMeansTheFileOfTheEnvironmentVariable) {
    const std::string name = folder_.write("env.xml", "<c datamver='8.00'><v>1</v><f>map.xml</f></c>");
    const EnvironmentVariable variable("VANTE_POS_CONFIG", name);
    const PosConfig config(nullptr, PosConfig::XML);
    EXPECT_EQ(config.get<std::string>("v"), "1");
    EXPECT_EQ(config.getFilename("f"), folder_.path("map.xml"));
    EXPECT_NO_THROW(PosConfig("v", "1", nullptr, PosConfig::XML));
    EXPECT_EQ(messageOf([] { PosConfig("v", "2", nullptr, PosConfig::XML); }), "config file version mismatch");
}

TEST_F(PosConfigTest, EnvironmentVariableThatIsMissingOrNamesNoFileIsAnError) {
    for (const auto& [value, message] : {std::pair<std::optional<std::string>, std::string>{
                                             std::nullopt, "VANTE_POS_CONFIG environment variable not set"},
                                         {"/nonexistent/x.xml", "Unable to open config file: /nonexistent/x.xml"},
                                         {"", "Unable to open config file: "}}) {
        const EnvironmentVariable variable("VANTE_POS_CONFIG", value);
        EXPECT_EQ(messageOf([] { const PosConfig config(nullptr, PosConfig::XML); }), message);
        EXPECT_EQ(messageOf([] { const PosConfig config(nullptr, PosConfig::INFO); }), message);
        EXPECT_EQ(messageOf([] { const PosConfig config("v", "1", nullptr, PosConfig::XML); }), message);
        EXPECT_NO_THROW(PosConfig(":/configure.xml", PosConfig::XML));
    }
}

TEST_F(PosConfigTest, FileOfMoreThanOneMebibyteIsRefused) {
    const std::string text = "<c datamver='8.00'/>";
    const std::string name = folder_.write("c.xml", text + std::string(1024 * 1024 - text.size(), '\n'));
    EXPECT_NO_THROW(PosConfig(name.c_str(), PosConfig::XML));
    folder_.write("c.xml", text + std::string(1024 * 1024 - text.size() + 1, '\n'));
    EXPECT_EQ(messageOf([&] { PosConfig(name.c_str(), PosConfig::XML); }), name + " is larger than 1 MiB");
}

TEST_F(PosConfigTest, MissingKeyIsNamed) {
    const PosConfig config(":/configure.xml", PosConfig::XML);
    EXPECT_EQ(messageOf<ptree_bad_path>([&] { config.get<double>("telescope.nothing"); }),
              "No such node (telescope.nothing)");
    EXPECT_EQ(messageOf<ptree_bad_path>([&] { config.getAngle("nothing.at.all"); }), "No such node (nothing.at.all)");
    EXPECT_EQ(messageOf<ptree_bad_path>([&] { config.getFilename("nothing"); }), "No such node (nothing)");
    EXPECT_EQ(messageOf<ptree_bad_path>([&] { config.get<std::string>("Telescope"); }), "No such node (Telescope)");
}

TEST_F(PosConfigTest, ValueThatIsNotANumberNamesTheTypeAndTheKey) {
    const PosConfig config = load("<c datamver='8.00'><a>x</a><b>1.5x</b><c/><d>1,5</d><e>1 2</e></c>");
    for (const std::string key : {"a", "b", "c", "d", "e"}) {
        // "d" is the compiler's name of double.
        const std::string expected = "conversion of data to type \"d\" failed (" + key + ")";
        EXPECT_EQ(messageOf<ptree_bad_data>([&] { config.get<double>(key); }), expected);
        EXPECT_EQ(messageOf<ptree_bad_data>([&] { config.getAngle(key); }), expected);
    }
}
