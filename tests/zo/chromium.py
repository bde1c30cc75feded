"""Drives a headless Chromium over the DevTools protocol, through a pipe."""

import json
import os
import shutil
import subprocess
import tempfile
import time


def find():
    """The path of a Chromium, or None."""
    for name in ("chromium", "chromium-browser", "google-chrome"):
        if shutil.which(name):
            return shutil.which(name)
    return None


class Chromium:
    """One page. `console` collects what it says there, its errors included; `requests` the addresses it asks for."""

    def __init__(self, width=1400, height=1000, dark=False):
        self.console, self.requests = [], []
        self.last = 0
        self.received = b""
        self.profile = tempfile.mkdtemp()
        command_read, self.commands = os.pipe()
        self.answers, answer_write = os.pipe()

        def wire():  # Chromium listens on 3 and speaks on 4
            os.dup2(command_read, 30)
            os.dup2(answer_write, 31)
            os.dup2(30, 3)
            os.dup2(31, 4)

        self.process = subprocess.Popen(
            [find(), "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--disable-dev-shm-usage",
             "--no-first-run", "--disable-background-networking", f"--user-data-dir={self.profile}",
             f"--window-size={width},{height}", "--remote-debugging-pipe", "about:blank"],
            preexec_fn=wire, close_fds=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(command_read)
        os.close(answer_write)
        target = next(one for one in self.ask("Target.getTargets")["targetInfos"] if one["type"] == "page")
        self.session = self.ask("Target.attachToTarget", targetId=target["targetId"], flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.ask(domain + ".enable")
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.set_dark(dark)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def set_dark(self, dark):
        self.ask("Emulation.setEmulatedMedia",
                 features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])

    def close(self):
        os.close(self.commands)
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        os.close(self.answers)
        shutil.rmtree(self.profile, ignore_errors=True)

    session = None

    def ask(self, method, **parameters):
        self.last += 1
        message = {"id": self.last, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.commands, json.dumps(message).encode() + b"\0")
        while True:
            answer = self._receive()
            if answer.get("id") == self.last:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]

    def _receive(self):
        while b"\0" not in self.received:
            more = os.read(self.answers, 1 << 20)
            if not more:
                raise RuntimeError("Chromium has ended")
            self.received += more
        line, self.received = self.received.split(b"\0", 1)
        event = json.loads(line)
        what, how = event.get("method"), event.get("params")
        if what == "Runtime.consoleAPICalled":
            self.console.append(" ".join(str(one.get("value", one)) for one in how["args"]))
        elif what == "Runtime.exceptionThrown":
            self.console.append(str(how["exceptionDetails"]))
        elif what == "Log.entryAdded":
            self.console.append(how["entry"]["text"])
        elif what == "Network.requestWillBeSent":
            self.requests.append(how["request"]["url"])
        return event

    def open(self, path, fragment=""):
        """Opens a local file anew and waits until its script has run."""
        self.ask("Page.navigate", url="about:blank")
        self.wait("document.readyState === 'complete'")
        self.console.clear()
        self.requests.clear()
        self.ask("Page.navigate", url="file://" + os.path.abspath(path) + fragment)
        self.wait("document.readyState === 'complete'")

    def run(self, expression):
        """The value of an expression of JavaScript."""
        answer = self.ask("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(answer["exceptionDetails"])
        return answer["result"].get("value")

    def wait(self, expression, seconds=30):
        """Waits until an expression is true."""
        end = time.monotonic() + seconds
        while not self.run(expression):
            if time.monotonic() > end:
                raise AssertionError(f"never became true: {expression}")
            time.sleep(0.02)

    KEYS = {"Enter": 13, "Tab": 9, "Escape": 27, "ArrowDown": 40, "ArrowUp": 38, "ArrowLeft": 37, "ArrowRight": 39,
            "Home": 36, "End": 35, "PageDown": 34, "PageUp": 33}

    def press(self, *keys, shift=False):
        """Presses keys by name, or types texts."""
        for key in keys:
            if key in self.KEYS:
                text = {"text": "\r"} if key == "Enter" else {}
                for kind in ("keyDown", "keyUp"):
                    self.ask("Input.dispatchKeyEvent", type=kind, key=key, code=key, modifiers=8 if shift else 0,
                             windowsVirtualKeyCode=self.KEYS[key], **(text if kind == "keyDown" else {}))
            else:
                for letter in key:
                    self.ask("Input.dispatchKeyEvent", type="keyDown", key=letter, text=letter)
                    self.ask("Input.dispatchKeyEvent", type="keyUp", key=letter)

    def click(self, selector):
        """Clicks with the mouse on the middle of the first element of a selector."""
        box = self.run(f"(() => {{ const e = document.querySelector({json.dumps(selector)}); e.scrollIntoView({{block: 'center'}});"
                       " const b = e.getBoundingClientRect(); return [b.x + b.width / 2, b.y + b.height / 2]; })()")
        for kind in ("mousePressed", "mouseReleased"):
            self.ask("Input.dispatchMouseEvent", type=kind, x=box[0], y=box[1], button="left", clickCount=1)

    def screenshot(self, path, whole=True):
        import base64
        how = {"captureBeyondViewport": whole}
        if whole:
            size = self.ask("Page.getLayoutMetrics")["cssContentSize"]
            how["clip"] = {"x": 0, "y": 0, "width": size["width"], "height": size["height"], "scale": 1}
        with open(path, "wb") as out:
            out.write(base64.b64decode(self.ask("Page.captureScreenshot", **how)["data"]))
