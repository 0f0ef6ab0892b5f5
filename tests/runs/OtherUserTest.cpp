#include "outputRun.h"

#include <gtest/gtest.h>

namespace {

using Names = std::set<std::string>;

constexpr uid_t kOtherUser = 65534;
constexpr uid_t kThirdUser = 1;

/** Runs as a user who may not do everything; the test itself must be able to become that user. */
class OtherUser : public OutputRun {
protected:
    void SetUp() override {
        prepareForOtherUsers();
        REQUIRE_PRIVILEGE(isRoot() && runCommand(joined(kAsOtherUser, {"true"})).status == 0,
                          "the right to become another user");
    }

    /** A run as the other user, in whose name a shell may have something done first. */
    ProgramResult run(const std::string& output, const std::string& before = "true") const {
        return OutputRun::run(output, joined(kAsOtherUser, {"bash", "-c", before + " && exec \"$0\" \"$@\""}));
    }

    /** A file in the folder of the output that belongs to root. */
    void writeForeign(const std::string& content, mode_t mode) const {
        write("out.xml", content);
        permit("out/out.xml", mode);
    }
};

} // namespace

TEST_F(OtherUser, MakesAFileInAFolderThatTakesOne) {
    permit("out", 0777);
    expectEnd(run("out.xml", "umask 027"), 0, "");
    EXPECT_EQ(readBytes(path("out.xml")), expected_);
    EXPECT_EQ(statusOf(path("out.xml")).st_uid, kOtherUser);
    EXPECT_EQ(modeOf(path("out.xml")), 0640U);
    EXPECT_EQ(outputs(), Names({"out.xml"}));
}

TEST_F(OtherUser, CannotMakeAFileInAFolderThatTakesNone) {
    expectEnd(run("out.xml"), 1, kNotOpened);
    EXPECT_EQ(outputs(), Names());
}

TEST_F(OtherUser, CannotOpenWhatIsBehindAClosedFolder) {
    writeForeign("old", 0666);
    permit("out", 0700);
    expectEnd(OutputRun::run("out.xml", kAsOtherUser), 1, kNotOpened);
    expectEnd(OutputRun::run(path("out.xml"), kAsOtherUser), 1, kNotOpened);
    EXPECT_EQ(readBytes(path("out.xml")), "old");
}

TEST_F(OtherUser, CannotOpenAFileThatIsNotWritableThoughTheFolderIs) {
    permit("out", 0777);
    for (const uid_t owner : {uid_t(0), kOtherUser}) {
        writeForeign("old", 0444);
        give("out/out.xml", owner, 0);
        expectEnd(run("out.xml"), 1, kNotOpened);
        EXPECT_EQ(readBytes(path("out.xml")), "old");
        EXPECT_EQ(statusOf(path("out.xml")).st_uid, owner);
        EXPECT_EQ(outputs(), Names({"out.xml"}));
    }
}

TEST_F(OtherUser, OverwritesAWritableFileInAFolderThatTakesNoOther) {
    for (const std::string& old : {std::string("old"), std::string(500'000, 'o')}) {
        for (const mode_t mode : {0666U, 0222U}) {
            writeForeign(old, mode);
            const struct stat before = statusOf(path("out.xml"));
            expectEnd(run("out.xml"), 0, "");
            EXPECT_EQ(readBytes(path("out.xml")), expected_);
            EXPECT_EQ(statusOf(path("out.xml")).st_ino, before.st_ino);
            EXPECT_EQ(statusOf(path("out.xml")).st_uid, 0U);
            EXPECT_EQ(modeOf(path("out.xml")), mode);
            EXPECT_EQ(outputs(), Names({"out.xml"}));
        }
    }
}

TEST_F(OtherUser, PutsTheOldContentBackWhenOverwritingFails) {
    for (const std::string& old : {std::string(), std::string("old"), std::string(500'000, 'o')}) {
        writeForeign(old, 0666);
        expectEnd(run("out.xml", "ulimit -f 8"), 1, notWritten("out.xml", "File too large"));
        EXPECT_EQ(readBytes(path("out.xml")), old);
        EXPECT_EQ(outputs(), Names({"out.xml"}));
    }
}

TEST_F(OtherUser, SaysThatTheOldContentCouldNotBePutBackWhereItCannotBeRead) {
    writeForeign("old", 0222);
    expectEnd(run("out.xml", "ulimit -f 8"), 1,
              notWritten("out.xml", "File too large; its old contents could not be put back"));
    EXPECT_EQ(outputs(), Names({"out.xml"}));
}

TEST_F(OtherUser, OverwritesAThirdUsersFileInAStickyFolder) {
    writeForeign("old", 0666);
    give("out/out.xml", kThirdUser, kThirdUser);
    give("out", kThirdUser, kThirdUser);
    permit("out", 01777);
    expectEnd(run("out.xml", "ulimit -f 8"), 1, notWritten("out.xml", "File too large"));
    EXPECT_EQ(readBytes(path("out.xml")), "old");
    expectEnd(run("out.xml"), 0, "");
    EXPECT_EQ(readBytes(path("out.xml")), expected_);
    EXPECT_EQ(statusOf(path("out.xml")).st_uid, kThirdUser);
    EXPECT_EQ(outputs(), Names({"out.xml"}));
}

TEST_F(OtherUser, TakesOverAFileInAFolderThatTakesNewOnes) {
    permit("out", 0777);
    writeForeign("old", 0664);
    give("out/out.xml", kThirdUser, kOtherUser); // a group that the user is in
    expectEnd(run("out.xml"), 0, "");
    EXPECT_EQ(readBytes(path("out.xml")), expected_);
    const struct stat status = statusOf(path("out.xml"));
    EXPECT_EQ(status.st_uid, kOtherUser);
    EXPECT_EQ(status.st_gid, kOtherUser);
    EXPECT_EQ(modeOf(path("out.xml")), 0664U);
    EXPECT_EQ(outputs(), Names({"out.xml"}));
}

TEST_F(OtherUser, KeepsTheGroupWithoutTheOwner) {
    permit("out", 0777);
    writeForeign("old", 0664);
    give("out/out.xml", kThirdUser, kThirdUser);
    // The third user's group is one of several.
    expectEnd(OutputRun::run("out.xml", {"setpriv", "--reuid=65534", "--regid=65534", "--groups=65534,1"}), 0, "");
    const struct stat status = statusOf(path("out.xml"));
    EXPECT_EQ(status.st_uid, kOtherUser);
    EXPECT_EQ(status.st_gid, gid_t(kThirdUser));
    EXPECT_EQ(modeOf(path("out.xml")), 0664U);
}
