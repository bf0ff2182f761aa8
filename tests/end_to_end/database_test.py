"""The deployed service's data: commands that copy and delete it, deletion by age, databases that fail and come back."""

import contextlib
import os
import resource
import signal
import sqlite3
import subprocess
import threading
import time
import unittest
import unittest.mock

from databases import KIND, Postgres
from deployed import REPORT, SERVER, UPLOAD, DeployedTest, analysis
from harness import PATIENCE

DAY = 24 * 3600 * 1000
sqlite, postgresql = (unittest.skipUnless(KIND == kind, f"of {kind}") for kind in ("sqlite", "postgresql"))


class DataTest(DeployedTest):
    def upload(self, session, days=0, machine=""):
        """An upload of that age."""
        report = REPORT.format(session).replace("</groups>", f'<group id="71207"><value>{machine}</value></group></groups>')
        status = self.ask("POST", UPLOAD, report)
        if days:
            self.database.run(f"UPDATE report SET received = received - {int(days * DAY)} WHERE session = '{session}'")
        return status

    def sessions(self):
        return "".join(row[0] for row in self.database.run("SELECT session FROM report ORDER BY id"))


class Commands(DataTest):
    def test_what_is_exported_is_what_was_imported(self):
        self.require("r", (71063, "M", "any"))
        self.require("r", (71060, "é", "any"))
        folder = self.folder / "new" / "folder"
        for _ in range(2):
            self.command("export", folder)
        self.assertEqual([(path.name, path.read_bytes()) for path in folder.iterdir()],
                         [("r.json", (self.folder / "r.json").read_bytes())])
        self.assertIn("version=2", self.command("import", folder))

    def test_a_purge_deletes_reports_and_verdicts_during_uploads(self):
        self.require("r", (71063, "M", "any"))
        for session, days, machine in (("a", 91, ""), ("b", 89, ""), ("c", 0.6, "m&apos;1"), ("d", 0, "m&apos;1"), ("e", 0, "")):
            self.upload(session, days, machine)
            self.ask("POST", "/service/Analysis/r", analysis(session))
        for option, value, left in (("--older", "90d", "bcde"), ("--older", "12h", "de"), ("--machine", "m'1", "e"),
                                    ("--session", "none", "e"), ("--session", "e", "")):
            self.command("purge", option, value)
            self.assertEqual((self.sessions(), self.database.run("SELECT count(*) FROM verdict")), (left, [(len(left),)]), value)
        for age in ("90", "0d", "d", "-1d", "1dd", "99999d"):
            self.assertIn("an age is", self.command("purge", "--older", age, code=1))
        for arguments, code in (((), 2), (("--session", "s", "--older", "1d"), 2), (("--colour", "1"), 1), (("x", "1"), 1)):
            self.command("purge", *arguments, code=code)
        self.upload("old")
        for _ in range(12):
            self.database.run("INSERT INTO report (session, referrer, \"user\", received, body) "
                              "SELECT session, referrer, \"user\", 1, body FROM report")
        purge = threading.Thread(target=self.command, args=("purge", "--older", "1d"))
        purge.start()
        slowest = 0
        while purge.is_alive():
            start = time.monotonic()
            self.assertEqual(self.upload("new")[0], 200)
            slowest = max(slowest, time.monotonic() - start)
        self.assertLess(slowest, 3)
        self.assertEqual(self.database.run("SELECT count(*) FROM report WHERE received = 1"), [(0,)])

    @sqlite
    def test_a_backup_is_complete_while_the_service_writes(self):
        self.require("r", (71063, "M", "any"))
        ends = threading.Event()
        writer = threading.Thread(target=lambda: [self.upload(f"{number}") for number in range(10_000) if not ends.is_set()])
        writer.start()
        self.await_answer(lambda: self.sessions() > "0", True)
        copy = self.folder / "copy.db"
        before = self.database.run("SELECT count(*) FROM report")[0][0]
        self.command("backup", copy)
        ends.set()
        writer.join()
        self.assertEqual([*self.folder.glob("copy.db*")], [copy])
        self.assertEqual(copy.stat().st_mode & 0o777, 0o600)
        self.assertIn("already exists", self.command("backup", copy, code=1))
        self.stop()
        self.database.path = self.database.setting = copy
        self.database.check()
        self.assertGreaterEqual(self.database.run("SELECT count(*) FROM report")[0][0], before)
        self.start()
        self.assertIn(b'result="pass"', self.ask("POST", "/service/Analysis/r", analysis("0"))[1])

    @sqlite
    def test_deleted_data_leave_the_files_and_only_the_owner_reads_them(self):
        self.upload("a", machine="hidden" * 50)
        held = sum((path.read_bytes().count(b"hidden") for path in self.folder.glob("kel.db*")))
        self.assertGreater(held, 50)
        self.command("purge", "--session", "a")
        self.assertEqual(sum(path.read_bytes().count(b"hidden") for path in self.folder.glob("kel.db*")), 0)
        self.assertEqual({path.stat().st_mode & 0o777 for path in self.folder.glob("kel.db*")}, {0o600})
        self.assertEqual((self.folder / "port").stat().st_mode & 0o777, 0o644)

    @postgresql
    def test_a_postgres_database_is_not_copied(self):
        self.assertIn("pg_dump", self.command("backup", self.folder / "copy", code=1))

    @sqlite
    def test_a_restore_puts_a_copy_in_the_databases_place(self):
        copy, leftovers = self.folder / "copy.db", [self.folder / f"kel.db-{end}" for end in ("wal", "shm")]
        self.require("r", (71063, "M", "any"))
        self.upload("a")
        self.command("backup", copy)
        for _ in range(3):
            self.upload("b")
        self.assertIn("in use", self.command("restore", copy, code=1))
        self.process.kill()
        self.process.wait()
        self.assertTrue(all(path.exists() for path in leftovers))
        pages, wrong = bytearray(copy.read_bytes()), self.folder / "wrong.db"
        pages[5 * 4096:6 * 4096] = bytes(4096)
        for content, reason in ((b"no database, but a text of some length" * 100, "not a database"), (b"", "empty"),
                                (pages, "damaged|malformed")):
            wrong.write_bytes(content)
            self.assertRegex(self.command("restore", wrong, code=1), reason)
        for end in ("-wal", "-journal"):
            (beside := self.folder / f"copy.db{end}").touch()
            self.assertIn(f"{end} is there", self.command("restore", copy, code=1))
            beside.unlink()
        self.assertIn("the database itself", self.command("restore", self.database.path, code=1))
        self.assertEqual(self.sessions(), "abbb")
        with contextlib.closing(sqlite3.connect(copy)) as connection:
            connection.executescript(  # an older program's
                "DROP TRIGGER verdict_added; DROP TRIGGER verdict_changed; DROP TRIGGER report_added; DROP VIEW session_verdict;"
                "DROP VIEW count_verdict; DROP TABLE day_reports; DROP TABLE day_verdicts; DROP TABLE day_lines;"
                "DROP INDEX report_by_user; DROP INDEX verdict_by_referrer; ALTER TABLE verdict DROP COLUMN counted;"
                "ALTER TABLE verdict DROP COLUMN results; CREATE INDEX verdict_by_referrer ON verdict (referrer, report);"
                "ALTER TABLE requirement_set DROP COLUMN title; PRAGMA user_version = 2")
        os.chown(self.database.path, 9 if os.geteuid() == 0 else -1, -1)
        owner = self.database.path.stat().st_uid
        self.command("restore", copy)
        self.assertEqual(self.database.path.stat().st_uid, owner)
        self.start()
        self.assertEqual(self.upload("c"), (200, b"OK"))
        self.database.check()
        self.assertEqual(self.sessions(), "ac")
        self.assertEqual(self.database.run("SELECT account, subject FROM audit WHERE action = 'restored'"),
                         [("command line", "copy.db")])
        self.assertEqual([path.name for path in self.folder.glob("kel.db.*")], [])

    def test_every_operation_of_the_store(self):
        self.stop()
        environment = os.environ | {"KEL_STORE": str(self.database.setting)}
        ran = subprocess.run([SERVER.parent / "server_tests"], env=environment, timeout=10 * PATIENCE,
                             capture_output=True, text=True)
        self.assertEqual(ran.returncode, 0, ran.stdout + ran.stderr)


class Retention(DataTest):
    def test_old_reports_are_deleted_automatically(self):
        self.upload("old", 8)
        self.upload("young", 6)
        self.start("--keep-days", "0")
        others = [self.process]
        for _ in range(2):  # front ends of one database
            self.start("--keep-days", "7")
            others.append(self.process)
        self.await_answer(lambda: self.log_text().count("event=purged"), 3)  # the first front end keeps 400 days
        self.assertEqual(self.sessions(), "young")
        self.assertRegex(self.log_text(), r"event=purged reports=1\n")
        self.assertNotIn("not-purged", self.log_text())
        for process in others:
            process.terminate()
            self.assertEqual(process.wait(PATIENCE), 0)

    def test_a_clock_that_has_jumped_does_not_delete_everything(self):
        for session, days in (("a", 477), ("b", 475), ("c", 400), ("d", 0)):  # it is 400 days ahead since just now
            self.upload(session, days)
        self.start("--keep-days", "90")
        self.await_answer(lambda: "event=purged" in self.log_text(), True)
        self.assertEqual(self.sessions(), "bcd")
        self.assertIn("event=clock-doubted days=400", self.log_text())

    def test_the_first_start_says_how_long_reports_are_kept(self):
        self.assertIn("event=keeping days=400\n", self.log_text())


class Faults(DataTest):
    def test_a_stop_waits_for_a_slow_database(self):
        answers = []
        with self.database.held():
            upload = threading.Thread(target=lambda: answers.append(self.upload("slow")))
            upload.start()
            self.await_answer(lambda: b'kel_bodies_bytes{endpoint="public"} 0\n' in self.ask(
                "GET", "/metrics", address=self.admin)[1], False)
            self.process.terminate()
            time.sleep(0.5)  # a stop that did not wait would take less
            self.assertIsNone(self.process.poll())
        upload.join()
        self.assertEqual((answers, self.process.wait(PATIENCE), self.sessions()), ([(200, b"OK")], 0, "slow"))

    def test_a_slow_page_does_not_delay_checks(self):
        with self.database.held():
            page = threading.Thread(target=self.ask, args=("POST", "/login", "name=x&password=y", self.admin))
            page.start()
            time.sleep(0.5)
            start = time.monotonic()
            for path in ("/healthz", "/metrics") + ("/readyz",) * (KIND == "sqlite"):
                self.assertEqual(self.ask("GET", path, address=self.admin)[0], 200)
            self.assertLess(time.monotonic() - start, 3)  # the page waits ten
            self.assertTrue(page.is_alive())
        page.join()

    def refused(self, reason):
        """An upload fails without a text; the log has the reason."""
        self.assertEqual(self.upload("refused"), (503, b""))
        self.assertRegex(self.log_text().splitlines()[-1], f'level=error event=refused status=503 .*"database: .*({reason})')

    @sqlite
    def test_a_full_disk_refuses_uploads_until_there_is_room(self):
        soft, hard = resource.getrlimit(resource.RLIMIT_FSIZE)
        resource.prlimit(self.process.pid, resource.RLIMIT_FSIZE, (100_000, hard))
        kept = sum(self.upload("kept")[0] == 200 for _ in range(300))
        self.assertLess(kept, 300)
        self.refused("disk")
        self.assertEqual(self.ask("GET", "/readyz", address=self.admin)[0], 200)  # it reads
        resource.prlimit(self.process.pid, resource.RLIMIT_FSIZE, (soft, hard))
        self.assertEqual(self.upload("kept")[0], 200)
        self.assertEqual(self.sessions(), "kept" * (kept + 1))
        self.database.check()

    @sqlite
    def test_a_read_only_file_is_served_and_written_once_writable(self):
        self.require("r", (71063, "M", "any"))
        self.upload("s")
        self.stop()
        with unittest.mock.patch("deployed.SERVER", self.folder / "without_privilege"):
            script = self.folder / "without_privilege"  # root may write anything
            drop = "setpriv --bounding-set=-dac_override --inh-caps=-dac_override" if os.geteuid() == 0 else ""
            script.write_text(f'#!/bin/sh\nexec {drop} {SERVER} "$@"\n')
            script.chmod(0o700)
            os.chmod(self.database.path, 0o400)
            self.start()
        self.refused("readonly")
        self.assertEqual(self.ask("POST", "/service/Analysis/r", analysis("s"))[0], 200)  # a verdict that is not kept
        self.assertEqual(self.ask("GET", "/readyz", address=self.admin), (503, b"the database does not accept writes\n"))
        for path in self.folder.glob("kel.db*"):
            path.chmod(0o600)
        self.assertEqual(self.upload("t"), (200, b"OK"))
        self.assertEqual(self.sessions(), "st")

    @sqlite
    def test_a_removed_or_replaced_file_accepts_nothing(self):
        self.upload("s")
        path, away, copy = self.database.path, self.folder / "away.db", self.folder / "copy.db"
        self.command("backup", copy)
        for source, target in ((path, away), (copy, path)):
            source.rename(target)
            self.refused("removed or replaced")
            self.assertEqual(self.ask("GET", "/readyz", address=self.admin)[0], 503, target)
        away.rename(path)
        self.await_answer(lambda: self.upload("t"), (200, b"OK"))
        self.database.check()
        self.assertEqual(self.sessions(), "st")

    @postgresql
    def test_a_restarted_server_is_used_again(self):
        self.require("r", (71063, "M", "any"))
        for number in (signal.SIGINT, signal.SIGQUIT):  # an end, a crash
            self.upload("s")
            Postgres.server.stop(number)
            self.addCleanup(Postgres.server.start_again)
            self.refused("No such file|refused")
            self.assertEqual(self.ask("GET", "/readyz", address=self.admin)[0], 503)
            Postgres.server.start_again()
            time.sleep(1.1)  # until opening is tried again
            self.assertEqual(self.upload("s"), (200, b"OK"))
            Postgres.server.stop(number)  # which breaks all connections, and no request meets one
            Postgres.server.start_again()
            for _ in range(8):
                self.assertEqual(self.ask("POST", "/service/Analysis/r", analysis("s"))[0], 200)

    @postgresql
    def test_a_full_server_counts_as_a_full_disk(self):
        self.database.run("CREATE FUNCTION fail() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
                          "RAISE disk_full; END $$; CREATE TRIGGER fail BEFORE INSERT ON report EXECUTE FUNCTION fail()")
        self.assertEqual(self.upload("refused"), (503, b""))
        self.assertIn("event=refused status=507", self.log_text())

    @postgresql
    def test_a_silent_server_is_given_up(self):
        self.upload("s")
        for pid in self.database.run("SELECT pid FROM pg_stat_activity WHERE application_name = 'kel_server'"):
            os.kill(*pid, signal.SIGSTOP)
            self.addCleanup(os.kill, *pid, signal.SIGCONT)
        self.refused("no answer for 15 seconds")


if __name__ == "__main__":
    unittest.main()
