"""What the control may expect of an analysis service: of the development one and of the deployed one alike."""

import http.client
import json
import logging
import re
import unittest
from html import escape
from pathlib import Path

from deployed import INFORMATION, LIST, REPORT, UPLOAD, Client, DeployedTest, analysis
from harness import API_KEY, PATIENCE, ServiceTest

COMPARISONS = [row.split(" | ") for row in (Path(__file__).parent / "comparisons.txt").read_text("utf-8").splitlines()[1:]]
SETS, MACHINES = (part.splitlines() for part in (Path(__file__).parent / "verdicts.txt").read_text("utf-8").split("\n\n"))
REFUSED = [row.split(" | ") for row in (Path(__file__).parent / "refused.txt").read_text("utf-8").splitlines()]
WANTED = f"{LIST}?refid=r&apikey={API_KEY}"
# Requests that are refused: verb, target, body (a byte may be \x and two digits), status.
ROWS = (Path(__file__).parent / "wrong.txt").read_text("ascii")
for name, meant in ("KEY", API_KEY), ("LONG", r"\xc3\xa9" * 513), ("REPORT", REPORT.format("s")), ("ANALYSIS", analysis("s")):
    ROWS = ROWS.replace(name, meant)
WRONG = [row.encode("ascii").decode("unicode_escape").split(" | ") for row in ROWS.splitlines()]


class Contract(Client):
    """Run once for each service."""

    def setUp(self):
        super().setUp()
        self.require("r", (1, "M", "at least", "4 GB"))

    def results(self, referrer, session):
        answer = self.ask("POST", f"/service/Analysis/{referrer}", analysis(session))[1].decode()
        return re.findall(r'<(?:analysis|requirement) result="(\w+)"', answer)

    def test_values_compare_as_what_they_are(self):
        rows = [*COMPARISONS, ("at least version", "9" * 5000, "9", "unknown"), ("contains", "é" * 2049, "é", "unknown"),
                ("contains", "x" + "é" * 2047, "é", "pass")]
        self.require("table", *((number, found[:40], comparison, needed) for number, (comparison, found, needed, _) in
                                enumerate(rows, 1)), (9999, "the report lacks it", "no"))
        values = "".join(f'<group id="{number}"><value>{escape(row[1])}</value></group>' for number, row in enumerate(rows, 1))
        self.ask("POST", UPLOAD, f'<groups><group id="71424"><value>s</value></group>{values}</groups>')
        for row, result in zip((*rows, ("", "", "", "unknown")), self.results("table", "s")[1:], strict=True):
            with self.subTest(row):
                self.assertEqual(result, row[-1])
        answer = self.ask("POST", "/service/Analysis/table", analysis("s"))[1].decode()
        self.assertIn(f"<found>x{'é' * 499}…</found>", answer)  # of a thousand bytes, whole characters

    def test_alternatives_and_recommendations_are_judged(self):
        lines = {name: json.loads(line) for name, line in (row.split(": ", 1) for row in SETS)}
        columns = MACHINES[0].split(" | ")[4:]
        for number, column in enumerate(columns):
            self.require(str(number), *(lines[name] for name in column.split(", ")))
        for row, (*values, found, _, _, _, _, _, _) in ((row, row.split(" | ")) for row in MACHINES[1:]):
            groups = "".join(f'<group id="{group}"><value>{value}</value></group>' for group, value in enumerate(values, 1)
                             if value != "-")
            self.ask("POST", UPLOAD, f'<groups><group id="71424"><value>s</value></group>{groups}</groups>')
            for number, results in enumerate(row.split(" | ")[4:]):
                with self.subTest(f"{columns[number]}: {row}"):
                    self.assertEqual(" ".join(self.results(number, "s")), results)
            for number, expected in ((0, found), (5, values[0])):  # an id that is asked for twice is reported once
                answer = self.ask("POST", f"/service/Analysis/{number}", analysis("s", "json"))[1]
                self.assertEqual(json.loads(answer)["requirements"][0]["found"], expected.replace("-", ""))
        self.assertEqual(self.ask("GET", WANTED.replace("refid=r", "refid=2"))[1], b"71424|71218|71206|1|2|3")

    def test_a_wrong_requirements_file_is_refused_with_the_reason(self):
        either = {"label": "é" * 500, "any of": [{"id": 1, "comparison": "any"}] * 20}
        self.require("r", either, *[(1, "", "any")] * 499)  # as much as there may be
        self.assertEqual(self.ask("GET", WANTED)[1], b"71424|71218|71206|1")
        either["any of"] *= 2
        line = '{"id": 1, "label": "", "comparison": "any"}'
        for text, reason in (*REFUSED, (json.dumps(either), "requirement 2: its 'any of' has 40 entries, not 1 to 20"),
                             (", ".join([line] * 500), "its 'requirements' has 501 entries, not 0 to 500"),
                             (" " * 1024 * 1024, "it is longer than 1048576 bytes")):
            whole = text if '"requirements"' in text or text == "[]" else f'{{"title": "T", "requirements": [{line}, {text}]}}'
            (self.folder / "r.json").write_text(whole.replace("LONG", "x" * 999), "utf-8")
            with self.subTest(text[:100]):
                self.assertIn(reason, self.refusal())

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
            session = b"%d\x02" % number  # the page's own text, in both requests
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

    def test_a_verdict_is_told_in_three_formats(self):
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

    def test_wrong_requests_get_an_error_and_the_service_goes_on(self):
        for verb, path, body, status in WRONG:
            with self.subTest(f"{verb} {path} {body}"):
                answer = self.ask(verb, path, body.encode("latin-1"))
                self.assertEqual((answer[0], bool(answer[1])), (int(status), self.explains))
        for length in (b"x", b"-1", b"99999999999999999999", b"1e3"):
            answers = self.talk(b"POST / HTTP/1.1\r\nContent-Length: " + length + b"\r\n\r\nGET / HTTP/1.1\r\n\r\n")
            self.assertEqual((answers[:12], answers.count(b"HTTP/1.1 ")), (b"HTTP/1.1 400", 1))  # its body is not taken for a request
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


class Development(Contract, ServiceTest):
    explains = True  # its errors have a text

    def setUp(self):
        logging.getLogger("analysis_service").setLevel(logging.CRITICAL)
        self.addCleanup(logging.getLogger("analysis_service").setLevel, logging.NOTSET)
        super().setUp()

    def refusal(self):
        status, body = self.ask("GET", WANTED)
        self.assertEqual(status, 500)
        return body.decode()


class Deployed(Contract, DeployedTest):
    explains = False

    def refusal(self):
        return self.command("import", self.folder, code=1)


if __name__ == "__main__":
    unittest.main()
