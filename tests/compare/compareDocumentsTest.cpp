#include "compareDocuments.h"

#include "ReadDocument.h"
#include "angles.h"
#include "comparisonRecords.h"
#include "fieldDefinition.h"
#include "randomDocuments.h"
#include "xml.h"

#include <array>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace pos;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

using Complex = std::complex<double>;
using Vector = std::array<double, 3>;

constexpr double kArcsec = kPi / 180 / 3600;

/** How often random cases are tried; COMPARE_CASES in the environment asks for more. */
int cases() {
    const char* const asked = std::getenv("COMPARE_CASES");
    return asked == nullptr ? 300 : std::atoi(asked);
}

/** Places like those of the bundle: a disc of 3 mm, and eight sky bundles of 13 mm around it. */
std::vector<Complex> bundle() {
    std::vector<Complex> places;
    for (int i = 0; i < 550; ++i) {
        places.push_back({std::polar(3.0 * std::sqrt((i + 0.5) / 550), 2.39996 * i)});
    }
    for (int i = 0; i < 56; ++i) {
        places.push_back(std::polar(13.0, kPi / 4 * (i % 8)) + std::polar(0.3, kPi / 4 * (i / 8)));
    }
    for (Complex& place : places) {
        place += Complex(1.0, -20.0);
    }
    return places;
}

/** Targets on fibres that moved on the plate. */
std::vector<MovedTarget> movedOnPlate(const std::vector<Complex>& first, const std::vector<Complex>& second) {
    std::vector<MovedTarget> targets;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const PointPair pair{{first[i].real(), first[i].imag()}, {second[i].real(), second[i].imag()}};
        targets.push_back({"", static_cast<std::int64_t>(i + 1), pair, {}});
    }
    return targets;
}

/** What moves places on the plate. */
struct Planted {
    Complex shift;   ///< mm
    double rotation; ///< radians
    double scale;    ///< less 1
};

Complex centroidOf(const std::vector<Complex>& places) {
    Complex sum;
    for (const Complex place : places) {
        sum += place;
    }
    return sum / static_cast<double>(places.size());
}

/** @param noise of each coordinate, mm */
std::vector<Complex> planted(const std::vector<Complex>& places, const Planted& motion, double noise = 0.0) {
    static std::mt19937 random(20270301);
    std::normal_distribution<double> error(0.0, noise > 0 ? noise : 1.0);
    const Complex centroid = centroidOf(places);
    std::vector<Complex> moved;
    for (const Complex place : places) {
        const Complex jitter = noise > 0 ? Complex(error(random), error(random)) : Complex();
        moved.push_back(centroid + motion.shift + std::polar(1 + motion.scale, motion.rotation) * (place - centroid) +
                        jitter);
    }
    return moved;
}

const std::vector<Planted> kMotions = {{{1e-3, 0}, 0, 0},
                                       {{0, -1e-3}, 0, 0},
                                       {{0, 0}, kArcsec, 0},
                                       {{0, 0}, 0, 1e-6},
                                       {{1e-3, 1e-3}, kArcsec, 1e-6},
                                       {{-1e-3, 2e-3}, -3 * kArcsec, 5e-6},
                                       {{0.2, -0.1}, kPi / 3, -0.02},
                                       {{0, 0}, 3, 0}};

Vector cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/** Rodrigues' rotation of a vector about an axis of length 1. */
Vector rotated(const Vector& v, const Vector& axis, double angle) {
    const Vector across = cross(axis, v);
    const double along = axis[0] * v[0] + axis[1] * v[1] + axis[2] * v[2];
    Vector result{};
    for (std::size_t i = 0; i < 3; ++i) {
        result[i] = v[i] * std::cos(angle) + across[i] * std::sin(angle) + axis[i] * along * (1 - std::cos(angle));
    }
    return result;
}

Astrometric placeOf(const Vector& v) {
    return {std::atan2(v[1], v[0]), std::atan2(v[2], std::hypot(v[0], v[1]))};
}

/**
 * A disc of 45 arcsec about a place, which is scaled, turned from north through east, and carried along a great circle.
 *
 * @param direction of the great circle, from north through east
 */
std::vector<MovedTarget> movedOnSky(double ra, double dec, double distance, double direction, double turn,
                                    double scale) {
    const Vector middle = {std::cos(dec) * std::cos(ra), std::cos(dec) * std::sin(ra), std::sin(dec)};
    const Vector east = {-std::sin(ra), std::cos(ra), 0};
    const Vector north = cross(middle, east);
    const auto at = [&](double radius, double angle) {
        Vector towards{};
        for (std::size_t i = 0; i < 3; ++i) {
            towards[i] = north[i] * std::cos(angle) + east[i] * std::sin(angle);
        }
        return rotated(middle, cross(middle, towards), radius);
    };
    Vector axis{};
    for (std::size_t i = 0; i < 3; ++i) {
        axis[i] = east[i] * std::cos(direction) - north[i] * std::sin(direction);
    }
    std::vector<MovedTarget> targets;
    for (int i = 0; i < 60; ++i) {
        const double radius = 45 * kArcsec * std::sqrt((i / 6 + 1) / 10.0);
        const double angle = kPi / 3 * (i % 6) + 0.3 * (i / 6);
        const Vector second = rotated(at(radius * (1 + scale), angle + turn), axis, -distance);
        targets.push_back({"", i + 1, {}, std::pair(placeOf(at(radius, angle)), placeOf(second))});
    }
    return targets;
}

/** A document of one field with these targets. */
QDomDocument documentOf(const std::string& targets) {
    return parseDocument(documentWithFields({fieldXml(targets)}));
}

Comparison compared(const std::string& first, const std::string& second, const CompareOptions& options = {}) {
    return compareDocuments(documentOf(first), documentOf(second), options);
}

/** What a comparison names, with the number of the field. */
std::vector<std::string> foundIn(const Comparison& comparison) {
    std::vector<std::string> found;
    for (const Difference& difference : comparison.differences) {
        found.push_back(difference.place);
    }
    for (const FieldComparison& field : comparison.fields) {
        const std::string name = "field " + std::to_string(field.number) + '/';
        for (const auto& distances : {plateDistances(field.fibres), skyDistances(field.fibres)}) {
            if (distances && distances->moved > 0) {
                found.push_back(name + distances->worst.name);
                EXPECT_EQ(distances->moved, 1);
            }
        }
        for (const auto& alone : {field.onlyInFirst, field.onlyInSecond}) {
            for (const std::string& target : alone) {
                found.push_back(name + target);
            }
        }
    }
    return found;
}

std::string target(const std::string& attributes) {
    return "<target targra=\"10.000000\" targdec=\"20.000000\" " + attributes + "/>";
}

} // namespace

TEST(PlateFit, FindsWhatWasPlanted) {
    const std::vector<Complex> places = bundle();
    for (const Planted& motion : kMotions) {
        const auto fit = plateFit(movedOnPlate(places, planted(places, motion)));
        ASSERT_TRUE(fit);
        EXPECT_NEAR(fit->shift.x, motion.shift.real(), 0.01 * std::abs(motion.shift) + 1e-12);
        EXPECT_NEAR(fit->shift.y, motion.shift.imag(), 0.01 * std::abs(motion.shift) + 1e-12);
        EXPECT_NEAR(fit->rotation, motion.rotation, 0.01 * std::abs(motion.rotation) + 1e-12);
        EXPECT_NEAR(fit->scale, motion.scale, 0.01 * std::abs(motion.scale) + 1e-12);
        EXPECT_LT(fit->residualMax, 1e-12);
    }
}

TEST(PlateFit, FindsWhatWasPlantedUnderNoiseToTheNoisesOwnLimit) {
    const std::vector<Complex> places = bundle();
    const Complex centroid = centroidOf(places);
    double squares = 0.0;
    for (const Complex place : places) {
        squares += std::norm(place - centroid);
    }
    const auto count = static_cast<double>(places.size());
    constexpr double kSigmas = 5; // none of the few thousand numbers is farther away
    for (const double noise : {1e-5, 1e-4, 1e-3}) {
        for (int i = 0; i < cases() / 10; ++i) {
            for (const Planted& motion : kMotions) {
                const auto fit = plateFit(movedOnPlate(places, planted(places, motion, noise)));
                ASSERT_TRUE(fit);
                const double limit = kSigmas * noise / std::sqrt(count);
                const double limitOfTurn = kSigmas * noise / std::sqrt(squares);
                EXPECT_NEAR(fit->shift.x, motion.shift.real(), limit);
                EXPECT_NEAR(fit->shift.y, motion.shift.imag(), limit);
                EXPECT_NEAR(fit->rotation, motion.rotation, limitOfTurn / (1 + motion.scale));
                EXPECT_NEAR(fit->scale, motion.scale, limitOfTurn);
                EXPECT_NEAR(fit->residualRms, noise * std::sqrt(2.0), 0.15 * noise);
            }
        }
    }
}

TEST(PlateFit, OfOneFibreIsItsShift) {
    const auto fit = plateFit(movedOnPlate({{1, 2}}, {{1.5, 1}}));
    ASSERT_TRUE(fit);
    EXPECT_EQ(std::pair(fit->shift.x, fit->shift.y), std::pair(0.5, -1.0));
    EXPECT_EQ(fit->rotation, 0.0);
    EXPECT_EQ(fit->scale, 0.0);
    EXPECT_FALSE(plateFit({}));
}

TEST(PlateFit, OfFibresAtOnePlaceIsTheirShift) {
    for (const std::size_t count : {7U, 603U}) {
        const auto at = [count](Complex place) { return std::vector(count, place); };
        const auto fit = plateFit(movedOnPlate(at({0.1, 0.7}), at({0.3, 0.2})));
        ASSERT_TRUE(fit);
        EXPECT_NEAR(fit->shift.x, 0.2, 1e-12);
        EXPECT_NEAR(fit->shift.y, -0.5, 1e-12);
        EXPECT_EQ(fit->rotation, 0.0);
        EXPECT_EQ(fit->scale, 0.0);
    }
}

TEST(SkyFit, FindsWhatWasPlantedEverywhereOnTheSky) {
    for (const double decDeg : {0.0, -35.0, 69.0, 89.99, 90.0, -90.0}) {
        for (const double raDeg : {0.0, 123.0, 359.999}) {
            for (const auto& [distanceDeg, turn, scale] : {std::tuple(1 / 3600.0, 0.0, 0.0),
                                                           {0.0, kArcsec, 0.0},
                                                           {0.0, 0.0, 1e-6},
                                                           {40.0, 60 * kArcsec, 1e-4},
                                                           {0.01, -kArcsec, 1e-6},
                                                           {120.0, 0.0, 0.0}}) {
                SCOPED_TRACE(testing::Message() << raDeg << ' ' << decDeg << ' ' << distanceDeg << ' ' << turn);
                constexpr double kDirection = 2.0;
                const double distance = degreesToRadians(distanceDeg);
                const auto fit = skyFit(
                    movedOnSky(degreesToRadians(raDeg), degreesToRadians(decDeg), distance, kDirection, turn, scale));
                ASSERT_TRUE(fit);
                EXPECT_NEAR(fit->rotation, turn, 0.01 * std::fabs(turn) + 1e-9);
                EXPECT_NEAR(fit->scale, scale, 0.01 * std::fabs(scale) + 1e-10);
                EXPECT_NEAR(std::hypot(fit->shift.x, fit->shift.y), distance, 1e-12);
                // At a pole the north depends on the right ascension that rounding leaves to the middle.
                if (std::fabs(decDeg) < 90) {
                    EXPECT_NEAR(fit->shift.x, distance * std::cos(kDirection), 1e-10);
                    EXPECT_NEAR(fit->shift.y, distance * std::sin(kDirection), 1e-10);
                }
                EXPECT_LT(fit->residualMax, 1e-12);
            }
        }
    }
}

TEST(SkyDistances, AreTrueAngles) {
    const auto distance = [](double ra, double dec, double otherRa, double otherDec) {
        const Astrometric place{degreesToRadians(ra), degreesToRadians(dec)};
        const Astrometric other{degreesToRadians(otherRa), degreesToRadians(otherDec)};
        return skyDistances({{"", 1, {}, std::pair(place, other)}})->greatest;
    };
    EXPECT_EQ(distance(0, 20, 360, 20), 0.0);
    EXPECT_EQ(distance(17, 90, 200, 90), 0.0);
    EXPECT_NEAR(distance(359.9999, 0, 0.0001, 0), degreesToRadians(0.0002), 1e-15);
    EXPECT_NEAR(distance(10, 60, 10.0001, 60), degreesToRadians(0.00005), 1e-15);
    EXPECT_NEAR(distance(0, 89.9, 180, 89.9), degreesToRadians(0.2), 1e-15);
    EXPECT_NEAR(distance(0, 30, 180, -30), kPi, 1e-7);
    EXPECT_TRUE(std::isnan(distance(std::nan(""), 20, 0, 20)));
}

TEST(SkyPairs, AreTheSameWhereOnlyRoundingTellsThemApart) {
    const std::pair fullTurn(Astrometric{0, 0.3}, Astrometric{2 * kPi, 0.3});
    const std::pair pole(Astrometric{1, kPi / 2}, Astrometric{4, kPi / 2});
    for (const auto& [first, second] : {fullTurn, pole}) {
        const Astrometric neighbour{first.ra, first.dec - 0.001};
        const auto pairs =
            skyPairs({{"", 1, {}, std::pair(first, second)}, {"", 2, {}, std::pair(neighbour, neighbour)}});
        ASSERT_TRUE(pairs);
        EXPECT_EQ(pairs->at(0).first.x, pairs->at(0).second.x);
        EXPECT_EQ(pairs->at(0).first.y, pairs->at(0).second.y);
    }
}

TEST(IsWithin, AStepAsLongAsTheToleranceIs) {
    for (int i = 0; i < 1000; ++i) {
        const double x = 0.037 * i;
        const double dec = degreesToRadians(0.037 * i);
        const MovedTarget target{"", 1, PointPair({x, 1}, {x + 0.001, 1}),
                                 std::pair(Astrometric{2, dec}, Astrometric{2, dec + 0.004 * kArcsec})};
        EXPECT_EQ(plateDistances({target}, 0.001)->moved, 0) << i;
        EXPECT_EQ(plateDistances({target}, 0.00099999)->moved, 1) << i;
        EXPECT_EQ(skyDistances({target}, 0.004 * kArcsec)->moved, 0) << i;
    }
}

TEST(CompareDocuments, AnotherFormIsNoDifference) {
    constexpr unsigned kSeed = 20270302;
    RandomDocuments documents(kSeed);
    for (int i = 0; i < cases(); ++i) {
        const QDomDocument document = documents.make();
        const QByteArray bytes = documents.writtenAnew(document);
        const ReadDocument again = readDocument(bytes, "again");
        ASSERT_FALSE(again.fault) << again.faultMessage() << '\n' << bytes.toStdString();
        const Comparison comparison = compareDocuments(document, again.parsed.document, {});
        ASSERT_THAT(foundIn(comparison), IsEmpty()) << "case " << i << ", seed " << kSeed << '\n'
                                                    << bytes.toStdString();
        ASSERT_TRUE(comparison.isSame);
    }
}

TEST(CompareDocuments, ASingleChangeIsNamedAtItsTarget) {
    constexpr unsigned kSeed = 20270303;
    RandomDocuments documents(kSeed);
    for (int i = 0; i < cases(); ++i) {
        const QDomDocument document = documents.make();
        QDomDocument other = document.cloneNode().toDocument();
        const RandomDocuments::Change change = documents.change(other);
        SCOPED_TRACE(testing::Message() << "case " << i << ", seed " << kSeed << ": " << change.what << " of field "
                                        << change.field << ' ' << change.before << '\n'
                                        << document.toString().toStdString());
        const Comparison comparison = compareDocuments(document, other, {});
        ASSERT_FALSE(comparison.isSame);
        const std::vector<std::string> found = foundIn(comparison);
        ASSERT_FALSE(found.empty());
        const std::string field = change.field == 0 ? "" : "field " + std::to_string(change.field) + '/';
        if (change.element == "target") {
            ASSERT_THAT(found, Contains(field + change.before));
        } else if (!change.element.empty()) {
            ASSERT_THAT(found, Contains(MatchesRegex(field + "(.*/)?" + change.element + "( [0-9]+)?")));
        }
        const auto isAt = [&](const std::string& place, const std::string& target) {
            const bool isInIt = place.starts_with(target.empty() ? field : field + target + '/');
            return (isInIt && place.ends_with(change.attribute)) || (!target.empty() && place == field + target);
        };
        for (const std::string& place : found) {
            ASSERT_TRUE(isAt(place, change.before) || (!change.after.empty() && isAt(place, change.after))) << place;
        }
    }
}

TEST(CompareDocuments, ATextIsTheSameInOnePieceAndInSeveral) {
    const auto noted = [](const std::string& content) { return "<note>" + content + "</note>"; };
    for (const char* same : {"a<!-- x -->b c", "<![CDATA[a]]>b c", "\n ab<?x?> c "}) {
        EXPECT_TRUE(compared(noted("ab c"), noted(same)).isSame) << same;
    }
    for (const char* other : {"ab  c", "a<b/>b c", "abc"}) {
        EXPECT_FALSE(compared(noted("ab c"), noted(other)).isSame) << other;
    }
}

TEST(CompareDocuments, FormsOfNumbersAreNoDifference) {
    const std::string first = target(R"(fibreid="1" targx="1.50" targprio="1" targpmra="0" ifu_pa="1e1")");
    const std::string second = target(R"(targpmra="0.000" ifu_pa="10" targprio="1.0" targx="1.5" fibreid="1")");
    EXPECT_TRUE(compared(first, second).isSame);
    // Names and versions are texts, and so is what no document needs to have.
    EXPECT_FALSE(compared(target(R"(fibreid="1" targname="1")"), target(R"(fibreid="1" targname="1.0")")).isSame);
    EXPECT_FALSE(compared(target(R"(fibreid="1" mine="1")"), target(R"(fibreid="1" mine="1.0")")).isSame);
    const auto ofVersion = [](const std::string& version) {
        return parseDocument(documentWithObservation("datamver=\"" + version + "\""));
    };
    EXPECT_FALSE(compareDocuments(ofVersion("8.00"), ofVersion("8.0"), {}).isSame);
}

TEST(CompareDocuments, TargetsAreMatchedByFibreThenConfigidThenName) {
    const std::string first = target(R"(fibreid="1" automatic="1" targname="A")") +
                              target(R"(configid="7" targname="B")") + target(R"(configid="0" targname="C")") +
                              target(R"(targname="D")") + target(R"(targuse="G")");
    const std::string second = target(R"(targuse="G")") + target(R"(configid="0" targname="D")") +
                               target(R"(targname="C")") + target(R"(configid="7" targname="E")") +
                               target(R"(fibreid="-1" automatic="1" targname="A")") +
                               target(R"(fibreid="2" automatic="1" targname="A")");
    const Comparison comparison = compared(first, second);
    EXPECT_THAT(foundIn(comparison), ElementsAre("field 1/fibre 1/fibreid", "field 1/B/targname", "field 1/C/configid",
                                                 "field 1/D/configid", "field 1/fibre 2"));
    EXPECT_EQ(comparison.fields.at(0).matched, 5U);
    EXPECT_THAT(comparison.fields.at(0).onlyInSecond, ElementsAre("fibre 2"));
}

TEST(CompareDocuments, ATargetMadeByARunIsNotMatchedByTheNameThatItInherited) {
    const Comparison comparison =
        compared(target(R"(targname="A")"),
                 target(R"(fibreid="2" automatic="1" targname="A")") + target(R"(fibreid="304" targname="A")"));
    EXPECT_THAT(comparison.fields.at(0).onlyInSecond, ElementsAre("fibre 2"));
    EXPECT_THAT(foundIn(comparison), ElementsAre("field 1/A/fibreid", "field 1/fibre 2"));
}

TEST(CompareDocuments, ATargetInAnotherGroupIsADifference) {
    const Comparison comparison = compared("<group/><group>" + target(R"(targname="A")") + "</group>",
                                           "<group>" + target(R"(targname="A")") + "</group><group/>");
    ASSERT_THAT(foundIn(comparison), ElementsAre("field 1/A"));
    EXPECT_EQ(comparison.differences.at(0).first, "field 1/group 2");
    EXPECT_EQ(comparison.differences.at(0).second, "field 1/group 1");
    const Comparison nested = compared("<group/><group><group>" + target(R"(targname="A")") + "</group></group>",
                                       "<group>" + target(R"(targname="A")") + "<group/></group><group/>");
    EXPECT_EQ(nested.differences.back().first, "field 1/group 2/group 1");
}

TEST(CompareDocuments, AFieldInAFieldIsAFieldOfItsOwn) {
    const auto around = [](const std::string& inner) {
        return "<field>" + target(inner) + "</field>" + target(R"(targname="A" targprio="1")");
    };
    EXPECT_THAT(foundIn(compared(around(R"(targname="B")"), around(R"(targname="C")"))),
                ElementsAre("field 1/B", "field 1/C"));
    const std::string outer = around(R"(targname="B")");
    const Comparison comparison = compared(outer, replaced(outer, "targprio=\"1\"", "targprio=\"2\""));
    ASSERT_THAT(foundIn(comparison), ElementsAre("field 1/A/targprio"));
    EXPECT_EQ(comparison.differences.at(0).field, 1);
}

TEST(CompareDocuments, ATextInTheDocumentElementHasAPlace) {
    EXPECT_THAT(foundIn(compareDocuments(parseDocument("<a>x</a>"), parseDocument("<a>y</a>"), {})), ElementsAre("a"));
}

TEST(CompareDocuments, PlacesWithinTheToleranceAreNoDifference) {
    const std::string fibre = R"(<target fibreid="1" targra="10.000000" targdec="20.000000" targx="1" targy="2"/>)";
    const std::string star = R"(<target targname="A" targra="10.000000" targdec="20.000000" targx="1" targy="2"/>)";
    for (const auto& [from, to] :
         {std::pair("targra=\"10.000000", "targra=\"10.000001"), {"targx=\"1\"", "targx=\"1.001\""}}) {
        for (const std::string& target : {fibre, star}) {
            const std::string other = replaced(target, from, to);
            EXPECT_TRUE(compared(target, other, {1.01e-3, 0.0034 * kArcsec}).isSame);
            EXPECT_FALSE(compared(target, other, {0.99e-3, 0.0033 * kArcsec}).isSame);
        }
    }
    // At 0 and at 360 degrees a field is at the same place.
    const std::string zero =
        replaced(documentOf("").toString().toStdString(), "RA_d=\"150.000000\"", "RA_d=\"0.000000\"");
    EXPECT_TRUE(
        compareDocuments(parseDocument(zero), parseDocument(replaced(zero, "\"0.000000\"", "\"360.000000\"")), {})
            .isSame);
}

TEST(CompareDocuments, AFieldIsMovedBeyondTheNoiseOfTheFibresThatHaveAPlace) {
    std::string others;
    for (int fibre = 5; fibre < 105; ++fibre) {
        others += target("fibreid=\"" + std::to_string(fibre) + '"');
    }
    const auto square = [&](const std::string& x) {
        return target("fibreid=\"1\" targy=\"1\" targx=\"" + x + '"') + target(R"(fibreid="2" targx="-1" targy="1")") +
               target(R"(fibreid="3" targx="-1" targy="-1")") + target(R"(fibreid="4" targx="1" targy="-1")") + others;
    };
    EXPECT_THAT(comparisonSentences(compared(square("1"), square("1.003"))),
                ElementsAre("field 1 has 1 fibre elsewhere, by 3.00 µm (fibre 1)"));
}

TEST(CompareDocuments, OneTargetIsNotToldAsSeveral) {
    EXPECT_THAT(comparisonText(compared(target(R"(targprio="1")"), target(R"(targprio="2")"))),
                testing::HasSubstr("\nField 1: 1 target in both, 0 of them on a fibre\n"));
}

TEST(CompareDocuments, WhatIsIgnoredIsNoDifference) {
    const std::string first =
        R"(<target fibreid="1" targra="1" targdec="2" targx="1" targy="2"><photometry mag="1"/></target>)";
    for (const auto& [from, to, ignored] : {std::tuple("targx=\"1\"", "targx=\"2\"", "targx"),
                                            {"targra=\"1\"", "targra=\"3\"", "targra"},
                                            {"mag=\"1\"", "mag=\"2\"", "mag"},
                                            {"mag=\"1\"", "mag=\"2\"", "photometry"},
                                            {"mag=\"1\"", "mag=\"2\"", "target"},
                                            {"fibreid=\"1\"", "fibreid=\"-1\"", "fibreid"},
                                            {"fibreid=\"1\"", "fibreid=\"2\"", "field"}}) {
        SCOPED_TRACE(ignored);
        const std::string second = replaced(first, from, to);
        EXPECT_FALSE(compared(first, second, {0, 0, {"another"}}).isSame);
        EXPECT_TRUE(compared(first, second, {0, 0, {ignored}}).isSame);
    }
}
