#!/usr/bin/env python3
"""Writes flat.txt and device.txt: what PROJ's command line (proj 9) makes of the same positions."""
import math
import os
import subprocess

HERE = os.path.dirname(os.path.abspath(__file__))
WIDTH, HEIGHT = 1000, 600
M_PER_FT = 1 / 3.2808399
R = 6378137.0


def proj(arguments, positions):
    """Plane coordinates of (lat, lon) pairs; None where PROJ has none."""
    text = "".join(f"{lon} {lat}\n" for lat, lon in positions)
    command = ["proj", "-f", "%.13f", *arguments.split()]
    out = subprocess.run(command, input=text, capture_output=True, text=True, check=True)
    rows = [line.split() for line in out.stdout.splitlines()]
    return [None if "*" in row else tuple(map(float, row)) for row in rows]


KINDS = "lambert mercator orthographic rectangular miller albers perspective stereographic gnomonic".split()


def write(out, head, positions, points):
    kind = KINDS.index(head.split()[0].split("-")[0])
    out.write(f"case {kind} {head}\n")
    for position, point in zip(positions, points):
        if point is not None:
            out.write("%g %g  %.15g %.15g\n" % (*position, *point))


WORLD = [(0, 0), (0, -90), (47.5, -122.3), (-33.9, 151.2), (66.6, 179.5), (-66.6, -179.5), (88.9, 10), (-88.5, -60),
         (21.3, -157.9), (51.5, -0.1), (-0.001, 0.001), (35.68, 139.77)]


def flat(out):
    out.write("# case KIND NAME PARAMETERS TOLERANCE, then rows: lat lon x y. Source: proj, see generate.py.\n")
    sphere = f"+R={R}"
    write(out, "mercator 1e-6", WORLD, proj(f"+proj=merc {sphere}", WORLD))
    write(out, "miller 1e-6", WORLD, proj(f"+proj=mill {sphere}", WORLD))
    for parallel in (0, 60):
        stretch = 1 / math.cos(math.radians(parallel))
        points = [(x, y * stretch) for x, y in proj(f"+proj=eqc {sphere}", WORLD)]
        write(out, f"rectangular {parallel} 1e-6", WORLD, points)
    for cone in ((45, 30, -90, 0), (33, 45, -122.3, 47.5), (-20, -50, 135, -30)):
        head = "%g %g %g %g" % cone
        cone = "+lat_1=%g +lat_2=%g +lon_0=%g +lat_0=%g" % cone
        write(out, f"lambert {head} 1e-11", WORLD, proj(f"+proj=lcc {cone} +R=1", WORLD))
        write(out, f"lambert-wgs84 {head} 1e-11", WORLD, proj(f"+proj=lcc {cone} +a=1 +rf=298.257223563", WORLD))
        write(out, f"albers {head} 1e-11", WORLD, proj(f"+proj=aea {cone} +R=1", WORLD))


def around(lat, lon):
    return [(lat, lon)] + [(max(-90, min(90, lat + a)), lon + b) for a, b in
                           ((4, 0), (-3, 0), (0, 5), (0, -4), (8, 12), (-15, -9), (20, -30), (-30, 40))]


def pixels(points, scale):
    """Plane coordinates, y up, to the device about the window's middle."""
    return [p and (WIDTH / 2 + scale * p[0], HEIGHT / 2 - scale * p[1]) for p in points]


def perspective(lat, lon, feet, heading, bank, pitch, view):
    """tpers lays the plane through the centre point: along the line of sight it is h cos(tilt) away, and the line of
    sight meets it h sin(tilt) above the centre point."""
    tilt = math.radians(pitch + 90)
    h = feet * M_PER_FT / R
    positions = around(lat, lon)
    plane = proj(f"+proj=tpers +R=1 +h={h!r} +tilt={pitch + 90} +azi={heading} +lat_0={lat} +lon_0={lon}", positions)
    roll = math.radians(bank)
    points = []
    for point in plane:
        if point is None or point[1] * math.sin(tilt) >= h:  # beyond the horizon or behind the eye
            points.append(None)
            continue
        x, y = point[0] / (h * math.cos(tilt)), point[1] / (h * math.cos(tilt)) - math.tan(tilt)
        # The right wing goes down, so the picture turns counter-clockwise.
        points.append((x * math.cos(roll) - y * math.sin(roll), x * math.sin(roll) + y * math.cos(roll)))
    return positions, pixels(points, HEIGHT / 2 / math.tan(math.radians(view)))


def device(out):
    out.write(f"# case KIND NAME LAT LON ... TOLERANCE on a window of {WIDTH} x {HEIGHT}, the centre in the middle, then rows:"
              " lat lon dx dy. The general perspective's further numbers are altitude in feet, heading, bank, pitch, field"
              " of view. Source: proj, see generate.py.\n")
    for lat, lon in ((48.5, -123.2), (0, 180), (90, 0), (-90, 0), (-33.9, 18.4)):
        positions = around(lat, lon)
        for name, kind, scale in (("orthographic", "ortho", WIDTH / 2), ("stereographic", "stere", WIDTH / 4),
                                  ("gnomonic", "gnom", WIDTH / 8)):
            plane = proj(f"+proj={kind} +R=1 +lat_0={lat} +lon_0={lon}", positions)
            write(out, f"{name} {lat} {lon} 1e-6", positions, pixels(plane, scale))
    for view in ((48.5, -123.2, 2e7, 0, 0, -90, 45), (48.5, -123.2, 2e7, 0, 0, -80, 45), (0, 180, 3e6, 70, 0, -60, 30),
                 (-33.9, 18.4, 1e6, 200, 15, -45, 25), (89, 0, 5e6, 300, -30, -75, 40)):
        positions, points = perspective(*view)
        write(out, "perspective %g %g %g %g %g %g %g 1e-5" % view, positions, points)


for name, writer in (("flat.txt", flat), ("device.txt", device)):
    with open(os.path.join(HERE, name), "w", encoding="ascii") as file:
        writer(file)
