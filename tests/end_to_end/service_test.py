"""The local analysis service: comparisons, verdicts, and requests that are wrong."""

import http.client
import socket
import unittest

from harness import API_KEY, ServiceTest
from requirements import IDENTIFIERS
from verdict import compare

REPORT = ('<groups><group index="0" id="71424"><value>{0}</value></group>'
          '<group index="0" id="1"><value>8.0 GB</value></group></groups>  ')


def analysis(session, message_format="xml"):
    return (f"<System><SessionID>{session}</SessionID><ItemID>i</ItemID><UserID/>"
            f"<Format>{message_format}</Format><Schema>1</Schema></System>")


class Comparisons(unittest.TestCase):
    def test_values_compare_as_what_they_are(self):
        for comparison, found, needed, result in (
                ("at least version", "6.1.7601", "6.1", "pass"), ("at least version", "10.0", "9.9", "pass"),
                ("at least version", "6.1", "6.1.0.0", "pass"), ("at least version", "6.1", "6.2", "fail"),
                ("at least version", "9.0C", "9", "unknown"), ("at least version", "9" * 5000, "9", "unknown"),
                ("at least", "8.0 GB", "4096 MB", "pass"),
                ("at least", "1023.0 MB", "1 GB", "fail"), ("at least", "2.4 GHz", "2000 MHz", "pass"),
                ("at least", "1024.0 Kbps", "1 Mbps", "pass"), ("at least", "4", "2", "pass"),
                ("at least", "1080x1920", "1280x720", "pass"), ("at least", "1279x9000", "1280x720", "pass"),
                ("at least", "9000x719", "1280x720", "fail"), ("at least", "4 GB", "1280x720", "unknown"),
                ("at least", "0x720", "1280x720", "unknown"),
                ("at least", "many", "2", "unknown"), ("at most", "3", "2", "fail"), ("equals", "Intel", "intel", "pass"),
                ("contains", "Microsoft Windows 7", "windows", "pass"), ("contains", "Linux", "windows", "fail"),
                ("yes", "Yes", "", "pass"), ("yes", "No", "", "fail"), ("no", "No", "", "pass"),
                ("no", None, "", "unknown"), ("contains", "  ", "", "unknown")):
            with self.subTest(f"{found} {comparison} {needed}"):
                self.assertEqual(compare(comparison, found, needed), result)


class Requests(ServiceTest):
    def setUp(self):
        super().setUp()
        self.require("r", (1, "M", "at least", "4 GB"))
        (self.folder / "bad.json").write_text('{"title": "T", "requirements": [{"id": "x"}]}')

    def ask(self, verb, path, body=None, headers={}):
        connection = http.client.HTTPConnection(self.address, timeout=10)
        self.addCleanup(connection.close)
        connection.request(verb, path, body, headers)
        answer = connection.getresponse()
        return answer.status, answer.read().decode("utf-8")

    def test_a_report_is_kept_and_judged(self):
        self.assertEqual(self.ask("GET", f"/Data/Service.svc/Group/list?refid=r&apikey={API_KEY}"),
                         (200, "|".join(map(str, IDENTIFIERS + [1]))))
        session = "../..\\x:é"
        self.assertEqual(self.ask("POST", f"/Data/Service.svc/upload?apikey={API_KEY}",
                                  REPORT.format(session).encode())[0], 200)
        self.assertEqual([path.parent for path in self.folder.rglob("*.xml")], [self.folder / "sessions"])
        escaped = REPORT.format("other").replace("<", "&lt;").encode()
        self.assertEqual(self.ask("POST", "/SystemInformation/?refid=r&sessid=s",
                                  b"<SystemInformation><Data>" + escaped + b"</Data></SystemInformation>")[0], 200)
        self.assertEqual(len([*self.folder.rglob("*.xml")]), 2)
        page = self.ask("POST", "/service/Analysis/r", analysis(session, "html").encode())[1]
        self.assertIn('<td data-label="Found">8.0 GB</td><td><span class="mark">✓ Meets</span>', page)
        passes, fails, lacks = (1, "", "any"), (1, "", "at most", "4 GB"), (2, "", "any")
        for total, *lines in (("pass", passes), ("fail", passes, fails, lacks), ("unknown", lacks, passes), ("unknown",)):
            self.require("total", *lines)
            answer = self.ask("POST", "/service/Analysis/total", analysis(session).encode())[1]
            self.assertIn(f'<analysis result="{total}"', answer, lines)

    def test_it_listens_on_loopback_only(self):
        self.assertEqual(self.service.server_address[0], "127.0.0.1")

    def test_wrong_requests_get_a_clear_error_and_the_service_goes_on(self):
        upload = f"/Data/Service.svc/upload?apikey={API_KEY}"
        for verb, path, body, status, text in (
                ("GET", f"/Data/Service.svc/Group/list?refid=no&apikey={API_KEY}", None, 404, "not known"),
                ("GET", f"/Data/Service.svc/Group/list?refid=../r&apikey={API_KEY}", None, 404, "not known"),
                ("GET", f"/Data/Service.svc/Group/list?refid=bad&apikey={API_KEY}", None, 500, "malformed"),
                ("GET", "/Data/Service.svc/Group/list?refid=r&apikey=x", None, 403, "key"),
                ("POST", upload, "<groups>", 400, "no XML"), ("POST", upload, b"\xff", 400, "no XML"),
                ("POST", upload, "<x/>", 400, "no report"), ("POST", upload, "<groups/>", 400, "no session"),
                ("POST", upload, "<!DOCTYPE x><groups/>", 400, "Declarations"),
                ("POST", upload, '<groups><group index="x" id="1"/></groups>', 400, "no number"),
                ("POST", "/service/Analysis/r", analysis("never"), 404, "was uploaded"),
                ("POST", "/service/Analysis/no", analysis("never"), 404, "not known"),
                ("POST", "/SystemInformation/?refid=r&sessid=s", "<SystemInformation/>", 400, "no system information"),
                ("GET", "/", None, 404, "no such request")):
            with self.subTest(f"{path} {body}"):
                with self.assertLogs("analysis_service", "WARNING"):
                    answer = self.ask(verb, path, body)
                self.assertEqual(answer[0], status)
                self.assertIn(text, answer[1])

    def test_its_own_failures_are_told_and_a_refused_body_is_no_request(self):
        self.service.requirements = None
        with self.assertLogs("analysis_service", "ERROR"):
            self.assertEqual(self.ask("POST", "/service/Analysis/r", analysis("s"))[0], 500)
        with socket.create_connection(self.service.server_address, 10) as connection:
            connection.sendall(b"POST / HTTP/1.1\r\nContent-Length: x\r\n\r\nGET / HTTP/1.1\r\n\r\n")
            answers = b"".join(iter(lambda: connection.recv(4096), b""))
        self.assertEqual((answers[:12], answers.count(b"HTTP/1.1 ")), (b"HTTP/1.1 400", 1))
