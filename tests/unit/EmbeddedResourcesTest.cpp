#include "EmbeddedResources.h"
#include "PosConfig.h"
#include "ProcessWideState.h"
#include "TemporaryFolder.h"
#include "fileAccess.h"
#include "thrown.h"
#include "xml.h"
#include "xmlStructure.h"

#include <QDateTime>
#include <QDir>
#include <QResource>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <map>

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

std::map<std::string, std::string> attributesOf(const QDomElement& element) {
    std::map<std::string, std::string> attributes;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i) {
        attributes[map.item(i).nodeName().toStdString()] = map.item(i).nodeValue().toStdString();
    }
    return attributes;
}

int countOfFibres(const QDomElement& plate) {
    int count = 0;
    for (QDomElement e = plate.firstChildElement("fibre"); !e.isNull(); e = e.nextSiblingElement("fibre")) {
        ++count;
    }
    return count;
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

TEST_F(EmbeddedResourcesTest, TablesAreOfFormatVersion2) {
    const std::size_t before = registrations;
    qInitResources_config_files();
    qInitResources_plate_files();
    ASSERT_EQ(registrations, before + 2);
    EXPECT_EQ(formatVersions[before % formatVersions.size()], 2);
    EXPECT_EQ(formatVersions[(before + 1) % formatVersions.size()], 2);
    // The times that version 1 does not hold are served.
    for (const char* const file : kAllFiles) {
        EXPECT_TRUE(resource(file).lastModified().isValid()) << file;
    }
}

TEST_F(EmbeddedResourcesTest, AreTheFiveFilesUnderTheirNames) {
    EXPECT_THAT(QDir(":/").entryList({"*.xml"}, QDir::Files, QDir::Name),
                ElementsAre("PLATE_A.xml", "PLATE_B.xml", "VEKO.xml", "configure.xml", "focal_plane_map.xml"));
}

TEST_F(EmbeddedResourcesTest, HoldTheCommittedFilesToTheByte) {
    for (const char* const file : kAllFiles) {
        const QByteArray source = sourceOf(file);
        EXPECT_FALSE(source.isEmpty()) << file;
        EXPECT_EQ(readFile(std::string(":/") + file), source) << file;
        EXPECT_EQ(resource(file).uncompressedSize(), source.size()) << file;
    }
    EXPECT_EQ(resource("configure.xml").uncompressedSize(), 3802);
}

TEST_F(EmbeddedResourcesTest, PositionerPlatesAloneAreCompressed) {
    for (const char* const file : {"PLATE_A.xml", "PLATE_B.xml"}) {
        EXPECT_EQ(resource(file).compressionAlgorithm(), QResource::ZlibCompression) << file;
        EXPECT_LT(resource(file).size(), resource(file).uncompressedSize()) << file;
        EXPECT_EQ(resource(file).uncompressedData(), sourceOf(file)) << file;
    }
    for (const char* const file : {"configure.xml", "focal_plane_map.xml", "VEKO.xml"}) {
        EXPECT_EQ(resource(file).compressionAlgorithm(), QResource::NoCompression) << file;
        EXPECT_EQ(resource(file).size(), sourceOf(file).size()) << file;
    }
}

TEST_F(EmbeddedResourcesTest, FocalPlaneMapHoldsItsFigures) {
    const QDomElement root = loadXmlFile(":/focal_plane_map.xml").documentElement();
    EXPECT_EQ(root.tagName(), "focal_plane_map");
    EXPECT_EQ(attributesOf(root),
              (std::map<std::string, std::string>{{"datamver", "8.00"}, {"focal_length", "11724.24"}}));
    const QDomElement axes = root.firstChildElement("optical_axis");
    for (const char* const plate : {"PLATE_A", "PLATE_B", "VEKO"}) {
        EXPECT_EQ(attributesOf(axes.firstChildElement(plate)),
                  (std::map<std::string, std::string>{{"x0", "0.0"}, {"y0", "0.0"}, {"r0", "0.0"}}))
            << plate;
    }
    EXPECT_EQ(
        attributesOf(root.firstChildElement("distortion_coefficients")),
        (std::map<std::string, std::string>{{"c1", "202.841"}, {"c3", "3.0191"}, {"c5", "-0.0995944"}, {"c7", "0.0"}}));
}

TEST_F(EmbeddedResourcesTest, DefaultConfigurationIsForTheDataModelOfAllFiles) {
    const QDomElement root = loadXmlFile(":/configure.xml").documentElement();
    EXPECT_EQ(root.tagName(), "configure");
    EXPECT_EQ(attributesOf(root), (std::map<std::string, std::string>{{"datamver", "8.00"}}));
    for (const char* const file : kAllFiles) {
        const std::string name = std::string(":/") + file;
        EXPECT_EQ(loadXmlFile(name).documentElement().attribute("datamver"), "8.00") << name;
    }
}

TEST_F(EmbeddedResourcesTest, PlatesHoldTheirFibres) {
    EXPECT_EQ(countOfFibres(loadXmlFile(":/PLATE_A.xml").documentElement()), 1008);
    EXPECT_EQ(countOfFibres(loadXmlFile(":/PLATE_B.xml").documentElement()), 1028);
    const QDomElement veko = loadXmlFile(":/VEKO.xml").documentElement();
    EXPECT_EQ(veko.tagName(), "plate_definition");
    EXPECT_EQ(attributesOf(veko),
              (std::map<std::string, std::string>{
                  {"centre_x", "0"}, {"centre_y", "0"}, {"orientation", "0"}, {"datamver", "8.00"}}));
    EXPECT_EQ(countOfFibres(veko), 603);
}

TEST_F(EmbeddedResourcesTest, RegisteringTwiceIsHarmless) {
    for (int repetition = 0; repetition < 2; ++repetition) {
        EXPECT_EQ(qInitResources_config_files(), 1);
        EXPECT_EQ(qInitResources_plate_files(), 1);
    }
    EXPECT_EQ(QDir(":/").entryList({"*.xml"}, QDir::Files).size(), 5);
    EXPECT_EQ(readFile(":/configure.xml"), sourceOf("configure.xml"));
    EXPECT_EQ(readFile(":/VEKO.xml"), sourceOf("VEKO.xml"));
    // However often it was registered, a collection is there once.
    EXPECT_EQ(qCleanupResources_config_files(), 1);
    EXPECT_FALSE(resource("configure.xml").isValid());
}

TEST_F(EmbeddedResourcesTest, CollectionsComeAndGoIndependently) {
    EXPECT_EQ(qCleanupResources_config_files(), 1);
    for (const char* const file : kConfigFiles) {
        EXPECT_EQ(readFile(std::string(":/") + file), std::nullopt) << file;
    }
    for (const char* const file : kPlateFiles) {
        EXPECT_EQ(readFile(std::string(":/") + file), sourceOf(file)) << file;
    }
    EXPECT_EQ(qInitResources_config_files(), 1);
    EXPECT_EQ(qCleanupResources_plate_files(), 1);
    for (const char* const file : kConfigFiles) {
        EXPECT_EQ(readFile(std::string(":/") + file), sourceOf(file)) << file;
    }
    for (const char* const file : kPlateFiles) {
        EXPECT_EQ(readFile(std::string(":/") + file), std::nullopt) << file;
    }
    EXPECT_EQ(qInitResources_plate_files(), 1);
    for (const char* const file : kAllFiles) {
        EXPECT_EQ(readFile(std::string(":/") + file), sourceOf(file)) << file;
    }
}

TEST_F(EmbeddedResourcesTest, UnregisteringTwiceIsHarmless) {
    EXPECT_EQ(qCleanupResources_plate_files(), 1);
    EXPECT_EQ(qCleanupResources_plate_files(), 1);
    EXPECT_EQ(qInitResources_plate_files(), 1);
    EXPECT_EQ(readFile(":/PLATE_B.xml"), sourceOf("PLATE_B.xml"));
}

TEST_F(EmbeddedResourcesTest, ConfigurationStoreNeedsTheCollectionOfConfigurationFiles) {
    qCleanupResources_config_files();
    EXPECT_EQ(messageOf([] { const PosConfig config(":/configure.xml", PosConfig::XML); }),
              "Unable to open config file: :/configure.xml");
    qInitResources_config_files();
    EXPECT_NO_THROW(PosConfig(":/configure.xml", PosConfig::XML));
}

TEST_F(EmbeddedResourcesTest, ConfigurationFileOnDiskCanNameTheEmbeddedBundle) {
    const TemporaryFolder folder;
    const std::string name =
        folder.write("c.xml", "<configure datamver='8.00'><veko_definition>:/VEKO.xml</veko_definition></configure>");
    const PosConfig config(name.c_str(), PosConfig::XML);
    EXPECT_EQ(countOfFibres(loadXmlFile(config.getFilename("veko_definition")).documentElement()), 603);
}
