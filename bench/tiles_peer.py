#!/usr/bin/python3
"""Land, rivers and borders of the sample as tiles of level 8, drawn by Mapnik: the same tiles as serve_bench's Lines,
which it runs first.

    bench/tiles_peer.py build/release/bench/serve_bench     needs python3-mapnik
"""
import math, pathlib, subprocess, sys, time

import mapnik

LEVEL, WEST, NORTH, BLOCKS, EACH, OVERHANG = 8, 36, 84, 2, 4, 32
SAMPLE = pathlib.Path(__file__).resolve().parent.parent / "data" / "sample"
MERCATOR = "+proj=merc +a=6378137 +b=6378137 +k=1 +units=m +nadgrids=@null +wktext +no_defs"
STYLE = """<Map srs="{mercator}" background-color="#c6dcec">
<Style name="land"><Rule><PolygonSymbolizer fill="#e6ecd6"/><LineSymbolizer stroke="#28507e" stroke-width="0.8"/></Rule></Style>
<Style name="rivers"><Rule><LineSymbolizer stroke="#4a90c0" stroke-width="0.8"/></Rule></Style>
<Style name="borders"><Rule><LineSymbolizer stroke="#80506e" stroke-width="1" stroke-dasharray="8,2,2,2"/></Rule></Style>
{layers}</Map>"""
LAYER = """<Layer name="{name}" srs="+proj=longlat +datum=WGS84 +no_defs"><StyleName>{name}</StyleName>
<Datasource><Parameter name="type">shape</Parameter><Parameter name="file">{file}</Parameter></Datasource></Layer>"""
SETS = {"land": "land", "rivers": "rivers_lake_centerlines", "borders": "admin_0_boundary_lines_land"}


def paint(chart, x, y):
    metres = 2 * math.pi * 6378137 / 2**LEVEL
    more = OVERHANG / 256
    left, top = (x - more) * metres - math.pi * 6378137, math.pi * 6378137 - (y - more) * metres
    side = (EACH + 2 * more) * metres
    chart.zoom_to_box(mapnik.Box2d(left, top - side, left + side, top))
    image = mapnik.Image(chart.width, chart.height)
    mapnik.render(chart, image)
    return [image.view(OVERHANG + 256 * i, OVERHANG + 256 * j, 256, 256).tostring("png24:z=3")
            for j in range(EACH) for i in range(EACH)]


subprocess.run([sys.argv[1], "--benchmark_filter=Lines"], check=True)
pixels = EACH * 256 + 2 * OVERHANG
chart = mapnik.Map(pixels, pixels)
layers = "".join(LAYER.format(name=name, file=SAMPLE / f"ne_50m_{part}.shp") for name, part in SETS.items())
mapnik.load_map_from_string(chart, STYLE.format(mercator=MERCATOR, layers=layers))
blocks = [(WEST + EACH * i, NORTH + EACH * j) for j in range(BLOCKS) for i in range(BLOCKS)]
first = paint(chart, *blocks[0])
tiles, begin = 0, time.process_time()
while time.process_time() - begin < 2:
    for block in blocks:
        tiles += len(paint(chart, *block))
print(f"Mapnik {mapnik.mapnik_version_string()}: {tiles / (time.process_time() - begin):.0f} tiles/s of processor time")
if len(sys.argv) > 2:
    pathlib.Path(sys.argv[2]).write_bytes(first[5])
