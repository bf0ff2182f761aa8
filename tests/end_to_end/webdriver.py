"""A real Chromium, driven by the WebDriver protocol."""

import json
import re
import subprocess
import time
import urllib.request

from harness import PATIENCE

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
OPTIONS = ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--hide-scrollbars",
           "--disable-background-networking", "--disable-component-update", "--disable-sync", "--disable-dev-shm-usage")
TAB, ENTER = "\ue004", "\ue007"


class Browser:
    """One window. It closes at the end of the test `case`, which also gives it a folder."""

    def __init__(self, case, *options):
        for _ in range(5):  # it ends at once where another program has taken one of its ports meanwhile
            driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
            case.addCleanup(driver.wait)
            case.addCleanup(driver.stdout.close)
            case.addCleanup(driver.kill)
            ports = (re.search(r"successfully on port (\d+)", line) for line in driver.stdout)
            if port := next(filter(None, ports), None):
                break
        self.url = f"http://127.0.0.1:{port[1]}/session"
        arguments = [*OPTIONS, *options, f"--user-data-dir={case.folder / 'profile'}", "--window-size=1280,900"]
        chromium = {"args": arguments, "enableExtensionTargets": True}  # their windows count, too
        session = self.ask("POST", "", {"capabilities": {"alwaysMatch": {"goog:chromeOptions": chromium}}})
        self.url += "/" + session["sessionId"]
        case.addCleanup(self.ask, "DELETE", "")

    def ask(self, verb, path, content=None):
        data = None if content is None else json.dumps(content).encode()
        request = urllib.request.Request(self.url + path, data, {"Content-Type": "application/json"}, method=verb)
        with urllib.request.urlopen(request, timeout=PATIENCE) as answer:
            return json.load(answer)["value"]

    def go(self, address):
        self.ask("POST", "/url", {"url": address})

    def find(self, selector):
        return "/element/" + self.ask("POST", "/element", {"using": "css selector", "value": selector})[ELEMENT]

    def click(self, selector):
        self.ask("POST", self.find(selector) + "/click", {})

    def write(self, selector, text):
        """Replaces the text of a field."""
        field = self.find(selector)
        self.ask("POST", field + "/clear", {})
        self.ask("POST", field + "/value", {"text": text})

    def press(self, keys, where=None):
        """Sends keys to the element with the focus, once that is the field with the id `where`."""
        self.await_text(where or "", script="return document.activeElement.id")
        strokes = [{"type": kind, "value": key} for key in keys for kind in ("keyDown", "keyUp")]
        self.ask("POST", "/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": strokes}]})

    def await_text(self, text, selector="main", script=None):
        """Waits until a page shows the text, since keys and clicks take effect with a delay."""
        script = script or f"const e = document.querySelector({json.dumps(selector)}); return e ? e.innerText : '';"
        end = time.monotonic() + PATIENCE
        while text not in (shown := self.run(script)):
            if time.monotonic() > end:
                raise AssertionError(f"{text!r} not in {shown!r}")
            time.sleep(0.05)

    def await_window(self, present):
        """Goes on with the newest window, once there are that many."""
        end = time.monotonic() + PATIENCE
        while len(windows := self.ask("GET", "/window/handles")) != present:
            if time.monotonic() > end:
                raise AssertionError(f"{len(windows)} windows instead of {present}")
            time.sleep(0.05)
        self.ask("POST", "/window", {"handle": windows[-1]})

    def run(self, script):
        return self.ask("POST", "/execute/sync", {"script": script, "args": []})

    def resize(self, width, dark=False):
        """Shows the page on a screen of that width; `dark` sets the system's colour mode."""
        for command, parameters in (
                ("Emulation.setDeviceMetricsOverride",
                 {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": width < 600}),
                ("Emulation.setEmulatedMedia",
                 {"features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})):
            self.command(command, parameters)

    def command(self, command, parameters):
        return self.ask("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})
