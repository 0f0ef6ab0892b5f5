#include "OutputFile.h"
#include "TemporaryFolder.h"
#include "surroundings.h"

#include <gtest/gtest.h>
#include <map>
#include <unistd.h>

using namespace pos;

namespace {

namespace fs = std::filesystem;

const QByteArray kNewContent = "<new/>";
/** Writes over a file and expects another one in its place. */
void replace(const std::string& name) {
    // Keeps the number of the old file from being given to the new one.
    fs::create_hard_link(name, name + ".old");
    const ino_t before = statusOf(name).st_ino;
    writeFile(name, kNewContent);
    EXPECT_EQ(readBytes(name), kNewContent.toStdString());
    EXPECT_NE(statusOf(name).st_ino, before);
    fs::remove(name + ".old");
}

} // namespace

TEST(FileProperties, AccessControlListIsKept) {
    const TemporaryFolder folder;
    const std::string name = folder.write("out.xml", "old");
    REQUIRE_PRIVILEGE(setAttribute(name, kAccessList, kNamedUser), "a file system with access control lists");
    ASSERT_EQ(modeOf(name), 0660U);
    replace(name);
    EXPECT_EQ(attribute(name, kAccessList), kNamedUser);
    EXPECT_EQ(modeOf(name), 0660U);
}

TEST(FileProperties, AccessControlListOfTheFolderIsNotTakenOn) {
    const TemporaryFolder folder;
    const std::string name = folder.write("out.xml", "old");
    ASSERT_EQ(::chmod(name.c_str(), 0640), 0);
    REQUIRE_PRIVILEGE(setAttribute(folder.name(), kDefaultList, kNamedUser), "a file system with access control lists");
    writeFile(folder.path("new.xml"), kNewContent);
    EXPECT_EQ(attribute(folder.path("new.xml"), kAccessList), kNamedUser);
    replace(name);
    EXPECT_EQ(attribute(name, kAccessList), std::nullopt);
    EXPECT_EQ(modeOf(name), 0640U);
    ASSERT_TRUE(setAttribute(name, kAccessList, kNamedUser));
    replace(name);
    EXPECT_EQ(attribute(name, kAccessList), kNamedUser);
}

TEST(FileProperties, ModeAndOwnerAreKeptWithAndWithoutAnAccessControlList) {
    REQUIRE_PRIVILEGE(isRoot(), "root");
    for (const bool hasList : {false, true}) {
        // A change of owner clears the set-id bits.
        for (const mode_t mode : {0660U, 06770U, 0640U, 0600U}) {
            const TemporaryFolder folder;
            const std::string name = folder.write("out.xml", "old");
            ASSERT_EQ(::chown(name.c_str(), 65534, 2), 0);
            REQUIRE_PRIVILEGE(!hasList || setAttribute(name, kAccessList, kNamedUser),
                              "a file system with access control lists");
            ASSERT_EQ(::chmod(name.c_str(), mode), 0); // the group's digit becomes the mask of the list
            const std::optional<std::string> list = attribute(name, kAccessList);
            replace(name);
            EXPECT_EQ(attribute(name, kAccessList), list);
            EXPECT_EQ(modeOf(name), mode);
            EXPECT_EQ(statusOf(name).st_uid, 65534U);
            EXPECT_EQ(statusOf(name).st_gid, 2U);
        }
    }
}

TEST(FileProperties, EveryAttributeIsKept) {
    const TemporaryFolder folder;
    const std::string name = folder.write("out.xml", "old");
    const std::map<std::string, std::string> attributes = {{"user.a", "one"},
                                                           {"user.empty", ""},
                                                           {"user.bytes", std::string("\0\xff\n", 3)},
                                                           {"user.long", std::string(2000, 'l')}};
    for (const auto& [attribute, value] : attributes) {
        REQUIRE_PRIVILEGE(setAttribute(name, attribute, value), "a file system with extended attributes");
    }
    fs::create_symlink("out.xml", folder.path("link"));
    replace(name);
    writeFile(folder.path("link"), kNewContent);
    for (const auto& [attributeName, value] : attributes) {
        EXPECT_EQ(attribute(name, attributeName), value) << attributeName;
    }
}
