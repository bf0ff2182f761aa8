"""A real Firefox, driven by the WebDriver BiDi protocol over a web socket of its own."""

import base64
import json
import os
import re
import socket
import struct
import subprocess
import time
from pathlib import Path

from harness import PATIENCE


class Firefox:
    """One browser, with a home and a profile in the folder of the test `case`. It ends with the test."""

    def __init__(self, case, agent):
        profile = case.folder / "firefox"
        profile.mkdir()
        (profile / "user.js").write_text(f'user_pref("general.useragent.override", "{agent}");')
        log = case.enterContext(open(case.folder / "firefox.log", "w+b"))
        process = subprocess.Popen(
            ["firefox-esr", "--headless", "--no-remote", "--profile", profile, "--remote-debugging-port", "0",
             "--remote-allow-system-access"], env=os.environ | {"HOME": str(case.folder)}, stdout=log, stderr=log)
        case.addCleanup(process.wait)
        case.addCleanup(process.kill)
        listens = re.compile(rb"listening on ws://(\S+):(\d+)")
        host, port = map(bytes.decode, self.wait(lambda: listens.search(Path(log.name).read_bytes())).groups())
        connection = socket.create_connection((host, int(port)), PATIENCE)
        case.addCleanup(connection.close)
        self.stream = connection.makefile("rwb")
        case.addCleanup(self.stream.close)
        key = base64.b64encode(os.urandom(16)).decode()
        self.stream.write(f"GET /session HTTP/1.1\r\nHost: {host}:{port}\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                          f"Sec-WebSocket-Key: {key}\r\nSec-WebSocket-Version: 13\r\n\r\n".encode())
        self.stream.flush()
        while self.stream.readline().strip():
            pass
        self.number = 0
        self.ask("session.new", capabilities={})

    def wait(self, find):
        """Waits until something is found, and returns it."""
        end = time.monotonic() + PATIENCE
        while not (found := find()):
            if time.monotonic() > end:
                raise AssertionError("not found in time")
            time.sleep(0.05)
        return found

    def ask(self, method, **parameters):
        self.number += 1
        data = json.dumps({"id": self.number, "method": method, "params": parameters}).encode()
        head = struct.pack(">BBH", 0x81, 0xFE, len(data)) if len(data) > 125 else struct.pack("BB", 0x81, 0x80 | len(data))
        self.stream.write(head + bytes([1] * 4) + bytes(byte ^ 1 for byte in data))  # a mask of zeros is refused
        self.stream.flush()
        while True:  # events come in between
            _, length = self.stream.read(2)
            if length > 125:
                length = int.from_bytes(self.stream.read(2 if length == 126 else 8), "big")
            answer = json.loads(self.stream.read(length))
            if answer.get("id") == self.number:
                if answer["type"] != "success":
                    raise AssertionError(answer)
                return answer["result"]

    def page(self, part):
        """The page whose address has that part, once there is one."""
        pages = self.wait(lambda: [page for page in self.ask("browsingContext.getTree")["contexts"] if part in page["url"]])
        return pages[0]["context"]

    def run(self, page, script):
        """The value of an expression, as text; a visitor seems to have clicked."""
        answer = self.ask("script.evaluate", expression=f"String({script})", target={"context": page}, awaitPromise=True,
                          userActivation=True)
        return answer["result"]["value"]

    def click(self, page, name):
        """Clicks a button by its id, once it is there and enabled."""
        button = f"document.getElementById('{name}')"
        self.wait(lambda: self.run(page, f"{button} && !{button}.hidden && !{button}.disabled") == "true")
        self.run(page, f"{button}.click()")
