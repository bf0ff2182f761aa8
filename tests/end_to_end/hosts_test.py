"""The examples in their hosts, as far as those are here; the page in a real browser, with a control and without."""

import os
import py_compile
import re
import shutil
import subprocess
import unittest

from harness import DLL, ROOT, ControlTest, wine

EXAMPLES = ROOT / "examples"
BROWSER = ("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--hide-scrollbars",
           "--disable-background-networking", "--disable-component-update", "--disable-sync", "--virtual-time-budget=5000")
VERDICT = ('<analysis result="fail" item="i" schema="1"><title>T</title><requirement result="pass"><label>Memory</label>'
           '<needed>at least 2 GB</needed><found>7.8 GB</found></requirement><requirement result="fail"><label>Not portable'
           '</label><needed>no</needed><found>Yes</found><advice>Use &lt;b&gt;another&lt;/b&gt; machine.</advice></requirement>'
           '<requirement result="unknown"><label>Bandwidth</label><needed>at least 1 Mbps</needed><found></found>'
           '</requirement></analysis>')


class Hosts(ControlTest):
    def setUp(self):
        super().setUp()
        self.service.requirements = EXAMPLES / "requirements"

    def check(self, output):
        self.assertRegex(output, r"(?i)verdict: (pass|fail|unknown)\b[^\d]*memory: [\d.]+ [GT]B")

    def test_those_that_run_here_show_the_verdict_and_a_fact(self):
        code, output = wine([str(DLL.parent / "tests" / "check_example.exe")], f"http://{self.address}")
        self.check(output)
        self.assertIn(code, (0, 1))
        # Wine's own CreateObject makes no object that wants a site.
        module = (EXAMPLES / "check.bas").read_text("ascii").replace("CreateObject(", "WScript.CreateObject(")
        self.check(self.run_script(module + '\nWScript.Echo CheckMachine("demo")', "vbs")[0])
        page = (EXAMPLES / "check.hta").read_text("utf-8")
        shim = """var window = {}, shown = ""; var document = { createTextNode: function (text) { return text; },
            getElementById: function () { return { appendChild: function (text) { shown += text + " "; } }; } };"""
        script = re.search("<script>(.*)</script>", page, re.DOTALL)[1]
        self.check(self.run_script(shim + script + "window.onload(); WScript.Echo(shown);")[0])

    def test_the_others_are_whole_as_far_as_that_can_be_told(self):
        py_compile.compile(str(EXAMPLES / "check.py"), cfile=str(self.folder / "x.pyc"), doraise=True)
        subprocess.run(["mcs", "-platform:x64", f"-out:{self.folder / 'Check.exe'}", str(EXAMPLES / "Check.cs")], check=True)


class Page(unittest.TestCase):
    """Pictures are left in build/page/ to be looked at."""

    def show(self, name, control, width):
        """The page's rows and total as the browser shows them."""
        folder = ROOT / "build" / "page"
        folder.mkdir(parents=True, exist_ok=True)
        for file in ("check.css", "check_page.js"):
            shutil.copyfile(EXAMPLES / file, folder / file)
        page = (EXAMPLES / "check.html").read_text("utf-8")
        recorded = f"<script>document.getElementById('control').Analysis = function () {{ return '{control}'; }};</script>"
        (folder / f"{name}.html").write_text(page.replace("</object>", "</object>" + recorded) if control else page, "utf-8")
        command = [*BROWSER, f"--user-data-dir={folder / 'profile'}", f"--window-size={width},900"]
        address = f"file://{folder / name}.html"
        subprocess.run([*command, f"--screenshot={folder / name}.png", address], check=True, timeout=120,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        tree = subprocess.run([*command, "--dump-dom", address], check=True, timeout=120, capture_output=True, text=True).stdout
        body = re.search("<tbody>(.*?)</tbody>", tree, re.DOTALL)[1]
        rows = [re.sub("<[^>]+>", "|", row).strip("|") for row in re.findall("<tr.*?</tr>", body, re.DOTALL)]
        return [re.sub(r"\|+", "|", row) for row in rows], re.search(r'id="total"[^>]*>([^<]*)<', tree)[1], tree

    def test_it_shows_the_controls_verdict_as_text(self):
        for name, width in (("verdict", 1000), ("verdict-phone", 400)):
            rows, total, tree = self.show(name, VERDICT, width)
            self.assertEqual(rows, ["Memory|at least 2 GB|7.8 GB|\u2713 Meets",
                                    "Not portable|no|Yes|\u2717 Does not meet|Use &lt;b&gt;another&lt;/b&gt; machine.",
                                    "Bandwidth|at least 1 Mbps|\u2013|? Not known"])
            self.assertEqual(total, "No: this machine does not meet all requirements.")
            self.assertIn('id="offer" hidden', tree)
            self.assertIn('role="status"', tree)
        self.assertEqual(self.show("no-answer", " ", 1000)[:2], ([], " "))

    def test_without_a_control_it_says_that_the_answer_is_rough_and_offers_the_package(self):
        rows, total, tree = self.show("rough", None, 1000)
        self.assertRegex(rows[0], rf"^Processors\|at least 2\|{os.cpu_count()}\|")
        self.assertEqual(len(rows), 4)
        self.assertRegex(total, "^(Probably|Perhaps)")
        self.assertIn("This is a rough answer", tree)
        self.assertNotIn('id="offer" hidden', tree)


if __name__ == "__main__":
    unittest.main()
