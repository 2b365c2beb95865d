"""A headless Chromium and what its DevTools protocol is asked for: a page, its console, its requests, keys and fingers."""
import base64
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import time
import urllib.request

import websocket

SLOWER = float(os.environ.get("K7_SLOWER", "1"))  # that which is looked at, as with sanitizers in it
WAIT = 20 * SLOWER  # seconds, on a machine that does other things too


def until(condition, what, seconds=WAIT):
    """Asks until the answer is true, and answers it."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError(f"waited {seconds:.0f} s in vain: {what}")
        time.sleep(0.03)


class Browser:
    """Chromium with a profile of its own, which goes with it."""

    def __init__(self):
        self.profile = tempfile.mkdtemp(prefix="k7-browser-")
        command = [shutil.which("chromium"), "--headless=new", "--remote-debugging-port=0", f"--user-data-dir={self.profile}",
                   "--remote-allow-origins=*", "--disable-gpu", "--disable-dev-shm-usage", "--hide-scrollbars", "--mute-audio",
                   "--no-first-run", "--disable-extensions", "--disable-background-networking", "--disable-component-update",
                   "--no-proxy-server", "--force-color-profile=srgb", "about:blank"]
        if os.geteuid() == 0:
            command.insert(1, "--no-sandbox")
        self.process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        chosen = pathlib.Path(self.profile) / "DevToolsActivePort"
        until(lambda: self.process.poll() is not None or (chosen.exists() and chosen.read_text().count("\n")), "Chromium starts")
        if self.process.poll() is not None:
            raise RuntimeError("Chromium does not start")
        self.port = int(chosen.read_text().split()[0])

    def open(self, url, **size):
        request = urllib.request.Request(f"http://127.0.0.1:{self.port}/json/new?about:blank", method="PUT")
        with urllib.request.build_opener(urllib.request.ProxyHandler({})).open(request, timeout=WAIT) as answer:
            return Page(json.load(answer)["webSocketDebuggerUrl"], url, **size)

    def close(self):
        self.process.terminate()
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        shutil.rmtree(self.profile, ignore_errors=True)


class Page:
    """A tab. `complaints` holds what the console got, `requests` the addresses that were asked."""

    def __init__(self, socket, url, width=1280, height=800, dark=False, ratio=1, touch=False):
        self.socket = websocket.create_connection(socket, timeout=WAIT)
        self.last = 0
        self.complaints, self.requests = [], []
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(f"{domain}.enable")
        self.resize(width, height, ratio, touch)
        self.set_dark(dark)
        self.call("Page.navigate", url=url)

    def call(self, method, **params):
        self.last += 1
        self.socket.send(json.dumps({"id": self.last, "method": method, "params": params}))
        while True:
            message = json.loads(self.socket.recv())
            if message.get("id") == self.last:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']}")
                return message["result"]
            self._hear(message)

    def _hear(self, message):
        params = message.get("params", {})
        if message.get("method") == "Runtime.exceptionThrown":
            self.complaints.append(params["exceptionDetails"].get("exception", {}).get("description", "exception"))
        elif message.get("method") == "Runtime.consoleAPICalled" and params["type"] in ("error", "warning", "assert"):
            self.complaints.append(str([arg.get("value") for arg in params["args"]]))
        elif message.get("method") == "Log.entryAdded" and params["entry"]["level"] in ("error", "warning"):
            self.complaints.append(params["entry"]["text"] + " " + params["entry"].get("url", ""))
        elif message.get("method") == "Network.requestWillBeSent":
            self.requests.append(params["request"]["url"])

    def eval(self, script):
        answer = self.call("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(f"{script}: {answer['exceptionDetails'].get('exception', {}).get('description')}")
        return answer["result"].get("value")

    def wait(self, script, what=None, seconds=WAIT):
        try:
            return until(lambda: self.eval(script), what or script, seconds)
        except AssertionError as failure:
            raise AssertionError(f"{failure}\n  status: {self.eval('document.getElementById(`status`)?.innerText')}\n"
                                 f"  address: {self.eval('location.href')}\n  complaints: {self.complaints}") from None

    def resize(self, width, height, ratio=1, touch=False):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=ratio, mobile=touch)
        self.call("Emulation.setTouchEmulationEnabled", enabled=touch)

    def set_dark(self, dark):
        self.call("Emulation.setEmulatedMedia", features=[
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])

    def mouse(self, kind, x, y, **more):
        self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, **more)

    def click(self, x, y):
        self.mouse("mousePressed", x, y, button="left", clickCount=1)
        self.mouse("mouseReleased", x, y, button="left", clickCount=1)

    def drag(self, start, end, steps=8):
        self.mouse("mousePressed", *start, button="left", clickCount=1)
        for i in range(1, steps + 1):
            at = [a + (b - a) * i / steps for a, b in zip(start, end)]
            self.mouse("mouseMoved", *at, button="left", buttons=1)
        self.mouse("mouseReleased", *end, button="left", clickCount=1)

    def touch(self, kind, points):
        self.call("Input.dispatchTouchEvent", type=kind,
                  touchPoints=[{"x": x, "y": y, "id": i} for i, (x, y) in enumerate(points)])

    def key(self, key, code=0, text=None, modifiers=0):
        """`code` is the Windows key code, which Tab, Enter, Escape and the arrows need."""
        text = text if text is not None else (key if len(key) == 1 else {"Enter": "\r"}.get(key))
        more = {"text": text} if text else {}
        self.call("Input.dispatchKeyEvent", type="keyDown", key=key, windowsVirtualKeyCode=code, modifiers=modifiers, **more)
        self.call("Input.dispatchKeyEvent", type="keyUp", key=key, windowsVirtualKeyCode=code, modifiers=modifiers)

    def type(self, text):
        self.call("Input.insertText", text=text)

    def screenshot(self, path):
        data = base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"])
        path = pathlib.Path(path)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)
        return data

    def close(self):
        try:
            self.call("Page.close")
        except (websocket.WebSocketException, OSError):
            pass
        self.socket.close()
