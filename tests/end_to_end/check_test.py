"""check.exe under a virtual display: its pages, and what it sends when."""

import os
import re
import shutil
import subprocess
import time
import unittest
from uuid import uuid4

from harness import DLL, NO_SERVICE, PATIENCE, PROGRAMS, ServiceTest, make_prefix, show_display, windows_path, wine

CHECK, SAVE, OK, CANCEL, CLOSE = 100, 101, 1, 2, 8  # buttons
LIST, TITLE = "/Data/Service.svc/Group/list", "/service/Title/demo"
UPLOAD, ANALYSIS = "/Data/Service.svc/upload", "/service/Analysis/demo"
MAX_END = 20  # seconds from Cancel to the end of the process: two, and more on a busy machine; less than an exchange may take


def start(case, program, proxy):
    process = subprocess.Popen(["wine", program], env=os.environ | {"http_proxy": proxy}, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    case.addCleanup(process.wait)
    case.addCleanup(process.kill)
    return process


def press(button, *arguments, title="Computer check"):
    """Presses a button of the program's window, and returns the window's texts."""
    ran = wine(PROGRAMS / "press.exe", title, button, *arguments)
    if ran.code != 0:
        raise AssertionError(f"no button {button} in {title}")
    return ran.output


@unittest.skipUnless(shutil.which("Xvfb"), "there is no Xvfb")
class Check(ServiceTest):
    @classmethod
    def setUpClass(cls):
        show_display(cls)
        make_prefix(cls)

    def setUp(self):
        super().setUp()
        self.session = str(uuid4())
        self.require("demo", (71063, "Plenty", "at least", "1 MB"), (71063, "Memory", "at least", "9000 TB", "Add memory."))

    def run_check(self, name=None, proxy=None):
        program = self.folder / (name or f"check.demo.{self.session} (1).exe")
        shutil.copy(DLL.parent / "check.exe", program)
        return start(self, program, proxy or f"http://{self.address}")

    def asked(self):
        """The paths that were asked for."""
        return [re.sub(r"\?.*", "", line.split()[1]) for line in self.lines()]

    def test_a_click_leads_to_the_verdict_and_to_a_file(self):
        process = self.run_check()
        consent = press(CHECK, "look")
        self.assertIn("Check this computer for ?T<??", consent)
        self.assertIn("Memory: total physical memory", consent)
        self.assertIn("analysis.keldane.example", consent)
        self.assertEqual(self.asked(), [LIST, TITLE])
        press(CHECK)
        verdict = press(SAVE)
        self.assertIn("1 of 2 requirements is not met", verdict)
        self.assertIn("Memory: needs at least 9000 TB; found", verdict)
        self.assertIn("Add memory.", verdict)
        file = self.folder / "saved.html"
        press(OK, windows_path(file), title="Save As")
        press(CLOSE)
        self.assertEqual(process.wait(PATIENCE), 1)
        self.assertIn('<th scope="row">Plenty</th>', file.read_text("utf-8"))
        self.assertEqual(self.asked(), [LIST, TITLE, UPLOAD, ANALYSIS])
        for request in self.service.requests[2:]:
            self.assertIn(self.session, request["body"])

    def test_cancel_ends_it_in_two_seconds_and_nothing_is_sent_after(self):
        paths = [LIST, TITLE, UPLOAD, ANALYSIS]
        for count, path in enumerate(paths, 1):
            with self.subTest(path):
                self.service.requests.clear()
                self.service.faults = {path: "slow-headers"}
                process = self.run_check()
                if path in (UPLOAD, ANALYSIS):
                    press(CHECK)
                end = time.monotonic() + PATIENCE
                while path not in self.asked() and time.monotonic() < end:
                    time.sleep(0.02)
                press(CANCEL)
                start = time.monotonic()
                self.assertEqual(process.wait(PATIENCE), 4)
                self.assertLess(time.monotonic() - start, MAX_END)
                self.assertEqual(self.asked(), paths[:count])

    def test_a_problem_is_one_sentence(self):
        session = self.session
        for name, proxy, fault, sentence in (
                ("check.exe", None, None, "This file's name does not say which check to make."),
                (f"check.unknown.{session}.exe", None, None, "The service does not know the product"),
                (f"check.demo.{session}.exe", NO_SERVICE, None, "The service cannot be reached."),
                (f"check.demo.{session}.exe", None, "busy", "The service refused the check.")):
            with self.subTest(sentence):
                self.service.faults = {LIST: fault}
                process = self.run_check(name, proxy)
                self.assertIn(sentence, press(CLOSE))
                self.assertEqual(process.wait(PATIENCE), 3)
                self.assertNotIn(UPLOAD, self.asked())
