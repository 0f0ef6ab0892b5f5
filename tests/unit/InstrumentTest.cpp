#include "Instrument.h"

#include "PosConfig.h"
#include "ProcessWideState.h"
#include "configureDocument.h"
#include "fieldDefinition.h"
#include "ownConfiguration.h"
#include "pointing.h"
#include "xml.h"

using namespace pos;

namespace {

class InstrumentTest : public ProcessWideState {
protected:
    static std::string configuredWith(Instrument& instrument) {
        QDomDocument document = parseDocument(FieldDefinition().text());
        saveTargets(placeDocument(instrument, document, {0.0, 100.0, 0.0, 1.1}));
        return treeText(document);
    }
};

} // namespace

TEST_F(InstrumentTest, TwoInTurnMakeWhatEachMakesAlone) {
    const TemporaryFolder folder;
    OwnConfiguration other;
    other.datamver = "8.00";
    other.mapAttributes = R"(focal_length="9000")";
    const PosConfig firstConfig = embeddedConfig();
    const PosConfig secondConfig(other.write(folder).c_str(), PosConfig::XML);
    Instrument first(firstConfig);
    const std::string firstAlone = configuredWith(first);
    Instrument second(secondConfig);
    const std::string secondAlone = configuredWith(second);
    ASSERT_NE(firstAlone, secondAlone);
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(configuredWith(first), firstAlone);
        EXPECT_EQ(configuredWith(second), secondAlone);
    }
}
