#ifndef POS_TESTS_UNIT_VEKOFIELD_H
#define POS_TESTS_UNIT_VEKOFIELD_H

#include "Field.h"
#include "PosConfig.h"
#include "ProcessWideState.h"
#include "Veko.h"
#include "VekoXML.h"
#include "ownConfiguration.h"
#include "pointing.h"
#include "xml.h"

#include <memory>
#include <string>

/** The root attributes of a bundle that is shifted and turned, and of one at the plate's origin. */
inline const std::string kTurnedBundle = "centre_x='5' centre_y='-7' orientation='30'";
inline const std::string kCentredBundle = "centre_x='0' centre_y='0' orientation='0'";

/** Bundles at a field near the zenith of the embedded site. */
class VekoField : public ProcessWideState {
protected:
    /** A bundle as it is read. @param root attributes "centre_x", "centre_y" and "orientation" */
    static std::unique_ptr<pos::Veko> bundle(const std::string& root, const std::string& fibres = tenFibres()) {
        return pos::createVekoXML(pos::PosConfig(":/configure.xml", pos::PosConfig::XML),
                                  parseElement("<plate_definition " + root + ">" + fibres + "</plate_definition>"),
                                  pos::Field(kHighField), kWinterNight);
    }
    /** The same as the field culminates. */
    static std::unique_ptr<pos::Veko> pointedBundle(const std::string& root, double positionAngle = 0.0,
                                                    const std::string& fibres = tenFibres()) {
        auto veko = bundle(root, fibres);
        veko->focalPlane.setFieldCentre(kHighField, positionAngle);
        veko->focalPlane.setHourAngle(0.0);
        return veko;
    }
};

#endif
