"""The graphics facts under a virtual display, as an X server and its software adapter give them."""

import os
import shutil
import subprocess
import unittest
from unittest import mock

from harness import DLL, ControlTest, wine

IDS = [72000, 72001, 72002, 72004, 72008, 72200, 72202, 72203, 72204, 72400, 72401, 72402, 72403, 72405, 72406,
       73100, 73101, 73105]


@unittest.skipUnless(shutil.which("Xvfb"), "there is no Xvfb")
class Display(ControlTest):
    @classmethod
    def setUpClass(cls):
        # A Wine server keeps the display that it saw first, so this one is a server of its own.
        server = cls.enterClassContext(subprocess.Popen(
            ["Xvfb", "-displayfd", "1", "-screen", "0", "1920x1080x24", "-nolisten", "tcp"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL))
        cls.addClassCleanup(server.terminate)
        display = f":{server.stdout.readline().decode().strip()}"
        prefix = str(DLL.parents[1] / "wine_display")
        cls.enterClassContext(mock.patch.dict(os.environ, {"DISPLAY": display, "WINEPREFIX": prefix}))
        cls.addClassCleanup(subprocess.run, ["wineserver", "-k"])
        os.makedirs(prefix, exist_ok=True)
        wine(["wineboot"])
        super().setUpClass()

    def test_the_adapter_and_the_screen_are_told_as_they_are(self):
        self.require("demo", *((number, "", "any") for number in IDS))
        output = self.run_script('control.ReferrerID = "demo";\n' + "".join(
            f"WScript.Echo({number} + '=' + control.Value('{number}'));\n" for number in IDS))
        told = {int(number): text for number, text in (line.split("=", 1) for line in output)}
        screen = {72402: "1920x1080", 72405: "1920x1080", 73105: "1920x1080", 72403: "32", 72406: "No"}
        present = {72000: "Yes", 72001: "1", 72200: "Yes", 72202: "12.0", 72400: "Yes", 72401: "1", 73100: "Yes",
                   73101: "1"}
        self.assertEqual(told | screen | present, told)
        for number, form in ((72002, r"\w.*"), (72004, r"[\d.]+ [GMT]B"), (72008, r"1\d\.\d"), (72204, r"[456]\.\d")):
            self.assertRegex(told[number], f"^{form}$")
        self.assertEqual(told[72203], told[72008])


if __name__ == "__main__":
    unittest.main()
