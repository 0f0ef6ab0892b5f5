"""Values as people write them in other notations and units, each made from the right one.

They are worked out here by other formulas than the program has. Where a value has no such form, NotHere is raised.
"""
from field_documents import missing


def sexagesimal(value, unit, marks):
    """A number of degrees in three parts. The last one has the same value to the last digit of the degrees."""
    sign, size = "-" if value.startswith("-") else "", abs(float(value)) / unit
    seconds, decimals = round(size * 3600, 6), 5
    parts = (int(seconds // 3600), int(seconds // 60 % 60), seconds % 60)
    return f"{sign}{parts[0]:02d}{marks[0]}{parts[1]:02d}{marks[1]}{parts[2]:0{decimals + 3}.{decimals}f}{marks[2]}"


def hours_with_colons(value):
    return sexagesimal(value, 15, ":: ").strip()


def hours_with_letters(value):
    return sexagesimal(value, 15, "hms")


def hours_with_blanks(value):
    return sexagesimal(value, 15, "   ").strip()


def degrees_with_colons(value):
    return sexagesimal(value, 1, ":: ").strip()


def degrees_with_letters(value):
    return sexagesimal(value, 1, "dms")


def degrees_with_signs(value):
    return sexagesimal(value, 1, "\u00b0\u2032\u2033")


def with_comma(value):
    return value.replace(".", ",") if "." in value else value + ",0"


def with_unit(unit):
    def in_unit(value):
        return value + unit
    in_unit.__name__ = f"a number in{unit if unit.startswith(' ') else ' ' + unit}"
    return in_unit


def scaled(factor, offset, decimals, name, unit=""):
    def other(value):
        return f"{float(value) * factor + offset:.{decimals}f}{unit}"
    other.__name__ = name
    return other


def full_width(value):
    return "".join(chr(ord(digit) + 0xFEE0) if digit.isdigit() else digit for digit in value)


def unicode_minus(value):
    return value.replace("-", "\u2212") if value.startswith("-") else missing()


def en_dash(value):
    return value.replace("-", "\u2013") if value.startswith("-") else missing()


def julian_letter(value):
    return "J" + value


def few_decimals(value):
    shortened = value.rstrip("0")
    return shortened if 1 <= len(shortened.split(".")[1]) < 5 else missing()


def days_of(epoch):
    """A Julian Date."""
    return 2451545.0 + (float(epoch) - 2000) * 365.25


def julian_date(value):
    return f"{days_of(value):.3f}"


def modified_julian_date(value):
    return f"{days_of(value) - 2400000.5:.3f}"


def lettered_julian_date(value):
    return f"JD {days_of(value):.3f}"


def calendar_date(value):
    """Date and time by the calendar (Fliegel and van Flandern)."""
    day = days_of(value) + 0.5
    minutes, rest = round(day % 1 * 1440), int(day) + 68569
    century = 4 * rest // 146097
    rest -= (146097 * century + 3) // 4
    year = 4000 * (rest + 1) // 1461001
    rest -= 1461 * year // 4 - 31
    month = 80 * rest // 2447
    day_of_month = rest - 2447 * month // 80
    month, year = month + 2 - 12 * (month // 11), 100 * (century - 49) + year + month // 11
    return f"{year:04d}-{month:02d}-{day_of_month:02d}T{minutes // 60:02d}:{minutes % 60:02d}"


def calendar_date_without_signs(value):
    return calendar_date(value)[:10].replace("-", "")


def west_of_zero(value):
    return f"{float(value) - 360:.6f}" if float(value) > 180 else missing()


def moved(degrees):
    def by(value):
        return f"{float(value) + degrees:.6f}"
    by.__name__ = f"a place {degrees} degrees off"
    return by


def hour_angle_in_degrees(value):
    """Up to 24 they could be hours."""
    return f"{float(value) * 15:.1f}" if abs(float(value)) * 15 > 24 else missing()


HOURS = scaled(1 / 15, 0, 9, "hours")
