"""What the development service has for itself: files, texts of errors, requirements that are read at each request."""

from deployed import INFORMATION, LIST, REPORT, UPLOAD, Client, analysis
from harness import API_KEY, ServiceTest


class Service(Client, ServiceTest):
    def test_reports_are_files_whose_names_no_session_chooses(self):
        self.assertEqual(self.ask("POST", UPLOAD, REPORT.format("../..\\x:é"))[0], 200)
        self.assertEqual([path.parent for path in self.folder.rglob("*.xml")], [self.folder / "sessions"])
        escaped = REPORT.format("other").replace("<", "&lt;")
        self.assertEqual(self.ask("POST", INFORMATION, f"<SystemInformation><Data>{escaped}</Data></SystemInformation>")[0], 200)
        self.assertEqual(len([*self.folder.rglob("*.xml")]), 2)

    def test_errors_tell_what_is_wrong(self):
        self.require("r")
        (self.folder / "bad.json").write_text('{"title": "T", "requirements": [{"id": "x"}]}')
        for verb, path, body, status, text in (
                ("GET", f"{LIST}?refid=no&apikey={API_KEY}", "", 404, "not known"),
                ("GET", f"{LIST}?refid=bad&apikey={API_KEY}", "", 500, "malformed"),
                ("GET", f"{LIST}?refid=r&apikey=x", "", 403, "key"), ("GET", "/", "", 404, "no such request"),
                ("POST", UPLOAD, "<groups>", 400, "no XML"), ("POST", UPLOAD, "<groups/>", 400, "no session"),
                ("POST", UPLOAD, "<!DOCTYPE x><groups/>", 400, "Declarations"),
                ("POST", "/service/Analysis/r", analysis("never"), 404, "was uploaded")):
            with self.subTest(f"{path} {body}"):
                with self.assertLogs("analysis_service", "WARNING"):
                    answer = self.ask(verb, path, body)
                self.assertEqual(answer[0], status)
                self.assertIn(text, answer[1].decode())
        self.service.requirements = None
        with self.assertLogs("analysis_service", "ERROR"):
            self.assertEqual(self.ask("POST", "/service/Analysis/r", analysis("s"))[0], 500)

    def test_it_listens_on_loopback_only(self):
        self.assertEqual(self.service.server_address[0], "127.0.0.1")
