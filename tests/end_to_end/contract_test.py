"""The behaviour that the control relies on in an analysis service."""

import http.client
import json
import re
import unittest
from html import escape
from pathlib import Path

from deployed import INFORMATION, LIST, REPORT, UPLOAD, DeployedTest, analysis
from harness import API_KEY, PATIENCE, write_requirements

WANTED = f"{LIST}?refid=r&apikey={API_KEY}"
# Requests that are refused: verb, target, body (a byte may be \x and two digits), status.
ROWS = (Path(__file__).parent / "wrong.txt").read_text("ascii")
for name, meant in ("KEY", API_KEY), ("REPORT", REPORT.format("s")), ("ANALYSIS", analysis("s")):
    ROWS = ROWS.replace(name, meant)
WRONG = [row.encode("ascii").decode("unicode_escape").split(" | ") for row in ROWS.splitlines()]


class Contract(DeployedTest):
    def setUp(self):
        super().setUp()
        self.require("r", (1, "M", "at least", "4 GB"))

    def results(self, referrer, session):
        answer = self.ask("POST", f"/service/Analysis/{referrer}", analysis(session))[1].decode()
        return re.findall(r'<(?:analysis|requirement) result="(\w+)"', answer)

    def test_a_wrong_requirements_file_is_refused_with_the_reason(self):
        write_requirements(self.folder, "r", [(1, "M", "at least", "many")])
        self.assertIn("requirement 1: 'at least' needs a number, with or without a unit, or a resolution, not 'many'",
                      self.command("import", self.folder, code=1))

    def test_a_report_is_kept_and_judged(self):
        session = "../..\\x:é"
        for target in (WANTED, f"http://analysis.keldane.example:80{WANTED}", WANTED.replace("=r", "=%72")):
            self.assertEqual(self.ask("GET", target), (200, b"71424|71218|71206|1"))
        self.assertEqual(self.ask("POST", UPLOAD, REPORT.format(session)), (200, b"OK"))
        escaped = escape(REPORT.format("other").replace("8.0 GB", "2.0 GB"))
        self.assertEqual(self.ask("POST", INFORMATION, f"<SystemInformation><Data>{escaped}</Data></SystemInformation>")[0], 200)
        self.assertEqual((self.results("r", session), self.results("r", "other")), (["pass"] * 2, ["fail"] * 2))
        passes, fails, lacks = (1, "", "any"), (1, "", "at most", "4 GB"), (2, "", "any")
        for total, *lines in (("pass", passes), ("fail", passes, fails, lacks), ("unknown", lacks, passes), ("unknown",)):
            self.require("total", *lines)  # the newest requirements count
            self.assertEqual(self.results("total", session)[0], total, lines)
        self.ask("POST", UPLOAD, REPORT.format(session).replace("8.0 GB", "2.0 GB"))  # so does the newest report
        self.assertEqual(self.results("r", session), ["fail"] * 2)

    def test_characters_that_xml_forbids_are_replaced(self):
        self.require("r", (1, "M", "equals", "a\ufffdb"))
        for number, form in enumerate((b"\0", b"\x01", b"\x1f", b"&#0;", b"&#31;", b"&#x0001F;", b"\xed\xa0\x80", b"&#xD800;",
                                       b"&#57343;", b"\xef\xbf\xbe", b"\xef\xbf\xbf", b"&#xFFFE;", b"&#65535;")):
            session = b"%d\x02" % number  # the page's text, in both requests
            report = REPORT.format("SESSION").encode().replace(b"SESSION", session).replace(b"8.0 GB", b"a" + form + b"b")
            escaped = escape(report.decode("latin-1")).encode("latin-1")
            inner = b"<SystemInformation><Data>%b</Data></SystemInformation>" % escaped
            for path, body in (UPLOAD, report), (INFORMATION, inner):
                with self.subTest(f"{path} {form}"):
                    self.assertEqual(self.ask("POST", path, body)[0], 200)
                    answer = self.ask("POST", "/service/Analysis/r", analysis("SESSION").encode().replace(b"SESSION", session))
                    self.assertIn('<found>a\ufffdb</found>', answer[1].decode())
        self.ask("POST", UPLOAD, REPORT.format("other").replace("8.0 GB", "\x7f\u0085\ufffd&#9;&#x10FFFF;"))
        self.require("r", (1, "M", "any"))
        self.assertIn("<found>\x7f\u0085\ufffd\t\U0010ffff</found>",
                      self.ask("POST", "/service/Analysis/r", analysis("other"))[1].decode())

    def test_a_verdict_has_three_formats(self):
        self.require("f", (1, "M", "at least", "4 GB", "not shown"), (2, "<b>", "equals", "'\"&é", "Do <i>"))
        self.ask("POST", UPLOAD, REPORT.format("s"))
        requests = (analysis("s", name).replace("<ItemID>i", "<ItemID>&quot;é") for name in ("2.0", "HTML", "json"))
        xml, page, data = (self.ask("POST", "/service/Analysis/f", request)[1].decode() for request in requests)
        needed = "equals &#x27;&quot;&amp;é"
        self.assertEqual(xml, '<analysis result="unknown" item="&quot;é" schema="1"><title>T&lt;</title>'
                              '<requirement result="pass"><label>M</label><needed>at least 4 GB</needed><found>8.0 GB</found>'
                              '<advice>not shown</advice></requirement>'
                              f'<requirement result="unknown"><label>&lt;b&gt;</label><needed>{needed}</needed>'
                              '<found></found><advice>Do &lt;i&gt;</advice></requirement></analysis>')
        for row in ('<title>T&lt;</title>\n<style>/* The look', '<p class="total unknown">Result: unknown</p>',
                    '<td data-label="Found">8.0 GB</td><td><span class="mark">✓ Meets</span></td></tr>\n<tr class="unknown">'
                    f'<th scope="row">&lt;b&gt;</th><td data-label="Needed">{needed}</td><td data-label="Found">–</td>'
                    '<td><span class="mark">? Not known</span><span class="advice">Do &lt;i&gt;</span></td></tr>\n</tbody>'):
            self.assertIn(row, page)
        content = json.loads(data)
        self.assertEqual((content["result"], content["item"], content["title"]), ("unknown", '"é', "T<"))
        self.assertEqual(content["requirements"][1], {"result": "unknown", "label": "<b>", "needed": "equals '\"&é", "found": "",
                                                      "advice": "Do <i>"})

    def test_invalid_requests_get_an_error_and_the_service_continues(self):
        for verb, path, body, status in WRONG:
            with self.subTest(f"{verb} {path} {body}"):
                self.assertEqual(self.ask(verb, path, body.encode("latin-1")), (int(status), b""))
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
