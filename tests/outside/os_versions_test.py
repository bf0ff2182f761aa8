"""The detector under each Windows version that the system can be told to be."""

import shutil
import unittest

from harness import DLL, ServiceTest, windows_path, wine

# Version, build and product type as the system itself reports them for each setting; names by the naming rules.
# Wine 8.0 gives the product types of win7 and win2008r2 the wrong way round, and tells a program without a manifest
# that Windows 10 is 6.2, as Windows does.
EXPECTED = {
    "winxp64": ("Microsoft Windows XP Professional x64 Edition Service Pack 2 (build 3790)", "5.2.3790", "71276"),
    "win2k3": ("Microsoft Windows Server 2003, ", "5.2.3790", "71263"),
    "vista": ("Microsoft Windows Vista ", "6.0.6002", "71251"),
    "win2008": ("Microsoft Windows Server 2008 ", "6.0.6002", "71465"),
    "win7": ("Microsoft Windows Server 2008 R2 Standard Edition", "6.1.7601", "71466"),
    "win2008r2": ("Microsoft Windows 7  Service Pack 1 (build 7601), 64-bit", "6.1.7601", "71350"),
    "win8": ("Microsoft ", "6.2.9200", None),
    "win10": ("Microsoft  (build 9200), 64-bit", "6.2.9200", None),
}
RELEASES = ("71262", "71263", "71276", "71251", "71350", "71465", "71466")


class OsVersions(ServiceTest):
    def test_names_and_flags_of_every_release(self):
        for setting, (name, version, flag) in EXPECTED.items():
            with self.subTest(setting):
                program = shutil.copy(DLL.parent / "tests" / "os_probe.exe", self.folder / f"probe_{setting}.exe")
                key = rf"HKCU\Software\Wine\AppDefaults\{program.name}"
                wine(["reg", "add", key, "/v", "Version", "/d", setting, "/f"])
                self.addCleanup(wine, ["reg", "delete", key, "/f"])
                values = dict(line.split("=", 1) for line in wine([windows_path(program)])[1].splitlines())
                self.assertTrue(values["71060"].startswith(name), values["71060"])
                self.assertTrue(values["71072"].startswith(version), values["71072"])
                self.assertEqual([release for release in RELEASES if values[release] == "Yes"], [flag] if flag else [])
                self.assertEqual((values["71264"], values["71361"]), ("Yes", "Yes"))
                self.assertEqual(values["71060"].endswith(", 64-bit"), version[0] != "5")
