"""Measures each page of the administration over a large store: the time until its answer has come, and the processor time
that the service and its database take for it."""

import http.client
import json
import re
import time
from pathlib import Path
from statistics import median
from urllib.parse import urlencode

AIM = 100  # milliseconds of processor time
ROUNDS = 7
PRODUCTS = 200
DRAFT = {"title": "Demo", "requirements": [
    {"id": 71063, "label": "Memory", "comparison": "at least", "needed": "16 GB"},
    {"id": 72402, "label": "Resolution", "comparison": "at least", "needed": "1920x1080"}]}
BY_LINE = "/reports?referrer=demo&version=1&once=1&line={}&result={}"
# What is measured, and the address; REPORT stands for the number of a report.
PAGES = (
    ("Overview", "/"), ("Overview of all days, sorted", "/?period=all&sort=change"), ("Overview, a product found", "/?find=77"),
    ("A product, 30 days", "/products/demo"), ("A product, all days", "/products/demo?period=all"),
    ("A product, another value", "/products/demo?period=all&value=72402"),
    ("A product's requirements", "/products/demo/requirements"),
    ("A version", "/products/demo/version?number=1"), ("Reports", "/reports"), ("Reports that fail", "/reports?verdict=fail"),
    ("Sessions of a number on a page", "/reports?referrer=demo&version=1&verdict=unknown&once=1&period=90d"),
    ("Reports of 7 days", "/reports?period=7d"), ("Failing sessions of all products", "/reports?once=1&verdict=fail&period=30d"),
    ("Reports of a day", "/reports?referrer=demo&from=DAY&until=DAY"),
    ("A line that a quarter fails", BY_LINE.format(8, "fail")), ("A line that ten leave unknown", BY_LINE.format(27, "unknown")),
    ("A line that none fails", BY_LINE.format(2, "fail")), ("Reports of a session", "/reports?session=s-77"),
    ("Reports of a user that all have", "/reports?user=visitor"), ("Reports of a machine", "/reports?machine=m-77"),
    ("A value that a fifth has", "/reports?value=71063&comparison=at+least&text=63+GB"),
    ("A value that none has, until the search stops", "/reports?value=71063&comparison=equals&text=77+GB"),
    ("A report", "/reports/REPORT"), ("A report's XML", "/reports/REPORT/xml"),
    ("Deletion of a session", "/reports/REPORT/delete"),
    ("Values", "/values"), ("Values, some found", "/values?find=memory"), ("Check a file", "/check"), ("Audit", "/audit"),
    ("Audit, searched", "/audit?text=demo"), ("API: products", "/api/v1/referrers"), ("API: a report", "/api/v1/reports/REPORT"),
    ("API: 50 reports", "/api/v1/reports?after=REPORT&count=50"), ("Editor, Try", "POST /products/demo/requirements"),
    ("Metrics", "/metrics"))


def prepare(publish, folder):
    """Publishes requirements of further products."""
    files = folder / "products"
    files.mkdir(parents=True)
    for number in range(PRODUCTS):
        text = {**DRAFT, "title": f"Product number {number}"}
        (files / f"product-{number}.json").write_text(json.dumps(text), "ascii")
    publish(files)


def processor_time(pids):
    """Milliseconds that the processes and their children have had."""
    total = 0
    for folder in Path("/proc").glob("[0-9]*"):
        try:
            parent = int((folder / "stat").read_text("ascii").rsplit(")", 1)[1].split()[1])
            if int(folder.name) in pids or parent in pids:
                total += sum(int((task / "schedstat").read_text("ascii").split()[0]) for task in (folder / "task").iterdir())
        except OSError:
            continue  # it has ended
    return total / 1e6


def measure(port, pids, password):
    """For each page the medians of the processor time and of the time until its answer, in milliseconds."""
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=300)
    headers = {}

    def ask(verb, path, body=None):
        connection.request(verb, path, body, headers)
        answer = connection.getresponse()
        return answer, answer.read().decode()
    answer, _ = ask("POST", "/login", urlencode({"name": "load", "password": password}))
    headers["Cookie"] = answer.headers["Set-Cookie"].split(";")[0]
    token = re.search('name="token" value="([^"]*)"', ask("GET", "/")[1])[1]
    # The visitors of a short run leave no room for that session.
    listed = (re.search(r"/reports/(\d+)", ask("GET", page)[1]) for page in ("/reports?session=s-77", "/reports"))
    report = next(filter(None, listed))[1]
    times = {}
    for name, page in PAGES:
        page = page.replace("REPORT", report).replace("DAY", time.strftime("%Y-%m-%d", time.gmtime(time.time() - 40 * 86400)))
        request = ("GET", page)
        if page.startswith("POST "):
            request = ("POST", page[5:], urlencode({"token": token, "revision": 0, "do": "try", "text": json.dumps(DRAFT)}))
        runs = []
        for _ in range(ROUNDS):
            worked, begun = processor_time(pids), time.monotonic()
            answer, text = ask(*request)
            taken = (time.monotonic() - begun) * 1000
            runs.append((processor_time(pids) - worked, taken))
            if answer.status != 200:
                raise RuntimeError(f"{page}: {answer.status} {text[:500]}")
        times[name] = tuple(median(figures) for figures in zip(*runs))
    return times


def text(machine, reports, times):
    slowest = {store: max(figures[0] for figures in pages.values()) for store, pages in times.items()}
    lines = ["# Times of the administration's pages", "",
             "Written by `scripts/load.sh --pages --page`. What they mean: "
             "[performance](../performance.md#the-analysis-service).", "",
             f"{machine}; {reports:,} reports, more than {PRODUCTS} products with counts of 90 days. Medians of {ROUNDS} "
             "requests in milliseconds: the processor time of the service and its database, and the time until the answer has "
             "come, which depends on what else runs.", ""]
    lines += [f"- {store}: each page within {AIM} ms of processor time is {'met' if most <= AIM else 'missed'}, the slowest "
              f"takes {most:.0f} ms." for store, most in slowest.items()]
    lines += ["", "| page | " + " | ".join(f"{store}: processor, answer" for store in times) + " |",
              "|---|" + "---:|" * len(times)]
    for name, page in PAGES:
        lines.append(f"| {name}, `{page}` | " + " | ".join("{:.1f}, {:.1f}".format(*figures[name])
                                                           for figures in times.values()) + " |")
    return "\n".join(lines) + "\n"
