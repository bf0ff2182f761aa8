"""The packages: installed, upgraded, repaired, taken away, each in a Wine prefix of its own."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

from harness import DLL, PROG_ID, ROOT, windows_path

sys.path.insert(0, str(ROOT / "tools" / "packaging"))
CLASSES = r"HKLM\Software\Classes"
CHECK = f'WScript.Echo(new ActiveXObject("{PROG_ID}").Version);'
OLDER_REFUSED = 1603 & 0xFF  # an exit code is a byte here


def package(output, *arguments, dll=DLL):
    subprocess.run([sys.executable, ROOT / "tools" / "packaging", "--dll", dll, "--output", output, *arguments],
                   check=True, capture_output=True)
    return {path.name: path for path in Path(output).iterdir() if path.is_file()}


class Prefix(unittest.TestCase):
    """A fresh prefix; the packages of this version and of the next one."""

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.environment = os.environ | {"WINEPREFIX": str(cls.folder / "prefix"), "WINEDEBUG": "-all"}
        cls.addClassCleanup(subprocess.run, ["wineserver", "-k"], env=cls.environment, check=False)
        subprocess.run(["wineboot", "-i"], env=cls.environment, check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        (cls.folder / "check.js").write_text(CHECK)
        # The script host registers itself when it first runs.
        subprocess.run(["wine", "cscript", "//nologo", windows_path(cls.folder / "check.js")], env=cls.environment, check=False,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        cls.now = package(cls.folder / "now", "--version", "4.5.1")
        cls.next = package(cls.folder / "next", "--version", "4.6.0")

    def run_wine(self, *arguments):
        with open(self.folder / "output.txt", "wb") as output:
            code = subprocess.run(["wine", *map(str, arguments)], env=self.environment, check=False, timeout=120,
                                  stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.DEVNULL).returncode
        return code, (self.folder / "output.txt").read_text("cp437").replace("\r", "").strip()

    def install(self, path, *options):
        return self.run_wine("msiexec", "/qn", "/i", windows_path(path), *options)[0]

    def remove(self, path):
        return self.run_wine("msiexec", "/qn", "/x", windows_path(path))[0]

    def create(self):
        return self.run_wine("cscript", "//nologo", windows_path(self.folder / "check.js"))

    def registry(self, key):
        """All values below a key, as the system exports them."""
        path = self.folder / "export.reg"
        path.unlink(missing_ok=True)
        self.run_wine("reg", "export", key, windows_path(path), "/y")
        values, current = {}, None
        for line in path.read_text("utf-16").splitlines() if path.exists() else ():
            if line.startswith("["):
                current = line.strip("[]").lower()
                if "\\classes\\installer" in current:  # the installer's own books
                    current = None
                else:
                    values[current] = {}
            elif "=" in line and current:
                name, _, text = line.partition("=")
                values[current][name] = text
        return values

    def difference(self, before, key=CLASSES):
        now = self.registry(key)
        return {name: (before.get(name), now.get(name)) for name in before.keys() | now.keys()
                if before.get(name) != now.get(name)}

    def dlls(self):
        return sorted((self.folder / "prefix").glob("drive_c/**/Detection.dll"))


class ForAllUsers(Prefix):
    def test_a_fleet_can_install_upgrade_repair_and_remove_it(self):
        now, newer = self.now["Detection-4.5.1-x64.msi"], self.next["Detection-4.6.0-x64.msi"]
        clean = self.registry(CLASSES)
        self.assertEqual(self.install(now), 0)
        installed = self.registry(CLASSES)
        self.assertEqual(self.create(), (0, "4.5.1.0"))
        [dll] = self.dlls()
        self.assertRegex(str(dll), r"Program Files/Detection/Detection\.dll$")
        uninstall = r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall"

        def entries():
            return [values['"DisplayVersion"'] for values in self.registry(uninstall).values()
                    if values.get('"DisplayName"') == '"Detection"']
        self.assertEqual(entries(), ['"4.5.1"'])
        dll.unlink()
        self.assertEqual(self.install(now, "REINSTALL=ALL", "REINSTALLMODE=amus"), 0)
        self.assertEqual(self.create(), (0, "4.5.1.0"))
        self.assertEqual(self.install(newer), 0)
        self.assertEqual((entries(), self.create()), (['"4.6.0"'], (0, "4.5.1.0")))
        self.assertEqual(self.install(now), OLDER_REFUSED)
        self.assertEqual(entries(), ['"4.6.0"'])
        self.assertEqual(self.remove(newer), 0)
        self.assertEqual(self.difference(clean), {})
        self.assertEqual((self.dlls(), entries()), ([], []))

        # What a person registers by hand is the same, but for the place, and what only that way writes.
        shutil.copyfile(DLL, self.folder / "Detection.dll")
        by_hand = windows_path(self.folder / "Detection.dll")
        self.assertEqual(self.run_wine("regsvr32", "/s", by_hand)[0], 0)
        registered = self.registry(CLASSES)
        marks = {by_hand: "DLL", windows_path(self.folder): "FOLDER", r"C:\Program Files\Detection\Detection.dll": "DLL",
                 "C:\\Program Files\\Detection\\": "FOLDER"}

        def plain(values):
            """What came, with marks for the places."""
            added = {key: named for key, named in values.items() if key not in clean}
            for path, mark in marks.items():
                added = {key: {name: text.replace(path.replace("\\", "\\\\"), mark) for name, text in named.items()}
                         for key, named in added.items()}
            return added
        self.assertEqual(plain(installed), plain(registered))
        self.assertEqual(self.install(now), 0)  # over an earlier registration
        self.assertEqual(self.create(), (0, "4.5.1.0"))
        self.assertEqual(self.remove(now), 0)
        self.assertEqual(self.difference(clean), {})


class Privately(Prefix):
    def test_a_program_carries_it_with_an_empty_registry_and_a_changed_byte_shows(self):
        """Beside the program, by the manifest of the archive; without the program's own manifest there is no class."""
        place = self.folder / "program"
        with zipfile.ZipFile(self.now["Detection-4.5.1-x64.zip"]) as zipped:
            zipped.extractall(place)
        for name, expected in (("private_program", (0, "4.5.1.0")), ("plain_program", (1, "80040154"))):
            shutil.copyfile(DLL.parent / "tests" / f"{name}.exe", place / f"{name}.exe")
            self.assertEqual(self.run_wine(place / f"{name}.exe"), expected)

        def run(*command, environment=os.environ):
            return subprocess.run(command, env=environment, check=False, capture_output=True, text=True)
        key, certificate, pin = (str(self.folder / name) for name in ("code.key", "code.pem", "pin"))
        Path(pin).write_text("secret")
        run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-passout", "file:" + pin, "-keyout", key, "-out", certificate,
            "-subj", "/CN=Test", "-days", "2", "-addext", "extendedKeyUsage=codeSigning")
        signed = os.environ | {"KEL_SIGN_KEY": key, "KEL_SIGN_CERTIFICATES": certificate, "KEL_SIGN_PIN_FILE": pin}
        for path in (place / "Detection.dll", self.now["Detection-4.5.1-x64.msi"]):
            self.assertEqual(run(str(ROOT / "scripts" / "sign.sh"), str(path)).stdout, f"unsigned: {path}\n")
            self.assertEqual(run(str(ROOT / "scripts" / "sign.sh"), str(path), environment=signed).stdout, f"signed: {path}\n")
            verify = ("osslsigncode", "verify", "-CAfile", certificate, "-in", str(path))
            self.assertEqual(run(*verify).returncode, 0)
            content = bytearray(path.read_bytes())
            content[len(content) // 2] ^= 1
            path.write_bytes(content)
            self.assertEqual(run(*verify).returncode, 1)


class ForOneUser(Prefix):
    def test_it_comes_and_goes_below_the_users_own_keys(self):
        user, before = r"HKCU\Software\Classes", self.registry(r"HKCU\Software\Classes")
        machine = self.registry(CLASSES)
        now, newer = self.now["Detection-4.5.1-x64-user.msi"], self.next["Detection-4.6.0-x64-user.msi"]
        self.assertEqual(self.install(now), 0)
        [dll] = self.dlls()
        self.assertRegex(str(dll), r"Local/Programs/Detection/Detection\.dll$")
        self.assertIn(f'"{PROG_ID}.1"', str(self.registry(user)))
        self.assertEqual(self.difference(machine), {})
        self.assertEqual(self.install(newer), 0)
        self.assertEqual(len(self.dlls()), 1)
        self.assertEqual(self.remove(newer), 0)
        self.assertEqual(self.difference(before, user), {})
        self.assertEqual(self.dlls(), [])
        self.assertNotIn("Detection", str(self.registry(r"HKCU\Software\Keldane")))


class Archive(unittest.TestCase):
    def test_it_holds_what_it_says(self):
        with tempfile.TemporaryDirectory() as folder:
            first = package(Path(folder) / "one", "--cab")
            again = package(Path(folder) / "two", "--cab")
            self.assertEqual({name: path.read_bytes() for name, path in first.items()},
                             {name: path.read_bytes() for name, path in again.items()})
            [name] = [name for name in first if name.endswith(".zip")]
            with zipfile.ZipFile(first[name]) as zipped:
                zipped.extractall(folder)
            subprocess.run(["sha256sum", "--quiet", "--check", "SHA256SUMS"], cwd=folder, check=True)
            names = set(os.listdir(folder))
            self.assertLessEqual({"Detection.dll", "Detection.manifest", "Detection.cdx.json", "examples", "licences"}, names)
            self.assertEqual(len(os.listdir(Path(folder) / "licences")), 3)


if __name__ == "__main__":
    unittest.main()
