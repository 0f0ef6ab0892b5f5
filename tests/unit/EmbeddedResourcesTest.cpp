#include "EmbeddedResources.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "fileAccess.h"

#include <QDateTime>
#include <QDir>
#include <QResource>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <gmock/gmock.h>

using namespace pos;

using testing::ElementsAre;

namespace {

const char* const kConfigFiles[] = {"configure.xml", "focal_plane_map.xml"};
const char* const kPlateFiles[] = {"PLATE_A.xml", "PLATE_B.xml", "VEKO.xml"};
const char* const kAllFiles[] = {"configure.xml", "focal_plane_map.xml", "PLATE_A.xml", "PLATE_B.xml", "VEKO.xml"};

/** The resource tables' format versions, in the order of registration; without constructor, to be there before all. */
constinit std::array<int, 64> formatVersions{};
constinit std::size_t registrations = 0;
constinit std::size_t registrationsBeforeTests = 0;
constinit bool announceUnregistration = false;

using RegisterFunction = bool (*)(int, const unsigned char*, const unsigned char*, const unsigned char*);

/** The resource system's own function of a name that this file takes over. */
RegisterFunction resourceSystem(const char* symbol) {
    return reinterpret_cast<RegisterFunction>(::dlsym(RTLD_NEXT, symbol));
}

class CountBeforeTests : public testing::Environment {
public:
    void SetUp() override {
        registrationsBeforeTests = registrations;
    }
};

const testing::Environment* const kCountBeforeTests = testing::AddGlobalTestEnvironment(new CountBeforeTests);

QResource resource(const std::string& file) {
    return QResource(QString::fromStdString(":/" + file));
}

/** The bytes of the committed file that is embedded. */
QByteArray sourceOf(const std::string& file) {
    return QByteArray::fromStdString(readBytes(std::string(POS_SOURCE_FOLDER "/pos/positioner/resources/") + file));
}

/** Whether files are served, with the committed bytes; not at all means that no such resource exists. */
template <std::size_t count> void expectServed(const char* const (&files)[count], bool served) {
    for (const char* const file : files) {
        EXPECT_EQ(readFile(std::string(":/") + file), served ? std::optional(sourceOf(file)) : std::nullopt) << file;
    }
}

/** Leaves both collections registered. */
class EmbeddedResourcesTest : public ProcessWideState {
protected:
    void TearDown() override {
        qInitResources_config_files();
        qInitResources_plate_files();
        ProcessWideState::TearDown();
    }
};

} // namespace

// The collections call these two; both note the call and pass it on to the resource system.

bool qRegisterResourceData(int version, const unsigned char* tree, const unsigned char* names,
                           const unsigned char* data) {
    formatVersions.at(registrations++ % formatVersions.size()) = version;
    return resourceSystem("_Z21qRegisterResourceDataiPKhS0_S0_")(version, tree, names, data);
}

bool qUnregisterResourceData(int version, const unsigned char* tree, const unsigned char* names,
                             const unsigned char* data) {
    const bool done = resourceSystem("_Z23qUnregisterResourceDataiPKhS0_S0_")(version, tree, names, data);
    if (announceUnregistration) {
        std::fputs(done ? "unregistered;" : "was not registered;", stderr);
    }
    return done;
}

TEST_F(EmbeddedResourcesTest, BothCollectionsRegisterThemselvesOnceBeforeMain) {
    EXPECT_EQ(registrationsBeforeTests, 2U);
    EXPECT_EQ(formatVersions[0], 2);
    EXPECT_EQ(formatVersions[1], 2);
}

TEST_F(EmbeddedResourcesTest, BothCollectionsUnregisterThemselvesAtExit) {
    EXPECT_EXIT(
        {
            announceUnregistration = true;
            std::exit(0);
        },
        testing::ExitedWithCode(0), "unregistered;unregistered;");
}

TEST_F(EmbeddedResourcesTest, AreTheFiveFilesUnderTheirNames) {
    EXPECT_THAT(QDir(":/").entryList({"*.xml"}, QDir::Files, QDir::Name),
                ElementsAre("PLATE_A.xml", "PLATE_B.xml", "VEKO.xml", "configure.xml", "focal_plane_map.xml"));
}

TEST_F(EmbeddedResourcesTest, PositionerPlatesAloneAreCompressed) {
    for (const char* const file : kAllFiles) {
        const bool compressed = std::string(file).starts_with("PLATE_");
        EXPECT_EQ(resource(file).compressionAlgorithm(),
                  compressed ? QResource::ZlibCompression : QResource::NoCompression)
            << file;
        EXPECT_EQ(resource(file).uncompressedData(), sourceOf(file)) << file;
    }
}

TEST_F(EmbeddedResourcesTest, HoweverOftenACollectionWasRegisteredOrUnregisteredItIsThereOnceOrNotAtAll) {
    for (int repetition = 0; repetition < 2; ++repetition) {
        EXPECT_EQ(qInitResources_config_files(), 1);
        EXPECT_EQ(qInitResources_plate_files(), 1);
    }
    expectServed(kConfigFiles, true);
    expectServed(kPlateFiles, true);
    for (int repetition = 0; repetition < 2; ++repetition) {
        EXPECT_EQ(qCleanupResources_config_files(), 1);
        expectServed(kConfigFiles, false);
        expectServed(kPlateFiles, true);
    }
    EXPECT_EQ(qInitResources_config_files(), 1);
    EXPECT_EQ(qCleanupResources_plate_files(), 1);
    expectServed(kConfigFiles, true);
    expectServed(kPlateFiles, false);
    EXPECT_EQ(qInitResources_plate_files(), 1);
    expectServed(kPlateFiles, true);
}
