#include "CelestialPositionXML.h"

#include "angles.h"
#include "numberText.h"
#include "xmlKeywords.h"

#include <cmath>
#include <stdexcept>

namespace pos {

namespace {

/** One tenth of an arcsecond in degrees. */
constexpr double kPrecision = 2.777777777777778e-5;
/** Epoch of a catalogue position without one, Julian years. */
constexpr double kDefaultEpoch = 2015.5;
/** Arcseconds to milliarcseconds. */
constexpr double kMilli = 1000;

[[noreturn]] void fail(const std::string& what, const QString& text, const char* end = "'") {
    throw std::runtime_error(what + " '" + text.toStdString() + end);
}

/**
 * Refuses a number that is written with too few decimals.
 *
 * @param prefix beginning of the message
 * @param value the number that the text stands for, degrees
 */
void check_precision(const std::string& prefix, double value, const QString& text) {
    int start = 0;
    while (start < text.size() && text.at(start).isSpace()) {
        ++start;
    }
    int end = start;
    while (end < text.size() && !text.at(end).isSpace()) {
        ++end;
    }
    QString probe = text.mid(start, end - start);
    int exponent = probe.indexOf(QLatin1Char('e'));
    if (exponent < 0) {
        exponent = probe.indexOf(QLatin1Char('E'));
    }
    probe.insert(exponent < 0 ? probe.size() : exponent, QStringLiteral("999"));
    const std::optional<double> probed = numberOf(probe);
    if (!probed) {
        fail(prefix + " is an invalid number", text);
    }
    if (std::fabs(value - *probed) > kPrecision) {
        fail(prefix, text, "' does not have enough precision");
    }
}

/** An attribute in degrees, checked for its precision, in radians. */
double readAngle(const std::string& invalid, const std::string& label, const QString& text) {
    const std::optional<double> degrees = numberOf(text);
    if (!degrees) {
        fail(invalid, text);
    }
    check_precision(label, *degrees, text);
    return degreesToRadians(*degrees);
}

double readCatalogueAngle(const std::string& name, const QDomElement& e, const QString& attribute) {
    const std::string attributeName = attribute.toStdString();
    if (!e.hasAttribute(attribute)) {
        throw std::runtime_error(name + " has no " + attributeName);
    }
    return readAngle(name + " has an invalid " + attributeName, name + " " + attributeName, e.attribute(attribute));
}

/** An optional number, with its name in the message and its value when absent or empty. */
double readOptional(const std::string& name, const QDomElement& e, const QString& attribute, const char* what,
                    double absent) {
    const QString text = e.attribute(attribute);
    if (text.isEmpty()) {
        return absent;
    }
    const std::optional<double> value = numberOf(text);
    if (!value) {
        fail(name + " position has an invalid " + what, text);
    }
    return *value;
}

/** An angle of the plain form; 0 where it is absent or marked as missing. */
double readPlainAngle(const std::string& name, const QDomElement& e, const QString& attribute, const char* what) {
    const QString text = e.attribute(attribute, kMissingValue);
    if (text == kMissingValue) {
        return 0.0;
    }
    return readAngle(name + " has an invalid " + what, name + " " + attribute.toStdString(), text);
}

} // namespace

ICRS createIcrsXML(const std::string& name, const QDomElement& e) {
    ICRS position{};
    position.ra = readCatalogueAngle(name, e, attr::targra);
    position.dec = readCatalogueAngle(name, e, attr::targdec);
    position.epoch = readOptional(name, e, attr::targepoch, "epoch", kDefaultEpoch);
    position.pmRa = readOptional(name, e, attr::targpmra, "proper motion", 0.0);
    position.pmDec = readOptional(name, e, attr::targpmdec, "proper motion", 0.0);
    position.parallax = readOptional(name, e, attr::targparal, "parallax", 0.0);
    position.rv = readOptional(name, e, attr::targrv, "radial velocity", 0.0);
    return position;
}

Astrometric createAstrometricXML(const std::string& name, const QDomElement& e) {
    const double ra = readPlainAngle(name, e, attr::raD, "RA");
    const double dec = readPlainAngle(name, e, attr::decD, "Dec");
    return {ra, dec};
}

void saveCataloguePlaceXML(double ra, double dec, QDomElement e) {
    e.setAttribute(attr::targra, fixedText(radiansToDegrees(ra), 6));
    e.setAttribute(attr::targdec, fixedText(radiansToDegrees(dec), 6));
}

void saveIcrsXML(const ICRS& p, QDomElement e) {
    e.removeAttribute(attr::targra);
    e.removeAttribute(attr::targdec);
    saveCataloguePlaceXML(p.ra, p.dec, e);
    e.setAttribute(attr::targepoch, fixedText(p.epoch, 2));
    if (p.pmRa != 0 || p.pmDec != 0) {
        e.setAttribute(attr::targpmra, fixedText(p.pmRa, 0));
        e.setAttribute(attr::targpmdec, fixedText(p.pmDec, 0));
    }
    if (p.parallax != 0) {
        e.setAttribute(attr::targparal, fixedText(p.parallax * kMilli, 0));
    }
    if (p.rv != 0) {
        e.setAttribute(attr::targrv, fixedText(p.rv, 0));
    }
}

void saveAstrometricXML(const Astrometric& p, QDomElement e) {
    e.setAttribute(attr::raD, fixedText(radiansToDegrees(p.ra), 6));
    e.setAttribute(attr::decD, fixedText(radiansToDegrees(p.dec), 6));
}

} // namespace pos
