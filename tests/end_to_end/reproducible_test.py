"""Two builds of the same source, in two folders, give the same DLL."""

import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from harness import DLL, ROOT


class Reproducible(unittest.TestCase):
    def test_another_folder_gives_the_same_bytes(self):
        source = Path(self.enterContext(tempfile.TemporaryDirectory())) / "a longer name of a folder"
        shutil.copytree(ROOT, source, ignore=shutil.ignore_patterns("build", ".git"))
        for command in ("cmake --preset release -DBUILD_TESTING=OFF", "cmake --build --preset release --target Detection"):
            subprocess.run(command.split(), cwd=source, check=True, stdout=subprocess.DEVNULL)
        self.assertTrue((source / "build/release/Detection.dll").read_bytes() == DLL.read_bytes(), "the DLLs differ")
