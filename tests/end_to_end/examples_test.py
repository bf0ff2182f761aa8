"""The examples as a reader runs them, against the demo's requirements."""

import json
import unittest

from harness import ROOT, ControlTest, windows_path, wine

EXAMPLES = ROOT / "examples"
# What the page's script needs of a browser; each text node is a line of output.
BROWSER = """var window = {}, place = { appendChild: function (node) { return node; }, removeChild: function () {},
  removeAttribute: function () {}, setAttribute: function () {}, getElementsByTagName: function () { return [place]; } };
var document = {
  getElementById: function (id) { return id == "control" ? control : place; },
  createElement: function () { return place; },
  createTextNode: function (text) { WScript.Echo(text); }
}, navigator = { hardwareConcurrency: 1, deviceMemory: 8, platform: "here" };
control.ReferrerID = "demo";"""


class Examples(ControlTest):
    def setUp(self):
        super().setUp()
        self.service.requirements = EXAMPLES / "requirements"

    def run_example(self, name, *arguments):
        return wine(["cscript", "//nologo", windows_path(EXAMPLES / name), *arguments],
                    f"http://{self.address}")

    def test_the_demo_shows_a_row_for_each_requirement_and_leaves_its_files(self):
        _, output = self.run_example("check.js", "demo", windows_path(self.folder))
        rows = [line for line in output.splitlines() if line.endswith(("pass", "fail", "unknown"))]
        requirements = json.loads((EXAMPLES / "requirements/demo.json").read_text("utf-8"))["requirements"]
        self.assertEqual(len(rows), len(requirements) + 1)  # and the total
        self.assertRegex(output, r"\nMemory +at least 2 GB +\d+\.\d [GT]B +pass\n")
        self.assertRegex(output, r"\nNot portable +no +(No +pass|Yes +fail)\n")
        self.assertEqual(len({line.rindex("  ") for line in rows[:-1]}), 1, output)
        self.assertIn('id="71063"', (self.folder / "report.xml").read_text(encoding="ascii"))
        self.assertIn('<th scope="row">Memory</th>', (self.folder / "analysis.html").read_text(encoding="ascii"))

    def test_vbscript_tells_the_same_and_the_exit_code_tells_the_total(self):
        code, output = self.run_example("check.vbs")
        self.assertRegex(output, r"\nMemory: at least 2 GB, found [\d.]+ [GT]B: pass\n")
        self.assertEqual(code, 0 if output.endswith("TOTAL: pass\n") else 1)
        for example in ("check.vbs", "check.js"):
            code, output = self.run_example(example, "unknown")
            self.assertEqual((code, output), (2, "The analysis service answered: Referrer 'unknown' is not known.\n"))

    def test_the_page_shows_the_verdict_as_text(self):
        page = (EXAMPLES / "check.html").read_text("utf-8")
        self.assertIn('classid="clsid:3D7C6027-9644-4282-BC8F-AC0BABB38FDB"', page)
        script = (EXAMPLES / "check_page.js").read_text("utf-8")
        output = "\n".join(self.run_script(BROWSER + script + "window.onload(); control = null; window.onload();"))
        self.assertRegex(output, r"\nMemory\nat least 2 GB\n[\d.]+ [GT]B\n\n. Meets\n")
        self.assertRegex(output, r"\n(Yes: this|No: this|Not sure: not)")
        self.assertRegex(output, r"(?s)Processors\nat least 2\n1\n\n. Does not meet\n.*Probably not.*This is a rough answer")


if __name__ == "__main__":
    unittest.main()
