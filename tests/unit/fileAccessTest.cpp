#include "fileAccess.h"
#include "TemporaryFolder.h"
#include "surroundings.h"
#include "thrown.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace pos;

namespace {

const std::string kReplacementCharacter = "\xef\xbf\xbd"; // U+FFFD, which decoders put in the place of bad bytes
const std::string kByteOrderMark = "\xef\xbb\xbf";

} // namespace

TEST(FileNameFromBytes, DecodesUtf8) {
    EXPECT_EQ(fileNameFromBytes("field.xml"), QString("field.xml"));
    EXPECT_EQ(fileNameFromBytes("\xc3\xa9.xml"), QString(QChar(0xe9)) + ".xml");
    const char32_t beyondTheBasicPlane = 0x1f600;
    EXPECT_EQ(fileNameFromBytes("\xf0\x9f\x98\x80"), QString::fromUcs4(&beyondTheBasicPlane, 1));
}

TEST(FileNameFromBytes, TurnsNothingIntoAnotherForm) {
    EXPECT_EQ(fileNameFromBytes(":/configure.xml"), QString(":/configure.xml"));
    EXPECT_EQ(fileNameFromBytes("./a//../b "), QString("./a//../b "));
    // A letter with a combining accent is not the accented letter.
    EXPECT_EQ(fileNameFromBytes("e\xcc\x81"), QString("e") + QChar(0x301));
    EXPECT_EQ(fileNameFromBytes(kByteOrderMark + "a"), QString(QChar(0xfeff)) + "a");
    EXPECT_EQ(fileNameFromBytes(kReplacementCharacter), QString(QChar(0xfffd)));
}

TEST(FileNameFromBytes, RefusesNamesThatAreNotUtf8) {
    const std::string latin1 = "caf\xe9.xml";
    const std::string cutShort = "a\xe2\x82";
    const std::string overlongSlash = "\xc0\xaf";
    const std::string surrogate = "\xed\xa0\x80";
    const std::string beyondUnicode = "\xf4\x90\x80\x80";
    for (const std::string& name : {latin1, cutShort, overlongSlash, surrogate, beyondUnicode, "\xff" + latin1}) {
        EXPECT_EQ(fileNameFromBytes(name), std::nullopt) << testing::PrintToString(name);
    }
}

TEST(FileNameFromBytes, RefusesAnEmptyNameAndANul) {
    EXPECT_EQ(fileNameFromBytes(""), std::nullopt);
    EXPECT_EQ(fileNameFromBytes(std::string("a.xml\0", 6)), std::nullopt);
    EXPECT_EQ(fileNameFromBytes(std::string("a.xml\0b", 7)), std::nullopt);
    EXPECT_EQ(fileNameFromBytes(std::string("\0", 1)), std::nullopt);
}

TEST(ReadFile, GivesEveryByte) {
    const TemporaryFolder folder;
    std::string everyByte = "\r\n\r\n\n\r";
    for (int byte = 0; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    EXPECT_EQ(readFile(folder.write("a", everyByte)), QByteArray::fromStdString(everyByte));
}

TEST(ReadFile, GivesTheContentOfAnEmptyFile) {
    const TemporaryFolder folder;
    const auto content = readFile(folder.write("empty", ""));
    ASSERT_TRUE(content.has_value());
    EXPECT_EQ(content->size(), 0);
}

TEST(ReadFile, OpensTheFileThatAUtf8NameNames) {
    const TemporaryFolder folder;
    for (const std::string name : {"caf\xc3\xa9", "cafe\xcc\x81", "\xf0\x9f\x98\x80", "a b\n'\"", "%20"}) {
        folder.write(name, "content of " + name);
    }
    for (const std::string name : {"caf\xc3\xa9", "cafe\xcc\x81", "\xf0\x9f\x98\x80", "a b\n'\"", "%20"}) {
        EXPECT_EQ(readFile(folder.path(name)), QByteArray::fromStdString("content of " + name));
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

TEST(ReadFile, NeverOpensADifferentFileForANameInAnotherEncoding) {
    const TemporaryFolder folder;
    folder.write("caf\xe9", "named in Latin-1");
    folder.write("caf" + kReplacementCharacter, "the name with a replacement character");
    folder.write("caf?", "the name with a question mark");
    folder.write("caf", "the name without the byte");
    folder.write("caf\xc3\xa9", "named in UTF-8");
    EXPECT_EQ(readFile(folder.path("caf\xe9")), std::nullopt);
}

TEST(ReadFile, GivesNothingForANameWithANul) {
    const TemporaryFolder folder;
    const std::string name = folder.write("a.xml", "content");
    EXPECT_EQ(readFile(name + '\0'), std::nullopt);
    EXPECT_EQ(readFile(name + std::string("\0.xml", 5)), std::nullopt);
}

TEST(ReadFile, GivesNothingWhereThereIsNoFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(readFile(""), std::nullopt);
    EXPECT_EQ(readFile(folder.path("missing")), std::nullopt);
    EXPECT_EQ(readFile(folder.path("missing/a.xml")), std::nullopt);
    EXPECT_EQ(readFile(":/missing.xml"), std::nullopt);
}

TEST(ReadFile, GivesNothingForAFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(readFile(folder.name()), std::nullopt);
    EXPECT_EQ(readFile(folder.name() + "/"), std::nullopt);
}

TEST(ReadFile, GivesNothingForAFileThatOpensButCannotBeRead) {
    // No memory is mapped at address 0.
    EXPECT_EQ(readFile("/proc/self/mem"), std::nullopt);
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

TEST(ReadFile, ReadsEmbeddedResources) {
    const auto content = readFile(":/configure.xml");
    ASSERT_TRUE(content.has_value());
    EXPECT_EQ(content->size(), 3802);
}
