"""What the end-to-end tests share: the built DLL, the script host, and the local analysis service in this process."""

import json
import os
import re
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools" / "analysis_service"))
from server import AnalysisServer  # noqa: E402

DLL = Path(os.environ.get("KEL_DLL", ROOT / "build" / "release" / "Detection.dll"))
# By its path: Wine starts a bare name through a process of its own.
CSCRIPT = r"C:\windows\system32\cscript.exe"
# Puts a program into an empty network, where a host name is not even looked up.
NO_NETWORK = ("unshare", "--map-current-user", "--net")
API_KEY = "5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53"
PROG_ID = "KELDetection_TAMS64.SysInfo"


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def peak_memory(pid):
    """The most memory that the process had in use so far, in MB; 0 when it is gone."""
    try:
        match = re.search(r"VmHWM:\s*(\d+) kB", Path(f"/proc/{pid}/status").read_text())
    except OSError:
        match = None
    return int(match[1]) / 1024 if match else 0


def wine(arguments, proxy=None, timeout=120, watch=lambda pid: None, network=True, log=None):
    """Runs a Windows program: its exit code, and what it wrote. Calls `watch` with its process id now and then.

    Debugger output goes to the file `log`.
    """
    environment = os.environ | {"http_proxy": proxy} | ({"WINEDEBUG": "warn+seh"} if log else {})
    if not proxy:
        del environment["http_proxy"]
    command = [*(() if network else NO_NETWORK), "wine", *arguments]
    end = time.monotonic() + timeout
    with subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=log or subprocess.DEVNULL) as process:
        while True:
            try:
                output, _ = process.communicate(timeout=0.05)
                return process.returncode, output.decode("cp437").replace("\r\n", "\n")
            except subprocess.TimeoutExpired:
                watch(process.pid)
                if time.monotonic() > end:
                    process.kill()
                    raise


class ServiceTest(unittest.TestCase):
    """Has a folder of its own, and a service on loopback that takes its requirements from there."""

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.service = self.enterContext(AnalysisServer(0, self.folder / "sessions", self.folder))
        self.address = f"127.0.0.1:{self.service.server_address[1]}"
        thread = threading.Thread(target=self.service.serve_forever, kwargs={"poll_interval": 0.02})
        thread.start()
        self.addCleanup(thread.join)
        self.addCleanup(self.service.shutdown)

    def require(self, referrer, *requirements):
        """Writes a referrer's requirements, each an id, a label, a comparison, and what it needs."""
        names = ("id", "label", "comparison", "needed")
        lines = [dict(zip(names, requirement)) for requirement in requirements]
        (self.folder / f"{referrer}.json").write_text(json.dumps({"title": "T<", "requirements": lines}))


class ControlTest(ServiceTest):
    """Has the control registered, too, and requirements for the referrer "demo"."""

    logs = False  # whether `log` holds the control's log after a script has run

    @classmethod
    def setUpClass(cls):
        code, _ = wine(["regsvr32", "/s", windows_path(DLL)])
        assert code == 0, f"regsvr32 ended with {code}"

    def setUp(self):
        super().setUp()
        self.require("demo", (71063, "Memory", "at least", "1 MB"), (71094, "Battery", "no"))

    def run_script(self, text, language="js", proxy=True):
        """Runs a script with `control` made: the lines it wrote. A script error fails the test."""
        make = f'var control = new ActiveXObject("{PROG_ID}");\n' if language == "js" else \
            f'Dim control\nSet control = WScript.CreateObject("{PROG_ID}")\n'
        script = self.folder / f"test.{language}"
        script.write_text(make + text + "\nWScript.Quit(7)", encoding="utf-8")
        start = time.monotonic()
        self.peak = 0  # MB
        with open(self.folder / "log.txt", "wb") as log:
            code, output = wine([CSCRIPT, "//nologo", windows_path(script)], f"http://{self.address}" if proxy else None,
                                watch=self.note_memory, network=proxy, log=log if self.logs else None)
        self.log = "\n".join(re.findall(r'OutputDebugStringA "(.*)\\n"', Path(log.name).read_text("cp437")))
        self.seconds = time.monotonic() - start
        self.assertEqual(code, 7, output)
        return output.splitlines()

    def note_memory(self, pid):
        self.peak = max(self.peak, peak_memory(pid))

    def lines(self):
        """The request lines that the service saw, without the host."""
        return [re.sub(r" http://[^/]*", " ", request["line"]) for request in self.service.requests]
