"""The built DLL as a file: entry points, imports, protections, size; and as a person registers it."""

import re
import subprocess
import unittest

from harness import DLL, windows_path, wine

SYSTEM_LIBRARIES = {"kernel32.dll", "advapi32.dll", "ole32.dll", "oleaut32.dll", "wininet.dll", "msvcrt.dll", "user32.dll",
                    "bcrypt.dll"}


class Dll(unittest.TestCase):
    def test_exports_and_imports_what_it_should(self):
        headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", DLL], capture_output=True, check=True, text=True).stdout
        exports = re.findall(r"^\s*\[ *\d+\](?: \+base\[ *\d+\] +[0-9a-f]+)? (\w+)$", headers, re.MULTILINE)
        self.assertEqual(sorted(exports), ["DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer",
                                           "DllUnregisterServer"])
        imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
        self.assertTrue(imports and imports <= SYSTEM_LIBRARIES, imports)
        for protection in ("HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT"):
            self.assertIn(protection, headers)

        # What older installers ask before they register a file.
        self.assertIn("OLESelfRegister".encode("utf-16-le"), DLL.read_bytes())

    def test_release_is_stripped_and_small(self):
        symbols = subprocess.run(["x86_64-w64-mingw32-objdump", "-t", DLL], capture_output=True, check=True, text=True).stdout
        if DLL.parent.name == "release":
            self.assertIn("no symbols", symbols)
            self.assertLess(DLL.stat().st_size, 1700 * 1024)
        else:
            self.assertNotIn("no symbols", symbols)

    def test_a_multithreaded_host_creates_it_and_asks_it_by_name(self):
        wine(["regsvr32", "/s", windows_path(DLL)])
        self.assertEqual(wine([DLL.parent / "tests/mta_probe.exe"]), (0, "00000000 visitor\n"))

    def test_regsvr32_registers_for_whom_it_is_told(self):
        refused = 5  # what regsvr32 says of a call that failed
        for arguments, result, for_all, for_user in (
                ("", 0, True, False), ("/n /i:usr", refused, True, False), ("/u /n /i:usr", refused, True, False),
                ("/n /i:User", 0, True, True), ("/u", 0, False, True), ("/u /n /i:user", 0, False, False)):
            with self.subTest(arguments):
                self.assertEqual(wine(["regsvr32", "/s", *arguments.split(), windows_path(DLL)])[0], result)
                for root, is_there in (("HKLM", for_all), ("HKCU", for_user)):
                    key = root + r"\SOFTWARE\Classes\CLSID\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}"
                    self.assertEqual(wine(["reg", "query", key])[0], 0 if is_there else 1, root)
