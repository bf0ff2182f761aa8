"""The deployed service as a separate process, which answers what the development service does not answer itself."""

import http.client
import os
import socket
import subprocess
import threading
import time
from pathlib import Path

from errors import ServiceError

ROOT = Path(__file__).resolve().parents[2]
PROGRAM = Path(os.environ.get("KEL_SERVER", ROOT / "build" / "server" / "kel_server"))
START_SECONDS = 60
ANSWER_SECONDS = 300
HOP_HEADERS = ("connection", "content-length", "date", "server", "transfer-encoding")


class Backend:
    """Runs until close(). Keeps reports in a database in the folder `data`, and its log beside it."""

    def __init__(self, data):
        if not PROGRAM.exists():
            raise FileNotFoundError(f"There is no {PROGRAM}. Build it with: scripts/build.sh server")
        data.mkdir(parents=True, exist_ok=True)
        self.database = data / "kel.db"
        self.imported = {}  # requirement files, as they were when they were imported
        self.lock = threading.Lock()
        self.command("migrate")
        ports = data / "port"
        ports.unlink(missing_ok=True)
        with open(data / "service.log", "a", encoding="utf-8") as log:
            self.process = subprocess.Popen([PROGRAM, "serve", "--database", self.database, "--port", "0", "--admin-port", "0",
                                             "--port-file", ports], stderr=log)
        end = time.monotonic() + START_SECONDS
        while not ports.exists():
            if self.process.poll() is not None or time.monotonic() > end:
                self.close()
                raise RuntimeError(f"The service did not start: {(data / 'service.log').read_text('utf-8')}")
            time.sleep(0.01)
        self.port = int(ports.read_text("ascii"))

    def close(self):
        self.process.kill()
        self.process.wait()

    def command(self, *arguments):
        ran = subprocess.run([PROGRAM, *arguments, "--database", self.database], capture_output=True, text=True, check=False)
        if ran.returncode != 0:
            raise ServiceError(500, ran.stderr.strip())

    def load(self, folder):
        """Imports the requirement files of the folder when one of them has changed."""
        files = {path: (path.stat().st_mtime_ns, path.stat().st_size) for path in folder.glob("*.json")}
        with self.lock:
            if files and files != self.imported:
                self.command("import", "--as-is", folder)
                self.imported = files

    def ask(self, request_line, headers, body):
        """The status, the headers and the body of the answer to a request, which is forwarded unchanged."""
        kept = [f"{name}: {value}" for name, value in headers if name.lower() != "connection"]
        lines = [request_line, *kept, "Connection: close"]
        with socket.create_connection(("127.0.0.1", self.port), ANSWER_SECONDS) as connection:
            connection.sendall("\r\n".join([*lines, "", ""]).encode("latin-1") + body)
            answer = http.client.HTTPResponse(connection, method=request_line.split(" ", 1)[0])
            answer.begin()
            own = [(name, value) for name, value in answer.getheaders() if name.lower() not in HOP_HEADERS]
            return answer.status, own, answer.read()

    def seconds(self):
        """The processor time that it has taken so far."""
        tasks = Path(f"/proc/{self.process.pid}/task").glob("*/schedstat")
        return sum(int(task.read_text("ascii").split()[0]) for task in tasks) / 1e9
