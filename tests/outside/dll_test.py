"""The built DLL as a file: entry points, imports, protections, resources."""

import re
import subprocess
import unittest

from harness import DLL

SYSTEM_LIBRARIES = {"kernel32.dll", "advapi32.dll", "ole32.dll", "oleaut32.dll", "wininet.dll", "msvcrt.dll", "user32.dll",
                    "bcrypt.dll", "setupapi.dll"}


def objdump(option):
    return subprocess.run(["x86_64-w64-mingw32-objdump", option, str(DLL)], stdout=subprocess.PIPE, check=True,
                          text=True).stdout


class Dll(unittest.TestCase):
    def test_exports_and_imports_what_it_should(self):
        headers = objdump("-p")
        exports = re.findall(r"^\s*\[ *\d+\](?: \+base\[ *\d+\] +[0-9a-f]+)? (\w+)$", headers, re.MULTILINE)
        self.assertEqual(sorted(exports), ["DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer",
                                           "DllUnregisterServer"])
        imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
        self.assertTrue(imports and imports <= SYSTEM_LIBRARIES, imports)
        for protection in ("HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT"):
            self.assertIn(protection, headers)

    def test_carries_its_resources(self):
        content = DLL.read_bytes()
        for text in ("Detection", "REGISTRY", "TYPELIB", "4.5.1.0", "VS_VERSION_INFO"):
            self.assertIn(text.encode("utf-16-le"), content)
        self.assertIn(b"MSFT", content)  # a type library begins so
        self.assertIn(b"ForceRemove {3D7C6027-9644-4282-BC8F-AC0BABB38FDB}", content)


if __name__ == "__main__":
    unittest.main()
