#include "Instrument.h"

#include "Field.h"
#include "LimitsCalc.h"
#include "PosConfig.h"
#include "TelescopeConfig.h"
#include "VekoXML.h"

namespace pos {

Veko& Instrument::pointedVeko(const Field& field, const Conditions& conditions) {
    if (telescope_) {
        start_->putInForce();
        start_->setConditions(conditions);
        start_->setFieldCentre(field.centre, 0.0);
        veko_->focalPlane = *start_;
    } else {
        fibreTargets_.reset();
        placed_.reset();
        veko_ = createVekoXML(config_, config_.getFilename("veko_definition"), field, conditions);
        start_ = veko_->focalPlane;
    }
    return *veko_;
}

const FibreTargets& Instrument::fibreTargets() {
    if (!fibreTargets_) {
        fibreTargets_.emplace(*veko_, config_.get<double>("default_epoch"));
    }
    return *fibreTargets_;
}

void Instrument::requirePlaces(std::uint32_t scienceFibre) {
    const std::pair placing(FocalPlaneCoordinates::rotation(), scienceFibre);
    if (placed_ != placing) {
        fibreTargets().requirePlaces(scienceFibre);
        placed_ = placing;
    }
}

LimitsCalc Instrument::limits(double largestZenithDistance) {
    if (!telescope_) {
        telescope_ = readTelescope(config_);
    }
    return {*telescope_, veko_->focalPlane, largestZenithDistance};
}

} // namespace pos
