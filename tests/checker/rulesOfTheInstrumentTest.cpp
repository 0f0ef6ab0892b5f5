#include "AppliedFixes.h"
#include "ProcessWideState.h"
#include "checked.h"
#include "instrumentOnDisk.h"
#include "ownConfiguration.h"

#include <gtest/gtest.h>

using namespace pos;

namespace {

using Told = std::vector<std::string>;

class RulesOfTheInstrument : public ProcessWideState {
protected:
    /** The problems of all documents of an instrument, each with its severity; the folder's name is "FOLDER". */
    Told problemsIn(const InstrumentOnDisk& instrument, double fieldRadius = 0.0) {
        const CheckedInstrument checked = checkedAnew(instrument, folder_, fieldRadius);
        Told told;
        for (const CheckedFile& file : checked.files) {
            const Told problems = problemsOf(file.result);
            for (std::size_t i = 0; i < problems.size(); ++i) {
                std::string line = severityWord(file.result.problems.at(i).severity) + (' ' + problems.at(i));
                while (line.find(folder_.name()) != std::string::npos) {
                    line.replace(line.find(folder_.name()), folder_.name().size(), "FOLDER");
                }
                told.push_back(line);
            }
        }
        return told;
    }

    /** What is told once a text in one of the documents is replaced. */
    Told toldWith(const std::string& text, const std::string& replacement) {
        InstrumentOnDisk instrument;
        instrument.replace(text, replacement);
        return problemsIn(instrument);
    }

    /** The fix of the one problem that there is once a text is replaced. */
    std::optional<QByteArray> fixWith(const std::string& text, const std::string& replacement) {
        InstrumentOnDisk instrument;
        instrument.replace(text, replacement);
        for (const CheckedFile& file : checkedAnew(instrument, folder_).files) {
            if (!file.result.problems.empty()) {
                return file.result.problems.front().fix;
            }
        }
        return std::nullopt;
    }

    const TemporaryFolder folder_;
};

} // namespace

TEST_F(RulesOfTheInstrument, TheShippedDocumentsAreRightAndTheirFilesAreNamedInTheOrderOfReading) {
    InstrumentOnDisk instrument;
    instrument.replace(">:/PLATE_A", ">PLATE_A");
    instrument.plateA = instrument.builtIn("PLATE_A.xml");
    instrument.replace(">:/PLATE_B.xml", '>' + folder_.write("PLATE_B.xml", instrument.builtIn("PLATE_B.xml")));
    const CheckedInstrument checked = checkedAnew(instrument, folder_);
    std::vector<std::string> names;
    for (const CheckedFile& file : checked.files) {
        names.push_back(file.name);
        EXPECT_EQ(problemsOf(file.result), Told()) << file.name;
    }
    EXPECT_EQ(names, (Told{folder_.path("configure.xml"), folder_.path("focal_plane_map.xml"), folder_.path("VEKO.xml"),
                           folder_.path("PLATE_A.xml"), folder_.path("PLATE_B.xml")}));
    EXPECT_TRUE(checked.isSound);
}

TEST_F(RulesOfTheInstrument, WhatMakesEachRunFailIsAnErrorWithTheMessageOfTheRun) {
    const struct {
        std::string text, replacement;
        Told told;
    } rows[] = {
        {"<configure datamver=\"8.00\"",
         "<configure",
         {"error VK602 3:1-3:1 No such node (<xmlattr>.datamver): the configuration has none"}},
        {"<focal_plane_map datamver=\"8.00\"",
         "<focal_plane_map datamver=\"8\"",
         {"error VK602 4:28-4:28 Data model version mismatch: the document has 8, the configuration 8.00"}},
        {"orientation=\"0\" datamver=\"8.00\"",
         "orientation=\"0\"",
         {"error VK602 3:1-3:1 Data model version mismatch: the document element has no datamver, the configuration "
          "8.00"}},
        {">3.3.5<",
         "> 3.3.4<",
         {"error VK603 5:23-5:27 config file version mismatch: the configuration is for ' 3.3.4', and the program is "
          "3.3.5"}},
        {"<plate_a>-25.0</plate_a>",
         "",
         {"error VK604 26:5-26:5 No such node (telescope.optimum_rotator_angle.plate_a): optimum_rotator_angle has no "
          "plate_a"}},
        {" c3=\"3.0191\"",
         "",
         {"error VK604 16:3-16:3 Bad coefficient in focal plane map: distortion_coefficients has no c3"}},
        {" centre_y=\"0\"",
         "",
         {"error VK604 3:1-3:1 plate definition has a bad centre y: plate_definition has no centre_y"}},
        {" pos_y=\"-17.501\"", "", {"error VK604 4:3-4:3 fibre has no pos_y attribute"}},
        {"2332.0",
         "",
         {"error VK605 15:6-15:11 conversion of data to type \"d\" failed (telescope.height): '' is not a number"}},
        {">28.760583<",
         "><!-- not <b>28.76 deg</b> --><!---->28.76 deg<",
         {"error VK605 13:51-13:59 conversion of data to type \"d\" failed (telescope.latitude): '28.76 deg' is not a "
          "number"}},
        {"11724.24", "long", {"error VK605 4:48-4:51 Bad focal length in focal plane map: 'long' is not a number"}},
        {"<VEKO x0=\"0.0\"",
         "<VEKO x0=\"zero\"",
         {"error VK605 10:15-10:18 Bad optical axis in focal plane map: 'zero' is not a number"}},
        {"orientation=\"0\"",
         "orientation=\"0\xc2\xb0\"",
         {"error VK605 3:58-3:59 plate definition has a bad orientation: '0\xc2\xb0' is not a number"}},
        {"id=\"603\"", "id=\"-603\"", {"error VK605 606:14-606:17 fibre element has a bad identifier: '-603'"}},
        {">VEKO.xml<", ">bundle.xml<", {"error VK606 42:20-42:29 FOLDER/bundle.xml could not be opened"}},
        {">VEKO.xml<", "><", {"error VK606 42:4-42:18 FOLDER could not be opened"}},
        {"</plate_definition>",
         "",
         {"error VK601 608:1-608:1 FOLDER/VEKO.xml is not valid XML: </plate_definition> is missing"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(toldWith(row.text, row.replacement), row.told) << row.text << " -> " << row.replacement;
    }
}

TEST_F(RulesOfTheInstrument, EachValueOfAMissingElementIsMissing) {
    EXPECT_EQ(
        toldWith("distortion_coefficients", "distortion"),
        (Told{"error VK604 4:1-4:1 Bad coefficient in focal plane map: focal_plane_map has no "
              "distortion_coefficients",
              "warning VK607 16:4-16:13 distortion is not known in focal_plane_map, and the run passes over it"}));
    InstrumentOnDisk instrument;
    instrument.map = "<map datamver='8.00'/>";
    EXPECT_EQ(problemsIn(instrument),
              (Told{"error VK604 1:1-1:1 Bad focal length in focal plane map: the document has no focal_plane_map",
                    "error VK604 1:1-1:1 Bad coefficient in focal plane map: the document has no focal_plane_map",
                    "error VK604 1:1-1:1 Bad plate rotation in focal plane map: the document has no focal_plane_map",
                    "error VK604 1:1-1:1 Bad optical axis in focal plane map: the document has no focal_plane_map",
                    "note VK610 1:2-1:4 map is not known in the document, and the run passes over it"}));
}

TEST_F(RulesOfTheInstrument, TheNameOfADocumentElementIsNotLookedAt) {
    InstrumentOnDisk instrument;
    instrument.replace("<plate_definition", "<Plate_definition");
    instrument.replace("</plate_definition", "</Plate_definition");
    instrument.configuration = replaced(instrument.configuration, "<configure ", "<instrument ");
    instrument.configuration = replaced(instrument.configuration, "</configure>", "</instrument>");
    EXPECT_EQ(problemsIn(instrument),
              (Told{"note VK610 3:2-3:11 The document element is instrument instead of configure; the run does not "
                    "look at its name",
                    "warning VK607 3:2-3:17 The document element is Plate_definition instead of plate_definition; the "
                    "run does not look at its name"}));
}

TEST_F(RulesOfTheInstrument, AConfigurationThatIsNotWellFormedIsAnErrorWhereTheRunCannotReadIt) {
    EXPECT_EQ(
        toldWith("</configure>", ""),
        Told{"error VK601 104:1-104:1 FOLDER/configure.xml is not valid XML: </configure> is missing; the run says: "
             "<unspecified file>(104): unexpected end of data"});
    EXPECT_EQ(toldWith("</veko_dither>", "</mifu_dither>"),
              Told{"warning VK601 102:5-102:5 FOLDER/configure.xml is not valid XML: </veko_dither> is missing"});
}

TEST_F(RulesOfTheInstrument, WhatCannotBeReadIsToldWhereReadingStopsAndShownDecoded) {
    InstrumentOnDisk instrument;
    instrument.bundle = replaced(instrument.bundle, "\"UTF-8\"", "\"UTF-88\"");
    instrument.map = "<?xml version='1.0' encoding='EUC-JP'?>\n<!-- \xa4\xa2 \xff -->";
    EXPECT_EQ(problemsIn(instrument),
              (Told{"error VK601 2:8-2:8 FOLDER/focal_plane_map.xml is not valid XML: these bytes are not EUC-JP",
                    "error VK601 1:31-1:31 FOLDER/VEKO.xml declares an encoding that is not known"}));
    const CheckResult map = checkedAnew(instrument, folder_).files.at(1).result;
    EXPECT_TRUE(map.text.utf8().endsWith("<!-- \u3042 \uFFFD -->")) << map.text.utf8().toStdString();
}

TEST_F(RulesOfTheInstrument, WhatTheRunPassesOverIsAWarningOrANote) {
    const struct {
        std::string text, replacement;
        Told told;
    } rows[] = {
        {"<configure datamver=\"8.00\"",
         "<configure datamver=\"\"",
         {"warning VK602 3:1-3:1 datamver is empty, and the run compares no document with it"}},
        {"<pattern_3>\n      <x>0.00 0.49 0.98</x>", "<pattern_3>", {"warning VK604 49:5-49:5 pattern_3 has no x"}},
        {"c7=\"0.0\"", "c7=\"none\"", {"warning VK605 16:73-16:76 c7 'none' is not a number"}},
        {">:/PLATE_B.xml<", ">plate_b.xml<", {"warning VK606 40:23-40:33 FOLDER/plate_b.xml could not be opened"}},
        {"type=\"Spectrograph\" status=\"enabled\"",
         "kind=\"Spectrograph\" Status=\"enabled\"",
         {"note VK610 4:64-4:67 kind is not known in fibre, and the run passes over it",
          "warning VK607 4:84-4:89 Status is not known in fibre, and the run passes over it"}},
        {"</telescope>",
         "<default_epoch>2000.0</default_epoch><seeing>0.8</seeing></telescope>",
         {"warning VK608 36:4-36:16 default_epoch is not read in telescope",
          "note VK610 36:41-36:46 seeing is not known in telescope, and the run passes over it"}},
        {"</telescope>",
         "<height>0</height></telescope>",
         {"warning VK609 36:4-36:9 The run reads another height, and passes over this one"}},
        {"<fibre id=\"1\"",
         "<fiber id=\"1\"",
         {"warning VK607 4:4-4:8 fiber is not known in plate_definition, and the run passes over it"}},
        {"<configure_version>", "<o:note xmlns:o='o'/><configure_version>", {}},
        {"2332.0",
         "2332000.0",
         {"warning VK611 15:13-15:21 telescope.height is 2332000.0, and plausible values are -430 to 8900"}},
        {"-17.881639",
         "-197.881639",
         {"warning VK611 11:21-11:31 telescope.east_longitude is -197.881639, and its values are -180 to 360"}},
        {"r0=\"0.0\"/>", "r0=\"nan\"/>", {"warning VK611 8:36-8:38 r0 is nan, which is no finite number"}},
        {">-135.0<",
         ">135.0<",
         {"warning VK612 22:24-22:28 The rotator's lower limit, 135.0 degrees, is not below its upper one, and the run "
          "refuses every field"}},
        {"202.841",
         "20.2841",
         {"warning VK613 16:32-16:38 c1 is 20.2841 mm a degree, and a focal length of 11724.2 mm makes 204.627"}},
        {"3.0191",
         "-70",
         {"warning VK613 16:45-16:47 The distortion turns back 0.99 degrees from the axis, where two places on the sky "
          "fall onto one of the plate"}},
        {"id=\"602\"",
         "id=\"601\"",
         {"warning VK614 605:14-605:16 id 601 is that of another fibre too: the run takes place and status of the "
          "first, "
          "and the name of the last"}},
        {"fibre_name=\"1B\"",
         "fibre_name=\"C01\"",
         {"warning VK615 5:59-5:61 fibre_name 'C01' is that of fibre 1 too"}},
        {"fibre_name=\"1B\"", "fibre_name=\"\"", {"warning VK615 5:59-5:58 fibre_name is empty"}},
        {"pos_x=\"0.166\" pos_y=\"-17.597\"",
         "pos_x=\"0.030\" pos_y=\"-17.541\"",
         {"warning VK616 5:24-5:28 fibre 2 stands on fibre 1: 0.050 mm are between them"}},
        {"pos_x=\"0.166\" pos_y=\"-17.597\"", "pos_x=\"0.030\" pos_y=\"-17.542\"", {}},
        {"<VEKO x0=\"0.0\"",
         "<VEKO x0=\"-500\"",
         {"warning VK617 3:29-3:29 Every fibre, as fibre 1, is 500.3 mm from the optical axis, and the field ends at "
          "205.8 mm"}},
        {"pos_y=\"-17.501\"",
         "pos_y=\"-206\"",
         {"warning VK617 4:24-4:28 fibre 1 is 206.0 mm from the optical axis, and the field ends at 205.8 mm"}},
        {"status=\"broken\"", "status=\"BROKEN\"", {}},
        {"status=\"broken\"",
         "status=\"dead\"",
         {"warning VK618 163:94-163:97 status 'dead' is not known, and the run takes fibre 160 for broken"}},
        {"id=\"304\"",
         "id=\"3040\"",
         {"note VK619 3:1-3:1 There is no fibre 304, on which the run places each science target that asks for none"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(toldWith(row.text, row.replacement), row.told) << row.text << " -> " << row.replacement;
    }
}

TEST_F(RulesOfTheInstrument, AWiderFieldReachesFartherAndAbsentFibresAreNowhere) {
    InstrumentOnDisk instrument;
    instrument.replace("pos_y=\"-17.501\"", "pos_y=\"-250\"");
    EXPECT_EQ(problemsIn(instrument).size(), 1U);
    EXPECT_EQ(problemsIn(instrument, 1.5 * 3.14159 / 180), Told());
    instrument.replace("status=\"enabled\"", "status=\"absent\"");
    EXPECT_EQ(problemsIn(instrument), Told());
}

TEST_F(RulesOfTheInstrument, WhatIsCertainHasAFix) {
    EXPECT_EQ(fixWith(">28.760583<", "> 28\xc2\xb0"
                                     "45'38\" <"),
              "28.760556");
    EXPECT_EQ(fixWith("pos_x=\"0.166\"", "pos_x=\"0,1660\""), "0.1660");
    EXPECT_EQ(fixWith("datamver=\"8.00\" focal_length", "datamver=\"8.0\" focal_length"), "8.00");
    EXPECT_EQ(fixWith("status=\"enabled\"", "status=\" Enabled \""), "enabled");
    EXPECT_EQ(fixWith("c7=", "C7="), "c7");
    EXPECT_EQ(fixWith("status=\"enabled\"", "status=\"enable\""), std::nullopt);
    EXPECT_EQ(fixWith(">2332.0<", ">2,332<"), std::nullopt);
}

TEST_F(RulesOfTheInstrument, TheRightNameOfAnElementBelongsIntoBothTags) {
    InstrumentOnDisk instrument;
    instrument.replace("<height>2332.0</height>", "<hieght>2332.0</hieght>");
    const CheckResult result = checkedAnew(instrument, folder_).files.front().result;
    const QByteArray mended = AppliedFixes(result.text.utf8(), result.problems).text();
    EXPECT_EQ(mended.toStdString(), replaced(instrument.configuration, "hieght", "height"));
}

TEST_F(RulesOfTheInstrument, WhatStandsBeforeTheFaultOfADocumentIsChecked) {
    InstrumentOnDisk instrument;
    instrument.replace("28.760583", "north");
    instrument.replace("</configure>", "");
    instrument.replace(" pos_y=\"-17.501\"", "");
    instrument.replace("<fibre id=\"3\"", "<fibre id='3'");
    instrument.replace("id='3'", "id=3");
    EXPECT_EQ(problemsIn(instrument),
              (Told{"error VK605 13:15-13:19 conversion of data to type \"d\" failed (telescope.latitude): 'north' is "
                    "not a number",
                    "error VK601 104:1-104:1 FOLDER/configure.xml is not valid XML: </configure> is missing; the run "
                    "says: <unspecified file>(104): unexpected end of data",
                    "error VK604 4:3-4:3 fibre has no pos_y attribute",
                    "error VK601 6:13-6:13 FOLDER/VEKO.xml is not valid XML: not well-formed (invalid token)"}));
}

TEST_F(RulesOfTheInstrument, NothingIsToldThatMayStandBehindTheFault) {
    InstrumentOnDisk instrument;
    instrument.bundle = "<plate_definition datamver='8.00' centre_x='0' centre_y='-20' orientation='0'>\n" +
                        replaced(tenFibres(), "no such word", "broken") + "</plate_definition>";
    const InstrumentOnDisk whole = instrument;
    constexpr std::size_t kStep = 5;
    for (std::string InstrumentOnDisk::*document : {&InstrumentOnDisk::map, &InstrumentOnDisk::bundle}) {
        for (std::size_t size = 0; size + 2 < (whole.*document).size(); size += kStep) {
            instrument = whole;
            (instrument.*document).resize(size);
            const Told told = problemsIn(instrument);
            ASSERT_EQ(told.size(), 1U) << testing::PrintToString(told) << (instrument.*document);
            EXPECT_EQ(told.front().substr(0, 11), "error VK601");
        }
    }
}

TEST_F(RulesOfTheInstrument, AnUnknownStatusThatIsNearNoneIsHelpedWithAllOfThem) {
    InstrumentOnDisk instrument;
    instrument.replace("status=\"enabled\"", "status=\"dead\"");
    EXPECT_EQ(checkedAnew(instrument, folder_).files.back().result.problems.front().help,
              "Write one of: enabled, disabled, broken, bad ferrule, no magnet, no prism, absent");
}

TEST_F(RulesOfTheInstrument, OfTwoNamesThatMeanOneAttributeTheFirstHasTheFix) {
    InstrumentOnDisk instrument;
    instrument.replace("status=\"enabled\"", "Status=\"enabled\" STATUS=\"enabled\"");
    const CheckedInstrument checked = checkedAnew(instrument, folder_);
    std::vector<std::optional<QByteArray>> fixes;
    for (const Problem& problem : checked.files.back().result.problems) {
        fixes.push_back(problem.fix);
    }
    EXPECT_EQ(fixes, (std::vector<std::optional<QByteArray>>{"status", std::nullopt}));
}

TEST_F(RulesOfTheInstrument, TheDocumentsOfPlatesThatNoRunReadsHaveNoErrors) {
    InstrumentOnDisk instrument;
    instrument.replace(">:/PLATE_A", ">PLATE_A");
    instrument.plateA = replaced(instrument.builtIn("PLATE_A.xml"), "pos_x=\"205.000\"", "");
    EXPECT_EQ(problemsIn(instrument), Told{"warning VK604 4:3-4:3 fibre has no pos_x attribute"});
    instrument.plateA = "none";
    EXPECT_EQ(problemsIn(instrument),
              Told{"warning VK601 1:1-1:1 FOLDER/PLATE_A.xml is not valid XML: it does not begin with a tag"});
}

TEST_F(RulesOfTheInstrument, AFileThatSeveralKeysNameIsCheckedOnceForEachKindOfDocument) {
    InstrumentOnDisk instrument;
    instrument.replace(">:/PLATE_A.xml<", ">VEKO.xml<");
    instrument.replace(">:/PLATE_B.xml<", ">./VEKO.xml<");
    instrument.replace(" pos_y=\"-17.501\"", "");
    EXPECT_EQ(problemsIn(instrument), Told{"error VK604 4:3-4:3 fibre has no pos_y attribute"});
    instrument.replace(">focal_plane_map.xml<", ">VEKO.xml<");
    EXPECT_EQ(problemsIn(instrument).back(), "error VK604 4:3-4:3 fibre has no pos_y attribute");
}

TEST_F(RulesOfTheInstrument, ABuiltInFileOfAnotherVersionIsToldWhereItIsNamed) {
    InstrumentOnDisk instrument;
    instrument.replace("datamver=\"8.00\"", "datamver=\"9.50\"");
    instrument.replace(">VEKO.xml<", ">:/VEKO.xml<");
    instrument.map = replaced(instrument.map, "8.00", "9.50");
    EXPECT_EQ(problemsIn(instrument), Told{"error VK602 42:20-42:29 Data model version mismatch: the built-in file "
                                           "has 8.00, the configuration 9.50"});
}

TEST_F(RulesOfTheInstrument, AnInstrumentThatNoRunCanUseHidesNothingThatDoesNotDependOnIt) {
    InstrumentOnDisk instrument;
    instrument.map = "";
    const CheckedInstrument checked = checkedAnew(instrument, folder_);
    EXPECT_FALSE(checked.isSound);
    CheckOptions options;
    options.isInstrumentSound = checked.isSound;
    const std::string document = replaced(replaced(kFaultless, "pa=\"0\"", "PA=\"0\""), "8.00", "8.0");
    EXPECT_EQ(problemsOf(checkDocument(QByteArray::fromStdString(document), "f.xml", *checked.instrument, options)),
              (Told{"VK102 2:29-2:31 Data model version mismatch: the document has 8.0, the configuration 8.00",
                    "VK201 3:14-3:15 PA is not known on observation, and the run passes over it"}));
    EXPECT_EQ(problemsOf(checkDocument(QByteArray::fromStdString(kFaultless), "f.xml", *checked.instrument, options)),
              Told());
}
