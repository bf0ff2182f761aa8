"""Two builds of one source, in two folders, give the same DLL."""

import hashlib
import subprocess
import tempfile
import unittest
from pathlib import Path

from harness import DLL, ROOT


class Reproducible(unittest.TestCase):
    def test_another_folder_gives_the_same_bytes(self):
        with tempfile.TemporaryDirectory() as folder:
            source = Path(folder) / "a longer name of a folder"
            names = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
                                   check=True, capture_output=True).stdout
            source.mkdir()
            subprocess.run(["xargs", "-0", "cp", "--parents", "-t", str(source)], cwd=ROOT, input=names, check=True)
            subprocess.run(["cmake", "--preset", "release", "-DBUILD_TESTING=OFF"], cwd=source, check=True,
                           stdout=subprocess.DEVNULL)
            subprocess.run(["cmake", "--build", "--preset", "release", "--target", "Detection"], cwd=source, check=True,
                           stdout=subprocess.DEVNULL)
            again = source / "build" / "release" / "Detection.dll"
            self.assertEqual(hashlib.sha256(again.read_bytes()).hexdigest(), hashlib.sha256(DLL.read_bytes()).hexdigest())


if __name__ == "__main__":
    unittest.main()
