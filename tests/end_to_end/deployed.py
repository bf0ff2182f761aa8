"""The deployed service, as a process with its own database."""

import http.client
import os
import socket
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from databases import Database
from harness import API_KEY, PATIENCE, ROOT, write_requirements

SERVER = Path(os.environ.get("KEL_SERVER", ROOT / "build" / "server" / "kel_server"))
LIST, UPLOAD = "/Data/Service.svc/Group/list", f"/Data/Service.svc/upload?apikey={API_KEY}"
INFORMATION = "/SystemInformation/?refid=r&sessid=s"
REPORT = ('<groups><group index="0" id="71424"><value>{0}</value></group>'
          '<group index="0" id="71063"><value>8.0 GB</value></group></groups>  ')
HEAD = f"POST {UPLOAD} HTTP/1.1\r\nHost: x\r\n".encode()


def analysis(session, message_format="xml"):
    return (f"<System><SessionID>{session}</SessionID><ItemID>i</ItemID><UserID/>"
            f"<Format>{message_format}</Format><Schema>1</Schema></System>")


def padded(size, session="s"):
    """A report of the given number of bytes."""
    report = REPORT.format(session).strip().encode()
    return report.replace(b"8.0 GB", b"8.0 GB" + b" " * (size - len(report)))


class Client:
    """The requests that tests of both services make; the test provides `address` and `addCleanup`."""

    def ask(self, verb, path, body="", address=None):
        """Makes one request on a new connection, and returns its status and the bytes of the answer."""
        connection = http.client.HTTPConnection(address or self.address, timeout=PATIENCE)
        self.addCleanup(connection.close)
        connection.request(verb, path, body.encode() if isinstance(body, str) else body)
        answer = connection.getresponse()
        return answer.status, answer.read()

    def connect(self, data=b""):
        host, port = self.address.split(":")
        connection = socket.create_connection((host, int(port)), PATIENCE)
        self.addCleanup(connection.close)
        connection.sendall(data)
        return connection

    def talk(self, data):
        """Sends these bytes, and returns everything until the service closes the connection."""
        return b"".join(iter(lambda connection=self.connect(data): connection.recv(65536), b""))


class DeployedTest(Client, unittest.TestCase):
    """Has a folder with a database, which a service on loopback uses."""

    settings = ()

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.log = self.enterContext(open(self.folder / "log.txt", "a+", encoding="ascii"))
        self.database = Database(self.folder)
        self.command("migrate")
        self.start()

    def command(self, *arguments, code=0):
        """Runs a command to its end, and returns its log."""
        ran = subprocess.run([SERVER, *arguments, "--database", self.database.setting], capture_output=True, text=True,
                             timeout=PATIENCE)
        self.assertEqual(ran.returncode, code, ran.stderr)
        return ran.stderr

    def start(self, *settings):
        for name in ("port", "admin"):
            (self.folder / name).unlink(missing_ok=True)
        self.process = subprocess.Popen(
            [SERVER, "serve", "--database", self.database.setting, "--port", "0", "--admin-port", "0", "--port-file",
             self.folder / "port", "--admin-port-file", self.folder / "admin", *self.settings, *settings], stderr=self.log)
        self.addCleanup(self.process.wait)
        self.addCleanup(self.process.kill)
        end = time.monotonic() + PATIENCE
        while not (self.folder / "port").exists():
            self.assertIsNone(self.process.poll(), "the service ended at once")
            self.assertLess(time.monotonic(), end, "the service does not listen")
            time.sleep(0.01)
        self.address, self.admin = (f"127.0.0.1:{(self.folder / name).read_text()}" for name in ("port", "admin"))

    def await_answer(self, ask, expected):
        """Waits until the service has noticed what other clients did."""
        end = time.monotonic() + PATIENCE
        while (answer := ask()) != expected and time.monotonic() < end:
            time.sleep(0.02)
        self.assertEqual(answer, expected)

    def work(self):
        """The service's processor time in seconds, which does not depend on how busy the machine is."""
        fields = Path(f"/proc/{self.process.pid}/stat").read_text("ascii").rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def stop(self):
        self.process.terminate()
        return self.process.wait(PATIENCE)

    def require(self, referrer, *requirements):
        write_requirements(self.folder, referrer, requirements)
        self.command("import", self.folder)

    def log_text(self):
        self.log.seek(0)
        return self.log.read()
