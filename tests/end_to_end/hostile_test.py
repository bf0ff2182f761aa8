"""A hostile service: whatever it answers, members return in time and within memory, and the facts remain."""

import os
import sys
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from harness import ControlTest

PATHS = {"analysis": "/service/Analysis/demo", "groups": "/Data/Service.svc/Group/list", "file": "/global/tests/test_2.bin"}
SCRIPT = """control.ReferrerID = "demo"; var answer = control.Analysis("i", "xml", "1");
WScript.Echo(answer.length + " " + answer.substr(0, 60));
WScript.Echo(control.Value("71069"));
WScript.Echo(control.Value("71063") != "" && control.Value("71424") == control.SessionID && control.SysInfo.length > 100);"""


class Hostile(ControlTest):
    def __init__(self, exchange, name, *expected):
        super().__init__("check")
        self.exchange, self.name, self.expected = exchange, name, expected

    def __str__(self):
        return f"{self.exchange} {self.name}"

    def check(self):
        answer, bandwidth, bounds, line = self.expected
        seconds, memory = map(int, bounds.split())
        self.require("demo", (71063, "M", "at least", "1 MB"), (71069, "B", "at least", "1"))
        self.service.faults[PATHS[self.exchange]] = self.name
        self.service.longest = 135
        self.logs = bool(line)
        *answers, rate, facts = self.run_script(SCRIPT)
        if "KEL_SHOW" in os.environ:
            print(f"{str(self):30}{answers[0][:40]!r:44}{self.ran.seconds:6.1f} s {self.ran.memory:5.0f} MB", file=sys.stderr)
        self.assertRegex("\n".join(answers), answer)
        self.assertRegex(rate, bandwidth)
        self.assertEqual(facts, "-1")
        self.assertLess(self.ran.seconds, seconds)
        self.assertTrue(10 < self.ran.memory < memory, self.ran.memory)
        self.assertIn(line, self.log)
        self.assertEqual(self.log.count("Skipped, "), 2 if line.startswith("Skipped, ") else 0)  # the upload and the analysis
        self.assertEqual(sum("/upload" in line for line in self.lines()), 1)
        self.assertNotIn("Authorization", str([request["headers"] for request in self.service.requests]))
        self.assertLess(len(self.service.requests), 30)  # each may cost the host a socket


class Parallel(unittest.TestSuite):
    """Most cases wait for a limit; together they take as long as the longest."""

    def run(self, result, debug=False):
        ControlTest.setUpClass()
        with ThreadPoolExecutor(16) as pool:
            list(pool.map(lambda case: case.run(result), self))
        return result


def load_tests(*_):
    rows = (Path(__file__).parent / "hostile.txt").read_text("ascii").splitlines()
    cases = [[cell.strip() for cell in row.split(" ;")] for row in rows if " ;" in row and not row.startswith("#")]
    slow_first = sorted(cases, key=lambda case: -int(case[4].split()[0]))
    return Parallel(Hostile(exchange, name, *expected) for exchange, names, *expected in slow_first for name in names.split())
