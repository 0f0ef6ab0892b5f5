#include "outputRun.h"
#include "ownConfiguration.h"

#include <gtest/gtest.h>

// Runs whose output is one of the files that configure them.

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

class FilesInUse : public OutputRun {
protected:
    void SetUp() override {
        OwnConfiguration configuration;
        configuration.datamver = "8.00";
        arguments_ = {"-c", configuration.write(folder_)};
    }

    void expectRefused(const std::string& output, const std::string& what) const {
        expectEnd(run(output), 1, "The output file " + output + " is the " + what + " in use\n");
    }

    const std::map<std::string, std::string> files_ = {{"configuration file", "conf/own.xml"},
                                                       {"focal-plane map", "conf/data/map.xml"},
                                                       {"bundle definition", "conf/data/bundle.xml"}};
};

} // namespace

TEST_F(FilesInUse, CannotBeTheOutputUnderAnyName) {
    for (const auto& [what, file] : files_) {
        const std::string name = folder_.path(file);
        const std::string before = readBytes(name);
        const struct stat status = statusOf(name);
        fs::create_symlink(name, path("link"));
        fs::create_hard_link(name, path("other.xml"));
        for (const std::string& output : {name, "../" + file, path("link"), std::string("other.xml")}) {
            expectRefused(output, what);
            EXPECT_EQ(readBytes(name), before) << output;
            EXPECT_EQ(statusOf(name).st_ino, status.st_ino) << output;
            EXPECT_EQ(outputs(), Names({"link", "other.xml"})) << output;
            EXPECT_EQ(entriesOf(folder_.path("conf")), Names({"data", "own.xml"})) << output;
            EXPECT_EQ(entriesOf(folder_.path("conf/data")), Names({"bundle.xml", "map.xml"})) << output;
        }
        fs::remove(path("link"));
        fs::remove(path("other.xml"));
    }
}

TEST_F(FilesInUse, AreToldByWhateverNameTheConfigurationIsGiven) {
    fs::create_symlink("../conf/own.xml", path("configuration"));
    // Relative names in a configuration begin at the folder in which its own name lies.
    fs::create_symlink("../conf/data", path("data"));
    arguments_ = {"-c", "configuration"};
    expectRefused("../conf/own.xml", "configuration file");
    expectRefused("configuration", "configuration file");
    expectRefused("../conf/data/map.xml", "focal-plane map");
}

TEST_F(FilesInUse, AreRefusedLastOfAll) {
    const std::string configuration = arguments_.back();
    arguments_.insert(arguments_.end(), {"--horizon_limit", "89"});
    expectEnd(run(configuration), 1, "field is below the horizon limit\n");
}

TEST_F(FilesInUse, AreNoneOfTheSameContentAndNoResources) {
    for (const auto& [what, file] : files_) {
        fs::copy_file(folder_.path(file), path("copy.xml"), fs::copy_options::overwrite_existing);
        expectEnd(run("copy.xml"), 0, "");
        EXPECT_NE(readBytes(path("copy.xml")), readBytes(folder_.path(file))) << what;
    }
    // The names of the embedded files, with folders of such names about.
    arguments_.clear();
    for (const std::string name : {"configure.xml", "focal_plane_map.xml", "VEKO.xml"}) {
        write(":/" + name, "old");
        expectEnd(run("./:/" + name), 0, "");
        EXPECT_EQ(readBytes(path(":/" + name)), expected_);
    }
}
