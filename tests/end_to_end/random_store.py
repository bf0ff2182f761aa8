"""A store of random reports and verdicts, and what SQL and calculations of the test's own find in it."""

import collections
import datetime
import json
import random
import re
import time

from administration import AdminTest, report

DAY = 24 * 3600 * 1000
RESULTS = ("fail", "unknown", "pass")
PERIODS = ("period=today", "period=7d", "period=30d", "period=90d", "period=all", "from=FROM&until=UNTIL", "until=UNTIL")
# Each session's newest verdict on each product.
COUNTED = """SELECT name, version, received / 86400000, total, lines, body FROM (
    SELECT name, version, received, total, lines, body, row_number() OVER (
        PARTITION BY verdict.referrer, session ORDER BY verdict.report DESC, requirement_set DESC) AS age
    FROM verdict JOIN report ON report.id = verdict.report JOIN requirement_set ON requirement_set.id = requirement_set
    JOIN referrer ON referrer.id = verdict.referrer) AS aged WHERE age = 1"""
TEXTS = {"71063": ("2.0 GB", "7.8 GB", "32.0 GB") * 6 + ("lots",), "71254": ("2", "8", ""),
         "71060": ("Windows 10", "Windows 10", "Windows 11", ""),
         "72004": ("1.0 GB", "8.0 GB"), "72004_1": ("2.0 GB", "4.0 GB", "8.0 GB")}
# As "at least" compares them.
AMOUNTS = {"1.0 GB": 1, "2.0 GB": 2, "4.0 GB": 4, "7.8 GB": 8, "8.0 GB": 8, "32.0 GB": 32, "2": 2, "8": 8}
Line = collections.namedtuple("Line", "label id needed recommended any", defaults=(False, False))


def share(part, whole):
    return f"{(part * 200 // whole + 1) // 2} %" if whole else "–"


def counts(results):
    found = collections.Counter(results)
    return [found[result] for result in RESULTS]


def day_text(day):
    return str(datetime.date(1970, 1, 1) + datetime.timedelta(day))


def values_of(body):
    """The texts that a report has by id, the first device's first; without empty ones."""
    values = {}
    for number, text in re.findall(r' id="(\d+)"><value>([^<]+)', body):
        values.setdefault(int(number), []).append(text)
    return values


def judge(line, values):
    """The result of a line "at least", or "any" without a needed text."""
    texts = values.get(line.id, ())[:None if line.any else 1]
    amounts = [AMOUNTS[text] for text in texts if text in AMOUNTS] if line.needed else texts and [1]
    least = int(line.needed.split()[0]) if line.needed else 1
    return "unknown" if not amounts else "pass" if max(amounts) >= least else "fail"


def demo_lines(limit):
    return (Line("Minimum", 71063, f"{limit} GB"), Line("Ideal", 71063, "16 GB", True), Line("Processors", 71254, "4"),
            Line("Graphics", 72004, "4 GB", True, True))


OTHER = Line("Any", 71254, "")
LINES = {"demo": demo_lines(8), "other": (OTHER,)}  # of the newest versions


def text_of(lines):
    return json.dumps({"title": "T", "requirements": [
        {"id": line.id, "label": line.label, "comparison": "at least" if line.needed else "any"}
        | ({"needed": line.needed} if line.needed else {}) | ({"recommended": True} if line.recommended else {})
        | ({"of": "any"} if line.any else {}) for line in lines]})


class RandomStore(AdminTest):
    """Has two products, one of them with four versions, and reports of up to some years ago."""

    def setUp(self):
        super().setUp()
        self.cookie = self.log_in()
        [(self.today,)] = self.database.run(f"SELECT max(published) / {DAY} FROM requirement_set")
        self.random = random.Random(7)
        ages = iter(sorted((int(1000 * self.random.random() ** 6) for _ in range(180)), reverse=True))
        self.publish("other", (OTHER,))
        for limit in (4, 6, 8):
            self.publish("demo", demo_lines(limit))
            for _ in range(2):
                self.arrive([next(ages) for _ in range(30)])
        self.database.run(f"UPDATE requirement_set SET published = published - CAST(4 - version AS bigint) * {13 * DAY}")
        self.published = {(name, version): day for name, version, day in self.database.run(
            f"SELECT name, version, published / {DAY} FROM requirement_set JOIN referrer ON referrer.id = referrer")}

    def publish(self, referrer, lines):
        (self.folder / f"{referrer}.json").write_text(text_of(lines))
        self.command("import", self.folder)

    def arrive(self, ages):
        """Reports of that many days ago, and verdicts on most of their sessions."""
        rows, sessions = [], set()
        for age in ages:
            session = f"s{self.random.randrange(48)}" if age < 800 else "old"  # for steps of four weeks
            referrer = self.random.choice(("demo", "demo", "other", "x", ""))
            values = {f"v{number}": self.random.choice(texts) for number, texts in TEXTS.items()}
            sessions.add(session)
            day = self.today - age
            rows.append(f"('{session}', '{referrer}', '', {day * DAY + 5}, '{report(session, referrer, **values)}')")
        self.database.run('INSERT INTO report (session, referrer, "user", received, body) VALUES ' + ", ".join(rows))
        for session in sorted(sessions):
            for referrer in self.random.choice((("demo",), ("demo",), ("demo", "other"), ("other",), ())):
                self.judged(session, referrer)

    def days(self, query):
        """The days of a period, and its query."""
        query = query.replace("FROM", day_text(self.today - 50)).replace("UNTIL", day_text(self.today - 10))
        length = re.match(r"period=(\d+|today|all)", query)
        if not length:
            return range(self.today - 50 if "from" in query else 0, self.today - 9), query
        number = {"today": 1, "all": self.today + 1}.get(length[1]) or int(length[1])
        return range(self.today + 1 - number, self.today + 1), query

    def counted(self, days, referrer="demo"):
        return [(version, day, total, [line["result"] for line in json.loads(lines)])
                for name, version, day, total, lines, _ in self.database.run(COUNTED) if name == referrer and day in days]

    def reported(self, days, referrer="demo"):
        """The values of these sessions' reports."""
        return [values_of(body) for name, _, day, _, _, body in self.database.run(COUNTED) if name == referrer and day in days]

    def within_a_day(self, check, *arguments):
        """Repeats a check during which midnight passed: the days of most periods end with today."""
        self.today = int(time.time() * 1000) // DAY
        try:
            check(*arguments)
        except AssertionError:
            if self.today == int(time.time() * 1000) // DAY:
                raise
            self.within_a_day(check, *arguments)
