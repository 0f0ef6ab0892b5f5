#ifndef POS_TESTS_VEKOFIELD_H
#define POS_TESTS_VEKOFIELD_H

#include "Field.h"
#include "ProcessWideState.h"
#include "TestPointing.h"
#include "Veko.h"
#include "VekoXML.h"
#include "xml.h"

#include <memory>
#include <string>

/** A bundle of ten fibres of every kind, in a document order of its own. */
inline std::string tenFibres() {
    return "<fibre id='304' pos_x='0' pos_y='0' fibre_name='C14' status='enabled'/>"
           "<fibre id='101' pos_x='-1' pos_y='0' fibre_name='1A' status='enabled'/>"
           "<fibre id='102' pos_x='0' pos_y='3' fibre_name='S01' status='enabled'/>"
           "<fibre id='103' pos_x='1' pos_y='0' fibre_name='2B' status='disabled'/>"
           "<fibre id='104' pos_x='-3' pos_y='0' fibre_name='S02' status='broken'/>"
           "<fibre id='105' pos_x='0' pos_y='-3' fibre_name='sky'/>"
           "<fibre id='200' pos_x='0' pos_y='0.5' fibre_name='C13' status='no such word'/>"
           "<fibre id='305' pos_x='0' pos_y='-0.5' fibre_name='3C' status='absent'/>"
           "<fibre id='400' pos_x='0.5' pos_y='0.5' fibre_name='2S' status='no prism'/>"
           "<fibre id='500' pos_x='2' pos_y='-1' fibre_name='12A' status='enabled'/>";
}

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
