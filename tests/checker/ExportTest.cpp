#include "Program.h"
#include "TemporaryFolder.h"
#include "checked.h"
#include "fibreRadius.h"
#include "fieldDefinition.h"
#include "instrumentOnDisk.h"
#include "tolerances.h"
#include "xml.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>

namespace {

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;

const std::vector<std::string> kExportFormats = {"ds9", "votable", "csv", "json"};

/** The targets of an export; a row has the texts of its columns, without those that have none. */
using ExportedRow = std::map<std::string, std::string>;

/** A name with what means something to one of the formats. */
const std::string kHostileName =
    "{a} \"b\" 'c', d; # <e> & f | g\n\t\r\\ $h [i] \xE6\xBC\xA2 \xD7\xA9 \xF0\x9F\x8C\x8C ";

/** The same as an attribute. */
const std::string kHostileNameXml =
    "{a} &quot;b&quot; 'c', d; # &lt;e> &amp; f | g&#10;&#9;&#13;\\ $h [i] \xE6\xBC\xA2 "
    "\xD7\xA9 \xF0\x9F\x8C\x8C ";

class ExportTest : public testing::Test {
protected:
    ProgramResult runExport(std::vector<std::string> arguments, const std::string& redirection = "") const {
        arguments.insert(arguments.begin(), {VEKO_EXECUTABLE, "export"});
        return runCommand(arguments, {.folder = folder_.name(), .shellRedirection = redirection});
    }

    /** A document in a format. */
    std::string exported(const std::string& document, const std::string& format,
                         std::vector<std::string> arguments = {}) const {
        folder_.write("field.xml", document);
        arguments.insert(arguments.end(), {"--format", format, "-o", "output", "field.xml"});
        expectSilentSuccess(runExport(arguments));
        return folder_.read("output");
    }

    std::vector<ExportedRow> rows(const std::string& document, const std::string& format) const;

    /** Fails the test unless an export ends with status 2 and a message, and leaves no file. */
    void expectRefused(const std::string& document, const std::string& message) const {
        folder_.write("field.xml", document);
        const ProgramResult result = runExport({"--format", "csv", "-o", "output", "field.xml"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, message + "\n");
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_FALSE(folder_.contains("output"));
    }

    const TemporaryFolder folder_;
};

std::vector<ExportedRow> rowsOfJson(const std::string& text) {
    std::vector<ExportedRow> rows;
    const json all = json::parse(text);
    for (const json& target : all.at("targets")) {
        ExportedRow row;
        for (const auto& [name, value] : target.items()) {
            if (!value.is_null()) {
                row[name] = value.is_string() ? value.get<std::string>() : value.dump();
            }
        }
        rows.push_back(row);
    }
    return rows;
}

/** The cells of a text by RFC 4180. */
std::vector<std::vector<std::string>> csvCells(const std::string& text) {
    std::vector<std::vector<std::string>> lines = {{""}};
    bool isQuoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string& cell = lines.back().back();
        if (isQuoted && text.compare(i, 2, "\"\"") == 0) {
            cell += text[i++];
        } else if (text[i] == '"') {
            isQuoted = !isQuoted;
        } else if (!isQuoted && text[i] == ',') {
            lines.back().emplace_back();
        } else if (!isQuoted && text.compare(i, 2, "\r\n") == 0) {
            lines.push_back({""});
            ++i;
        } else {
            cell += text[i];
        }
    }
    lines.pop_back(); // behind the last end of a line
    return lines;
}

std::vector<ExportedRow> rowsOfCells(const std::vector<std::string>& names,
                                     const std::vector<std::vector<std::string>>& cells) {
    std::vector<ExportedRow> rows;
    for (const std::vector<std::string>& line : cells) {
        EXPECT_EQ(line.size(), names.size());
        ExportedRow row;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (!line.at(i).empty()) {
                row[names.at(i)] = line.at(i);
            }
        }
        rows.push_back(row);
    }
    return rows;
}

std::vector<ExportedRow> rowsOfCsv(const std::string& text) {
    std::vector<std::vector<std::string>> cells = csvCells(text);
    std::vector<std::string> names;
    for (const std::string& title : cells.front()) {
        names.push_back(title.substr(0, title.find(" [")));
    }
    cells.erase(cells.begin());
    return rowsOfCells(names, cells);
}

std::vector<ExportedRow> rowsOfVotable(const std::string& text) {
    const QDomDocument document = parseDocument(text);
    std::vector<std::string> names;
    for (const QDomElement& field : elements(document, "FIELD")) {
        names.push_back(attributeText(field, "name"));
    }
    std::vector<std::vector<std::string>> cells;
    for (const QDomElement& row : elements(document, "TR")) {
        cells.emplace_back();
        for (const QDomElement& cell : children(row, "TD")) {
            cells.back().push_back(cell.text().toStdString());
        }
    }
    return rowsOfCells(names, cells);
}

std::vector<ExportedRow> ExportTest::rows(const std::string& document, const std::string& format) const {
    const std::string text = exported(document, format);
    return format == "json" ? rowsOfJson(text) : format == "csv" ? rowsOfCsv(text) : rowsOfVotable(text);
}

/** Fails the test unless a number has the same bits; any other text, unless it is the same. */
void expectSameValue(const std::string& exported, const std::string& inDocument, const std::string& where) {
    char* end = nullptr;
    const double number = std::strtod(inDocument.c_str(), &end);
    if (!inDocument.empty() && *end == '\0') {
        EXPECT_EQ(std::stod(exported), number) << where;
    } else {
        EXPECT_EQ(exported, inDocument) << where;
    }
}

/** A document with all that targets may hold. */
std::string documentWithAll() {
    const std::string content =
        targetXml("C", kHostileNameXml, "150.100000", "20.200000",
                  R"(configid="7" targepoch="2016.0" targpmra="-12.25" targpmdec="1e1" targparal=".25" targrv="+5.")"
                  R"( targprio="3" targsrvy="Survey" targclass="STAR" targcat="Cat" targid="0012" targprog="P")"
                  R"( cname="%%%" own="1.50" Kind="x")",
                  R"(<photometry band="r">about <mag error="0.1">9.46</mag><mag>10</mag></photometry>)");
    return documentWithFields(
        {fieldXml(scienceTargetXml() + guideStarXml() + R"(<group name="outer"><group name="inner">)" + content +
                  "</group></group><group/>" +
                  targetXml("E", "behind an empty group", "150.3", "20.1", R"(photometry.x="own")",
                            R"(text<photometry x="inner"/>)")),
         secondFieldXml()});
}

/** Regions of an export for ds9 by their text. */
std::map<std::string, std::smatch> regionsIn(const std::string& text, const std::string& shape) {
    static const std::regex region(
        R"re((circle|point)\(([^,]+),([^,)]+)(?:,([0-9.]+)")?\) #(?: point=(\w+))? color=(\w+))re"
        R"re( text=[{"'](.*)[}"'] tag=\{field (\d+)\} tag=\{(.*)\})re");
    std::map<std::string, std::smatch> regions;
    for (std::sregex_iterator found(text.begin(), text.end(), region), end; found != end; ++found) {
        if ((*found)[1] == shape) {
            regions.emplace((*found)[7], *found);
        }
    }
    return regions;
}

} // namespace

TEST_F(ExportTest, EveryTargetHasAllThatItHasInTheConfiguredDocument) {
    const std::string document = documentWithAll();
    const QDomDocument tree = configured(document);
    const std::vector<QDomElement> targets = elements(tree, "target");
    for (const std::string format : {"votable", "csv", "json"}) {
        const std::vector<ExportedRow> exported = rows(document, format);
        ASSERT_EQ(exported.size(), targets.size());
        for (std::size_t i = 0; i < targets.size(); ++i) {
            for (const auto& [name, value] : attributes(targets.at(i))) {
                const ExportedRow& row = exported.at(i);
                const std::string column = name == "Kind" ? "Kind_" : name;
                const bool isMissing = value.empty() || (value == "%%%" && name != "cname");
                expectSameValue(row.count(column) == 1 ? row.at(column) : "", isMissing ? "" : value,
                                format + ", target " + std::to_string(i) + ", " + name);
            }
        }
    }
}

TEST_F(ExportTest, TheColumnsTellFieldGroupsKindAndWhatStandsInATarget) {
    for (const std::string format : {"votable", "csv", "json"}) {
        const std::vector<ExportedRow> exported = rows(documentWithAll(), format);
        std::map<std::string, int> kinds;
        for (const ExportedRow& row : exported) {
            ++kinds[row.at("field") + ' ' + row.at("kind") +
                    (row.count("fibre_kind") == 1 ? ' ' + row.at("fibre_kind") : "")];
        }
        EXPECT_EQ(kinds, (std::map<std::string, int>{{"1 science target science", 1},
                                                     {"1 guide star", 1},
                                                     {"1 target", 2},
                                                     {"1 fibre science", 543},
                                                     {"1 fibre sky", 56},
                                                     {"1 fibre broken", 3},
                                                     {"2 science target science", 1},
                                                     {"2 guide star", 1},
                                                     {"2 fibre science", 543},
                                                     {"2 fibre sky", 56},
                                                     {"2 fibre broken", 3}}))
            << format;
        const ExportedRow& grouped = exported.at(2);
        EXPECT_EQ(grouped.at("targname"), kHostileName) << format;
        EXPECT_EQ(grouped.at("group"), "outer/inner") << format;
        EXPECT_EQ(grouped.at("targid"), "0012") << format;
        EXPECT_EQ(grouped.at("own"), "1.50") << format;
        EXPECT_EQ(grouped.at("photometry.band"), "r") << format;
        EXPECT_EQ(grouped.at("photometry"), "about ") << format;
        EXPECT_EQ(grouped.at("photometry.mag"), "9.46") << format;
        EXPECT_EQ(grouped.at("photometry.mag.error"), "0.1") << format;
        EXPECT_EQ(grouped.at("photometry.mag2"), "10") << format;
        EXPECT_EQ(exported.at(3).at("photometry.x"), "own") << format;
        EXPECT_EQ(exported.at(3).at("photometry.x_"), "inner") << format;
        EXPECT_EQ(exported.at(3).at("text"), "text") << format;
    }
}

TEST_F(ExportTest, UnitsStandInTheFirstLineOfCsvAndInTheColumnsOfTheOthers) {
    const std::string titles = exported(kFaultless, "csv").substr(0, 400);
    EXPECT_THAT(titles, HasSubstr(",targra [deg],targdec [deg],targepoch [yr],targpmra [mas/yr],targpmdec [mas/yr],"
                                  "targparal [arcsec],targrv [km/s],"));
    const json columns = json::parse(exported(kFaultless, "json")).at("columns");
    const QDomDocument votable = parseDocument(exported(kFaultless, "votable"));
    const std::vector<QDomElement> fields = elements(votable, "FIELD");
    ASSERT_EQ(columns.size(), fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string name = columns.at(i).at("name");
        const json unit = columns.at(i).at("unit");
        EXPECT_EQ(attributeText(fields.at(i), "name"), name);
        EXPECT_EQ(attributeText(fields.at(i), "unit"), unit.is_null() ? "(absent)" : unit);
        EXPECT_THAT(titles, HasSubstr(name + (unit.is_null() ? "" : " [" + unit.get<std::string>() + ']')));
    }
}

TEST_F(ExportTest, ADocumentThatIsNotConfiguredIsExportedAsTheRunConfiguresIt) {
    const std::string document = documentWithAll();
    const std::string afterTheRun = configuredBytes(document, {"--ha", "0.5"});
    for (const std::string& format : kExportFormats) {
        EXPECT_TRUE(exported(document, format, {"--ha", "0.5"}) == exported(afterTheRun, format)) << format;
    }
}

TEST_F(ExportTest, AConfiguredDocumentThatCannotBeConfiguredAgainIsExportedAsItIs) {
    const std::string groups = readBytes(std::string(POS_SOURCE_FOLDER) + "/examples/m74_groups.xml");
    EXPECT_EQ(rows(configuredBytes(groups), "csv"), rows(groups, "csv"));
}

TEST_F(ExportTest, RegionsHaveTheFibresAtTheirPlacesWithNameKindAndHalfTheDistanceOfNeighbours) {
    const QDomDocument tree = configured(kFaultless);
    const std::string text = exported(kFaultless, "ds9");
    const auto fibres = regionsIn(text, "circle");
    std::map<std::string, QDomElement> targets;
    for (const QDomElement& target : elements(tree, "target")) {
        if (!attributeText(target, "ifu_spaxel").empty()) {
            targets.emplace(attributeText(target, "ifu_spaxel"), target);
        }
    }
    ASSERT_EQ(fibres.size(), targets.size());
    for (const auto& [spaxel, region] : fibres) {
        const QDomElement& target = targets.at(spaxel);
        EXPECT_EQ(region[2], attributeText(target, "targra"));
        EXPECT_EQ(region[3], attributeText(target, "targdec"));
        const bool isBroken = attributeText(target, "fibreid").starts_with('-');
        EXPECT_EQ(region[9], isBroken ? "broken" : spaxel.starts_with('S') ? "sky" : "science") << spaxel;
        EXPECT_EQ(region[6], isBroken ? "red" : spaxel.starts_with('S') ? "orange" : "cyan") << spaxel;
    }
    // C13 and C14 are neighbours in one column of the bundle, which is on a meridian.
    const double distance = 3600 * (number(targets.at("C13"), "targdec") - number(targets.at("C14"), "targdec"));
    constexpr double kRoundingArcsec = 0.01; // the sixth decimals of two places, and the seventh of its neighbours
    EXPECT_NEAR(std::stod(fibres.at("C14")[4]), distance / 2, kRoundingArcsec);
    EXPECT_THAT(text, HasSubstr("# Places: ICRS, at the date of the observation. Radius of a fibre: half the distance "
                                "between neighbouring fibres"));

    const auto points = regionsIn(text, "point");
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points.at("Galaxy")[5], "cross");
    EXPECT_EQ(points.at("Galaxy")[9], "science target");
    EXPECT_EQ(points.at("Star")[5], "diamond");
    EXPECT_EQ(points.at("Star")[9], "guide star");
    EXPECT_EQ(points.at("Star")[2], "190.120000");
}

TEST_F(ExportTest, RegionsStandWhereMovingTargetsAreAtTheDateOfTheObservation) {
    // In 27.25 years the target moves by 272.5 arcsec to the north; the other columns keep the catalogue's place.
    const std::string moving = replaced(kFaultless, R"(targname="Galaxy")",
                                        R"(targname="Galaxy" targepoch="2000.0" targpmra="0" targpmdec="10000")");
    const std::string text = exported(moving, "ds9");
    constexpr double kMotionDeg = 1e-4; // the date of a document is known to some days
    EXPECT_NEAR(std::stod(regionsIn(text, "point").at("Galaxy")[3]), -11.623054 + 272.5 / 3600, kMotionDeg);
    EXPECT_EQ(regionsIn(text, "circle").at("C14")[3], regionsIn(text, "point").at("Galaxy")[3]);
    EXPECT_EQ(rows(moving, "csv").at(0).at("targdec"), "-11.623054");
}

TEST_F(ExportTest, NamesInRegionsAreWrittenAsFarAsRegionsCanSayThem) {
    for (const auto& [name, written] :
         std::map<std::string, std::string>{{"{a b", "{{a b}"},
                                            {"a} b", "\"a} b\""},
                                            {"a} &quot;b&quot;", "'a} \"b\"'"},
                                            {"a} &quot;b&quot; c's", "{a) \"b\" c's}"},
                                            {"a; # b&#10;c&#9;d", "{a; # b c d}"},
                                            {"\xE6\xBC\xA2\xF0\x9F\x8C\x8C", "{\xE6\xBC\xA2\xF0\x9F\x8C\x8C}"}}) {
        EXPECT_THAT(exported(replaced(kFaultless, "Star", name), "ds9"),
                    HasSubstr(" text=" + written + " tag={field 1}"));
    }
}

TEST_F(ExportTest, KindsTellWhyAFibreSeesNothing) {
    instrumentWithUnusableFibres().write(folder_);
    const std::string text = exported(kFaultless, "ds9", {"-c", "configure.xml"});
    const auto fibres = regionsIn(text, "circle");
    EXPECT_EQ(fibres.count("C01"), 0U);
    EXPECT_EQ(fibres.at("1B")[9], "disabled");
    EXPECT_EQ(fibres.at("C07")[9], "broken");
}

TEST_F(ExportTest, NumbersThatJsonDoesNotKnowAreTexts) {
    const std::string document = replaced(kFaultless, R"(targname="Star")", R"(targname="Star" targrv="-inf")");
    for (const std::string format : {"votable", "csv", "json"}) {
        EXPECT_EQ(rows(document, format).at(1).at("targrv"), "-Inf") << format;
    }
}

TEST_F(ExportTest, WritesToTheStandardOutputAndReadsFromTheStandardInput) {
    folder_.write("field.xml", kFaultless);
    const ProgramResult result = runExport({"--format", "csv", "-"}, "<field.xml");
    expectSilentSuccess({.status = result.status, .out = "", .err = result.err});
    EXPECT_EQ(result.out, exported(kFaultless, "csv"));
}

TEST_F(ExportTest, WhatCannotBeExportedIsToldAndLeavesNoFile) {
    expectRefused(
        replaced(kFaultless, "targuse=\"G\"", "targuse=\"S\""),
        "field.xml:8:1: The field has no guide star (targuse=\"G\"); the run says: No science target in field");
    const std::string noNumber =
        replaced(configuredBytes(kFaultless), "targname=\"Star\"", "targname=\"Star\" targrv=\"fast\"");
    expectRefused(noNumber, "field.xml: Target Star has an invalid targrv 'fast'");
    std::string many;
    for (int i = 0; i < 257; ++i) {
        many += "<band a" + std::to_string(i) + "=\"1\"/>";
    }
    expectRefused(replaced(kFaultless, "-11.500000\"/>", "-11.500000\">" + many + "</target>"),
                  "field.xml: The targets have more than 256 different attributes of their own");
}

TEST_F(ExportTest, NeverReplacesTheDocumentsThatItReads) {
    folder_.write("field.xml", kFaultless);
    const ProgramResult result = runExport({"--format", "csv", "-o", "./field.xml", "field.xml"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "The output file ./field.xml is the field definition in use\n");
    EXPECT_EQ(folder_.read("field.xml"), kFaultless);
}

TEST(FibreRadius, IsHalfTheMiddleDistanceOfNeighboursOnTheSky) {
    // On the equator, where right ascension is the distance: steps of 2, 2 and 3 microradians, the last place twice.
    const auto at = [](double x, double ra) { return pos::FibrePlace{{x, 0.0}, {ra * 1e-6, 0.0}}; };
    const auto radius =
        pos::fibreRadius({at(3.3, 7), at(0, 0), at(1, 2), at(2.1, 4), at(3.3, 7), at(kNaN, 1), at(9, kNaN)});
    ASSERT_TRUE(radius);
    EXPECT_NEAR(*radius, 1e-6, 1e-18);
}

TEST(FibreRadius, IsNotKnownWithoutTwoPlaces) {
    const pos::FibrePlace place{{1.0, 2.0}, {0.3, 0.4}};
    EXPECT_EQ(pos::fibreRadius({}), std::nullopt);
    EXPECT_EQ(pos::fibreRadius({place, place}), std::nullopt);
}
