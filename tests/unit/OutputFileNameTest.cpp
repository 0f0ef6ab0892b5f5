#include "OutputFile.h"
#include "TemporaryFolder.h"
#include "surroundings.h"
#include "thrown.h"

#include <gtest/gtest.h>

using namespace pos;
using testing::PrintToString;

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

const std::string kShortContent = "<new/>";
const std::string kLatin1 = "caf\xe9";

void write(const std::string& name) {
    writeFile(name, QByteArray::fromStdString(kShortContent));
}

} // namespace

TEST(OutputFileName, IsTakenByteForByte) {
    for (const std::string& name :
         {std::string("caf\xc3\xa9.xml"), std::string("cafe\xcc\x81.xml"), std::string("\xf0\x9f\x98\x80"),
          std::string("a b\n'\"\\"), std::string("%20?*"), std::string("-o"), std::string("nameXXXXXX"),
          "a" + kByteOrderMark, std::string("file:x"), kReplacementCharacter, std::string(255, 'n'),
          std::string(249, 'n')}) {
        const TemporaryFolder folder;
        for (int time = 0; time < 2; ++time) {
            write(folder.path(name));
            EXPECT_EQ(entriesOf(folder.name()), Names({name})) << PrintToString(name);
            EXPECT_EQ(folder.read(name), kShortContent) << PrintToString(name);
        }
    }
}

TEST(OutputFileName, MayBeRelative) {
    const TemporaryFolder folder;
    fs::create_directory(folder.path("below"));
    const WorkingFolder here(folder.path("below"));
    for (const std::string& name : {std::string("a"), std::string("./b"), std::string("../c"), kByteOrderMark + "d"}) {
        write(name);
        write(name);
    }
    EXPECT_EQ(entriesOf(folder.path("below")), Names({"a", "b", kByteOrderMark + "d"}));
    EXPECT_EQ(entriesOf(folder.name()), Names({"below", "c"}));
}

TEST(OutputFileName, InAnotherEncodingNeverOpensADifferentFile) {
    const TemporaryFolder folder;
    const Names neighbours = {kLatin1, "caf" + kReplacementCharacter, "caf?", "caf", "caf\xc3\xa9"};
    for (const std::string& neighbour : neighbours) {
        folder.write(neighbour, "old");
    }
    for (const std::string& name : {kLatin1, "other" + kLatin1, kLatin1 + "/out.xml", std::string("\xc0\xaf"),
                                    std::string("\xed\xa0\x80"), std::string("a\xe2\x82")}) {
        EXPECT_EQ(messageOf([&] { write(folder.path(name)); }), "File open error: Unable to open output file")
            << PrintToString(name);
    }
    EXPECT_EQ(entriesOf(folder.name()), neighbours);
    for (const std::string& neighbour : neighbours) {
        EXPECT_EQ(folder.read(neighbour), "old") << PrintToString(neighbour);
    }
}

TEST(OutputFileName, LeadsToTheRightFileThroughALinkInAnotherEncoding) {
    for (const bool exists : {false, true}) {
        const TemporaryFolder folder;
        folder.write("caf" + kReplacementCharacter, "different");
        fs::create_symlink(kLatin1, folder.path("link"));
        if (exists) {
            folder.write(kLatin1, "a much longer older content");
        }
        write(folder.path("link"));
        EXPECT_EQ(folder.read(kLatin1), kShortContent);
        EXPECT_EQ(folder.read("caf" + kReplacementCharacter), "different");
        EXPECT_EQ(entriesOf(folder.name()), Names({"link", kLatin1, "caf" + kReplacementCharacter}));
    }
}

TEST(OutputFileName, IsFoundFromAFolderInAnotherEncoding) {
    const TemporaryFolder folder;
    fs::create_directory(folder.path(kLatin1));
    fs::create_directory(folder.path("caf" + kReplacementCharacter));
    const WorkingFolder here(folder.path(kLatin1));
    for (int time = 0; time < 2; ++time) {
        write("out.xml");
        EXPECT_EQ(readBytes("out.xml"), kShortContent);
        EXPECT_EQ(entriesOf(folder.path(kLatin1)), Names({"out.xml"}));
        EXPECT_EQ(entriesOf(folder.path("caf" + kReplacementCharacter)), Names());
    }
}

TEST(OutputFileName, BeginningWithAColonIsAResourceAndCannotBeOpened) {
    const TemporaryFolder folder;
    folder.write(":/old.xml", "old");
    const WorkingFolder here(folder.name());
    for (const std::string name : {":", ":out.xml", ":/out.xml", ":/old.xml", ":/configure.xml"}) {
        EXPECT_EQ(messageOf([&] { write(name); }), "File open error: Unable to open output file") << name;
    }
    EXPECT_EQ(entriesOf(folder.name()), Names({":"}));
    EXPECT_EQ(entriesOf(folder.path(":")), Names({"old.xml"}));
    EXPECT_EQ(folder.read(":/old.xml"), "old");
}

TEST(OutputFileName, OfAFileThatBeginsWithAColonCanBeGivenWithItsFolder) {
    const TemporaryFolder folder;
    const WorkingFolder here(folder.name());
    write("./:out.xml");
    EXPECT_EQ(folder.read(":out.xml"), kShortContent);
    fs::create_symlink(":linked.xml", folder.path("link"));
    write("link");
    EXPECT_EQ(folder.read(":linked.xml"), kShortContent);
}
