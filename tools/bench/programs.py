"""Runs the measuring programs under Wine, with a local analysis service that times its own work."""

import os
import platform
import re
import subprocess
import sys
import threading
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build" / "release"
DLL = BUILD / "Detection.dll"
sys.path.insert(0, str(ROOT / "tools" / "analysis_service"))
from server import AnalysisServer, Handler  # noqa: E402


class TimedHandler(Handler):
    """Adds up the processor time of its thread and of the service behind it, from the arrival of a request or connection
    until the answer is written."""

    def work(self):
        return time.thread_time() + self.server.backend.seconds()

    def setup(self):
        self.began = self.work()
        super().setup()

    def parse_request(self):
        self.began = self.began or self.work()
        return super().parse_request()

    def serve(self):
        super().serve()
        self.server.seconds += self.work() - self.began
        self.began = None


class Programs:
    """Runs the programs against a local service."""

    def __init__(self, folder):
        self.service = AnalysisServer(0, folder / "sessions", folder)
        self.service.RequestHandlerClass = TimedHandler
        self.service.seconds = 0
        self.thread = threading.Thread(target=self.service.serve_forever, kwargs={"poll_interval": 0.02})
        self.environment = dict(os.environ, http_proxy=f"http://127.0.0.1:{self.service.server_address[1]}")

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.service.shutdown()
        self.service.server_close()
        self.thread.join()

    def service_milliseconds(self):
        """The service's time, in milliseconds, for the program that ran last."""
        return 1000 * self.service.seconds

    def wine(self, *arguments):
        self.service.seconds = 0
        return subprocess.run(["wine", *arguments], env=self.environment, check=True, timeout=120, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    def run(self, program, *arguments):
        """The figures that a program printed, by name, and its timed lines of debugger output."""
        figures, lines = {}, []
        for line in self.wine(str(BUILD / "tools" / "bench" / f"{program}.exe"), *arguments).splitlines():
            name, value, *rest = line.split(" ", 2)
            if name == "line":
                lines.append((float(value), "".join(rest)))
            else:
                figures[name] = float(value)
        return figures, lines

    def script_milliseconds(self, name):
        script = "Z:" + str(ROOT / "tools" / "bench" / f"{name}.vbs").replace("/", "\\")
        return self.milliseconds("cscript", "//nologo", script)

    def milliseconds(self, *arguments):
        """A whole process, from its start to its end."""
        start = time.perf_counter()
        self.wine(*arguments)
        return 1000 * (time.perf_counter() - start)


def cabinet_size(folder):
    """The size in bytes of a cabinet with only the DLL."""
    cabinet = folder / "Detection.cab"
    cabinet.unlink(missing_ok=True)
    subprocess.run(["gcab", "--create", "--zip", "--nopath", str(cabinet), str(DLL)], check=True)
    return cabinet.stat().st_size


def machine():
    """The machine on which the figures were taken."""
    processor = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    wine = subprocess.run(["wine", "--version"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
    commit = subprocess.run(["git", "-C", str(ROOT), "rev-parse", "--short", "HEAD"], stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL, text=True).stdout
    return (f"{time.strftime('%Y-%m-%d')}, commit {commit.strip() or 'unknown'}, {os.cpu_count()} x "
            f"{processor.group(1) if processor else platform.processor()}, {wine.split()[0]}, "
            f"load {os.getloadavg()[0]:.1f} when it began")
