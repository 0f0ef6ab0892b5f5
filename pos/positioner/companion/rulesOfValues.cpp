#include "rules.h"

#include "Instrument.h"
#include "OtherUnit.h"
#include "PosConfig.h"
#include "ascensionsInHours.h"
#include "numberText.h"
#include "readByItself.h"
#include "xmlKeywords.h"

#include <QVector>
#include <cmath>

namespace pos {

namespace {

/** The weather moves the pressure by some per cent; the run's default is 14 per cent below the built-in site's. */
constexpr Range kWeather = {0.8, 1.2};
/** Stars move by some mas in a year. Below, a number of arcseconds is likelier; mas/yr. */
constexpr double kSlowMotion = 0.1;
/** No catalogue gives so little. Degrees or radians are likelier; mas/yr. */
constexpr double kNoMotion = 1e-4;
/** Some four hundred stars have a larger parallax; arcseconds. */
constexpr double kRareParallax = 0.1;

std::string nameOf(const DocumentNumber& number) {
    return number.attribute->name.toStdString();
}

/** Such as "pa is 400". */
std::string statement(const DocumentNumber& number) {
    return nameOf(number) + " is " + number.text().trimmed().toStdString();
}

/** The end of a range. */
std::string limitText(double limit) {
    return QString::number(limit).toStdString();
}

/** A turn, in the unit of the document; 0 for what does not go round. */
double turnOf(Quantity quantity) {
    switch (quantity) {
    case Quantity::RightAscension:
    case Quantity::PositionAngle:
        return 360.0;
    case Quantity::HourAngle:
        return 24.0;
    default:
        return 0.0;
    }
}

/** What to write instead. @param fix the number that is surely meant */
std::string advice(const DocumentNumber& number, const std::optional<QString>& fix = std::nullopt) {
    return std::string("Write ") + wantedText(number.quantity) + (fix ? ": " + fix->toStdString() : "");
}

/** A number that may be meant, behind what to do. */
std::string perhaps(const std::optional<QString>& number) {
    return number ? ", perhaps " + number->toStdString() : "";
}

/** Adds a problem of a number. @param fix the number to write instead, where that is sure */
void addNumber(Problems& problems, const Rule& rule, Severity severity, const DocumentNumber& number,
               const std::string& message, const std::string& help, const std::optional<QString>& fix = std::nullopt) {
    // The number of an element that an entity brings stands elsewhere.
    const bool isHere = !(number.attribute->valuePlace == number.element->tag);
    problems.add(rule, severity, number.attribute->valuePlace, message, help,
                 fix && isHere ? std::optional(fix->toUtf8()) : std::nullopt);
}

/** The run's message about a number, with the text of the number; without one what the document says. */
std::string refusalWithText(const DocumentNumber& number, const std::optional<std::string>& refusal) {
    const std::string text = '\'' + number.text().toStdString() + '\'';
    if (refusal) {
        return refusal->find(text) != std::string::npos ? *refusal : *refusal + ": " + text;
    }
    return number.quantity == Quantity::PositionAngle
               ? nameOf(number) + ' ' + text + " is not a number, and the run takes 0 for it"
               : nameOf(number) + " is " + text;
}

/** Adds the numbers in a notation. @param what the notation, for people */
void addNotation(const Rule& rule, const CheckedDocument& document, Problems& problems, Notation notation,
                 const std::string& what) {
    for (const DocumentNumber& number : document.numbers) {
        if (number.notation && number.notation->notation == notation) {
            const std::optional<std::string> refusal = refusalOf(number);
            const std::optional<QString> fix = number.notation->isSure ? number.notation->number : std::nullopt;
            addNumber(problems, rule, refusal ? Severity::Error : Severity::Warning, number,
                      refusalWithText(number, refusal) + ", " + what,
                      advice(number, fix) + (fix ? "" : perhaps(number.notation->number)), fix);
        }
    }
}

void findSexagesimal(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    addNotation(rule, document, problems, Notation::Sexagesimal, "a sexagesimal text");
}

void findDecimalCommas(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    addNotation(rule, document, problems, Notation::DecimalComma, "a number with a comma");
}

void findUnits(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    addNotation(rule, document, problems, Notation::WithUnit, "a number with its unit");
}

void findDates(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    addNotation(rule, document, problems, Notation::Date, "which is not a plain number of years");
}

/** The first character from outside ASCII, as "the character U+2212"; empty where there is none. */
std::string otherCharacter(const QString& text) {
    constexpr uint kLastAscii = 0x7f;
    for (const uint character : text.toUcs4()) {
        if (character > kLastAscii) {
            return QString::asprintf("the character U+%04X", character).toStdString();
        }
    }
    return {};
}

void findOtherCharacters(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    addNotation(rule, document, problems, Notation::OtherCharacters,
                "a number with characters that the run does not read");
    for (const DocumentNumber& number : document.numbers) {
        const std::string character = otherCharacter(number.text());
        if (number.value && !character.empty()) {
            const QString plain = plainCharacters(number.text());
            addNumber(problems, rule, Severity::Note, number,
                      statement(number) + ", with " + character + ", which other programs do not read",
                      advice(number, plain), plain);
        }
    }
}

/** How many decimals a number has, such as "1 decimal". */
std::string decimalsInWords(const QString& text) {
    const int decimals = decimalsOf(text);
    return std::to_string(decimals) + (decimals == 1 ? " decimal" : " decimals");
}

void findFewDecimals(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const DocumentNumber& number : document.numbers) {
        const QString filledUp = withEnoughDecimals(number.quantity, number.text().trimmed());
        const auto refusal = number.value && filledUp != number.text().trimmed() ? refusalOf(number) : std::nullopt;
        if (refusal && refusal->find("does not have enough precision") != std::string::npos) {
            addNumber(problems, rule, Severity::Error, number,
                      *refusal + ": it has " + decimalsInWords(number.text()) + " and needs at least 5",
                      "Write every decimal that is known; if the number is exact, " + filledUp.toStdString());
        }
    }
}

void findNoEpoch(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    if (document.configure == nullptr || document.options.estimates.epoch != kNotGiven) {
        return;
    }
    const SourceElement& place = document.conditions != nullptr ? *document.conditions : *document.configure;
    const SourceAttribute* epoch = document.conditions != nullptr ? place.attribute(attr::epoch) : nullptr;
    if (epoch == nullptr || epoch->value == kMissingValue) {
        problems.add(rule, epoch != nullptr ? epoch->valuePlace : opening(place),
                     "The document has no epoch, and the run points at the sky of the year 0",
                     "Write epoch into conditions, the Julian epoch of the observation in years, or give --epoch");
    }
}

void findDayCounts(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const DocumentNumber& number : document.numbers) {
        const auto epoch =
            number.value && isEpoch(number.quantity) ? epochOfDayCount(number.quantity, *number.value) : std::nullopt;
        if (epoch) {
            addNumber(problems, rule, rule.severity, number,
                      statement(number) + ", a count of days or a date and not a Julian epoch", advice(number, epoch),
                      epoch);
        }
    }
}

void findCatalogueEpochs(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const DocumentNumber& number : document.numbers) {
        if (number.quantity == Quantity::ObservationDate && number.value && isCatalogueEpoch(*number.value)) {
            addNumber(problems, rule, rule.severity, number,
                      statement(number) + ", an epoch of catalogues and hardly the date of the observation",
                      "Write the date of the observation; the epoch of a position is its target's targepoch");
        }
    }
}

bool isMotion(const DocumentNumber& number) {
    return number.quantity == Quantity::ProperMotion && number.value && *number.value != 0.0;
}

void findMotionsWithoutEpoch(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const SourceElement* previous = nullptr;
    for (const DocumentNumber& number : document.numbers) {
        const SourceElement& target = *number.element;
        if (!isMotion(number) || previous == &target) {
            continue;
        }
        previous = &target;
        const SourceAttribute* epoch = target.attribute(attr::targepoch);
        const std::string help = "Write targepoch, the Julian epoch of the position in years";
        if (epoch == nullptr || epoch->value.isEmpty()) {
            problems.add(rule, epoch != nullptr ? epoch->valuePlace : opening(target),
                         "The target has a proper motion and no targepoch, for which the run takes 2015.5", help);
        } else if (const auto years = numberOf(epoch->value); years && *years <= 0.0) {
            problems.add(rule, Severity::Note, epoch->valuePlace,
                         "targepoch is " + epoch->value.toStdString() + ", so the run applies no proper motion", help);
        }
    }
}

template <Quantity quantity>
void findOtherUnits(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const DocumentNumber& number : document.numbers) {
        const auto other = number.quantity == quantity ? otherUnitOf(number) : std::nullopt;
        if (other) {
            addNumber(problems, rule, rule.severity, number, statement(number) + ", which looks like " + other->name,
                      advice(number) + perhaps(other->number));
        }
    }
}

void findOtherParallaxes(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    findOtherUnits<Quantity::Parallax>(rule, document, problems);
    for (const DocumentNumber& number : document.numbers) {
        if (number.quantity == Quantity::Parallax && number.value && std::fabs(*number.value) > kRareParallax &&
            !otherUnitOf(number)) {
            addNumber(problems, rule, Severity::Note, number,
                      statement(number) + ", which few stars reach in arcseconds",
                      "Divide by 1000 if it is in milliarcseconds");
        }
    }
}

void findOtherMotions(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const DocumentNumber& number : document.numbers) {
        if (!isMotion(number) || std::fabs(*number.value) >= kSlowMotion) {
            continue;
        }
        const bool isInRa = number.attribute->name == attr::targpmra;
        const QString other = number.element->node.attribute(isInRa ? attr::targpmdec : attr::targpmra);
        const bool isTiny = std::fabs(*number.value) < kNoMotion;
        // Galaxies hardly move, and of a star one component may be small by chance.
        const bool isStar = number.element->node.attribute(attr::targuse) == QLatin1String("G");
        const bool isSlow = std::hypot(*number.value, numberOf(other).value_or(0.0)) < kSlowMotion;
        addNumber(problems, rule, isTiny || (isStar && isSlow) ? Severity::Warning : Severity::Note, number,
                  statement(number) + ", which looks like " +
                      (isTiny ? "degrees or radians a year" : "arcseconds a year"),
                  isTiny ? "Write milliarcseconds a year" : "Multiply by 1000 if it is in arcseconds a year");
    }
}

void findHours(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const DocumentNumber& number : ascensionsInHours(document)) {
        const QString degrees = writtenNumber(number.quantity, *number.value * 15, decimalsOf(number.text()));
        addNumber(problems, rule, rule.severity, number,
                  statement(number) + ", which looks like hours: 15 times as much lies in the field",
                  advice(number, degrees), degrees);
    }
}

/** A range in words. */
std::string rangeText(const Range& range) {
    return std::isfinite(range.high) ? "from " + limitText(range.low) + " to " + limitText(range.high)
                                     : "not below " + limitText(range.low);
}

/** An angle beyond its range, a turn back; nothing where that is no angle, or beyond the range too. */
std::optional<QString> sameDirection(const DocumentNumber& number) {
    const Range range = rangeOf(number.quantity);
    const double turn = turnOf(number.quantity);
    const double angle = *number.value > range.high ? *number.value - turn : *number.value + turn;
    return turn > 0.0 && range.contains(angle)
               ? std::optional(writtenNumber(number.quantity, angle, decimalsOf(number.text())))
               : std::nullopt;
}

/** Whether the run refuses every number beyond the range, or another rule tells what a number beyond it is. */
bool isToldElsewhere(const DocumentNumber& number) {
    return (number.quantity == Quantity::Priority && number.isRead) || otherUnitOf(number) ||
           (isEpoch(number.quantity) && epochOfDayCount(number.quantity, *number.value));
}

void findOutOfRange(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const DocumentNumber& number : document.numbers) {
        if (!number.value || !std::isfinite(*number.value)) {
            continue;
        }
        const Range range = rangeOf(number.quantity);
        const bool isWithoutEpoch = number.quantity == Quantity::CatalogueEpoch && *number.value <= 0.0;
        if (range.contains(*number.value) || isWithoutEpoch || isToldElsewhere(number)) {
            continue;
        }
        const bool isAbove = *number.value > range.high;
        addNumber(problems, rule, rule.severity, number,
                  statement(number) +
                      (isAbove ? ", above " + limitText(range.high) : ", below " + limitText(range.low)),
                  "Write a number " + rangeText(range) + perhaps(sameDirection(number)));
    }
}

/** The pressure of the standard atmosphere (ISO 2533) at the telescope, millibar; 0 where its height is not known. */
double standardPressure(const PosConfig& config) {
    double height = 0.0; // metres
    const auto failure = failureOf([&] { height = config.get<double>("telescope.height"); });
    const double pressure = 1013.25 * std::pow(1.0 - 2.25577e-5 * height, 5.25588);
    return failure || !std::isfinite(pressure) ? 0.0 : pressure;
}

void findUnusualPressures(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const DocumentNumber& number : document.numbers) {
        // 0 asks for no refraction.
        if (number.quantity != Quantity::Pressure || number.value.value_or(0.0) == 0.0 || otherUnitOf(number) ||
            !rangeOf(number.quantity).contains(*number.value)) {
            continue;
        }
        const double usual = standardPressure(document.instrument.config());
        if (usual > 0.0 && !kWeather.contains(*number.value / usual)) {
            addNumber(problems, rule, rule.severity, number,
                      statement(number) + ", and the air at the telescope has some " +
                          std::to_string(std::lround(usual)) + " millibar",
                      "Write the pressure at the telescope, not at sea level, in millibar: a torr is 1.333");
        }
    }
}

void findNotFinite(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    for (const DocumentNumber& number : document.numbers) {
        if (number.value && !std::isfinite(*number.value) && !refusalOf(number)) {
            addNumber(problems, rule, rule.severity, number, statement(number) + ", which is not a finite number",
                      advice(number));
        }
    }
}

void findWindows(const Rule& rule, const CheckedDocument& document, Problems& problems) {
    const bool isOutput =
        document.configure != nullptr && document.configure->attribute(attr::configureVersion) != nullptr;
    if (document.configure == nullptr || isOutput) {
        return;
    }
    for (const auto& window : document.configure->children) {
        for (const SourceAttribute& attribute : window->attributes) {
            if (window->name() == tag::hourAngleLimits &&
                (attribute.name == attr::latest || attribute.name == attr::earliest)) {
                problems.add(rule, attribute.namePlace,
                             attribute.name.toStdString() + " is what the run writes, and it does not read it",
                             "Give the hour angle as ha of conditions; the run works out the window around it");
            }
        }
    }
}

} // namespace

const std::vector<RuleEntry>& rulesOfValues() {
    static const std::vector<RuleEntry> rules = {
        {{"VK301", Severity::Error, "A position or an angle is sexagesimal",
          "The documents hold decimal degrees, and hours for `ha`. The run reads no `10:41:04.4`, `10h41m04s` or "
          "`10 41 04.4`: it fails, or takes `pa` for 0.\n\n"
          "The right ascension is taken for hours unless it has a sign of degrees or begins with 24 or more. There is "
          "a fix where a position has all three parts, and a right ascension is in hours or has a sign of degrees.",
          R"(<target targuse="T" targra="12:39:59.43" targdec="-11:37:23.0"/>)",
          R"(<target targuse="T" targra="189.997625" targdec="-11.623056"/>)"},
         findSexagesimal},
        {{"VK302", Severity::Error, "A number has a decimal comma",
          "The documents have a decimal point in every country, and no sign between thousands. With a comma the run "
          "fails, or takes `pa` for 0. There is a fix where the number has as many decimals as the run wants.",
          R"(<conditions epoch="2027,25" ha="-1.0"/>)", R"(<conditions epoch="2027.25" ha="-1.0"/>)"},
         findDecimalCommas},
        {{"VK303", Severity::Error, "A number has its unit behind it",
          "Each attribute has one unit, and a number alone stands in it. With a unit or a sign of degrees the run "
          "fails, "
          "or takes `pa` for 0.",
          R"(<observation pa="15°">)", R"(<observation pa="15">)"},
         findUnits},
        {{"VK304", Severity::Error, "A number has characters from outside ASCII",
          "Text that was copied from a page or a table may hold full-width digits or another minus sign. The run fails "
          "with most of them. It reads the minus sign U+2212 and unusual blanks, which the schemas and other programs "
          "refuse: those are notes.",
          R"(<conditions epoch="２０２７.25" ha="-1.0"/>)", R"(<conditions epoch="2027.25" ha="-1.0"/>)"},
         findOtherCharacters},
        {{"VK305", Severity::Error, "An epoch is a date",
          "`epoch` and `targepoch` are Julian epochs, plain years with decimals. The run reads no dates of the "
          "calendar, "
          "no Julian Dates with their letters, and no `J2000`.",
          R"(<conditions epoch="2027-04-01" ha="-1.0"/>)", R"(<conditions epoch="2027.2457" ha="-1.0"/>)"},
         findDates},
        {{"VK306", Severity::Error, "A position has too few decimals",
          "The run refuses right ascensions and declinations that may be wrong by a tenth of an arcsecond because of "
          "their last digit. Zeros at the end count; they are right where the number is exact.",
          R"(<target targuse="T" targra="189.9976" targdec="-11.6231"/>)",
          R"(<target targuse="T" targra="189.997600" targdec="-11.623100"/>)"},
         findFewDecimals},
        {{"VK307", Severity::Warning, "There is no epoch of the observation",
          "Without `epoch` and without `--epoch` the run takes Julian epoch 0: it ends with status 0 and points at the "
          "sky of the year 0, or fails for something else.",
          R"(<conditions ha="-1.0"/>)", R"(<conditions epoch="2027.25" ha="-1.0"/>)"},
         findNoEpoch},
        {{"VK308", Severity::Warning, "An epoch is a Julian Date or a date without signs",
          "`epoch` and `targepoch` are Julian epochs in years. The run takes a Julian Date, a Modified Julian Date or "
          "`20270401` for so many years.",
          R"(<conditions epoch="61496.0" ha="-1.0"/>)", R"(<conditions epoch="2027.2457" ha="-1.0"/>)"},
         findDayCounts},
        {{"VK309", Severity::Warning, "The date of the observation is an epoch of catalogues",
          "`epoch` of `conditions` says when the observation is made. 1950.0, 1991.25, 2000.0, 2015.5 and 2016.0 are "
          "epochs for which catalogues give positions; they belong into `targepoch`.",
          R"(<conditions epoch="2000.0" ha="-1.0"/>)", R"(<conditions epoch="2027.25" ha="-1.0"/>)"},
         findCatalogueEpochs},
        {{"VK310", Severity::Warning, "A proper motion has no epoch",
          "Without `targepoch` the run takes the position for one of 2015.5, and moves it from there. With 0 or less "
          "it "
          "applies no proper motion, which is a note.",
          R"(<target targuse="G" targra="190.120000" targdec="-11.500000" targpmra="-12.5" targpmdec="8.0"/>)",
          R"(<target targuse="G" targra="190.120000" targdec="-11.500000" targepoch="2016.0" targpmra="-12.5" targpmdec="8.0"/>)"},
         findMotionsWithoutEpoch},
        {{"VK311", Severity::Warning, "A temperature is not in kelvin",
          "`temperature` is in kelvin. Refraction takes 123.15 for all that is less, and so far too cold air.",
          R"(<conditions epoch="2027.25" temperature="8.5" pressure="770" relative_humidity="0.25" ha="-1.0"/>)",
          R"(<conditions epoch="2027.25" temperature="281.65" pressure="770" relative_humidity="0.25" ha="-1.0"/>)"},
         findOtherUnits<Quantity::Temperature>},
        {{"VK312", Severity::Warning, "A pressure is not in millibar",
          "`pressure` is in millibar, which is hectopascal, at the telescope. Refraction grows with it.",
          R"(<conditions epoch="2027.25" temperature="281.5" pressure="77000" relative_humidity="0.25" ha="-1.0"/>)",
          R"(<conditions epoch="2027.25" temperature="281.5" pressure="770" relative_humidity="0.25" ha="-1.0"/>)"},
         findOtherUnits<Quantity::Pressure>},
        {{"VK313", Severity::Warning, "A relative humidity is in per cent",
          "`relative_humidity` is a fraction from 0 to 1. Refraction takes 1 for all that is more.",
          R"(<conditions epoch="2027.25" temperature="281.5" pressure="770" relative_humidity="25" ha="-1.0"/>)",
          R"(<conditions epoch="2027.25" temperature="281.5" pressure="770" relative_humidity="0.25" ha="-1.0"/>)"},
         findOtherUnits<Quantity::Humidity>},
        {{"VK314", Severity::Warning, "An hour angle is in degrees",
          "`ha` is in hours, positive in the west. An hour is 15 degrees.",
          R"(<conditions epoch="2027.25" ha="-30.0"/>)", R"(<conditions epoch="2027.25" ha="-2.0"/>)"},
         findOtherUnits<Quantity::HourAngle>},
        {{"VK315", Severity::Warning, "A right ascension is in hours",
          "The documents hold degrees. The rule speaks where a place lies outside of the field (`--field_radius`), and "
          "15 "
          "times its right ascension lies with the field's centre, its science target or its guide star.",
          R"(<target targuse="G" targra="12.674667" targdec="-11.500000" targepoch="2016.0"/>)",
          R"(<target targuse="G" targra="190.120005" targdec="-11.500000" targepoch="2016.0"/>)"},
         findHours},
        {{"VK316", Severity::Warning, "A proper motion is hardly in milliarcseconds a year",
          "`targpmra` and `targpmdec` are in mas/yr. Hardly a star moves by less than 0.1 mas in a year, so less looks "
          "like arcseconds, and next to nothing like degrees or radians. It is a note where one component is larger, "
          "and "
          "for targets that may be galaxies.",
          R"(<target targuse="G" targra="190.120000" targdec="-11.500000" targepoch="2016.0" targpmra="-0.0125" targpmdec="0.008"/>)",
          R"(<target targuse="G" targra="190.120000" targdec="-11.500000" targepoch="2016.0" targpmra="-12.5" targpmdec="8.0"/>)"},
         findOtherMotions},
        {{"VK317", Severity::Warning, "A parallax is in milliarcseconds",
          "The run reads `targparal` in arcseconds, catalogues give milliarcseconds. The nearest star has 0.77 "
          "arcseconds. From 0.1 on, which few stars reach, it is a note.",
          R"(<target targuse="G" targra="190.120000" targdec="-11.500000" targepoch="2016.0" targparal="3.2"/>)",
          R"(<target targuse="G" targra="190.120000" targdec="-11.500000" targepoch="2016.0" targparal="0.0032"/>)"},
         findOtherParallaxes},
        {{"VK318", Severity::Warning, "A number is out of its range",
          "The run checks no ranges: it points at a declination beyond 90 degrees and refracts with negative pressure. "
          "Right ascensions go from 0 to 360, declinations to 90 on both sides, position angles to 360, hour angles to "
          "12, dates from 1960 to 2200.",
          R"(<observation pa="400">)", R"(<observation pa="40">)"},
         findOutOfRange},
        {{"VK319", Severity::Note, "A pressure is hardly one of the site",
          "The pressure differs by more than a fifth from that of the standard atmosphere at the height of the "
          "telescope. It may be in torr, or reduced to sea level as weather services give it.",
          R"(<conditions epoch="2027.25" temperature="281.5" pressure="577.5" relative_humidity="0.25" ha="-1.0"/>)",
          R"(<conditions epoch="2027.25" temperature="281.5" pressure="770" relative_humidity="0.25" ha="-1.0"/>)"},
         findUnusualPressures},
        {{"VK320", Severity::Warning, "A number is infinite or not a number",
          "The run reads `nan` and `inf` as numbers, and computes with them.",
          R"(<conditions epoch="2027.25" temperature="nan" pressure="770" relative_humidity="0.25" ha="-1.0"/>)",
          R"(<conditions epoch="2027.25" temperature="281.5" pressure="770" relative_humidity="0.25" ha="-1.0"/>)"},
         findNotFinite},
        {{"VK321", Severity::Note, "The window of hour angles is given",
          "The run writes `latest` and `earliest`, and does not read them. The rule passes over documents that a run "
          "has "
          "left.",
          R"(<configure><conditions epoch="2027.25" ha="-1.0"/><hour_angle_limits latest="-2.0" earliest="2.0"/></configure>)",
          R"(<configure><conditions epoch="2027.25" ha="-1.0"/></configure>)"},
         findWindows},
    };
    return rules;
}

} // namespace pos
