"""The local analysis service: comparisons, verdicts, and requests that are wrong."""

import http.client
import socket
from pathlib import Path

from harness import API_KEY, ServiceTest
from verdict import compare

LIST, UPLOAD = "/Data/Service.svc/Group/list", f"/Data/Service.svc/upload?apikey={API_KEY}"
INFORMATION = "/SystemInformation/?refid=r&sessid=s"
REPORT = ('<groups><group index="0" id="71424"><value>{0}</value></group>'
          '<group index="0" id="1"><value>8.0 GB</value></group></groups>  ')


def analysis(session, message_format="xml"):
    return (f"<System><SessionID>{session}</SessionID><ItemID>i</ItemID><UserID/>"
            f"<Format>{message_format}</Format><Schema>1</Schema></System>")


class Service(ServiceTest):
    def setUp(self):
        super().setUp()
        self.require("r", (1, "M", "at least", "4 GB"))

    def ask(self, verb, path, body=""):
        connection = http.client.HTTPConnection(self.address, timeout=10)
        self.addCleanup(connection.close)
        connection.request(verb, path, body.encode())
        answer = connection.getresponse()
        return answer.status, answer.read().decode("utf-8")

    def test_values_compare_as_what_they_are(self):
        for row in (Path(__file__).parent / "comparisons.txt").read_text("ascii").splitlines()[1:]:
            comparison, found, needed, result = row.split(" | ")
            with self.subTest(row):
                self.assertEqual(compare(comparison, found, needed), result)
        self.assertEqual(compare("no", None, ""), "unknown")
        self.assertEqual(compare("at least version", "9" * 5000, "9"), "unknown")

    def test_a_report_is_kept_and_judged(self):
        session = "../..\\x:é"
        self.assertEqual(self.ask("GET", f"{LIST}?refid=r&apikey={API_KEY}"), (200, "71424|71218|71206|1"))
        self.assertEqual(self.ask("POST", UPLOAD, REPORT.format(session))[0], 200)
        self.assertEqual([path.parent for path in self.folder.rglob("*.xml")], [self.folder / "sessions"])
        escaped = REPORT.format("other").replace("<", "&lt;")
        self.assertEqual(self.ask("POST", INFORMATION, f"<SystemInformation><Data>{escaped}</Data></SystemInformation>")[0], 200)
        self.assertEqual(len([*self.folder.rglob("*.xml")]), 2)
        page = self.ask("POST", "/service/Analysis/r", analysis(session, "html"))[1]
        self.assertIn('<td data-label="Found">8.0 GB</td><td><span class="mark">✓ Meets</span>', page)
        passes, fails, lacks = (1, "", "any"), (1, "", "at most", "4 GB"), (2, "", "any")
        for total, *lines in (("pass", passes), ("fail", passes, fails, lacks), ("unknown", lacks, passes), ("unknown",)):
            self.require("total", *lines)
            answer = self.ask("POST", "/service/Analysis/total", analysis(session))[1]
            self.assertIn(f'<analysis result="{total}"', answer, lines)

    def test_wrong_requests_get_a_clear_error_and_the_service_goes_on(self):
        (self.folder / "bad.json").write_text('{"title": "T", "requirements": [{"id": "x"}]}')
        for verb, path, body, status, text in (
                ("GET", f"{LIST}?refid=no&apikey={API_KEY}", "", 404, "not known"),
                ("GET", f"{LIST}?refid=../r&apikey={API_KEY}", "", 404, "not known"),
                ("GET", f"{LIST}?refid=bad&apikey={API_KEY}", "", 500, "malformed"),
                ("GET", f"{LIST}?refid=r&apikey=x", "", 403, "key"), ("GET", "/", "", 404, "no such request"),
                ("POST", UPLOAD, "<groups>", 400, "no XML"), ("POST", UPLOAD, "<groups/>", 400, "no session"),
                ("POST", UPLOAD, "<!DOCTYPE x><groups/>", 400, "Declarations"),
                ("POST", "/service/Analysis/r", analysis("never"), 404, "was uploaded")):
            with self.subTest(f"{path} {body}"):
                with self.assertLogs("analysis_service", "WARNING"):
                    answer = self.ask(verb, path, body)
                self.assertEqual(answer[0], status)
                self.assertIn(text, answer[1])
        self.service.requirements = None
        with self.assertLogs("analysis_service", "ERROR"):
            self.assertEqual(self.ask("POST", "/service/Analysis/r", analysis("s"))[0], 500)
        with socket.create_connection(self.service.server_address, 10) as connection:
            connection.sendall(b"POST / HTTP/1.1\r\nContent-Length: x\r\n\r\nGET / HTTP/1.1\r\n\r\n")
            answers = b"".join(iter(lambda: connection.recv(4096), b""))
        self.assertEqual((answers[:12], answers.count(b"HTTP/1.1 ")), (b"HTTP/1.1 400", 1))  # its body is no request

    def test_it_listens_on_loopback_only(self):
        self.assertEqual(self.service.server_address[0], "127.0.0.1")
