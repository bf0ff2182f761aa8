"""The check's page in a real browser: with a control's answer, and without a control beside the deployed service. Leaves
pictures in build/page/ for people to check."""

import base64
import contextlib
import functools
import http.server
import json
import re
import shutil
import threading
import time
import unittest
from pathlib import Path

from administration import AdminTest, report
from check_test import CHECK, CLOSE, press, start
from deployed import UPLOAD, DeployedTest, analysis
from harness import DLL, EXAMPLES, PATIENCE, ROOT, make_prefix, show_display, wine
from webdriver import Browser

WINDOWS, LINUX, IPHONE, MAC, ANDROID = (  # a browser's agent and platform on each system
    (f"Mozilla/5.0 ({system}) AppleWebKit/537.36 (KHTML, like Gecko) Safari/537.36", platform) for system, platform in (
        ("Windows NT 10.0; Win64; x64", "Win32"), ("X11; Linux x86_64", "Linux x86_64"),
        ("iPhone; CPU iPhone OS 17_0 like Mac OS X", "iPhone"), ("Macintosh; Intel Mac OS X 10_15_7", "MacIntel"),
        ("Linux; Android 10; K", "Linux armv8l")))
VERDICT = re.sub("\n *", "", (Path(__file__).parent / "verdict.xml").read_text("ascii"))
UUID = r"[\da-f]{8}-[\da-f]{4}-4[\da-f]{3}-[89ab][\da-f]{3}-[\da-f]{12}"
NOT_YET = (404, "application/problem+json", "{}")


class Site(http.server.SimpleHTTPRequestHandler):
    """The page's files, and below /v1/ an answer in the place of the service's."""

    answer = NOT_YET
    times = []  # of the questions

    def do_GET(self):
        if not self.path.startswith("/v1/"):
            return super().do_GET()
        self.times.append(time.monotonic())
        status, kind, text = self.answer
        with contextlib.suppress(OSError):  # the page may be gone
            self.send_response(status)
            self.send_header("Content-Type", kind)
            self.end_headers()
            self.wfile.write(text.replace("SESSION", self.path.rsplit("/", 1)[1]).encode())

    def end_headers(self):
        self.send_header("Cache-Control", "no-store")  # a file that changed within a second looks unchanged
        super().end_headers()

    def log_message(self, *_):
        pass


class PageTest(DeployedTest):
    """Has a site with the page, and a browser."""

    options = ()  # of the browser

    def setUp(self):
        super().setUp()
        self.site = ROOT / "build" / "page"
        shutil.copytree(EXAMPLES, self.site, dirs_exist_ok=True)
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Site, directory=self.site))
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        threading.Thread(target=server.serve_forever, kwargs={"poll_interval": 0.02}, daemon=True).start()
        self.origin = f"http://127.0.0.1:{server.server_address[1]}"
        self.browser = self.start_browser()

    def start_browser(self):
        return Browser(self, *self.options)

    def write_page(self, name, service="", answer=None, state="answered", **edits):
        """Writes the page under that name, with a control that answers, or without one; `edits` change the script's numbers."""
        page = (EXAMPLES / "check.html").read_text("utf-8").replace("https://analysis.keldane.example", service)
        script = (EXAMPLES / "check_page.js").read_text("utf-8")
        for number, value in edits.items():
            script, count = re.subn(rf"(?<=\b{number} = )[^,;]+", str(value), script)
            self.assertEqual(count, 1, number)
        if answer is not None:
            page = page.replace("</object>", f"""</object><script>
                control.Analysis = function () {{ return {json.dumps(answer)}; }};
                control.Value = function (id) {{ return id == "73390" ? {json.dumps(state)} : ""; }};</script>""")
        (self.site / "check_page.js").write_text(script, "utf-8")
        (self.site / f"{name}.html").write_text(page, "utf-8")

    def show(self, name, service="", system=WINDOWS, **options):
        """Writes that page, and opens it on that system."""
        self.write_page(name, service, **options)
        self.browser.command("Emulation.setUserAgentOverride", dict(zip(("userAgent", "platform"), system)))
        self.browser.go(f"{self.origin}/{name}.html")
        self.name = name

    def open_installed(self):
        """Does what a click on the link to the installed program does, once the page has prepared it."""
        script = "return document.getElementById('installed').getAttribute('href') || ''"
        self.browser.await_text("kel-check:", script=script)
        self.browser.run("document.getElementById('installed').onclick()")

    def metric(self, name):
        page = self.ask("GET", "/metrics", address=self.admin)[1].decode("ascii")
        return int(re.search(rf"^{re.escape(name)} (\d+)$", page, re.MULTILINE)[1])

    def shown(self, text):
        """The page's rows, and its title, total, note and offer, None where hidden, once it shows the text."""
        self.browser.await_text(text)
        for dark in (False, True):
            self.browser.resize(900, dark)
            picture = self.browser.ask("GET", "/screenshot", None)
            (self.site / f"{self.name}{'-dark' * dark}.png").write_bytes(base64.b64decode(picture))
        return self.browser.run("""
            const rows = document.querySelectorAll("tbody tr");
            return [Array.from(rows, (row) => Array.from(row.cells, (cell) => cell.innerText)),
                    ...["title", "total", "note", "offer"].map((id) => document.getElementById(id))
                        .map((element) => element.offsetParent && element.innerText)];""")


class WithAControl(PageTest):
    def test_it_shows_the_verdict_as_text_failures_first(self):
        self.show("verdict", answer=VERDICT)
        rows, title, total, note, offer = self.shown("No: this machine")
        self.assertEqual(rows, [["Not portable", "no", "Yes", "\u2717 Does not meet\nUse <b>another</b> machine."],
                                ["Graphics\nRecommended", "at least 6 GB, or at least version 12.0", "4.0 GB; 11.1",
                                 "\u2717 Does not meet"],
                                ["Bandwidth", "at least 1 Mbps", "\u2013", "? Not known"],
                                ["Memory", "at least 2 GB", "7.8 GB", "\u2713 Meets"]])
        self.assertEqual((title, total, note, offer), ("T", "No: this machine does not meet all requirements.",
                                                       "1 of 3 is not met. 1 of 3 could not be determined.", None))
        self.assertIn('id="total" class="total fail" role="status"', self.browser.ask("GET", "/source"))

    def test_an_answer_that_is_not_a_verdict_is_not_shown(self):
        for name, answer in (("none", ""), ("refusal", "Referrer 'unknown' is not known."), ("truncated", VERDICT[:-1]),
                             ("other result", VERDICT.replace('"fail"', '"maybe"', 1)),
                             ("other line", VERDICT.replace('requirement result="unknown"', 'requirement result="maybe"')),
                             ("markup", VERDICT.replace("<needed>no</needed>", "<b><i>no</i></b>")),
                             ("another item", VERDICT.replace('item="requirements"', 'item="i"')),
                             ("error page", f"<html><h1>502 Bad Gateway</h1>{VERDICT}</html>")):
            with self.subTest(name):
                self.show("no-verdict", answer=answer)
                self.assertEqual(self.shown("gave no verdict"), [[], "Will it run here?", "The analysis service gave no verdict.",
                                                                 "Please try again later.", None])

    def test_it_says_why_there_is_no_verdict(self):
        for state, total, note in (
                ("not reached: 12007", "The analysis service was not reached.", "Error 12007."),
                ("unknown product", "The analysis service does not know this product.", "inform the owner"),
                ("another host answered", "Another host answered in the place of the analysis service.", "log in"),
                ("cut", "The answer of the analysis service was cut off.", "Please try again.")):
            with self.subTest(state):
                self.show("trouble", answer="<html>", state=state)
                rows, _, *shown, _ = self.shown(total)
                self.assertEqual((rows, shown[0]), ([], total))
                self.assertIn(note, shown[1])

    def test_the_verdict_of_the_service_copies_its_note_for_support(self):
        line = {"label": "Memory", "id": 71063, "comparison": "at least", "needed": "1 MB"}
        (self.folder / "demo.json").write_text(json.dumps({"title": "T", "requirements": [line]}))
        self.command("import", self.folder)
        self.assertEqual(self.ask("POST", UPLOAD, report("5f0c9a3e-1111-4111-8111-111111111111", v71063="8.0 GB"))[0], 200)
        page = self.ask("POST", "/service/Analysis/demo", analysis("5f0c9a3e-1111-4111-8111-111111111111", "html"))[1]
        (self.site / "note.html").write_bytes(page)
        self.browser.command("Browser.grantPermissions", {
            "permissions": ["clipboardReadWrite", "clipboardSanitizedWrite"], "origin": self.origin})
        self.browser.go(f"{self.origin}/note.html")
        self.browser.click(".support button")
        self.browser.await_text("Copied", ".support")
        copied = self.browser.run("return navigator.clipboard.readText()")
        self.assertRegex(copied, r"^5F0C9A3E \u00b7 20\d\d-.* UTC \u00b7 demo, version 1$")


@unittest.skipUnless(shutil.which("Xvfb"), "there is no Xvfb")
class WithTheProgram(PageTest, AdminTest):
    """The whole way: the page, the program under Wine on a virtual display, the service, the administration."""

    @classmethod
    def setUpClass(cls):
        show_display(cls)
        make_prefix(cls)
        wine("reg", "add", r"HKLM\Software\Policies\Keldane", "/v", "ServiceHost", "/d", "firm.example", "/f")

    def test_two_clicks_bring_the_verdict_to_the_page_and_the_report_to_the_operator(self):
        built = DLL.parent / "check.exe"
        self.stop()
        self.start("--check-program", str(built))
        lines = [{"label": "Memory", "id": 71063, "comparison": "at least", "needed": "1 MB"},
                 {"label": {"en": "System", "de": "System <b>"}, "id": 73400, "comparison": "at least version", "needed": "99.0",
                  "needed text": "Windows 99 or later", "advice": "Update."}]
        (self.folder / "demo.json").write_text(json.dumps({"title": "The <game>", "pages": [self.origin], "requirements": lines}))
        self.command("import", self.folder)
        self.browser.command("Browser.setDownloadBehavior", {"behavior": "allow", "downloadPath": str(self.folder)})
        self.show("offer", f"http://{self.address}")
        self.assertIn("Check this computer", self.shown("has not been checked yet")[-1])
        address = self.browser.run("return document.getElementById('download').href")
        session = re.fullmatch(rf"http://{self.address}/v1/check/demo/({UUID})", address)[1]
        self.assertEqual(self.browser.run("return document.getElementById('installed').href"), f"kel-check:demo/{session}")
        self.browser.click("#download")
        self.shown("Waiting for the program")
        program = self.folder / f"check.demo.{session}.exe"
        self.await_answer(program.exists, True)
        self.assertTrue(program.read_bytes() == built.read_bytes(), "the download is not the program")
        process = start(self, program, f"http://{self.address}")
        consent = press(CHECK)
        self.assertIn("Check this computer for ?The <game>??", consent)
        self.assertIn("firm.example", consent)  # the host of the policy
        self.name = "answer"
        rows, *shown = self.shown("does not meet all")
        self.assertEqual([row[:2] for row in rows], [["System", "Windows 99 or later"], ["Memory", "at least 1 MB"]])
        self.assertEqual([row[3] for row in rows], ["\u2717 Does not meet\nUpdate.", "\u2713 Meets"])
        self.assertEqual(shown, ["The <game>", "No: this machine does not meet all requirements.", "1 of 2 is not met.", None])
        self.assertIn("System: needs Windows 99 or later", press(CLOSE))
        self.assertEqual(process.wait(PATIENCE), 1)
        self.assertEqual(self.browser.run("return document.cookie"), "")
        for name in ("downloads_total", 's_total{step="begun"}', 's_total{step="finished"}', 's_total{step="shown"}'):
            self.assertEqual(self.metric(f"kel_check{'' if name[0] == 's' else '_'}{name}"), 1, name)
        self.assertNotIn(session, self.log_text())
        operator = self.page("/reports/1", self.log_in()).data
        for text in (session, rows[0][2], rows[1][2]):
            self.assertIn(text, operator)


class WithoutAControl(PageTest):
    def test_an_answer_of_anyone_in_between_is_not_a_verdict(self):
        line = {"result": "pass", "label": "L", "needed": "n", "found": "f"}
        verdict = {"product": "demo", "session": "SESSION", "result": "pass", "title": "T", "requirements": [line]}
        kind = "application/json"
        for name, answer in (
                ("a page", (200, "text/html", "<h1>Log in</h1>")), ("another type", (200, "text/plain", json.dumps(verdict))),
                *((change, (200, kind, json.dumps(verdict | {change: value}))) for change, value in (
                    ("product", "other"), ("session", "0"), ("result", "toString"), ("title", 1), ("requirements", "x"),
                    ("requirements", [line | {"result": "maybe"}]), ("requirements", [line | {"label": {}}]),
                    ("requirements", [None]))), ("not JSON", (200, kind, "{")), ("null", (200, kind, "null"))):
            with self.subTest(name, answer=answer):
                Site.answer = answer
                self.show("between", PAUSE=10, MAX_PAUSE=20)
                self.open_installed()
                rows, _, total, note, _ = self.shown("Another host answered")
                self.assertEqual((rows, total), ([], "Waiting for the program\u2026"))
                Site.answer = (200, kind, json.dumps(verdict))
                self.assertEqual(self.shown("Yes: this machine")[0], [["L", "n", "f", "\u2713 Meets"]])

    def test_it_waits_while_the_service_does_not_answer_and_gives_up_after_a_time(self):
        for name, answer in (("busy", (429, "application/problem+json", "{}")), ("fault", (503, "text/html", ""))):
            with self.subTest(name):
                Site.answer = answer
                self.show("busy", PAUSE=10, MAX_PAUSE=20)
                self.open_installed()
                self.shown("This page keeps asking.")
        Site.answer = NOT_YET
        self.show("late", PAUSE=10, MAX_PAUSE=20, PATIENCE=100)
        self.open_installed()
        offer = self.shown("There is no answer after ten minutes.")[-1]
        self.assertIn("Check this computer", offer)
        self.show("patient")
        Site.times.clear()
        self.open_installed()
        self.await_answer(lambda: len(Site.times) > 2, True)
        for earlier, later in zip(Site.times, Site.times[1:]):
            self.assertGreater(later - earlier, 1.9, "more than one question in two seconds")

    def test_on_another_system_it_offers_nothing(self):
        for name, system in (("linux", LINUX), ("iphone", IPHONE), ("mac", MAC), ("android", ANDROID)):
            with self.subTest(name):
                self.show(name, system=system)
                self.assertEqual(self.shown("needs Windows"), [
                    [], "Will it run here?", "This product needs Windows.",
                    "To check a computer with Windows, open this page on it.", None])

    def test_without_script_the_page_says_so(self):
        self.browser.command("Emulation.setScriptExecutionDisabled", {"value": True})
        self.show("no-script")
        tree = self.browser.command("DOM.getDocument", {"depth": -1})
        self.assertIn("This check needs JavaScript.", json.dumps(tree))

    def test_a_session_is_random_where_the_browser_makes_no_uuids(self):
        self.show("insecure")
        sessions = self.browser.run("""
            return fetch("check_page.js").then((file) => file.text()).then((script) => {
                const text = script.match(/function makeSession[^]*?\\n  }/)[0] + "; return makeSession();";
                const make = new Function("window", text), old = {getRandomValues: (bytes) => crypto.getRandomValues(bytes)};
                return [make({crypto: old}), make({msCrypto: old}), make({})];
            });""")
        self.assertRegex(sessions[0], f"^{UUID}$")
        self.assertNotEqual(sessions[0], sessions[1])
        self.assertIsNone(sessions[2])


class Limits(DeployedTest):
    def test_the_service_bounds_downloads_as_a_whole(self):
        (self.folder / "check.exe").write_bytes(bytes(64_000_000))
        (self.folder / "r.json").write_text('{"title": "T", "requirements": []}')
        self.command("import", self.folder)
        self.stop()
        self.start("--check-program", str(self.folder / "check.exe"), "--check-downloads", "2")
        path = "/v1/check/r/00000000-0000-4000-8000-000000000000"
        slow = [self.connect(f"GET {path} HTTP/1.1\r\nHost: x\r\n\r\n".encode()) for _ in range(2)]
        for connection in slow:
            self.assertEqual(connection.recv(12), b"HTTP/1.1 200")
        self.assertEqual(self.ask("GET", path), (429, b'{"title":"Too many downloads are in progress.","status":429}'))
        memory = re.search(r"VmRSS:\s*(\d+)", Path(f"/proc/{self.process.pid}/status").read_text("ascii"))
        self.assertLess(int(memory[1]), 120_000, "KB: a download has a copy of the program")
        slow[0].close()
        self.await_answer(lambda: self.ask("GET", path)[0], 200)

    def test_a_program_that_cannot_be_read_is_not_served(self):
        self.stop()
        for name in ("none", "empty"):
            (self.folder / "empty").touch()
            log = self.command("serve", "--check-program", str(self.folder / name), code=1)
            self.assertIn(f"'check_program': {self.folder / name} cannot be read, or is empty", log)

    def test_questions_have_a_rate(self):
        self.stop()
        self.start("--check-questions", "1")
        data = b"GET /v1/verdicts/r/00000000-0000-4000-8000-000000000000 HTTP/1.1\r\nHost: x\r\n\r\n"
        start, answers = time.monotonic(), b""
        while b" 429 " not in answers and time.monotonic() < start + PATIENCE:
            answers = self.talk(data * 99 + data.replace(b"Host", b"Connection: close\r\nHost"))
        self.assertRegex(answers, rb"(?s) 404 .* 429 .*\r\nRetry-After: 2\r\n")


if __name__ == "__main__":
    unittest.main()
