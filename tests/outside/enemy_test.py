"""The service as an enemy: whatever it answers, a member returns in time, within memory, and the facts stay."""

import os
import sys
import unittest
from concurrent.futures import ThreadPoolExecutor

from harness import ControlTest
from misbehaviour import MISBEHAVIOURS

GROUPS = "/Data/Service.svc/Group/list"
ANALYSIS = "/service/Analysis/demo"
FILE = "/global/tests/test_2.bin"
QUICK, DOWNLOAD, WAIT, EXCHANGE = 60, 75, 75, 100  # seconds, with what a loaded machine takes for the rest of a run
VERDICT, TEXT, NOTHING, LOST = r"^286 <analysis ", r"^11 71063\|71094$", r"^0 $", r"^25 There is no such request"

# misbehaviour, path, what the script gets of the analysis, seconds at most, MB at most
ROWS = [
    *((name, ANALYSIS, TEXT, QUICK, 60) for name in MISBEHAVIOURS if name.startswith("length-") and "large" not in name),
    ("length-large", ANALYSIS, TEXT, WAIT, 60),
    *((name, ANALYSIS, NOTHING, QUICK, 60) for name in ("redirect-host", "redirect-host-keep", "redirect-file", "redirect-ftp")),
    *((name, ANALYSIS, LOST, QUICK, 60) for name in ("redirect-path", "redirect-keep")),
    ("chunked", ANALYSIS, TEXT, QUICK, 60), ("gzip", ANALYSIS, "^30 \x1f", QUICK, 60),
    *((f"chunked-{name}", ANALYSIS, r"^\d\d? 71063\|", QUICK, 60) for name in ("text", "negative", "overflow")),
    ("longest", ANALYSIS, r"^16777216 71063\|x", QUICK, 200), ("many-ids", GROUPS, r"^\d+ <analysis ", QUICK, 320),
    ("100-mb", ANALYSIS, NOTHING, QUICK, 120), ("flood", ANALYSIS, NOTHING, QUICK, 120),
    *((name, ANALYSIS, NOTHING, EXCHANGE, 60)
      for name in ("slow-body", "slow-headers", "flood-header", "redirect-self", "chunked-endless")),
    ("flood-headers", ANALYSIS, NOTHING, EXCHANGE, 1000),
    ("redirect-host", GROUPS, "^73 No report", QUICK, 60),
    *((name, FILE, VERDICT, QUICK, 60) for name in ("close", "empty", "cut-file", "reset-file")),
    *((name, FILE, VERDICT, DOWNLOAD, 60) for name in ("slow-headers", "redirect-self", "flood", "endless")),
]
# Where the answer does not count, the log says why.
LINES = {"redirect-host": "The answer came from another host than the service's.",
         "flood": "The service's answer is too long.", "slow-headers": "The service took too long to answer."}
SCRIPT = """control.ReferrerID = "demo"; var answer = control.Analysis("i", "xml", "1");
WScript.Echo(answer.length + " " + answer.substr(0, 60));
WScript.Echo(control.Value("71069"));
WScript.Echo(control.Value("71063") != "" && control.Value("71424") == control.SessionID && control.SysInfo.length > 100);"""


class Enemy(ControlTest):
    def __init__(self, name, path, answer, seconds, memory):
        super().__init__("check")
        self.row = (name, path, answer, seconds, memory)

    def __str__(self):
        return " ".join(self.row[:2])

    def check(self):
        name, path, answer, seconds, memory = self.row
        (self.folder / "demo.json").write_text(
            '{"title": "T", "requirements": [{"id": 71063, "label": "M", "comparison": "at least", "needed": "1 MB"},'
            '{"id": 71069, "label": "B", "comparison": "at least", "needed": "1"}]}')
        self.service.faults[path] = name
        self.service.longest = EXCHANGE + 15
        self.logs = path == FILE or name in LINES
        output = self.run_script(SCRIPT)
        if "KEL_SHOW" in os.environ:
            print(f"{name:20}{path:30}{output[0][:40]!r:44}{self.seconds:6.1f} s {self.peak:5.0f} MB", file=sys.stderr)
        self.assertRegex("\n".join(output[:-2]), answer)
        self.assertRegex(output[-2], r"^0\.0 bps$" if path == FILE else r"^$" if path == GROUPS else r"bps$")
        self.assertEqual(output[-1], "-1")
        self.assertLess(self.seconds, seconds)
        if path != FILE:
            self.assertIn(LINES.get(name, ""), self.log)
        self.assertEqual("The bandwidth test was stopped after 30 seconds." in self.log,
                         path == FILE and seconds == DOWNLOAD)
        self.assertTrue(10 < self.peak < memory, self.peak)
        self.assertLess(len(self.service.requests), 30)  # each may cost the host a socket


class Parallel(unittest.TestSuite):
    """Most cases wait for a limit; together they take as long as the longest."""

    def run(self, result, debug=False):
        ControlTest.setUpClass()
        with ThreadPoolExecutor(16) as pool:
            list(pool.map(lambda case: case.run(result), self))
        return result


def load_tests(*_):
    slow_first = sorted(ROWS, key=lambda row: -row[3])
    return Parallel([Enemy(*row) for row in slow_first])


if __name__ == "__main__":
    unittest.main()
