"""The deployed service with many and slow clients, and how it ends."""

import http.client
import os
import re
import resource
import signal
import socket
import statistics
import threading
import time
import unittest
import unittest.mock
from pathlib import Path

from deployed import HEAD, REPORT, UPLOAD, DeployedTest, analysis, padded
from harness import PATIENCE


class Crowds(DeployedTest):
    settings = ("--request-seconds", "2", "--idle-seconds", "2", "--connections", "220", "--bodies-mb", "4")

    def test_slow_and_idle_clients_do_not_affect_others(self):
        slow = [self.connect(HEAD + b"Content-Length: 1000\r\n\r\n<") for _ in range(200)]
        idle = [self.connect() for _ in range(10)]
        start = time.monotonic()
        self.assertEqual(self.ask("POST", UPLOAD, REPORT.format("s"))[0], 200)
        self.assertLess(time.monotonic() - start, 1)
        dribble = threading.Thread(target=self.dribble, args=(slow[0],))
        dribble.start()
        self.addCleanup(dribble.join)
        for crowd, expected in ((slow, b"HTTP/1.1 408"), (idle, b"")):  # a byte now and then buys no time
            answers = [b"".join(iter(lambda: connection.recv(4096), b"")) for connection in crowd]
            self.assertEqual({answer[:12] for answer in answers}, {expected})
        self.assertEqual(self.ask("GET", "/")[0], 404)
        self.assertLess(time.monotonic() - start, 30)

    @staticmethod
    def dribble(connection):
        try:
            for _ in range(200):  # 40 seconds
                connection.sendall(b"<")
                time.sleep(0.2)
        except OSError:
            pass  # the service has closed

    def test_connections_are_counted_and_released(self):
        crowd = [self.connect() for _ in range(220)]
        self.ask("GET", "/healthz", address=self.admin)  # an endpoint of its own, open to the operator
        self.await_answer(self.status_or_nothing, b"")
        for connection in crowd:
            connection.close()
        self.await_answer(self.status_or_nothing, b"404")

    def test_the_limit_of_open_files_is_raised(self):
        soft, hard = resource.getrlimit(resource.RLIMIT_NOFILE)
        self.addCleanup(resource.setrlimit, resource.RLIMIT_NOFILE, (soft, hard))
        resource.setrlimit(resource.RLIMIT_NOFILE, (300, hard))
        self.stop()
        self.start("--connections", "1000000")
        self.assertEqual(resource.prlimit(self.process.pid, resource.RLIMIT_NOFILE), (hard, hard))
        self.assertEqual("few-descriptors" in self.log_text(), hard < 1_000_000)

    def status_or_nothing(self):
        """The answer to a new client: nothing when the service has no room for it."""
        try:
            return self.talk(b"GET / HTTP/1.0\r\n\r\n")[9:12]
        except ConnectionError:
            return b""

    def test_bodies_in_progress_share_a_bound(self):
        self.stop()
        self.start("--request-seconds", "30")
        # Each kind has half of the memory. A body takes 8 KB at a time, before it is read.
        for size, bodies, small, large in ((250_000, 8 * 250_384, 200, 503), (16_000, 128 * 16_384, 503, 200)):
            halves = [self.connect(HEAD + b"Content-Length: %d\r\n\r\n" % (size + 384) + b" " * size)
                      for _ in range(2_097_152 // size)]
            self.await_answer(lambda: int(re.search(rb'bodies_bytes{endpoint="public"} (\d+)', self.ask(
                "GET", "/metrics", address=self.admin)[1])[1]), bodies)
            self.assertEqual(self.ask("POST", UPLOAD, padded(100_000))[0], large)
            self.assertEqual(self.ask("POST", UPLOAD, padded(16_384))[0], small)
            for half in halves:
                half.close()
            self.await_answer(lambda: [self.ask("POST", UPLOAD, padded(count))[0] for count in (16_384, 100_000)], [200, 200])

    def test_answers_in_progress_share_the_same_bound(self):
        values = "".join(f'<group id="{group}"><value>{chr(34) * 1000}</value></group>' for group in range(73210, 73230))
        self.ask("POST", UPLOAD, f'<groups><group id="71424"><value>s</value></group>{values}</groups>')
        line = {"label": "M", "any of": [{"id": group, "comparison": "any"} for group in range(73210, 73230)]}
        statuses = []
        for referrer, count in (("fits", 12), ("large", 20)):  # answers of 1.5 and 2.5 MB
            self.require(referrer, *[line] * count)
            statuses += [self.ask("POST", f"/service/Analysis/{referrer}", analysis("s")) for _ in range(2)]
        self.assertEqual([(status, len(body) // 500_000) for status, body in statuses[:2]], [(200, 2)] * 2)
        self.assertEqual(statuses[2:], [(503, b"")] * 2)
        request = analysis("s").encode()
        head = b"POST /service/Analysis/fits HTTP/1.1\r\nHost: x\r\nContent-Length: %d\r\n\r\n" % len(request)
        with self.deaf((head + request) * 3):  # the system takes a part of it
            self.await_answer(lambda: self.ask("POST", "/service/Analysis/fits", request), (503, b""))
        self.await_answer(lambda: self.ask("POST", "/service/Analysis/fits", request)[0], 200)

    def test_a_client_that_does_not_read_is_disconnected(self):
        self.stop()
        self.start("--answer-seconds", "1")
        with self.deaf(b"GET /global/tests/test_2.bin HTTP/1.1\r\nHost: x\r\n\r\n" * 20):
            for count in (b"1", b"0"):  # it is there, and then it is not
                self.await_answer(lambda: re.search(rb'connections{endpoint="public"} (\d)', self.ask(
                    "GET", "/metrics", address=self.admin)[1])[1], count)

    def test_a_client_that_stays_after_a_refusal_is_disconnected(self):
        self.stop()
        self.start("--answer-seconds", "3600")
        refused = self.connect(HEAD + b"Content-Length: 9999999\r\n\r\n")
        self.assertEqual(refused.recv(4096)[9:12], b"413")
        self.await_answer(lambda: re.search(rb'connections{endpoint="public"} (\d)', self.ask(
            "GET", "/metrics", address=self.admin)[1])[1], b"0")

    def deaf(self, data):
        """A client that sends this, and does not read the answer."""
        connection = socket.socket()
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        connection.connect(("127.0.0.1", int(self.address.split(":")[1])))
        connection.sendall(data)
        return connection

    def test_accepts_again_once_descriptors_are_free(self):
        limits = resource.prlimit(self.process.pid, resource.RLIMIT_NOFILE)
        resource.prlimit(self.process.pid, resource.RLIMIT_NOFILE, (5, limits[1]))
        waiting = self.connect(b"GET / HTTP/1.0\r\n\r\n")
        self.await_answer(lambda: "not-accepted" in self.log_text(), True)
        resource.prlimit(self.process.pid, resource.RLIMIT_NOFILE, limits)
        self.assertEqual(waiting.recv(4096)[9:12], b"404")


class Thousands(DeployedTest):
    settings = ("--request-seconds", "60", "--idle-seconds", "60", "--connections", "25000")

    def test_ten_thousand_idle_and_slow_clients_do_not_affect_others(self):
        limits = resource.getrlimit(resource.RLIMIT_NOFILE)
        self.addCleanup(resource.setrlimit, resource.RLIMIT_NOFILE, limits)
        resource.setrlimit(resource.RLIMIT_NOFILE, (limits[1], limits[1]))
        for begin, kilobytes in ((b"", 10), (HEAD + b"Content-Length: 1000\r\n\r\n<", 20)):
            crowd = [self.connect(begin) for _ in range(min(10_000, limits[1] - 200))]
            times = []
            for number in range(100):
                for slow in crowd[number * 20:number * 20 + 20] if begin else ():
                    slow.sendall(b" ")
                start = time.monotonic()
                self.assertEqual(self.ask("POST", UPLOAD, REPORT.format("s"))[0], 200)
                times.append(time.monotonic() - start)
            self.assertLess(statistics.median(times), 0.1)
            memory = re.search(r"VmRSS:\s*(\d+)", Path(f"/proc/{self.process.pid}/status").read_text("ascii"))
            self.assertLess(int(memory[1]), 20_000 + kilobytes * len(crowd))
            for connection in crowd:
                connection.close()


class Ends(DeployedTest):
    def test_a_signal_lets_requests_in_progress_finish(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            report = REPORT.format("late").encode()
            half = self.connect(HEAD + b"Content-Length: %d\r\n\r\n" % len(report) + report[:50])
            idle = self.connect(b"GET / HTTP/1.1\r\nHost: x\r\n\r\n")
            self.assertIn(b"404", idle.recv(4096))
            self.process.send_signal(number)
            self.assertEqual(idle.recv(4096), b"")
            with self.assertRaises(ConnectionRefusedError):
                self.connect()
            half.sendall(report[50:])
            answer = b"".join(iter(lambda: half.recv(4096), b""))
            self.assertRegex(answer, rb"^HTTP/1.1 200 OK\r\n(.|\r\n)*Connection: close\r\n(.|\r\n)*\r\nOK$")
            self.assertEqual(self.process.wait(PATIENCE), 0)
            self.start()

    def test_survives_a_closed_log_pipe(self):
        self.stop()
        reader, writer = os.pipe()
        with open(writer, "wb") as self.log:
            self.start()
        os.close(reader)
        for _ in range(2):
            self.assertEqual(self.ask("GET", "/")[0], 404)

    def test_a_second_signal_ends_at_once(self):
        self.connect(HEAD + b"Content-Length: 10\r\n\r\n")
        self.ask("GET", "/")

        def signalled():
            self.process.terminate()
            return self.process.poll()
        self.await_answer(signalled, -signal.SIGTERM)

    def test_a_kill_loses_no_report_that_was_acknowledged(self):
        self.require("r", (71063, "M", "any"))
        for run, durability in enumerate(("normal", "full", "full")):
            kept = []
            threads = [threading.Thread(target=self.upload_until_the_end, args=(f"{run}-{thread}", kept)) for thread in range(4)]
            for thread in threads:
                thread.start()
            self.await_answer(lambda kept=kept: len(kept) > 20, True)
            self.process.kill()
            for thread in threads:
                thread.join()
            self.process.wait()
            self.start("--durability", durability)
            self.database.check()
            self.assertLessEqual(set(kept), {row[0] for row in self.database.run("SELECT session FROM report")})
            self.assertIn(b'result="pass"', self.ask("POST", "/service/Analysis/r", analysis(kept[-1]))[1])

    def upload_until_the_end(self, name, kept):
        connection = http.client.HTTPConnection(self.address, timeout=PATIENCE)
        try:
            for number in range(100_000):
                connection.request("POST", UPLOAD, REPORT.format(f"{name}-{number}"))
                if connection.getresponse().read() == b"OK":
                    kept.append(f"{name}-{number}")
        except (OSError, http.client.HTTPException):
            connection.close()


if __name__ == "__main__":
    unittest.main()
