"""Common parts of the end-to-end tests: Windows programs, the built DLL, and the local analysis service in this process."""

import contextlib
import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from pathlib import Path
from typing import NamedTuple
from unittest import mock

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples"
sys.path.insert(0, str(ROOT / "tools" / "analysis_service"))
from server import AnalysisServer  # noqa: E402

DLL = Path(os.environ.get("KEL_DLL", ROOT / "build" / "release" / "Detection.dll"))
PROGRAMS = DLL.parent / "tests"
# By its path: Wine would start a bare name through another process.
CSCRIPT = (r"C:\windows\system32\cscript.exe", "//nologo")
NO_SERVICE = "http://127.0.0.1:9"  # refuses at once, whatever the machine's network does
PATIENCE = 300  # seconds to wait for anything that an idle machine does within 30
API_KEY = "5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53"
PROG_ID = "KELDetection_TAMS64.SysInfo"
CLASS_ID = "{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}"


class Ran(NamedTuple):
    """The result of running a Windows program."""

    code: int
    output: str
    memory: float  # its peak, in MB
    seconds: float


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def peak_memory(pid):
    """The peak memory of the process so far, in MB; 0 when it has ended."""
    with contextlib.suppress(OSError):
        if match := re.search(r"VmHWM:\s*(\d+) kB", Path(f"/proc/{pid}/status").read_text()):
            return int(match[1]) / 1024
    return 0


def has_begun(code, output):
    """Whether a program came to its own code: now and then, Wine ends a process at its start (see scripts/wine/wine)."""
    return code != 1 or bool(output)


def wine(*arguments, proxy=NO_SERVICE, log=None):
    """Runs a Windows program. Debugger output goes to the file `log`."""
    ran = run_once(arguments, proxy, log)
    return ran if has_begun(ran.code, ran.output) or ran.seconds > 10 else run_once(arguments, proxy, log)


def run_once(arguments, proxy, log):
    environment = os.environ | ({"WINEDEBUG": "warn+seh"} if log else {}) | {"http_proxy": proxy}
    start, memory = time.monotonic(), 0
    # Not through a pipe: programs that this one leaves running would hold it open.
    with tempfile.TemporaryFile() as output, \
            subprocess.Popen(["wine", *map(str, arguments)], env=environment, stdin=subprocess.DEVNULL, stdout=output,
                             stderr=log or subprocess.DEVNULL) as process:
        while process.poll() is None and time.monotonic() < start + PATIENCE:
            memory = max(memory, peak_memory(process.pid))
            time.sleep(0.02)
        process.kill()
        code = process.wait()
        output.seek(0)
        return Ran(code, output.read().decode("cp437").replace("\r\n", "\n"), memory, time.monotonic() - start)


def make_prefix(case):
    """Gives a class of tests a folder, with a separate Wine prefix for its programs."""
    case.folder = Path(case.enterClassContext(tempfile.TemporaryDirectory()))
    case.enterClassContext(mock.patch.dict(os.environ, {"WINEPREFIX": str(case.folder / "prefix")}))
    case.addClassCleanup(subprocess.run, ["wineserver", "-k"])
    wine("wineboot", "-i")


def show_display(case):
    """Gives a class of tests a virtual display. A Wine server keeps the display that it saw first, so make_prefix follows."""
    server = case.enterClassContext(subprocess.Popen(
        ["Xvfb", "-displayfd", "1", "-screen", "0", "1920x1080x24", "-nolisten", "tcp"],
        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL))
    case.addClassCleanup(server.terminate)
    display = f":{server.stdout.readline().decode().strip()}"
    case.enterClassContext(mock.patch.dict(os.environ, {"DISPLAY": display}))


def write_requirements(folder, referrer, requirements):
    """Writes a referrer's requirements, each as an id, a label, a comparison, a needed text and an advice, or as a line."""
    names = ("id", "label", "comparison", "needed", "advice")
    lines = [requirement if isinstance(requirement, dict) else dict(zip(names, requirement)) for requirement in requirements]
    (folder / f"{referrer}.json").write_text(json.dumps({"title": "T<", "requirements": lines}))


class ServiceTest(unittest.TestCase):
    """Has a folder, and a service on loopback that takes its requirements from there."""

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.service = self.enterContext(AnalysisServer(0, self.folder / "sessions", self.folder))
        self.address = f"127.0.0.1:{self.service.server_address[1]}"
        thread = threading.Thread(target=self.service.serve_forever, kwargs={"poll_interval": 0.02})
        thread.start()
        self.addCleanup(thread.join)
        self.addCleanup(self.service.shutdown)

    def require(self, referrer, *requirements):
        write_requirements(self.folder, referrer, requirements)

    def lines(self):
        """The request lines that the service saw, without the host."""
        return [re.sub(r" http://[^/]*", " ", request["line"]) for request in self.service.requests]


class ControlTest(ServiceTest):
    """Also has the registered control, and requirements for the referrer "demo"."""

    logs = False  # whether `log` holds the control's log after a script has run

    @classmethod
    def setUpClass(cls):
        code = wine("regsvr32", "/s", windows_path(DLL)).code
        assert code == 0, f"regsvr32 ended with {code}"

    def setUp(self):
        super().setUp()
        self.require("demo", (71063, "Memory", "at least", "1 MB"), (71094, "Battery", "no"))

    def run_script(self, text, language="js"):
        """Runs a script in which `control` exists, and returns the lines it wrote. A script error fails the test."""
        make = f'WScript.Echo("begun");\nvar control = new ActiveXObject("{PROG_ID}");\n' if language == "js" else \
            f'WScript.Echo "begun"\nDim control\nSet control = WScript.CreateObject("{PROG_ID}")\n'
        script = self.folder / f"test.{language}"
        script.write_text(f'{make}{text}\nWScript.Echo("ended")\nWScript.Quit(7)', encoding="utf-8")
        for _ in range(3):  # now and then Wine ends a host before its script, with any code, when others start at the same time
            with open(self.folder / "log.txt", "wb") as log:
                self.ran = wine(*CSCRIPT, windows_path(script), proxy=f"http://{self.address}", log=log if self.logs else None)
            if self.ran.output:
                break
        self.log = "\n".join(re.findall(r'OutputDebugStringA "(.*)\\n"', Path(log.name).read_text("cp437")))
        self.assertTrue(self.ran.output.endswith("ended\n"), self.ran)
        # Rarely, Wine crashes when a process ends while one of its threads does; a crash of the control has another code.
        self.assertIn(self.ran.code, (7, -signal.SIGSEGV), self.ran.output)
        return self.ran.output.splitlines()[1:-1]
