"""Drives a headless Chromium through its debugging pipe: no port, no network, no further package."""

import base64
import json
import os
import pathlib
import shutil
import subprocess
import tempfile

FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync",
         "--remote-debugging-pipe"]


class Browser:
    """One page in a browser of its own. Events that it reports are kept in `events`."""

    def __init__(self):
        program = shutil.which("chromium")
        if program is None:
            raise FileNotFoundError("chromium")
        self.folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        commands_out, self.commands = os.pipe()
        self.answers, answers_in = os.pipe()

        def take_pipes():  # the browser reads file descriptor 3 and writes 4
            os.dup2(commands_out, 13)
            os.dup2(answers_in, 14)
            os.dup2(13, 3)
            os.dup2(14, 4)

        self.process = subprocess.Popen(
            [program, *FLAGS, f"--user-data-dir={self.folder.name}", "about:blank"],
            close_fds=False, preexec_fn=take_pipes, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(commands_out)
        os.close(answers_in)
        self.buffer = b""
        self.number = 0
        self.session = None
        self.events = []
        targets = self.ask("Target.getTargets")["targetInfos"]
        page = next(target for target in targets if target["type"] == "page")
        self.session = self.ask("Target.attachToTarget", targetId=page["targetId"],
                                flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Network", "Log"):
            self.ask(f"{domain}.enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        os.close(self.commands)
        os.close(self.answers)
        self.folder.cleanup()

    def _message(self):
        while b"\0" not in self.buffer:
            piece = os.read(self.answers, 1 << 20)
            if not piece:
                raise RuntimeError("the browser ended")
            self.buffer += piece
        message, self.buffer = self.buffer.split(b"\0", 1)
        return json.loads(message)

    def ask(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.commands, json.dumps(message).encode() + b"\0")
        while True:
            answer = self._message()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]
            self.events.append(answer)

    def open(self, path):
        """Opens a file and waits until it has been loaded."""
        self.ask("Page.navigate", url=pathlib.Path(path).resolve().as_uri())
        while not any(event.get("method") == "Page.loadEventFired" for event in self.events):
            self.events.append(self._message())

    def run(self, script):
        """The value of an expression, awaited."""
        answer = self.ask("Runtime.evaluate", expression=script, returnByValue=True,
                          awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(f"{script}: {answer['exceptionDetails']}")
        return answer["result"].get("value")

    def press(self, key):
        """A key as the user presses it; one letter or a name such as ArrowDown."""
        text = {"Enter": "\r", " ": " "}.get(key, key if len(key) == 1 else "")
        self.ask("Input.dispatchKeyEvent", type="keyDown", key=key, text=text)
        self.ask("Input.dispatchKeyEvent", type="keyUp", key=key)

    def size(self, width, height, mobile=False):
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=height,
                 deviceScaleFactor=1, mobile=mobile)

    def picture(self, path, whole=False):
        """A screenshot as PNG."""
        data = self.ask("Page.captureScreenshot", captureBeyondViewport=whole)["data"]
        pathlib.Path(path).write_bytes(base64.b64decode(data))

    def print(self, path):
        data = self.ask("Page.printToPDF", landscape=True, printBackground=True)["data"]
        pathlib.Path(path).write_bytes(base64.b64decode(data))
