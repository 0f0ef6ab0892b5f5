#include "extendedAttributes.h"
#include "outputRun.h"
#include "privilege.h"

#include <gtest/gtest.h>

namespace {

using Names = std::set<std::string>;

/** Runs in which chosen calls of the kernel fail. */
class InjectedFaults : public OutputRun {
protected:
    void SetUp() override {
        ProgramOptions options;
        options.wrapper = tracer("write:error=EIO");
        REQUIRE_PRIVILEGE(runCommand({"true"}, options).status == 0, "strace and the right to trace");
        // The search for leaks traces the program too, which only one can do.
        environment_ = {"ASAN_OPTIONS=detect_leaks=0"};
    }

    /**
     * A command that runs another one with a fault.
     *
     * @param fault "call:error=REASON:when=WHICH"
     * @param file where one is given, only calls that touch it count
     */
    std::vector<std::string> tracer(const std::string& fault, const std::string& file = "") const {
        std::vector<std::string> command = {"strace", "-qq", "-o", folder_.path("trace")};
        if (!file.empty()) {
            command.insert(command.end(), {"-P", std::filesystem::canonical(file)});
        }
        command.insert(command.end(), {"-e", "trace=" + fault.substr(0, fault.find(':')), "-e", "inject=" + fault});
        return command;
    }

    /** A run behind a command that ends in a tracer, whose fault must have happened. */
    ProgramResult runTraced(const std::string& output, const std::vector<std::string>& wrapper) const {
        const ProgramResult result = run(output, wrapper);
        EXPECT_NE(folder_.read("trace").find("(INJECTED)"), std::string::npos) << testing::PrintToString(wrapper);
        return result;
    }
    ProgramResult runWith(const std::string& fault) const {
        return runTraced("out.xml", tracer(fault));
    }
    /** A run over a file that is open as descriptor 9 and therefore overwritten in place. */
    ProgramResult runInPlaceWith(const std::string& fault) const {
        std::vector<std::string> wrapper = {"bash", "-c", "exec \"$0\" \"$@\" 9<>out.xml"};
        const std::vector<std::string> traced = tracer(fault);
        wrapper.insert(wrapper.end(), traced.begin(), traced.end());
        return runTraced("/dev/fd/9", wrapper);
    }
};

struct Fault {
    std::string call;
    std::string error;
    std::string reason;
};

/** Every way in which the content can fail to reach the disk. */
const std::vector<Fault> kLosses = {
    {"write", "ENOSPC", "No space left on device"}, {"write", "EDQUOT", "Disk quota exceeded"},
    {"write", "EIO", "Input/output error"},         {"ftruncate", "EIO", "Input/output error"},
    {"fdatasync", "EIO", "Input/output error"},     {"fdatasync", "ENOSPC", "No space left on device"}};

/** Older contents that are shorter and longer than the output. */
const std::vector<std::string> kOlder = {"old", std::string(500'000, 'o')};

} // namespace

TEST_F(InjectedFaults, LossOfTheContentLeavesNoNewFile) {
    for (const Fault& fault : kLosses) {
        expectEnd(runWith(fault.call + ":error=" + fault.error + ":when=1"), 1, notWritten("out.xml", fault.reason));
        EXPECT_EQ(outputs(), Names()) << fault.call;
    }
}

TEST_F(InjectedFaults, LossOfTheContentLeavesTheOlderFileWhole) {
    write("out.xml", "old");
    for (const Fault& fault : kLosses) {
        expectEnd(runWith(fault.call + ":error=" + fault.error + ":when=1"), 1, notWritten("out.xml", fault.reason));
        EXPECT_EQ(readBytes(path("out.xml")), "old") << fault.call;
        EXPECT_EQ(outputs(), Names({"out.xml"})) << fault.call;
    }
}

TEST_F(InjectedFaults, LossOfTheContentLeavesAFileThatIsOverwrittenInPlaceWhole) {
    for (const std::string& old : kOlder) {
        for (const Fault& fault : kLosses) {
            write("out.xml", old);
            expectEnd(runInPlaceWith(fault.call + ":error=" + fault.error + ":when=1"), 1,
                      notWritten("/dev/fd/9", fault.reason));
            EXPECT_EQ(readBytes(path("out.xml")), old) << fault.call;
            EXPECT_EQ(outputs(), Names({"out.xml"})) << fault.call;
        }
    }
}

TEST_F(InjectedFaults, LossThatLastsSaysThatTheOldContentCouldNotBePutBack) {
    for (const std::string call : {"ftruncate", "fdatasync"}) {
        write("out.xml", "old");
        expectEnd(runInPlaceWith(call + ":error=EIO:when=1+"), 1,
                  notWritten("/dev/fd/9", "Input/output error; its old contents could not be put back"));
    }
}

TEST_F(InjectedFaults, FileThatCannotBeReplacedIsOverwritten) {
    for (const std::string fault :
         {"rename:error=EPERM", "rename:error=EXDEV", "linkat:error=EPERM", "linkat:error=EIO", "fchmod:error=EPERM"}) {
        for (const std::string& old : kOlder) {
            write("out.xml", old);
            permit("out/out.xml", 0640);
            expectEnd(runWith(fault), 0, "");
            EXPECT_EQ(readBytes(path("out.xml")), expected_) << fault;
            EXPECT_EQ(modeOf(path("out.xml")), 0640U) << fault;
            EXPECT_EQ(outputs(), Names({"out.xml"})) << fault;
        }
    }
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
        write("out.xml", "old");
        expectEnd(runWith(fault), 0, "");
        EXPECT_EQ(readBytes(path("out.xml")), expected_) << fault;
        EXPECT_EQ(statusOf(path("out.xml")).st_ino, inode) << fault;
        EXPECT_EQ(attribute(path("out.xml"), "user.a"), "one") << fault;
        EXPECT_EQ(attribute(path("out.xml"), kAccessList), std::nullopt) << fault;
        EXPECT_EQ(outputs(), Names({"out.xml"})) << fault;
    }
}

TEST_F(InjectedFaults, FileSystemWithoutAttributesHasNoneToKeep) {
    write("out.xml", "old");
    for (const std::string error : {"EOPNOTSUPP", "ENOSYS"}) {
        std::filesystem::create_hard_link(path("out.xml"), path("old.xml"));
        std::vector<std::string> faults = tracer("listxattr:error=" + error);
        faults.insert(faults.end(), {"-e", "trace=listxattr,flistxattr", "-e", "inject=flistxattr:error=" + error});
        expectEnd(runTraced("out.xml", faults), 0, "");
        EXPECT_EQ(readBytes(path("out.xml")), expected_) << error;
        EXPECT_NE(statusOf(path("out.xml")).st_ino, statusOf(path("old.xml")).st_ino) << error;
        std::filesystem::remove(path("old.xml"));
    }
}

TEST_F(InjectedFaults, NewFileIsMadeWhereATemporaryOneCannotBe) {
    for (const std::string error : {"EOPNOTSUPP", "EACCES"}) {
        const std::string fault = "openat:error=" + error + ":when=1";
        expectEnd(runTraced("out.xml", tracer(fault, folder_.path("out"))), 0, "");
        EXPECT_EQ(readBytes(path("out.xml")), expected_) << error;
        EXPECT_EQ(outputs(), Names({"out.xml"})) << error;
        std::filesystem::remove(path("out.xml"));
    }
    expectEnd(runWith("linkat:error=EPERM"), 0, "");
    EXPECT_EQ(readBytes(path("out.xml")), expected_);
    EXPECT_EQ(outputs(), Names({"out.xml"}));
}

TEST_F(InjectedFaults, FileWithoutANameIsNotNeeded) {
    write("out.xml", "old");
    const std::vector<std::string> noUnnamedFiles = tracer("openat:error=EOPNOTSUPP:when=1", folder_.path("out"));
    expectEnd(runTraced("out.xml", noUnnamedFiles), 0, "");
    EXPECT_EQ(readBytes(path("out.xml")), expected_);
    EXPECT_EQ(outputs(), Names({"out.xml"}));

    write("out.xml", "old");
    std::vector<std::string> wrapper = limitedTo(8);
    wrapper.insert(wrapper.end(), noUnnamedFiles.begin(), noUnnamedFiles.end());
    expectEnd(runTraced("out.xml", wrapper), 1, notWritten("out.xml", "File too large"));
    EXPECT_EQ(readBytes(path("out.xml")), "old");
    EXPECT_EQ(outputs(), Names({"out.xml"}));
}

TEST_F(InjectedFaults, FolderThatIsNotSynchronisedLeavesTheNewFileAndIsTold) {
    for (const std::string old : {"", "old"}) {
        for (const auto& [error, reason] :
             {std::pair("EIO", "Input/output error"), {"ENOSPC", "No space left on device"}}) {
            if (!old.empty()) {
                write("out.xml", old);
            }
            expectEnd(runWith(std::string("fsync:error=") + error), 1, notCertain("out.xml", reason));
            EXPECT_EQ(readBytes(path("out.xml")), expected_) << error;
            EXPECT_EQ(outputs(), Names({"out.xml"})) << error;
            std::filesystem::remove(path("out.xml"));
        }
    }
    // Made under its own name, because a temporary file cannot get it.
    std::vector<std::string> faults = tracer("linkat:error=EPERM");
    faults.insert(faults.end(), {"-e", "trace=linkat,fsync", "-e", "inject=fsync:error=EIO"});
    expectEnd(runTraced("out.xml", faults), 1, notCertain("out.xml", "Input/output error"));
    EXPECT_EQ(readBytes(path("out.xml")), expected_);
}

TEST_F(InjectedFaults, FolderThatCannotBeSynchronisedIsNoError) {
    for (const std::string error : {"EINVAL", "EOPNOTSUPP", "EROFS"}) {
        expectEnd(runWith("fsync:error=" + error), 0, "");
        EXPECT_EQ(readBytes(path("out.xml")), expected_) << error;
        std::filesystem::remove(path("out.xml"));
    }
}

TEST_F(InjectedFaults, FolderThatCannotBeReadIsSynchronisedWithItsFileSystem) {
    REQUIRE_PRIVILEGE(isRoot(), "root");
    prepareForOtherUsers();
    permit("out", 0333);
    std::vector<std::string> faults = tracer("syncfs:error=EIO");
    faults.insert(faults.end(), {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
    for (int time = 0; time < 2; ++time) {
        expectEnd(runTraced("out.xml", faults), 1, notCertain("out.xml", "Input/output error"));
        EXPECT_EQ(readBytes(path("out.xml")), expected_);
    }
}

TEST_F(InjectedFaults, OwnerThatCannotBeKeptIsNoError) {
    write("out.xml", "old");
    permit("out/out.xml", 0640);
    expectEnd(runWith("fchown:error=EPERM"), 0, "");
    EXPECT_EQ(readBytes(path("out.xml")), expected_);
    EXPECT_EQ(modeOf(path("out.xml")), 0640U);
}

TEST_F(InjectedFaults, InputThatCannotBeReadIsAnError) {
    const std::string input = folder_.path("in.xml");
    expectEnd(runTraced("out.xml", tracer("read:error=EIO", input)), 1,
              "Error parsing field definition file: " + input + " could not be opened\n");
    EXPECT_EQ(outputs(), Names());
}
