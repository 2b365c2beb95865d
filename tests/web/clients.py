#!/usr/bin/env python3
"""Map libraries of another make over `k7chart serve`: clients.py K7CHART THEME.xml OUT_FOLDER [NODE_MODULES]

NODE_MODULES holds the packages `leaflet` and `ol`; without it they are fetched with npm into a temporary folder. Each library
lays its layers over the same places: sea and land are where they should be, and a navaid's symbol on its position. Pictures
are left in OUT_FOLDER. Ends with 77 (skipped) where the libraries or the browser cannot be had."""
import http.server
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import threading

try:
    import devtools
except ImportError as missing:
    print(f"skipped: {missing} (python3-websocket)")
    sys.exit(77)

SEA, LAND = (45.75, -127.5), (43.75, -118.5)
NAVAID = (48.7270, -123.4844)  # YYJ, as nav.dat states it

LEAFLET = """<!doctype html><meta charset="utf-8"><link rel="stylesheet" href="lib/leaflet/dist/leaflet.css">
<style>html, body, #map { margin: 0; height: 100% }</style><div id="map"></div><script src="lib/leaflet/dist/leaflet.js"></script>
<script>
const query = new URLSearchParams(location.search), server = query.get("server"), kind = query.get("kind");
window.failed = 0;
const map = L.map("map", { zoomAnimation: false, fadeAnimation: false }).setView(query.get("at").split(",").map(Number), +query.get("z"));
const options = { crossOrigin: "anonymous", attribution: "k7chart", detectRetina: false };
const layer = kind === "wms"
  ? L.tileLayer.wms(server + "/wms", { ...options, layers: "chart", styles: "day", format: "image/png", version: "1.3.0" })
  : L.tileLayer(server + (kind === "@2x" ? "/tiles/day/{z}/{x}/{y}@2x.png" : "/tiles/day/{z}/{x}/{y}.png"), options);
layer.on("tileerror", () => ++window.failed).on("load", () => { window.loaded = true; }).addTo(map);
window.pixelOf = ([lat, lon]) => { const p = map.latLngToContainerPoint([lat, lon]); return [p.x, p.y]; };
window.addFeatures = async (bbox) => {
  const data = await (await fetch(`${server}/geojson?bbox=${bbox}&layers=airports,navaids`)).json();
  L.geoJSON(data, { pointToLayer: (f, at) => L.circleMarker(at, { radius: 12, color: "#d00" }) }).addTo(map);
  return data.features.map((f) => [f.geometry.type, f.geometry.coordinates, f.properties]);
};
</script>"""

OPENLAYERS = """<!doctype html><meta charset="utf-8"><link rel="stylesheet" href="lib/ol/ol.css">
<style>html, body, #map { margin: 0; height: 100% }</style><div id="map"></div><script src="lib/ol/dist/ol.js"></script>
<script>
const query = new URLSearchParams(location.search), server = query.get("server"), kind = query.get("kind");
window.failed = 0;
const [lat, lon] = query.get("at").split(",").map(Number);
const wms = { url: server + "/wms", params: { LAYERS: "chart", STYLES: "day", VERSION: "1.3.0" }, crossOrigin: "anonymous" };
const source = { "xyz": () => new ol.source.XYZ({ url: server + "/tiles/day/{z}/{x}/{y}.png", crossOrigin: "anonymous" }),
  "@2x": () => new ol.source.XYZ({ url: server + "/tiles/day/{z}/{x}/{y}@2x.png", tilePixelRatio: 2, crossOrigin: "anonymous" }),
  "tilejson": () => new ol.source.TileJSON({ url: server + "/tiles/day.json", crossOrigin: "anonymous" }),
  "wms": () => new ol.source.TileWMS(wms), "wms-image": () => new ol.source.ImageWMS(wms),
  "wms-4326": () => new ol.source.ImageWMS({ ...wms, projection: "EPSG:4326" }) }[kind]();
source.on(["tileloaderror", "imageloaderror"], () => ++window.failed);
const layer = kind.startsWith("wms-") ? new ol.layer.Image({ source }) : new ol.layer.Tile({ source });
const map = new ol.Map({ target: "map", layers: [layer],
  view: new ol.View({ center: ol.proj.fromLonLat([lon, lat]), zoom: +query.get("z"),
    projection: kind === "wms-4326" ? "EPSG:4326" : "EPSG:3857", ...(kind === "wms-4326" ? { center: [lon, lat] } : {}) }) });
map.on("loadend", () => { window.loaded = true; });
window.pixelOf = ([lat, lon]) => map.getPixelFromCoordinate(ol.proj.fromLonLat([lon, lat], map.getView().getProjection()));
window.addFeatures = async (bbox) => {
  const format = new ol.format.GeoJSON({ featureProjection: map.getView().getProjection() });
  const data = await (await fetch(`${server}/geojson?bbox=${bbox}&layers=airports,navaids`)).json();
  const stroke = new ol.style.Stroke({ color: "#d00", width: 3 });
  map.addLayer(new ol.layer.Vector({ source: new ol.source.Vector({ features: format.readFeatures(data) }),
    style: new ol.style.Style({ stroke, image: new ol.style.Circle({ radius: 12, stroke }) }) }));
  return data.features.map((f) => [f.geometry.type, f.geometry.coordinates, f.properties]);
};
</script>"""


def color(theme, kind, group):
    text = re.search(rf'<{kind} Group="{group}">#(\w{{6}})', theme).group(1)
    return tuple(int(text[i:i + 2], 16) for i in (0, 2, 4))


def pixels(page, x, y, radius):
    """Colours around a point of what the browser shows, row by row."""
    page.call("Page.bringToFront")
    shot = page.call("Page.captureScreenshot", format="png", clip={
        "x": round(x) - radius, "y": round(y) - radius, "width": 2 * radius + 1, "height": 2 * radius + 1, "scale": 1})["data"]
    flat = page.eval(f"""(async () => {{
        const image = new Image(); image.src = "data:image/png;base64,{shot}"; await image.decode();
        const canvas = document.createElement("canvas"); canvas.width = image.width; canvas.height = image.height;
        const context = canvas.getContext("2d"); context.drawImage(image, 0, 0);
        return [...context.getImageData(0, 0, image.width, image.height).data]; }})()""")
    return [tuple(flat[i:i + 3]) for i in range(0, len(flat), 4)]


def near(a, b, most=6):
    return max(abs(p - q) for p, q in zip(a, b)) <= most


def share(found, wanted):
    return sum(near(one, wanted) for one in found) / len(found)


def check(browser, site, server, theme, library, kind, out):
    """Sea and land at one scale, the navaid's symbol at another."""
    degrees = kind == "wms-4326"
    page = browser.open(f"{site}/{library}.html?server={server}&kind={kind}&at=46.6,-123&z=6", width=800, height=600)
    page.wait("window.loaded", f"{library} {kind}")
    for place, group in ((SEA, "Sea"), (LAND, "Land")):
        x, y = page.eval(f"pixelOf({list(place)})")
        part = share(pixels(page, x, y, 6), color(theme, "Fill", group))
        page.screenshot(out / f"{library}_{kind}.png")
        assert part > 0.6, f"{library} {kind}: {group} is not at {place}: {part:.2f}"
    page.screenshot(out / f"{library}_{kind}.png")
    assert page.eval("failed") == 0 and not page.complaints, page.complaints
    page.close()

    page = browser.open(f"{site}/{library}.html?server={server}&kind={kind}&at=48.75,-123.45&z={11 if not degrees else 10}",
                        width=800, height=600)
    page.wait("window.loaded", f"{library} {kind}")
    x, y = page.eval(f"pixelOf({list(NAVAID)})")
    radius = 8
    found = pixels(page, x, y, radius)
    ink = color(theme, "Line", "Navaids")
    dark = [(i % (2 * radius + 1) - radius, i // (2 * radius + 1) - radius) for i, one in enumerate(found) if near(one, ink, 60)]
    assert len(dark) > 20, f"{library} {kind}: no symbol at the navaid's place ({len(dark)} pixels)"
    off = [sum(p[axis] for p in dark) / len(dark) + 0.5 + round(at) - at for axis, at in enumerate((x, y))]
    assert max(map(abs, off)) < 1.2, f"{library} {kind}: the symbol lies off by {off}"
    if kind in ("xyz", "wms"):
        features = page.eval("addFeatures('-124,48.4,-122.9,49')")
        points = [at for shape, at, _ in features if shape == "Point"]
        assert any(abs(at[0] - NAVAID[1]) < 1e-3 and abs(at[1] - NAVAID[0]) < 1e-3 for at in points), features[:5]
    page.screenshot(out / f"{library}_{kind}_navaid.png")
    assert page.eval("failed") == 0 and not page.complaints, page.complaints
    page.close()
    print(f"{library} {kind}: sea, land and a navaid are where they should be (off by {off[0]:+.1f}, {off[1]:+.1f} pixels)", flush=True)


def packages(folder):
    if len(sys.argv) > 4:
        return pathlib.Path(sys.argv[4])
    subprocess.run(["npm", "install", "--no-audit", "--no-fund", "--ignore-scripts", "--prefix", folder, "leaflet", "ol"],
                   check=True, timeout=300, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return pathlib.Path(folder) / "node_modules"


def main():
    theme, out = pathlib.Path(sys.argv[2]).read_text(encoding="windows-1252"), pathlib.Path(sys.argv[3])
    with tempfile.TemporaryDirectory(prefix="k7-clients-") as folder:
        try:
            modules = packages(folder)
            (pathlib.Path(folder) / "lib").symlink_to(modules.resolve())
            assert (modules / "leaflet").is_dir() and (modules / "ol").is_dir() and shutil.which("chromium")
        except (OSError, subprocess.SubprocessError, AssertionError):
            print("skipped: the packages leaflet and ol, or chromium, cannot be had")
            return 77
        for name, text in (("leaflet", LEAFLET), ("openlayers", OPENLAYERS)):
            (pathlib.Path(folder) / f"{name}.html").write_text(text)
        (pathlib.Path(folder) / "favicon.ico").write_bytes(b"")
        beside = http.server.ThreadingHTTPServer(("127.0.0.1", 0), type("Quiet", (http.server.SimpleHTTPRequestHandler,), {
            "__init__": lambda self, *a: http.server.SimpleHTTPRequestHandler.__init__(self, *a, directory=folder),
            "log_message": lambda *_: None}))
        threading.Thread(target=beside.serve_forever, daemon=True).start()
        server = subprocess.Popen([sys.argv[1], "serve", "--port", "0"], stdout=subprocess.PIPE, text=True)
        browser = None
        failed = 0
        try:
            address = server.stdout.readline().split()[-1].rstrip("/")
            browser = devtools.Browser()
            kinds = {"leaflet": ("xyz", "@2x", "wms"), "openlayers": ("xyz", "@2x", "tilejson", "wms", "wms-image", "wms-4326")}
            for library, kind in [(library, kind) for library in kinds for kind in kinds[library]]:
                try:
                    check(browser, f"http://127.0.0.1:{beside.server_port}", address, theme, library, kind, out)
                except (AssertionError, RuntimeError, TypeError) as failure:
                    failed += 1
                    print(f"FAILED {library} {kind}: {failure}", flush=True)
        finally:
            if browser:
                browser.close()
            beside.shutdown()
            server.terminate()
            server.wait(20)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
