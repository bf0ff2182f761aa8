"""The examples in the hosts that are available here, against the demo's requirements."""

import base64
import json
import os
import py_compile
import re
import shutil
import subprocess
import unittest
from pathlib import Path

from harness import CLASS_ID, CSCRIPT, EXAMPLES, PROGRAMS, ROOT, ControlTest, windows_path, wine
from webdriver import Browser

# The objects of a browser that a page's script needs; each text node is a line of output.
BROWSER = (Path(__file__).parent / "browser.js").read_text("ascii")
WINDOWS, LINUX, IPHONE, MAC, ANDROID = (  # a browser's agent and platform on each system
    (f"Mozilla/5.0 ({system}) AppleWebKit/537.36 (KHTML, like Gecko) Safari/537.36", platform) for system, platform in (
        ("Windows NT 10.0; Win64; x64", "Win32"), ("X11; Linux x86_64", "Linux x86_64"),
        ("iPhone; CPU iPhone OS 17_0 like Mac OS X", "iPhone"), ("Macintosh; Intel Mac OS X 10_15_7", "MacIntel"),
        ("Linux; Android 10; K", "Linux armv8l")))
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
        page = 'control.ReferrerID = "demo";' + (EXAMPLES / "check_page.js").read_text("utf-8")
        verdict_line = r"(?i)verdict: (pass|fail|unknown)\b[^\d]*memory: [\d.]+ [GT]B"
        shown = r"(?s)\nMemory\nat least 2 GB\n[\d.]+ [GT]B(, sold as \d+ GB)?\n\n. Meets\n.*\n(Yes: this|No: this|Not sure: not)"
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
        for text in (f'classid="clsid:{CLASS_ID[1:-1]}"', '<param name="REFERRER_ID" value="demo">'):
            self.assertIn(text, (EXAMPLES / "check.html").read_text("utf-8"))
        py_compile.compile(str(EXAMPLES / "check.py"), cfile=str(self.folder / "x.pyc"), doraise=True)
        subprocess.run(["mcs", "-platform:x64", f"-out:{self.folder / 'Check.exe'}", EXAMPLES / "Check.cs"], check=True)


class Page(unittest.TestCase):
    """The page in a real browser, with a control's answer and without. Leaves pictures for people to check."""

    def setUp(self):
        self.folder = ROOT / "build" / "page"
        shutil.copytree(EXAMPLES, self.folder, dirs_exist_ok=True)
        self.browser = Browser(self)

    def show(self, name, answer=None, system=WINDOWS, state="answered"):
        """The page's rows, and its total, note and offer, None where hidden; with a control that answers, or without one."""
        page = (EXAMPLES / "check.html").read_text("utf-8")
        if answer is not None:
            control = f"""control.Analysis = function () {{ return {json.dumps(answer)}; }};
                control.Value = function (id) {{ return id == "73390" ? {json.dumps(state)} : ""; }};"""
            page = page.replace("</object>", f"</object><script>{control}</script>")
        (self.folder / f"{name}.html").write_text(page, "utf-8")
        self.browser.command("Emulation.setUserAgentOverride", dict(zip(("userAgent", "platform"), system)))
        self.browser.go(f"file://{self.folder / name}.html")
        picture = self.browser.ask("GET", "/screenshot", None)
        (self.folder / f"{name}.png").write_bytes(base64.b64decode(picture))
        return self.browser.run("""
            const rows = document.querySelectorAll("tbody tr"), texts = document.querySelectorAll("#total, #note, #offer");
            return [Array.from(rows, (row) => Array.from(row.cells, (cell) => cell.innerText)),
                    ...Array.from(texts, (text) => text.offsetParent && text.innerText)];""")

    def test_it_shows_the_controls_verdict_as_text(self):
        rows, total, note, offer = self.show("verdict", VERDICT)
        self.assertEqual(rows, [["Memory", "at least 2 GB", "7.8 GB", "\u2713 Meets"],
                                ["Not portable", "no", "Yes", "\u2717 Does not meet\nUse <b>another</b> machine."],
                                ["Bandwidth", "at least 1 Mbps", "\u2013", "? Not known"],
                                ["Graphics\nRecommended", "at least 6 GB, or at least version 12.0", "4.0 GB; 11.1",
                                 "\u2717 Does not meet"]])
        self.assertEqual((total, note, offer), ("No: this machine does not meet all requirements.", None, None))
        self.assertIn('id="total" class="total fail" role="status"', self.browser.ask("GET", "/source"))

    def test_an_answer_that_is_not_a_verdict_is_not_shown(self):
        for name, answer in (("none", ""), ("refusal", "Referrer 'unknown' is not known."), ("truncated", VERDICT[:-1]),
                             ("other result", VERDICT.replace('"fail"', '"maybe"', 1)),
                             ("error page", f"<html><h1>502 Bad Gateway</h1>{VERDICT}</html>")):
            with self.subTest(name):
                self.assertEqual(self.show("no-verdict", answer),
                                 [[], "The analysis service gave no verdict.", "Please try again later.", None])

    def test_it_says_why_there_is_no_verdict(self):
        for state, total, note in (
                ("not reached: 12007", "The analysis service was not reached.", "Error 12007."),
                ("unknown product", "The analysis service does not know this product.", "inform the owner"),
                ("another host answered", "Another host answered in the place of the analysis service.", "log in"),
                ("cut", "The answer of the analysis service was cut off.", "Please try again.")):
            with self.subTest(state):
                rows, *shown = self.show("trouble", "<html>", state=state)
                self.assertEqual((rows, shown[0]), ([], total))
                self.assertIn(note, shown[1])

    def test_without_a_control_on_windows_it_says_that_the_answer_is_rough_and_offers_the_package(self):
        rows, total, note, offer = self.show("rough")
        self.assertEqual(rows[0][:3], ["Processors", "at least 2", str(os.cpu_count())])
        self.assertEqual(len(rows), 3)
        self.assertRegex(total, "^(Probably|Perhaps)")
        self.assertIn("This is a rough answer", note)
        self.assertIn("Get the exact answer", offer)

    def test_on_another_system_it_says_that_the_product_needs_windows(self):
        for name, system in (("linux", LINUX), ("iphone", IPHONE), ("mac", MAC), ("android", ANDROID)):
            with self.subTest(name):
                self.assertEqual(self.show(name, system=system), [
                    [["System", "Windows", system[1], "\u2717 Does not meet"]], "No: this product needs Windows.",
                    "To check a computer with Windows, open this page on it.", None])
