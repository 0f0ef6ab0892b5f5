#include "rules.h"

#include "CelestialPositionXML.h"
#include "ConditionsXML.h"
#include "FieldTargets.h"
#include "Instrument.h"
#include "Quantity.h"
#include "RunMessages.h"
#include "SkyMaskXML.h"
#include "TargetUse.h"
#include "TargetXML.h"
#include "Version.h"
#include "numberText.h"
#include "readByItself.h"
#include "targetFinders.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <map>
#include <set>

namespace pos {

namespace {

/** The letters that targuse may have. */
std::string usesInWords() {
    constexpr int kLast = TargetUse::R;
    std::string words;
    for (int value = 0; value <= kLast; ++value) {
        words += std::string(value == 0       ? ""
                             : value == kLast ? " or "
                                              : ", ") +
                 std::string(TargetUse(static_cast<TargetUse::Value>(value)));
    }
    return words;
}

/** What to write into an attribute that the run refuses. */
std::string whatToWrite(const QString& attribute, const std::string& refusal) {
    static const std::set<QString> places = {attr::raD, attr::decD, attr::targra, attr::targdec};
    if (places.contains(attribute)) {
        return std::string("Write ") + wantedText(Quantity::RightAscension) + ", with 5 decimals or more";
    }
    return attribute == attr::targuse ? "Write " + usesInWords() : whatToDo(refusal);
}

/** Asks a reader of the run about each attribute of an element by itself. */
template <typename Read> void askEachAttribute(const Rule& rule, const CheckedDocument& document,
                                               const SourceElement& element, Problems& problems, const Read& read) {
    const bool wasReadByRun = document.pointed.has_value();
    if (wasReadByRun || !failureOf([&] { read(element.node); })) {
        return;
    }
    for (const SourceAttribute& attribute : element.attributes) {
        if (const auto failure = failureOf([&] { read(only(element, attribute)); })) {
            problems.add(rule, attribute.valuePlace, *failure, whatToWrite(attribute.name, *failure));
        }
    }
}

void findOtherVersion(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (datamver.empty()) {
        return; // The configuration has none, and the run compares none.
    }
    const SourceAttribute* version = document.root.attribute(attr::datamver);
    const QString wanted = QString::fromStdString(datamver);
    const std::string message = "Data model version mismatch: ";
    if (version == nullptr) {
        problems.add(rule, opening(document.root), message + "the document element has no datamver",
                     "Add datamver=\"" + datamver + "\" to the document element");
    } else if (version->value.toStdString() != datamver) {
        const bool isSame = numberOf(version->value) && numberOf(version->value) == numberOf(wanted);
        problems.add(rule, version->valuePlace,
                     message + "the document has " + version->value.toStdString() + ", the configuration " + datamver,
                     "Write " + datamver + ", if the document follows that version",
                     isSame ? std::optional(QByteArray::fromStdString(datamver)) : std::nullopt);
    }
}

void findNoConfigure(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (document.configure == nullptr) {
        const SourceElement& place = document.observation != nullptr ? *document.observation : document.root;
        problems.add(rule, opening(place), "Configure element not found",
                     document.observation != nullptr ? "Add a configure element to the observation"
                                                     : "Add an observation element that holds a configure element");
    }
}

void findBadConditions(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (document.conditions != nullptr) {
        askEachAttribute(rule, document, *document.conditions, problems, createConditionsXML);
    }
}

void findBadHourAngle(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const SourceAttribute* hourAngle =
        document.conditions != nullptr ? document.conditions->attribute(attr::ha) : nullptr;
    if (hourAngle == nullptr || document.options.estimates.hourAngle != kHourAngleNotGiven) {
        return;
    }
    const QDomElement element = only(*document.conditions, *hourAngle);
    if (const auto failure = failureOf([&] { resolveHourAngle(kHourAngleNotGiven, element); })) {
        problems.add(rule, hourAngle->valuePlace, *failure + ": '" + hourAngle->value.toStdString() + "'",
                     whatToDo(*failure));
    }
}

void findMissingTargets(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const CheckedField& field : document.fields) {
        const bool hasScience = field.science != nullptr || isMeantInGroup(field, "T");
        const bool hasGuide = field.guide != nullptr || isMeantInGroup(field, "G");
        if (!hasScience || !hasGuide) {
            const std::string missing = hasScience ? "no guide star (targuse=\"G\")"
                                        : hasGuide ? "no science target (targuse=\"T\")"
                                                   : "neither science target nor guide star";
            problems.add(rule, opening(*field.element),
                         "The field has " + missing + "; the run says: No science target in field",
                         "Add the target to the field itself, not to a group");
        }
    }
}

void findBadTargets(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const SourceElement* target : document.targetsRead) {
        askEachAttribute(rule, document, *target, problems, createTargetXML);
        const std::string name = "Target " + target->node.attribute(attr::targname).toStdString();
        for (const QString& required : {attr::targra, attr::targdec}) {
            if (target->attribute(required) == nullptr) {
                const std::string message = name + " has no " + required.toStdString();
                problems.add(rule, opening(*target), message, whatToDo(message));
            }
        }
    }
}

void findBadCentres(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (document.fields.empty()) {
        return;
    }
    const SourceElement& field = *document.fields.front().element;
    askEachAttribute(rule, document, field, problems,
                     [](const QDomElement& e) { createAstrometricXML("Field centre", e); });
    const QDomElement masks = field.node.firstChildElement(tag::avoidanceList);
    visitElements(field, [&](const SourceElement& element) {
        if (element.name() == tag::mask && element.node.parentNode() == masks) {
            askEachAttribute(rule, document, element, problems, createSkyMaskXML);
        }
    });
}

void findRepeatedIds(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    std::map<std::uint64_t, const SourceElement*> first;
    const std::size_t fields = document.fields.size();
    if (fields == 0) {
        return;
    }
    for (const SourceElement* target : document.targetsRead) {
        const SourceAttribute* id = target->attribute(attr::configid);
        const bool isInFirst = document.fields.front().element->tag.begin < target->tag.begin &&
                               (fields == 1 || target->tag.begin < document.fields.at(1).element->tag.begin);
        if (id == nullptr || configidOf(target->node) == 0 || !isInFirst) {
            continue;
        }
        if (!first.try_emplace(configidOf(target->node), target).second) {
            problems.add(rule, id->valuePlace,
                         "Target configid already exists: " + id->value.toStdString() +
                             " is that of another target of the field",
                         "Leave configid out, and a free one is assigned; if the document is an output, start from its "
                         "input");
        }
    }
}

void findUnknownFibres(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const std::map<std::uint32_t, SatelliteFibre<Veko::VekoCentre>>* fibres = document.instrument.fibres();
    for (const CheckedField& field : document.fields) {
        const SourceAttribute* id = field.science != nullptr ? field.science->attribute(attr::fibreid) : nullptr;
        if (id == nullptr || fibres == nullptr) {
            continue;
        }
        const auto target = failureOf([&] { createTargetXML(only(*field.science, *id)); });
        const Target science = target ? Target() : createTargetXML(only(*field.science, *id));
        if (!target && science.fibreid != kNoFibre && fibres->count(static_cast<std::uint32_t>(science.fibreid)) == 0) {
            problems.add(rule, id->valuePlace,
                         "fibre assigned to science target does not exist: " + id->value.toStdString(),
                         "Leave fibreid out for the middle of the bundle, or name one of its fibres");
        }
    }
}

} // namespace

const Rule kUnreadable = {"VK101",
                          Severity::Error,
                          "The document cannot be read",
                          "The document is not well-formed XML 1.0, its bytes are not those of its encoding, or it "
                          "exceeds a limit. The place "
                          "is where the reader stopped. What stands before it is well-formed, and is checked except "
                          "for the pointing; what stands behind it is not.",
                          R"(<conditions epoch="2027.25" ha="-1.0>)",
                          R"(<conditions epoch="2027.25" ha="-1.0"/>)"};

const Rule kRunFails = {"VK199",
                        Severity::Error,
                        "The run fails",
                        "The run fails for a reason that no other rule covers. The message is the run's own.",
                        "",
                        ""};

const std::vector<RuleEntry>& rulesOfTheRun() {
    static const std::vector<RuleEntry> rules = {
        {{"VK102", Severity::Error, "The data model version is not that of the configuration",
          "`datamver` of the document element must be the configuration's, letter by letter.",
          R"(<field_definition datamver="8.0">)", R"(<field_definition datamver="8.00">)"},
         findOtherVersion},
        {{"VK103", Severity::Error, "There is no configure element",
          "The run writes its results into `configure` in `observation`, and does not make one.",
          R"(<observation pa="0"><fields><field RA_d="189.997633" Dec_d="-11.623054"><target targuse="T" targra="189.997633" targdec="-11.623054"/><target targuse="G" targra="190.120000" targdec="-11.500000"/></field></fields></observation>)",
          R"(<observation pa="0"><configure><conditions epoch="2027.25" ha="-1.0"/></configure><fields><field RA_d="189.997633" Dec_d="-11.623054"><target targuse="T" targra="189.997633" targdec="-11.623054"/><target targuse="G" targra="190.120000" targdec="-11.500000"/></field></fields></observation>)"},
         findNoConfigure},
        {{"VK104", Severity::Error, "A condition is not a number",
          "`epoch`, `temperature`, `pressure` and `relative_humidity` are plain numbers, or `%%%`.",
          R"(<conditions epoch="early 2027" ha="-1.0"/>)", R"(<conditions epoch="2027.25" ha="-1.0"/>)"},
         findBadConditions},
        {{"VK105", Severity::Error, "The hour angle is not a number", "`ha` is a finite number of hours, or `%%%`.",
          R"(<conditions epoch="2027.25" ha="west"/>)", R"(<conditions epoch="2027.25" ha="-1.0"/>)"},
         findBadHourAngle},
        {{"VK106", Severity::Error, "A field lacks its science target or its guide star",
          "Each field needs a target of use T and one of use G, both directly in the field.",
          R"(<field RA_d="189.997633" Dec_d="-11.623054"><target targname="Galaxy" targuse="T" targra="189.997633" targdec="-11.623054"/></field>)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054"><target targname="Galaxy" targuse="T" targra="189.997633" targdec="-11.623054"/><target targname="Star" targuse="G" targra="190.120000" targdec="-11.500000"/></field>)"},
         findMissingTargets},
        {{"VK107", Severity::Error, "A value of a target cannot be read",
          "The run reads every target of the first field, and science target and guide star of the others.",
          R"(<target targname="Galaxy" targuse="T" targra="unknown" targdec="-11.623054"/>)",
          R"(<target targname="Galaxy" targuse="T" targra="189.997633" targdec="-11.623054"/>)"},
         findBadTargets},
        {{"VK108", Severity::Error, "A field centre or a mask cannot be read",
          "The run reads centre and masks of the first field.", R"(<field RA_d="centre" Dec_d="-11.623054">)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"},
         findBadCentres},
        {{"VK109", Severity::Error, "Two targets have the same configid",
          "Within the first field `configid` must be unique.",
          R"(<field RA_d="189.997633" Dec_d="-11.623054"><target targname="Galaxy" targuse="T" targra="189.997633" targdec="-11.623054" configid="1"/><target targname="Star" targuse="G" targra="190.120000" targdec="-11.500000" configid="1"/></field>)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054"><target targname="Galaxy" targuse="T" targra="189.997633" targdec="-11.623054" configid="1"/><target targname="Star" targuse="G" targra="190.120000" targdec="-11.500000" configid="2"/></field>)"},
         findRepeatedIds},
        {{"VK110", Severity::Error, "The science target's fibre does not exist",
          "`fibreid` of a science target must be a fibre of the bundle.",
          R"(<target targname="Galaxy" targuse="T" targra="189.997633" targdec="-11.623054" fibreid="700"/>)",
          R"(<target targname="Galaxy" targuse="T" targra="189.997633" targdec="-11.623054" fibreid="70"/>)"},
         findUnknownFibres},
    };
    return rules;
}

} // namespace pos
