"""Packages in a separate Wine prefix: ours are installed, upgraded, repaired and removed, and another vendor's is found."""

import hashlib
import json
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile
from pathlib import Path
from xml.etree import ElementTree
from unittest import mock

import yaml

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools" / "packaging"))
import documents  # noqa: E402
from product import resource_text  # noqa: E402
from harness import CLASS_ID, CSCRIPT, DLL, PATIENCE, PROG_ID, PROGRAMS, ROOT, make_prefix, windows_path, wine  # noqa: E402

CLASSES, USER_CLASSES = r"HKLM\Software\Classes", r"HKCU\Software\Classes"
ACTIVE_SETUP = r"HKLM\Software\Microsoft\Active Setup\Installed Components\{5E90D3A7-82F1-4C6B-9D24-F3B7061CE8A2}"
POLICY_KEY = r"HKLM\Software\Policies\Keldane"
UNINSTALL = r"\Software\Microsoft\Windows\CurrentVersion\Uninstall"
# Exit codes have one byte here.
FAILED, NEWER_INSTALLED, RESTART_LATER = 1603 & 0xFF, 1638 & 0xFF, 3010 & 0xFF
# Has the control until a file is there, for five minutes at most. Wine's script host cannot sleep.
HOLD = """var control = new ActiveXObject("{}"), files = new ActiveXObject("Scripting.FileSystemObject");
control.Version;
files.CreateTextFile("{}").Close();
for (var end = new Date().getTime() + 300000; !files.FileExists("{}") && new Date().getTime() < end;);
"""
INSTALL_SCRIPT = ROOT / "packaging" / "fleet" / "install.js"
LINK = re.compile(r"\[[^\]]*\]\(([^)#\s]*)(?:#([^)\s]*))?\)")
UNATTENDED = ("/qn", "/norestart")
POLICIES = ROOT / "packaging" / "policies"
POLICY = "{http://schemas.microsoft.com/GroupPolicy/2006/07/PolicyDefinitions}"
ARCHIVER = "Value(73226) + control.Value(73227)"  # whether it is installed, and its version


def package(output, *arguments, folder=DLL.parent):
    """Makes the packages of the DLL and the program in a folder, and returns their paths by name."""
    subprocess.run([sys.executable, ROOT / "tools" / "packaging", "--dll", folder / "Detection.dll", "--program",
                    folder / "kel.exe", "--check-program", folder / "check.exe", "--output", output, *arguments], check=True,
                   capture_output=True)
    return {str(path.relative_to(output)): path for path in Path(output).rglob("*") if path.is_file()}


def setUpModule():
    global NOW
    folder = Path(unittest.enterModuleContext(tempfile.TemporaryDirectory()))
    NOW = package(folder, "--version", "4.5.1", "--cab")


def install(path, *options):
    return wine("msiexec", *UNATTENDED, "/i", windows_path(path), *options).code


def remove(path):
    return wine("msiexec", *UNATTENDED, "/x", windows_path(path)).code


def published(archive):
    """The codes that an archive has for fleet tools."""
    with zipfile.ZipFile(archive) as zipped:
        return json.loads(zipped.read("fleet/codes.json"))


def exported(path, table):
    """The rows of an installer's table."""
    text = subprocess.run(["msiinfo", "export", path, table], check=True, capture_output=True, text=True).stdout
    return [line.split("\t") for line in text.splitlines()][3:]


def saved(text):
    """The values in a file of Wine's registry, by key and name. Keys without values are in it only without keys below them."""
    values = {}
    for line in text.splitlines():
        if line.startswith("["):
            current = values.setdefault(line[1:].rpartition("]")[0].replace(r"\\", "\\").lower(), {})
        elif "=" in line and not line.startswith("#"):
            name, _, current[name] = line.partition("=")
    return values


class Packages(unittest.TestCase):
    """Has a prefix, and the packages of this version, of this version for another host, and of the next version for that one."""

    @classmethod
    def setUpClass(cls):
        make_prefix(cls)
        cls.other_folder = cls.folder / "for another host"
        cls.other_folder.mkdir()
        hosts = [name.encode("utf-16-le") for name in ("analysis.keldane.example", "analysis.another.example")]
        for name in ("Detection.dll", "kel.exe", "check.exe"):
            (cls.other_folder / name).write_bytes((DLL.parent / name).read_bytes().replace(*hosts))
        cls.other = package(cls.folder / "other", "--version", "4.5.1", folder=cls.other_folder)
        cls.next = package(cls.folder / "next", "--version", "4.6.0", folder=cls.other_folder)

    def record(self):
        """Records the registry, which later checks compare with."""
        self.ask("Version")  # the script host registers itself when it first runs
        wine("reg", "add", CLASSES + r"\Wow6432Node\CLSID\Other", "/f")  # an empty key would go with ours
        self.clean = {key: self.registry(key) for key in (CLASSES, USER_CLASSES)}

    def ask(self, member):
        """What a script shows of a member of the control; an error's text without one."""
        script = self.folder / "ask.js"
        script.write_text(f'var control = new ActiveXObject("{PROG_ID}"); WScript.Echo(control.{member});')
        return wine(*CSCRIPT, windows_path(script)).output.strip()

    def registry(self, key):
        """All values below a key of "Software", without the installer's own records."""
        paths = [self.folder / name for name in ("HKLM", "HKCU")]
        for path in paths:
            path.unlink(missing_ok=True)
        self.assertEqual(wine(PROGRAMS / "registry.exe", *map(windows_path, paths)).code, 0)
        root, _, below = key.lower().partition("\\software\\")
        return {f"{root}\\software\\{name}": values
                for name, values in saved((self.folder / root.upper()).read_text("ascii")).items()
                if (name + "\\").startswith(below + "\\") and "classes\\installer" not in name}

    def entries(self):
        """What the system lists as installed of this publisher."""
        return [{name.strip('"'): text.strip('"').replace(r"\\", "\\") for name, text in values.items()}
                for root in ("HKLM", "HKCU") for values in self.registry(root + UNINSTALL).values()
                if values.get('"Publisher"') == '"Keldane"']

    def installed(self):
        """The versions and hosts that it lists, and the version that a script shows."""
        return ([f"{entry['DisplayVersion']} {entry['Comments'].rpartition(' ')[2]}" for entry in self.entries()],
                self.ask("Version"))

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
        self.record()
        # Wine does not look for a class below the user's own keys.
        for kind, root, place, name, version in (
                ("", "HKLM", r"C:\Program Files\Detection", "Detection", "4.5.1.0"),
                ("-user", "HKCU", r"\Local\Programs\Detection", "Detection (user)", "")):
            with self.subTest(root):
                now, newer = NOW[f"Detection-4.5.1-x64{kind}.msi"], self.next[f"Detection-4.6.0-x64{kind}.msi"]
                for options in ((), ("REINSTALL=ALL", "REINSTALLMODE=amus")):
                    self.assertEqual(install(now, *options), 0)
                    self.assertEqual(self.installed(), (["4.5.1 analysis.keldane.example"], version))
                    [dll] = self.dlls()
                    os.unlink(dll)  # what a repair brings back
                [entry] = self.entries()
                self.assertTrue(dll.endswith(place[2:].replace("\\", "/") + "/Detection.dll"), dll)
                self.assertTrue(entry.pop("InstallLocation").endswith(place + "\\"))
                self.assertGreater(int(entry["Size"]), 3000)  # in KB
                manifests = self.host_manifests(root)
                self.assertEqual(len(manifests), 4)
                for browser, manifest in manifests.items():
                    self.assertTrue((manifest.parent / json.loads(manifest.read_text())["path"]).exists(), browser)
                self.assertLessEqual({"DisplayName": name, "Contact": "Keldane, https://keldane.example/detection",
                                      "HelpLink": "https://keldane.example/detection/help",
                                      "URLInfoAbout": "https://keldane.example/detection"}.items(), entry.items())
                for key, clean in self.clean.items():
                    self.assertEqual(self.registry(key) == clean, not key.startswith(root))
                # With this key, the control would keep its identifier of the machine.
                self.assertEqual(self.registry(r"HKCU\Software\Keldane"), {})
                # A package for another host, then the first one again: each replaces the other.
                for packages, folder, host in ((self.other, self.other_folder, "another"), (NOW, DLL.parent, "keldane")):
                    self.assertEqual(install(packages[now.name]), 0)
                    [dll] = map(Path, self.dlls())
                    self.assertTrue(dll.read_bytes() == (folder / dll.name).read_bytes(), f"{folder} is not installed")
                    self.assertEqual(self.installed(), ([f"4.5.1 analysis.{host}.example"], version))
                self.assertEqual(self.run_install_script(newer), 0)
                self.assertEqual(install(now), FAILED)
                self.assertEqual(self.run_install_script(now), NEWER_INSTALLED)
                self.assertEqual(self.installed(), (["4.6.0 analysis.another.example"], version))
                [codes] = (codes for codes in published(self.next["Detection-4.6.0-x64.zip"])["packages"]
                           if codes["package"] == newer.name)
                entry = codes["entry"].partition("\\")[2]  # Wine lists both for all users
                [listed] = (values for place in ("HKLM", "HKCU") for values in self.registry(f"{place}\\{entry}").values())
                self.assertEqual(listed['"DisplayName"'], f'"{codes["displayName"]}"')
                self.assertEqual(wine(*codes["remove"].split()).code, 0)
                self.check_clean()
                self.assertEqual(self.host_manifests(root), {})
        self.assertEqual(self.registry(r"HKCU\Software\Detection"), {})

    def test_a_loaded_dll_is_replaced_at_the_next_start(self):
        held, done = self.folder / "held", self.folder / "done"
        script = self.folder / "hold.js"
        script.write_text(HOLD.format(PROG_ID, *(windows_path(path).replace("\\", "\\\\") for path in (held, done))))
        newer = self.next["Detection-4.6.0-x64.msi"]
        self.assertEqual(install(NOW["Detection-4.5.1-x64.msi"]), 0)
        [dll] = map(Path, self.dlls())
        with subprocess.Popen(["wine", *CSCRIPT, windows_path(script)], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL) as host:
            try:
                end = time.monotonic() + PATIENCE
                while not held.exists() and time.monotonic() < end:
                    time.sleep(0.05)
                self.assertEqual(install(newer), RESTART_LATER)
                self.assertTrue(dll.read_bytes() == DLL.read_bytes(), "the loaded DLL was replaced")
                self.assertIsNone(host.poll())
            finally:
                done.touch()
        subprocess.run(["wineserver", "-k"], check=False)
        wine("wineboot")
        self.assertTrue(dll.read_bytes() == (self.other_folder / dll.name).read_bytes(), "the next start did not replace it")
        self.assertEqual(remove(newer), 0)
        self.assertEqual(self.dlls(), [])

    def host_manifests(self, root):
        """Where browsers find the manifest of the extension's native host."""
        found = {}
        for browser in (r"Google\Chrome", "Chromium", r"Microsoft\Edge", "Mozilla"):
            values = self.registry(rf"{root}\Software\{browser}\NativeMessagingHosts\example.keldane.check")
            for text in (text for named in values.values() for text in named.values()):
                drive, path = text.strip('"').replace(r"\\", "/").split(":")
                found[browser] = self.folder / "prefix" / f"drive_{drive.lower()}" / path.lstrip("/")
        return found

    def run_install_script(self, path):
        return wine(*CSCRIPT, windows_path(INSTALL_SCRIPT), windows_path(path)).code

    def test_an_installer_registers_it_as_a_person_does(self):
        registered, served = (saved((Path(__file__).parent / name).read_text("ascii"))
                              for name in ("registered.txt", "served.txt"))
        self.record()
        now = NOW["Detection-4.5.1-x64.msi"]
        self.assertEqual(install(now), 0)
        added = self.added(r"C:\Program Files\Detection")
        link = {key.partition("\\classes\\")[2]: added.pop(key) for key in list(added) if r"\classes\kel-check" in key}
        self.assertEqual({key: named for key, named in link.items() if named}, {
            "kel-check": {"@": '"URL:Computer check"', '"URL Protocol"': '""'},
            r"kel-check\defaulticon": {"@": '"@check.exe,0"'},
            r"kel-check\shell\open\command": {"@": r'"\"@check.exe\" \"%1\""'}})
        self.assertEqual(added, registered)
        self.assertEqual(remove(now), 0)
        by_hand = shutil.copyfile(DLL, self.folder / "Detection.dll")
        self.assertEqual(wine("regsvr32", "/s", windows_path(by_hand)).code, 0)
        program = shutil.copyfile(DLL.parent / "kel.exe", self.folder / "kel.exe")
        for switch, added in ((None, registered), ("-RegServer", registered | served), ("-UnregServer", registered)):
            with self.subTest(switch):
                self.assertEqual(wine(program, switch).code if switch else 0, 0)
                self.assertEqual(self.added(windows_path(self.folder)), added)
        self.assertEqual(self.registry(ACTIVE_SETUP), {})
        self.assertEqual(install(now, "IDENTIFIER=1", "LOCALSERVER=1"), 0)  # over an earlier registration
        added = self.added(r"C:\Program Files\Detection")
        self.assertEqual({key: named for key, named in added.items() if "kel-check" not in key}, registered | served)
        self.assertEqual(self.ask("Version"), "4.5.1.0")
        self.assertEqual([values.get('"StubPath"') for values in self.registry(ACTIVE_SETUP).values()],
                         [r'"reg add HKCU\\Software\\Keldane /f"'])
        self.assertEqual(remove(now), 0)
        self.assertEqual(self.registry(ACTIVE_SETUP), {})
        self.check_clean()

    def servers(self):
        """The keys of the local server."""
        return [key for key in self.registry(CLASSES) if "localserver32" in key and CLASS_ID.lower() in key]

    def service(self):
        return wine(DLL.parent / "kel.exe", "--version").output.splitlines()[1:]

    def for_pages(self, root):
        """What is registered for pages: the links, and the browsers that know the native host."""
        links = [key for key in self.registry(root + r"\Software\Classes") if key.endswith(r"\kel-check\shell\open\command")]
        return len(links), len(self.host_manifests(root))

    def policies(self):
        return {name.strip('"'): text for values in self.registry(POLICY_KEY).values() for name, text in values.items()}

    def test_an_installers_options_hold_for_later_versions_too(self):
        policies = {"ServiceHost": '"firm.example"', "LogFile": r'str(2):"%TEMP%\\a.log"', "LogLevel": "dword:00000005",
                    "LogSize": "dword:00000800"}
        options = ("SERVICEHOST=firm.example", r"LOGFILE=%TEMP%\a.log", "LOGLEVEL=5", "LOGSIZE=2048", "LOCALSERVER=1",
                   "IDENTIFIER=1")
        for kind, root, own in (("", "HKLM", options), ("-user", "HKCU", ())):
            now, other, newer = (packages[f"Detection-{version}-x64{kind}.msi"] for packages, version in (
                (NOW, "4.5.1"), (self.other, "4.5.1"), (self.next, "4.6.0")))
            for path, *given in ((now, *own, "LINK=0", "EXTENSION=0"), (now, "REINSTALL=ALL", "REINSTALLMODE=amus"), (other,)):
                with self.subTest(given, package=path.name):
                    self.assertEqual(install(path, *given), 0)
                    self.assertEqual(self.for_pages(root), (0, 0))
                    if own:
                        self.assertEqual(self.policies(), policies)
                        self.assertEqual(self.service(), ["Service: firm.example (policy)"])
                        self.assertEqual(self.installed()[0], ["4.5.1 firm.example"])
                        self.assertEqual((len(self.servers()), len(self.registry(ACTIVE_SETUP))), (2, 1))
            ends = ("LOGFILE=0", "LOCALSERVER=0", "IDENTIFIER=0") if own else ()
            self.assertEqual(install(newer, *ends, "LINK=1", "EXTENSION=1"), 0)
            self.assertEqual((self.for_pages(root), self.servers(), self.registry(ACTIVE_SETUP)), ((1, 4), [], {}))
            self.assertEqual(set(self.policies()), {"ServiceHost"} if own else set())
            self.assertEqual(remove(newer), 0)
            self.assertEqual((self.for_pages(root), self.policies()), ((0, 0), {}))

    def test_options_that_would_be_ignored_are_refused(self):
        for kind, option in (("", "SERVICEHOST=https://firm.example"), ("", "SERVICEHOST=firm.example:8080"),
                             ("", "LOGLEVEL=all"), ("", "LOGLEVEL=8"), ("", "LOGSIZE=1"), ("-user", "SERVICEHOST=firm.example"),
                             ("-user", r"LOGFILE=C:\a.log"), ("-user", "IDENTIFIER=1")):
            with self.subTest(option, kind=kind):
                self.assertEqual(install(NOW[f"Detection-4.5.1-x64{kind}.msi"], option), FAILED)
                self.assertEqual(self.entries(), [])

    def test_every_policy_of_the_templates_is_obeyed(self):
        log = self.folder / "log"
        log.mkdir()
        (log / "a.log").write_bytes(b"x" * 1_500_000)
        texts = {"ServiceHost": "firm.example", "LogFile": r"%LOGFOLDER%\a.log", "LogLevel": "3", "LogSize": "2048", "Keep": "1"}
        rows = {}
        for policy in ElementTree.parse(POLICIES / "Keldane.admx").getroot().iter(POLICY + "policy"):
            root = {"Machine": "HKLM", "User": "HKCU"}[policy.get("class")] + "\\" + policy.get("key")
            for element in (policy, *policy.iter(POLICY + "text"), *policy.iter(POLICY + "decimal")):
                if name := element.get("valueName"):
                    kind = "REG_DWORD" if texts[name].isdigit() else "REG_EXPAND_SZ" if element.get("expandable") else "REG_SZ"
                    rows[name] = (root, "/v", name, "/t", kind, "/d", texts[name], "/f")
                    self.addCleanup(wine, "reg", "delete", root, "/f")
        self.assertEqual(rows.keys(), texts.keys())
        of_user = rows["ServiceHost"][0].replace("HKLM", "HKCU")
        self.addCleanup(wine, "reg", "delete", of_user, "/f")
        wine("reg", "add", of_user, *rows["ServiceHost"][1:])
        self.assertEqual(self.service(), ["Service: analysis.keldane.example (built in)"])
        for row in rows.values():
            wine("reg", "add", *row)
        facts = (DLL.parent / "kel.exe", "facts", "memory")
        self.enterContext(mock.patch.dict(os.environ, {"LOGFOLDER": windows_path(log)}))
        self.assertEqual(wine(*facts).code, 0)
        [file] = log.iterdir()  # of less than its size
        lines = file.read_text("utf-8").lstrip("x")
        self.assertRegex(lines, r"(?m)^\d{4}-\d\d-\d\d \d+ [\d:]{8}  [\d.]+ +TRACE \| .*service firm\.example \(policy\)$")
        self.assertNotIn(" MARK ", lines)  # of a higher level
        self.assertIn('"Run"', "".join(map(str, self.registry(r"HKCU\Software\Keldane").values())))
        wine("reg", "add", rows["LogSize"][0], "/v", "LogSize", "/t", "REG_DWORD", "/d", "1024", "/f")
        wine("reg", "add", rows["ServiceHost"][0], "/v", "ServiceHost", "/d", "http://firm.example", "/f")
        self.assertEqual(wine(*facts).code, 0)
        self.assertEqual(sorted(path.name for path in log.iterdir()), ["a.log", "a.log.1"])
        refused = 'The policy ServiceHost is not the name of a host, and is ignored: "http://firm.example"'
        self.assertEqual(self.service(), ["Service: analysis.keldane.example (built in)", refused])
        self.assertEqual(file.read_text("utf-8").count(refused), 1)

    def test_a_program_uses_it_without_registration(self):
        """The DLL is beside the program, with the archive's manifest; without the program's own manifest there is no class."""
        with zipfile.ZipFile(NOW["Detection-4.5.1-x64.zip"]) as zipped:
            zipped.extractall(self.folder / "program")
        for name, expected in (("private_program", "00000000 visitor\n"), ("plain_program", "80040154 \n")):
            program = shutil.copy(PROGRAMS / f"{name}.exe", self.folder / "program")
            self.assertEqual(wine(program).output, expected)

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


class Files(unittest.TestCase):
    """What the packages hold."""

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))

    def extract(self, archive):
        with zipfile.ZipFile(archive) as zipped:
            zipped.extractall(self.folder / "archive")
        return self.folder / "archive"

    def test_packages_are_the_same_each_time_and_ignore_untracked_files(self):
        if (ROOT / ".git").exists():
            for note in (ROOT / folder / "a note.txt" for folder in ("examples", "extension")):
                self.addCleanup(note.unlink)
                note.write_text("untracked")
        again = package(self.folder / "again", "--version", "4.5.1", "--cab")
        self.assertEqual(set(NOW), set(again))
        different = [name for name, path in NOW.items() if path.read_bytes() != again[name].read_bytes()]
        self.assertEqual(different, [])

    def test_the_archive_is_whole(self):
        folder = self.extract(NOW["Detection-4.5.1-x64.zip"])
        subprocess.run(["sha256sum", "--quiet", "--check", "SHA256SUMS"], cwd=folder, check=True)
        self.assertLessEqual({"Detection.dll", "kel.exe", "check.exe", "Detection.manifest", "Detection.cdx.json", "fleet",
                              "policies", "examples"}, set(os.listdir(folder)))
        notices = (folder / "licences.txt").read_text("utf-8")
        for needed in ("Runtime Library Exception", "the mingw-w64 project", "Boost Software License", "Niels Lohmann",
                       "University of Cincinnati"):
            self.assertIn(needed, notices)
        self.assertLess(len(notices), 20_000)
        # A link to a page that is missing becomes plain text, so that no broken link would show it.
        left_out = {page.name for page in (ROOT / "docs").glob("*.md")} - set(os.listdir(folder / "docs"))
        self.assertEqual(left_out, {"architecture.md", "releasing.md"})
        examples = folder / "examples"
        readme = (examples / "README.md").read_text("utf-8")
        [command] = re.findall(r"`(x86_64-w64-mingw32-g\+\+ [^`]* check\.cpp [^`]*)`", readme)
        subprocess.run([*command.split(), "-o", self.folder / "check.exe"], cwd=examples, check=True)
        for page in folder.rglob("*.md"):
            for target, anchor in LINK.findall(page.read_text("utf-8")):
                if ":" not in target:
                    file = page.parent / target if target else page
                    self.assertTrue(file.exists(), f"{page}: {target}")
                    headings = re.findall(r"^#+ (.*)", file.read_text("utf-8"), re.MULTILINE) if anchor else []
                    anchors = {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings}
                    self.assertLessEqual({anchor} - {""}, anchors, f"{page}: {target}#{anchor}")

    def test_links_out_of_the_archive_become_plain_text_and_broken_ones_are_refused(self):
        names = {"README.md", "docs/service.md"}
        for page, text, expected in (("README.md", "[a](docs/service.md#b)", "[a](docs/service.md#b)"),
                                     ("docs/service.md", "[a](../README.md)", "[a](../README.md)"),
                                     ("docs/service.md", "[a](#b), [c](https://d.example)", "[a](#b), [c](https://d.example)"),
                                     ("docs/service.md", "[a](architecture.md#b), [c](../server)", "a, c")):
            self.assertEqual(documents.linked(page, text, names), expected)
        for target in ("gone.md", "../docs/gone.md", "../../README.md", "service"):
            with self.subTest(target), self.assertRaisesRegex(documents.BrokenLink, re.escape(f"docs/service.md: [a]({target})")):
                documents.linked("docs/service.md", f"[a]({target})", names)

    def test_installers_never_restart_the_machine_and_have_the_published_codes(self):
        manifest = yaml.safe_load(NOW["winget/Keldane.Detection.installer.yaml"].read_text())
        self.assertEqual(manifest["ExpectedReturnCodes"],
                         [{"InstallerReturnCode": 3010, "ReturnResponse": "rebootRequiredToFinish"}])
        for codes, installer in zip(published(NOW["Detection-4.5.1-x64.zip"])["packages"], manifest["Installers"], strict=True):
            path = NOW[codes["package"]]
            properties = dict(exported(path, "Property"))
            self.assertEqual((codes["productCode"], codes["upgradeCode"]),
                             (properties["ProductCode"], properties["UpgradeCode"]))
            self.assertEqual(properties["REBOOT"], "ReallySuppress")
            digest = hashlib.sha256(path.read_bytes()).hexdigest().upper()
            self.assertEqual((codes["productCode"], path.name, digest), (
                installer["ProductCode"], installer["InstallerUrl"].rpartition("/")[2], installer["InstallerSha256"]))
            [entry] = installer["AppsAndFeaturesEntries"]
            self.assertEqual((entry["UpgradeCode"], entry["DisplayName"]), (codes["upgradeCode"], codes["displayName"]))

    def test_winget_manifests_name_one_package_and_the_archives_script_has_no_gaps(self):
        manifests = [yaml.safe_load(path.read_text()) for name, path in NOW.items() if name.startswith("winget/")]
        self.assertEqual({manifest["ManifestType"] for manifest in manifests}, {"version", "defaultLocale", "installer"})
        self.assertEqual({(manifest["PackageIdentifier"], manifest["PackageVersion"]) for manifest in manifests},
                         {("Keldane.Detection", "4.5.1")})
        detect = (self.extract(NOW["Detection-4.5.1-x64.zip"]) / "fleet" / "detect.ps1").read_text()
        self.assertNotRegex(detect, r"@\w+@")

    def test_documented_options_reach_an_installation_that_a_person_consents_to(self):
        options = re.findall(r"`… ([A-Z]+)=[^`]*`(, for all users only)?", (ROOT / "docs" / "deployment.md").read_text("utf-8"))
        self.assertEqual(len(options), 8)
        for kind, names in (("", [name for name, _ in options]), ("-user", [name for name, rest in options if not rest])):
            path = NOW[f"Detection-4.5.1-x64{kind}.msi"]
            secure = set(dict(exported(path, "Property"))["SecureCustomProperties"].split(";"))
            kept = {name for name, _ in exported(path, "AppSearch")}  # found before the person is asked
            self.assertEqual(kept, {"KEPT" + name for name in names})
            upgraded = {name for row in exported(path, "Upgrade") for name in row[-1:]}
            self.assertEqual(secure, {*names, *kept, *upgraded}, path.name)

    def test_another_vendors_packages_are_products_of_their_own(self):
        for name in ("Detection.dll", "kel.exe", "check.exe"):
            vendor = [text.encode("utf-16-le") for text in ("Keldane", "A&B Co.")]
            (self.folder / name).write_bytes((DLL.parent / name).read_bytes().replace(*vendor))
        made = package(self.folder / "made", "--version", "4.5.1", "--headers", DLL.parent / "control", folder=self.folder)
        ours, theirs = (published(packages["Detection-4.5.1-x64.zip"])["packages"] for packages in (NOW, made))
        self.assertEqual([codes["displayName"] for codes in theirs], ["A&B Co. Detection", "A&B Co. Detection (user)"])
        [manifest] = (yaml.safe_load(path.read_text()) for name, path in made.items() if name.endswith(".locale.en-US.yaml"))
        self.assertEqual((manifest["PackageIdentifier"], manifest["Publisher"]), ("ABCo.Detection", "A&B Co."))
        for kind in ("upgradeCode", "productCode", "file"):
            self.assertEqual(len({codes[kind] for codes in (*ours, *theirs)}), 4, kind)
        for codes in ours:
            components = [{row[1] for row in exported(packages[codes["package"]], "Component")} for packages in (NOW, made)]
            self.assertEqual(set.intersection(*components), set(), codes["package"])

    def test_programs_and_installers_name_their_vendor_and_have_the_icon_in_all_sizes(self):
        icon = (ROOT / "packaging" / "Detection.ico").read_bytes()
        images = [struct.unpack_from("<BBBBHHII", icon, 6 + 16 * number) for number in range(icon[4])]
        self.assertLessEqual({16, 24, 32, 48, 0}, {image[0] for image in images})  # 0 stands for 256
        for name in ("Detection.dll", "kel.exe", "check.exe"):
            content = (DLL.parent / name).read_bytes()
            self.assertRegex(resource_text(content, "LegalCopyright"), r"^Copyright .*\d{4} Keldane$")
            if name != "Detection.dll":
                for image in images:
                    self.assertTrue(icon[image[7]:image[7] + image[6]] in content, f"{name} has no icon of {image[0]} pixels")
        for kind in ("", "-user"):
            path = NOW[f"Detection-4.5.1-x64{kind}.msi"]
            stored = subprocess.run(["msiinfo", "extract", path, "Icon." + dict(exported(path, "Property"))["ARPPRODUCTICON"]],
                                    check=True, capture_output=True).stdout
            self.assertTrue(stored == icon, f"{path.name}: the entry has another icon")

    def test_the_policy_templates_have_the_form_and_the_texts_that_they_use(self):
        subprocess.run(["xmllint", "--noout", "--relaxng", POLICIES / "policies.rng", POLICIES / "Keldane.admx",
                        POLICIES / "en-US" / "Keldane.adml"], check=True, stderr=subprocess.DEVNULL)
        template = (POLICIES / "Keldane.admx").read_text("utf-8")
        texts = ElementTree.parse(POLICIES / "en-US" / "Keldane.adml").getroot()
        for kind in ("string", "presentation"):
            self.assertEqual(set(re.findall(rf"\$\({kind}\.(\w+)\)", template)),
                             {text.get("id") for text in texts.iter(POLICY + kind)})
        self.assertEqual(set(re.findall(r'<(?:text|decimal) id="(\w+)"', template)),
                         {box.get("refId") for box in texts.iter() if box.get("refId")})

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
        archive = self.extract(signed["Detection-4.5.1-x64.zip"])
        signed = {name: path for name, path in signed.items() if path.suffix in (".msi", ".cab")}
        signed |= {name: archive / name for name in ("Detection.dll", "kel.exe", "check.exe")}
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
