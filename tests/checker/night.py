"""Where Sun and Moon are, to a degree, and how the sky of a site turns: enough to choose a dark night.

The series of low precision are those of the Astronomical Almanac, pages C5 and D22. Angles are degrees.
"""
from math import asin, atan2, cos, degrees, radians, sin

LATITUDE = 28.760583  # of the built-in configuration


def sind(angle):
    return sin(radians(angle))


def cosd(angle):
    return cos(radians(angle))


def equatorial(longitude, latitude):
    """Right ascension and declination of ecliptic coordinates."""
    obliquity = 23.44
    x = cosd(latitude) * cosd(longitude)
    y = cosd(obliquity) * cosd(latitude) * sind(longitude) - sind(obliquity) * sind(latitude)
    z = sind(obliquity) * cosd(latitude) * sind(longitude) + cosd(obliquity) * sind(latitude)
    return degrees(atan2(y, x)) % 360, degrees(asin(z))


def sun(epoch):
    """Place of the Sun at a Julian epoch."""
    days = (epoch - 2000) * 365.25
    anomaly = 357.528 + 0.9856003 * days
    return equatorial(280.460 + 0.9856474 * days + 1.915 * sind(anomaly) + 0.020 * sind(2 * anomaly), 0)


def moon(epoch):
    """Place of the Moon at a Julian epoch, from the centre of the Earth."""
    t = (epoch - 2000) / 100
    longitude = 218.32 + 481267.881 * t + sum(
        size * sind(phase + rate * t)
        for size, phase, rate in ((6.29, 135.0, 477198.87), (-1.27, 259.3, -413335.36), (0.66, 235.7, 890534.22),
                                  (0.21, 269.9, 954397.74), (-0.19, 357.5, 35999.05), (-0.11, 186.5, 966404.03)))
    latitude = sum(size * sind(phase + rate * t)
                   for size, phase, rate in ((5.13, 93.3, 483202.02), (0.28, 228.2, 960400.89),
                                             (-0.28, 318.3, 6003.15), (-0.17, 217.6, -407332.21)))
    return equatorial(longitude, latitude)


def altitude(hour_angle, dec):
    """Altitude at an hour angle, both in degrees."""
    return degrees(asin(sind(LATITUDE) * sind(dec) + cosd(LATITUDE) * cosd(dec) * cosd(hour_angle)))


def parallactic_angle(hour_angle, dec):
    return degrees(atan2(cosd(LATITUDE) * sind(hour_angle),
                         sind(LATITUDE) * cosd(dec) - cosd(LATITUDE) * sind(dec) * cosd(hour_angle)))


def separation(a, b):
    """The angle between two places."""
    return degrees(asin(min(1.0, (sind((a[1] - b[1]) / 2) ** 2
                                  + cosd(a[1]) * cosd(b[1]) * sind((a[0] - b[0]) / 2) ** 2) ** 0.5))) * 2


def sun_altitude(epoch, ra, hour_angle):
    """Altitude of the Sun where a right ascension stands at an hour angle, both in degrees."""
    sun_ra, sun_dec = sun(epoch)
    return altitude(ra + hour_angle - sun_ra, sun_dec)
