"""The HTTP side: the requests of the control, the bandwidth test file, and faults on demand."""

import json
import logging
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import parse_qs, unquote, urlsplit

from errors import ServiceError
from misbehaviour import MAX_SECONDS, MISBEHAVIOURS
from reports import ReportStore, parse_analysis, parse_report, parse_system_information
from requirements import load_requirements
from verdict import judge, render

API_KEY = "5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53"
TEST_FILE_PATH = "/global/tests/test_2.bin"
TEST_FILE_SIZE = 1_000_000
TEST_FILE_PIECE = 20_000
TEST_FILE_PAUSE = 0.01  # seconds between pieces, so that loopback looks like a connection of some Mbps
LARGEST_BODY = 64 * 1024 * 1024

log = logging.getLogger("analysis_service")


class AnalysisServer(ThreadingHTTPServer):
    """Listens on loopback only. Can be told to misbehave, also while it runs."""

    daemon_threads = True

    def __init__(self, port, data, requirements, record=None, misbehave=None):
        super().__init__(("127.0.0.1", port), Handler)
        self.reports = ReportStore(data)
        self.requirements = requirements
        self.misbehave = misbehave
        self.longest = MAX_SECONDS
        self.faults = {}  # path -> a misbehaviour for that path alone
        self.requests = []
        self.record_file = record
        self.record_lock = threading.Lock()

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
            # The control comes through a proxy setting, so the target is a whole address.
            target = urlsplit(self.path)
            fault = self.server.misbehave or self.server.faults.get(target.path)
            if fault:
                MISBEHAVIOURS[fault](self)
                return
            self.route(target.path, parse_qs(target.query, keep_blank_values=True), body)
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
        if not length.isascii() or not length.isdigit() or int(length) > LARGEST_BODY:
            self.close_connection = True  # the body stays unread, and is not the next request
            raise ServiceError(400, "The content length is no number or out of range.")
        return self.rfile.read(int(length))

    def route(self, path, query, body):
        if self.command == "GET" and path == TEST_FILE_PATH:
            self.send_test_file()
        elif self.command == "GET" and path == "/Data/Service.svc/Group/list":
            self.check_key(query)
            requirements = self.load(query.get("refid", [""])[0])
            self.reply(200, "|".join(str(number) for number in requirements.groups()))
        elif self.command == "POST" and path == "/Data/Service.svc/upload":
            self.check_key(query)
            self.upload(parse_report(body))
        elif self.command == "POST" and path.rstrip("/") == "/SystemInformation":
            self.upload(parse_system_information(body))
        elif self.command == "POST" and path.startswith("/service/Analysis/"):
            self.analyse(unquote(path.removeprefix("/service/Analysis/")), parse_analysis(body))
        else:
            raise ServiceError(404, "There is no such request.")

    def send_test_file(self, until=1.0):
        """Sends this share of the test file at a steady rate."""
        self.send_response(200)
        self.send_header("Content-Type", "application/octet-stream")
        self.send_header("Content-Length", str(TEST_FILE_SIZE))
        self.end_headers()
        for _ in range(0, int(TEST_FILE_SIZE * until), TEST_FILE_PIECE):
            self.wfile.write(bytes(TEST_FILE_PIECE))
            time.sleep(TEST_FILE_PAUSE)

    @staticmethod
    def check_key(query):
        if query.get("apikey") != [API_KEY]:
            raise ServiceError(403, "The key is not known.")

    def load(self, referrer):
        return load_requirements(self.server.requirements, referrer)

    def upload(self, report):
        session = self.server.reports.keep(report)
        log.info("kept the report of session %r: %d values", session, len(report.values))
        self.reply(200, "OK")

    def analyse(self, referrer, request):
        requirements = self.load(referrer)
        report = self.server.reports.find(request.session)
        result = judge(requirements, report, request)
        log.info("session %r, referrer %r: %s", request.session, referrer, result.total)
        content_type, text = render(result, request.format)
        self.reply(200, text, content_type)

    def reply(self, status, body, content_type="text/plain; charset=utf-8"):
        data = body.encode("utf-8") if isinstance(body, str) else body
        self.send_response(status)
        self.send_header("Content-Type", content_type)
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        self.wfile.write(data)

    def log_request(self, *_):
        pass  # the service writes its own lines

    def log_message(self, text, *arguments):
        log.warning(text, *arguments)
