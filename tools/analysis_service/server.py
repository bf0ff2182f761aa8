"""The HTTP side: records requests, misbehaves on demand, sends the bandwidth test file, and forwards everything else."""

import json
import logging
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import urlsplit

from backend import Backend
from errors import ServiceError
from misbehaviour import MAX_SECONDS, MISBEHAVIOURS, REDIRECTED_PATH

TEST_FILE_PATH = "/global/tests/test_2.bin"
TEST_FILE_SIZE = 1_000_000
TEST_FILE_PIECE = 20_000
TEST_FILE_PAUSE = 0.01  # seconds between pieces, so that loopback looks like a connection of some Mbps
MAX_BODY = 64 * 1024 * 1024

log = logging.getLogger("analysis_service")


class AnalysisServer(ThreadingHTTPServer):
    """Listens on loopback only. `misbehave` and `faults` can be set while it runs."""

    daemon_threads = True

    def __init__(self, port, data, requirements, record=None, misbehave=None):
        self.backend = Backend(data)
        super().__init__(("127.0.0.1", port), Handler)
        self.requirements = requirements
        self.misbehave = misbehave
        self.longest = MAX_SECONDS
        self.faults = {}  # path -> a misbehaviour for that path only
        self.requests = []
        self.record_file = record
        self.record_lock = threading.Lock()

    def server_close(self):
        super().server_close()
        self.backend.close()

    def record(self, request):
        with self.record_lock:
            self.requests.append(request)
            if self.record_file:
                with open(self.record_file, "a", encoding="utf-8") as file:
                    file.write(json.dumps(request) + "\n")

    def handle_error(self, request, client_address):
        log.info("client %s went away", client_address[0])


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    timeout = 30

    def do_GET(self):
        self.serve()

    def do_POST(self):
        self.serve()

    def serve(self):
        try:
            body = self.read_body()
            self.server.record({"line": self.requestline, "headers": self.headers.items(),
                                "body": body.decode("utf-8", "replace")})
            # The control connects through a proxy setting, so the target is an absolute address.
            target = urlsplit(self.path)
            fault = self.server.misbehave or self.server.faults.get(target.path)
            if fault:
                MISBEHAVIOURS[fault](self)
                return
            self.route(target.path, body)
        except ServiceError as error:
            log.warning("%s %s: %s", self.command, self.path, error)
            self.reply(error.status, str(error))
        except OSError:
            raise  # the client went away
        except Exception:
            log.exception("%s %s: the service failed", self.command, self.path)
            self.reply(500, "The service failed.")

    def read_body(self):
        length = self.headers.get("Content-Length", "0")
        if not length.isascii() or not length.isdigit() or int(length) > MAX_BODY:
            self.close_connection = True  # the body stays unread, and is not the next request
            raise ServiceError(400, "The content length is not a number or out of range.")
        return self.rfile.read(int(length))

    def route(self, path, body):
        if self.command == "GET" and path == TEST_FILE_PATH:
            self.send_test_file()
        elif path == REDIRECTED_PATH:
            self.reply(404, "There is no such request.")
        else:
            self.server.backend.load(self.server.requirements)
            status, headers, text = self.server.backend.ask(self.requestline, self.headers.items(), body)
            self.reply(status, text, headers)

    def send_test_file(self, until=1.0):
        """Sends this share of the test file at a steady rate."""
        self.send_response(200)
        self.send_header("Content-Type", "application/octet-stream")
        self.send_header("Content-Length", str(TEST_FILE_SIZE))
        self.end_headers()
        for _ in range(0, int(TEST_FILE_SIZE * until), TEST_FILE_PIECE):
            self.wfile.write(bytes(TEST_FILE_PIECE))
            time.sleep(TEST_FILE_PAUSE)

    def reply(self, status, body, headers=(("Content-Type", "text/plain; charset=utf-8"),)):
        data = body.encode("utf-8") if isinstance(body, str) else body
        self.send_response(status)
        for name, value in headers:
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        self.wfile.write(data)

    def log_request(self, *_):
        pass  # the service writes its own lines

    def log_message(self, text, *arguments):
        log.warning(text, *arguments)
