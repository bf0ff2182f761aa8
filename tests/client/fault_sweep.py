"""A fault at every edge: each run of a test has a process of its own, and one call of the control's fails in it."""

import os
import re
import subprocess
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

TESTS = Path(os.environ.get("KEL_CLIENT_TESTS", "build/release/tests/client_tests.exe"))
STRIDE = int(os.environ.get("KEL_FAULT_STRIDE", 0))  # over the calls of each function; 0: some of each
HANDLE = 100000  # what counts as one open handle


class Run:
    """A test with a fault, and what it reported; without a report when its process did not get so far."""

    def __init__(self, test, fault=""):
        self.fault = fault
        done = subprocess.run(["wine", TESTS, f"--gtest_filter=Fault.{test}"], stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=100,
                              env=os.environ | {"KEL_FAULT": fault, "http_proxy": "http://127.0.0.1:9"})
        self.code, self.output = done.returncode, done.stdout
        report = re.search(r"^open=(-?\d+) failed=(\w*) any=(\d+)(.*)", done.stdout, re.MULTILINE)
        self.open, self.failed, self.allocations = (int(report[1]), report[2], int(report[3])) if report else (0, "", 0)
        self.calls = {name: int(count) for name, count in re.findall(r"(\w+)=(\d+)", report[4] if report else "")}
        self.uncalled = set(re.findall(r"uncalled (\w+)", report[4] if report else ""))


def spread(count):
    """Some of the numbers up to a count: the first, and of many others at even distances."""
    return range(1, count + 1, STRIDE or max(1, count // (1 + count // 100)))


class Sweep(unittest.TestCase):
    def sweep(self, test, lasting=False, like=None):
        """Has a test done again and again, leaving out the functions that a like one called as often."""
        clean = Run(test)
        self.assertEqual(clean.code, 0, clean.output)
        self.assertLess(clean.open, HANDLE, "a handle stays open")
        faults = [f"any+{number}" for number in spread(clean.allocations)] if lasting else \
            [f"{name}:{number}" for name, count in clean.calls.items() if not like or count != like.calls[name]
             for number in spread(count)]
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            for run in pool.map(lambda fault: Run(test, fault), faults):
                with self.subTest(test=test, KEL_FAULT=run.fault):
                    self.assertEqual(run.code, 0, run.output)
                    self.assertTrue(run.failed)
                    left = run.open
                    for _ in range(3):  # what is lost is lost each time; the machine's own threads and interfaces vary
                        left = left if left <= clean.open + 1 else min(left, Run(test, run.fault).open)
                    self.assertTrue(0 <= left <= clean.open + 1, f"{left} of {clean.open}")
        print(f"{test}: {len(faults)} of {clean.allocations if lasting else sum(clean.calls.values())} calls")
        return clean

    def test_the_control_works_after_each_call_that_failed(self):
        known = self.sweep("LeavesAControlThatWorks")
        new = self.sweep("LeavesAControlThatWorksOnANewMachine", like=known)
        lasting = self.sweep("LeavesAControlThatWorksOnANewMachine", lasting=True)
        registration = self.sweep("LeavesARegistrationThatIsWholeOrNone")
        self.assertEqual(set.intersection(*(run.uncalled for run in (known, new, lasting, registration))), set(),
                         "a function that is not called cannot fail: is its name right?")


if __name__ == "__main__":
    unittest.main()
