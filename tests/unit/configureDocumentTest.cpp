#include "configureDocument.h"

#include "PosConfig.h"
#include "ProcessWideState.h"
#include "Program.h"
#include "fieldDefinition.h"
#include "thrown.h"
#include "xml.h"

using namespace pos;

namespace {

/** The embedded configuration, and documents in memory. */
class ConfigureDocument : public ProcessWideState {
protected:
    static QDomDocument configuredInMemory(const std::string& text, const Estimates& estimates = {}) {
        QDomDocument document = parseDocument(text);
        configureDocument(PosConfig(":/configure.xml", PosConfig::XML), document, estimates);
        return document;
    }
};

} // namespace

TEST_F(ConfigureDocument, MakesInMemoryWhatTheProgramWrites) {
    const std::string document = documentWithFields({ordinaryFieldXml(), secondFieldXml()});
    EXPECT_EQ(treeText(configuredInMemory(document)), treeText(configured(document)));
}

TEST_F(ConfigureDocument, TakesEstimatesAsTheProgramDoes) {
    const std::string document = documentWithConditions(R"(ha="x")");
    Estimates estimates;
    estimates.epoch = 2020.5;
    estimates.hourAngle = 1.5;
    estimates.pressure = 700.0;
    EXPECT_EQ(treeText(configuredInMemory(document, estimates)),
              treeText(configured(document, {"--epoch", "2020.5", "--ha", "1.5", "--pressure", "700"})));
    estimates.zenithDistanceLimit = 0.0;
    EXPECT_EQ(messageOf([&] { configuredInMemory(document, estimates); }), "field is below the horizon limit");
}

TEST_F(ConfigureDocument, TellsABadHourAngleByATypeOfItsOwn) {
    // No document reaches the date of the other such type, see EpochAndHourAngleTest.cpp.
    const std::string document = documentWithConditions(R"(epoch="2024.5" ha="x")");
    EXPECT_EQ(messageOf<BadHourAngle>([&] { configuredInMemory(document); }), "Bad hour angle in XML");
}
