#include "TargetXML.h"

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

/** What a target becomes with a template of these attributes and this content, behind it in a field. */
QDomElement savedFrom(const Target& target, const std::string& attributes, const std::string& content = "") {
    const QDomElement field = parseElement("<field><target " + attributes + ">" + content + "</target><last/></field>");
    const std::string before = treeText(field.firstChild());
    const QDomElement element = saveTargetXML(target, field, field.firstChildElement());
    EXPECT_EQ(treeText(field.firstChild()), before);
    EXPECT_EQ(field.lastChild(), element);
    return element;
}

std::string text(const Target& target, const std::string& templateAttributes, const char* attribute) {
    return attributeText(savedFrom(target, templateAttributes), attribute);
}

} // namespace

TEST(TargetXMLSave, WithoutATemplateWritesEveryAttribute) {
    const QDomElement group = parseElement("<group><note/></group>");
    saveTargetXML(plainTarget(), group, QDomElement());
    EXPECT_EQ(treeText(group),
              treeText(parseElement(
                  "<group><note/><target targname='' targsrvy='' targprio='1' targuse='T' fibreid='%%%' configid='%%%' "
                  "automatic='0' cname='%%%' ifu_pa='' ifu_spaxel='' targcat='' targclass='UNKNOWN' targprog='' "
                  "targid='' targparal='0' targpmra='0' targpmdec='0' targra='45.000000' targdec='-22.500000' "
                  "targepoch='2016.00'/></group>")));
}

TEST(TargetXMLSave, TheRecordsValuesReplaceThoseOfATemplate) {
    const Target target{"NGC \xC3\xA9", "WL", {0.0, 0.0, 2016.0, 41.0, -7.0, 0.25, 12.0}, TargetUse::E, 7.0, 33,
                        -160,           true};
    const std::string own = "targname='NGC \xC3\xA9' targsrvy='WL' targuse='E' fibreid='-160' configid='33' "
                            "automatic='1' targra='0.000000' targdec='0.000000' targepoch='2016.00' targpmra='41' "
                            "targpmdec='-7' targparal='250' targrv='12' ";
    // What a catalogue says, and whatever else stands there, is the template's.
    const std::string catalogue = "targprio='3.50' cname='WVE' ifu_pa='12' ifu_spaxel='C01' targcat='cat' "
                                  "targclass='GALAXY' targprog='p' targid='i' note='n' ";
    EXPECT_EQ(treeText(savedFrom(target,
                                 catalogue + "targname='o' targsrvy='o' targuse='G' fibreid='12' configid='13' "
                                             "automatic='0' targra='1' targdec='1' targepoch='1' targpmra='1' "
                                             "targpmdec='1' targparal='1' targrv='1'",
                                 "<a><b c='d'/>text</a><photometry/>")),
              treeText(parseElement("<target " + own + catalogue + "><a><b c='d'/>text</a><photometry/></target>")));
    EXPECT_EQ(text(target, "", "targprio"), "7");
    EXPECT_EQ(text(target, "targprio=''", "targprio"), "");
}

TEST(TargetXMLSave, WhatTheRecordLacksReplacesIdsButNotTextsOrRadialVelocity) {
    Target target = plainTarget();
    const std::string templ = "targname='old' targsrvy='survey' fibreid='12' configid='13' targrv='9.5'";
    EXPECT_EQ(text(target, templ, "targname"), "old");
    EXPECT_EQ(text(target, templ, "targsrvy"), "survey");
    EXPECT_EQ(text(target, templ, "targrv"), "9.5");
    EXPECT_EQ(text(target, templ, "fibreid"), "%%%");
    EXPECT_EQ(text(target, templ, "configid"), "%%%");
    EXPECT_EQ(text(target, "", "targname"), "");
    EXPECT_EQ(text(target, "", "targrv"), "(absent)");
    target.fibreid = 0;
    EXPECT_EQ(text(target, templ, "fibreid"), "0");
}

TEST(TargetXMLSave, WritesTheLowThirtyTwoBitsOfAnIdWithTheirSign) {
    struct Case {
        std::uint64_t id;
        const char* text;
    };
    // 2^32 + 1, 2^32, 2^31 and 2^64 - 5
    for (const Case& c : {Case{4294967297U, "1"}, Case{4294967296U, "0"}, Case{2147483648U, "-2147483648"},
                          Case{std::numeric_limits<std::uint64_t>::max() - 4, "-5"}}) {
        Target target = plainTarget();
        target.configid = c.id;
        EXPECT_EQ(text(target, "", "configid"), c.text);
        const QDomElement element = parseElement("<target configid='%%%' note='n'/>");
        updateTargetIdXML(element, c.id);
        EXPECT_EQ(treeText(element),
                  treeText(parseElement(std::string("<target note='n' configid='") + c.text + "'/>")));
    }
}

TEST(TargetXMLSave, OnlyASkyTargetIsWrittenWithoutAClass) {
    for (auto use : {TargetUse::T, TargetUse::C, TargetUse::G, TargetUse::E, TargetUse::R, TargetUse::S}) {
        Target target = plainTarget();
        target.use = use;
        const QDomElement element = saveTargetXML(target, parseElement("<field/>"), QDomElement());
        EXPECT_EQ(attributeText(element, "targclass"), use == TargetUse::S ? "" : "UNKNOWN");
    }
}

TEST(TargetXMLSave, AnAutomaticTargetLosesItsTemplatesSpaceMotion) {
    Target target = plainTarget();
    for (const char* motion : {"targparal", "targpmra", "targpmdec"}) {
        const std::string templ = motion + std::string("='3.2'");
        target.automatic = false;
        EXPECT_EQ(text(target, templ, motion), "3.2");
        EXPECT_EQ(text(target, "", motion), "0");
        target.automatic = true;
        EXPECT_EQ(text(target, templ, motion), "0");
    }
}

TEST(TargetXMLSave, ACalibrationTargetTakesNeitherIdentityNorTheFirstPhotometryFromItsTemplate) {
    Target target = plainTarget();
    target.use = TargetUse::C;
    const QDomElement element = savedFrom(target, "cname='WVE' targclass='GALAXY' targcat='cat'",
                                          "<first><photometry/></first><photometry mag='1'/><photometry mag='2'/>");
    EXPECT_EQ(attributeText(element, "cname"), "%%%");
    EXPECT_EQ(attributeText(element, "targclass"), "%%%");
    EXPECT_EQ(attributeText(element, "targcat"), "cat");
    EXPECT_EQ(element.childNodes().count(), 2);
    EXPECT_EQ(treeText(element.firstChild()), treeText(parseElement("<first><photometry/></first>")));
    EXPECT_EQ(treeText(element.lastChild()), treeText(parseElement("<photometry mag='2'/>")));
    EXPECT_EQ(text(target, "", "targclass"), "%%%");
}

TEST(TargetXMLSave, AnUnassignedIdIsWrittenSoThatReadingRefusesIt) {
    Target target = plainTarget();
    target.name = "X";
    const QDomElement element = savedFrom(target, "");
    EXPECT_EQ(messageOf([&] { createTargetXML(element); }), "Target X has an invalid configure target id '%%%'");
}

TEST(TargetXMLSave, UpdatingWithoutAPlateTouchesNothingButTheFibre) {
    struct Case {
        std::int32_t fibreid;
        const char* attribute;
    };
    for (const Case& c : {Case{kNoFibre, ""}, Case{-1, ""}, Case{0, "fibreid='0'"}, Case{1007, "fibreid='1007'"},
                          Case{1008, "fibreid='1119'"}, Case{1010, "fibreid='1319'"}, Case{1027, "fibreid='3019'"},
                          Case{1028, "fibreid='1028'"}, Case{1119, "fibreid='1119'"}}) {
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
