"""Fills a service's database with reports, by SQL, as the service would have stored them: with their verdicts and the counts
by day."""

import json
import re
import sqlite3
import subprocess
import time
from collections import Counter

DAY = 24 * 3600 * 1000
SPREAD = 90 * DAY  # the time in which the stored reports arrived, in milliseconds
MEMORIES = ("3.9 GB", "7.8 GB", "15.9 GB", "31.9 GB", "63.9 GB")
RESOLUTIONS = ("1366x768", "1920x1080", "2560x1440", "3840x2160")
TOTALS = ("pass", "pass", "fail", "unknown")
FAILING = 7  # the place of the line that the failing verdicts do not meet
RARE = 100_000  # one verdict of this many leaves the last line unknown
BATCH = 10_000


class SqliteStore:
    part, zero = "", ""  # of a count by day, which PostgreSQL has in parts

    def __init__(self, path):
        self.connection = sqlite3.connect(path)
        self.run = self.connection.executescript

    def rows(self, sql):
        return self.connection.execute(sql).fetchall()

    def pause_triggers(self):
        """The statements that restore the triggers; with them, a million verdicts would take minutes."""
        triggers = self.rows("SELECT name, sql FROM sqlite_master WHERE type = 'trigger' AND tbl_name IN ('report', 'verdict')")
        self.run(";".join(f"DROP TRIGGER {name}" for name, _ in triggers))
        return ";".join(sql for _, sql in triggers)


class PostgresStore:
    part, zero = ", part", ", 0"

    def __init__(self, server, name):
        self.command = server.psql(name, "")[:-2]

    def run(self, sql):
        return subprocess.run([*self.command, "-f", "-"], input=sql, check=True, text=True, stdout=subprocess.PIPE).stdout

    def rows(self, sql):
        return [line.split("|") for line in self.run(sql).splitlines()]

    def pause_triggers(self):
        switch = "; ".join(f"ALTER TABLE {table} {{0}} TRIGGER USER" for table in ("report", "verdict"))
        self.run(switch.format("DISABLE"))
        return switch.format("ENABLE") + "; SELECT setval('report_number', (SELECT max(id) FROM report)); ANALYZE"


def literal(text):
    return "'" + text.replace("'", "''") + "'"


def choice(texts):
    """An expression: one of the texts, by the number."""
    return f"CASE number % {len(texts)} " + " ".join(f"WHEN {place} THEN {literal(text)}"
                                                     for place, text in enumerate(texts)) + " END"


def variants(lines):
    """The lines of each kind of verdict."""
    results = {}
    for name, place, result in (("pass", None, ""), ("unknown", None, ""), ("fail", FAILING, "fail"), ("rare", -1, "unknown")):
        changed = [dict(line) for line in json.loads(lines)]
        if place is not None:
            changed[place]["result"] = result
        results[name] = changed
    return results


def fill(store, most):
    """Stores copies of a judged report until there are the given number of reports."""
    there, last = map(int, store.rows("SELECT count(*), max(id) FROM report")[0])
    [(body,)] = store.rows("SELECT body FROM report ORDER BY id LIMIT 1")
    [(lines,)] = store.rows("SELECT lines FROM verdict ORDER BY report LIMIT 1")
    body = re.sub(r'(71424"><value>)[^<]*', r"\1SESSION", body)
    now, apart, kinds = int(time.time() * 1000), SPREAD // most, variants(lines)
    received = f"{now} - ({most} - number) * CAST({apart} AS BIGINT)"
    total = f"CASE WHEN number % {RARE} = 1 THEN 'unknown' ELSE {choice(TOTALS)} END"
    found, letters = (f"CASE WHEN number % {RARE} = 1 THEN {literal(stored(kinds['rare']))} WHEN number % 4 = 2 THEN "
                      f"{literal(stored(kinds['fail']))} ELSE {literal(stored(kinds['pass']))} END"
                      for stored in (json.dumps, lambda lines: "".join(line["result"][0] for line in lines)))
    restore = store.pause_triggers()
    for start in range(there, most, BATCH):
        end = min(start + BATCH, most)
        numbers = (f"WITH RECURSIVE numbers (number) AS (SELECT {start} UNION ALL SELECT number + 1 FROM numbers "
                   f"WHERE number < {end - 1})")
        store.run(f"""{numbers} INSERT INTO report (id, session, referrer, "user", machine, received, body)
            SELECT {last - there + 1} + number, 's-' || number, 'demo', 'visitor', 'm-' || number, {received},
                replace(replace(replace({literal(body)}, 'SESSION', 's-' || number), '15.9 GB', {choice(MEMORIES)}),
                        '2560x1440', {choice(RESOLUTIONS)}) FROM numbers;
            {numbers} INSERT INTO verdict (report, requirement_set, referrer, judged, item, total, lines, results)
            SELECT {last - there + 1} + number, 1, 1, {now}, '', {total}, {found}, {letters} FROM numbers""")
    store.run(restore)
    count(store, Counter(((now - (most - number) * apart) // DAY, kind_of(number)) for number in range(there, most)), kinds)


def kind_of(number):
    return "rare" if number % RARE == 1 else TOTALS[number % 4]


def count(store, found, kinds):
    """Adds to the counts by day: how many reports of each kind came on each day."""
    reports, verdicts, lines = Counter(), {}, {}
    for (day, kind), number in found.items():
        reports[day] += number
        verdicts.setdefault(day, Counter())["unknown" if kind == "rare" else kind] += number
        for place, line in enumerate(kinds[kind]):
            lines.setdefault((day, place), Counter())[line["result"]] += number
    results = "pass = {0}.pass + excluded.pass, fail = {0}.fail + excluded.fail, unknown = {0}.unknown + excluded.unknown".format
    add(store, "day_reports", "referrer, day", "reports", [f"1, {day}, {number}" for day, number in reports.items()],
        "reports = day_reports.reports + excluded.reports")
    add(store, "day_verdicts", "referrer, day, requirement_set", "pass, fail, unknown",
        [f"1, {day}, 1, {sums(number)}" for day, number in verdicts.items()], results("day_verdicts"))
    add(store, "day_lines", "requirement_set, day, line", "pass, fail, unknown",
        [f"1, {day}, {place}, {sums(number)}" for (day, place), number in lines.items()], results("day_lines"))


def sums(number):
    return f"{number['pass']}, {number['fail']}, {number['unknown']}"


def add(store, table, key, columns, rows, change):
    if rows:
        store.run(f"INSERT INTO {table} ({key}, {columns}{store.part}) VALUES "
                  + ", ".join(f"({row}{store.zero})" for row in rows)
                  + f" ON CONFLICT ({key}{store.part}) DO UPDATE SET {change}")


def add_products(store):
    """Gives each other product sessions on each of these days, without their reports."""
    today = int(time.time() * 1000) // DAY
    days = ", ".join(f"({today - ago})" for ago in range(SPREAD // DAY))
    parts = "FROM requirement_set, (VALUES {0}) AS days {1} WHERE id > 1"
    if store.part:
        # Today's counts have parts; those of past days are merged.
        parts = parts.format(days, "(day), generate_series(0, 7) AS parts (part)")
        store.run(f"INSERT INTO day_verdicts SELECT referrer, day, id, part, 30, 10, 2 {parts} AND day = {today}; "
                  f"INSERT INTO day_verdicts SELECT referrer, day, id, part, 240, 80, 16 {parts} AND day < {today} AND part = 0; "
                  "VACUUM ANALYZE")
    else:
        store.run(f"INSERT INTO day_verdicts SELECT referrer, column1, id, 240, 80, 16 {parts.format(days, '')}")
