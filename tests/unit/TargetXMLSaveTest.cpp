#include "TargetXML.h"

#include "attributeText.h"
#include "thrown.h"
#include "xml.h"

#include <QDomDocument>
#include <gtest/gtest.h>
#include <limits>

using namespace pos;

namespace {

/** A target at 45, -22.5 degrees. */
Target plainTarget() {
    Target target;
    target.position = {3.141592653589793 / 4, -3.141592653589793 / 8, 2016.0, 0.0, 0.0, 0.0, 0.0};
    return target;
}

QDomElement saved(const Target& target) {
    return saveTargetXML(target, parseElement("<field/>"), QDomElement());
}

QDomElement savedFrom(const Target& target, const std::string& templ) {
    return saveTargetXML(target, parseElement("<field/>"), parseElement(templ));
}

const std::vector<const char*> kMotions = {"targparal", "targpmra", "targpmdec"};

} // namespace

TEST(TargetXMLSave, WithoutATemplateWritesEveryAttribute) {
    EXPECT_EQ(treeText(saved(plainTarget())),
              treeText(parseElement(
                  "<target targname='' targsrvy='' targprio='1' targuse='T' fibreid='%%%' configid='%%%' "
                  "automatic='0' cname='%%%' ifu_pa='' ifu_spaxel='' targcat='' targclass='UNKNOWN' targprog='' "
                  "targid='' targparal='0' targpmra='0' targpmdec='0' targra='45.000000' targdec='-22.500000' "
                  "targepoch='2016.00'/>")));
}

TEST(TargetXMLSave, WritesTheRecordsOwnValues) {
    Target target = plainTarget();
    target.name = "NGC \xC3\xA9";
    target.survey = "WL";
    target.use = TargetUse::G;
    target.priority = 0.1;
    target.configid = 33;
    target.fibreid = -160;
    target.automatic = true;
    const QDomElement element = saved(target);
    EXPECT_EQ(attributeText(element, "targname"), "NGC \xC3\xA9");
    EXPECT_EQ(attributeText(element, "targsrvy"), "WL");
    EXPECT_EQ(attributeText(element, "targuse"), "G");
    EXPECT_EQ(attributeText(element, "targprio"), setterText(0.1));
    EXPECT_EQ(attributeText(element, "configid"), "33");
    EXPECT_EQ(attributeText(element, "fibreid"), "-160");
    EXPECT_EQ(attributeText(element, "automatic"), "1");
}

TEST(TargetXMLSave, AppendsTheNewElementAsTheLastChildAndReturnsIt) {
    const QDomElement parent = parseElement("<group><target/><note/></group>");
    const QDomElement element = saveTargetXML(plainTarget(), parent, QDomElement());
    EXPECT_EQ(parent.lastChild(), element);
    EXPECT_EQ(parent.childNodes().count(), 3);
    EXPECT_EQ(element.ownerDocument(), parent.ownerDocument());
}

TEST(TargetXMLSave, ATemplateIsClonedDeeplyAndStaysWhereItIs) {
    const QDomElement field = parseElement("<field><target note='n'><a><b c='d'/>text</a></target><last/></field>");
    const QDomElement templ = field.firstChildElement();
    const std::string before = treeText(templ);
    Target target = plainTarget();
    target.configid = 5;
    const QDomElement element = saveTargetXML(target, field, templ);
    EXPECT_EQ(field.firstChildElement(), templ);
    EXPECT_EQ(treeText(templ), before);
    EXPECT_EQ(field.lastChild(), element);
    EXPECT_EQ(attributeText(element, "note"), "n");
    EXPECT_EQ(treeText(element.firstChild()), treeText(parseElement("<a><b c='d'/>text</a>")));
}

TEST(TargetXMLSave, ATemplatesNameAndSurveyYieldOnlyToNonEmptyOnes) {
    const std::string templ = "<target targname='old' targsrvy='survey'/>";
    Target target = plainTarget();
    EXPECT_EQ(attributeText(savedFrom(target, templ), "targname"), "old");
    EXPECT_EQ(attributeText(savedFrom(target, templ), "targsrvy"), "survey");
    EXPECT_EQ(attributeText(savedFrom(target, "<target/>"), "targname"), "");
    EXPECT_EQ(attributeText(savedFrom(target, "<target/>"), "targsrvy"), "");
    target.name = "new";
    EXPECT_EQ(attributeText(savedFrom(target, templ), "targname"), "new");
    EXPECT_EQ(attributeText(savedFrom(target, templ), "targsrvy"), "survey");
    target.survey = "another";
    EXPECT_EQ(attributeText(savedFrom(target, templ), "targsrvy"), "another");
}

TEST(TargetXMLSave, ATemplatesPriorityWins) {
    Target target = plainTarget();
    target.priority = 7.0;
    EXPECT_EQ(attributeText(savedFrom(target, "<target targprio='3.50'/>"), "targprio"), "3.50");
    EXPECT_EQ(attributeText(savedFrom(target, "<target targprio=''/>"), "targprio"), "");
    EXPECT_EQ(attributeText(savedFrom(target, "<target/>"), "targprio"), "7");
}

TEST(TargetXMLSave, UseFibreIdAndFlagReplaceThoseOfATemplate) {
    const std::string templ = "<target targuse='G' fibreid='12' configid='13' automatic='1'/>";
    Target target = plainTarget();
    target.use = TargetUse::E;
    const QDomElement missing = savedFrom(target, templ);
    EXPECT_EQ(attributeText(missing, "targuse"), "E");
    EXPECT_EQ(attributeText(missing, "fibreid"), "%%%");
    EXPECT_EQ(attributeText(missing, "configid"), "%%%");
    EXPECT_EQ(attributeText(missing, "automatic"), "0");
    target.fibreid = 0;
    target.configid = 14;
    const QDomElement present = savedFrom(target, templ);
    EXPECT_EQ(attributeText(present, "fibreid"), "0");
    EXPECT_EQ(attributeText(present, "configid"), "14");
}

TEST(TargetXMLSave, WritesTheLowThirtyTwoBitsOfAnIdWithTheirSign) {
    struct Case {
        std::uint64_t id;
        const char* text;
    };
    // 2^32 + 1, 2^32, 2^31 and 2^64 - 5
    for (const Case& c : {Case{4294967297U, "1"}, Case{4294967296U, "0"}, Case{2147483648U, "-2147483648"},
                          Case{std::numeric_limits<std::uint64_t>::max() - 4, "-5"}, Case{2147483647U, "2147483647"}}) {
        Target target = plainTarget();
        target.configid = c.id;
        EXPECT_EQ(attributeText(saved(target), "configid"), c.text);
        const QDomElement element = parseElement("<target configid='%%%' note='n'/>");
        updateTargetIdXML(element, c.id);
        EXPECT_EQ(treeText(element),
                  treeText(parseElement(std::string("<target note='n' configid='") + c.text + "'/>")));
    }
}

TEST(TargetXMLSave, ATemplateKeepsItsCatalogueAttributes) {
    const QDomElement element = savedFrom(plainTarget(), "<target cname='WVE' ifu_pa='12' ifu_spaxel='C01' "
                                                         "targcat='cat' targclass='GALAXY' targprog='p' targid='i'/>");
    EXPECT_EQ(attributeText(element, "cname"), "WVE");
    EXPECT_EQ(attributeText(element, "ifu_pa"), "12");
    EXPECT_EQ(attributeText(element, "ifu_spaxel"), "C01");
    EXPECT_EQ(attributeText(element, "targcat"), "cat");
    EXPECT_EQ(attributeText(element, "targclass"), "GALAXY");
    EXPECT_EQ(attributeText(element, "targprog"), "p");
    EXPECT_EQ(attributeText(element, "targid"), "i");
}

TEST(TargetXMLSave, OnlyASkyTargetIsWrittenWithoutAClass) {
    for (auto use : {TargetUse::T, TargetUse::C, TargetUse::G, TargetUse::E, TargetUse::R}) {
        Target target = plainTarget();
        target.use = use;
        EXPECT_EQ(attributeText(saved(target), "targclass"), "UNKNOWN");
    }
    Target sky = plainTarget();
    sky.use = TargetUse::S;
    EXPECT_EQ(attributeText(saved(sky), "targclass"), "");
    EXPECT_EQ(attributeText(savedFrom(sky, "<target/>"), "targclass"), "");
    EXPECT_EQ(attributeText(savedFrom(sky, "<target targclass='GALAXY'/>"), "targclass"), "GALAXY");
}

TEST(TargetXMLSave, AnAutomaticTargetLosesItsTemplatesSpaceMotion) {
    Target target = plainTarget();
    const std::string templ = "<target targparal='0.7' targpmra='3.2' targpmdec='-1.5'/>";
    const QDomElement kept = savedFrom(target, templ);
    EXPECT_EQ(attributeText(kept, "targparal"), "0.7");
    EXPECT_EQ(attributeText(kept, "targpmra"), "3.2");
    EXPECT_EQ(attributeText(kept, "targpmdec"), "-1.5");
    const QDomElement filled = savedFrom(target, "<target targpmra='3.2'/>");
    EXPECT_EQ(attributeText(filled, "targparal"), "0");
    EXPECT_EQ(attributeText(filled, "targpmra"), "3.2");
    EXPECT_EQ(attributeText(filled, "targpmdec"), "0");
    target.automatic = true;
    for (const char* motion : kMotions) {
        EXPECT_EQ(attributeText(savedFrom(target, templ), motion), "0") << motion;
        EXPECT_EQ(attributeText(saved(target), motion), "0") << motion;
    }
}

TEST(TargetXMLSave, ARecordsOwnMotionReplacesThatOfItsTemplate) {
    Target target = plainTarget();
    target.position.pmRa = 41.0;
    target.position.pmDec = -7.0;
    target.position.parallax = 0.25;
    target.position.rv = 12.0;
    const QDomElement element =
        savedFrom(target, "<target targparal='0.7' targpmra='3.2' targpmdec='-1.5' targrv='9'/>");
    EXPECT_EQ(attributeText(element, "targpmra"), "41");
    EXPECT_EQ(attributeText(element, "targpmdec"), "-7");
    EXPECT_EQ(attributeText(element, "targparal"), "250");
    EXPECT_EQ(attributeText(element, "targrv"), "12");
}

TEST(TargetXMLSave, APositionWithoutRadialVelocityLeavesThatOfTheTemplate) {
    EXPECT_EQ(attributeText(savedFrom(plainTarget(), "<target targrv='9.5' targra='1' targepoch='1'/>"), "targrv"),
              "9.5");
    EXPECT_EQ(attributeText(savedFrom(plainTarget(), "<target targra='1'/>"), "targra"), "45.000000");
    EXPECT_EQ(attributeText(savedFrom(plainTarget(), "<target targepoch='1'/>"), "targepoch"), "2016.00");
    EXPECT_EQ(attributeText(saved(plainTarget()), "targrv"), "(absent)");
}

TEST(TargetXMLSave, ACalibrationTargetTakesNeitherIdentityNorPhotometryFromItsTemplate) {
    Target target = plainTarget();
    target.use = TargetUse::C;
    const QDomElement element =
        savedFrom(target, "<target cname='WVE' targclass='GALAXY' targcat='cat'><first/><photometry mag='1'/>"
                          "<photometry mag='2'/></target>");
    EXPECT_EQ(attributeText(element, "cname"), "%%%");
    EXPECT_EQ(attributeText(element, "targclass"), "%%%");
    EXPECT_EQ(attributeText(element, "targcat"), "cat");
    // Only the first photometry goes.
    EXPECT_EQ(element.childNodes().count(), 2);
    EXPECT_EQ(treeText(element.firstChild()), treeText(parseElement("<first/>")));
    EXPECT_EQ(treeText(element.lastChild()), treeText(parseElement("<photometry mag='2'/>")));
}

TEST(TargetXMLSave, ACalibrationTargetFromATemplateWithoutPhotometryIsWrittenToo) {
    Target target = plainTarget();
    target.use = TargetUse::C;
    const QDomElement element = savedFrom(target, "<target><group><photometry/></group></target>");
    EXPECT_EQ(attributeText(element, "targclass"), "%%%");
    EXPECT_EQ(treeText(element.firstChild()), treeText(parseElement("<group><photometry/></group>")));
    EXPECT_EQ(attributeText(saved(target), "targclass"), "UNKNOWN");
}

TEST(TargetXMLSave, OtherTargetsKeepTheirTemplatesPhotometry) {
    for (auto use : {TargetUse::T, TargetUse::G, TargetUse::S, TargetUse::E, TargetUse::R}) {
        Target target = plainTarget();
        target.use = use;
        const QDomElement element = savedFrom(target, "<target cname='WVE'><photometry/></target>");
        EXPECT_FALSE(element.firstChildElement("photometry").isNull());
        EXPECT_EQ(attributeText(element, "cname"), "WVE");
    }
}

TEST(TargetXMLSave, AnUnassignedIdIsWrittenSoThatReadingRefusesIt) {
    Target target = plainTarget();
    target.name = "X";
    const QDomElement element = saved(target);
    EXPECT_EQ(messageOf([&] { createTargetXML(element); }), "Target X has an invalid configure target id '%%%'");
}

TEST(TargetXMLSave, AnUnfilledFibreIdIsWrittenBackAsTheMarker) {
    for (const std::string text : {"", "%%%"}) {
        const Target target =
            createTargetXML(parseElement("<target targra='45.000000' targdec='45.000000' fibreid='" + text + "'/>"));
        EXPECT_EQ(attributeText(saved(target), "fibreid"), "%%%");
    }
}

TEST(TargetXMLSave, UpdatingWithoutAPlateTouchesNothingButTheFibre) {
    struct Case {
        std::int32_t fibreid;
        const char* attribute;
    };
    for (const Case& c : {Case{kNoFibre, ""}, Case{-160, ""}, Case{-1, ""}, Case{0, "fibreid='0'"},
                          Case{1007, "fibreid='1007'"}, Case{1008, "fibreid='1119'"}, Case{1010, "fibreid='1319'"},
                          Case{1027, "fibreid='3019'"}, Case{1028, "fibreid='1028'"}, Case{1119, "fibreid='1119'"}}) {
        for (const std::string before : {"", "fibreid='77'", "fibreid='%%%'"}) {
            const QDomElement element =
                parseElement("<target targx='1' ifu_pa='2' ifu_spaxel='3' " + before + "><a/></target>");
            Target target = plainTarget();
            target.fibreid = c.fibreid;
            updateTargetXML(target, element, nullptr);
            EXPECT_EQ(treeText(element),
                      treeText(parseElement(std::string("<target targx='1' ifu_pa='2' ifu_spaxel='3' ") + c.attribute +
                                            "><a/></target>")));
        }
    }
}
