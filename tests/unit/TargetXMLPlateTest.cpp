#include "TargetXML.h"

#include "Field.h"
#include "FieldXML.h"
#include "Plate.h"
#include "ProcessWideState.h"
#include "pointing.h"
#include "xml.h"

#include <gtest/gtest.h>
#include <limits>
#include <memory>

using namespace pos;

namespace {

/** A plate whose pointing is at the zenith of the site. */
class TargetXMLPlate : public ProcessWideState {
protected:
    void SetUp() override {
        ProcessWideState::SetUp();
        const FocalPlane pointing(embeddedConfig(), PLATE_B, kHighField, 0.0, kWinterNight, 0.0);
        plate_ = std::make_unique<Plate>(Plate{kTime, pointing, {}, {}});
        for (int spaxel = 0; spaxel < 20 * 37; ++spaxel) {
            plate_->spaxels.push_back("spaxel " + std::to_string(spaxel));
        }
        plate_->fibres.assign(1028, {std::numeric_limits<double>::quiet_NaN()});
        plate_->fibres[1008].positionAngle = -kTestPi / 4;
        plate_->fibres[1010].positionAngle = 0.5; // 28.65 degrees
        plate_->fibres[1027].positionAngle = 1.0; // 57.30 degrees
    }

    QDomElement updated(std::int32_t fibreid, const ICRS& position) const {
        const QDomElement element = parseElement("<target note='n' ifu_pa='old' ifu_spaxel='old'/>");
        Target target;
        target.fibreid = fibreid;
        target.position = position;
        updateTargetXML(target, element, plate_.get());
        return element;
    }

    static constexpr double kTime = 58941.25;
    static constexpr ICRS kPosition{2.6183, 0.5241, 2015.5, 120.0, -300.0, 0.1, 20.0};
    std::unique_ptr<Plate> plate_;
};

} // namespace

TEST_F(TargetXMLPlate, WritesThePlatePositionAtTheObservationTimeWithThreeDecimals) {
    const PlateCoordinates expected = plateOf(plate_->focalPlane, kTime, kPosition);
    // The pointing's own date differs, and gives another position.
    const PlateCoordinates atPointing = plateOf(plate_->focalPlane, plate_->focalPlane.date(), kPosition);
    ASSERT_NE(fixedPointText(expected.x, 3), fixedPointText(atPointing.x, 3));
    for (std::int32_t fibreid : {kNoFibre, 5, 1010}) {
        const QDomElement element = updated(fibreid, kPosition);
        EXPECT_EQ(attributeText(element, "targx"), fixedPointText(expected.x, 3));
        EXPECT_EQ(attributeText(element, "targy"), fixedPointText(expected.y, 3));
    }
}

TEST_F(TargetXMLPlate, AFibreOutsideTheMiniBundlesGetsNoSpaxel) {
    for (std::int32_t fibreid : {kNoFibre, -1010, 0, 1007}) {
        const QDomElement element = updated(fibreid, kPosition);
        EXPECT_EQ(attributeText(element, "ifu_spaxel"), "old");
        EXPECT_EQ(attributeText(element, "ifu_pa"), "old");
        EXPECT_EQ(attributeText(element, "fibreid"), fibreid < 0 ? "(absent)" : std::to_string(fibreid));
    }
}

TEST_F(TargetXMLPlate, AFibreOfAMiniBundleGetsItsSpaxelAndTheBundlesPositionAngle) {
    struct Case {
        std::int32_t fibreid;
        const char* written;
        const char* spaxel;
        const char* positionAngle;
    };
    // Bundle n from 0, fibre k from 1: the spaxel is 37 n + k - 1. The central fibre is number 19.
    for (const Case& c : {Case{1008, "1119", "spaxel 18", "-45.0"}, Case{1010, "1319", "spaxel 92", "28.6"},
                          Case{1027, "3019", "spaxel 721", "57.3"}, Case{1319, "1319", "spaxel 92", "28.6"},
                          Case{1101, "1101", "spaxel 0", "-45.0"}, Case{1137, "1137", "spaxel 36", "-45.0"},
                          Case{1301, "1301", "spaxel 74", "28.6"}, Case{3037, "3037", "spaxel 739", "57.3"}}) {
        const QDomElement element = updated(c.fibreid, kPosition);
        EXPECT_EQ(attributeText(element, "fibreid"), c.written);
        EXPECT_EQ(attributeText(element, "ifu_spaxel"), c.spaxel);
        EXPECT_EQ(attributeText(element, "ifu_pa"), c.positionAngle);
        EXPECT_EQ(attributeText(element, "note"), "n");
    }
}

TEST_F(TargetXMLPlate, UpdatingAFieldHandsThePlateToEveryTarget) {
    const std::string position = "targra='150.010000' targdec='30.020000' ";
    const QDomElement field =
        parseElement("<field><target configid='2' fibreid='7' " + position +
                     "/><group><target configid='3' fibreid='1010' " + position + "/></group></field>");
    const auto record = createFieldXML(field);
    updateFieldXML(*record, field, plate_.get());
    EXPECT_NE(attributeText(field.firstChildElement(), "targx"), "(absent)");
    EXPECT_EQ(attributeText(field.lastChildElement().firstChildElement(), "ifu_spaxel"), "spaxel 92");
}
