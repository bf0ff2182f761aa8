"""The development service's own behaviour; the rest is that of the deployed service, which it starts."""

from deployed import LIST, REPORT, UPLOAD, Client, analysis
from harness import API_KEY, ServiceTest

WANTED = f"{LIST}?refid=r&apikey={API_KEY}"


class Service(Client, ServiceTest):
    def test_changed_requirements_apply_to_the_next_request(self):
        self.assertEqual(self.ask("GET", WANTED), (404, b""))
        for group in 71060, 71063:
            self.require("r", (group, "M", "any"))
            self.assertEqual(self.ask("GET", WANTED), (200, b"71424|71218|71206|%d" % group))

    def test_requests_are_recorded_and_forwarded_unchanged(self):
        self.require("r", (71063, "M", "at least", "4 GB"))
        body = REPORT.format("\u00e9")
        self.assertEqual(self.ask("POST", UPLOAD, body), (200, b"OK"))
        self.assertEqual(self.service.requests[0]["body"], body)
        self.assertIn(b'result="pass"', self.ask("POST", "/service/Analysis/r", analysis("\u00e9"))[1])

    def test_unreadable_requirements_are_a_server_error(self):
        (self.folder / "bad.json").write_text('{"title": "T", "requirements": [{"id": "x"}]}')
        with self.assertLogs("analysis_service", "WARNING"):
            status, text = self.ask("GET", WANTED)
        self.assertEqual(status, 500)
        self.assertIn(b"requirement 1: it has no 'label'", text)

    def test_it_listens_on_loopback_only(self):
        self.assertEqual(self.service.server_address[0], "127.0.0.1")
