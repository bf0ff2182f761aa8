"""Two builds of the same source, in two folders, give the same DLL. The second one takes the library of the probes and detectors
from the first, as compiling it takes minutes: of the same source, it can differ only by a path or a time of its compilation,
and the DLL has none. A release sets KEL_WHOLE_BUILD, and compiles everything twice."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from harness import DLL, ROOT

LIBRARY = "libkel.a"
ITS_OBJECTS = "CMakeFiles/kel.dir/"  # in each command that compiles for the library or archives it
# What the preprocessor makes of __DATE__, __TIMESTAMP__ and __TIME__.
COMPILED_AT = re.compile(rb"(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 0-3]\d |[0-2]\d:[0-5]\d:[0-6]\d")
TYPE_LIBRARY_TIME = b"Jan  1 00:00:00 2026"  # which is fixed


class Reproducible(unittest.TestCase):
    def test_another_folder_gives_the_same_bytes(self):
        source = Path(self.enterContext(tempfile.TemporaryDirectory())) / "a longer name of a folder"
        shutil.copytree(ROOT, source, ignore=shutil.ignore_patterns("build", ".git"))
        folder = source / "build" / "release"

        def run(*command, **options):
            return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout
        run("cmake", "--preset", "release", "-DBUILD_TESTING=OFF", cwd=source)
        if os.environ.get("KEL_WHOLE_BUILD"):
            run("cmake", "--build", folder, "--target", "Detection")
        else:
            shutil.copy(DLL.parent / LIBRARY, folder)
            for command in run("ninja", "-t", "commands", "Detection", cwd=folder).splitlines():
                if ITS_OBJECTS not in command:
                    run("bash", "-c", command, cwd=folder)
        self.assertTrue((folder / "Detection.dll").read_bytes() == DLL.read_bytes(), "the DLLs differ")

    def test_it_holds_no_path_and_no_time_of_its_build(self):
        # Of texts in UTF-16, the same characters are left.
        content = DLL.read_bytes().replace(b"\0", b"").replace(TYPE_LIBRARY_TIME, b"")
        self.assertNotIn(str(ROOT).encode(), content)
        self.assertIsNone(COMPILED_AT.search(content))
