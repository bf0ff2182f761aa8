"""A run of the tests starts from the same state, wherever an earlier run was interrupted."""

import os
import re
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from harness import PATIENCE, PROGRAMS, ROOT

# Tests that plant devices, files and registry keys.
PLANTING = ("Software.ReadsRealKeysFilesAndVersions", "InfFiles.RefineTheIdOfAnIntelAdapter",
            "SetupLib.ListsDisplayAdaptersWithTheirFallbacks", "SetupLib.ReadsTheKindOfANetworkFromItsConnection")


class Interrupted(unittest.TestCase):
    """Has a folder in which the scripts' Wine prefix is made."""

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.prefix = self.folder / "build" / "wine"
        self.addCleanup(subprocess.run, ["wineserver", "-k"], env={**os.environ, "WINEPREFIX": str(self.prefix)})

    def start(self, script):
        """Starts a script with Wine's environment in a new session. Its output goes to a file, since the Wine server holds
        it open."""
        command = f"cd {self.folder}; set -eu; source {ROOT}/scripts/wine_env.sh; {script}"
        self.output = self.enterContext(open(self.folder / "output.txt", "w+", encoding="utf-8"))
        return subprocess.Popen(["bash", "-c", command], start_new_session=True, stdout=self.output, stderr=self.output)

    def run_script(self, script, code=0):
        code_seen = self.start(script).wait(PATIENCE)
        self.output.seek(0)
        self.assertEqual(code_seen, code, self.output.read())

    def await_file(self, path):
        end = time.monotonic() + PATIENCE
        while not path.exists():
            self.assertLess(time.monotonic(), end, path)
            time.sleep(0.01)

    def test_leftovers_do_not_matter(self):
        making = self.start("start_wine")
        self.await_file(self.prefix / ".update-timestamp")
        os.killpg(making.pid, signal.SIGKILL)
        making.wait(PATIENCE)
        self.run_script("start_wine; kill -KILL $$", -signal.SIGKILL)
        left = self.start("wine reg add 'HKCU\\Left' /f; wine cmd /c 'echo x> running & ping -n 3000 127.0.0.1'")
        self.await_file(self.folder / "running")
        tests = f"wine {PROGRAMS / 'kel_tests.exe'} --gtest_filter="
        for name in PLANTING:
            with self.subTest(name):
                self.run_script(f"KEL_INTERRUPT=1 {tests}{name}", 130)
                self.run_script(f"{tests}{name}")
        self.assertIsNone(left.poll())
        self.run_script("remove_prefix; start_wine; ! wine reg query 'HKCU\\Left'")
        self.assertNotEqual(left.wait(PATIENCE), 0)

    @unittest.skipIf(subprocess.run(["setarch", "-R", "true"], stderr=subprocess.DEVNULL).returncode, "setarch is not permitted")
    def test_the_heap_keeps_clear_of_the_page_that_wine_needs(self):
        program = self.start("start_wine; touch started; exec wine ping -n 3000 127.0.0.1")
        self.await_file(self.folder / "started")
        end, heap = time.monotonic() + PATIENCE, None
        while not heap:
            self.assertLess(time.monotonic(), end)
            heap = re.search(r"(?s)/wine64\n.*?\n(\w+)-[^\n]*\[heap\]", Path(f"/proc/{program.pid}/maps").read_text())
        program.kill()
        program.wait(PATIENCE)
        self.assertLess(int(heap[1], 16), 0x7D100000)


if __name__ == "__main__":
    unittest.main()
