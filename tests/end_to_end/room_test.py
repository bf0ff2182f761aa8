"""The deployed service when room is short: on a small file system that fills up, and at the configured bounds."""

import http.client
import os
import subprocess
import tempfile
import unittest
import unittest.mock
from pathlib import Path

import databases
from database_test import DataTest, sqlite
from databases import KIND
from deployed import REPORT, SERVER, UPLOAD, analysis
from harness import PATIENCE

LARGE = " " * 200_000
MEGABYTE = 1 << 20


class Rooms(DataTest):
    def setUp(self):
        super().setUp()
        subprocess.run([SERVER, "user", "add", "editor", "ann", "--database", self.database.setting], input="a long password\n",
                       text=True, check=True)

    def log_in(self):
        """The status, and the first page of the administration."""
        connection = http.client.HTTPConnection(self.admin, timeout=PATIENCE)
        self.addCleanup(connection.close)
        connection.request("POST", "/login", "name=ann&password=a long password")
        answer = connection.getresponse()
        answer.read()
        connection.request("GET", "/", headers={"Cookie": answer.headers.get("Set-Cookie", "").split(";")[0]})
        return answer.status, connection.getresponse().read().decode()

    def upload_large(self, session):
        return self.ask("POST", UPLOAD, REPORT.format(session) + LARGE)

    def upload_until_refused(self, most):
        """The number of large reports, each of another session, that are accepted before one is refused."""
        for number in range(most):
            if (answer := self.upload_large(f"large{number}"))[0] != 200:
                self.assertEqual(answer, (503, b""))
                return number
        return most

    def assert_no_room(self, reason):
        """The log and the operator's pages report it."""
        self.assertRegex(self.log_text().splitlines()[-1], f"level=error event=refused status=507 .*{reason}")
        self.assertEqual(self.ask("GET", "/readyz", address=self.admin), (503, b"there is no room for reports\n"))
        metrics = self.ask("GET", "/metrics", address=self.admin)[1].decode()
        self.assertIn("\nkel_room_for_reports 0\n", metrics)
        self.assertIn("<b>no room for reports</b>service", self.log_in()[1])
        self.assertRegex(metrics, r'route="/Data/Service.svc/upload",status="507"} [1-9]')


class Bounds(Rooms):
    def test_a_session_has_a_bound(self):
        self.stop()
        self.start("--session-reports", "3")
        self.assertEqual([self.upload("s")[0] for _ in range(5)], [200, 200, 200, 503, 503])
        self.assertRegex(self.log_text().splitlines()[-1], "status=507 .*session_reports")
        self.assertEqual(self.upload("t")[0], 200)

    def test_the_whole_database_has_a_bound(self):
        self.stop()
        self.start("--max-database-mb", "1")  # an empty one of PostgreSQL has more
        for number in range(6):
            self.upload_large(f"large{number}")  # more than there is room for; the size is looked at ten times a second
        self.await_answer(lambda: self.upload_large("late"), (503, b""))
        self.assert_no_room("the database has reached max_database_mb")
        if KIND == "sqlite":  # what is free inside of the file counts as free
            for number in range(6):
                self.command("purge", "--session", f"large{number}")
            self.await_answer(lambda: self.upload_large("late"), (200, b"OK"))


@sqlite
class SmallDisk(Rooms):
    settings = ("--min-free-mb", "16")

    def setUp(self):
        self.small = Path(self.enterContext(tempfile.TemporaryDirectory()))
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=48m", "small", self.small], stderr=subprocess.DEVNULL).returncode:
            self.skipTest("needs the right to mount")
        self.addCleanup(subprocess.run, ["umount", self.small], check=True)
        with unittest.mock.patch("deployed.Database", lambda _: databases.Sqlite(self.small)):
            super().setUp()
        self.require("r", (71063, "M", "any"))

    def free(self):
        disk = os.statvfs(self.small)
        return disk.f_bavail * disk.f_frsize

    def fill(self):
        """Lets other programs take the remaining space."""
        with open(self.small / "others", "ab") as file:
            while self.free():
                os.posix_fallocate(file.fileno(), file.tell(), self.free())
                file.seek(0, os.SEEK_END)

    def reserve_after_upload(self):
        """Whether the reserve exists; uploads create it again, at most ten times a second."""
        self.upload_large("large0")
        return (self.small / "kel.db-reserve").exists()

    def verdict(self):
        status, body = self.ask("POST", "/service/Analysis/r", analysis("large0"))
        return status, b'result="pass"' in body

    def test_reports_stop_while_other_data_still_have_room(self):
        count = self.upload_until_refused(400)
        self.assertGreater(count, 50)
        self.assertGreater(self.free(), 12 * MEGABYTE)  # the log takes some of it
        self.assert_no_room("less than min_free_mb is free")
        self.assertEqual((self.verdict(), self.log_in()[0]), ((200, True), 303))
        self.assertEqual(self.database.run("SELECT count(*) FROM verdict"), [(1,)])
        self.command("purge", "--older", "1h")
        self.assertEqual(self.upload_large("large0"), (503, b""))  # they were not that old
        self.database.run(f"UPDATE report SET received = 1 WHERE id > {count // 2}")
        self.command("purge", "--older", "1h")
        self.await_answer(lambda: self.upload_large("large0"), (200, b"OK"))  # in the room inside the file
        self.assertEqual(self.ask("GET", "/readyz", address=self.admin)[0], 200)

    def test_deletions_work_on_a_disk_that_others_fill(self):
        for number in range(20):
            self.assertEqual(self.upload_large(f"large{number}")[0], 200)
        self.fill()
        self.assertEqual(self.upload_large("late"), (503, b""))
        self.assert_no_room("less than min_free_mb is free")
        self.assertEqual(self.verdict(), (200, True))
        self.assertIn("event=verdict-not-kept", self.log_text())
        self.assertIn(b"\nkel_verdicts_not_kept_total 1\n", self.ask("GET", "/metrics", address=self.admin)[1])
        self.assertEqual(self.log_in()[0], 303)
        self.assertEqual(self.database.run("SELECT action FROM audit ORDER BY id DESC LIMIT 1"), [("logged in",)])
        os.remove(self.small / "others")
        for session, end in (("large1", lambda: None), ("large2", self.stop)):  # beside the service, and without it
            self.assertEqual(self.upload_large("large0")[0], 200)
            self.await_answer(self.reserve_after_upload, True)
            end()
            self.fill()
            self.command("purge", "--session", session)
            self.assertEqual(self.database.run(f"SELECT count(*) FROM report WHERE session = '{session}'"), [(0,)])
            os.remove(self.small / "others")
        self.database.check()


if __name__ == "__main__":
    unittest.main()
