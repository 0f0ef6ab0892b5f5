#include "Program.h"
#include "TemporaryFolder.h"
#include "fieldDefinition.h"
#include "ownConfiguration.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <tuple>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

using Json = nlohmann::ordered_json;
using Command = std::vector<std::string>;

ProgramResult window(Command arguments, const ProgramOptions& options = {}) {
    arguments.insert(arguments.begin(), {VEKO_EXECUTABLE, "window"});
    return runCommand(arguments, options);
}

/** All that is found for one document. */
Json found(const std::string& document, Command arguments) {
    const TemporaryFolder folder;
    arguments.insert(arguments.end(), {"--format", "json", folder.write("f.xml", document)});
    const ProgramResult result = window(arguments);
    EXPECT_EQ(result.err, "");
    return Json::parse(result.out);
}

/** What is found for one night. */
Json nightOf(const std::string& document, const Command& arguments) {
    return found(document, arguments)["nights"][0];
}

std::string reasonOf(const Command& arguments) {
    const ProgramResult result = window(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    return QString::fromStdString(result.out).simplified().toStdString();
}

const Command kPlace = {"--ra", "180", "--dec", "20", "--night", "2027-03-01"};

Command joined(Command first, const Command& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::vector<std::string> namesOf(const Json& object) {
    std::vector<std::string> names;
    for (const auto& [name, value] : object.items()) {
        names.push_back(name);
    }
    return names;
}

} // namespace

TEST(WindowCommand, TellsEachNightInJson) {
    const Json all = found(documentWithFields({ordinaryFieldXml(), secondFieldXml()}), {"--night", "2027-03-01"});
    EXPECT_EQ(all["version"], 1);
    ASSERT_EQ(all["nights"].size(), 2U);
    int field = 0;
    for (const Json& night : all["nights"]) {
        EXPECT_EQ(namesOf(night), (Command{"file", "field", "night", "windows", "reason"}));
        EXPECT_THAT(night["file"].get<std::string>(), HasSubstr("f.xml"));
        EXPECT_EQ(night["field"], ++field);
        EXPECT_EQ(night["night"], "2027-03-01");
        EXPECT_EQ(night["reason"], nullptr);
        ASSERT_EQ(night["windows"].size(), 1U);
        const Json& window = night["windows"][0];
        EXPECT_EQ(namesOf(window), (Command{"start", "end", "best", "longest"}));
        EXPECT_EQ(window["longest"], true);
        EXPECT_EQ(window["best"]["limit"], nullptr);
        for (const char* moment : {"start", "end", "best"}) {
            EXPECT_EQ(namesOf(window[moment]),
                      (Command{"utc", "mjdTai", "epoch", "lstHours", "hourAngleHours", "runHourAngleHours",
                               "altitudeDeg", "airmass", "azimuthDeg", "parallacticDeg", "rotatorDeg",
                               "rotatorAboveLowDeg", "rotatorBelowHighDeg", "limit"}));
        }
    }
}

TEST(WindowCommand, TheSecondFieldIsThatOfItsScienceTarget) {
    // It is 0.2 degrees east of the first field's centre, and culminates later by 0.8 minutes of sidereal time.
    const Json nights =
        found(documentWithFields({ordinaryFieldXml(), secondFieldXml()}), {"--night", "2027-02-10"})["nights"];
    const auto culmination = [&](int field) {
        return nights[static_cast<std::size_t>(field)]["windows"][0]["best"]["mjdTai"].get<double>() * 24 * 60;
    };
    EXPECT_NEAR(culmination(1) - culmination(0), 0.8 / 1.0027379, 0.01);
}

TEST(WindowCommand, ChoosesTheNightOfTheEpoch) {
    // 2027.0 is noon of January 1 in TT; the site is 71 minutes behind, so that it is still the night before.
    for (const auto& [epoch, night] : {std::pair("2027.0", "2026-12-31"), {"2027.001", "2027-01-01"}}) {
        EXPECT_EQ(nightOf(documentWithConditions(std::string("epoch=\"") + epoch + "\""), {})["night"], night);
        EXPECT_EQ(nightOf(documentWithConditions("epoch=\"2020\""), {"--epoch", epoch})["night"], night);
    }
}

TEST(WindowCommand, WindowsEndWhereTheRequirementsDo) {
    const Command circumpolar = {"--ra", "0", "--dec", "80", "--horizon_limit", "10", "--night", "2027-03-21"};
    for (const auto& [arguments, first, last] :
         {std::tuple(kPlace, "horizon", "twilight"),
          {joined(kPlace, {"--twilight", "none"}), "horizon", "horizon"},
          {joined(kPlace, {"--airmass", "1.5"}), "airmass", "airmass"},
          {joined(kPlace, {"--moon", "170"}), "horizon", "moon"},
          // The parallactic angle, and with it the rotator, turns from 60 degrees on one side to 60 on the other.
          {joined(kPlace, {"--pa", "100"}), "rotator high", "twilight"},
          {joined(kPlace, {"--pa", "-100"}), "horizon", "rotator low"},
          {joined(circumpolar, {"--twilight", "none", "--pa", "180"}), "noon", "noon"}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Json windows = Json::parse(window(joined(arguments, {"--format", "json"})).out)["nights"][0]["windows"];
        ASSERT_FALSE(windows.empty());
        EXPECT_EQ(windows.front()["start"]["limit"], first);
        EXPECT_EQ(windows.back()["end"]["limit"], last);
    }
}

TEST(WindowCommand, TellsWhatForbidsANight) {
    EXPECT_THAT(reasonOf({"--ra", "180", "--dec", "-60", "--night", "2027-03-01", "--twilight", "none"}),
                HasSubstr("No window. In this night the field is never above 25 degrees: at its highest, at "));
    // At its highest it stands at 90 - 28.760583 - 40 degrees.
    EXPECT_THAT(reasonOf({"--ra", "180", "--dec", "-40", "--night", "2027-03-01"}), HasSubstr("it stands at 21."));
    EXPECT_THAT(reasonOf(joined(kPlace, {"--twilight", "-80"})),
                HasSubstr("the Sun is never lower than -80 degrees: at its lowest, at "));
    EXPECT_THAT(reasonOf(joined(kPlace, {"--airmass", "1.005"})), HasSubstr("the airmass is never below 1.005: "));
    EXPECT_THAT(reasonOf(joined(kPlace, {"--minimum", "900"})), HasSubstr(" minutes, and 900.0 are asked for."));
    EXPECT_THAT(reasonOf({"--ra", "150", "--dec", "5", "--moon", "100", "--night", "2027-03-21"}),
                HasSubstr("the Moon is up and never farther away than "));
}

TEST(WindowCommand, ThePositionAngleOfAReasonDoes) {
    const Command north = {"--ra", "180", "--dec", "80", "--night", "2027-03-01", "--horizon_limit", "38"};
    const std::string reason = reasonOf(north);
    EXPECT_THAT(reason, HasSubstr("and it reaches from -135 to 135; at "));
    const std::size_t begin = reason.find("pa=\"") + 4;
    const std::string angle = reason.substr(begin, reason.find('"', begin) - begin);
    EXPECT_EQ(window(joined(north, {"--pa", angle})).status, 0) << reason;
}

TEST(WindowCommand, TheCsvHasTheNamesAndTheValuesOfTheJson) {
    const Json json = Json::parse(window(joined(kPlace, {"--format", "json"})).out)["nights"][0];
    const QStringList lines =
        QString::fromStdString(window(joined(kPlace, {"--format", "csv"})).out).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    const QStringList names = lines.at(0).split(',');
    const QStringList values = lines.at(1).split(',');
    ASSERT_EQ(names.size(), values.size());
    EXPECT_EQ(names.mid(0, 4), QStringList({"file", "field", "night", "start.utc"}));
    EXPECT_EQ(names.last(), "reason");
    const Json flat = json["windows"][0].flatten(); // with "/" for "."
    for (int i = 3; i + 1 < names.size(); ++i) {
        const Json value = flat.at('/' + QString(names.at(i)).replace('.', '/').toStdString());
        const std::string text = value.is_string() ? value.get<std::string>() : value.is_null() ? "" : value.dump();
        EXPECT_EQ(values.at(i).toStdString(), text) << names.at(i).toStdString();
    }
}

TEST(WindowCommand, ASeasonHasALineForEachNight) {
    const ProgramResult result =
        window({"--ra", "180", "--dec", "20", "--from", "2027-02-27", "--to", "2027-03-02", "--format", "csv"});
    const QStringList lines = QString::fromStdString(result.out).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 5);
    for (int i = 1; i < 5; ++i) {
        EXPECT_EQ(lines.at(i).split(',').at(2), QDate(2027, 2, 26).addDays(i).toString(Qt::ISODate));
    }
}

TEST(WindowCommand, TablesAreAtMost80ColumnsWide) {
    const Command season = {"--ra", "10", "--dec", "85", "--from", "2027-03-25", "--to", "2027-04-02"};
    for (const Command& arguments :
         {kPlace, joined(kPlace, {"--time-zone", "Atlantic/Canary"}), joined(kPlace, {"--airmass", "1.005"}), season,
          joined(season, {"--airmass", "1.5"})}) {
        for (const QString& line : QString::fromStdString(window(arguments).out).split('\n')) {
            EXPECT_LE(line.size(), 80) << line.toStdString();
        }
    }
}

TEST(WindowCommand, TimesAreToldInAnotherZoneToo) {
    const Json best = Json::parse(window(joined(kPlace, {"--format", "json", "--time-zone", "Asia/Kolkata"})).out)
                          .at("/nights/0/windows/0/best"_json_pointer);
    const QDateTime utc = QDateTime::fromString(QString::fromStdString(best["utc"]), Qt::ISODateWithMs);
    EXPECT_EQ(best["local"].get<std::string>(),
              utc.addSecs(5 * 3600 + 1800).toString("yyyy-MM-ddTHH:mm:ss.zzz").toStdString() + "+05:30");
}

TEST(WindowCommand, ReadsNoBundle) {
    const TemporaryFolder folder;
    OwnConfiguration configuration;
    configuration.vekoDefinition.clear();
    const ProgramResult result = window(joined({"-c", configuration.write(folder)}, kPlace));
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(WindowCommand, WhatCannotBeReadEndsWithStatusTwoAndTheOthersAreTold) {
    const TemporaryFolder folder;
    folder.write("good.xml", FieldDefinition().text());
    folder.write("bad.xml", documentWithConditions(R"(epoch="x")"));
    folder.write("empty.xml", documentWithFields({}));
    folder.write("timeless.xml", documentWithConditions(""));
    const ProgramResult result =
        window({"missing.xml", "bad.xml", "empty.xml", "timeless.xml", "good.xml"}, {.folder = folder.name()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, R"(missing.xml could not be opened
bad.xml: bad epoch attribute in conditions element
empty.xml: There is no field in the document
timeless.xml: There is no epoch, so that the night is not known: give --night, or --from and --to
)");
    EXPECT_THAT(result.out, StartsWith("good.xml, field 1, night of 2024-07-"));
}

TEST(WindowCommand, RefusesArgumentsThatCannotBeMeant) {
    for (const auto& [arguments, message] :
         {std::pair(Command{}, "field definitions, or a place with --ra and --dec, are required"),
          {{"--ra", "1", "--dec", "1", "f.xml"}, "a place is given instead of files"},
          {{"--ra", "1"}, "--ra requires --dec"},
          {{"--pa", "1", "f.xml"}, "--pa requires --ra"},
          {{"--ra", "nan", "--dec", "1"}, "'nan' is not a number from 0 to 360"},
          {{"--ra", "1", "--dec", "91"}, "'91' is not a number from -90 to 90"},
          {{"--night", "2027-02-30", "f.xml"}, "'2027-02-30' is not a date YYYY-MM-DD"},
          {{"--night", "1850-01-01", "f.xml"}, "'1850-01-01' is not between 1900 and 2100"},
          {{"--from", "2027-01-01", "f.xml"}, "--from requires --to"},
          {{"--from", "2027-01-02", "--to", "2027-01-01", "f.xml"}, "the last night is before the first"},
          {{"--twilight", "dusk", "f.xml"}, "'dusk' is not a number from -90 to 0"},
          {{"--airmass", "0.9", "f.xml"}, "'0.9' is not a number from 1 to 40"},
          {{"--time-zone", "Moon/Base", "f.xml"}, "the system knows no time zone 'Moon/Base'"}}) {
        const ProgramResult result = window(arguments);
        EXPECT_EQ(result.status, 2) << message;
        EXPECT_EQ(result.out, "") << message;
        EXPECT_THAT(result.err, HasSubstr(message));
    }
}
