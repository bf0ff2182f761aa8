"""The databases of a service under test: SQLite, or a PostgreSQL server that the tests start."""

import atexit
import contextlib
import itertools
import os
import shutil
import signal
import sqlite3
import subprocess
import tempfile
import time
from pathlib import Path

from harness import PATIENCE

KIND = os.environ.get("KEL_TEST_DATABASE", "sqlite")
NUMBERS = itertools.count()


class Sqlite:
    version, foreign = "PRAGMA user_version = %d", "PRAGMA application_id = 7"

    def __init__(self, folder):
        self.path = self.setting = folder / "kel.db"

    def check(self):
        assert self.run("PRAGMA integrity_check") == [("ok",)]

    def run(self, sql):
        with contextlib.closing(sqlite3.connect(self.path, isolation_level=None)) as connection:
            return connection.execute(sql).fetchall()

    def connections(self, pid):
        """The number of connections that read; one more writes."""
        return sum(os.path.realpath(file) == str(self.path) for file in Path(f"/proc/{pid}/fd").iterdir()) - 1

    @contextlib.contextmanager
    def held(self, _=""):
        """Keeps everything else from writing meanwhile."""
        with contextlib.closing(sqlite3.connect(self.path, isolation_level=None)) as connection:
            connection.execute("BEGIN IMMEDIATE")
            yield
            connection.execute("ROLLBACK")


class Server:
    """A PostgreSQL server in a temporary folder, at a Unix socket in there, until the process ends: with a primary, its
    standby."""

    def __init__(self, *options, primary=None):
        self.options = options
        self.folder = Path(tempfile.mkdtemp(prefix="kel"))
        atexit.register(shutil.rmtree, self.folder)
        self.programs = max(Path("/usr/lib/postgresql").glob("*/bin"), key=lambda path: int(path.parent.name))
        self.user = []  # PostgreSQL does not run as root
        if os.geteuid() == 0:
            self.user = ["--reuid=postgres", "--regid=postgres", "--clear-groups"]
            shutil.chown(self.folder, "postgres")
        # A language that does not sort by bytes.
        make = (["initdb", "-U", "kel", "-A", "trust", "-N", "--locale=C.UTF-8", "--locale-provider=icu", "--icu-locale=en-US"]
                if primary is None else ["pg_basebackup", "-R", "-c", "fast", "-d", primary.address("postgres")])
        subprocess.run(self.command(*make, "-D", self.folder / "data"), check=True, cwd="/", stdout=subprocess.DEVNULL)
        self.start()
        atexit.register(self.stop)

    def command(self, program, *arguments):
        return ["setpriv", "--pdeathsig", "INT", *self.user, self.programs / program, *arguments]

    def address(self, name):
        return f"postgresql://kel@/{name}?host={self.folder}"

    def start(self):
        with open(self.folder / "log.txt", "a", encoding="utf-8") as log:
            command = self.command("postgres", "-D", self.folder / "data", "-k", self.folder, "-h", "", *self.options)
            self.process = subprocess.Popen(command, cwd="/", stderr=log)
        end = time.monotonic() + PATIENCE
        while subprocess.run([self.programs / "pg_isready", "-q", "-h", self.folder]).returncode:
            assert self.process.poll() is None and time.monotonic() < end, (self.folder / "log.txt").read_text("utf-8")
            time.sleep(0.02)

    def stop(self, number=signal.SIGINT):
        """Stops the server; with SIGQUIT, as in a crash."""
        self.process.send_signal(number)
        self.process.wait(PATIENCE)

    def signal_all(self, number):
        """Sends a signal to the server and to each of its processes."""
        children = subprocess.run(["pgrep", "-P", str(self.process.pid)], capture_output=True, text=True).stdout.split()
        for pid in (self.process.pid, *map(int, children)):
            with contextlib.suppress(ProcessLookupError):
                os.kill(pid, number)

    def start_again(self):
        if self.process.poll() is not None:
            self.start()

    def ask(self, name, sql):
        return subprocess.run(self.psql(name, sql), check=True, capture_output=True, text=True, timeout=60).stdout.split()

    def psql(self, name, sql):
        return [self.programs / "psql", "-XqAt", "-v", "ON_ERROR_STOP=1", "-d", self.address(name), "-c", sql]


class Postgres:
    version, foreign = "UPDATE kel_schema SET version = %d", "DROP TABLE kel_schema"
    server = None

    def __init__(self, _):
        Postgres.server = Postgres.server or Server("-F")
        self.name = f"kel{next(NUMBERS)}"
        subprocess.run(self.server.psql("postgres", f"CREATE DATABASE {self.name}"), check=True)
        self.setting = self.server.address(self.name)

    def check(self):
        """Nothing to do: the server manages its files itself."""

    def run(self, sql):
        output = subprocess.run(self.server.psql(self.name, sql), check=True, capture_output=True, text=True).stdout
        return [tuple(int(text) if text.lstrip("-").isdigit() else text for text in line.split("|"))
                for line in output.splitlines()]

    def connections(self, _):
        return self.run("SELECT count(*) FROM pg_stat_activity WHERE application_name = 'kel_server' "
                        "AND datname = current_database()")[0][0]

    @contextlib.contextmanager
    def held(self, tables="report, requirement_set, audit"):
        lock = subprocess.Popen([self.server.programs / "psql", "-XqAt", "-d", self.setting], text=True,
                                stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        lock.stdin.write(f"BEGIN; LOCK TABLE {tables}; SELECT 1;\n")
        lock.stdin.flush()
        lock.stdout.readline()
        yield
        lock.communicate("ROLLBACK;\n")


Database = {"sqlite": Sqlite, "postgresql": Postgres}[KIND]
