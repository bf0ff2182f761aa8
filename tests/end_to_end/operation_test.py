"""The deployed service in the hands of its operator: what it counts, and whether it is ready."""

import contextlib
import http.client
import re
import sqlite3
import time
import unittest

from deployed import LIST, REPORT, UPLOAD, DeployedTest, analysis
from harness import API_KEY

SAMPLE = re.compile(r'(kel_\w+)(?:\{((?:\w+="[^"\\]*",?)+)\})? (\d[\d.e+-]*)')
WANTED = f"{LIST}?refid=r&apikey={API_KEY}"
HEAD = f"POST {UPLOAD} HTTP/1.1\r\n".encode()


class Counting(DeployedTest):
    settings = ("--request-seconds", "2", "--connections", "30", "--bodies-mb", "4")

    def metrics(self):
        """The samples of the public door and of none by name, with other labels between braces; checks the format."""
        samples, kinds = {}, {}
        with contextlib.closing(http.client.HTTPConnection(self.admin, timeout=10)) as connection:
            connection.request("GET", "/metrics")
            answer = connection.getresponse()
            page = answer.read().decode("ascii")
        self.assertEqual((answer.status, answer.headers["Content-Type"]), (200, "text/plain; version=0.0.4; charset=utf-8"))
        for line in page.splitlines():
            if line.startswith("# TYPE "):
                name, kinds[name] = line.split()[2:]
            elif not line.startswith("# HELP "):
                sample, labels, value = SAMPLE.fullmatch(line).groups()
                self.assertEqual(sample.removesuffix("_bucket").removesuffix("_sum").removesuffix("_count"), name, "not together")
                self.assertEqual(sample.endswith("_total"), kinds[name] == "counter")
                labels = (labels or "").split(",")
                if 'door="admin"' not in labels:
                    key = " ".join([sample, *(label for label in labels if label != 'door="public"')]).strip()
                    self.assertNotIn(key, samples)
                    samples[key] = float(value)
        return samples

    def await_metric(self, name, value):
        end = time.monotonic() + 5
        while self.metrics().get(name) != value and time.monotonic() < end:
            time.sleep(0.02)
        self.assertEqual(self.metrics().get(name), value, name)

    def test_what_clients_do_is_counted(self):
        self.require("r", (1, "M", "at least", "4 GB"))
        body = REPORT.format("s")
        for verb, path, text in (("POST", UPLOAD, body), ("POST", UPLOAD, body), ("POST", UPLOAD, "x"), ("GET", WANTED, ""),
                                 ("POST", "/service/Analysis/r", analysis("s")), ("POST", '/"no', ""), ("BREW", UPLOAD, "")):
            self.ask(verb, path, text)
        for data in (HEAD + b"Content-Length: 3000000\r\n\r\n", b"GARBAGE\r\n\r\n", HEAD + b"X: " + b"x" * 9000,
                     HEAD + b"Content-Length: 5\r\n\r\n<"):
            self.talk(data)
        counts = self.metrics()
        route = 'kel_http_requests_total method="%s" route="%s" status="%d"'
        for name, value in (
                (route % ("POST", "/Data/Service.svc/upload", 200), 2), (route % ("POST", "/Data/Service.svc/upload", 400), 1),
                (route % ("GET", LIST, 200), 1), (route % ("POST", "/service/Analysis/*", 200), 1),
                (route % ("other", "other", 404), 2), ("kel_uploads_total", 2), ('kel_verdicts_total total="pass"', 1),
                ('kel_verdicts_total total="fail"', 0), ("kel_http_request_seconds_count", 7),
                *((f'kel_http_refusals_total status="{status}"', 1) for status in (400, 408, 413, 431)),
                ('kel_http_request_seconds_bucket le="+Inf"', 7), ('kel_http_request_seconds_bucket le="10"', 7),
                ("kel_database_errors_total", 0), ('kel_build_info version="4.5.1"', 1)):
            self.assertEqual(counts.get(name), value, name)
        self.assertEqual(sum("requests_total" in name for name in counts), 5)
        buckets = [value for name, value in counts.items() if "_bucket" in name]
        self.assertEqual(buckets, sorted(buckets))
        self.assertTrue(0 < counts["kel_http_request_seconds_sum"] < 7)
        self.assertLess(abs(time.time() - counts["kel_process_start_time_seconds"]), 60)
        self.assertTrue(1e6 < counts["kel_process_resident_memory_bytes"] < 1e9)

    def test_what_is_under_way_comes_and_goes(self):
        crowd = [self.connect(HEAD + b"Content-Length: 100000\r\n\r\n" + b" " * 16_500) for _ in range(30)]
        self.await_metric("kel_bodies_bytes", 30 * 16_384)  # in pieces of 8 KB
        self.await_metric("kel_connections", 30)
        self.assertEqual(self.connect().recv(1), b"")
        self.await_metric("kel_connections_refused_total", 1)
        self.assertIn(b" 408 ", crowd[0].recv(4096).splitlines()[0])
        for connection in crowd:
            connection.close()
        self.await_metric("kel_bodies_bytes", 0)
        self.await_metric("kel_connections", 0)

    def test_a_service_without_its_database_lives_and_is_not_ready(self):
        for path, answer in (("/healthz", (200, b"ok\n")), ("/readyz", (200, b"ready\n"))):
            self.assertEqual(self.ask("GET", path, address=self.admin), answer)
        with sqlite3.connect(self.folder / "kel.db", isolation_level=None) as database:
            database.execute("DROP TABLE requirement_set")
        database.close()
        self.assertEqual(self.ask("GET", "/healthz", address=self.admin), (200, b"ok\n"))
        self.assertEqual(self.ask("GET", "/readyz", address=self.admin), (503, b"the database does not answer\n"))
        self.ask("GET", WANTED)
        self.assertEqual(self.metrics()["kel_database_errors_total"], 2)
        self.assertIn("event=not-ready reason=\"database: ", self.log_text())
        for path in ("/healthz", "/readyz", "/metrics"):
            self.assertEqual(self.ask("GET", path), (404, b""))


if __name__ == "__main__":
    unittest.main()
