"""The kit for a real Windows machine, run under Wine to its end with some of the unit tests."""

import contextlib
import getpass
import json
import re
import socket
import subprocess
import sys
import unittest
from pathlib import Path
from tempfile import TemporaryDirectory
from zipfile import ZipFile

from harness import DLL, ROOT, windows_path, wine

SOME_TESTS = ("Kit.ReadsItsTables:Version.PacksItsFieldsAndKeepsItsText:Comparison.FollowsTheTable:"
              "Control.ReportsItsSafetyOptions")  # of each of the four programs


def machine_secrets():
    """What names this machine's user and devices, with what it is. Addresses of hardware are written in several ways."""
    found = []
    for link in json.loads(subprocess.run(["ip", "-json", "address"], check=True, capture_output=True).stdout):
        mac = link.get("address", "")
        found += [("an address of hardware", mac.replace(":", mark)) for mark in (":", "-", "") if mac != "00:00:00:00:00:00"]
        found += [("an address", entry["local"]) for entry in link["addr_info"]]
    for pattern in ("sys/class/dmi/id/*serial", "sys/class/dmi/id/product_uuid", "sys/block/*/serial", "etc/machine-id"):
        with contextlib.suppress(OSError):
            found += [(str(path), path.read_text().strip()) for path in Path("/").glob(pattern)]
    found += [("a volume's id", path.name) for path in Path("/dev/disk/by-uuid").glob("*")]
    for what, command in (("the volume's serial number", ("cmd", "/c", "vol", "c:")),
                          ("the system's id", ("reg", "query", r"HKLM\Software\Microsoft\Cryptography", "/v", "MachineGuid"))):
        [serial] = re.findall(r"\b[0-9a-fA-F]{4}(?:[0-9a-fA-F]{4})?-[0-9a-fA-F-]{4,}", wine(*command).output)
        found += [(what, serial), (what, serial.replace("-", ""))]
    return [("the user's name", f"\\{getpass.getuser()}\\"), *((what, text) for what, text in found if len(text) > 5)]


class Kit(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(TemporaryDirectory()))
        packages = cls.folder / "packages"
        subprocess.run([sys.executable, ROOT / "tools" / "packaging", "--output", packages], check=True,
                       stdout=subprocess.DEVNULL)
        cls.make("", packages).check_returncode()
        subprocess.run(["python3", "-m", "zipfile", "-e", cls.folder / "Detection-kit.zip", cls.folder], check=True)
        wine("regsvr32", "/u", "/s", windows_path(DLL))  # which other tests leave registered
        cls.ran = cls.verify("result", "--tests", SOME_TESTS)
        cls.rows = cls.read("result")

    @classmethod
    def make(cls, output, packages):
        return subprocess.run([ROOT / "scripts" / "windows_kit.sh", "--built", cls.folder / output, packages], text=True,
                              capture_output=True)

    @classmethod
    def verify(cls, output, *arguments):
        return wine("cmd", "/c", windows_path(cls.folder / "Detection-kit" / "verify.cmd"), "--output",
                    windows_path(cls.folder / output), *arguments)

    @classmethod
    def read(cls, output):
        rows = json.loads((cls.folder / output / "result.json").read_text("utf-8"))["rows"]
        return {f"{row['part']}: {row['name']}": row for row in rows}

    def test_it_runs_to_its_end_with_nothing_wrong(self):
        self.assertEqual({name: row for name, row in self.rows.items() if row["state"] == "wrong"}, {})
        self.assertEqual(self.ran.code, 0, self.ran.output)
        for name in ("Steps: 64-bit script host", "Steps: removal of this user's registration",
                     "Steps: installation for this user", "Steps: removal of this user's package",
                     "Steps: installation", "Steps: 64-bit script host, installed", "Steps: repair",
                     "Steps: no registration is left", "Steps: the control gets a verdict from the responder",
                     "Values beside the system's tools: 71061 processor: name, wmi", "Unit tests: Kit.ReadsItsTables",
                     "Unit tests: Control.ReportsItsSafetyOptions", "Unit tests: Comparison.FollowsTheTable",
                     "Recording: played by the unit tests, this machine's recording gives its values"):
            self.assertEqual(self.rows[name]["state"], "ok", name)
        self.assertGreater(self.rows["Times: first Detect"]["seconds"], 0)
        self.assertGreater(self.rows["Times: detector CPU"]["seconds"], 0)

    def test_it_names_what_wine_lacks(self):
        for name, reason in (("Steps: HTML application", "needs windows"), ("Steps: PowerShell", "needs powershell"),
                             ("Steps: the script host of this user creates the control", "needs limited"),
                             ("Values beside the system's tools: 73452 firmware: a TPM is there, powershell", "no PowerShell")):
            self.assertEqual(self.rows[name]["state"], "not here", name)
            self.assertIn(reason, self.rows[name]["found"], name)

    def test_a_falsified_value_is_wrong(self):
        report = self.folder / "false.json"
        self.assertEqual(wine(self.folder / "Detection-kit" / "kel.exe", "report", windows_path(report)).code, 0)
        content = json.loads(report.read_text("utf-8"))
        for value in content["values"]:
            if value["id"] in (71061, 71063):
                value["value"] = {71061: "Another processor", 71063: "1.0 MB"}[value["id"]]
        report.write_text(json.dumps(content), "utf-8")
        self.assertEqual(self.verify("false", "--facts", windows_path(report)).code, 1)
        wrong = [name.partition(": ")[2] for name, row in self.read("false").items() if row["state"] == "wrong"]
        self.assertEqual(wrong, ["71061 processor: name, wmi", "71061 processor: name, dxdiag",
                                 "71063 memory: total physical memory, wmi"])

    def test_a_run_that_breaks_off_leaves_nothing(self):
        ran = self.verify("broken", "--facts", "C:\\missing.json")
        self.assertEqual(ran.code, 2, ran.output)
        self.assertEqual(list((self.folder / "broken").iterdir()), [])

    def test_it_is_made_of_tracked_files_alone(self):
        private = ROOT / "kit" / "answers" / "private.txt"
        self.addCleanup(private.unlink)
        private.write_text("not tracked", "utf-8")
        made = self.make("plain", self.folder / "none")
        self.assertIn(f"There are no packages in {self.folder / 'none'}", made.stdout)
        with ZipFile(self.folder / "plain" / "Detection-kit.zip") as kit:
            names = kit.namelist()
        self.assertIn("Detection-kit/answers/answers.tsv", names)
        self.assertNotIn("Detection-kit/answers/private.txt", names)

    def test_its_packages_have_its_dll(self):
        changed = self.folder / "Changed.dll"
        changed.write_bytes(DLL.read_bytes() + b"\0" * 8)
        packages = self.folder / "old"
        subprocess.run([sys.executable, ROOT / "tools" / "packaging", "--dll", changed, "--output", packages], check=True,
                       stdout=subprocess.DEVNULL)
        made = self.make("mixed", packages)
        self.assertEqual((made.returncode, made.stderr.count("\n")), (1, 1), made.stderr)
        self.assertIn("has another Detection.dll than the kit", made.stderr)

    def test_nothing_that_it_leaves_names_a_person_or_the_machine(self):
        left = sorted(path.name for path in (self.folder / "result").iterdir())
        self.assertEqual(left, ["recording.txt", "result.html", "result.json"])
        secrets = machine_secrets()
        for name in left:
            text = (self.folder / "result" / name).read_text("utf-8").lower()
            self.assertNotRegex(text, rf"\b{re.escape(socket.gethostname().lower())}\b", f"{name} has the machine's name")
            for kind, secret in secrets:
                self.assertNotIn(secret.lower(), text, f"{name} has {kind}")
