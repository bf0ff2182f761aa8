"""Measures the analysis service under load, side by side with an empty service with the same library: prints a table, and
with --page writes it to docs/generated/load.md. --seconds N: how long each load lasts; --reports N: the largest store.
--pages: measures only the administration's pages; --page writes them to docs/generated/pages.md.
--hostile: measures instead what a visitor gets during attacks."""

import argparse
import json
import os
import re
import subprocess
import sys
import tempfile
import time
from datetime import date
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "end_to_end"))
import databases  # noqa: E402
import hostile  # noqa: E402
import pages  # noqa: E402
import stores  # noqa: E402

BUILD = Path(os.environ.get("KEL_BUILD", ROOT / "build" / "server"))
CONNECTIONS = 16
KINDS = ("group list", "upload", "analysis")
WAITING = 1000  # pages that ask for a verdict once in two seconds
WAIT_SECONDS = 5  # at least, so that each of them asks more than once
PASSWORD = "a password of some length"


class Server:
    """A process that listens; `folder` takes its files."""

    def __init__(self, folder, *command, admin=True):
        self.ports = [folder / "port", folder / "admin"][:1 + admin]
        for path in self.ports:
            path.unlink(missing_ok=True)
        self.process = subprocess.Popen(command, stderr=subprocess.DEVNULL)
        end = time.monotonic() + 30
        while not self.ports[0].exists() or not self.ports[0].read_text():
            if self.process.poll() is not None or time.monotonic() > end:
                raise RuntimeError(f"{command[0]} does not listen")
            time.sleep(0.01)
        self.port, self.admin = (int(path.read_text()) for path in (self.ports * 2)[:2])

    def memory(self, field="VmHWM"):
        """Memory in megabytes: by default the peak, with "VmRSS" the present use."""
        status = Path(f"/proc/{self.process.pid}/status").read_text("ascii")
        return int(re.search(rf"{field}:\s*(\d+)", status)[1]) / 1024

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(60)


def command(database, *arguments, text=None):
    return subprocess.run([BUILD / "kel_server", *arguments, "--database", database], check=True, text=True, input=text,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout


def service(folder, database, *settings):
    folder.mkdir(exist_ok=True)
    return Server(folder, BUILD / "kel_server", "serve", "--database", database, "--port", "0", "--admin-port", "0",
                  "--port-file", folder / "port", "--admin-port-file", folder / "admin", *settings)


def prepare(database):
    """A database with the demo's requirements, and with an account for its pages."""
    command(database, "migrate")
    command(database, "import", ROOT / "examples" / "requirements")
    command(database, "user", "add", "editor", "load", text=PASSWORD + "\n")


def load(seconds, *servers, waiting=0):
    ran = subprocess.run([BUILD / "load" / "kel_load", str(seconds), str(CONNECTIONS), str(waiting), "demo", BUILD / "report.xml",
                          *(str(server.port) for server in servers)], check=True, text=True, stdout=subprocess.PIPE)
    figures = json.loads(ran.stdout)
    if figures["failures"]:
        raise RuntimeError(f"{figures['failures']} requests failed")
    figures["memory"] = sum(server.memory() for server in servers)
    return figures


def measure_sqlite(folder, options, rows, times):
    database = folder / "kel.db"
    prepare(database)
    pages.prepare(lambda files: command(database, "import", files), folder)
    for count in (0, options.reports // 10, options.reports):
        if options.pages and 0 < count < options.reports:
            continue
        if count:
            stores.fill(stores.SqliteStore(database), count)
        with service(folder, database) as server:
            rows.append((f"SQLite, {count:,} reports", load(options.seconds, server)))
            if count == options.reports:
                stores.add_products(stores.SqliteStore(database))
                times["SQLite"] = pages.measure(server.admin, [server.process.pid], PASSWORD)
    if not options.pages:
        with service(folder, database) as server:
            waited = load(max(options.seconds, WAIT_SECONDS), server, waiting=WAITING)
            rows.append((f"{WAITING:,} pages wait beside, SQLite", waited))


def measure_postgres(folder, options, rows, times):
    """Measures with a PostgreSQL server that writes each commit to the disk."""
    server = databases.Server()
    subprocess.run(server.psql("postgres", "CREATE DATABASE load"), check=True)
    database = server.address("load")
    prepare(database)
    pages.prepare(lambda files: command(database, "import", files), folder / "postgresql")
    settings = database, "--workers", "16", "--database-connections", "16"
    with service(folder / "a", *settings) as one, service(folder / "b", *settings) as other:
        rows.append(("PostgreSQL, one front end", load(options.seconds, one)))
        if not options.pages:
            rows.append(("PostgreSQL, two front ends", load(options.seconds, one, other)))
    store = stores.PostgresStore(server, "load")
    stores.fill(store, options.reports)
    with service(folder / "a", *settings) as one:
        if not options.pages:
            rows.append((f"PostgreSQL, {options.reports:,} reports", load(options.seconds, one)))
        stores.add_products(store)
        times["PostgreSQL"] = pages.measure(one.admin, [one.process.pid, server.process.pid], PASSWORD)


def aims(rows):
    """The aims of the service with SQLite, and whether they were met."""
    first, *others = (figures for name, figures in rows if name.startswith("SQLite"))
    slowest = max(figures[kind][1] for figures in (first, *others) for kind in KINDS)
    slower = max(others[-1][kind][0] / first[kind][0] for kind in KINDS)
    [waiting] = (figures for name, figures in rows if "wait" in name)
    lines = ["| aim, with SQLite | measured | |", "|---|---:|---|"]
    for aim, measured, unit, is_met in (
            ("2,000 runs a second, without stored reports", first["runs"], "", first["runs"] >= 2000),
            ("99 of 100 requests within 50 ms", slowest, " ms", slowest <= 50),
            ("with the most reports each kind of request 1.2 times as long as without", slower, " times", slower <= 1.2),
            (f"99 of 100 group lists within 50 ms while {WAITING:,} pages wait", waiting["group list"][1], " ms",
             waiting["group list"][1] <= 50)):
        lines.append(f"| {aim} | {measured:,.{1 if measured < 10 else 0}f}{unit} | {'met' if is_met else 'missed'} |")
    return [*lines, ""]


def measure_hostile(folder, options):
    database = folder / "kel.db"
    prepare(database)
    attacks = [attack for attack in hostile.ATTACKS if options.match in attack[0]]
    rows = hostile.measure(attacks, lambda *settings: service(folder, database, *settings), database, options.seconds,
                           options.rest)
    return (f"{machine()}, {options.seconds:g} s each; attackers and visitor run on the same processors. The largest report has "
            f"the {hostile.MAX_BODY // 1024} KB that a body may have by default, and {hostile.MAX_GROUPS:,} groups of values. "
            f"Memory \"afterwards\" is what the service keeps at the end of the attack; in the row about memory, after "
            f"{options.rest:g} s of attack and {options.rest:g} s of rest.\n\n" + hostile.table(rows))


def machine():
    cpu = re.search(r"model name\s*:\s*(.*)", Path("/proc/cpuinfo").read_text("utf-8"))[1]
    commit = subprocess.run(["git", "-C", ROOT, "rev-parse", "--short", "HEAD"], text=True, stdout=subprocess.PIPE).stdout.strip()
    return f"{date.today()}, commit {commit}, {os.cpu_count()} x {cpu}"


def text(rows, seconds):
    lines = [f"{machine()}, {CONNECTIONS} connections, {seconds:g} s each; the "
             "visitors run on the same processors.", "", *aims(rows),
             "| service | runs a second | " + " | ".join(f"{kind}: median, 99 %" for kind in KINDS) + " | memory |",
             "|---|---:|" + "---:|" * len(KINDS) + "---:|"]
    for name, figures in rows:
        lines.append(f"| {name} | {figures['runs']:,.0f} | " + " | ".join(
            f"{figures[kind][0]:.2f}, {figures[kind][1]:.1f} ms" for kind in KINDS) + f" | {figures['memory']:.0f} MB |")
    [question] = (figures["question"] for name, figures in rows if "wait" in name)
    lines += ["", f"A waiting page's question takes {question[0]:.1f} ms, 99 of 100 within {question[1]:.0f} ms: reports and "
              "verdicts of the visitors have the same threads, which keeps group lists quick."]
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(prog="scripts/load.sh", description=__doc__)
    parser.add_argument("--seconds", type=float, default=10)
    parser.add_argument("--reports", type=int, default=1_000_000)
    parser.add_argument("--page", action="store_true")
    parser.add_argument("--pages", action="store_true")
    parser.add_argument("--hostile", action="store_true")
    parser.add_argument("--rest", type=float, default=30, help="seconds of the attack on memory, and as many of rest")
    parser.add_argument("--match", default="", help="only attacks whose names contain this text")
    options = parser.parse_args()
    if options.hostile:
        with tempfile.TemporaryDirectory(dir=BUILD) as name:
            table = measure_hostile(Path(name), options)
    else:
        options.seconds = 0.1 if options.pages else options.seconds
        table, times = measure_load(options)
        shown = pages.text(machine(), options.reports, times)
        print(shown)
        if options.page:
            (ROOT / "docs" / "generated" / "pages.md").write_text(shown, "utf-8")
        if options.pages:
            return
    print(table)
    if options.page:
        write_page(table, options.hostile)


def measure_load(options):
    report = (ROOT / "tools" / "load" / "report.xml").read_text("ascii").strip()
    (BUILD / "report.xml").write_text(report.replace("MEMORY", "15.9 GB").replace("RESOLUTION", "2560x1440"), "ascii")
    rows, times = [], {}
    with tempfile.TemporaryDirectory(dir=BUILD) as name:
        folder = Path(name)
        with Server(folder, BUILD / "load" / "kel_empty", folder / "port", admin=False) as empty:
            rows.append(("an empty one", load(options.seconds, empty)))
        measure_sqlite(folder, options, rows, times)
        measure_postgres(folder, options, rows, times)
    return "" if options.pages else text(rows, options.seconds), times


def write_page(table, is_hostile):
    """Replaces one of the page's two parts, and keeps the other."""
    page = ROOT / "docs" / "generated" / "load.md"
    heading = "\n## Beside attacks\n\n"
    begin = ("# Figures of the analysis service under load\n\nWritten by `scripts/load.sh --page`. What they mean: "
             "[performance](../performance.md#the-analysis-service).\n\n")
    ordinary, _, attacked = page.read_text("utf-8").removeprefix(begin).partition(heading)
    attacked_begin = "Written by `scripts/load.sh --hostile --page`.\n\n"
    parts = [ordinary, attacked.removeprefix(attacked_begin)]
    parts[is_hostile] = table
    page.write_text(begin + parts[0] + heading + attacked_begin + parts[1], "utf-8")


if __name__ == "__main__":
    main()
