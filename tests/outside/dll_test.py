"""The built DLL as a file: entry points, imports, protections, resources."""

import re
import subprocess
import unittest

from harness import DLL

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

    def test_release_is_stripped(self):
        symbols = subprocess.run(["x86_64-w64-mingw32-objdump", "-t", DLL], capture_output=True, check=True, text=True).stdout
        self.assertEqual("no symbols" in symbols, DLL.parent.name == "release")
