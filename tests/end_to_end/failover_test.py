"""The deployed service with a PostgreSQL primary and a standby: the primary fails, and the standby takes over."""

import http.client
import os
import signal
import subprocess
import threading
import time
import types
import unittest
import unittest.mock

from databases import KIND, Server
from deployed import REPORT, SERVER, UPLOAD, DeployedTest
from harness import PATIENCE

LIMIT = 60  # seconds, for steps that take one or two


@unittest.skipUnless(KIND == "postgresql", "of PostgreSQL")
class Failover(DeployedTest):
    settings = ("--workers", "4", "--database-connections", "4")

    def setUp(self):
        self.primary = Server("-F")
        self.addCleanup(self.end, self.primary)
        self.primary.ask("postgres", "CREATE DATABASE kel")
        self.standby = Server("-F", primary=self.primary)
        self.addCleanup(self.end, self.standby)
        self.primary.ask("postgres", "ALTER SYSTEM SET synchronous_standby_names = '*'")
        self.primary.ask("postgres", "SELECT pg_reload_conf()")
        self.await_answer(lambda: self.primary.ask("postgres", "SELECT sync_state FROM pg_stat_replication"), ["sync"])
        hosts = f"{self.standby.folder},{self.primary.folder}"
        address = f"postgresql://kel@/kel?host={hosts}&target_session_attrs=read-write"
        with unittest.mock.patch("deployed.Database", lambda _: types.SimpleNamespace(setting=address)):
            super().setUp()

    @staticmethod
    def end(server):
        if server.process.poll() is None:
            server.signal_all(signal.SIGKILL)
            server.process.wait(20)

    def upload(self, session):
        """Whether the upload is acknowledged."""
        try:
            return self.ask("POST", UPLOAD, REPORT.format(session)) == (200, b"OK")
        except (OSError, http.client.HTTPException):
            return False

    def fail_over(self, fail, *arguments):
        """Uploads go on while the primary fails and the standby is promoted. The seconds from then to the next one."""
        kept, ends = [], threading.Event()

        def upload_all(name):
            number = 0
            while not ends.is_set():
                if self.upload(f"{name}-{number}"):
                    kept.append((time.monotonic(), f"{name}-{number}"))
                number += 1
                time.sleep(0.01)

        threads = [threading.Thread(target=upload_all, args=(name,)) for name in "abc"]
        for thread in threads:
            thread.start()
        try:
            self.wait_for(lambda: len(kept) > 30)
            fail(*arguments)
            count = len(kept) + len(threads)  # some may be on their way back
            self.standby.ask("postgres", "SELECT pg_promote()")
            promoted = time.monotonic()
            self.wait_for(lambda: len(kept) > count + 30)
        finally:
            ends.set()
            for thread in threads:
                thread.join()
        stored = set(self.standby.ask("kel", "SELECT session FROM report"))
        self.assertEqual([session for _, session in kept if session not in stored], [], "acknowledged, and lost")
        self.assertEqual(self.ask("GET", "/readyz", address=self.admin), (200, b"ready\n"))
        return min(moment for moment, _ in kept[count:]) - promoted

    def wait_for(self, condition):
        end = time.monotonic() + LIMIT
        while not condition():
            self.assertLess(time.monotonic(), end, self.log_text()[-1000:])
            time.sleep(0.01)

    def check(self, fail, *arguments):
        seconds = self.fail_over(fail, *arguments)
        if os.environ.get("KEL_SHOW"):
            print(f"{self.id()}: uploads again {seconds:.2f} s after the promotion")
        self.assertLess(seconds, 10)  # one, on a machine that has the time

    def test_a_primary_that_is_killed_loses_nothing(self):
        self.check(self.primary.signal_all, signal.SIGKILL)

    def test_a_primary_that_is_shut_down_loses_nothing(self):
        self.check(self.primary.stop)

    def test_a_primary_that_is_frozen_loses_nothing(self):
        self.check(self.primary.signal_all, signal.SIGSTOP)

    def test_an_upload_that_cannot_be_kept_is_not_acknowledged(self):
        self.standby.signal_all(signal.SIGSTOP)
        kept = []
        upload = threading.Thread(target=lambda: kept.append(self.upload("unconfirmed")))
        upload.start()
        waiting = "FROM pg_stat_activity WHERE wait_event = 'SyncRep' AND application_name = 'kel_server'"
        self.wait_for(lambda: self.primary.ask("postgres", f"SELECT pg_cancel_backend(pid) {waiting}"))
        upload.join()
        self.standby.signal_all(signal.SIGCONT)
        self.assertEqual(kept, [False])
        self.assertTrue(self.upload("both write"))
        subprocess.run([SERVER, "user", "add", "reader", "ann", "--database", self.database.setting], input="a long password\n",
                       text=True, check=True)
        self.primary.ask("postgres", "ALTER SYSTEM SET default_transaction_read_only = on")
        self.primary.ask("postgres", "SELECT pg_reload_conf()")
        self.wait_for(lambda: not self.upload("read-only"))
        self.assertEqual(self.ask("GET", "/readyz", address=self.admin)[0], 503)
        several, self.database.setting = self.address, self.standby.address("kel")
        self.start("--sso-header", "on")
        self.assertFalse(self.upload("standby alone"))
        connection = http.client.HTTPConnection(self.admin, timeout=PATIENCE)
        self.addCleanup(connection.close)
        connection.request("GET", "/", headers={"X-Remote-User": "ann"})
        self.assertIn(b"<b>database is read-only</b>service", connection.getresponse().read())
        self.assertEqual(self.ask("GET", "/readyz", address=self.admin), (503, b"the database does not accept writes\n"))
        self.standby.ask("postgres", "SELECT pg_promote()")
        for name, self.address in (("alone, promoted", self.address), ("of several, promoted", several)):
            self.wait_for(lambda session=name: self.upload(session))
            self.assertEqual(self.standby.ask("kel", f"SELECT 1 FROM report WHERE session = '{name}'"), ["1"], name)


if __name__ == "__main__":
    unittest.main()
