"""The examples in the hosts that are available here, against the demo's requirements."""

import json
import py_compile
import re
import subprocess
from pathlib import Path

from harness import CLASS_ID, CSCRIPT, EXAMPLES, PROGRAMS, ControlTest, windows_path, wine

# The objects of a browser that a page's script needs; each text node is a line of output.
BROWSER = (Path(__file__).parent / "browser.js").read_text("ascii")


class Examples(ControlTest):
    def setUp(self):
        super().setUp()
        self.service.requirements = EXAMPLES / "requirements"

    def run_example(self, name, *arguments):
        return wine(*CSCRIPT, windows_path(EXAMPLES / name), *arguments, proxy=f"http://{self.address}")

    def test_the_demo_shows_a_row_for_each_requirement_and_leaves_its_files(self):
        output = self.run_example("check.js", "demo", windows_path(self.folder)).output
        rows = [line for line in output.splitlines() if line.endswith(("pass", "fail", "unknown"))]
        requirements = json.loads((EXAMPLES / "requirements/demo.json").read_text("utf-8"))["requirements"]
        self.assertEqual(len(rows), len(requirements) + 1)  # and the total
        self.assertEqual(len({line.rindex("  ") for line in rows[:-1]}), 1, output)
        self.assertRegex(output, r"\nMemory +at least 2 GB +\d+\.\d [GT]B(, sold as \d+ GB)? +pass\n")
        self.assertRegex(output, r"\nNot portable +no +(No +pass|Yes +fail)\n")
        self.assertIn('id="71063"', (self.folder / "report.xml").read_text(encoding="ascii"))
        self.assertIn('<th scope="row">Memory</th>', (self.folder / "analysis.html").read_text(encoding="ascii"))

    def test_vbscript_shows_the_same_and_its_exit_code_the_total(self):
        code, output, *_ = self.run_example("check.vbs")
        self.assertRegex(output, r"\nMemory: at least 2 GB, found [\d.]+ [GT]B(, sold as \d+ GB)?: pass\n")
        self.assertRegex(output, "\nTOTAL: (pass|fail|unknown)\n$")
        self.assertEqual(code, 0 if output.endswith("pass\n") else 1)
        self.service.faults["/service/Analysis/unknown"] = "404"
        for example in ("check.vbs", "check.js"):
            self.assertEqual(self.run_example(example, "unknown")[:2],
                             (2, "No verdict: answered\nThe analysis service answered: nothing here\n"))

    def test_programs_macros_and_pages_show_the_verdict_and_a_fact(self):
        # Wine's own CreateObject refuses objects that take a site.
        module = (EXAMPLES / "check.bas").read_text("ascii").replace("CreateObject(", "WScript.CreateObject(")
        application = re.search("<script>(.*)</script>", (EXAMPLES / "check.hta").read_text("utf-8"), re.DOTALL)[1]
        page = (EXAMPLES / "check_page.js").read_text("utf-8")
        verdict_line = r"(?i)verdict: (pass|fail|unknown)\b[^\d]*memory: [\d.]+ [GT]B"
        shown = r"(?s)\nMemory\nat least 2 GB\n[\d.]+ [GT]B(, sold as \d+ GB)?\n\n. Meets\n.*\n(Yes: this|No: this|Not sure)"
        for output, pattern in (
                (wine(PROGRAMS / "check_example.exe", proxy=f"http://{self.address}").output.splitlines(), verdict_line),
                (self.run_script(module + '\nWScript.Echo CheckMachine("demo")', "vbs"), verdict_line),
                (self.run_script(BROWSER + application + "window.onload();"), verdict_line),
                (self.run_script(BROWSER + page + "window.onload();"), shown)):
            self.assertRegex("\n".join(output), pattern)
        self.service.faults["/service/Analysis/demo"] = "404"
        for name, output in (
                ("check.cpp", wine(PROGRAMS / "check_example.exe", proxy=f"http://{self.address}").output.splitlines()),
                ("check.bas", self.run_script(module + '\nWScript.Echo CheckMachine("demo")', "vbs")),
                ("check.hta", self.run_script(BROWSER + application + "window.onload();"))):
            self.assertRegex("\n".join(output), "No verdict: answered", name)
        self.assertIn(f'classid="clsid:{CLASS_ID[1:-1]}"', (EXAMPLES / "check.html").read_text("utf-8"))
        py_compile.compile(str(EXAMPLES / "check.py"), cfile=str(self.folder / "x.pyc"), doraise=True)
        subprocess.run(["mcs", "-platform:x64", f"-out:{self.folder / 'Check.exe'}", EXAMPLES / "Check.cs"], check=True)
