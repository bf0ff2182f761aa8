"""kel.exe beside the control: the same values and verdicts; alone, without a service; its files and its exit codes."""

import contextlib
import csv
import fcntl
import getpass
import json
import os
import pty
import re
import select
import shutil
import struct
import subprocess
import tempfile
import termios
from html import escape
from pathlib import Path

from deployed import UPLOAD, Client, analysis
from harness import (DLL, NO_SERVICE, PATIENCE, ROOT, ControlTest, ServiceTest, has_begun, make_prefix, windows_path,
                     wine, write_requirements)

KEL = DLL.parent / "kel.exe"
# What changes from one second to the next, or is the program's own.
MOVING = {71382: "available memory", 72606: "free space", 72612: "of all volumes", 73500: "of the profile's volume",
          73003: "the host program", 73004: "its version"}
BANDWIDTH = 71069
IDENTIFIERS = (71424, 71218, 71206)
PLAIN = (71063, "Memory", "at least", "1 MB")


def kel(*arguments, proxy=NO_SERVICE, debug="-all", program=KEL):
    """The exit code of kel.exe, and what it writes to its output and to standard error, as pipes and files get it; without what
    Wine itself says on the latter, unless it is asked to."""
    for _ in range(2):
        with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as error:
            code = subprocess.run(["wine", program, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=output, stderr=error,
                                  env=os.environ | {"http_proxy": proxy, "WINEDEBUG": debug}, timeout=PATIENCE).returncode
            texts = []
            for file in (output, error):
                file.seek(0)
                texts.append(file.read().decode("utf-8", "replace" if debug != "-all" else "strict"))
        if has_begun(code, texts[0]):
            break
    if debug == "-all":
        texts[1] = re.sub(r"(?m)^(wine: |ALSA lib ).*\n", "", texts[1])
    return code, *texts


def console(*arguments):
    """What kel.exe writes to a console of 60 columns, with the terminal's own codes."""
    screen, terminal = pty.openpty()
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 40, 60, 0, 0))
    with subprocess.Popen(["wine", KEL, *map(str, arguments)], stdin=terminal, stdout=terminal, stderr=terminal) as process:
        os.close(terminal)
        written = b""
        with contextlib.suppress(OSError):  # at its end
            while select.select([screen], [], [], PATIENCE)[0] and (more := os.read(screen, 65536)):
                written += more
        process.kill()
    os.close(screen)
    return written.decode("utf-8")


def values(facts):
    return {(fact["id"], fact["index"]): fact["value"] for fact in facts}


class Program(Client, ControlTest):
    def kel(self, *arguments, **options):
        return kel(*arguments, proxy=f"http://{self.address}", **options)

    def test_facts_are_the_values_of_the_controls_report(self):
        with open(ROOT / "catalogue" / "values.tsv", encoding="utf-8", newline="") as file:
            ids = {int(row["id"]) for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE)}
        wine("reg", "add", r"HKCU\Software\Keldane", "/f")  # with this key, a machine keeps its identifier
        self.addCleanup(wine, "reg", "delete", r"HKCU\Software\Keldane", "/f")
        self.require("demo", *((number, "V", "any") for number in sorted(ids - {BANDWIDTH})))
        self.run_script('control.ReferrerID = "demo"; control.Detect();')
        [upload] = [request["body"] for request in self.service.requests if UPLOAD in request["line"]]
        groups = re.findall(r'<group index="(\d+)" id="(\d+)"><value>(.*?)</value></group>', upload, re.DOTALL)
        reported = {(int(number), int(index)): text for index, number, text in groups}
        self.service.requests.clear()
        code, output, _ = self.kel("facts", "--json")
        self.assertEqual((code, self.lines()), (0, []))  # without a question to the service
        found = {key: escape(text, quote=False) for key, text in values(json.loads(output)["values"]).items()}
        self.assertNotIn((BANDWIDTH, 0), found)
        self.assertGreater(len(reported), 200)
        for key in sorted(found.keys() | reported.keys()):
            if key[0] not in MOVING and key[0] not in IDENTIFIERS:
                with self.subTest(f"value {key[0]}[{key[1]}]"):
                    self.assertEqual(found.get(key), reported.get(key))

    def test_check_asks_as_the_control_does_and_shows_its_verdict(self):
        self.require("demo", PLAIN, (71094, "Battery", "no", "", "Unplug <it>."), (99, "Zo\u00eb", "any"),
                     {"label": "Either", "recommended": True, "any of": [
                         {"id": 73400, "comparison": "at least version", "needed": "5"},
                         {"id": 71063, "comparison": "at least", "needed": "9000 TB"}]})
        self.run_script('control.ReferrerID = "demo"; var answer = control.Analysis("requirements", "json", "1.0");')
        lines = self.lines()
        [uploaded] = [request["body"] for request in self.service.requests if UPLOAD in request["line"]]
        session = re.search('id="71424"><value>(.*?)<', uploaded)[1]
        status, verdict = self.ask("POST", "/service/Analysis/demo",
                                   analysis(session, "json").replace("<ItemID>i", "<ItemID>requirements").replace(
                                       "<Schema>1<", "<Schema>1.0<"))
        self.assertEqual(status, 200)
        self.service.requests.clear()
        page = self.folder / "p\u00e4ge.html"
        code, output, _ = self.kel("check", "demo", "--json", "--html", windows_path(page))
        self.assertEqual(self.lines(), lines)
        self.assertEqual(json.loads(output), json.loads(verdict))
        self.assertEqual(code, 2)
        self.assertIn('<th scope="row">Zo\u00eb</th>', page.read_text("utf-8"))
        code, output, _ = self.kel("check", "demo")
        self.assertRegex(output, r"Memory +at least 1 MB +[\d.]+ [GT]B(, sold as \d+ GB)? +pass\r\n")
        self.assertIn("Total: unknown\r\n", output)

    def test_offline_verdicts_are_the_services(self):
        """The cases of the verdict's own tables as one set of requirements and one report, through both."""
        requirements, groups = [], []
        rows = (ROOT / "tests" / "verdict" / "comparisons.txt").read_text("utf-8").splitlines()[1:]
        for number, row in enumerate(rows, 100001):
            comparison, found, needed, *_ = row.split(" | ")
            if not comparison.islower():  # "at least Disk", which the tests of the library alone know
                continue
            requirements.append((number, f"{number}", comparison, needed))
            groups.append((number, 0, found))
        for row in (ROOT / "tests" / "verdict" / "lines.txt").read_text("utf-8").splitlines()[1:]:
            line, found, *_ = row.split(" | ")
            requirements.append({"label": line[:60], **json.loads(line)})
            groups += re.findall(r"(\d+)\[(\d+)\]=([^;]*)", found)
        groups += [(71424, 0, "offline"), (9, 0, "\u6f22" * 3000)]  # more than a buffer of the reader
        report = self.folder / "r\u00e9port.xml"
        report.write_text("<groups>" + "".join(f'<group index="{index}" id="{number}"><value>{escape(text)}\x02</value></group>'
                                               for number, index, text in groups).replace("offline\x02", "offline")
                          + "</groups>  ", "utf-8")
        self.require("cases", *requirements)
        self.assertEqual(self.ask("POST", UPLOAD, report.read_text("utf-8"))[0], 200)
        expected = json.loads(self.ask("POST", "/service/Analysis/cases", analysis("offline", "json"))[1])
        code, output, error = kel("explain", windows_path(report), "--requirements", windows_path(self.folder / "cases.json"),
                                  "--json")
        self.assertEqual((code, error), (1, ""))
        verdict = json.loads(output)
        self.assertGreater(len(verdict["requirements"]), 90)
        for given, wanted in zip(verdict["requirements"], expected["requirements"], strict=True):
            with self.subTest(wanted["label"]):
                self.assertEqual(given, wanted)
        self.assertEqual((verdict["result"], verdict["title"]), (expected["result"], expected["title"]))

    def test_without_a_service_no_socket_is_opened(self):
        write_requirements(self.folder, "own", [PLAIN, (BANDWIDTH, "Bandwidth", "any")])
        sockets = r"trace:(winsock:(WSASocket|WS2_socket|connect|getaddrinfo)|wininet:(HTTP_HttpSendRequest|InternetOpen))"
        code, output, trace = kel("check", "--requirements", windows_path(self.folder / "own.json"), debug="+winsock,+wininet")
        self.assertEqual(code, 2, output)
        self.assertRegex(output, r"Bandwidth +any +\u2013 +unknown")
        self.assertNotRegex(trace, sockets)
        code, _, trace = kel("check", "demo", debug="+winsock,+wininet")
        self.assertEqual(code, 3)
        self.assertRegex(trace, sockets)  # the trace shows one

    def test_a_console_gets_progress_colours_and_its_own_width(self):
        write_requirements(self.folder, "own", [(71063, "Zo\u00eb " + "wide " * 30, "at least", "1 MB"),
                                                (71254, "\u6f22\u5b57" * 30, "at least", "1")])
        arguments = ("check", "--requirements", windows_path(self.folder / "own.json"))
        written = console(*arguments)
        self.assertIn("Reading: processor", written)
        self.assertRegex(written, r"\x1b\[[\d;]*m\s*pass")
        self.assertIn("Zo\u00eb", written)
        self.assertLess(max(map(len, re.findall("(?:wide ?)+", written))), 25)
        wide = max(map(len, re.findall("(?:\u6f22|\u5b57)+", written)))
        self.assertLess(wide, 13)  # of two columns each
        _, output, error = kel(*arguments)
        self.assertEqual((output.count("\x1b"), error), (0, ""))
        self.assertGreater(max(map(len, re.findall("(?:wide ?)+", output))), 25)

    def test_exit_codes_and_what_is_wrong_in_one_line(self):
        folder = self.folder / "files"
        folder.mkdir()
        write_requirements(folder, "fails", [(71063, "Memory", "at least", "9000 TB", "Buy m\u00f6re.")])
        write_requirements(folder, "wrong", [(71063, "Memory", "at least", "many")])
        (folder / "cut.json").write_text('{"kel": 1, "val')
        path = {name: windows_path(folder / name) for name in ("fails.json", "wrong.json", "cut.json", "none.json")}
        for arguments, expected, shown in (
                (("check", "--requirements", path["fails.json"]), 1, "Buy m\u00f6re."),
                (("check", "--requirements", path["wrong.json"]), 3, "requirement 1: 'at least' needs a number"),
                (("explain", path["cut.json"]), 3, "cut off"),
                (("explain", path["none.json"]), 3, "no such file"),
                (("check", "unknown"), 3, "gave no verdict for \"unknown\": unknown product"),
                (("check", "demo", "--service", "nowhere.example"), 0, "Total: pass"),  # the proxy serves every host
                (("facts", "nothing"), 3, "Areas: session, processor"),
                (("nothing",), 3, "kel --help"),
                (("--help",), 0, "Exit codes"),
                (("--version",), 0, "kel 4.5.1.0\nService: analysis.keldane.example")):
            with self.subTest(arguments):
                self.require("demo", PLAIN)
                code, output, error = self.kel(*arguments)
                self.assertEqual(code, expected, output + error)
                self.assertIn(shown, error if code == 3 else output)
                if code == 3:
                    self.assertEqual((output, error.count("\n")), ("", 1))
        self.assertIn("//nowhere.example", " ".join(request["line"] for request in self.service.requests))

    def test_a_support_file_is_written_explained_and_compared(self):
        self.require("demo", PLAIN)
        file, other = self.folder / "f\u00efle.json", self.folder / "other.json"
        code, output, error = self.kel("report", windows_path(file), "--product", "demo")
        self.assertEqual((code, error), (0, ""))
        content = json.loads(file.read_text("utf-8"))
        self.assertEqual((content["product"], content["host"], content["verdict"]["result"]), ("demo", "kel.exe", "pass"))
        self.assertRegex(output, rf"values +{len(content['values'])}, \d+ of them empty")
        log = "\n".join(content["log"])
        self.assertIn("Entering: kel::System::Detect", log)
        self.assertNotRegex(log, rf"(?i)\b{getpass.getuser()}\b")
        content["values"][0]["value"] = "Zo\u00eb \u6f22\u5b57"
        other.write_text(json.dumps(content), "utf-8")
        code, output, _ = kel("explain", windows_path(other))
        self.assertEqual(code, 0)
        self.assertRegex(output, r"71424 +session id +Zo\u00eb \u6f22\u5b57\r\n")
        self.assertRegex(output, r"Memory +at least 1 MB .* pass\r\n")
        self.assertEqual(kel("compare", windows_path(file), windows_path(file))[:2], (0, "All values are the same.\r\n"))
        code, output, _ = kel("compare", windows_path(file), windows_path(other))
        self.assertEqual((code, len(re.findall(r"(?m)^\d{5} ", output))), (1, 1))


class PlantedMachine(ServiceTest):
    """A machine that has serial numbers, addresses and names in the places that are read."""

    @classmethod
    def setUpClass(cls):
        make_prefix(cls)

    def test_a_support_file_has_none_of_the_planted_texts(self):
        self.require("demo", PLAIN)
        home, file = Path(os.environ["WINEPREFIX"], "drive_c", "users", "Planted Person"), self.folder / "support.json"
        home.mkdir()
        for name in ("kel.exe", "chrome.exe"):
            shutil.copy(KEL, home / name)
        wine("reg", "import", windows_path(Path(__file__).parent / "planted.reg"))
        code, output, error = kel("report", windows_path(file), "--product", "demo", proxy=f"http://{self.address}",
                                  program=r"C:\users\Planted Person\kel.exe")
        self.assertEqual((code, error), (0, ""), output)
        text = file.read_text("utf-8").lower()
        for planted in ("planted", "0211223344", "127.0.0.1", getpass.getuser() + "\\"):
            self.assertNotIn(planted, text)
        for shown in ("headset of the desk", "card of the desk", "chrome from app paths", "<path 1>", "proxy <address 1>"):
            self.assertIn(shown, text)  # so the places were read
