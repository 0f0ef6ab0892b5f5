#include "Program.h"
#include "TemporaryFolder.h"
#include "fieldDefinition.h"
#include "xml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <tuple>

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

using Json = nlohmann::ordered_json;
using Command = std::vector<std::string>;

/** Two fields, configured once. */
const std::string& configuredText() {
    static const std::string text = configuredBytes(documentWithFields({ordinaryFieldXml(), secondFieldXml()}));
    return text;
}

/** The folder of a test, with a document "a.xml" beside which others are put. */
class CompareCommand : public testing::Test {
protected:
    CompareCommand() {
        folder_.write("a.xml", configuredText());
    }

    ProgramResult compare(Command arguments, ProgramOptions options = {}) const {
        arguments.insert(arguments.begin(), {VEKO_EXECUTABLE, "compare"});
        options.folder = folder_.name();
        return runCommand(arguments, options);
    }
    /** Compares the document with another text. */
    ProgramResult comparedWith(const std::string& other, Command arguments = {}) const {
        folder_.write("b.xml", other);
        arguments.insert(arguments.end(), {"a.xml", "b.xml"});
        return compare(arguments);
    }
    /** The sentences of a comparison, which has to succeed. */
    std::string sentences(const std::string& other, int status, const Command& arguments = {}) const {
        const ProgramResult result = comparedWith(other, arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.err, "");
        return result.out.substr(0, result.out.find("\n\n")) + (status == 0 && result.out == "the same\n" ? "" : "\n");
    }

    TemporaryFolder folder_;
};

/** The document, changed. */
std::string edited(const std::function<void(const QDomDocument&)>& edit) {
    const QDomDocument document = parseDocument(configuredText());
    edit(document);
    return document.toString().toStdString();
}

/** The first target with a value. */
QDomElement targetWith(const QDomDocument& document, const std::string& attribute, const std::string& value) {
    for (const QDomElement& target : elements(document, "target")) {
        if (attributeText(target, attribute) == value) {
            return target;
        }
    }
    ADD_FAILURE() << "no target has " << attribute << ' ' << value;
    return {};
}

/** Moves a target to the right, mm. */
void moveToTheRight(QDomElement target, double step) {
    target.setAttribute("targx", number(target, "targx") + step);
}

void remove(const QDomElement& element) {
    element.parentNode().removeChild(element);
}

/** What becomes of a place. */
using Motion = std::function<std::pair<double, double>(double x, double y)>;

/** The document with the fibres of the first field elsewhere. */
std::string moved(const std::string& x, const std::string& y, const Motion& motion) {
    return edited([&](const QDomDocument& document) {
        for (QDomElement target : elements(elements(document, "field").at(0), "target")) {
            if (!target.attribute("fibreid").isEmpty()) {
                const auto place = motion(number(target, x), number(target, y));
                target.setAttribute(QString::fromStdString(x), QString::number(place.first, 'f', 12));
                target.setAttribute(QString::fromStdString(y), QString::number(place.second, 'f', 12));
            }
        }
    });
}

std::string movedOnPlate(const Motion& motion) {
    return moved("targx", "targy", motion);
}

} // namespace

TEST_F(CompareCommand, SaysThatADocumentIsTheSame) {
    const ProgramResult result = comparedWith(configuredText());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "the same\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(CompareCommand, SaysWhatMovedAField) {
    const auto shifted = [](double x, double y) { return std::pair(x + 0.003, y - 0.004); };
    const auto turned = [](double x, double y) {
        const double angle = 12.4 / 3600 / 180 * 3.141592653589793;
        return std::pair(x - angle * (y + 20), y + angle * x);
    };
    const auto scaled = [](double x, double y) { return std::pair(x * 1.00005, -20 + (y + 20) * 1.00005); };
    const auto shiftedALittle = [](double x, double y) { return std::pair(x + 0.000008, y); };
    const auto turnedALittle = [](double x, double y) {
        const double angle = 0.13 / 3600 / 180 * 3.141592653589793;
        return std::pair(x - angle * (y + 20), y + angle * x);
    };
    const auto apart = [](double x, double y) { return std::pair(x + 0.001 * std::cos(1e5 * x), y); };
    for (const auto& [motion, sentence] :
         {std::pair<Motion, std::string>(shifted, "field 1 is shifted by 5.00 µm; what remains is below 0.01 µm\n"),
          {turned, "field 1 is turned by 12.4 arcsec about its centre; what remains is below 0.01 µm\n"},
          {[](double x, double y) { return std::pair(-20 - y, x - 20); },
           "field 1 is turned by 90.0 degrees about its centre; what remains is below 0.01 µm\n"},
          {scaled, "field 1 is scaled by 50.0 ppm; what remains is below 0.01 µm\n"},
          {[&](double x, double y) { return std::apply(shifted, turned(x, y)); },
           "field 1 is shifted by 5.00 µm and turned by 12.4 arcsec about its centre; what remains is below 0.01 "
           "µm\n"},
          {[&](double x, double y) { return std::apply(shiftedALittle, turnedALittle(x, y)); },
           "field 1 is shifted by 0.008 µm and turned by 0.130 arcsec about its centre; what remains is below 0.01 "
           "µm\n"}}) {
        EXPECT_EQ(sentences(movedOnPlate(motion), 1), sentence);
    }
    EXPECT_THAT(sentences(movedOnPlate([&](double x, double y) { return std::apply(apart, shifted(x, y)); }), 1),
                MatchesRegex("field 1 is shifted by [45].* µm; what remains is 0.7.. µm \\(root mean square\\)\n"));
    EXPECT_THAT(sentences(movedOnPlate(apart), 1),
                StartsWith("field 1 has 603 fibres elsewhere, moved in no common way, by at most 1.00 µm (fibre "));
}

TEST_F(CompareCommand, SaysWhatMovedAFieldOnTheSky) {
    // The ordinary field is at declination 20 degrees, where 1 arcsec to the east is more in right ascension.
    const auto east = [](double ra, double dec) { return std::pair(ra + 1 / 3600.0 / std::cos(dec / 57.29578), dec); };
    EXPECT_THAT(sentences(moved("targra", "targdec", east), 1),
                StartsWith("on the sky field 1 is shifted by 1.00 arcsec towards position angle 90.0; what remains is "
                           "below 0.01 arcsec\n"));
    const auto north = [](double ra, double dec) { return std::pair(ra, dec + 1 / 3600.0); };
    EXPECT_THAT(sentences(moved("targra", "targdec", north), 1),
                StartsWith("on the sky field 1 is shifted by 1.00 arcsec towards position angle 0.000; "));
}

TEST_F(CompareCommand, SaysWhereFibresHaveNoPlace) {
    const auto without = [&](const std::vector<QString>& names) {
        return comparedWith(edited([&](const QDomDocument& document) {
                   for (QDomElement target : elements(elements(document, "field").at(0), "target")) {
                       for (const QString& name : names) {
                           target.removeAttribute(name);
                       }
                   }
               }))
            .out;
    };
    const std::string both = "\nField 1: 604 targets in both, 603 of them on a fibre; ";
    EXPECT_THAT(without({"targra"}),
                HasSubstr(both + "no fibre has moved on the plate; none has a place on the sky in both documents\n"));
    EXPECT_THAT(without({"targx"}),
                HasSubstr(both + "no fibre has moved on the sky; none has a place on the plate in both documents\n"));
    EXPECT_THAT(without({"targra", "targx"}), HasSubstr(both + "none has a place in both documents\n"));
}

TEST_F(CompareCommand, SaysThatFibresAllOverTheSkyMovedInNoCommonWay) {
    const auto opposite = [](double ra, double dec) {
        return ra > 150.1 ? std::pair(ra + 180, -dec) : std::pair(ra, dec);
    };
    EXPECT_THAT(sentences(moved("targra", "targdec", opposite), 1, {"--picture", "moved.svg"}),
                MatchesRegex("on the sky field 1 has [0-9]+ fibres elsewhere, moved in no common way, by at most 180 "
                             "degrees \\(fibre [0-9]+\\)\n"));
    EXPECT_EQ(elements(parseDocument(folder_.read("moved.svg")), "text").at(3).text(),
              "The fibres are all over the sky.");
}

TEST_F(CompareCommand, SaysWhatElseDiffers) {
    for (const auto& [edit, sentence] : std::vector<std::pair<std::function<void(const QDomDocument&)>, std::string>>{
             {[](auto& document) { moveToTheRight(targetWith(document, "fibreid", "17"), 0.01); },
              "field 1 has 1 fibre elsewhere, by 10.0 µm (fibre 17)\n"},
             {[](auto& document) { moveToTheRight(targetWith(document, "targname", "Star 2"), 0.004); },
              "field 2 has 1 target without a fibre elsewhere on the plate, by 4.00 µm (Star 2)\n"
              "field 2 differs in targx\n"},
             {[](auto& document) { targetWith(document, "targname", "Star").setAttribute("targra", "150.10010000"); },
              "field 1 has 1 target without a fibre elsewhere on the sky, by 0.338 arcsec (Star)\n"
              "field 1 differs in targra\n"},
             {[](auto& document) {
                  moveToTheRight(targetWith(document, "fibreid", "17"), 0.01);
                  moveToTheRight(targetWith(document, "fibreid", "18"), 0.02);
                  targetWith(document, "fibreid", "19").setAttribute("targprio", 3);
                  onlyElement(document, "conditions").setAttribute("temperature", "284.0");
              },
              "field 1 has 2 fibres elsewhere, moved in no common way, by at most 20.0 µm (fibre 18)\n"
              "field 1 differs in targprio\nthe observation differs in temperature\n"},
             {[](auto& document) {
                  onlyElement(document, "conditions").setAttribute("temperature", "284.0");
                  onlyElement(document, "conditions").removeAttribute("ha");
              },
              "only the observation differs, in ha and temperature\n"},
             {[](auto& document) { remove(targetWith(document, "targname", "Star")); },
              "field 1 has 1 target in the first document only\n"},
             {[](auto& document) { remove(elements(document, "field").at(1)); },
              "the first document has 2 fields, the second 1 field\n"},
             {[](auto& document) { remove(onlyElement(document, "fields")); }, "the documents differ in fields\n"},
             {[](auto& document) { moveToTheRight(targetWith(document, "fibreid", "17"), 1e-6); },
              "the same within 0.01 µm, but not within the tolerances\n"}}) {
        EXPECT_EQ(sentences(edited(edit), 1), sentence);
    }
}

TEST_F(CompareCommand, TakesPlacesWithinTheTolerancesForTheSame) {
    const std::string other = edited([](const QDomDocument& document) {
        moveToTheRight(targetWith(document, "fibreid", "17"), 0.0032);
        targetWith(document, "targname", "Star").setAttribute("targra", "150.10000100");
    });
    const Command arguments = {"--plate-tolerance", "4", "--sky-tolerance", "0.01"};
    EXPECT_EQ(sentences(other, 0, arguments), "the same within 3.2 µm and 0.01 arcsec\n");
    EXPECT_EQ(sentences(other, 1, {"--plate-tolerance", "3", "--sky-tolerance", "0.01"}),
              "field 1 has 1 fibre elsewhere, by 3.20 µm (fibre 17)\n");
    EXPECT_EQ(sentences(other, 1, {"--plate-tolerance", "4", "--sky-tolerance", "0.003"}),
              "field 1 differs in targra\n");
    EXPECT_EQ(sentences(other, 0, {"--ignore", "targx", "--ignore", "targra"}), "the same\n");
    const std::string farther = movedOnPlate([](double x, double y) { return std::pair(x + 0.15, y); });
    EXPECT_EQ(sentences(farther, 0, {"--plate-tolerance", "200"}), "the same within 150 µm\n");
}

TEST_F(CompareCommand, TellsWhichDocumentIsNotConfigured) {
    const std::string fields = documentWithFields({ordinaryFieldXml(), secondFieldXml()});
    EXPECT_THAT(sentences(fields, 1),
                StartsWith("only the first document is configured: configure the other one too, to compare what the "
                           "fibres see\nfield 1 has 602 targets in the first document only\n"));
    EXPECT_THAT(comparedWith(fields).out, HasSubstr("\nField 1: 2 targets in both, 0 of them on a fibre\n"
                                                    "  only in the first: fibre 1, fibre 2, fibre 3, fibre 4, fibre 5, "
                                                    "and 597 more\n"));
}

TEST_F(CompareCommand, TellsEachValueWithItsUnitAndManyOfAKindOnce) {
    const std::string text = comparedWith(edited([](const QDomDocument& document) {
                                 onlyElement(document, "observation").setAttribute("pa", "359.5");
                                 elements(document, "field").at(1).setAttribute("note", "a note");
                                 for (QDomElement target : elements(elements(document, "field").at(0), "target")) {
                                     target.setAttribute("ifu_pa", "1");
                                 }
                             })).out;
    EXPECT_THAT(text, HasSubstr("\nField 1: 604 targets in both, 603 of them on a fibre; no fibre has moved\n"));
    EXPECT_THAT(text, HasSubstr("\n\nOther values of the first document, and of the second\n"
                                "  observation/pa: \"0.0\", \"359.5\" degrees (-0.5)\n"
                                "  field 1/fibre 304/ifu_pa: \"0\", \"1\" degrees (+1)\n"
                                "    the same in 603 more places\n"
                                "  field 2/note: missing, \"a note\"\n"));
}

TEST_F(CompareCommand, LetsNoTextOfADocumentMakeALineOfItsOwn) {
    const auto named = [](const QString& remark, double step) {
        return edited([&](const QDomDocument& document) {
            QDomElement star = targetWith(document, "targname", "Star");
            star.setAttribute("targname", "x\nthe same");
            star.setAttribute("remark", remark);
            moveToTheRight(star, step);
        });
    };
    folder_.write("a.xml", named("1", 0));
    const std::string text = comparedWith(named("y\nthe same", 0.004)).out;
    EXPECT_THAT(text, HasSubstr(" by 4.00 µm (x\ufffdthe same)\n"));
    EXPECT_THAT(text, HasSubstr("\n  field 1/x\ufffdthe same/remark: \"1\", \"y\ufffdthe same\"\n"));
}

TEST_F(CompareCommand, TellsEverythingInJson) {
    const std::string other = edited([](const QDomDocument& document) {
        moveToTheRight(targetWith(document, "fibreid", "17"), 0.01);
        onlyElement(document, "conditions").setAttribute("temperature", "284.0");
        remove(targetWith(document, "targname", "Star"));
    });
    const ProgramResult result = comparedWith(other, {"--format", "json"});
    EXPECT_EQ(result.status, 1);
    const Json json = Json::parse(result.out);
    const auto namesOf = [](const Json& object) {
        Command names;
        for (const auto& [name, value] : object.items()) {
            names.push_back(name);
        }
        return names;
    };
    EXPECT_EQ(namesOf(json), (Command{"version", "same", "fields", "differences"}));
    EXPECT_EQ(json["version"], 1);
    EXPECT_EQ(json["same"], false);
    EXPECT_EQ(json["differences"], Json::parse(R"([{"place": "observation/configure/conditions/temperature",
                                                    "first": "283", "second": "284.0"}])"));
    ASSERT_EQ(json["fields"].size(), 2U);
    const Json& field = json["fields"][0];
    EXPECT_EQ(namesOf(field),
              (Command{"field", "targets", "plate", "sky", "fit", "skyFit", "onlyInFirst", "onlyInSecond"}));
    EXPECT_EQ(field["field"], 1);
    EXPECT_EQ(field["targets"], 603);
    EXPECT_EQ(namesOf(field["plate"]), (Command{"maxUm", "rmsUm", "worstFibre"}));
    EXPECT_NEAR(field["plate"]["maxUm"], 10, 1e-9);
    EXPECT_NEAR(field["plate"]["rmsUm"], 10 / std::sqrt(603), 1e-9);
    EXPECT_EQ(field["plate"]["worstFibre"], 17);
    EXPECT_EQ(namesOf(field["sky"]), (Command{"maxArcsec", "rmsArcsec", "worstFibre"}));
    EXPECT_EQ(field["sky"]["maxArcsec"], 0);
    EXPECT_EQ(field["sky"]["worstFibre"], nullptr);
    EXPECT_EQ(namesOf(field["fit"]), (Command{"shiftUm", "rotationArcsec", "scalePpm", "residualRmsUm"}));
    EXPECT_NEAR(field["fit"]["shiftUm"][0], 10.0 / 603, 1e-9);
    EXPECT_NEAR(field["fit"]["shiftUm"][1], 0, 1e-9);
    EXPECT_EQ(namesOf(field["skyFit"]), (Command{"shiftArcsec", "rotationArcsec", "scalePpm", "residualRmsArcsec"}));
    EXPECT_EQ(field["onlyInFirst"], Json::array({"Star"}));
    EXPECT_EQ(field["onlyInSecond"], Json::array());
    const Json none = Json::parse(comparedWith(documentWithFields({ordinaryFieldXml()}), {"--format", "json"}).out);
    for (const char* name : {"plate", "sky", "fit", "skyFit"}) {
        EXPECT_EQ(none["fields"][0][name], nullptr);
    }
}

TEST_F(CompareCommand, DrawsAnArrowForEachFibre) {
    const std::string other = movedOnPlate([](double x, double y) { return std::pair(x + 0.003, y); });
    EXPECT_EQ(comparedWith(other, {"--picture", "moved.svg"}).status, 1);
    const QDomDocument picture = parseDocument(folder_.read("moved.svg"));
    // Of both fields, each on the plate and on the sky.
    EXPECT_EQ(elements(picture, "circle").size(), 4 * 603U);
    const std::vector<QDomElement> lines = elements(picture, "line");
    ASSERT_EQ(lines.size(), 603U + 1);
    for (const QDomElement& line : lines) {
        EXPECT_GT(number(line, "x2"), number(line, "x1"));
        EXPECT_EQ(number(line, "y2"), number(line, "y1"));
    }
    EXPECT_EQ(elements(picture, "text").at(1).text(), "2 µm");
}

TEST_F(CompareCommand, TellsTheScaleOfLongAndShortArrowsWithoutExponents) {
    for (const auto& [step, scale] : {std::pair(2.0000001, "2000 µm"), {0.00000201, "0.002 µm"}}) {
        comparedWith(movedOnPlate([step = step](double x, double y) { return std::pair(x + step, y); }),
                     {"--picture", "moved.svg"});
        EXPECT_EQ(elements(parseDocument(folder_.read("moved.svg")), "text").at(1).text(), scale);
    }
}

TEST_F(CompareCommand, WritesNoPictureOverADocumentNorWhereItCannot) {
    for (const auto& [file, message] :
         {std::pair("./a.xml", "The output file ./a.xml is the field definition in use\n"),
          {"none/a.svg", "File open error: Unable to open output file\n"}}) {
        const ProgramResult result = comparedWith(configuredText(), {"--picture", file});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, message);
    }
    EXPECT_EQ(folder_.read("a.xml"), configuredText());
}

TEST_F(CompareCommand, NamesADocumentThatCannotBeRead) {
    const ProgramResult broken = comparedWith("<field_definition>\n <observation></field>\n");
    EXPECT_EQ(broken.status, 2);
    EXPECT_EQ(broken.out, "");
    EXPECT_EQ(broken.err, "b.xml:2:17: error: b.xml is not valid XML: </observation> is missing [VK101]\n"
                          "    2 |  <observation></field>\n"
                          "      |                 ^\n");
    const ProgramResult missing = compare({"none.xml", "a.xml"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "none.xml could not be opened\n");
}

TEST_F(CompareCommand, ReadsTheStandardInput) {
    ProgramOptions options;
    options.shellRedirection = "< a.xml";
    const ProgramResult result = compare({"a.xml", "-"}, options);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "the same\n");
    EXPECT_EQ(result.err, "");
    const ProgramResult twice = compare({"-", "-"}, options);
    EXPECT_EQ(twice.status, 2);
    EXPECT_EQ(twice.out, "");
    EXPECT_EQ(twice.err, "Only one of the documents can be the standard input\n");
}
