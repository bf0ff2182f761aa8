"""The graphics facts under a virtual display, as an X server and its software adapter give them."""

import shutil
import unittest

from harness import ControlTest, make_prefix, show_display

EXPECTED = {72000: "Yes", 72001: "1", 72002: r"\w.*", 72004: r"[\d.]+ [GMT]B", 72008: r"1\d\.\d", 72200: "Yes",
            72202: r"12\.0", 72203: r"1\d\.\d", 72204: r"[456]\.\d", 72400: "Yes", 72401: "1", 72402: "1920x1080",
            72403: "32", 72405: "1920x1080", 72406: "No", 73100: "Yes", 73101: "1", 73105: "1920x1080"}


@unittest.skipUnless(shutil.which("Xvfb"), "there is no Xvfb")
class Display(ControlTest):
    @classmethod
    def setUpClass(cls):
        show_display(cls)
        make_prefix(cls)
        super().setUpClass()

    def test_the_adapter_and_the_screen_are_reported_correctly(self):
        self.require("demo", *((number, "", "any") for number in EXPECTED))
        texts = self.run_script('control.ReferrerID = "demo";' + "".join(
            f"WScript.Echo(control.Value('{number}'));" for number in EXPECTED))
        for (number, form), text in zip(EXPECTED.items(), texts, strict=True):
            self.assertRegex(text, f"^{form}$", number)
