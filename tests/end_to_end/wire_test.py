"""What the control puts on the wire, and what it makes of the answers."""

import subprocess
import time
import urllib.request

from harness import API_KEY, NO_NETWORK, ControlTest
from verdict import quantity

GROUP_LIST = f"GET /Data/Service.svc/Group/list?refid=demo&apikey={API_KEY} HTTP/1.1"
UPLOAD = f"POST /Data/Service.svc/upload?apikey={API_KEY} HTTP/1.1"
ANALYSIS = "POST /service/Analysis/demo HTTP/1.1"


class Wire(ControlTest):
    def test_an_analysis_takes_three_exact_requests(self):
        output = self.run_script('control.ReferrerID = "demo"; control.SessionID = "s1"; control.UserID = "u>1";'
                                 'WScript.Echo(control.Analysis("item", "xml", "2.0"));')
        self.assertRegex(output[0], r'^<analysis result="pass" item="item" schema="2.0"><title>T&lt;</title>'
                                    r'<requirement result="pass"><label>Memory</label><needed>at least 1 MB</needed>')
        self.assertEqual(self.lines(), [GROUP_LIST, UPLOAD, ANALYSIS])
        group_list, upload, analysis = self.service.requests
        self.assertEqual(group_list["line"].split()[1].split("/")[2], "analysis.keldane.example:80")
        headers = dict(group_list["headers"])
        self.assertEqual((headers["User-Agent"], headers["Accept"]), ("KEL", "text/*"))
        self.assertEqual({"Content-Type", "Content-Length"} & set(headers), set())
        for request in (upload, analysis):
            content = sorted(header for header in request["headers"] if header[0].startswith("Content-"))
            self.assertEqual(content, [("Content-Length", str(len(request["body"]))),
                                       ("Content-Type", "application/xml; charset=utf-8")])
        self.assertRegex(upload["body"], r'^<groups><group index="0" id="71424"><value>s1</value></group>'
                                         r'<group index="0" id="71218"><value>demo</value></group>'
                                         r'<group index="0" id="71206"><value>u&gt;1</value></group>.*</groups>  $')
        self.assertEqual(analysis["body"], "<System><SessionID>s1</SessionID><ItemID>item</ItemID><UserID>u>1</UserID>"
                                           "<Format>xml</Format><Schema>2.0</Schema></System>")

    def test_uploads_again_only_for_a_session_set_by_its_property(self):
        self.run_script('control.ReferrerID = "demo"; control.Detect(); control.Detect();'
                        'control.Configure("<session_id>other</session_id>"); control.Detect();')
        self.assertEqual(self.lines(), [GROUP_LIST, UPLOAD])
        self.service.requests.clear()
        self.run_script('control.ReferrerID = "demo"; control.Detect(); control.SessionID = "new";'
                        'control.ReferrerID = "demo"; control.Detect(); control.SessionID = ""; control.Detect();')
        self.assertEqual(self.lines(), [GROUP_LIST, UPLOAD, UPLOAD])
        self.assertIn("<value>new</value>", self.service.requests[2]["body"])

    def test_a_referrer_set_after_the_first_read_changes_what_the_service_is_told_and_not_what_it_wants(self):
        self.require("late", (71094, "Battery", "no"))
        self.run_script('control.ReferrerID = "demo"; control.Detect(); control.ReferrerID = "late"; control.SessionID = "s2";'
                        'WScript.Echo(control.Analysis("i", "xml", "1"));')
        self.assertEqual(self.lines(), [GROUP_LIST, UPLOAD, UPLOAD, ANALYSIS.replace("demo", "late")])
        self.assertIn('id="71218"><value>late<', self.service.requests[2]["body"])
        self.assertIn('id="71063"', self.service.requests[2]["body"])

    def test_writes_only_wanted_groups_though_all_are_detected(self):
        output = self.run_script(
            'control.ReferrerID = "demo"; control.Configure("<groups><group id=\'5\' index=\'1\'><value>second</value></group>'
            '<group id=\'5\'><value>v</value></group><group id=\'6\' index=\'1\'><value>second</value></group></groups>");'
            'WScript.Echo(control.Value("71294") != "");'  # only WMI knows it
            'WScript.Echo(control.Value("5") + control.Value("6"));'
            'var report = control.SysInfo; WScript.Echo(report.indexOf("71294") + " " + report.indexOf(\'id="5"\'));'
            'WScript.Echo(report.indexOf(\'id="71063"\') > 0); WScript.Echo(control.System("x") == report);')
        self.assertEqual(output, ["-1", "v", "-1 -1", "-1", "-1"])

    def test_no_identifier_adds_a_header_or_a_request(self):
        self.run_script('control.ReferrerID = "a\\r\\nX-Evil: 1\\r\\n\\r\\nGET /x y\\t\\x7f"; control.Detect();')
        self.assertEqual(self.lines()[0], "GET /Data/Service.svc/Group/list?refid=a%0D%0AX-Evil:%201%0D%0A%0D%0A"
                                          f"GET%20/x%20y%09%7F&apikey={API_KEY} HTTP/1.1")
        self.assertNotIn("X-Evil", str([request["headers"] for request in self.service.requests]))
        self.assertEqual(len(self.lines()), 2)

    def test_text_that_is_not_ascii_goes_out_and_comes_back_whole(self):
        output = self.run_script('control.ReferrerID = "demo"; control.UserID = "\\u00e9\\u20ac";'
                                 'var answer = control.Analysis("\\u20ac\\ud83d\\ude00", "xml", "");'
                                 'WScript.Echo(control.UserID.charCodeAt(1) + " " + control.UserID.length);'
                                 'WScript.Echo(answer.indexOf("item=\\"\\u20ac\\ud83d\\ude00\\"") > 0);')
        self.assertEqual(output, ["8364 2", "-1"])
        self.assertIn("\u00e9\u20ac", self.service.requests[1]["body"])
        self.assertIn("<ItemID>\u20ac\U0001f600</ItemID>", self.service.requests[2]["body"])


class Bandwidth(ControlTest):
    def setUp(self):
        super().setUp()
        self.require("net", (71069, "B", "at least", "1"))

    SCRIPT = 'control.ReferrerID = "net"; WScript.Echo(control.Value("71069"));'

    def test_measures_what_an_independent_download_measures(self):
        start = time.monotonic()
        with urllib.request.urlopen(f"http://{self.address}/global/tests/test_2.bin", timeout=20) as answer:
            size = len(answer.read())
        independent = size * 8 / (time.monotonic() - start)
        self.logs = True
        for fault in (None, "late-file"):  # the time before the first byte does not count
            with self.subTest(fault):
                self.service.requests.clear()
                self.service.faults["/global/tests/test_2.bin"] = fault
                measured = quantity(self.run_script(self.SCRIPT)[0])
                self.assertAlmostEqual(measured / independent, 1, delta=0.2)
                self.assertRegex(self.log, r"downloadRate = (\d+ bps)\D(.|\n)*Network speed is: \1 bps\D")
                self.assertEqual(self.lines().count("GET /global/tests/test_2.bin HTTP/1.1"), 1)
                self.assertRegex(self.service.requests[1]["line"], "^GET http://content.keldane.example[:/]")
                headers = dict(self.service.requests[1]["headers"])
                self.assertEqual((headers["User-Agent"], headers["Pragma"]), ("KEL", "no-cache"))


SHOW = ('control.ReferrerID = "demo"; WScript.Echo("[" + control.Analysis("i", "xml", "1") + "]");'
        'WScript.Echo(control.Value("71063") != ""); WScript.Echo(control.SysInfo.indexOf("<groups>"));'
        'WScript.Echo(control.Value("71424") == control.SessionID);')


class Faults(ControlTest):
    def test_a_service_that_misbehaves_costs_its_answer_only(self):
        self.logs = True
        for fault, answer, reports_memory, line in (
                ("close", r"", "0", "Can't get data."), ("empty", r"", "0", "Status: 200"),
                ("404", r"nothing here", "0", "Status: 404"), ("500", r"broken", "0", "Status: 500"),
                ("cut", r"71063\|", "-1", "Result: 71063|"), ("slow", r"71063\|71094", "-1", "Result: 71063|71094"),
                ("invalid-utf8", r"71063\|\?+\|71094", "-1", "Result: 71063|")):
            with self.subTest(fault):
                self.service.misbehave = fault
                output = self.run_script(SHOW + 'WScript.Echo(control.SysInfo.indexOf("71063") > 0);')
                self.assertRegex(output[0], rf"^\[{answer}\]$")
                self.assertEqual(output[1:], ["-1", "0", "-1", reports_memory])
                self.assertIn(line, self.log)

    def test_ten_megabytes_are_read_whole(self):
        self.service.misbehave = "huge"
        output = self.run_script('control.ReferrerID = "demo"; WScript.Echo(control.Analysis("i", "xml", "1").length);')
        self.assertEqual(output, [str(6 + 10 * 1024 * 1024)])

    def test_no_service_at_all(self):
        self.service.shutdown()
        self.service.server_close()
        for proxy in (True, False):
            with self.subTest(proxy):
                if not proxy and subprocess.run([*NO_NETWORK, "true"], stderr=subprocess.DEVNULL, check=False).returncode:
                    self.skipTest("This machine gives no empty network.")
                self.assertEqual(self.run_script(SHOW, proxy=proxy), ["[]", "-1", "0", "-1"])
