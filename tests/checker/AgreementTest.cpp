#include "ProcessWideState.h"
#include "checked.h"
#include "instrumentOnDisk.h"

#include "TemporaryFolder.h"
#include "Version.h"
#include "configureDocument.h"
#include "ownConfiguration.h"
#include "xmlEncoding.h"
#include "xmlKeywords.h"
#include "xmlParse.h"
#include "xmlStructure.h"

#include <gtest/gtest.h>
#include <random>

// The run fails for a document exactly where the checker has an error, and the error tells the run's message.

using namespace pos;

namespace {

constexpr unsigned int kSeed = 20270401;
constexpr int kDocuments = 14000;

/** Chooses at random. */
class Choice {
public:
    int below(std::size_t count) {
        return static_cast<int>(std::uniform_int_distribution<std::size_t>(0, count - 1)(engine_));
    }
    template <typename T> const T& of(const std::vector<T>& values) {
        return values.at(static_cast<std::size_t>(below(values.size())));
    }

private:
    std::mt19937 engine_{kSeed};
};

const std::vector<QString> kValues = {
    "",         "nan",  "inf",    "x",      "-1",          "0",        "1e9", "%%%",  "12.3",     "148.8882",
    "-31.0000", "90.0", "1.0e-5", "360.00", "T",           "G",        "t",   "700",  "304",      "160",
    "1",        " 5 ",  "1,5",    "2000.0", "99999999999", "10:41:04", "180", "-180", "69.00000", "8.0"};
const std::vector<QString> kNames = {"pa",        "PA",        "targra",   "targdec", "targuse", "fibreid",
                                     "configid",  "ha",        "epoch",    "RA_d",    "Dec_d",   "targpmra",
                                     "targparal", "targepoch", "priority", "radius"};

/** An element and all below it. */
std::vector<QDomElement> elementsOf(const QDomElement& element) {
    std::vector<QDomElement> all = {element};
    for (QDomElement child = element.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        const std::vector<QDomElement> below = elementsOf(child);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

/** One random change of a tree. */
void damage(const QDomDocument& tree, Choice& choice) {
    QDomElement element = choice.of(elementsOf(tree.documentElement()));
    const QDomNamedNodeMap attributes = element.attributes();
    const QString name = attributes.isEmpty()
                             ? choice.of(kNames)
                             : attributes.item(choice.below(static_cast<std::size_t>(attributes.count()))).nodeName();
    switch (choice.below(7)) {
    case 0:
        element.removeAttribute(name);
        break;
    case 1:
    case 2:
        element.setAttribute(name, choice.of(kValues));
        break;
    case 3:
        element.setAttribute(choice.of(kNames), choice.of(kValues));
        break;
    case 4:
        element.appendChild(element.cloneNode());
        break;
    case 5:
        element.setTagName(choice.of(std::vector<QString>{"group", "target", "Field", "mask", "conditions"}));
        break;
    default:
        if (element.parentNode().isElement()) {
            element.parentNode().removeChild(element);
        }
    }
}

std::string damaged(const std::string& example, Choice& choice) {
    QDomDocument tree = parseXml(QByteArray::fromStdString(example), "example").document;
    for (int faults = 1 + choice.below(3); faults > 0; --faults) {
        damage(tree, choice);
    }
    std::string text = tree.toByteArray().toStdString();
    if (choice.below(20) == 0) {
        text.erase(static_cast<std::size_t>(choice.below(text.size())), 1);
    }
    return text;
}

/** Why a run on a document fails; nothing where it does not. */
std::optional<std::string> failureOfRun(const std::string& document, Instrument& instrument) {
    try {
        const QByteArray bytes = QByteArray::fromStdString(document);
        const QDomDocument tree = parseXml(decodeXml(bytes, "field.xml"), "field.xml").document;
        requireDataModelVersion(tree);
        placeDocument(instrument, tree, {});
    } catch (const std::exception& error) {
        return error.what();
    }
    return std::nullopt;
}

void expectAgreement(const std::string& document, const std::optional<std::string>& failure) {
    const CheckResult result = checked(document);
    int errors = 0;
    bool isTold = false;
    for (const Problem& problem : result.problems) {
        const bool isError = problem.severity == Severity::Error;
        errors += isError ? 1 : 0;
        isTold = isTold || (isError && failure && problem.message.find(*failure) != std::string::npos);
    }
    EXPECT_EQ(isTold, failure.has_value()) << failure.value_or("") << '\n' << document;
    EXPECT_EQ(errors > 0, failure.has_value()) << testing::PrintToString(problemsOf(result)) << '\n' << document;
}

/** One random change of a document of the instrument, whose values may stand in texts. */
void damageValue(const QDomDocument& tree, Choice& choice) {
    QDomElement element = choice.of(elementsOf(tree.documentElement()));
    const bool isText = element.firstChild().isText();
    if (isText && choice.below(4) > 0) {
        element.firstChild().setNodeValue(choice.of(kValues));
    } else {
        damage(tree, choice);
    }
}

/** Damages one of the documents of a small instrument. */
InstrumentOnDisk damagedInstrument(Choice& choice) {
    InstrumentOnDisk instrument;
    instrument.bundle = "<plate_definition datamver='8.00' centre_x='0' centre_y='-20' orientation='0'>" + tenFibres() +
                        "</plate_definition>";
    std::string& document =
        *choice.of(std::vector<std::string*>{&instrument.configuration, &instrument.map, &instrument.bundle});
    const QDomDocument tree = parseXml(QByteArray::fromStdString(document), "example").document;
    for (int faults = choice.below(3); faults >= 0; --faults) {
        damageValue(tree, choice);
    }
    document = tree.toByteArray(-1).toStdString();
    if (choice.below(10) == 0) {
        document.erase(static_cast<std::size_t>(choice.below(document.size())), 1);
    }
    return instrument;
}

/** Why a run with a configuration fails on the faultless document; nothing where it does not. */
std::optional<std::string> failureWith(const std::string& configuration) {
    datamver.clear();
    try {
        const PosConfig config("configure_version", configure_version, configuration.c_str(), PosConfig::XML);
        Instrument instrument(config);
        const QDomDocument tree = parseXml(QByteArray::fromStdString(kFaultless), "field.xml").document;
        requireDataModelVersion(tree);
        placeDocument(instrument, tree, {});
    } catch (const std::exception& error) {
        return error.what();
    }
    return std::nullopt;
}

/** The errors that a call has on an instrument and the faultless document. */
std::vector<std::string> errorsWith(const InstrumentOnDisk& instrument, const TemporaryFolder& folder) {
    CheckedInstrument checked = checkedAnew(instrument, folder);
    CheckOptions options;
    options.isInstrumentSound = checked.isSound;
    checked.files.push_back(
        {"field.xml", checkDocument(QByteArray::fromStdString(kFaultless), "field.xml", *checked.instrument, options)});
    std::vector<std::string> errors;
    for (const CheckedFile& file : checked.files) {
        for (const Problem& problem : file.result.problems) {
            if (problem.severity == Severity::Error) {
                errors.push_back(problem.message);
            }
        }
    }
    return errors;
}

class AgreementOnInstruments : public ProcessWideState {};

} // namespace

TEST_F(AgreementOnInstruments, TheRunFailsExactlyWhereTheCallHasAnErrorThatTellsIt) {
    const TemporaryFolder folder;
    Choice choice;
    int failing = 0;
    constexpr int kInstruments = 300;
    for (int i = 0; i < kInstruments && !HasFailure(); ++i) {
        const InstrumentOnDisk instrument = damagedInstrument(choice);
        const std::vector<std::string> errors = errorsWith(instrument, folder);
        const std::optional<std::string> failure = failureWith(folder.path("configure.xml"));
        const bool isTold = failure && std::any_of(errors.begin(), errors.end(), [&](const std::string& message) {
                                return message.find(*failure) != std::string::npos;
                            });
        failing += failure ? 1 : 0;
        EXPECT_TRUE(failure ? isTold : errors.empty())
            << failure.value_or("no failure") << " but " << testing::PrintToString(errors) << '\n'
            << instrument.configuration << instrument.map << instrument.bundle;
    }
    EXPECT_GT(failing, kInstruments / 5);
    EXPECT_LT(failing, kInstruments * 4 / 5);
}

TEST(Agreement, TheRunFailsExactlyWhereThereIsAnError) {
    std::vector<std::string> examples = {kFaultless};
    for (const char* const name : {"m74_groups", "m81_north", "sombrero_south", "virgo_two_fields"}) {
        examples.push_back(readBytes(POS_SOURCE_FOLDER "/examples/" + std::string(name) + ".xml"));
    }
    Instrument instrument(builtInInstrument().config());
    Choice choice;
    int failing = 0;
    for (int i = 0; i < kDocuments && !testing::Test::HasFailure(); ++i) {
        const std::string document = damaged(choice.of(examples), choice);
        const std::optional<std::string> failure = failureOfRun(document, instrument);
        failing += failure ? 1 : 0;
        expectAgreement(document, failure);
    }
    // Both kinds must be common for the comparison to mean something.
    EXPECT_GT(failing, kDocuments / 5);
    EXPECT_LT(failing, kDocuments * 4 / 5);
}

TEST(Agreement, AnOutputThatCouldNotBeReadAgainIsAnError) {
    std::string attributes;
    for (int i = 0; i < 210; ++i) {
        attributes += " note" + std::to_string(i) + "=''";
    }
    std::string manyAttributes = kFaultless;
    manyAttributes.insert(manyAttributes.find(" targuse=\"T\""), attributes);
    expectAgreement(manyAttributes, std::nullopt);
    for (int i = 0; i < 40; ++i) {
        manyAttributes.insert(manyAttributes.find(" targuse=\"T\""), " more" + std::to_string(i) + "=''");
    }
    expectAgreement(manyAttributes, "The output would have more than 256 attributes in one tag");
}
