"""The examples in their hosts, as far as those are here, against the demo's requirements."""

import json
import os
import py_compile
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from harness import CLASS_ID, CSCRIPT, EXAMPLES, PATIENCE, PROGRAMS, ROOT, ControlTest, windows_path, wine

# What a page's script needs of a browser; each text node is a line of output.
BROWSER = (Path(__file__).parent / "browser.js").read_text("ascii")
CHROMIUM = ("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--hide-scrollbars",
            "--disable-background-networking", "--disable-component-update", "--disable-sync", "--virtual-time-budget=5000")
VERDICT = re.sub("\n *", "", (Path(__file__).parent / "verdict.xml").read_text("ascii"))


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
        self.assertRegex(output, r"\nMemory +at least 2 GB +\d+\.\d [GT]B +pass\n")
        self.assertRegex(output, r"\nNot portable +no +(No +pass|Yes +fail)\n")
        self.assertIn('id="71063"', (self.folder / "report.xml").read_text(encoding="ascii"))
        self.assertIn('<th scope="row">Memory</th>', (self.folder / "analysis.html").read_text(encoding="ascii"))

    def test_vbscript_tells_the_same_and_the_exit_code_tells_the_total(self):
        code, output, *_ = self.run_example("check.vbs")
        self.assertRegex(output, r"\nMemory: at least 2 GB, found [\d.]+ [GT]B: pass\n")
        self.assertRegex(output, "\nTOTAL: (pass|fail|unknown)\n$")
        self.assertEqual(code, 0 if output.endswith("pass\n") else 1)
        for example in ("check.vbs", "check.js"):
            self.assertEqual(self.run_example(example, "unknown")[:2],
                             (2, "The analysis service answered: Referrer 'unknown' is not known.\n"))

    def test_programs_macros_and_pages_show_the_verdict_and_a_fact(self):
        # Wine's own CreateObject makes no object that wants a site.
        module = (EXAMPLES / "check.bas").read_text("ascii").replace("CreateObject(", "WScript.CreateObject(")
        application = re.search("<script>(.*)</script>", (EXAMPLES / "check.hta").read_text("utf-8"), re.DOTALL)[1]
        page = 'control.ReferrerID = "demo";' + (EXAMPLES / "check_page.js").read_text("utf-8")
        told = r"(?i)verdict: (pass|fail|unknown)\b[^\d]*memory: [\d.]+ [GT]B"
        shown = r"(?s)\nMemory\nat least 2 GB\n[\d.]+ [GT]B\n\n. Meets\n.*\n(Yes: this|No: this|Not sure: not)"
        for output, pattern in (
                (wine(PROGRAMS / "check_example.exe", proxy=f"http://{self.address}").output.splitlines(), told),
                (self.run_script(module + '\nWScript.Echo CheckMachine("demo")', "vbs"), told),
                (self.run_script(BROWSER + application + "window.onload();"), told),
                (self.run_script(BROWSER + page + "window.onload();"), shown)):
            self.assertRegex("\n".join(output), pattern)
        for text in (f'classid="clsid:{CLASS_ID[1:-1]}"', '<param name="REFERRER_ID" value="demo">'):
            self.assertIn(text, (EXAMPLES / "check.html").read_text("utf-8"))
        py_compile.compile(str(EXAMPLES / "check.py"), cfile=str(self.folder / "x.pyc"), doraise=True)
        subprocess.run(["mcs", "-platform:x64", f"-out:{self.folder / 'Check.exe'}", EXAMPLES / "Check.cs"], check=True)


class Page(unittest.TestCase):
    """The page in a real browser, with a control's verdict and without. Pictures are left to be looked at."""

    def show(self, name, verdict):
        """The page's rows and total as the browser shows them, and all of it."""
        folder, profile = ROOT / "build" / "page", self.enterContext(tempfile.TemporaryDirectory())
        shutil.copytree(EXAMPLES, folder, dirs_exist_ok=True)
        page = (EXAMPLES / "check.html").read_text("utf-8")
        control = f"<script>document.getElementById('control').Analysis = function () {{ return '{verdict}'; }};</script>"
        (folder / f"{name}.html").write_text(page.replace("</object>", "</object>" + control) if verdict else page, "utf-8")
        tree = subprocess.run([*CHROMIUM, f"--user-data-dir={profile}", "--window-size=1000,900", "--dump-dom",
                               f"--screenshot={folder / name}.png", f"file://{folder / name}.html"], check=True, timeout=PATIENCE,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
        body = re.search("<tbody>(.*?)</tbody>", tree, re.DOTALL)[1]
        rows = [re.sub("(<[^>]+>)+", "|", row).strip("|") for row in re.findall("<tr.*?</tr>", body, re.DOTALL)]
        return rows, re.search(r'id="total"[^>]*>([^<]*)<', tree)[1], tree

    def test_it_shows_the_controls_verdict_as_text(self):
        rows, total, tree = self.show("verdict", VERDICT)
        self.assertEqual(rows, ["Memory|at least 2 GB|7.8 GB|\u2713 Meets",
                                "Not portable|no|Yes|\u2717 Does not meet|Use &lt;b&gt;another&lt;/b&gt; machine.",
                                "Bandwidth|at least 1 Mbps|\u2013|? Not known",
                                "Graphics |Recommended|at least 6 GB, or at least version 12.0|4.0 GB; 11.1|"
                                "\u2717 Does not meet"])
        self.assertEqual(total, "No: this machine does not meet all requirements.")
        for text in ('id="offer" hidden', 'role="status"'):
            self.assertIn(text, tree)
        self.assertEqual(self.show("no-answer", " ")[:2], ([], " "))

    def test_without_a_control_it_says_that_the_answer_is_rough_and_offers_the_package(self):
        rows, total, tree = self.show("rough", None)
        self.assertRegex(rows[0], rf"^Processors\|at least 2\|{os.cpu_count()}\|")
        self.assertEqual(len(rows), 4)
        self.assertRegex(total, "^(Probably|Perhaps)")
        self.assertIn("This is a rough answer", tree)
        self.assertNotIn('id="offer" hidden', tree)
