"""Packages in a separate Wine prefix: ours are installed, upgraded, repaired and removed, and another vendor's is found."""

import os
import shutil
import re
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path
from unittest import mock

from harness import CSCRIPT, DLL, PROG_ID, PROGRAMS, ROOT, make_prefix, windows_path, wine

CLASSES, USER_CLASSES = r"HKLM\Software\Classes", r"HKCU\Software\Classes"
UNINSTALL = r"\Software\Microsoft\Windows\CurrentVersion\Uninstall"
OLDER_REFUSED = 1603 & 0xFF  # an exit code has one byte here
UNATTENDED = ("/qn", "/norestart")
ARCHIVER = "Value(73226) + control.Value(73227)"  # whether it is installed, and its version


def package(output, *arguments, dll=DLL):
    """Makes the packages, and returns their paths by name."""
    subprocess.run([sys.executable, ROOT / "tools" / "packaging", "--dll", dll, "--output", output, *arguments],
                   check=True, capture_output=True)
    return {path.name: path for path in Path(output).iterdir() if path.is_file()}


def install(path, *options):
    return wine("msiexec", *UNATTENDED, "/i", windows_path(path), *options).code


def remove(path):
    return wine("msiexec", *UNATTENDED, "/x", windows_path(path)).code


def exported(text):
    """The values of an export of the registry, by key and name."""
    values = {}
    for line in text.splitlines():
        if line.startswith("["):
            current = values.setdefault(line.strip("[]").lower(), {})
        elif "=" in line:
            name, _, current[name] = line.partition("=")
    return values


class Packages(unittest.TestCase):
    """Has a prefix, and the packages of this version, of this version for another host, and of the next version."""

    @classmethod
    def setUpClass(cls):
        make_prefix(cls)
        cls.now = package(cls.folder / "now", "--version", "4.5.1", "--cab")
        cls.other_dll = cls.folder / "other.dll"
        hosts = (name.encode("utf-16-le") for name in ("keldane.example", "another.example"))
        cls.other_dll.write_bytes(DLL.read_bytes().replace(*hosts))
        cls.other = package(cls.folder / "other", "--version", "4.5.1", dll=cls.other_dll)
        cls.next = package(cls.folder / "next", "--version", "4.6.0")

    def setUp(self):
        self.ask("Version")  # the script host registers itself when it first runs
        self.clean = {key: self.registry(key) for key in (CLASSES, USER_CLASSES)}

    def ask(self, member):
        """What a script shows of a member of the control; an error's text without one."""
        script = self.folder / "ask.js"
        script.write_text(f'var control = new ActiveXObject("{PROG_ID}"); WScript.Echo(control.{member});')
        return wine(*CSCRIPT, windows_path(script)).output.strip()

    def registry(self, key):
        """All values below a key, as the system exports them, without the installer's own records."""
        path = self.folder / "export.reg"
        path.unlink(missing_ok=True)
        wine("reg", "export", key, windows_path(path), "/y")
        values = exported(path.read_text("utf-16")) if path.exists() else {}
        return {name: named for name, named in values.items() if "\\classes\\installer" not in name}

    def entries(self):
        """The versions that the system lists as installed."""
        return [values['"DisplayVersion"'] for root in ("HKLM", "HKCU") for values in self.registry(root + UNINSTALL).values()
                if values.get('"DisplayName"') == '"Detection"']

    def dlls(self):
        return [str(path) for path in (self.folder / "prefix").glob("drive_c/**/Detection.dll")]

    def added(self, folder):
        """The changes to the classes, with a mark for a folder."""
        path = folder.replace("\\", r"\\")
        return {key: {name: text.replace(path + r"\\", path).replace(path, "@") for name, text in named.items()}
                for key, named in self.registry(CLASSES).items() if key not in self.clean[CLASSES]}

    def check_clean(self):
        self.assertEqual({key: self.registry(key) for key in self.clean}, self.clean)
        self.assertEqual((self.dlls(), self.entries()), ([], []))

    def test_it_installs_repairs_upgrades_and_uninstalls_for_all_and_for_one_user(self):
        # Wine does not look for a class below the user's own keys.
        for kind, root, place, version in (("", "HKLM", "/Program Files/Detection/Detection.dll", "4.5.1.0"),
                                           ("-user", "HKCU", "/Local/Programs/Detection/Detection.dll", "")):
            with self.subTest(root):
                now, newer = self.now[f"Detection-4.5.1-x64{kind}.msi"], self.next[f"Detection-4.6.0-x64{kind}.msi"]
                for options in ((), ("REINSTALL=ALL", "REINSTALLMODE=amus")):
                    self.assertEqual(install(now, *options), 0)
                    self.assertEqual((self.entries(), self.ask("Version")), (['"4.5.1"'], version))
                    [dll] = self.dlls()
                    self.assertTrue(dll.endswith(place))
                    os.unlink(dll)  # what a repair brings back
                for key, clean in self.clean.items():
                    self.assertEqual(self.registry(key) == clean, not key.startswith(root))
                # With this key, the control would keep its identifier of the machine.
                self.assertEqual(self.registry(r"HKCU\Software\Keldane"), {})
                # A package for another host, then the first one again: each replaces the other.
                for packages, content in ((self.other, self.other_dll), (self.now, DLL)):
                    self.assertEqual(install(packages[now.name]), 0)
                    [dll] = map(Path, self.dlls())
                    self.assertTrue(dll.read_bytes() == content.read_bytes(), f"{content} is not installed")
                    self.assertEqual((self.entries(), self.ask("Version")), (['"4.5.1"'], version))
                self.assertEqual(install(newer), 0)
                self.assertEqual(install(now), OLDER_REFUSED)
                self.assertEqual((self.entries(), self.ask("Version")), (['"4.6.0"'], version))
                self.assertEqual(remove(newer), 0)
                self.check_clean()
        self.assertEqual(self.registry(r"HKCU\Software\Detection"), {})

    def test_an_installer_registers_it_as_a_person_does(self):
        registered = exported((Path(__file__).parent / "registered.reg").read_text("ascii"))
        now = self.now["Detection-4.5.1-x64.msi"]
        self.assertEqual(install(now), 0)
        self.assertEqual(self.added(r"C:\Program Files\Detection"), registered)
        self.assertEqual(remove(now), 0)
        by_hand = shutil.copyfile(DLL, self.folder / "Detection.dll")
        self.assertEqual(wine("regsvr32", "/s", windows_path(by_hand)).code, 0)
        self.assertEqual(self.added(windows_path(self.folder)), registered)
        self.assertEqual(install(now), 0)  # over an earlier registration
        self.assertEqual(self.ask("Version"), "4.5.1.0")
        self.assertEqual(remove(now), 0)
        self.check_clean()

    def test_a_program_uses_it_without_registration(self):
        """The DLL is beside the program, with the archive's manifest; without the program's own manifest there is no class."""
        with zipfile.ZipFile(self.now["Detection-4.5.1-x64.zip"]) as zipped:
            zipped.extractall(self.folder / "program")
        for name, expected in (("private_program", "00000000 visitor\n"), ("plain_program", "80040154 \n")):
            program = shutil.copy(PROGRAMS / f"{name}.exe", self.folder / "program")
            self.assertEqual(wine(program).output, expected)

    def test_packages_are_the_same_each_time_and_hold_what_they_say(self):
        again = package(self.folder / "again", "--version", "4.5.1", "--cab")
        self.assertEqual({name: path.read_bytes() for name, path in self.now.items()},
                         {name: path.read_bytes() for name, path in again.items()})
        folder = self.enterContext(tempfile.TemporaryDirectory())
        with zipfile.ZipFile(again["Detection-4.5.1-x64.zip"]) as zipped:
            zipped.extractall(folder)
        subprocess.run(["sha256sum", "--quiet", "--check", "SHA256SUMS"], cwd=folder, check=True)
        self.assertLessEqual({"Detection.dll", "kel.exe", "Detection.manifest", "Detection.cdx.json", "examples", "licences"},
                             set(os.listdir(folder)))
        self.assertEqual(len(os.listdir(Path(folder) / "licences")), 5)

    @unittest.skipUnless((ROOT / ".git").exists(), "not a working copy")
    def test_an_archive_has_tracked_files_only(self):
        note = ROOT / "examples" / "a note.txt"
        self.addCleanup(note.unlink)
        note.write_text("untracked")
        packages = package(self.folder / "tracked", "--version", "4.5.1")
        with zipfile.ZipFile(packages["Detection-4.5.1-x64.zip"]) as zipped:
            names = {name for name in zipped.namelist() if name.startswith("examples/")}
        tracked = subprocess.run(["git", "ls-files", "-z", "examples"], cwd=ROOT, check=True, capture_output=True, text=True)
        self.assertEqual(names, set(tracked.stdout.split("\0")[:-1]))

    def test_no_documented_command_restarts_the_machine(self):
        for page in (ROOT / "docs").glob("*.md"):
            for command in re.findall(r"msiexec [^`\n]*/qn[^`\n]*", page.read_text("utf-8")):
                self.assertIn("/norestart", command, page.name)

    def test_signed_packages_have_their_checksums_and_show_a_changed_byte(self):
        def run(*command, **variables):
            return subprocess.run(command, check=False, capture_output=True, text=True, **variables)
        key, certificate, pin = (str(self.folder / name) for name in ("code.key", "code.pem", "pin"))
        Path(pin).write_text("secret")
        run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-passout", "file:" + pin, "-keyout", key, "-out", certificate,
            "-subj", "/CN=Test", "-days", "2", "-addext", "extendedKeyUsage=codeSigning")
        signer = {"KEL_SIGN_KEY": key, "KEL_SIGN_CERTIFICATES": certificate, "KEL_SIGN_PIN_FILE": pin}
        with mock.patch.dict(os.environ, signer):
            signed = package(self.folder / "signed", "--version", "4.5.1", "--cab")
        sums = run("sha256sum", "--check", "SHA256SUMS", cwd=self.folder / "signed")
        signed.pop("SHA256SUMS")
        self.assertEqual(sorted(sums.stdout.splitlines()), sorted(f"{name}: OK" for name in signed))
        with zipfile.ZipFile(signed.pop("Detection-4.5.1-x64.zip")) as zipped:
            signed["Detection.dll"] = Path(zipped.extract("Detection.dll", self.folder))
        run("msiextract", "-C", self.folder / "extracted", signed["Detection-4.5.1-x64.msi"])
        [signed["the installer's DLL"]] = (self.folder / "extracted").rglob("Detection.dll")
        verify = ("osslsigncode", "verify", "-CAfile", certificate, "-in")
        for path in signed.values():
            with self.subTest(path.name):
                self.assertEqual(run(*verify, path).returncode, 0)
                content = bytearray(path.read_bytes())
                content[len(content) // 2] ^= 1
                path.write_bytes(content)
                self.assertEqual(run(*verify, path).returncode, 1)

    def test_a_product_is_found_by_its_upgrade_code_and_its_file(self):
        product = self.folder / "product.msi"
        subprocess.run(["wixl", "-a", "x64", "-o", product, Path(__file__).parent / "product.wxs"], cwd=PROGRAMS, check=True)
        wine("regsvr32", "/s", windows_path(DLL))
        self.addCleanup(wine, "regsvr32", "/s", "/u", windows_path(DLL))
        self.assertEqual(self.ask(ARCHIVER), "No")
        self.assertEqual(install(product), 0)
        self.assertEqual(self.ask(ARCHIVER), "Yes24.8.1")  # the installer's books
        self.assertEqual(remove(product), 0)
        self.assertEqual(self.ask(ARCHIVER), "No")
        self.assertEqual(install(product, r"ARPINSTALLLOCATION=C:\Program Files\Archiver"), 0)
        self.assertEqual(self.ask(ARCHIVER), "Yes4.3.2.1")  # the file that they lead to
        [program] = (self.folder / "prefix").glob("drive_c/**/7zFM.exe")
        program.unlink()
        self.assertEqual(self.ask(ARCHIVER), "No")
        self.assertEqual(remove(product), 0)
