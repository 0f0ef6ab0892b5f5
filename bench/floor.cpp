/**
 * @file
 * The least that reading and writing a configured document takes when it is done in the plain way: a floor under
 * veko_configure, which must parse, clone, set and write the same, and compute besides. The places are compiled in.
 *
 * usage: floor CONFIGURATION MAP BUNDLE INPUT OUTPUT
 */
#include <QByteArray>
#include <QDomDocument>
#include <QFile>
#include <QString>

namespace {

/** What a target on a fibre gets. */
struct Place {
    const char* spaxel;
    const char* use;
    const char* targetClass;
    int fibreId; ///< negative for a fibre that is not enabled
    int configId;
    double ra;  ///< degrees
    double dec; ///< degrees
    double epoch;
    double x; ///< mm
    double y; ///< mm
    double positionAngle;
};

constexpr int kScienceFibre = 304;

constexpr Place kPlaces[] = {
#include "places.inc"
};

QDomDocument parse(const char* name) {
    QFile file(QString::fromLocal8Bit(name));
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(file.readAll())) {
        qFatal("%s cannot be parsed", name);
    }
    return document;
}

void setPlatePlace(QDomElement& target, const Place& place) {
    target.setAttribute(QStringLiteral("targx"), place.x);
    target.setAttribute(QStringLiteral("targy"), place.y);
    target.setAttribute(QStringLiteral("ifu_pa"), place.positionAngle);
    target.setAttribute(QStringLiteral("ifu_spaxel"), QString::fromLatin1(place.spaxel));
    target.setAttribute(QStringLiteral("configid"), place.configId);
    target.setAttribute(QStringLiteral("fibreid"), place.fibreId);
}

/** Sets what a generated target does not share with the science target, of which it is a copy. */
void setGenerated(QDomElement& target, const Place& place) {
    target.setAttribute(QStringLiteral("targprio"), 1.0);
    target.setAttribute(QStringLiteral("targuse"), QString::fromLatin1(place.use));
    target.setAttribute(QStringLiteral("automatic"), QStringLiteral("1"));
    target.setAttribute(QStringLiteral("cname"), QStringLiteral("%%%"));
    target.setAttribute(QStringLiteral("targcat"), QString());
    target.setAttribute(QStringLiteral("targclass"), QString::fromLatin1(place.targetClass));
    target.setAttribute(QStringLiteral("targprog"), QString());
    target.setAttribute(QStringLiteral("targid"), QString());
    target.setAttribute(QStringLiteral("targparal"), 0.0);
    target.setAttribute(QStringLiteral("targpmra"), 0.0);
    target.setAttribute(QStringLiteral("targpmdec"), 0.0);
    target.setAttribute(QStringLiteral("targra"), QString::number(place.ra, 'f', 6));
    target.setAttribute(QStringLiteral("targdec"), QString::number(place.dec, 'f', 6));
    target.setAttribute(QStringLiteral("targepoch"), QString::number(place.epoch, 'f', 2));
}

void fillField(QDomElement field) {
    QDomElement science = field.firstChildElement(QStringLiteral("target"));
    for (const Place& place : kPlaces) {
        QDomElement target = science;
        if (place.configId != kScienceFibre) {
            target = science.cloneNode().toElement();
            setGenerated(target, place);
            field.appendChild(target);
        }
        setPlatePlace(target, place);
    }
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 6) {
        qFatal("usage: floor CONFIGURATION MAP BUNDLE INPUT OUTPUT");
    }
    parse(argv[1]);
    parse(argv[2]);
    parse(argv[3]);
    const QDomDocument document = parse(argv[4]);
    const QDomElement observation = document.documentElement().firstChildElement(QStringLiteral("observation"));
    for (QDomElement field = observation.firstChildElement(QStringLiteral("fields")).firstChildElement();
         !field.isNull(); field = field.nextSiblingElement()) {
        fillField(field);
    }
    const QByteArray text = document.toByteArray(1);
    QFile output(QString::fromLocal8Bit(argv[5]));
    return output.open(QIODevice::WriteOnly) && output.write(text) == text.size() ? 0 : 1;
}
