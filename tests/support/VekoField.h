#ifndef POS_TESTS_VEKOFIELD_H
#define POS_TESTS_VEKOFIELD_H

#include "Field.h"
#include "ProcessWideState.h"
#include "TestPointing.h"
#include "Veko.h"
#include "VekoXML.h"
#include "tenFibres.h"
#include "xml.h"

#include <memory>
#include <string>

/** The embedded configuration, and bundles that are pointed at a field near the zenith of the site. */
class VekoField : public ProcessWideState {
protected:
    /** A bundle from its definition, at a position angle in degrees. */
    static std::unique_ptr<pos::Veko> pointed(std::unique_ptr<pos::Veko> veko, double paDeg) {
        veko->focalPlane.setFieldCentre(highField(), pos::degreesToRadians(paDeg));
        veko->focalPlane.setHourAngle(0.0);
        return veko;
    }

    /** The small bundle. @param root attributes "centre_x", "centre_y" and "orientation" */
    static std::unique_ptr<pos::Veko> smallBundle(const std::string& root, double paDeg = 0.0,
                                                  const std::string& fibres = tenFibres()) {
        const QDomElement element = parseElement("<plate_definition " + root + ">" + fibres + "</plate_definition>");
        return pointed(pos::createVekoXML(embeddedConfig(), element, pos::Field(highField()), ordinaryConditions()),
                       paDeg);
    }

    /** The small bundle around the plate's origin. */
    static std::unique_ptr<pos::Veko> centredBundle(double paDeg = 0.0) {
        return smallBundle("centre_x='0' centre_y='0' orientation='0'", paDeg);
    }

    static std::unique_ptr<pos::Veko> shippedBundle(double paDeg = 0.0) {
        return pointed(
            pos::createVekoXML(embeddedConfig(), ":/VEKO.xml", pos::Field(highField()), ordinaryConditions()), paDeg);
    }
};

#endif
