#!/usr/bin/env python3
"""Writes the aerodrome mapping sets of KSEA into the folder of this file, the same bytes each time.

Runways lie where ../navdata/apt.dat has them. All else is invented, plausibly and for trying things out: taxiways,
aprons, stands, buildings and every attribute. Not for navigation."""

import math
import pathlib
import struct

HERE = pathlib.Path(__file__).resolve().parent
AIRPORT = "KSEA"
UNKNOWN, ABSENT = -32767.0, -32768.0

# Metres east and north of a place amid the runways.
LAT0, LON0 = 47.45, -122.31
P = math.radians(LAT0)
NORTH = 111132.954 - 559.822 * math.cos(2 * P) + 1.175 * math.cos(4 * P)  # metres a degree on WGS 84
EAST = 111412.84 * math.cos(P) - 93.5 * math.cos(3 * P)


def degrees(point):
    return round(LON0 + point[0] / EAST, 7), round(LAT0 + point[1] / NORTH, 7)


def read_runways():
    """From the airport's row to the next: both ends' designators and places, and the width."""
    runways, inside = [], False
    for line in (HERE / "../navdata/apt.dat").read_text(encoding="utf-8").splitlines():
        words = line.split()
        if words and words[0] == "1":
            inside = words[4] == AIRPORT
        if inside and words and words[0] == "100":
            ends = [(words[i], ((float(words[i + 2]) - LON0) * EAST, (float(words[i + 1]) - LAT0) * NORTH))
                    for i in (8, 17)]
            runways.append((ends, float(words[1])))
    return runways


# Shapes, in metres.


def box(west, south, east, north):
    return [(west, south), (west, north), (east, north), (east, south), (west, south)]


def strip(a, b, width):
    """A rectangle about the line from a to b."""
    length = math.dist(a, b)
    x, y = (b[1] - a[1]) / length * width / 2, -(b[0] - a[0]) / length * width / 2
    return [(a[0] - x, a[1] - y), (b[0] - x, b[1] - y), (b[0] + x, b[1] + y), (a[0] + x, a[1] + y),
            (a[0] - x, a[1] - y)]


def ring(x, y, radius, corners=12):
    turns = [-2 * math.pi * i / corners for i in range(corners)] + [0]
    return [(x + radius * math.cos(t), y + radius * math.sin(t)) for t in turns]


def bend(a, corner, b):
    """A curve from a to b that leaves towards the corner."""
    return [tuple((1 - t) ** 2 * p + 2 * t * (1 - t) * q + t * t * r for p, q, r in zip(a, corner, b))
            for t in (0, 0.2, 0.4, 0.6, 0.8, 1)]


# What lies where.

RUNWAYS = read_runways()
L, C, R = RUNWAYS  # from east to west
TAXI = 26  # width
B_X, A_X, T_X = 285, 365, -335
APRON_X = A_X + TAXI / 2
CROSS = {"C": 1480, "D": 980, "E": 480, "F": -20, "G": -520, "H": -1020, "J": -1330, "K": -2050}
WEST = {"P": 1480, "Q": 880, "R": 280, "S": -420, "U": -1020}


def x_of(runway, y):
    (_, a), (_, b) = runway[0]
    return a[0] + (b[0] - a[0]) * (y - a[1]) / (b[1] - a[1])


def taxiways():
    rows = []
    for name, y in CROSS.items():
        rows.append((strip((x_of(L, y), y), (B_X, y), TAXI), (name, "Open")))
        rows.append((strip((B_X, y), (APRON_X, y), TAXI), (name, "Open")))
        if y > C[0][1][1][1]:
            status = "Closed" if name == "G" else "Open"
            rows.append((strip((x_of(C, y), y), (x_of(L, y), y), TAXI), (name, status)))
    for name, y in WEST.items():
        rows.append((strip((x_of(R, y), y), (T_X, y), TAXI), (name, "Open")))
        rows.append((strip((T_X, y), (x_of(C, y), y), TAXI), (name, "$UNK" if name == "U" else "Open")))
    for name, x, crossings in (("A", A_X, CROSS), ("B", B_X, CROSS), ("T", T_X, WEST)):
        ys = list(crossings.values())
        for north, south in zip(ys, ys[1:]):
            rows.append((strip((x, north + TAXI / 2), (x, south - TAXI / 2), TAXI), (name, "Open")))
    return rows


def hold(runway, y, away):
    x = x_of(runway, y) + away
    return [(x, y - TAXI * 0.7), (x, y + TAXI * 0.7)]


def holding_positions():
    kinds = ["CAT II/III", "CAT I", "$NA", "$UNK"]
    rows = []
    for i, (name, y) in enumerate(CROSS.items()):
        rows.append((hold(L, y, 75), (name, "Open", kinds[i % 4])))
        if y > C[0][1][1][1]:
            rows.append((hold(L, y, -75), (name, "Open", "CAT I")))
            rows.append((hold(C, y, 75), (name, "Open", "CAT I")))
    return rows


def holding_lines():
    return [(hold(runway, y, away), (name if runway is R else "$NA",))
            for name, y in WEST.items() for runway, away in ((C, -75), (R, 75))]


def exit_lines():
    rows = []
    for name, y in list(CROSS.items())[1:6]:
        x = x_of(L, y)
        rows.append((bend((x, y + 160), (x, y), (B_X, y)), (name, "Open", "One way")))
        rows.append((bend((x, y - 160), (x, y), (B_X, y)), (name, "Open", "$UNK")))
    for name, y in list(WEST.items())[1:4]:
        x = x_of(R, y)
        rows.append((bend((x, y + 160), (x, y), (T_X, y)), (name, "Open", "$NA")))
    return rows


CONCOURSES = {"A": -580, "B": -280, "C": 20, "D": 310}
SATELLITES = {"N": 490, "S": -810}


def stands():
    rows = []
    for pier, y in {**CONCOURSES, **SATELLITES}.items():
        first = 470 if pier in SATELLITES else 515
        for i in range(6):
            name = f"{pier}{i + 1}"
            status = "Closed" if name == "N6" else "Open"
            fuel = ("Jet A;Jet A-1", "Jet A", "$NA")[i % 3]
            place = (first + i // 2 * 64, y + (48 if i % 2 else -48))
            rows.append((place, (name + ";" + name + "L" if name == "S6" else name, status,
                                 ("Concourse " if pier in CONCOURSES else "Satellite ") + pier,
                                 "B748;A388" if i == 0 else "$NA", "Yes", "$UNK" if i == 5 else "No", "No", "Yes",
                                 fuel)))
    return rows


def terminal():
    """Ring of the terminal with its concourses: a comb whose teeth point west, clockwise from the north east."""
    points = [(780, 360), (780, -640), (700, -640)]
    for y in sorted(CONCOURSES.values()):
        points += [(700, y - 20), (510, y - 20), (510, y + 20), (700, y + 20)]
    return points + [(700, 360), points[0]]


def structures():
    rows = [(terminal(), ("Terminal", "Terminal building")),
            (box(812, 150, 834, 172), ("Control Tower", "Control tower")),
            (box(780, 900, 850, 1150), ("Cargo 1", "Building")), (box(780, 1190, 850, 1440), ("Cargo 2", "Building")),
            (box(720, -1860, 820, -1620), ("Łąka Hangar", "Hangar")),
            (box(720, -1560, 790, -1470), ("Fire Station", "$UNK")), (box(830, -420, 900, -300), ("$NA", "Building"))]
    for pier, y in SATELLITES.items():
        rows.append((box(450, y - 20, 620, y + 20), (f"Satellite {pier}", "Terminal building")))
    return rows


def runway_areas():
    restricted = {"16L.34R": "$NA", "16C.34C": "$UNK", "16R.34L": "A388"}
    rows = []
    for ends, width in RUNWAYS:
        (a, from_), (b, to) = ends
        name = a + "." + b
        rows.append((strip(from_, to, width), (name, "Open", restricted[name], math.dist(from_, to), WIDTH)))
    return rows


WIDTH = 45.72  # 150 ft, which apt.dat rounds to metres
DISPLACED = {"34L": 120.0}
ELEVATIONS = {"16L": 131.9, "34R": 105.8, "16C": 131.1, "34C": 110.6, "16R": 126.5, "34L": UNKNOWN}


def displaced_areas():
    rows = []
    for ends, width in RUNWAYS:
        for (name, at), (_, far) in (ends, ends[::-1]):
            if name in DISPLACED:
                share = DISPLACED[name] / math.dist(at, far)
                inner = tuple(p + (q - p) * share for p, q in zip(at, far))
                rows.append((strip(at, inner, width), (name, "Open", "$NA", DISPLACED[name])))
    return rows


def thresholds():
    rows = []
    for ends, _ in RUNWAYS:
        for (name, at), (_, far) in (ends, ends[::-1]):
            length = math.dist(at, far)
            share = DISPLACED.get(name, 0) / length
            place = tuple(p + (q - p) * share for p, q in zip(at, far))
            stopway = ABSENT if name == "16R" else length
            rows.append((place, (name, "Open", length, length, length - DISPLACED.get(name, 0), stopway,
                                 ELEVATIONS[name])))
    return rows


def aprons():
    return [(box(APRON_X, -920, 860, 640), ("Main", "Parking", "Open", "$NA")),
            (box(APRON_X, 860, 780, 1500), ("Cargo", "Cargo", "Open", "B748;AN12")),
            (box(APRON_X, -1900, 720, -1400), ("South", "$UNK", "$UNK", "$NE"))]


def deicing_areas():
    return [(box(APRON_X + 10, -1250, 560, -1080), ("Deice 1", "Open", "A388"))]


def frequency_areas():
    return [(box(APRON_X, -920, 695, 640), (121.225, "Ramp", "Call before pushback")),
            (box(APRON_X, 860, 775, 1500), (UNKNOWN, "Cargo Ramp", "$NA")),
            (box(-520, -1080, -150, 1540), (121.7, "Ground", "West of 16C"))]


def hotspots():
    return [(ring(x_of(L, 980) + 85, 980, 55), ("HS 1", "Traffic from D crosses 16L \u2013 hold short")),
            (ring((x_of(L, 480) + x_of(C, 480)) / 2, 480, 60), ("HS 2", "Between parallel runways")),
            (ring(B_X, -2050, 55), ("HS 3", "$UNK"))]


# Fields: name, width, decimals; none for texts.
STATUS, AIRCRAFT, LINE = ("STATUS", 10, None), ("RESTACFT", 24, None), ("IDLIN", 8, None)


def metres(name):
    return (name, 10, 3)


def texts(*names):
    return [(name, width, None) for name, width in names]


POINT, LINES, AREA = 1, 3, 5
KINDS = {
    "apron": (AREA, texts(("IDAPRON", 16), ("APRONTYP", 12)) + [STATUS, AIRCRAFT], aprons),
    "deicing_area": (AREA, texts(("IDENT", 12)) + [STATUS, AIRCRAFT], deicing_areas),
    "frequency_area": (AREA, [("FRQ", 10, 3)] + texts(("STATION", 16), ("INFO", 32)), frequency_areas),
    "hotspot": (AREA, texts(("IDHOT", 8), ("NOTES", 48)), hotspots),
    "parking_stand": (POINT, texts(("IDSTD", 12)) + [STATUS] + texts(("TERMREF", 16)) + [AIRCRAFT] +
                      texts(("JETWAY", 5), ("TOWING", 5), ("DOCKING", 5), ("GNDPOWER", 5), ("FUEL", 16)), stands),
    "displaced_area": (AREA, texts(("IDTHR", 4)) + [STATUS, AIRCRAFT, metres("LENGTH")], displaced_areas),
    "runway": (AREA, texts(("IDRWY", 8)) + [STATUS, AIRCRAFT, metres("LENGTH"), metres("WIDTH")], runway_areas),
    "exit_line": (LINES, [LINE, STATUS] + texts(("DIREC", 8)), exit_lines),
    "threshold": (POINT, texts(("IDTHR", 4)) + [STATUS] + [metres(n) for n in ("TORA", "TODA", "LDA", "ASDA", "ELEV")],
                  thresholds),
    "taxiway": (AREA, [LINE, STATUS], taxiways),
    "holding_position": (LINES, [LINE, STATUS] + texts(("TYPE", 12)), holding_positions),
    "holding_line": (LINES, [LINE], holding_lines),
    "vertical_structure": (AREA, texts(("IDENT", 20), ("PLYSTTYP", 20)), structures),
}
PAGES = {"vertical_structure": ("UTF-8", "utf-8")}  # the others are in windows-1252
WGS84 = ('GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],'
         'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')


def bounds(points):
    xs, ys = zip(*points)
    return struct.pack("<4d", min(xs), min(ys), max(xs), max(ys))


def shape(kind, points):
    if kind == POINT:
        return struct.pack("<i2d", kind, *points[0])
    head = struct.pack("<i", kind) + bounds(points) + struct.pack("<3i", 1, len(points), 0)
    return head + b"".join(struct.pack("<2d", *p) for p in points)


def main_header(kind, size, box_):
    return struct.pack(">7i", 9994, 0, 0, 0, 0, 0, size // 2) + struct.pack("<2i", 1000, kind) + box_ + bytes(32)


def cell(value, width, decimals, page):
    if decimals is not None:
        return f"{value:{width}.{decimals}f}".encode()
    text = value.encode(page)
    assert len(text) <= width, value
    return text.ljust(width)


def table(fields, rows, page):
    size = 1 + sum(width for _, width, _ in fields)
    out = struct.pack("<4BIHH20x", 3, 126, 1, 1, len(rows), 32 * len(fields) + 33, size)
    for name, width, decimals in fields:
        out += struct.pack("<11sc4xBB14x", name.encode(), b"C" if decimals is None else b"N", width, decimals or 0)
    out += b"\r"
    for row in rows:
        out += b" " + b"".join(cell(v, w, d, page) for v, (_, w, d) in zip(row, fields, strict=True))
    return out + b"\x1a"


def write(name, kind, fields, rows):
    shapes, index, everything = b"", b"", []
    for number, (points, _) in enumerate(rows, 1):
        points = [degrees(p) for p in (points if kind != POINT else [points])]
        content = shape(kind, points)
        index += struct.pack(">2i", (100 + len(shapes)) // 2, len(content) // 2)
        shapes += struct.pack(">2i", number, len(content) // 2) + content
        everything += points
    box_ = bounds(everything)
    title, page = PAGES.get(name, ("1252", "cp1252"))
    path = HERE / f"{AIRPORT.lower()}_{name}"
    attributes = table([("IDARPT", 4, None)] + fields, [(AIRPORT, *values) for _, values in rows], page)
    for ending, data in ((".shp", main_header(kind, 100 + len(shapes), box_) + shapes),
                         (".shx", main_header(kind, 100 + len(index), box_) + index), (".dbf", attributes),
                         (".cpg", title.encode() + b"\n"), (".prj", WGS84.encode())):
        path.with_suffix(ending).write_bytes(data)


for kind_name, (shape_kind, own_fields, make) in KINDS.items():
    write(kind_name, shape_kind, own_fields, make())
