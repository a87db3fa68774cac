"""A page in headless Chromium, driven through the DevTools protocol on two pipes."""

import base64
import json
import os
import shutil
import subprocess
import tempfile
from pathlib import Path


class Chromium:
    """A browser with one page. Everything that the page requests or logs is kept in `requests` and `complaints`."""

    def __init__(self):
        self.requests, self.complaints, self.number, self.rest = [], [], 0, b""
        self.profile = tempfile.mkdtemp(prefix="chromium-")
        to_browser, self.to_browser = os.pipe()
        self.from_browser, from_browser = os.pipe()

        def connect():  # the browser reads from descriptor 3 and writes to 4
            low, high = os.dup(to_browser), os.dup(from_browser)
            os.dup2(low, 3)
            os.dup2(high, 4)

        command = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--remote-debugging-pipe",
                   "--hide-scrollbars", "--no-first-run", "--disable-background-networking",
                   f"--user-data-dir={self.profile}"]
        self.process = subprocess.Popen(command, preexec_fn=connect, close_fds=False, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_browser)
        os.close(from_browser)
        self.session = None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Network", "Runtime", "Log"):
            self.call(f"{domain}.enable")

    def close(self):
        self.session = None
        self.call("Browser.close")
        self.process.wait(30)
        os.close(self.to_browser)
        os.close(self.from_browser)
        shutil.rmtree(self.profile, ignore_errors=True)

    def call(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.to_browser, json.dumps(message).encode() + b"\0")
        return self.wait(lambda answer: answer.get("id") == self.number, method)

    def wait(self, wanted, what):
        while True:
            while b"\0" not in self.rest:
                received = os.read(self.from_browser, 1 << 20)
                if not received:
                    raise RuntimeError(f"Chromium ended during {what}")
                self.rest += received
            text, self.rest = self.rest.split(b"\0", 1)
            message = json.loads(text)
            self.note(message)
            if wanted(message):
                if "error" in message:
                    raise RuntimeError(f"{what}: {message['error']['message']}")
                return message.get("result", {})

    def note(self, message):
        parameters = message.get("params", {})
        if message.get("method") == "Network.requestWillBeSent":
            self.requests.append(parameters["request"]["url"])
        if message.get("method") == "Log.entryAdded":
            self.complaints.append(parameters["entry"]["text"])
        if message.get("method") in ("Runtime.consoleAPICalled", "Runtime.exceptionThrown"):
            self.complaints.append(json.dumps(parameters))

    def open(self, file, width, height=900, dark=False, scale=1, media=""):
        """Loads the file in a window of this size, and forgets what an earlier page has requested and logged."""
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=scale,
                  mobile=width < 600)
        scheme = {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}
        self.call("Emulation.setEmulatedMedia", media=media, features=[scheme])
        self.requests, self.complaints = [], []
        self.call("Page.navigate", url=Path(file).resolve().as_uri())
        self.wait(lambda message: message.get("method") == "Page.loadEventFired", "loading")

    def evaluate(self, expression):
        """Returns the value of a JavaScript expression in the page."""
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True)
        if "exceptionDetails" in result:
            raise RuntimeError(f"{expression}: {result['exceptionDetails']['text']}")
        return result["result"].get("value")

    def picture(self, file, height=None, top=0, left=0, width=None):
        """Saves the page, or a part of it, as a PNG file."""
        size = self.call("Page.getLayoutMetrics")["cssContentSize"]
        clip = {"x": left, "y": top, "width": width or size["width"], "height": height or size["height"] - top,
                "scale": 1}
        data = self.call("Page.captureScreenshot", format="png", clip=clip, captureBeyondViewport=True)["data"]
        Path(file).write_bytes(base64.b64decode(data))

    def print(self, file):
        """Saves the page as a PDF file, as it would be printed on A4 paper."""
        data = self.call("Page.printToPDF", paperWidth=8.27, paperHeight=11.69)["data"]
        Path(file).write_bytes(base64.b64decode(data))
