"""The behaviour that the control relies on in an analysis service."""

import http.client
import re
import unittest
from html import escape

from deployed import INFORMATION, LIST, REPORT, UPLOAD, DeployedTest, analysis
from harness import API_KEY, PATIENCE

WANTED = f"{LIST}?refid=r&apikey={API_KEY}"


class Contract(DeployedTest):
    def setUp(self):
        super().setUp()
        self.require("r", (71063, "M", "at least", "4 GB"))

    def results(self, referrer, session):
        answer = self.ask("POST", f"/service/Analysis/{referrer}", analysis(session))[1].decode()
        return re.findall(r'<(?:analysis|requirement) result="(\w+)"', answer)

    def test_a_report_is_kept_and_judged(self):
        session = "../..\\x:é"
        for target in (WANTED, f"http://analysis.keldane.example:80{WANTED}", WANTED.replace("=r", "=%72")):
            self.assertEqual(self.ask("GET", target), (200, b"71424|71218|71206|71063"))
        self.assertEqual(self.ask("POST", UPLOAD, REPORT.format(session)), (200, b"OK"))
        escaped = escape(REPORT.format("other").replace("8.0 GB", "2.0 GB"))
        self.assertEqual(self.ask("POST", INFORMATION, f"<SystemInformation><Data>{escaped}</Data></SystemInformation>")[0], 200)
        self.assertEqual((self.results("r", session), self.results("r", "other")), (["pass"] * 2, ["fail"] * 2))
        passes, fails, lacks = (71063, "", "any"), (71063, "", "at most", "4 GB"), (71060, "", "any")
        for total, *lines in (("pass", passes), ("fail", passes, fails, lacks), ("unknown", lacks, passes), ("unknown",)):
            self.require("total", *lines)  # the newest requirements count
            self.assertEqual(self.results("total", session)[0], total, lines)
        self.ask("POST", UPLOAD, REPORT.format(session).replace("8.0 GB", "2.0 GB"))  # so does the newest report
        self.assertEqual(self.results("r", session), ["fail"] * 2)

    def test_characters_that_xml_forbids_are_replaced(self):
        self.require("r", (71060, "M", "equals", "a\ufffdb"))
        for number, form in enumerate((b"\0", b"\x01", b"\x1f", b"&#0;", b"&#31;", b"&#x0001F;", b"\xed\xa0\x80", b"&#xD800;",
                                       b"&#57343;", b"\xef\xbf\xbe", b"\xef\xbf\xbf", b"&#xFFFE;", b"&#65535;")):
            session = b"%d\x02" % number  # the page's text, in both requests
            report = REPORT.format("SESSION").replace("71063", "71060")
            report = report.encode().replace(b"SESSION", session).replace(b"8.0 GB", b"a" + form + b"b")
            escaped = escape(report.decode("latin-1")).encode("latin-1")
            inner = b"<SystemInformation><Data>%b</Data></SystemInformation>" % escaped
            for path, body in (UPLOAD, report), (INFORMATION, inner):
                with self.subTest(f"{path} {form}"):
                    self.assertEqual(self.ask("POST", path, body)[0], 200)
                    answer = self.ask("POST", "/service/Analysis/r", analysis("SESSION").encode().replace(b"SESSION", session))
                    self.assertIn('<found>a\ufffdb</found>', answer[1].decode())
        self.ask("POST", UPLOAD, REPORT.format("other").replace("8.0 GB", "\x7f\u0085\ufffd&#9;&#x10FFFF;"))
        self.require("r", (71063, "M", "any"))
        self.assertIn("<found>\x7f\u0085\ufffd\t\U0010ffff</found>",
                      self.ask("POST", "/service/Analysis/r", analysis("other"))[1].decode())

    def test_a_wrong_length_gets_an_error_and_the_service_goes_on(self):
        for length in (b"x", b"-1", b"99999999999999999999", b"1e3"):
            answers = self.talk(b"POST / HTTP/1.1\r\nContent-Length: " + length + b"\r\n\r\nGET / HTTP/1.1\r\n\r\n")
            self.assertEqual((answers[:12], answers.count(b"HTTP/1.1 ")), (b"HTTP/1.1 400", 1))  # the body is not a request
        self.assertEqual(self.ask("GET", WANTED)[0], 200)

    def test_one_connection_serves_request_after_request(self):
        connection = http.client.HTTPConnection(self.address, timeout=PATIENCE)
        self.addCleanup(connection.close)
        for verb, path, body in (("POST", UPLOAD, REPORT.format("s")), ("GET", "/", ""), ("GET", "/global/tests/test_2.bin", ""),
                                 ("POST", "/service/Analysis/r", analysis("s"))):
            connection.request(verb, path, body)
            answer = connection.getresponse()
            length = len(answer.read())
            self.assertEqual(int(answer.headers["Content-Length"]), length)
            self.assertEqual(length == 1_000_000, "test_2" in path)


if __name__ == "__main__":
    unittest.main()
