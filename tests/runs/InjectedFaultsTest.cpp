#include "outputRun.h"
#include "surroundings.h"

#include <gtest/gtest.h>

// Runs in which chosen calls of the kernel fail, and exactly what is said and left then.

namespace {

using Names = std::set<std::string>;

class InjectedFaults : public TracedRun {
protected:
    /**
     * A run with faults, each of which must happen.
     *
     * @param faults "call:error=REASON:when=WHICH", or "call:retval=RESULT:when=WHICH"
     * @param arguments further ones of the tracer
     */
    ProgramResult runWith(const Command& faults, const std::string& output = "out.xml", Command arguments = {},
                          const Command& before = {}) const {
        Command injections;
        for (const std::string& fault : faults) {
            injections = joined(injections, {"-e", "inject=" + fault});
        }
        const ProgramResult result = runTraced(output, joined(injections, arguments), before);
        for (const std::string& fault : faults) {
            const std::string call = fault.substr(0, fault.find(':'));
            EXPECT_NE(trace().find("(INJECTED)", trace().find(call + "(")), std::string::npos) << fault;
        }
        return result;
    }

    /** Makes the output as it is before a run: with this content, or none at all. */
    void prepare(const std::string& old) const {
        std::filesystem::remove(path("out.xml"));
        if (!old.empty()) {
            write("out.xml", old);
            permit("out/out.xml", 0640);
        }
    }

    /** Expects this content under the output's name, or no file, and nothing beside it. */
    void expectOutput(const std::string& content) const {
        EXPECT_EQ(outputs(), content.empty() ? Names() : Names({"out.xml"}));
        if (!content.empty()) {
            EXPECT_TRUE(readBytes(path("out.xml")) == content);
        }
    }

    /** Limits the faults to calls that touch the folder of the output. */
    Command inTheFolder() const {
        return {"-P", std::filesystem::canonical(folder_.path("out"))};
    }
};

/** Older contents: none, and those that are shorter and longer than the output. */
const std::vector<std::string> kOlder = {"", "old", std::string(500'000, 'o')};

} // namespace

TEST_F(InjectedFaults, LossOfTheContentLeavesTheOlderOne) {
    for (const auto& [fault, reason] : {std::pair("write:error=ENOSPC", "No space left on device"),
                                        {"write:error=EDQUOT", "Disk quota exceeded"},
                                        {"write:retval=0", "No space left on device"},
                                        {"ftruncate:error=EIO", "Input/output error"},
                                        {"fdatasync:error=ENOSPC", "No space left on device"}}) {
        for (const std::string& old : kOlder) {
            for (const std::string& output : {std::string("out.xml"), kInPlace}) {
                if (output != kInPlace || !old.empty()) {
                    SCOPED_TRACE(fault + (" " + output));
                    prepare(old);
                    expectEnd(runWith({fault + std::string(":when=1")}, output), 1, notWritten(output, reason));
                    expectOutput(old);
                }
            }
        }
    }
}

TEST_F(InjectedFaults, LossThatLastsSaysThatTheOldContentCouldNotBePutBack) {
    for (const std::string call : {"ftruncate", "fdatasync"}) {
        prepare("old");
        expectEnd(runWith({call + ":error=EIO:when=1+"}, kInPlace), 1,
                  notWritten(kInPlace, "Input/output error; its old contents could not be put back"));
    }
}

TEST_F(InjectedFaults, WhatIsNotNeededForTheContentMayFail) {
    const struct {
        std::string fault;
        bool isOfAnOlderFile;
        Command arguments;
    } rows[] = {{"rename:error=EPERM", true, {}},
                {"rename:error=EXDEV", true, {}},
                {"fchmod:error=EPERM", true, {}},
                {"fchown:error=EPERM", true, {}},
                {"linkat:error=EPERM", false, {}},
                {"linkat:error=EIO", false, {}},
                {"openat:error=EOPNOTSUPP:when=1", false, inTheFolder()},
                {"openat:error=EACCES:when=1", false, inTheFolder()},
                {"fsync:error=EINVAL", false, {}},
                {"fsync:error=EOPNOTSUPP", false, {}},
                {"fsync:error=EROFS", false, {}}};
    for (const auto& [fault, isOfAnOlderFile, arguments] : rows) {
        for (const std::string& old : kOlder) {
            if (!isOfAnOlderFile || !old.empty()) {
                SCOPED_TRACE(fault);
                prepare(old);
                expectEnd(runWith({fault}, "out.xml", arguments), 0, "");
                expectOutput(expected_);
                EXPECT_EQ(modeOf(path("out.xml")), old.empty() ? 0644U : 0640U);
            }
        }
    }
}

TEST_F(InjectedFaults, TemporaryFileThatHasANameIsRemoved) {
    prepare("old");
    expectEnd(runWith({"openat:error=EOPNOTSUPP:when=1"}, "out.xml", inTheFolder(), limitedTo(8)), 1,
              notWritten("out.xml", "File too large"));
    expectOutput("old");
}

TEST_F(InjectedFaults, NewFileThatCannotBeWrittenInPlaceIsRemoved) {
    prepare("");
    expectEnd(runWith({"linkat:error=EPERM", "write:error=ENOSPC:when=2"}), 1,
              notWritten("out.xml", "No space left on device"));
    expectOutput("");
}

TEST_F(InjectedFaults, FileWhoseAttributesCannotBeKeptIsOverwritten) {
    write("out.xml", "old");
    // Every file made later gets a list from the folder.
    REQUIRE_PRIVILEGE(setAttribute(path("out.xml"), "user.a", "one") &&
                          setAttribute(folder_.path("out"), kDefaultList, kNamedUser),
                      "a file system with access control lists");
    const ino_t inode = statusOf(path("out.xml")).st_ino;
    for (const std::string fault : {"listxattr:error=EIO", "getxattr:error=EACCES", "flistxattr:error=EIO",
                                    "fgetxattr:error=EIO", "fremovexattr:error=EPERM", "fsetxattr:error=ENOSPC"}) {
        SCOPED_TRACE(fault);
        write("out.xml", "old");
        expectEnd(runWith({fault}), 0, "");
        expectOutput(expected_);
        EXPECT_EQ(statusOf(path("out.xml")).st_ino, inode);
        EXPECT_EQ(attribute(path("out.xml"), "user.a"), "one");
        EXPECT_EQ(attribute(path("out.xml"), kAccessList), std::nullopt);
    }
}

TEST_F(InjectedFaults, FileSystemWithoutAttributesHasNoneToKeep) {
    write("out.xml", "old");
    for (const std::string error : {"EOPNOTSUPP", "ENOSYS"}) {
        std::filesystem::create_hard_link(path("out.xml"), folder_.path("old.xml"));
        expectEnd(runWith({"listxattr:error=" + error, "flistxattr:error=" + error}), 0, "");
        expectOutput(expected_);
        EXPECT_NE(statusOf(path("out.xml")).st_ino, statusOf(folder_.path("old.xml")).st_ino) << error;
        std::filesystem::remove(folder_.path("old.xml"));
    }
}

TEST_F(InjectedFaults, FolderThatIsNotSynchronisedLeavesTheNewFileAndIsTold) {
    for (const std::string& old : kOlder) {
        for (const Command& faults : {Command{"fsync:error=EIO"}, {"linkat:error=EPERM", "fsync:error=EIO"}}) {
            if (faults.size() == 1 || old.empty()) { // made under its own name, because a temporary file cannot get it
                prepare(old);
                expectEnd(runWith(faults), 1, notCertain("out.xml", "Input/output error"));
                expectOutput(expected_);
            }
        }
    }
}

TEST_F(InjectedFaults, FolderThatCannotBeReadIsSynchronisedWithItsFileSystem) {
    REQUIRE_PRIVILEGE(isRoot(), "root");
    prepareForOtherUsers();
    permit("out", 0333);
    for (int time = 0; time < 2; ++time) {
        expectEnd(runWith({"syncfs:error=EIO"}, "out.xml", kAsOtherUser), 1,
                  notCertain("out.xml", "Input/output error"));
        expectOutput(expected_);
    }
}

TEST_F(InjectedFaults, InputThatCannotBeReadIsAnError) {
    const std::string input = folder_.path("in.xml");
    expectEnd(runWith({"read:error=EIO"}, "out.xml", {"-P", std::filesystem::canonical(input)}), 1,
              "Error parsing field definition file: " + input + " could not be opened\n");
    expectOutput("");
}
