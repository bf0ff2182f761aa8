"""The deployed service with clients that take more than their share, and how it ends."""

import contextlib
import re
import subprocess
import sys
import time
import unittest

from deployed import LIST, REPORT, UPLOAD, DeployedTest, analysis
from harness import API_KEY, PATIENCE, ROOT

TEXTS = (71061, 71296, 71385, 71390, 71391, 71389, 71386, 71404, 71392, 71073, 71383, 71294, 71074, 71171, 71170, 71356, 73460,
         73461, 71060, 71388)  # values that are texts
WANTED = f"{LIST}?refid=r&apikey={API_KEY}"
HEAD = f"POST {UPLOAD} HTTP/1.1\r\nHost: x\r\n".encode()


def upload(session):
    report = REPORT.format(session).encode()
    return HEAD + b"Content-Length: %d\r\n\r\n" % len(report) + report


class PressureTest(DeployedTest):
    def metric(self, name):
        page = self.ask("GET", "/metrics", address=self.admin)[1].decode()
        return int(float(re.search(rf"^{re.escape(name)} (\S+)$", page, re.M)[1]))

    def crowd(self, count):
        """The given number of clients, whose uploads the service has received."""
        crowd = [self.connect(upload(f"s{number}")) for number in range(count)]
        self.await_answer(lambda: self.metric('kel_bodies_bytes{endpoint="public"}'), count * len(REPORT.format("s0")))
        return crowd

    def sessions(self):
        return sorted(row[0] for row in self.database.run("SELECT session FROM report"))


class Queues(PressureTest):
    settings = ("--database-connections", "2")  # of which one stays for short reads

    def test_cheap_requests_overtake_waiting_ones_and_long_waits_end(self):
        self.require("r", (71063, "M", "any"))
        self.ask("GET", WANTED)
        with self.database.held("report"):  # both threads wait for it
            start = time.monotonic()
            crowd = self.crowd(5)
            for path, address in (WANTED, None), ("/global/tests/test_2.bin", None), ("/readyz", self.admin):
                self.assertEqual(self.ask("GET", path, address=address)[0], 200, path)
            self.assertLess(time.monotonic() - start, 3)
            crowd[-1].close()  # and is not missed
            self.assertEqual([connection.recv(4096)[:12] for connection in crowd[2:4]], [b"HTTP/1.1 503"] * 2)
            self.assertGreater(time.monotonic() - start, 4)
        self.assertEqual([connection.recv(4096)[:12] for connection in crowd[:2]], [b"HTTP/1.1 200"] * 2)
        self.assertEqual(self.metric('kel_http_refusals_total{endpoint="public",status="503"}'), 3)
        self.assertEqual(self.sessions(), ["s0", "s1"])

    def test_no_work_is_done_for_a_client_that_has_left(self):
        with self.database.held("report"):
            crowd = self.crowd(4)
            crowd[2].close()
            time.sleep(1.5)  # longer than a client that has closed its side may wait
        self.assertEqual([crowd[number].recv(4096)[:12] for number in (0, 1, 3)], [b"HTTP/1.1 200"] * 3)
        self.assertEqual(self.sessions(), ["s0", "s1", "s3"])
        self.assertIn("its client has left", self.log_text())

    def test_a_report_is_parsed_once(self):
        self.require("r", (71063, "M", "any"))
        self.ask("POST", UPLOAD, REPORT.format("s"))
        self.database.run(f"UPDATE report SET body = '{REPORT.format('s').replace('8.0', '7.0')}'")
        for found in (b"<found>8.0 GB", b"<found>7.0 GB", b"<found>7.0 GB"):  # kept from the upload, and read anew
            self.assertIn(found, self.ask("POST", "/service/Analysis/r", analysis("s"))[1])
            if b"8.0" in found:
                self.stop()
                self.start()
        self.database.run("UPDATE report SET body = ''")
        self.assertIn(b"<found>7.0 GB", self.ask("POST", "/service/Analysis/r", analysis("s"))[1])
        self.database.run("DELETE FROM verdict")
        self.database.run("DELETE FROM report")
        self.assertEqual(self.ask("POST", "/service/Analysis/r", analysis("s"))[0], 404)

    def test_the_report_cache_has_a_bound(self):
        values = "".join(f'<group id="{group}"><value>{"x" * 50_000}</value></group>' for group in range(2, 7))
        before = self.metric("kel_process_resident_memory_bytes")
        for number in range(400):  # 100 MB
            self.ask("POST", UPLOAD, REPORT.format(number).replace("</groups>", values + "</groups>"))
        self.assertLess(self.metric("kel_process_resident_memory_bytes") - before, 80_000_000)

    def test_the_attack_programs_run_without_harm(self):
        """Only for a moment; scripts/load.sh --hostile measures them."""
        options = "--hostile", "--seconds", "0.5", "--rest", "0", "--match", "waits for"
        ran = subprocess.run([sys.executable, ROOT / "tools" / "load", *options], capture_output=True, text=True,
                             timeout=PATIENCE)
        rows = [line.split(" | ") for line in ran.stdout.splitlines() if "nobody waits for" in line]
        self.assertEqual(len(rows), 1, ran.stdout + ran.stderr)
        self.assertRegex(rows[0][2], r"^0 of \d+$")


class Ends(PressureTest):
    settings = ("--request-seconds", "3600", "--idle-seconds", "3600", "--answer-seconds", "3600")

    def test_a_stop_does_not_wait_for_clients(self):
        self.require("r", (71063, "M", "any"))
        half = self.connect(upload("half")[:-5])
        deaf = self.connect(b"GET /global/tests/test_2.bin HTTP/1.1\r\nHost: x\r\n\r\n" * 20)
        header = self.connect(b"GET / HTTP/1.1\r\nHost:")
        self.ask("GET", "/")
        self.process.terminate()
        self.assertEqual(self.process.wait(PATIENCE), 0)
        for client in half, deaf, header:
            with contextlib.suppress(ConnectionError):
                while client.recv(65536):
                    pass

    def test_a_stop_does_not_wait_for_queued_requests(self):
        with self.database.held("report"):
            self.crowd(4)
            self.process.terminate()
            time.sleep(3.5)  # longer than a stop waits
        self.assertEqual(self.process.wait(PATIENCE), 0)
        self.assertEqual(self.sessions(), ["s0", "s1"])


class Sizes(DeployedTest):
    def test_a_verdict_never_exceeds_what_the_control_accepts(self):
        ways = [{"id": group, "comparison": "contains", "needed": "'" * 40} for group in TEXTS]
        self.require("r", *[{"label": "'" * 20, "any of": ways}] * 500)
        values = "".join(f'<group id="{group}"><value>{chr(34) * 1000}</value></group>' for group in TEXTS)
        self.ask("POST", UPLOAD, f'<groups><group id="71424"><value>s</value></group>{values}</groups>')
        for form in ("xml", "html", "json"):
            status, body = self.ask("POST", "/service/Analysis/r", analysis("s", form))
            self.assertEqual(status, 200)
            self.assertGreater(len(body), 1_000_000, form)
            self.assertLess(len(body), 16 * 1024 * 1024, form)
        self.assertLess(self.database.run("SELECT max(length(lines)) FROM verdict")[0][0], 8_000_000)

    def test_texts_of_an_analysis_request_have_1024_bytes(self):
        self.require("r", (71063, "M", "any"))
        self.ask("POST", UPLOAD, REPORT.format("s"))
        for name in ("SessionID", "ItemID", "UserID", "Format", "Schema"):
            for text, status in (("é" * 512, 404 if name == "SessionID" else 200), ("é" * 512 + "x", 400)):
                with self.subTest(f"{name}, {len(text.encode())} bytes"):
                    request = re.sub(f"<{name}>[^<]*</{name}>|<{name}/>", f"<{name}>{text}</{name}>", analysis("s"))
                    self.assertEqual(self.ask("POST", "/service/Analysis/r", request)[0], status)


if __name__ == "__main__":
    unittest.main()
