#ifndef POS_TESTS_RECORDS_H
#define POS_TESTS_RECORDS_H

#include "CelestialPosition.h"
#include "SkyMask.h"
#include "Target.h"
#include "documents.h"
#include "generators.h"

/** A place whose right ascension is of any turn that catalogues use. */
inline pos::Astrometric anyPlace() {
    return {rad(*between(-180.0, 360.0).as("ra")), rad(*between(-90.0, 90.0).as("dec"))};
}

/** One of zero and a number, since zero motion is left out of documents. */
inline rc::Gen<double> zeroOr(const rc::Gen<double>& number) {
    return rc::gen::weightedOneOf<double>({{1, rc::gen::just(0.0)}, {3, number}});
}

inline pos::ICRS anyCataloguePosition() {
    const pos::Astrometric place = anyPlace();
    return {place.ra,
            place.dec,
            *between(1900.0, 2100.0).as("epoch"),
            *zeroOr(between(-10000.0, 10000.0)).as("pm in ra"),
            *zeroOr(between(-10000.0, 10000.0)).as("pm in dec"),
            *zeroOr(between(-0.01, 0.8)).as("parallax"),
            *zeroOr(between(-500.0, 500.0)).as("radial velocity")};
}

/** A target with an id, which is what a field holds. */
inline pos::Target anyTarget() {
    pos::Target target;
    target.name = *anyText().as("name");
    target.survey = *anyText().as("survey");
    target.position = anyCataloguePosition();
    target.use = *rc::gen::element(pos::TargetUse::T, pos::TargetUse::C, pos::TargetUse::G, pos::TargetUse::S,
                                   pos::TargetUse::E, pos::TargetUse::R);
    target.priority = *between(0.0, 100.0).as("priority");
    target.configid = static_cast<std::uint64_t>(
        *rc::gen::suchThat(wholeBetween(INT32_MIN, INT32_MAX), [](auto id) { return id != 0; }).as("id"));
    target.fibreid =
        static_cast<std::int32_t>(*rc::gen::oneOf(rc::gen::just<std::int64_t>(pos::kNoFibre),
                                                  wholeBetween(INT32_MIN, INT32_MAX), wholeBetween(0, 3019))
                                       .as("fibre"));
    target.automatic = *rc::gen::arbitrary<bool>().as("automatic");
    return target;
}

inline pos::SkyMask anyMask() {
    pos::SkyMask mask;
    mask.centre = anyPlace();
    mask.radius = *between(-1.0, 100.0).as("radius");
    return mask;
}

inline void requireWritten(const pos::Astrometric& actual, const pos::Astrometric& expected) {
    requireAngleToDecimals(actual.ra, expected.ra, 6);
    requireAngleToDecimals(actual.dec, expected.dec, 6);
}

/** Both proper motions are written when one is not 0. The parallax comes back a thousand times as large. */
inline void requireWritten(const pos::ICRS& actual, const pos::ICRS& expected) {
    requireAngleToDecimals(actual.ra, expected.ra, 6);
    requireAngleToDecimals(actual.dec, expected.dec, 6);
    requireToDecimals(actual.epoch, expected.epoch, 2);
    requireToDecimals(actual.pmRa, expected.pmRa, 0);
    requireToDecimals(actual.pmDec, expected.pmDec, 0);
    requireToDecimals(actual.parallax, expected.parallax * 1000, 0);
    requireToDecimals(actual.rv, expected.rv, 0);
}

inline void requireWritten(const pos::Target& actual, const pos::Target& expected) {
    RC_ASSERT(actual.name == expected.name);
    RC_ASSERT(actual.survey == expected.survey);
    requireWritten(actual.position, expected.position);
    RC_ASSERT((actual.use == expected.use));
    RC_ASSERT(actual.priority == expected.priority);
    RC_ASSERT(actual.configid == expected.configid);
    RC_ASSERT(actual.fibreid == expected.fibreid);
    RC_ASSERT(actual.automatic == expected.automatic);
}

/** A position that went through its text twice: nothing moves any more, but for the parallax. */
inline void requireSettled(const pos::ICRS& second, const pos::ICRS& first) {
    RC_ASSERT(second.ra == first.ra);
    RC_ASSERT(second.dec == first.dec);
    RC_ASSERT(second.epoch == first.epoch);
    RC_ASSERT(second.pmRa == first.pmRa);
    RC_ASSERT(second.pmDec == first.pmDec);
    RC_ASSERT(second.parallax == first.parallax * 1000);
    RC_ASSERT(second.rv == first.rv);
}

#endif
