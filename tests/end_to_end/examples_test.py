"""The examples in their hosts, as far as those are here, against the demo's requirements."""

import json
import os
import py_compile
import re
import shutil
import subprocess
import unittest
from pathlib import Path

from harness import CLASS_ID, CSCRIPT, EXAMPLES, PROGRAMS, ROOT, ControlTest, windows_path, wine

# What a page's script needs of a browser; each text node is a line of output.
BROWSER = (Path(__file__).parent / "browser.js").read_text("ascii")
CHROMIUM = ("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--hide-scrollbars",
            "--disable-background-networking", "--disable-component-update", "--disable-sync", "--virtual-time-budget=5000")
VERDICT = ('<analysis result="fail" item="i" schema="1"><title>T</title><requirement result="pass"><label>Memory</label>'
           '<needed>at least 2 GB</needed><found>7.8 GB</found></requirement><requirement result="fail"><label>Not portable'
           '</label><needed>no</needed><found>Yes</found><advice>Use &lt;b&gt;another&lt;/b&gt; machine.</advice></requirement>'
           '<requirement result="unknown"><label>Bandwidth</label><needed>at least 1 Mbps</needed><found></found>'
           '</requirement></analysis>')


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
        self.assertEqual(code, 0 if output.endswith("TOTAL: pass\n") else 1)
        for example in ("check.vbs", "check.js"):
            self.assertEqual(self.run_example(example, "unknown")[:2],
                             (2, "The analysis service answered: Referrer 'unknown' is not known.\n"))

    def test_programs_and_macros_show_the_verdict_and_a_fact(self):
        # Wine's own CreateObject makes no object that wants a site.
        module = (EXAMPLES / "check.bas").read_text("ascii").replace("CreateObject(", "WScript.CreateObject(")
        application = re.search("<script>(.*)</script>", (EXAMPLES / "check.hta").read_text("utf-8"), re.DOTALL)[1]
        for output in (wine(PROGRAMS / "check_example.exe", proxy=f"http://{self.address}").output,
                       *self.run_script(module + '\nWScript.Echo CheckMachine("demo")', "vbs"),
                       "\n".join(self.run_script(BROWSER + application + "window.onload();"))):
            self.assertRegex(output, r"(?i)verdict: (pass|fail|unknown)\b[^\d]*memory: [\d.]+ [GT]B")
        py_compile.compile(str(EXAMPLES / "check.py"), cfile=str(self.folder / "x.pyc"), doraise=True)
        subprocess.run(["mcs", "-platform:x64", f"-out:{self.folder / 'Check.exe'}", EXAMPLES / "Check.cs"], check=True)

    def test_the_page_shows_the_controls_verdict(self):
        page = (EXAMPLES / "check.html").read_text("utf-8")
        self.assertIn(f'classid="clsid:{CLASS_ID[1:-1]}"', page)
        self.assertIn('<param name="REFERRER_ID" value="demo">', page)
        script = (EXAMPLES / "check_page.js").read_text("utf-8")
        output = "\n".join(self.run_script(BROWSER + 'control.ReferrerID = "demo";' + script + "window.onload();"))
        self.assertRegex(output, r"\nMemory\nat least 2 GB\n[\d.]+ [GT]B\n\n. Meets\n")
        self.assertRegex(output, r"\n(Yes: this|No: this|Not sure: not)")


class Page(unittest.TestCase):
    """The page in a real browser, with a control's verdict and without. Pictures are left to be looked at."""

    def show(self, name, verdict, width=1000):
        """The page's rows and total as the browser shows them, and all of it."""
        folder = ROOT / "build" / "page"
        folder.mkdir(parents=True, exist_ok=True)
        for file in ("check.css", "check_page.js"):
            shutil.copyfile(EXAMPLES / file, folder / file)
        page = (EXAMPLES / "check.html").read_text("utf-8")
        control = f"<script>document.getElementById('control').Analysis = function () {{ return '{verdict}'; }};</script>"
        (folder / f"{name}.html").write_text(page.replace("</object>", "</object>" + control) if verdict else page, "utf-8")
        tree = subprocess.run(
            [*CHROMIUM, f"--user-data-dir={folder / 'profile'}", f"--window-size={width},900", "--dump-dom",
             f"--screenshot={folder / name}.png", f"file://{folder / name}.html"],
            check=True, timeout=120, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
        body = re.search("<tbody>(.*?)</tbody>", tree, re.DOTALL)[1]
        rows = [re.sub("(<[^>]+>)+", "|", row).strip("|") for row in re.findall("<tr.*?</tr>", body, re.DOTALL)]
        return rows, re.search(r'id="total"[^>]*>([^<]*)<', tree)[1], tree

    def test_it_shows_the_controls_verdict_as_text(self):
        for name, width in (("verdict", 1000), ("verdict-phone", 400)):
            rows, total, tree = self.show(name, VERDICT, width)
            self.assertEqual(rows, ["Memory|at least 2 GB|7.8 GB|\u2713 Meets",
                                    "Not portable|no|Yes|\u2717 Does not meet|Use &lt;b&gt;another&lt;/b&gt; machine.",
                                    "Bandwidth|at least 1 Mbps|\u2013|? Not known"])
            self.assertEqual(total, "No: this machine does not meet all requirements.")
            self.assertIn('id="offer" hidden', tree)
            self.assertIn('role="status"', tree)
        self.assertEqual(self.show("no-answer", " ")[:2], ([], " "))

    def test_without_a_control_it_says_that_the_answer_is_rough_and_offers_the_package(self):
        rows, total, tree = self.show("rough", None)
        self.assertRegex(rows[0], rf"^Processors\|at least 2\|{os.cpu_count()}\|")
        self.assertEqual(len(rows), 4)
        self.assertRegex(total, "^(Probably|Perhaps)")
        self.assertIn("This is a rough answer", tree)
        self.assertNotIn('id="offer" hidden', tree)
