"""What the development service has for itself: files, texts of errors, requirements that are read at each request."""

from deployed import INFORMATION, LIST, REPORT, UPLOAD, Client
from harness import API_KEY, ServiceTest


class Service(Client, ServiceTest):
    def test_reports_are_files_whose_names_no_session_chooses(self):
        self.assertEqual(self.ask("POST", UPLOAD, REPORT.format("../..\\x:é"))[0], 200)
        self.assertEqual([path.parent for path in self.folder.rglob("*.xml")], [self.folder / "sessions"])
        escaped = REPORT.format("other").replace("<", "&lt;")
        self.assertEqual(self.ask("POST", INFORMATION, f"<SystemInformation><Data>{escaped}</Data></SystemInformation>")[0], 200)
        self.assertEqual(len([*self.folder.rglob("*.xml")]), 2)

    def test_requirements_that_cannot_be_read_are_the_services_fault(self):
        (self.folder / "bad.json").write_text('{"title": "T", "requirements": [{"id": "x"}]}')
        with self.assertLogs("analysis_service", "WARNING"):
            status, text = self.ask("GET", f"{LIST}?refid=bad&apikey={API_KEY}")
        self.assertEqual(status, 500)
        self.assertIn(b"malformed", text)

    def test_it_listens_on_loopback_only(self):
        self.assertEqual(self.service.server_address[0], "127.0.0.1")
