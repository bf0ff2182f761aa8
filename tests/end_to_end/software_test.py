"""A package of the Windows Installer, installed in a prefix of its own, as the control tells of it."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

from harness import CSCRIPT, DLL, PROG_ID, windows_path

PRODUCT, VERSION = 73226, 73227
VALUES = f'var c = new ActiveXObject("{PROG_ID}"); WScript.Echo(c.Value({PRODUCT}) + " " + c.Value({VERSION}));'
# Nothing but the upgrade code tells of the product: its name and folder are others.
SOURCE = """<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
  <Product Id="5A4E0F27-3A0B-4D0C-8C7E-2F6B8E1D9A40" Name="Archiver" Language="1033" Version="24.8.1" Manufacturer="Maker"
           UpgradeCode="23170F69-40C1-2702-0000-000004000000">
    <Package InstallerVersion="500" Compressed="yes" InstallScope="perMachine"/>
    <Media Id="1" Cabinet="a.cab" EmbedCab="yes"/>
    <Directory Id="TARGETDIR" Name="SourceDir"><Directory Id="ProgramFiles64Folder"><Directory Id="PLACE" Name="Archiver">
      <Component Id="Program" Guid="0B1B7E3C-51F4-4E36-9A2B-6E6D5C1F0A11" Win64="yes">
        <File Id="Program" Name="7zFM.exe" Source="versioned.exe" KeyPath="yes"/>
      </Component>
    </Directory></Directory></Directory>
    <Feature Id="Main" Level="1"><ComponentRef Id="Program"/></Feature>
  </Product>
</Wix>
"""


class Installer(unittest.TestCase):
    def run_wine(self, *arguments):
        """What a program wrote, which has to end well."""
        with open(self.folder / "output.txt", "wb") as output:
            subprocess.run(["wine", *arguments], env=self.environment, check=True, timeout=120, stdin=subprocess.DEVNULL,
                           stdout=output, stderr=subprocess.DEVNULL)
        return (self.folder / "output.txt").read_text("cp437").strip()

    def values(self):
        return self.run_wine(CSCRIPT, "//nologo", windows_path(self.folder / "values.js"))

    def test_a_product_is_there_by_its_upgrade_code_and_with_its_file(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.environment = os.environ | {"WINEPREFIX": str(self.folder / "prefix"), "WINEDEBUG": "-all",
                                         "http_proxy": "http://127.0.0.1:9"}
        self.addCleanup(subprocess.run, ["wineserver", "-k"], env=self.environment, check=False)
        (self.folder / "values.js").write_text(VALUES)
        (self.folder / "product.wxs").write_text(SOURCE)
        subprocess.run(["wixl", "-a", "x64", "-o", self.folder / "product.msi", self.folder / "product.wxs"],
                       cwd=DLL.parent / "tests", check=True)
        self.run_wine("wineboot", "-i")
        self.run_wine("regsvr32", "/s", windows_path(DLL))
        package = windows_path(self.folder / "product.msi")
        self.assertEqual(self.values(), "No")
        self.run_wine("msiexec", "/qn", "/i", package)
        self.assertEqual(self.values(), "Yes 24.8.1")  # the installer's books
        self.run_wine("msiexec", "/qn", "/x", package)
        self.assertEqual(self.values(), "No")
        self.run_wine("msiexec", "/qn", "/i", package, r"ARPINSTALLLOCATION=C:\Program Files\Archiver")
        self.assertEqual(self.values(), "Yes 4.3.2.1")  # the file that they lead to
        [program] = (self.folder / "prefix").glob("drive_c/**/7zFM.exe")
        program.unlink()
        self.assertEqual(self.values(), "No")


if __name__ == "__main__":
    unittest.main()
