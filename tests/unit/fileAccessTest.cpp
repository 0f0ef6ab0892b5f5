#include "fileAccess.h"
#include "TemporaryFolder.h"
#include "surroundings.h"
#include "thrown.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace pos;
using namespace std::string_literals;

TEST(FileNameFromBytes, DecodesUtf8AndTurnsNothingIntoAnotherForm) {
    const char32_t beyondTheBasicPlane = 0x1f600;
    EXPECT_EQ(fileNameFromBytes("\xc3\xa9.xml"), QString(QChar(0xe9)) + ".xml");
    EXPECT_EQ(fileNameFromBytes("\xf0\x9f\x98\x80"), QString::fromUcs4(&beyondTheBasicPlane, 1));
    EXPECT_EQ(fileNameFromBytes("./a//../b "), QString("./a//../b "));
    // A letter with a combining accent is not the accented letter.
    EXPECT_EQ(fileNameFromBytes("e\xcc\x81"), QString("e") + QChar(0x301));
    EXPECT_EQ(fileNameFromBytes(kByteOrderMark + "a"), QString(QChar(0xfeff)) + "a");
    EXPECT_EQ(fileNameFromBytes(kReplacementCharacter), QString(QChar(0xfffd)));
}

TEST(FileNameFromBytes, RefusesWhatIsEmptyOrHoldsANulOrIsNotUtf8) {
    const std::string latin1 = "caf\xe9.xml";
    const std::string cutShort = "a\xe2\x82";
    const std::string overlongSlash = "\xc0\xaf";
    const std::string surrogate = "\xed\xa0\x80";
    const std::string beyondUnicode = "\xf4\x90\x80\x80";
    for (const std::string& name :
         {latin1, cutShort, overlongSlash, surrogate, beyondUnicode, ""s, "\0"s, "a.xml\0"s, "a.xml\0b"s}) {
        EXPECT_EQ(fileNameFromBytes(name), std::nullopt) << testing::PrintToString(name);
    }
}

TEST(ReadFile, GivesEveryByte) {
    const TemporaryFolder folder;
    std::string everyByte = "\r\n\r\n\n\r";
    for (int byte = 0; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    EXPECT_EQ(readFile(folder.write("a", everyByte)), QByteArray::fromStdString(everyByte));
    EXPECT_EQ(readFile(folder.write("empty", "")), QByteArray(""));
}

TEST(ReadFile, OpensTheFileThatAUtf8NameNamesAndNoOther) {
    const TemporaryFolder folder;
    const std::vector<std::string> names = {"caf\xc3\xa9", "cafe\xcc\x81", "caf" + kReplacementCharacter,
                                            "caf?",        "caf",          "caf\xe9",
                                            "a b\n'\"",    "%20",          "\xf0\x9f\x98\x80"};
    for (const std::string& name : names) {
        folder.write(name, "content of " + name);
    }
    for (const std::string& name : names) {
        const bool readable = name != "caf\xe9";
        EXPECT_EQ(readFile(folder.path(name)),
                  readable ? std::optional(QByteArray::fromStdString("content of " + name)) : std::nullopt);
    }
}

TEST(ReadFile, KeepsAByteOrderMarkAtTheStartOfARelativeName) {
    const TemporaryFolder folder;
    folder.write("a", "without the mark");
    folder.write(kByteOrderMark + "a", "with the mark");
    const WorkingFolder here(folder.name());
    EXPECT_EQ(readFile(kByteOrderMark + "a"), QByteArray("with the mark"));
    EXPECT_EQ(readFile("a"), QByteArray("without the mark"));
}

TEST(ReadFile, GivesNothingWhereThereIsNoFileThatCanBeRead) {
    const TemporaryFolder folder;
    const std::string file = folder.write("a.xml", "content");
    for (const std::string& name :
         {""s, folder.path("missing"), folder.path("missing/a.xml"), ":/missing.xml"s, file + "\0"s, folder.name(),
          folder.name() + "/", "/proc/self/mem"s}) { // no memory is mapped at address 0
        EXPECT_EQ(readFile(name), std::nullopt) << name;
    }
}

TEST(ReadFile, ReadsAFileWhoseSizeIsNotKnownBeforehand) {
    struct stat status {};
    ASSERT_EQ(::stat("/proc/version", &status), 0);
    ASSERT_EQ(status.st_size, 0);
    EXPECT_EQ(readFile("/proc/version"), QByteArray::fromStdString(readBytes("/proc/version")));
}

TEST(ReadFile, GivesUpWhereAFileIsTooLarge) {
    const TemporaryFolder folder;
    const std::string name = folder.write("large", "begin");
    std::filesystem::resize_file(name, 2 * 1024 * 1024);
    EXPECT_EQ(readFile(name, 2 * 1024 * 1024).value_or("").size(), 2 * 1024 * 1024);
    EXPECT_EQ(messageOf([&] { readFile(name, 1024 * 1024); }), name + " is larger than 1 MiB");
    EXPECT_EQ(messageOf([&] { readFile(name, 16 * 1024); }), name + " is larger than 16 KiB");
    std::filesystem::resize_file(name, kMaxFileSize + 1);
    EXPECT_EQ(messageOf([&] { readFile(name); }), name + " is larger than 256 MiB");
    EXPECT_EQ(messageOf([] { readFile("/dev/zero"); }), "/dev/zero is larger than 256 MiB");
}
