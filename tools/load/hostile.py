"""Attacks on the analysis service, on loopback and bounded in time, and what an ordinary visitor and the operator's check
get meanwhile."""

import asyncio
import http.client
import multiprocessing
import re
import resource
import socket
import sqlite3
import threading
import time
from contextlib import closing, contextmanager, nullcontext, suppress

KEY = "5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53"
LIST = f"/Data/Service.svc/Group/list?refid=demo&apikey={KEY}"
UPLOAD = f"/Data/Service.svc/upload?apikey={KEY}"
ANALYSIS = "/service/Analysis/demo"
RATE, BURST = 50, 200  # requests that the example proxy allows one address per second, and at once
SMALL = 16 * 1024
MAX_BODY, MAX_GROUPS = 256 * 1024, 4990  # of a report that is accepted with its session and memory
MAX_FORM = 4 * 1024 * 1024


def report(session, groups="", spaces=0):
    return (f'<groups><group index="0" id="71424"><value>{session}</value></group><group index="0" id="71063"><value>8.0 GB'
            f"</value></group>{groups}</groups>" + " " * spaces).encode()


def analysis(session):
    return (f"<System><SessionID>{session}</SessionID><ItemID/><UserID/><Format>xml</Format><Schema>1</Schema></System>").encode()


def request(method, target, body=b""):
    return f"{method} {target} HTTP/1.1\r\nHost: localhost\r\nContent-Length: {len(body)}\r\n\r\n".encode() + body


def largest(port):
    """Uploads the most expensive report that the service accepts, as the session "large", and returns its body."""
    body = report("large", '<group id="z1"/>' * MAX_GROUPS)
    body += b" " * (MAX_BODY - len(body))
    with closing(http.client.HTTPConnection("127.0.0.1", port, timeout=60)) as connection:
        connection.request("POST", UPLOAD, body)
        if (status := connection.getresponse().status) != 200:
            raise RuntimeError(f"the largest report is not taken: {status}")
    return body


class Allowance:
    """Allows a burst of requests at once, and then a number per second."""

    def __init__(self, rate=RATE, burst=BURST):
        self.rate, self.burst, self.start, self.used = rate, burst, time.monotonic(), 0

    async def take(self):
        self.used += 1
        await asyncio.sleep(max(0, (self.used - self.burst) / self.rate - (time.monotonic() - self.start)))


async def repeat(port, data, allowance):
    """One client that repeats the same request."""
    while True:
        with suppress(OSError, asyncio.IncompleteReadError):
            reader, writer = await asyncio.open_connection("127.0.0.1", port)
            while True:
                if allowance:
                    await allowance.take()
                writer.write(data)
                head = await reader.readuntil(b"\r\n\r\n")
                length = int(head.lower().split(b"content-length:")[1].split(b"\r")[0])
                await reader.readexactly(length)
                if b"connection: close" in head.lower():
                    break
            writer.close()
        await asyncio.sleep(0.01)


async def forget(port, data, allowance):
    """A client that never waits for its answers."""
    while True:
        await allowance.take()
        with suppress(OSError):
            _, writer = await asyncio.open_connection("127.0.0.1", port)
            writer.write(data)
            await writer.drain()
            writer.close()


async def begin(port, data):
    """A client that sends a part of a request and then nothing."""
    with suppress(OSError):
        reader, writer = await asyncio.open_connection("127.0.0.1", port)
        writer.write(data)
        await reader.read()
        writer.close()


async def all_of(clients):
    await asyncio.gather(*clients)


def verdicts(port, *_, count=150, allowance=Allowance):
    shared = allowance()
    return [repeat(port, request("POST", ANALYSIS, analysis("large")), shared) for _ in range(count)]


def unlimited(port, *_):
    return verdicts(port, allowance=lambda: None)


def forgotten(port, *_):
    allowance = Allowance()
    return [forget(port, request("POST", ANALYSIS, analysis("large")), allowance) for _ in range(20)]


def bodies(port, body, _=None, count=60):
    return [repeat(port, request("POST", UPLOAD, body), None) for _ in range(count)]


def halves(port, body, _):
    head = f"POST {UPLOAD} HTTP/1.1\r\nHost: localhost\r\nContent-Length: ".encode()
    return ([begin(port, head + b"%d\r\n\r\n" % len(body) + body[:-100]) for _ in range(268_435_456 // len(body) + 50)] +
            [begin(port, head + b"%d\r\n\r\n" % SMALL + body[:SMALL - 100]) for _ in range(1000)])


def crowd(port, body, admin):
    headers = [begin(port, b"POST / HTTP/1.1\r\nX: " + b"x" * 7900) for _ in range(9500)]
    form = request("POST", "/login", b"x" * MAX_FORM)[:-100]
    forms = [begin(admin, form) for _ in range(128)]
    return headers + forms + bodies(port, body, count=50) + verdicts(port)


def nothing(*_):
    return []


def settle(server, patience=30):
    """Waits until no more attackers arrive."""
    count, end = 0, time.monotonic() + patience
    while time.monotonic() < end:
        time.sleep(1)
        with closing(http.client.HTTPConnection("127.0.0.1", server.admin, timeout=60)) as connection:
            connection.request("GET", "/metrics")
            page = connection.getresponse().read().decode()
            before, count = count, int(re.search(r'kel_connections{endpoint="public"} (\d+)', page)[1])
        if count <= before + 10:
            break


def attack(clients, *target):
    """Runs an attack in this process until it is ended."""
    limit = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
    resource.setrlimit(resource.RLIMIT_NOFILE, (limit, limit))
    asyncio.run(all_of(clients(*target)))


@contextmanager
def locked(database):
    """Another process has the database's write lock."""
    with closing(sqlite3.connect(database, isolation_level=None)) as connection:
        connection.execute("BEGIN IMMEDIATE")
        yield


class Times:
    """The durations of requests in seconds, and the number of those that were not answered with 200."""

    def __init__(self):
        self.seconds, self.failures = [], 0

    def ask(self, port, *parts):
        start = time.monotonic()
        try:
            with closing(http.client.HTTPConnection("127.0.0.1", port, timeout=60)) as connection:
                connection.request(*parts)
                self.failures += connection.getresponse().status != 200
        except (OSError, http.client.HTTPException):
            self.failures += 1
        self.seconds.append(time.monotonic() - start)

    def at(self, share):
        return sorted(self.seconds)[int(share * (len(self.seconds) - 1))] * 1000


def visit(server, seconds, is_read_only):
    """Makes a visitor's requests and, in parallel, the operator's checks, and returns their times."""
    visitor, check, end = Times(), Times(), time.monotonic() + seconds

    def watch():
        while time.monotonic() < end:
            check.ask(server.admin, "GET", "/readyz")
            time.sleep(0.05)
    watcher = threading.Thread(target=watch)
    watcher.start()
    number = 0
    while time.monotonic() < end:
        number += 1
        visitor.ask(server.port, "GET", LIST)
        if not is_read_only:
            visitor.ask(server.port, "POST", UPLOAD, report(f"v{number}"))
            visitor.ask(server.port, "POST", ANALYSIS, analysis(f"v{number}"))
        time.sleep(0.02)
    watcher.join()
    return visitor, check


ATTACKS = (
    ("nobody", nothing, 2), ("150 connections, verdicts of the largest report, within the proxy's limits", verdicts, 2),
    ("the same without a proxy", unlimited, 2), ("verdicts that nobody waits for, within the proxy's limits", forgotten, 2),
    ("60 connections, the largest bodies, without a proxy", bodies, 2),
    ("bodies sent by half: 256 MB large, 1,000 small", halves, 2),
    ("memory with 16 workers: 9,500 headers and 128 forms sent by half, 150 connections for verdicts, 50 for bodies", crowd, 16),
    ("the database locked by another process, 60 uploads; group lists alone", bodies, 2))


def end(server, body):
    """Seconds that the service takes to end while one client has sent half a body and another does not read its answer."""
    with closing(socket.create_connection(("127.0.0.1", server.port))) as half, \
            closing(socket.create_connection(("127.0.0.1", server.port))) as deaf:
        for client, data in (half, request("POST", UPLOAD, body)[:-9]), (deaf, request("GET", "/global/tests/test_2.bin") * 9):
            with suppress(OSError):  # it is refused while attackers still hold all memory
                client.sendall(data)
        start = time.monotonic()
        server.process.terminate()
        server.process.wait(120)
        return time.monotonic() - start


def measure(attacks, start, database, seconds, rest):
    """A row for each attack. `start` starts a service with the given settings. When memory is measured, the attack has at
    least `rest` seconds to take it, and the service the same time to release it."""
    for name, clients, workers in attacks:
        is_locked, patience = "locked" in name, rest if "memory" in name else 0
        # Without the bound on a session's reports, which would end the attack with the largest bodies after a second.
        with start("--workers", str(workers), "--session-reports", "0") as server:
            body = largest(server.port)
            target = clients, server.port, body, server.admin
            attacker = multiprocessing.get_context("fork").Process(target=attack, args=target, daemon=True)
            with locked(database) if is_locked else nullcontext():
                attacker.start()
                settle(server)
                visitor, check = visit(server, max(seconds, patience), is_locked)
            attacker.kill()
            attacker.join()
            peak = server.memory()
            time.sleep(patience)
            left = server.memory("VmRSS")
            stop = end(server, body)
        yield name, visitor, check, peak, left, stop


def table(rows):
    lines = ["| attack | visitor: median, 99 %, worst | not served | `/readyz`: 99 %, worst | memory: peak, afterwards | stop |",
             "|---|---:|---:|---:|---:|---:|"]
    for name, visitor, check, peak, left, stop in rows:
        lines.append(f"| {name} | {visitor.at(0.5):.0f}, {visitor.at(0.99):.0f}, {visitor.at(1):.0f} ms | "
                     f"{visitor.failures} of {len(visitor.seconds)} | {check.at(0.99):.0f}, {check.at(1):.0f} ms | "
                     f"{peak:.0f}, {left:.0f} MB | {stop:.1f} s |")
    return "\n".join(lines) + "\n"
