#include "checked.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace pos;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** A document in which the names are right; each part may be replaced. */
struct Parts {
    std::string observation = R"(pa="0")";
    std::string configure = R"(<conditions epoch="2027.25" ha="-1.0"/>)";
    std::string field = R"(RA_d="189.997633" Dec_d="-11.623054")";
    std::string science = R"(targname="M 104")";
    std::string more;   ///< behind the two targets
    std::string beside; ///< behind the field

    std::string text() const {
        return "<survey datamver='8.00'>\n<observation " + observation + ">\n<configure>" + configure +
               "</configure>\n<fields>\n<field " + field + ">\n<target targuse='T' targra='189.997633' " +
               "targdec='-11.623054' " + science + "/>\n" +
               "<target targuse='G' targra='190.120000' targdec='-11.500000'/>\n" + more + "</field>\n" + beside +
               "</fields>\n</observation>\n</survey>\n";
    }
};

/** A target of use R in one line, or of another. */
std::string targetWith(const std::string& attributes, const std::string& use = "R") {
    return "<target targuse='" + use + "' targra='190.100000' targdec='-11.600000' " + attributes + "/>\n";
}

/** The problems whose codes begin with VK2: "code severity line:column", and behind an arrow the fix. */
std::vector<std::string> namesTold(const std::string& document, const CheckOptions& options = {}) {
    const CheckResult result = checked(document, options);
    std::vector<std::string> found;
    for (const Problem& problem : result.problems) {
        const LineColumn place = result.text.at(problem.place.begin);
        const std::string code = problem.rule->code;
        if (code.starts_with("VK2")) {
            found.push_back(code + " " + severityWord(problem.severity) + " " + std::to_string(place.line) + ":" +
                            std::to_string(place.column) + (problem.fix ? " -> " + problem.fix->toStdString() : ""));
        }
    }
    return found;
}

std::vector<std::string> namesTold(const Parts& parts, const CheckOptions& options = {}) {
    return namesTold(parts.text(), options);
}

} // namespace

TEST(RulesOfNames, LeaveADocumentOfKnownNamesAlone) {
    Parts parts;
    EXPECT_THAT(namesTold(parts), IsEmpty());
    parts.observation += R"( name="x" xml:lang="en" xmlns:p="urn:p" p:PA="7")";
    parts.configure = R"(<p:q/><conditions epoch="2027.25" ha="%%%" temperature="%%%" tlr="0.0065"/>)";
    parts.science = R"(cname="%%%"><photometry PA="1"><Field/></photometry></target><target targuse="S"
        targra="190.000000" targdec="-11.600000")";
    parts.more = "<group note='x'>" + targetWith("targname='a' fibreid='7'") + "</group><avoidance_list/>";
    parts.beside = "<field>" + targetWith("", "T") + targetWith("", "G") + "</field>";
    EXPECT_THAT(namesTold(parts), IsEmpty());
}

TEST(RulesOfNames, TellTheRightNameForOneNearIt) {
    Parts parts;
    parts.observation = R"(PA="0")";
    parts.science = R"(targpm_ra="1" targpm="2" parallax="0" targparal="0" targname="a" name="b" targmag="9")";
    parts.beside = "<Field/>\n<Field></Field>\n";
    EXPECT_THAT(namesTold(parts),
                ElementsAre("VK201 warning 2:14 -> pa", "VK201 warning 6:62 -> targpmra", "VK201 warning 6:76",
                            "VK204 note 6:87", "VK204 note 6:127", "VK204 note 6:136", "VK201 warning 9:2 -> field",
                            "VK201 warning 10:2 -> field"));
}

TEST(RulesOfNames, FixAnAttributeOfAnElementOnce) {
    Parts parts;
    parts.observation = R"(PA="0" Pa="1")";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK201 warning 2:14 -> pa", "VK201 warning 2:21"));
    parts.observation = R"(PA="0" pa="1")";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK201 warning 2:14"));
}

TEST(RulesOfNames, ReadAMisspeltElementAsTheOneThatIsMeant) {
    Parts parts;
    parts.configure = R"(<Conditions epoch="2027.25" presure="700"/>)";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK201 warning 3:13 -> conditions", "VK201 warning 3:40 -> pressure"));
}

TEST(RulesOfNames, TellKnownNamesAtOtherPlaces) {
    Parts parts;
    parts.observation += R"( epoch="2027.25" latitude="3")";
    parts.field += R"( pa="3")";
    parts.more =
        "<conditions/><target targuse='R' targra='190.100000' targdec='-11.600000'><targid>7</targid></target>\n"
        "<targets><target/></targets>";
    EXPECT_THAT(namesTold(parts),
                ElementsAre("VK202 warning 2:21", "VK204 note 2:37", "VK202 warning 5:45", "VK203 warning 8:2",
                            "VK202 warning 8:76", "VK204 note 9:2", "VK202 warning 9:11"));
}

TEST(RulesOfNames, TellASecondElementOfWhichTheRunReadsOne) {
    Parts parts;
    parts.configure += "<conditions/><telescope/><telescope/>";
    parts.more = "<avoidance_list/>\n<avoidance_list/>";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK203 warning 3:52", "VK203 warning 9:2"));
}

TEST(RulesOfNames, FindTheObservationWhereverItStands) {
    const std::string text = Parts().text();
    const std::size_t begin = text.find("<observation");
    const std::string observation = text.substr(begin, text.find("</survey>") - begin);
    EXPECT_THAT(namesTold("<a datamver='8.00'><night>" + observation + observation + "</night></a>"),
                ElementsAre("VK204 note 1:21", "VK203 warning 10:2"));
    EXPECT_THAT(namesTold("<observation datamver='8.00'" + observation.substr(12)), IsEmpty());
    EXPECT_THAT(namesTold("<Observation datamver='8.00' PA='1'/>"),
                ElementsAre("VK217 warning 1:1", "VK201 warning 1:2 -> observation", "VK201 warning 1:30 -> pa"));
}

TEST(RulesOfNames, TellUsesThatDoNotCount) {
    Parts parts;
    parts.more = targetWith("", "t") + targetWith("", "s") + targetWith("", "T") + targetWith("automatic='1'", "T") +
                 "<group>" + targetWith("", "G") + "</group>";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK205 warning 8:18 -> T", "VK205 note 9:18 -> S", "VK206 warning 10:18",
                                              "VK213 note 11:73", "VK207 warning 12:25"));
}

TEST(RulesOfNames, TellEmptyGroupsBeforeTargetsOfTheFirstField) {
    Parts parts;
    parts.more = "<group/><group>" + targetWith("") + "</group>";
    parts.beside = "<field><group/>" + targetWith("", "T") + targetWith("", "G") + "</field>";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK208 warning 8:1"));
    parts.more = "<group>" + targetWith("") + "<group/></group>\n<group/>";
    EXPECT_THAT(namesTold(parts), IsEmpty());
    parts.more = "<group><group><!-- none --></group>" + targetWith("") + "</group>" + targetWith("");
    EXPECT_THAT(namesTold(parts), ElementsAre("VK208 warning 8:8"));
}

TEST(RulesOfNames, TellWhatStandsTwiceInAField) {
    Parts parts;
    parts.more = "<group>" + targetWith("targname='a' targid='7' targcat='x'") + "</group>" +
                 targetWith("targname='a' targid='7'") + targetWith("targname='b' targid='7' targcat='x'") +
                 targetWith("automatic='1' targname='b' targid='7'");
    EXPECT_THAT(namesTold(parts), ElementsAre("VK209 note 9:80", "VK210 note 10:83", "VK213 note 11:73"));
    parts.more = "";
    parts.beside = "<field>" + targetWith("configid='7' targname='M 104'", "T") + targetWith("configid='7'", "G") +
                   targetWith("configid='0'") + targetWith("configid='0'") + "</field>";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK210 warning 10:72"));
}

TEST(RulesOfNames, TellFibresThatCannotBeUsed) {
    Parts parts;
    parts.science = "fibreid='160'";
    parts.more = targetWith("fibreid='604'") + targetWith("fibreid='160'") + targetWith("fibreid=''");
    EXPECT_THAT(namesTold(parts), ElementsAre("VK211 warning 6:71", "VK212 note 8:71"));
}

TEST(RulesOfNames, TellWhatIsReadAsZero) {
    Parts parts;
    for (const std::string angle : {"", "%%%", "about 30"}) {
        parts.observation = "pa='" + angle + "'";
        EXPECT_THAT(namesTold(parts), ElementsAre("VK214 warning 2:18")) << angle;
    }
    parts = {};
    parts.field = "RA_d='%%%'";
    parts.more = "<avoidance_list><mask/></avoidance_list>";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK215 warning 5:1", "VK215 warning 5:14", "VK215 note 8:17"));
    parts.field = "";
    parts.more = "";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK215 warning 5:1"));
}

TEST(RulesOfNames, TellDefaultsAmongConditions) {
    Parts parts;
    parts.configure = R"(<conditions epoch="2027.25" pressure="770" temperature="%%%"/>)";
    EXPECT_THAT(namesTold(parts), ElementsAre("VK216 note 3:12", "VK216 note 3:12", "VK216 note 3:68"));
    parts.configure = R"(<conditions epoch="2027.25" temperature="280" humidity="0.1"/>)";
    CheckOptions options;
    options.estimates.hourAngle = 1.0;
    options.estimates.pressure = 770.0;
    EXPECT_THAT(namesTold(parts, options), ElementsAre("VK201 warning 3:58 -> relative_humidity"));
}

TEST(RulesOfNames, TellADocumentWithoutAField) {
    EXPECT_THAT(namesTold("<a datamver='8.00'><observation><configure/><fields/></observation></a>"),
                ElementsAre("VK217 warning 1:45"));
    EXPECT_THAT(namesTold("<a datamver='8.00'><observation><configure/></observation></a>"),
                ElementsAre("VK217 warning 1:20"));
}
