#include "OtherNotation.h"

#include "CelestialPosition.h"
#include "angles.h"
#include "numberText.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <erfa.h>
#include <vector>

namespace pos {

namespace {

/** No number is longer. */
constexpr int kLongestNumber = 64;
/** Decimals of a Julian epoch that has been a date: an hour. The run moves the date by up to half a day. */
constexpr int kEpochDecimals = 4;

QRegularExpression whole(const char* pattern) {
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern), QRegularExpression::CaseInsensitiveOption);
}

bool isOneOf(char32_t character, const std::u32string& characters) {
    return characters.find(character) != std::u32string::npos;
}

/** The character of ASCII that means the same; 0 for one that means nothing; itself where there is none. */
char32_t plainCharacter(char32_t character) {
    constexpr char32_t kFullWidth = 0xFEE0; // from U+0021 to U+FF01
    if (const int digit = QChar::digitValue(character); digit >= 0) {
        return U'0' + static_cast<char32_t>(digit);
    }
    if (QChar::isSpace(character)) {
        return U' ';
    }
    if (character >= U'\uFF01' && character <= U'\uFF5E') {
        return character - kFullWidth;
    }
    static const std::vector<std::pair<std::u32string, char32_t>> kinds = {
        {U"\u2010\u2011\u2012\u2013\u2014\u2015\u207B\u2212\uFE58\uFE63", U'-'},
        {U"\u00B7\u066B", U'.'},
        {U"\u060C\u201A", U','},
        {U"\u2032\u2019\u00B4\u02B9", U'\''},
        {U"\u2033\u201D\u02BA", U'"'},
        {U"\u00BA\u02DA", U'\u00B0'},
        {U"\u02B0", U'h'},
        {U"\u1D48", U'd'},
        {U"\u1D50", U'm'},
        {U"\u02E2", U's'},
        {U"\u00AD\u200B\u200C\u200D\u200E\u200F\u2060\uFEFF", U'\0'}};
    for (const auto& [characters, plain] : kinds) {
        if (isOneOf(character, characters)) {
            return plain;
        }
    }
    return character;
}

/** Whether a number needs no zeros that its text does not have. */
bool hasEnoughDecimals(Quantity quantity, const QString& number) {
    return withEnoughDecimals(quantity, number) == number;
}

/** A number that may be meant, as the document writes it. */
std::optional<QString> ifPossible(Quantity quantity, const QString& number) {
    const std::optional<double> value = numberOf(number);
    return value && rangeOf(quantity).contains(*value) ? std::optional(withEnoughDecimals(quantity, number))
                                                       : std::nullopt;
}

/** Whether a comma may as well part the thousands: "1,013". */
bool mayPartThousands(Quantity quantity, QString text) {
    static const QRegularExpression thousands = whole(R"([+-]?[1-9]\d{0,2},\d{3})");
    const bool isGroup = thousands.match(text).hasMatch();
    const std::optional<double> value = numberOf(text.remove(','));
    return isGroup && value && rangeOf(quantity).contains(*value);
}

/** How much of the document's unit the first part of a sexagesimal text counts; 0 where its sign is wrong there. */
double unitOfFirst(Quantity quantity, const QString& mark, double first) {
    constexpr double kDegreesAnHour = 15.0;
    const bool isHours = mark == QLatin1String("h");
    const bool isDegrees = mark == QLatin1String("d") || mark == QString(QChar(0xB0));
    switch (quantity) {
    case Quantity::RightAscension:
        return isHours || (!isDegrees && first < 24) ? kDegreesAnHour : 1.0;
    case Quantity::HourAngle:
        return isDegrees ? 1 / kDegreesAnHour : 1.0;
    default:
        return isHours ? 0.0 : 1.0;
    }
}

bool canBeSexagesimal(Quantity quantity) {
    return isPosition(quantity) || quantity == Quantity::HourAngle || quantity == Quantity::PositionAngle;
}

std::optional<OtherNotation> sexagesimal(const QString& text, Quantity quantity) {
    static const QRegularExpression three = whole(R"(([+-]?)\s*(\d{1,3})\s*([:hd° ])\s*(\d{1,2})\s*[:m' ])"
                                                  R"(\s*(\d{1,2}(?:\.\d*)?)\s*(?:s|"|'')?)");
    static const QRegularExpression two = whole(R"(([+-]?)\s*(\d{1,3})\s*([:hd°])\s*(\d{1,2}(?:\.\d*)?)\s*[m']?)");
    if (!canBeSexagesimal(quantity)) {
        return std::nullopt;
    }
    QRegularExpressionMatch match = three.match(text);
    const bool hasSeconds = match.hasMatch();
    if (!hasSeconds) {
        match = two.match(text);
    }
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const double first = match.captured(2).toDouble();
    const double minutes = match.captured(4).toDouble();
    const double seconds = hasSeconds ? match.captured(5).toDouble() : 0.0;
    const double unit = unitOfFirst(quantity, match.captured(3).toLower(), first);
    if (minutes >= 60 || seconds >= 60 || unit == 0.0) {
        return OtherNotation{Notation::Sexagesimal};
    }
    // A position needs its seconds. Behind a colon or a blank a right ascension of degrees may as well be one of hours
    // with a slip.
    const bool isUnitSure =
        quantity != Quantity::RightAscension || unit != 1.0 || !isOneOf(match.captured(3).at(0).unicode(), U": ");
    const double value = (first + minutes / 60 + seconds / 3600) * unit;
    // One more than the last digit of the text is worth, and six.
    const double lastDigit =
        std::pow(10.0, -decimalsOf(match.captured(hasSeconds ? 5 : 4))) * unit / (hasSeconds ? 3600 : 60);
    const int decimals = std::max(6, static_cast<int>(std::ceil(-std::log10(lastDigit))) + 1);
    return OtherNotation{Notation::Sexagesimal,
                         ifPossible(quantity, (match.captured(1) == "-" ? "-" : "") + fixedText(value, decimals)),
                         isUnitSure && (hasSeconds || !isPosition(quantity))};
}

/** The Julian epoch of a date; nothing where it cannot be meant. */
std::optional<QString> epochOf(Quantity quantity, double day, double fraction) {
    return ifPossible(quantity, fixedText(eraEpj(day, fraction), kEpochDecimals));
}

/** The same of a date of the calendar. */
std::optional<QString> epochOfDate(Quantity quantity, int year, int month, int day, double fraction) {
    double zero = 0.0;
    double date = 0.0;
    return eraCal2jd(year, month, day, &zero, &date) == 0 ? epochOf(quantity, zero, date + fraction) : std::nullopt;
}

std::optional<OtherNotation> date(const QString& text, Quantity quantity) {
    static const QRegularExpression iso = whole(R"((\d{4})-(\d{1,2})-(\d{1,2}))"
                                                R"((?:[T ]\s*(\d{1,2}):(\d{2})(?::(\d{2}(?:\.\d*)?))?\s*(?:Z|UTC)?)?)");
    static const QRegularExpression other = whole(R"(\d{1,4}([./-])\d{1,2}\1\d{1,4}|\d{4}-\d{1,2})");
    static const QRegularExpression lettered = whole(R"(([JB])\s*(\d{4}(?:\.\d*)?))");
    static const QRegularExpression days = whole(R"(M?JD\s*=?\s*(\d{5,7}(?:\.\d*)?))");
    if (!isEpoch(quantity)) {
        return std::nullopt;
    }
    if (const auto match = iso.match(text); match.hasMatch()) {
        const double fraction =
            (match.captured(4).toDouble() + match.captured(5).toDouble() / 60 + match.captured(6).toDouble() / 3600) /
            24;
        return OtherNotation{Notation::Date,
                             epochOfDate(quantity, match.captured(1).toInt(), match.captured(2).toInt(),
                                         match.captured(3).toInt(), fraction),
                             true};
    }
    if (const auto match = lettered.match(text); match.hasMatch()) {
        // A Besselian epoch goes with a position in another frame.
        const bool isSure = match.captured(1).toUpper() == "J" &&
                            (quantity == Quantity::CatalogueEpoch || !isCatalogueEpoch(match.captured(2).toDouble()));
        return OtherNotation{Notation::Date, isSure ? ifPossible(quantity, match.captured(2)) : std::nullopt, isSure};
    }
    if (const auto match = days.match(text); match.hasMatch()) {
        return OtherNotation{Notation::Date, epochOfDayCount(quantity, match.captured(1).toDouble()), true};
    }
    return other.match(text).hasMatch() ? std::optional(OtherNotation{Notation::Date}) : std::nullopt;
}

/** A unit that people write behind a number: the document's value is the number times the factor, plus the offset. */
struct Unit {
    const char* names; ///< in small letters without blanks and points, one a word
    double factor;
    double offset = 0.0;
};

const std::vector<Unit>& unitsOf(Quantity quantity) {
    static const char* const kDegree = "\u00B0 d deg degs degree degrees";
    static const char* const kHour = "h hr hrs hour hours";
    static const char* const kArcsecond = "\" '' as arcsec arcsecs arcsecond arcseconds";
    static const double kRadian = radiansToDegrees(1.0);
    static const std::vector<Unit> none;
    static const std::vector<Unit> degrees = {{kDegree, 1}, {"rad radian radians", kRadian}};
    static const std::vector<Unit> ascension = {{kDegree, 1}, {kHour, 15}, {"rad radian radians", kRadian}};
    static const std::vector<Unit> hours = {{kHour, 1}, {kDegree, 1.0 / 15}, {"m min", 1.0 / 60}};
    static const std::vector<Unit> years = {{"y yr yrs a year years", 1}};
    static const std::vector<Unit> temperatures = {
        {"k kelvin \u00B0k degk", 1},
        {"\u00B0c \u2103 c degc celsius degreescelsius", 1, 273.15},
        {"\u00B0f \u2109 f degf fahrenheit degreesfahrenheit", 5.0 / 9, 2298.35 / 9}};
    static const std::vector<Unit> pressures = {{"mbar mb mbars millibar millibars hpa hectopascal", 1},
                                                {"pa pascal pascals", 0.01},
                                                {"kpa kilopascal", 10},
                                                {"bar", 1000},
                                                {"torr mmhg", 1.33322368},
                                                {"inhg", 33.863886}};
    static const std::vector<Unit> fractions = {{"% percent pc", 0.01}};
    static const std::vector<Unit> motions = {{"mas/yr mas/y mas/a masyr-1 masa-1 mas mas/year", 1},
                                              {"arcsec/yr arcsec/y arcsec/a arcsec/year as/yr as/a \"/yr ''/yr \"/a "
                                               "arcsecyr-1 arcsec \"",
                                               1000},
                                              {"deg/yr \u00B0/yr", 3.6e6}};
    static const std::vector<Unit> parallaxes = {{kArcsecond, 1}, {"mas milliarcsec milliarcseconds", 0.001}};
    static const std::vector<Unit> velocities = {{"km/s kms kms-1 km/sec", 1}, {"m/s ms-1", 0.001}};
    switch (quantity) {
    case Quantity::RightAscension:
        return ascension;
    case Quantity::Declination:
    case Quantity::PositionAngle:
        return degrees;
    case Quantity::HourAngle:
        return hours;
    case Quantity::ObservationDate:
    case Quantity::CatalogueEpoch:
        return years;
    case Quantity::Temperature:
        return temperatures;
    case Quantity::Pressure:
        return pressures;
    case Quantity::Humidity:
        return fractions;
    case Quantity::ProperMotion:
        return motions;
    case Quantity::Parallax:
        return parallaxes;
    case Quantity::RadialVelocity:
        return velocities;
    default:
        return none;
    }
}

std::optional<OtherNotation> withUnit(const QString& text, Quantity quantity) {
    static const QRegularExpression form = whole(R"(([+-]?(?:\d+\.?\d*|\.\d+)(?:e[+-]?\d+)?)\s*(\D.*))");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const QString name = match.captured(2).toLower().remove(' ').remove('.').remove('^');
    for (const Unit& unit : unitsOf(quantity)) {
        if (QString(unit.names).split(' ').contains(name)) {
            const QString number = match.captured(1);
            const double value = number.toDouble() * unit.factor + unit.offset;
            // A factor below 1 moves the digits to the right; an offset has two decimals.
            const int moved = static_cast<int>(std::ceil(std::max(0.0, -std::log10(unit.factor))));
            const int decimals = std::max(decimalsOf(number) + moved, unit.offset != 0.0 ? 2 : 0);
            const bool isSame = unit.factor == 1.0 && unit.offset == 0.0;
            return OtherNotation{Notation::WithUnit,
                                 ifPossible(quantity, isSame ? number : writtenNumber(quantity, value, decimals)),
                                 hasEnoughDecimals(quantity, number)};
        }
    }
    return std::nullopt;
}

} // namespace

QString plainCharacters(const QString& text) {
    QString plain;
    for (const uint character : text.toUcs4()) {
        const char32_t replaced = plainCharacter(character);
        if (replaced != 0) {
            plain += QString::fromUcs4(&replaced, 1);
        }
    }
    return plain.trimmed();
}

std::optional<OtherNotation> otherNotation(const QString& text, Quantity quantity) {
    if (text.size() > kLongestNumber) {
        return std::nullopt;
    }
    const QString plain = plainCharacters(text);
    const bool isWhole = quantity == Quantity::WholeNumber;
    if (isWhole ? integerOf(plain).has_value() : numberOf(plain).has_value()) {
        return OtherNotation{Notation::OtherCharacters, withEnoughDecimals(quantity, plain),
                             hasEnoughDecimals(quantity, plain)};
    }
    if (isWhole) {
        return std::nullopt;
    }
    const bool hasComma = plain.count(',') == 1 && !plain.contains('.');
    const QString decimal = hasComma ? QString(plain).replace(',', '.') : plain;
    if (hasComma && numberOf(decimal)) {
        return OtherNotation{Notation::DecimalComma,
                             mayPartThousands(quantity, plain) ? std::nullopt : ifPossible(quantity, decimal),
                             hasEnoughDecimals(quantity, decimal)};
    }
    for (const auto recognise : {sexagesimal, date, withUnit}) {
        if (auto found = recognise(decimal, quantity)) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<QString> epochOfDayCount(Quantity quantity, double days) {
    constexpr double kFirstJulianDate = 1000000.0;
    constexpr double kFirstModifiedDate = 10000.0;
    constexpr double kFirstCalendarDate = 10000000.0;
    constexpr double kEnd = 100000000.0;
    if (days >= kFirstCalendarDate && days < kEnd && std::floor(days) == days) {
        const int date = static_cast<int>(days);
        return epochOfDate(quantity, date / 10000, date / 100 % 100, date % 100, 0.0);
    }
    if (days >= kFirstModifiedDate && days < kFirstCalendarDate) {
        return epochOf(quantity, days < kFirstJulianDate ? kMjdZero : 0.0, days);
    }
    return std::nullopt;
}

bool isCatalogueEpoch(double epoch) {
    static const std::vector<double> epochs = {1950.0, 1991.25, 2000.0, 2015.5, 2016.0};
    return std::find(epochs.begin(), epochs.end(), epoch) != epochs.end();
}

} // namespace pos
