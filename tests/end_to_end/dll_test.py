"""The built DLL as a file, and in a host of many threads."""

import re
import struct
import subprocess
import unittest

from harness import DLL, PROGRAMS, windows_path, wine

SYSTEM_LIBRARIES = {"kernel32.dll", "advapi32.dll", "ole32.dll", "oleaut32.dll", "wininet.dll", "msvcrt.dll", "user32.dll",
                    "bcrypt.dll"}


class Dll(unittest.TestCase):
    def test_the_file_has_what_systems_and_installers_expect(self):
        headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-pt", DLL], capture_output=True, check=True, text=True).stdout
        exports = re.findall(r"^\s*\[ *\d+\](?: \+base\[ *\d+\] +[0-9a-f]+)? (\w+)$", headers, re.MULTILINE)
        self.assertEqual(sorted(exports), ["DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer",
                                           "DllUnregisterServer"])
        imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
        self.assertTrue(imports and imports <= SYSTEM_LIBRARIES, imports)
        content = DLL.read_bytes()
        self.assertIn(struct.pack("<2I4H", 0xFEEF04BD, 0x10000, 5, 4, 0, 1), content)  # the version of the file
        self.assertIn("OLESelfRegister".encode("utf-16-le"), content)  # older installers ask before they register
        is_release = DLL.parent.name == "release"
        self.assertEqual("no symbols" in headers, is_release)
        if is_release:
            self.assertLess(len(content), 1750 * 1024)

    def test_the_binaries_have_the_mitigations_of_the_tool_chain(self):
        for path in (DLL, *(DLL.parent / name for name in ("kel.exe", "check.exe"))):
            headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-ph", path], capture_output=True, check=True, text=True)
            for protection in ("HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT"):
                self.assertTrue(protection in headers.stdout, f"{path.name}: {protection}")
            sections = re.findall(r"^ +\d+ (\S+) .*\n +(.*)$", headers.stdout, re.MULTILINE)
            self.assertIn(".reloc", dict(sections), path.name)  # without it the file always has the same address
            for name, flags in sections:
                self.assertFalse("CODE" in flags and "READONLY" not in flags, f"{path.name}: code in {name} can be written")

    def test_a_multithreaded_host_creates_it_and_calls_it_by_name(self):
        wine("regsvr32", "/s", windows_path(DLL))
        self.assertEqual(wine(PROGRAMS / "plain_program.exe", "multithreaded")[:2], (0, "00000000 visitor\n"))
