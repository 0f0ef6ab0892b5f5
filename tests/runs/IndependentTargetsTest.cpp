/**
 * What the program writes for every target of every example, against tests/golden/, where another program worked it
 * out from the same documents. The tables' heads say how they were made.
 */
#include "Program.h"
#include "TemporaryFolder.h"
#include "table.h"
#include "tolerances.h"
#include "xml.h"

#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace {

const std::string kGolden = std::string(POS_SOURCE_FOLDER) + "/tests/golden/";
const std::string kExamples = std::string(POS_SOURCE_FOLDER) + "/examples/";
const std::string kAbsent = "<absent>";
constexpr std::size_t kFibres = 603;

std::string attribute(const QDomElement& element, const std::string& name) {
    const QString key = QString::fromStdString(name);
    return element.hasAttribute(key) ? element.attribute(key).toStdString() : kAbsent;
}

/** Compares a number that the document gives with a fixed count of decimals. */
void expectFixed(const std::string& text, int decimals, double expected) {
    const std::size_t dot = text.find('.');
    ASSERT_NE(dot, std::string::npos) << text;
    EXPECT_EQ(text.size() - dot - 1, static_cast<std::size_t>(decimals)) << text;
    EXPECT_NEAR(std::stod(text), expected, kUnitsOfLastPlace * std::pow(10.0, -decimals));
}

/** What a column holds decides how it compares; everything else compares as text. */
void expectCell(const std::string& column, const std::string& written, const TableRow& expected) {
    static const std::set<std::string> kNumbers = {"targprio", "targparal", "targpmra", "targpmdec"};
    const std::string& text = expected.text(column);
    const bool generated = expected.text("automatic") == "1";
    if (text == kAbsent || written == kAbsent) {
        EXPECT_EQ(written, text);
    } else if (generated && (column == "targra" || column == "targdec")) {
        expectFixed(written, 6, expected.number(column));
    } else if (column == "targx" || column == "targy") {
        EXPECT_NEAR(std::stod(written), expected.number(column),
                    expected.text("targuse") == "G" ? kPlacementToleranceMm : kPlateToleranceMm);
    } else if (column == "ifu_pa") {
        EXPECT_NEAR(std::stod(written), expected.number(column), kDegreesTolerance);
    } else if (kNumbers.count(column) != 0) {
        EXPECT_EQ(std::stod(written), expected.number(column));
    } else {
        EXPECT_EQ(written, text);
    }
}

void expectTarget(const QDomElement& target, const TableRow& expected) {
    const QDomNamedNodeMap attributes = target.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        EXPECT_EQ(expected.cells().count(attributes.item(i).nodeName().toStdString()), 1U)
            << attributes.item(i).nodeName().toStdString();
    }
    for (const auto& [column, text] : expected.cells()) {
        SCOPED_TRACE(column);
        expectCell(column, attribute(target, column), expected);
    }
}

class IndependentTargets : public testing::TestWithParam<std::string> {
protected:
    /** The rows of example_fields.csv for the example, in the order of its fields. */
    static std::vector<TableRow> expectedFields() {
        std::vector<TableRow> fields;
        for (const TableRow& row : readTable(kGolden + "example_fields.csv")) {
            if (row.text("example") == GetParam()) {
                fields.push_back(row);
            }
        }
        return fields;
    }

    QDomDocument configured() const {
        const ProgramResult result = runVekoConfigure({"-i", kExamples + GetParam(), "-o", folder_.path("out.xml")});
        EXPECT_EQ(result.status, 0) << result.err;
        return parseDocument(folder_.read("out.xml"));
    }

private:
    TemporaryFolder folder_;
};

} // namespace

TEST_P(IndependentTargets, EveryAttributeOfEveryTargetIsTheOneWorkedOutElsewhere) {
    const QDomNodeList fields = configured().elementsByTagName("field");
    const std::vector<TableRow> expected = expectedFields();
    ASSERT_EQ(static_cast<std::size_t>(fields.count()), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const QDomNodeList targets = fields.at(static_cast<int>(i)).toElement().elementsByTagName("target");
        const std::vector<TableRow> rows = readTable(kGolden + expected[i].text("targets"));
        ASSERT_EQ(static_cast<std::size_t>(targets.count()), rows.size());
        std::size_t spaxels = 0;
        for (std::size_t j = 0; j < rows.size(); ++j) {
            const QDomElement target = targets.at(static_cast<int>(j)).toElement();
            SCOPED_TRACE("field " + std::to_string(i) + ", target " + std::to_string(j));
            expectTarget(target, rows[j]);
            spaxels += target.attribute("ifu_spaxel").isEmpty() ? 0U : 1U;
        }
        EXPECT_EQ(spaxels, kFibres);
    }
}

TEST_P(IndependentTargets, FieldCentresDateAndHourAngleAreTheOnesWorkedOutElsewhere) {
    const QDomDocument document = configured();
    const QDomNodeList fields = document.elementsByTagName("field");
    const std::vector<TableRow> expected = expectedFields();
    ASSERT_EQ(static_cast<std::size_t>(fields.count()), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const QDomElement field = fields.at(static_cast<int>(i)).toElement();
        expectFixed(attribute(field, "RA_d"), 6, expected[i].number("centre_ra_d"));
        expectFixed(attribute(field, "Dec_d"), 6, expected[i].number("centre_dec_d"));
    }
    const QDomElement observation = document.elementsByTagName("observation").at(0).toElement();
    EXPECT_EQ(attribute(observation, "RA_d"), attribute(fields.at(0).toElement(), "RA_d"));
    EXPECT_EQ(attribute(observation, "Dec_d"), attribute(fields.at(0).toElement(), "Dec_d"));
    const QDomElement conditions = document.elementsByTagName("conditions").at(0).toElement();
    expectFixed(attribute(conditions, "epoch"), 2, expected[0].number("epoch"));
    expectFixed(attribute(conditions, "ha"), 4, expected[0].number("ha_hours"));
}

INSTANTIATE_TEST_SUITE_P(Examples, IndependentTargets,
                         testing::Values("sombrero_south.xml", "m81_north.xml", "virgo_two_fields.xml",
                                         "m74_groups.xml"),
                         [](const auto& tested) { return tested.param.substr(0, tested.param.find('.')); });
