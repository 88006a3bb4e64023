"""A headless Chromium behind its driver, for tests and pictures of pages."""

import base64
import json
import pathlib
import shutil
import socket
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

UP, DOWN, RIGHT, ENTER, ESCAPE, TAB = "\ue013", "\ue015", "\ue014", "\ue007", "\ue00c", "\ue004"


def missing_programs():
    return [program for program in ("chromium", "chromedriver") if shutil.which(program) is None]


class Browser:
    """A Chromium behind its driver's WebDriver interface."""

    FLAGS = ("--headless --no-sandbox --disable-gpu --disable-quic --no-first-run --hide-scrollbars "
             "--disable-background-networking --disable-component-update --disable-sync").split()

    def __init__(self, width=1400, height=1000, scheme="light"):
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        self.driver = subprocess.Popen(["chromedriver", f"--port={self.port}"],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.base = f"http://127.0.0.1:{self.port}"
        self.wait_for_driver()
        options = {"args": [*self.FLAGS, f"--user-data-dir={self.profile.name}"]}
        wanted = {"goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"}}
        session = self.post("/session", {"capabilities": {"alwaysMatch": wanted}})
        self.base += f"/session/{session['sessionId']}"
        self.command("Emulation.setDeviceMetricsOverride",
                     width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.command("Emulation.setEmulatedMedia",
                     features=[{"name": "prefers-color-scheme", "value": scheme}])

    def wait_for_driver(self):
        for _ in range(100):
            try:
                return self.request("GET", "/status")
            except (urllib.error.URLError, ConnectionError):
                time.sleep(0.1)
        raise RuntimeError("chromedriver does not answer")

    def request(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"},
                                         method=method)
        with urllib.request.urlopen(request, timeout=120) as answer:
            return json.load(answer)["value"]

    def post(self, path, body):
        return self.request("POST", path, body)

    def command(self, name, **parameters):
        return self.post("/goog/cdp/execute", {"cmd": name, "params": parameters})

    def open(self, page):
        self.post("/url", {"url": pathlib.Path(page).resolve().as_uri()})

    def run(self, script, *arguments):
        return self.post("/execute/sync", {"script": script, "args": list(arguments)})

    def find(self, selector):
        return next(iter(self.post("/element", {"using": "css selector", "value": selector}).values()))

    def click(self, selector):
        self.post(f"/element/{self.find(selector)}/click", {})

    def type(self, selector, text):
        self.post(f"/element/{self.find(selector)}/value", {"text": text})

    def press(self, *keys):
        actions = [action for key in keys for action in ({"type": "keyDown", "value": key},
                                                         {"type": "keyUp", "value": key})]
        self.post("/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": actions}]})

    def messages(self):
        return self.post("/se/log", {"type": "browser"})

    def text(self, selector):
        return self.run("return document.querySelector(arguments[0]).textContent", selector)

    def count(self, selector):
        return self.run("return document.querySelectorAll(arguments[0]).length", selector)

    def wait_until(self, script, *arguments):
        for _ in range(100):
            if self.run(script, *arguments):
                return
            time.sleep(0.05)
        raise AssertionError(f"never true: {script}")

    def screenshot(self, path):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(base64.b64decode(self.request("GET", "/screenshot")))

    def close(self):
        try:
            self.request("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()
            self.profile.cleanup()
