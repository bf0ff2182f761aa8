"""The detector under each Windows version that the system can be told to be."""

import shutil
import tempfile
import unittest
from pathlib import Path

from harness import DLL, windows_path, wine

# Version, build and product type as the system itself reports them for each setting; names by the naming rules.
# Wine 8.0 gives the product types of win7 and win2008r2 the wrong way round, and tells a program without a manifest
# that Windows 10 is 6.2, as Windows does.
EXPECTED = {
    "winxp64": ("Microsoft Windows XP Professional x64 Edition Service Pack 2 (build 3790)", "5.2.3790", "71276"),
    "win2k3": ("Microsoft Windows Server 2003, Standard x64 Edition Service Pack 2 (build 3790)", "5.2.3790", "71263"),
    "vista": ("Microsoft Windows Vista  Service Pack 2 (build 6002), 64-bit", "6.0.6002", "71251"),
    "win2008": ("Microsoft Windows Server 2008 Standard Edition Service Pack 2 (build 6002), 64-bit", "6.0.6002", "71465"),
    "win7": ("Microsoft Windows Server 2008 R2 Standard Edition Service Pack 1 (build 7601), 64-bit", "6.1.7601", "71466"),
    "win2008r2": ("Microsoft Windows 7  Service Pack 1 (build 7601), 64-bit", "6.1.7601", "71350"),
    "win8": ("Microsoft  (build 9200), 64-bit", "6.2.9200", None),
    "win10": ("Microsoft  (build 9200), 64-bit", "6.2.9200", None),
}
RELEASES = ("71262", "71263", "71276", "71251", "71350", "71465", "71466")


PROBE = DLL.parent / "tests" / "os_probe.exe"


def probe(program=PROBE):
    """What the detector stores in a fresh process, by id."""
    return dict(line.split("=", 1) for line in wine([windows_path(program)])[1].splitlines())


class OsVersions(unittest.TestCase):
    def test_names_and_flags_of_every_release(self):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for setting, (name, version, flag) in EXPECTED.items():
            with self.subTest(setting):
                program = shutil.copy(PROBE, folder / f"probe_{setting}.exe")
                key = rf"HKCU\Software\Wine\AppDefaults\{program.name}"
                wine(["reg", "add", key, "/v", "Version", "/d", setting, "/f"])
                self.addCleanup(wine, ["reg", "delete", key, "/f"])
                values = probe(program)
                self.assertEqual((values["71060"], values["71072"]), (name, version))
                self.assertEqual([release for release in RELEASES if values[release] == "Yes"], [flag] if flag else [])
                self.assertEqual((values["71264"], values["71361"]), ("Yes", "Yes"))

    def test_the_machine_keeps_its_identifier_where_there_is_a_key(self):
        key = r"HKCU\software\Keldane"
        self.assertNotEqual(probe()["71207"], probe()["71207"])
        wine(["reg", "add", key, "/f"])
        self.addCleanup(wine, ["reg", "delete", key, "/f"])
        kept = probe()["71207"]
        self.assertRegex(kept, "^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$")
        self.assertEqual(probe()["71207"], kept)
