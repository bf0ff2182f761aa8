"""What the control sends, and how it handles the answers."""

import os
import re
import time
import urllib.request
from unittest import mock

from harness import API_KEY, PATIENCE, ControlTest

GROUP_LIST = f"GET /Data/Service.svc/Group/list?refid=demo&apikey={API_KEY} HTTP/1.1"
UPLOAD = f"POST /Data/Service.svc/upload?apikey={API_KEY} HTTP/1.1"
ANALYSIS = "POST /service/Analysis/demo HTTP/1.1"
FILE = "/global/tests/test_2.bin"
UNITS = {"bps": 1, "Kbps": 1024, "Mbps": 1024 ** 2, "Gbps": 1024 ** 3}


class Wire(ControlTest):
    def run_as(self, referrer, text):
        return self.run_script(f'control.ReferrerID = "{referrer}"; {text}')

    def test_an_analysis_takes_three_exact_requests(self):
        output = self.run_as("demo", r'control.SessionID = "s1"; control.UserID = "u>\u20ac";'
                             r'var answer = control.Analysis("\u20ac\ud83d\ude00", "xml", "2.0"); WScript.Echo(answer);'
                             r'WScript.Echo(answer.indexOf("item=\"\u20ac\ud83d\ude00\"") > 0);')
        self.assertRegex(output[0], r'^<analysis result="pass" item=".*" schema="2.0"><title>T&lt;</title>'
                                    r'<requirement result="pass"><label>Memory</label><needed>at least 1 MB</needed>')
        self.assertEqual(output[1], "-1")
        self.assertEqual(self.lines(), [GROUP_LIST, UPLOAD, ANALYSIS])
        group_list, upload, analysis = self.service.requests
        self.assertEqual(group_list["line"].split()[1].split("/")[2], "analysis.keldane.example:80")
        headers = dict(group_list["headers"])
        self.assertEqual((headers["User-Agent"], headers["Accept"]), ("KEL", "text/*"))
        self.assertEqual({"Content-Type", "Content-Length"} & set(headers), set())
        for request in (upload, analysis):
            content = sorted(header for header in request["headers"] if header[0].startswith("Content-"))
            self.assertEqual(content, [("Content-Length", str(len(request["body"].encode()))),
                                       ("Content-Type", "application/xml; charset=utf-8")])
        self.assertRegex(upload["body"], '^<groups><group index="0" id="71424"><value>s1</value></group>'
                                         '<group index="0" id="71218"><value>demo</value></group>'
                                         '<group index="0" id="71206"><value>u&gt;\u20ac</value></group>.*</groups>  $')
        self.assertEqual(analysis["body"], "<System><SessionID>s1</SessionID><ItemID>\u20ac\U0001f600</ItemID>"
                                           "<UserID>u>\u20ac</UserID><Format>xml</Format><Schema>2.0</Schema></System>")

    def test_a_character_that_the_code_page_makes_a_line_break_adds_no_request(self):
        with mock.patch.dict(os.environ, {"LC_ALL": "th_TH.UTF-8"}):  # 874: a note is a carriage return
            self.run_as(r"\u0e01\u266a\u25d9\u266a\u25d9GET\u25cb/x", 'var answer = control.Analysis("i", "xml", "1");')
        encoded = "\u00a1%0D%0A%0D%0AGET%09/x"
        self.assertEqual(self.lines(), [GROUP_LIST.replace("demo", encoded), UPLOAD, ANALYSIS.replace("demo", encoded)])

    def test_uploads_again_only_for_a_session_set_by_its_property(self):
        self.require("late", (71094, "Battery", "no"))
        self.run_as("demo", 'control.Detect(); control.Detect();'
                    'control.Configure("<session_id>other</session_id>"); control.Detect();'
                    'control.ReferrerID = "late"; control.SessionID = "new"; control.Detect();'
                    'control.SessionID = ""; WScript.Echo(control.Analysis("i", "xml", "1"));')
        self.assertEqual(self.lines(), [GROUP_LIST, UPLOAD, GROUP_LIST.replace("demo", "late"), UPLOAD,
                                        ANALYSIS.replace("demo", "late")])
        for text in ('id="71424"><value>new<', 'id="71218"><value>late<', 'id="71094"'):
            self.assertIn(text, self.service.requests[3]["body"])

    def test_uploads_only_wanted_groups_though_all_are_detected(self):
        output = self.run_as(
            "demo", 'control.Configure("<groups><group id=\'5\' index=\'1\'><value>second</value></group>'
            '<group id=\'5\'><value>v</value></group></groups>");'
            'WScript.Echo(control.Value("71294") != "");'  # only WMI knows it
            'WScript.Echo(control.Value("5") + control.Value("71072"));'
            'var report = control.SysInfo; WScript.Echo(report.indexOf("71294") + " " + report.indexOf(\'id="5"\'));'
            'WScript.Echo(report.indexOf(\'id="71063"\') > 0 && control.System("x") == report);')
        self.assertRegex("|".join(output), r"^-1\|v\d+\.\d+\.\d+\|-1 -1\|-1$")

    def test_measures_what_an_independent_download_measures(self):
        self.require("net", (71069, "B", "at least", "1"))
        start = time.monotonic()
        with urllib.request.urlopen(f"http://{self.address}{FILE}", timeout=PATIENCE) as answer:
            size = len(answer.read())
        independent = size * 8 / (time.monotonic() - start)
        self.logs = True
        for self.service.faults[FILE] in (None, "late-file"):  # the time before the first byte does not count
            with self.subTest(self.service.faults):
                self.service.requests.clear()
                [measured] = self.run_as("net", 'WScript.Echo(control.Value("71069"));')
                number, unit = measured.split()
                self.assertAlmostEqual(float(number) * UNITS[unit] / independent, 1, delta=0.2)
                self.assertRegex(self.log, r"TRACE \| [. ]*downloadRate = (\d+ bps)\D(.|\n)*Network speed is: \1 bps\D")
                self.assertEqual(self.lines().count(f"GET {FILE} HTTP/1.1"), 1)
                request = self.service.requests[1]
                self.assertRegex(request["line"], "^GET http://content.keldane.example[:/]")
                self.assertLessEqual({("User-Agent", "KEL"), ("Pragma", "no-cache")}, {*map(tuple, request["headers"])})

    def test_a_page_reads_how_the_last_exchange_ended(self):
        self.require("demo", (71063, "Memory", "any"), (73390, "Exchange", "any"))
        faults = {"demo": None, "nobody": None, "half": "cut", "gone": "close", "far": "redirect-host", "guest": "log-in-page"}
        self.service.faults = {f"/service/Analysis/{referrer}": fault for referrer, fault in faults.items()}
        states = self.run_script("".join(
            f'control.ReferrerID = "{referrer}"; var answer = control.Analysis("i", "xml", "1");'
            'WScript.Echo(control.Value("73390"));'
            for referrer in faults))
        self.assertEqual(dict(zip(faults, states)), {
            "demo": "answered", "nobody": "unknown product", "half": "cut", "gone": "cut", "far": "another host answered",
            "guest": "another host answered"})
        self.assertNotIn("73390", self.service.requests[1]["body"])

    def test_the_log_begins_with_the_process_and_has_no_key_and_few_warnings(self):
        self.logs = True
        self.run_as("demo", 'var answer = control.Analysis("i", "xml", "1");')
        self.assertRegex(self.log, r"^[\d:]{8}  000000  TRACE \| \d{4}-\d\d-\d\d, process \d+ C:.*cscript\.exe, "
                                   r"version [\d.]+ Z:.*Detection\.dll\n")
        # That a device's key lacks a value is a warning by contract, although it is normal.
        prescribed = "Can't handle Registry value for: "
        warnings = [line for line in re.findall(r"  (?:WARN|ERR)  .*", self.log) if prescribed not in line]
        self.assertLessEqual(len(warnings), 2, warnings)
        self.assertIn("Request: POST analysis.keldane.example/Data/Service.svc/upload, proxy 127.0.0.1:", self.log)
        self.assertNotIn(API_KEY, self.log)
