#!/usr/bin/env python3
"""The page of `k7chart serve` in a real browser: browser.py K7CHART SAMPLE_FOLDER OUT_FOLDER [TEST]...

Pictures of it are left in OUT_FOLDER for people to look at. Without Chromium or python3-websocket it ends with 77: skipped."""
import math
import pathlib
import shutil
import subprocess
import sys
import time
import urllib.parse

try:
    import devtools
except ImportError as missing:
    print(f"skipped: {missing} (python3-websocket)")
    sys.exit(77)
if not shutil.which("chromium"):
    print("skipped: there is no chromium")
    sys.exit(77)

PICTURES = "Number(document.getElementById('map')?.dataset.pictures ?? 0)"
IDLE = f"{PICTURES} && document.getElementById('progress').hidden"
NEW_MAP_SECONDS = 5 * devtools.SLOWER  # on a machine that does other things too

chart, sample, out = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])


def navaid(ident, kind="3"):
    """Latitude, longitude and frequency in MHz as the data state them."""
    for line in (sample / "navdata/nav.dat").read_text().splitlines():
        words = line.split()
        if len(words) > 7 and words[0] == kind and words[7] == ident:
            return float(words[1]), float(words[2]), int(words[4]) / 100
    raise AssertionError(f"the sample has no {ident}")


def miles(a, b):
    """Great circle by haversines, sixty nautical miles a degree."""
    p, q, d = math.radians(a[0]), math.radians(b[0]), math.radians(b[1] - a[1])
    h = math.sin((q - p) / 2) ** 2 + math.cos(p) * math.cos(q) * math.sin(d / 2) ** 2
    return 60 * math.degrees(2 * math.asin(math.sqrt(h)))


class Tab:
    """A page of the server that has drawn its first chart."""

    def __init__(self, browser, address, view="", **size):
        self.address = address
        self.page = browser.open(address + "#" + view, **size)
        self.page.wait(IDLE, "the first chart")

    def __enter__(self):
        return self

    def __exit__(self, failed, *_):
        if failed:
            print(f"  address {self.view()}, status {self.page.eval('document.getElementById(`status`).innerText')!r}, "
                  f"complaints {self.page.complaints}")
            self.page.screenshot(out / "failed.png")
        else:
            assert not self.page.complaints, self.page.complaints
        self.page.close()

    def view(self):
        query = self.page.eval("location.hash").lstrip("#")
        return dict(urllib.parse.parse_qsl(query))

    def number(self, name):
        return float(self.view().get(name, "0"))

    def redrawn(self, act):
        """Does something and waits until charts stop coming."""
        before = self.page.eval(PICTURES)
        act()
        self.page.wait(f"{PICTURES} > {before} && {IDLE}", "another chart", NEW_MAP_SECONDS)

    def set_hash(self, view):
        self.redrawn(lambda: self.page.eval(f"location.hash = {view!r}"))

    def is_hidden(self, name):
        return self.page.eval(f"document.getElementById('{name}').hidden")

    def text(self, name):
        return self.page.eval(f"document.getElementById('{name}').innerText")

    def press(self, name):
        self.page.eval(f"document.getElementById('{name}').click()")

    def brightness(self):
        """Of the chart, from 0 to 255."""
        return self.page.eval("""(() => {
            const canvas = document.createElement('canvas');
            canvas.width = canvas.height = 16;
            const context = canvas.getContext('2d');
            context.drawImage(document.querySelector('.picture'), 0, 0, 16, 16);
            const bytes = context.getImageData(0, 0, 16, 16).data;
            let sum = 0;
            for (let i = 0; i < bytes.length; i += 4) sum += bytes[i] + bytes[i + 1] + bytes[i + 2];
            return sum / 768; })()""")


def test_loads_from_its_own_server_only(open_tab, address):
    with open_tab() as tab:
        page = tab.page
        foreign = [url for url in page.requests if not url.startswith((address, "blob:", "data:", "about:", "chrome:"))]
        assert not foreign, foreign
        assert page.eval("getComputedStyle(document.getElementById('map')).touchAction") == "none", "no style sheet"
        page.screenshot(out / "day.png")


def test_pans_zooms_and_covers_the_window(open_tab, _):
    with open_tab("projection=mercator&lat=48.5&lon=-123&range=60", width=1600, height=1000) as tab:
        page = tab.page
        left = "document.querySelector('.picture').getBoundingClientRect().left"
        before = page.eval(left)
        page.mouse("mousePressed", 900, 500, button="left", clickCount=1)
        page.mouse("mouseMoved", 850, 500, button="left", buttons=1)
        page.mouse("mouseMoved", 600, 500, button="left", buttons=1)
        assert abs(page.eval(left) - before + 300) < 1, "the picture is not under the pointer"
        tab.redrawn(lambda: page.mouse("mouseReleased", 600, 500, button="left", clickCount=1))
        expected = -123 + 300 * (60 / 500) / (60 * math.cos(math.radians(48.5)))
        assert abs(tab.number("lon") - expected) < 0.01 and abs(tab.number("lat") - 48.5) < 0.002, tab.view()
        assert page.eval("""(() => { const box = document.querySelector('.picture').getBoundingClientRect();
            return box.left <= 0 && box.top <= 0 && box.right >= innerWidth && box.bottom >= innerHeight; })()""")
        tab.redrawn(lambda: page.mouse("mouseWheel", 1200, 500, deltaX=0, deltaY=-347))  # twice as large
        assert abs(tab.number("range") - 30) < 0.5, tab.view()
        # The place under the pointer stays there: the middle has come half way to it.
        assert abs(tab.number("lon") - (expected + 200 * (60 / 500) / (60 * math.cos(math.radians(48.5))))) < 0.01, tab.view()


def test_every_projection_pans(open_tab, _):
    with open_tab("lat=48.6&lon=-123&range=200") as tab:
        names = tab.page.eval("[...document.getElementById('projection').options].map((option) => option.value)")
        assert len(names) == 9, names
        for name in names:
            tilt = "&p=Pitch:-40&p=Altitude (ft):900000" if name == "perspective" else ""
            tab.set_hash(f"projection={name}&lat=48.5&lon=-123&range=200{tilt}")
            tab.redrawn(lambda: tab.page.drag((700, 400), (500, 400), 3))
            assert tab.number("lon") > -122.5, (name, tab.view())


def test_picking_a_navaid_shows_its_card(open_tab, _):
    lat, lon, megahertz = navaid("YYJ")
    with open_tab(f"lat={lat}&lon={lon}&range=40", width=1600, height=1000) as tab:
        page = tab.page
        page.click(800, 500)
        page.wait("!document.getElementById('card').hidden", "the card")
        card = tab.text("card")
        assert "VICTORIA" in card.upper() and f"{megahertz:.1f}" in card, card
        assert page.eval("document.activeElement.id") == "card-title"
        page.screenshot(out / "card.png")
        page.key("Escape", 27)
        assert tab.is_hidden("card") and page.eval("document.activeElement.id") == "map"


def search(tab, text):
    page = tab.page
    page.key("/")
    page.type(text)
    page.wait("Boolean(document.querySelector('#search-found li'))", "something found")
    tab.redrawn(lambda: page.key("Enter", 13))


def test_searches_identifiers_and_positions(open_tab, _):
    with open_tab("projection=mercator&lat=48.5&lon=-123&range=60") as tab:
        search(tab, "SEA")
        assert miles((tab.number("lat"), tab.number("lon")), navaid("SEA")) < 3, tab.view()
        search(tab, "N48 30.0 W122 15.0")
        assert miles((tab.number("lat"), tab.number("lon")), (48.5, -122.25)) < 0.01, tab.view()
        tab.page.key("/")
        tab.page.type("QQQQQ")
        tab.page.wait("Boolean(document.querySelector('#search-found .none'))", "that nothing is found")


def test_a_route_of_three_fixes(open_tab, _):
    places = [navaid(ident) for ident in ("SEA", "YYJ", "YVR")]
    with open_tab("lat=48.1&lon=-122.9&range=75", width=1280, height=800) as tab:
        page = tab.page
        tab.press("open-route")
        for ident, place in zip(("SEA", "YYJ", "YVR"), places):
            page.eval("document.getElementById('route-text').focus()")
            page.type(f"{ident}")
            before = page.eval("location.hash")
            page.key("Enter", 13)
            page.wait(f"location.hash !== {before!r}", f"{ident} in the route")
        page.wait("document.querySelectorAll('#route-table tbody tr').length === 2", "two legs")
        rows = page.eval("[...document.querySelectorAll('#route-table tbody tr')].map((row) => "
                         "[...row.cells].map((cell) => cell.innerText))")
        legs = [miles(places[0], places[1]), miles(places[1], places[2])]
        # Identifiers may also name an airport or a beacon near by; a leg to another place would be miles off.
        for row, leg, total in zip(rows, legs, (legs[0], sum(legs))):
            assert abs(float(row[6]) - leg) < 0.11 and abs(float(row[7]) - total) < 0.11, (rows, legs)
        page.wait("document.getElementById('profile').naturalWidth > 200", "the profile")
        tab.redrawn(lambda: tab.press("route-all"))
        page.screenshot(out / "route.png")
        tab.redrawn(lambda: tab.press("track-up"))
        assert abs(tab.number("turn") - bearing(places[0], places[1])) < 0.6, tab.view()
        tab.redrawn(lambda: tab.press("route-undo"))
        assert tab.view()["route"].count(";") == 1
        tab.redrawn(lambda: tab.press("route-clear"))
        assert "route" not in tab.view()


def bearing(a, b):
    p, q, d = math.radians(a[0]), math.radians(b[0]), math.radians(b[1] - a[1])
    east, north = math.sin(d) * math.cos(q), math.cos(p) * math.sin(q) - math.sin(p) * math.cos(q) * math.cos(d)
    return math.degrees(math.atan2(east, north)) % 360


def test_routes_by_clicks_and_by_airways(open_tab, _):
    sea, yvr = navaid("SEA"), navaid("YVR")
    with open_tab(f"projection=mercator&lat={sea[0]}&lon={sea[1]}&range=100", width=1600, height=1000) as tab:
        tab.press("open-route")
        tab.page.click(800, 500)
        tab.page.wait("location.hash.includes('route=SEA@')", "the navaid, not the airport beside it, as first point")
        tab.redrawn(lambda: tab.page.eval(f"location.hash = location.hash + ';YVR@{yvr[0]},{yvr[1]}'"))
        tab.page.wait("!document.getElementById('route-find').disabled", "two points")
        tab.redrawn(lambda: tab.press("route-find"))
        tab.page.wait("document.querySelectorAll('#route-table tbody tr').length > 2", "a way over fixes")
        airways = tab.page.eval("[...document.querySelectorAll('#route-table tbody tr')].map((row) => row.cells[3].innerText)")
        assert any(airways), airways
        way = tab.text("route-sum")
        assert float(way.split()[-2]) > miles(sea, yvr), way


def test_theme_follows_the_system(open_tab, _):
    lat, lon, _ = navaid("YYJ")
    with open_tab(f"lat={lat}&lon={lon}&range=50", width=1280, height=800) as tab:
        assert tab.brightness() > 150
        tab.redrawn(lambda: tab.page.set_dark(True))
        assert tab.page.eval("document.documentElement.dataset.light") == "night" and tab.brightness() < 60
        tab.page.click(640, 400)
        tab.page.wait("!document.getElementById('card').hidden", "the card")
        tab.page.wait(IDLE)
        tab.page.screenshot(out / "night.png")
        tab.press("open-settings")
        tab.redrawn(lambda: tab.page.eval("document.querySelector('#themes input[value=day]').click()"))
        assert tab.view()["theme"] == "day" and tab.brightness() > 150


def test_address_there_and_back(open_tab, _):
    view = ("projection=albers&lat=49.1&lon=-122.5&range=75&turn=30&show=contours&hide=airways&p=Standard Parallel 1:50"
            "&route=SEA@47.4354,-122.3096;48.7,-123.1&dim=40&theme=printed")
    with open_tab(view) as tab:
        wanted = dict(urllib.parse.parse_qsl(view))
        assert tab.view() == wanted, tab.view()
        tab.page.eval("history.pushState(null, '', location.hash)")
        tab.press("open-settings")
        tab.redrawn(lambda: tab.page.eval("document.querySelector('#themes input[value=night]').click()"))
        tab.redrawn(lambda: tab.page.eval("history.back()"))
        assert tab.view() == wanted, tab.view()
        # What does not read is as if it were not there.
        tab.set_hash("projection=none&lat=NaN&lon=1e999&range=-5&turn=x&p=Foo:1&show=constructor&theme=__proto__")
        assert tab.view().keys() == {"projection", "lat", "lon", "range"}, tab.view()


def test_keyboard_alone(open_tab, _):
    with open_tab("projection=mercator&lat=48.5&lon=-123&range=60") as tab:
        page = tab.page
        reached = set()
        for _ in range(20):
            page.key("Tab", 9)
            reached.add(page.eval("document.activeElement.id"))
        wanted = {"map", "search-text", "zoom-in", "zoom-out", "north", "open-route", "open-settings", "share"}
        assert wanted <= reached, wanted - reached
        unnamed = page.eval("[...document.querySelectorAll('button, input, select')].filter((one) => !one.innerText.trim() && "
                            "!one.ariaLabel && !one.labels?.length).map((one) => one.outerHTML)")
        assert not unnamed, unnamed
        page.eval("document.getElementById('map').focus()")
        tab.redrawn(lambda: page.key("ArrowRight", 39))
        assert tab.number("lon") > -122.9
        tab.redrawn(lambda: page.key("+"))
        assert abs(tab.number("range") - 40) < 0.1
        tab.redrawn(lambda: page.key("r"))
        assert abs(tab.number("turn") - 345) < 0.1
        tab.redrawn(lambda: page.key("n"))
        assert tab.number("turn") == 0
        page.key("Enter", 13)
        page.wait("!document.getElementById('card').hidden", "the card of the middle")
        page.key("Escape", 27)
        assert page.eval("document.activeElement.id") == "map"


def test_fingers_on_a_small_screen(open_tab, _):
    with open_tab("projection=mercator&lat=48.5&lon=-123&range=60", width=390, height=844, ratio=2, touch=True) as tab:
        page = tab.page
        assert page.eval("document.querySelector('.picture').naturalWidth") >= 780, "too coarse for the screen"

        def pinch(turn):
            page.touch("touchStart", [(145, 400), (245, 400)])
            for i in range(1, 6):
                half, angle = 50 + 10 * i, math.radians(turn * i / 5)
                page.touch("touchMove", [(195 - half * math.cos(angle), 400 - half * math.sin(angle)),
                                         (195 + half * math.cos(angle), 400 + half * math.sin(angle))])
            page.touch("touchEnd", [])

        tab.redrawn(lambda: pinch(0))
        assert abs(tab.number("range") - 30) < 1 and tab.number("turn") == 0, tab.view()
        tab.redrawn(lambda: pinch(40))
        assert abs(tab.number("range") - 15) < 1 and 315 <= tab.number("turn") < 335, tab.view()
        small = page.eval("[...document.querySelectorAll('button, select')].filter((one) => one.offsetParent && "
                          "Math.min(one.offsetWidth, one.offsetHeight) < 36).map((one) => one.outerHTML)")
        assert not small, small
        for name in ("settings", "route"):
            tab.press(f"open-{name}")
            box = page.eval(f"document.getElementById('{name}').getBoundingClientRect().toJSON()")
            assert box["left"] == 0 and box["right"] == 390 and box["bottom"] == 844 and box["top"] > 300, box
        assert tab.is_hidden("settings"), "two sheets lie over each other"
        assert page.eval("document.documentElement.scrollWidth") == 390
        page.screenshot(out / "small.png")


def test_problems_are_said_in_words(open_tab, _):
    with open_tab("lat=48.5&lon=-123&range=60") as tab:
        tab.page.eval("location.hash = 'projection=perspective&lat=48&lon=-123&p=Pitch:60'")
        tab.page.wait("document.querySelector('#status .problem')?.innerText.includes('Pitch')", "the server's reason")
        tab.page.complaints.clear()  # The browser's own word for a refused request.
        tab.set_hash("lat=48.5&lon=-123&range=60")
        assert not tab.page.eval("Boolean(document.querySelector('#status .problem'))")


def main():
    out.mkdir(parents=True, exist_ok=True)
    wanted = sys.argv[4:]
    server = subprocess.Popen([chart, "serve", "--port", "0"], stdout=subprocess.PIPE, text=True)
    browser = None
    failed = 0
    try:
        address = server.stdout.readline().split()[-1]
        browser = devtools.Browser()
        for name, test in globals().items():
            if not name.startswith("test_") or (wanted and name not in wanted):
                continue
            start = time.monotonic()
            try:
                test(lambda view="", **size: Tab(browser, address, view, **size), address)
                verdict = "passed"
            except (AssertionError, RuntimeError, KeyError, ValueError) as failure:
                failed += 1
                verdict = f"FAILED: {failure!r}"
            print(f"{name} {verdict} ({time.monotonic() - start:.1f} s)", flush=True)
    finally:
        if browser:
            browser.close()
        server.terminate()
        failed += server.wait(20) != 0
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
