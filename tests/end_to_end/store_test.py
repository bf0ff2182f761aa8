"""The store by itself: its own test program, in either database."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

from databases import Database
from deployed import SERVER


class Store(unittest.TestCase):
    def test_every_operation(self):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        environment = os.environ | {"KEL_STORE": str(Database(folder).setting)}
        ran = subprocess.run([SERVER.parent / "server_tests"], env=environment, timeout=300, capture_output=True, text=True)
        self.assertEqual(ran.returncode, 0, ran.stdout + ran.stderr)


if __name__ == "__main__":
    unittest.main()
