#include "rules.h"

#include "documentVocabulary.h"
#include "misusedNames.h"
#include "numberText.h"
#include "targetFinders.h"
#include "xmlKeywords.h"
#include "xmlStructure.h"

#include <algorithm>
#include <map>
#include <set>

namespace pos {

namespace {

/** Names as a sentence lists them: "a", "a or b", "a, b or c". */
std::string listed(const std::vector<QString>& names, const std::string& conjunction) {
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i) {
        list += (i == 0 ? "" : i + 1 == names.size() ? " " + conjunction + " " : ", ") + names.at(i).toStdString();
    }
    return list;
}

/** What to write instead of a name, where that is certain. */
std::optional<QByteArray> nameFix(const MisusedName& name, const CheckedDocument& document) {
    const bool isWritten = document.text.utf8().at(name.element->tag.begin) == '<';
    const QString meant = name.meant.front();
    const bool isThere = name.attribute != nullptr && name.element->node.hasAttribute(meant);
    if (name.meant.size() > 1 || !isWritten || isThere) {
        return std::nullopt;
    }
    return meant.toUtf8();
}

/** Where a name stands: "in fields", "on target". */
std::string whereOf(const MisusedName& name) {
    if (name.attribute != nullptr) {
        return "on " + name.element->name().toStdString();
    }
    return name.element->parent != nullptr ? "in " + name.element->parent->name().toStdString() : "as document element";
}

template <typename Add> void visitMisused(const CheckedDocument& document, Misuse misuse, const Add& add) {
    for (const MisusedName& name : document.misusedNames) {
        if (name.misuse == misuse) {
            add(name);
        }
    }
}

void findNearNames(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    std::set<std::pair<const SourceElement*, QString>> fixed;
    visitMisused(document, Misuse::Near, [&](const MisusedName& name) {
        const std::string meant = listed(name.meant, "or");
        const bool isThere = name.attribute != nullptr && name.element->node.hasAttribute(name.meant.front());
        std::optional<QByteArray> fix = nameFix(name, document);
        if (fix && name.attribute != nullptr && !fixed.emplace(name.element, name.meant.front()).second) {
            fix.reset(); // An element has an attribute once.
        }
        problems.add(rule, name.place(),
                     name.name().toStdString() + " is not known " + whereOf(name) + ", and the run passes over it",
                     isThere                     ? "Remove it, or correct it: " + meant + " stands there too"
                     : name.attribute != nullptr ? "Write " + meant
                                                 : "Write " + meant + ", in the end tag too if there is one",
                     fix, name.attribute == nullptr ? name.element->endNamePlace : std::nullopt);
    });
}

void findMisplacedNames(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    visitMisused(document, Misuse::Misplaced, [&](const MisusedName& name) {
        const bool isElement = name.attribute == nullptr;
        const bool isAttributeName = isElement && documentVocabulary().find(name.name()) == nullptr;
        const std::string place = name.meant.empty() ? "the document element" : listed(name.meant, "or");
        problems.add(rule, name.place(), name.name().toStdString() + " is not read " + whereOf(name),
                     isAttributeName ? "Write it as an attribute of " + place
                     : isElement     ? "Move it into " + place
                                     : "Write it on " + place);
    });
}

void findRepeatedElements(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    visitMisused(document, Misuse::Repeated, [&](const MisusedName& name) {
        problems.add(rule, name.place(),
                     "The run reads another " + name.name().toStdString() + ", and passes over this one",
                     "Put all that is meant into one of them, and remove the other");
    });
}

void findUnknownNames(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    visitMisused(document, Misuse::Unknown, [&](const MisusedName& name) {
        problems.add(rule, name.place(),
                     name.name().toStdString() + " is not known " + whereOf(name) + "; the run only keeps it",
                     "Remove it, unless other programs read it");
    });
}

void findBadPositionAngle(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const SourceAttribute* angle =
        document.observation != nullptr ? document.observation->attribute(attr::pa) : nullptr;
    if (angle != nullptr && !numberOf(angle->value)) {
        problems.add(rule, angle->valuePlace,
                     "pa '" + angle->value.toStdString() + "' is not a number, and the run takes 0 for it",
                     "Write the position angle in degrees, as a number with a decimal point and without a unit");
    }
}

/** Tells the coordinates of a centre that the run takes for 0. */
void findZerosIn(const Rule& rule, Severity severity, const SourceElement& element, Problems& problems) {
    const std::string help = "Write RA_d and Dec_d of the " + element.name().toStdString() + " in decimal degrees";
    std::vector<QString> missing;
    for (const QString& name : {attr::raD, attr::decD}) {
        const SourceAttribute* attribute = element.attribute(name);
        if (attribute != nullptr && attribute->value == kMissingValue) {
            problems.add(rule, severity, attribute->valuePlace,
                         name.toStdString() + " is not filled in, and the run takes 0 for it", help);
        } else if (lacksAttribute(element, name)) {
            missing.push_back(name);
        }
    }
    if (!missing.empty()) {
        problems.add(rule, severity, opening(element),
                     "The " + element.name().toStdString() + " has no " + listed(missing, "and no") +
                         ", and the run takes 0 instead",
                     help);
    }
}

void findZeroCentres(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (document.fields.empty()) {
        return;
    }
    const SourceElement& field = *document.fields.front().element;
    findZerosIn(rule, rule.severity, field, problems);
    for (const auto& child : field.children) {
        for (const auto& mask : child->children) {
            if (child->name() == tag::avoidanceList && mask->name() == tag::mask) {
                // Nothing depends on masks.
                findZerosIn(rule, Severity::Note, *mask, problems);
            }
        }
    }
}

/** A quantity with its unit, such as "660 millibar", that holds for an absent attribute of the conditions. */
std::string defaultOf(const QString& name) {
    const KnownAttribute& known = documentVocabulary().elements.at(tag::conditions).attributes.at(name);
    return (known.absent + (known.unit == "-" ? QString() : ' ' + known.unit)).toStdString();
}

void findDefaults(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (document.conditions == nullptr) {
        return;
    }
    const SourceElement& conditions = *document.conditions;
    const auto isGiven = [&](const QString& name) {
        return conditions.node.attribute(name, kMissingValue) != kMissingValue;
    };
    const bool hasWeather = isGiven(attr::temperature) || isGiven(attr::pressure) || isGiven(attr::relativeHumidity);
    const Estimates& estimates = document.options.estimates;
    const std::map<QString, bool> isNeeded = {
        {attr::ha, !conditions.node.hasAttribute(attr::ha) && estimates.hourAngle == kHourAngleNotGiven},
        {attr::temperature, hasWeather},
        {attr::pressure, hasWeather && estimates.pressure == kNotGiven},
        {attr::relativeHumidity, hasWeather}};
    for (const auto& [name, needed] : isNeeded) {
        if (needed && !isGiven(name) && (conditions.node.hasAttribute(name) || lacksAttribute(conditions, name))) {
            problems.add(rule, valueOrOpening(conditions, name),
                         "conditions gives no " + name.toStdString() + ", and the run takes " + defaultOf(name),
                         "Write " + name.toStdString() + ", if that is not what holds");
        }
    }
}

void findNoField(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (!document.fields.empty()) {
        return;
    }
    const SourceElement* place = document.observation != nullptr ? document.observation : &document.root;
    const QDomElement fields = findElement(document.root.node, tag::fields);
    visitElements(document.root, [&](const SourceElement& element) {
        if (!fields.isNull() && element.node == fields) {
            place = &element;
        }
    });
    problems.add(rule, opening(*place), "There is no field, and the run points at right ascension 0 and declination 0",
                 "Add a field with its targets to fields in the observation");
}

} // namespace

const std::vector<RuleEntry>& rulesOfNames() {
    static const std::vector<RuleEntry> rules = {
        {{"VK201", Severity::Warning, "A name is near a known one",
          "The run knows names letter by letter. It keeps any other attribute or element, but does not read it, and "
          "the default of the one that was meant holds.",
          R"(<observation PA="30">)", R"(<observation pa="30">)"},
         findNearNames},
        {{"VK202", Severity::Warning, "A name stands where the run does not read it",
          "The run reads each attribute on its own elements, and each element in its own place. Elsewhere it keeps "
          "them and passes over them.",
          R"(<conditions epoch="2027.25" ha="-1.0" pa="30"/>)", R"(<conditions epoch="2027.25" ha="-1.0"/>)"},
         findMisplacedNames},
        {{"VK203", Severity::Warning, "An element stands twice",
          "Of an element that should stand once the run reads the first, and passes over the others.",
          R"(<configure><conditions epoch="2027.25" ha="-1.0"/><conditions epoch="2027.75" ha="1.0"/></configure>)",
          R"(<configure><conditions epoch="2027.25" ha="-1.0"/></configure>)"},
         findRepeatedElements},
        {{"VK204", Severity::Note, "A name is not known",
          "The run keeps the attribute or element. What stands on the science target also goes to each generated "
          "target. Names with a colon are left to those who declare their prefix.",
          R"(<conditions epoch="2027.25" ha="-1.0" seeing="0.8"/>)", R"(<conditions epoch="2027.25" ha="-1.0"/>)"},
         findUnknownNames},
        {{"VK205", Severity::Warning, "A use is a small letter",
          "Only a capital `T` makes a science target, and only a capital `G` a guide star. Of the other uses the run "
          "reads a small letter as its capital.",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targname="science" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/>)"
          R"(<target targname="other" targuse="g" targra="190.100000" targdec="-11.550000"/></field>)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targname="science" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/>)"
          R"(<target targname="other" targuse="R" targra="190.100000" targdec="-11.550000"/></field>)"},
         findSmallUses},
        {{"VK206", Severity::Warning, "A field has several science targets or guide stars",
          "The run takes the field's own targets in order until it has seen both uses. Of each use the last one up to "
          "there counts. The others are ordinary targets. Targets that a run has generated may have any use.",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targname="first" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/>)"
          R"(<target targname="second" targuse="T" targra="189.900000" targdec="-11.600000"/></field>)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targname="first" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/>)"
          R"(<target targname="second" targuse="R" targra="189.900000" targdec="-11.600000"/></field>)"},
         findSeveralTargets},
        {{"VK207", Severity::Warning, "A science target or guide star is inside a group",
          "The run looks for both among the field's own targets only. If the field lacks the one that is in the group, "
          "the run fails, and it is an error.",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targname="science" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/>)"
          R"(<group><target targname="second" targuse="G" targra="189.900000" targdec="-11.600000"/></group></field>)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targname="science" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/>)"
          R"(<group><target targname="second" targuse="R" targra="189.900000" targdec="-11.600000"/></group></field>)"},
         findGroupedTargets},
        {{"VK208", Severity::Warning, "Targets stand behind an empty group",
          "Where the run reads the targets of the first field, a group without elements ends their list: it passes "
          "over all that follows in the same field or group, checks none of its values and gives it no `configid`.",
          R"(<field RA_d="189.997633" Dec_d="-11.623054"><group/>)"
          R"(<target targname="science" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/></field>)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targname="science" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/><group/></field>)"},
         findEmptyGroups},
        {{"VK209", Severity::Note, "Two targets of a field have the same name",
          "Messages name a target by its `targname`; nothing else depends on it.",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targname="M 104" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="M 104" targuse="G" targra="190.120000" targdec="-11.500000"/></field>)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targname="M 104" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/></field>)"},
         findRepeatedNames},
        {{"VK210", Severity::Warning, "Two targets of a field have the same id",
          "`targid` should be unique among the targets of one catalogue, and `configid` in each field. The run refuses "
          "a second `configid` in the first field only; in the others it passes, and the output has two of them. A "
          "second `targid` is a note: the run does not read it.",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targid="7" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targid="7" targuse="G" targra="190.120000" targdec="-11.500000"/></field>)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targid="7" targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targid="8" targuse="G" targra="190.120000" targdec="-11.500000"/></field>)"},
         findRepeatedTargetIds},
        {{"VK211", Severity::Warning, "The science target's fibre cannot be used",
          "The run places the science target on the fibre of its `fibreid` even if that is disabled or broken. On an "
          "absent fibre the target gets neither place nor fibre.",
          R"(<target targname="science" targuse="T" targra="189.997633" targdec="-11.623054" fibreid="160"/>)",
          R"(<target targname="science" targuse="T" targra="189.997633" targdec="-11.623054" fibreid="161"/>)"},
         findUnusableFibres},
        {{"VK212", Severity::Note, "A target asks for a fibre that does not exist",
          "Only the science target gets the fibre of its `fibreid`. On other targets the run keeps the number without "
          "looking it up.",
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000" fibreid="9999"/>)",
          R"(<target targname="guide" targuse="G" targra="190.120000" targdec="-11.500000"/>)"},
         findUselessFibres},
        {{"VK213", Severity::Note, "A field holds generated targets",
          "The document is the output of a run. Another run adds a target for each fibre once more, and a third one "
          "may refuse the document.",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targuse="G" targra="190.120000" targdec="-11.500000"/>)"
          R"(<target automatic="1" targuse="T" targra="189.997000" targdec="-11.623000"/></field>)",
          R"(<field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targuse="G" targra="190.120000" targdec="-11.500000"/></field>)"},
         findGeneratedTargets},
        {{"VK214", Severity::Warning, "The position angle is read as 0",
          "`pa` of the observation is a plain number of degrees. For anything else the run takes 0, without a message.",
          R"(<observation pa="about 30">)", R"(<observation pa="30">)"},
         findBadPositionAngle},
        {{"VK215", Severity::Warning, "A field centre is read as 0",
          "The run points at `RA_d` and `Dec_d` of the first field to find date, horizon and rotator. Where one is "
          "missing or `%%%`, it takes 0. A mask without a centre is a note: no computation uses it.",
          R"(<field RA_d="%%%" Dec_d="%%%">)", R"(<field RA_d="189.997633" Dec_d="-11.623054">)"},
         findZeroCentres},
        {{"VK216", Severity::Note, "A default holds for a condition",
          "Without `ha` the run points at hour angle 0. Where one of `temperature`, `pressure` and "
          "`relative_humidity` is given, the others are expected too. A document without weather, or with "
          "`ha=\"%%%\"`, "
          "says that the defaults are meant.",
          R"(<conditions epoch="2027.25" ha="-1.0" temperature="281.5" pressure="770"/>)",
          R"(<conditions epoch="2027.25" ha="-1.0" temperature="281.5" pressure="770" relative_humidity="0.25"/>)"},
         findDefaults},
        {{"VK217", Severity::Warning, "There is no field",
          "The run passes, points at right ascension 0 and declination 0, and adds no target.", "<fields/>",
          R"(<fields><field RA_d="189.997633" Dec_d="-11.623054">)"
          R"(<target targuse="T" targra="189.997633" targdec="-11.623054"/>)"
          R"(<target targuse="G" targra="190.120000" targdec="-11.500000"/></field></fields>)"},
         findNoField},
    };
    return rules;
}

} // namespace pos
