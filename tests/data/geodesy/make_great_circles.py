#!/usr/bin/env python3
"""Writes great_circles.txt: spherical navigation computed with 50 digits, by haversines and by angles, so by other
formulas than the library's. Needs mpmath. Run it in this folder."""
import random
from mpmath import mp, mpf, sin, cos, asin, atan2, sqrt, radians, degrees

mp.dps = 50
RADIUS = mpf('3437.74677')


def angle(a, b):
    """Angle of two (lat, lon) in degrees, by the haversine."""
    p, q, d = radians(a[0]), radians(b[0]), radians(b[1] - a[1])
    h = sin((q - p) / 2) ** 2 + cos(p) * cos(q) * sin(d / 2) ** 2
    return 2 * atan2(sqrt(h), sqrt(1 - h))


def course(a, b):
    p, q, d = radians(a[0]), radians(b[0]), radians(b[1] - a[1])
    return atan2(sin(d) * cos(q), cos(p) * sin(q) - sin(p) * cos(q) * cos(d))


def position(lat, lon):
    """As a program reads it: rounded to 53 bits."""
    return mpf(float(lat)), mpf(float(lon))


def number(x):
    return mp.nstr(x, 17)


def leg(lat1, lon1, lat2, lon2):
    a, b = position(lat1, lon1), position(lat2, lon2)
    d = angle(a, b)
    # What the rounding of unit vectors to 53 bits can turn a course by.
    tolerance = degrees(mpf('6e-16') / sin(d)) + mpf('1e-13')
    print('leg', lat1, lon1, lat2, lon2, number(d * RADIUS), number(degrees(course(a, b)) % 360),
          number((degrees(course(b, a)) + 180) % 360), mp.nstr(tolerance, 3))


def off(lat1, lon1, lat2, lon2, lat, lon):
    a, b, p = position(lat1, lon1), position(lat2, lon2), position(lat, lon)
    d, turn = angle(a, p), course(a, p) - course(a, b)
    cross = asin(sin(d) * sin(turn))
    along = atan2(sin(d) * cos(turn), cos(d))
    print('off', lat1, lon1, lat2, lon2, lat, lon, number(cross * RADIUS), number(along * RADIUS))


random.seed(7)
print('# Made by make_great_circles.py: 50-digit spherical computation, radius', RADIUS, 'NM.')
print('# leg  lat1 lon1 lat2 lon2  distance  initial-course  final-course  course-tolerance')
for text in ('47.5 -122.25 51.5 -0.5', '-33.875 151.125 37.625 -122.375', '0 179.5 0.5 -179.5', '10 -180 -10 179.75',
             '60 10 60.00001 10', '60 10 60 10.00001', '0 0 0 0.000001', '0 0 0.00001 179.99999', '45 45 -45 -134.9999',
             '89.999 0 89.999 180', '89.999 5 -89.999 5', '-90 0 12.5 77', '0 0 45 0', '0 0 44.999 0.001', '5 5 5 -175.5',
             '12.5 7.25 12.5 7.5', '-1 -1 1 1', '80 -170 80 170', '51.5 0 51.5 0.125', '0 0 0 90'):
    leg(*text.split())
for _ in range(20):
    leg(*('%.4f' % random.uniform(-x, x) for x in (90, 180, 90, 180)))
print('# off  lat1 lon1 lat2 lon2  lat lon  cross-track  along-track')
for text in ('0 0 0 10 0.5 5', '0 0 0 10 -0.5 -5', '0 0 0 10 0 20', '50 -10 45 -60 48 -30', '60 170 60 -170 61 180'):
    off(*text.split())
for _ in range(15):
    off(*('%.4f' % random.uniform(-x, x) for x in (85, 180, 85, 180, 85, 180)))
