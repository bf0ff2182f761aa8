"""What the outside tests share: the built DLL, the script host, and the local analysis service in this process."""

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
API_KEY = "5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53"
PROG_ID = "KELDetection_TAMS64.SysInfo"


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def wine(arguments, proxy=None, timeout=120):
    """Runs a Windows program: its exit code, and what it wrote."""
    environment = dict(os.environ)
    environment.pop("http_proxy", None)
    if proxy:
        environment["http_proxy"] = proxy
    done = subprocess.run(["wine", *arguments], env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, timeout=timeout, check=False)
    return done.returncode, done.stdout.decode("cp437").replace("\r\n", "\n")


class ControlTest(unittest.TestCase):
    """Has a folder of its own, a service on loopback, and the control registered."""

    @classmethod
    def setUpClass(cls):
        code, _ = wine(["regsvr32", "/s", windows_path(DLL)])
        assert code == 0, f"regsvr32 ended with {code}"

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        (self.folder / "demo.json").write_text(
            '{"title": "Test", "requirements": ['
            '{"id": 71063, "label": "Memory", "comparison": "at least", "needed": "1 MB"},'
            '{"id": 71094, "label": "Battery", "comparison": "no"}]}')
        self.service = AnalysisServer(0, self.folder / "sessions", self.folder)
        thread = threading.Thread(target=self.service.serve_forever, kwargs={"poll_interval": 0.02})
        thread.start()
        self.addCleanup(thread.join)
        self.addCleanup(self.service.server_close)
        self.addCleanup(self.service.shutdown)

    def run_script(self, text, language="js", proxy=True):
        """Runs a script with `control` made: the lines it wrote. A script error fails the test."""
        make = f'var control = new ActiveXObject("{PROG_ID}");\n' if language == "js" else \
            f'Dim control\nSet control = WScript.CreateObject("{PROG_ID}")\n'
        script = self.folder / f"test.{language}"
        script.write_text(make + text + "\nWScript.Quit(7)", encoding="utf-8")
        address = f"http://127.0.0.1:{self.service.server_address[1]}" if proxy is True else proxy
        start = time.monotonic()
        code, output = wine(["cscript", "//nologo", windows_path(script)], address or None)
        self.seconds = time.monotonic() - start
        self.assertEqual(code, 7, output)
        return output.splitlines()

    def lines(self):
        """The request lines that the service saw, without the host."""
        return [re.sub(r" http://[^/]*", " ", request["line"]) for request in self.service.requests]
