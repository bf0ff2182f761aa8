"""The figures of the administration, compared with what SQL of the test's own finds in a random store."""

import collections
import datetime
import html
import json
import random
import re
import time
import unittest

from administration import AdminTest, report

DAY = 24 * 3600 * 1000
RESULTS = ("fail", "unknown", "pass")
# Lists of reports: their restrictions, and the product, version and line, from 1 on, whose sessions they are about.
LISTS = (("", None, 0, 0, "pass"), ("&referrer=demo", "demo", 0, 0, "pass"), ("&verdict=unknown", None, 0, 0, "unknown"),
         ("&referrer=demo&version=3&verdict=fail", "demo", 3, 0, "fail"),
         ("&referrer=demo&version=2&line=4&result=unknown", "demo", 2, 4, "unknown"))
PERIODS = ("period=today", "period=7d", "period=30d", "period=90d", "period=all", "from=FROM&until=UNTIL", "until=UNTIL")
# Each session's newest verdict on each product.
COUNTED = """SELECT name, version, received / 86400000, total, lines, body FROM (
    SELECT name, version, received, total, lines, body, row_number() OVER (
        PARTITION BY verdict.referrer, session ORDER BY verdict.report DESC, requirement_set DESC) AS age
    FROM verdict JOIN report ON report.id = verdict.report JOIN requirement_set ON requirement_set.id = requirement_set
    JOIN referrer ON referrer.id = verdict.referrer) AS aged WHERE age = 1"""


def share(part, whole):
    return f"{(part * 200 // whole + 1) // 2} %" if whole else "–"


def counts(results):
    found = collections.Counter(results)
    return [found[result] for result in RESULTS]


class Figures(AdminTest):
    def setUp(self):
        super().setUp()
        self.cookie = self.log_in()
        [(self.today,)] = self.database.run(f"SELECT max(published) / {DAY} FROM requirement_set")
        self.random = random.Random(7)
        ages = iter(sorted((int(200 * self.random.random() ** 3) for _ in range(180)), reverse=True))
        self.publish("other", {"id": 71063, "label": "Any", "comparison": "any"})
        for limit in (4, 6, 8):
            self.publish("demo", {"id": 71063, "label": "Minimum", "comparison": "at least", "needed": f"{limit} GB"},
                         {"id": 71063, "label": "Ideal", "comparison": "at least", "needed": "16 GB", "recommended": True},
                         {"id": 71254, "label": "Processors", "comparison": "at least", "needed": "4"},
                         {"id": 72004, "label": "Graphics", "comparison": "at least", "needed": "4 GB", "of": "any",
                          "recommended": True})
            for _ in range(2):
                self.arrive([next(ages) for _ in range(30)])

    def publish(self, referrer, *lines):
        (self.folder / f"{referrer}.json").write_text(json.dumps({"title": "T", "requirements": lines}))
        self.command("import", self.folder)

    def arrive(self, ages):
        """Reports of that many days ago, and verdicts on most of their sessions."""
        rows, sessions = [], set()
        for age in ages:
            session, referrer = f"s{self.random.randrange(48)}", self.random.choice(("demo", "demo", "other", "x", ""))
            values = {f"v{number}": self.random.choice(texts) for number, texts in
                      ((71063, ("2.0 GB", "7.8 GB", "32.0 GB") * 6 + ("lots",)), (71254, ("2", "8", "")),
                       (72004, ("1.0 GB", "8.0 GB")), ("72004_1", ("2.0 GB", "4.0 GB", "8.0 GB")))}
            sessions.add(session)
            day = self.today - age
            rows.append(f"('{session}', '{referrer}', '', {day * DAY + 5}, '{report(session, referrer, **values)}')")
        self.database.run('INSERT INTO report (session, referrer, "user", received, body) VALUES ' + ", ".join(rows))
        for session in sorted(sessions):
            for referrer in self.random.choice((("demo",), ("demo",), ("demo", "other"), ("other",), ())):
                self.judged(session, referrer)

    def days(self, query):
        """The days of a period, and its query."""
        first, last = (str(datetime.date(1970, 1, 1) + datetime.timedelta(self.today - ago)) for ago in (50, 10))
        query = query.replace("FROM", first).replace("UNTIL", last)
        length = re.match(r"period=(\d+|today|all)", query)
        if not length:
            return range(self.today - 50 if "from" in query else 0, self.today - 9), query
        number = {"today": 1, "all": self.today + 1}.get(length[1]) or int(length[1])
        return range(self.today + 1 - number, self.today + 1), query

    def counted(self, days, referrer="demo"):
        return [(version, day, total, [line["result"] for line in json.loads(lines)])
                for name, version, day, total, lines, _ in self.database.run(COUNTED) if name == referrer and day in days]

    def within_a_day(self, check, query):
        """Repeats a check during which midnight passed: the days of most periods end with today."""
        self.today = int(time.time() * 1000) // DAY
        try:
            check(query)
        except AssertionError:
            if self.today == int(time.time() * 1000) // DAY:
                raise
            self.within_a_day(check, query)

    def check_product(self, query):
        days, query = self.days(query)
        sessions = self.counted(days)
        page = self.page(f"/products/demo?{query}", self.cookie)
        fail, unknown, passed = counts(total for _, _, total, _ in sessions)
        if not sessions:
            return self.assertIn("No session was judged", page.data)
        self.assertIn(f"{len(sessions)}sessions{passed}pass{fail}fail{unknown}unknown{share(passed, len(sessions))}passing",
                      page.data, query)
        if days.start > 0:
            before = self.counted(range(days.start - len(days), days.start))
            old = share(sum(total == "pass" for _, _, total, _ in before), len(before))
            self.assertIn(f"before it was {old} of {len(before)}." if before else "before had none.", page.data, query)
        rows = [row[:1] + row[3:] for row in page.rows if len(row) == 7 and row[0] != "Version" and row[6] != "Not met"]
        expected = []
        for version in sorted({version for version, _, _, _ in sessions}, reverse=True):
            lists = [results for number, _, _, results in sessions if number == version]
            lines = [(label, counts(results[place] for results in lists))
                     for place, label in enumerate(("Minimum", "Ideal Recommended", "Processors", "Graphics Recommended"))]
            lines.sort(key=lambda line: ("Recommended" in line[0], -line[1][0] - line[1][1], -line[1][0]))
            expected += [[label, *map(str, found), share(found[0] + found[1], len(lists))] for label, found in lines]
        versions = [row for row in rows if row[0].isdigit()]
        self.assertEqual([row for row in rows if not row[0].isdigit()], expected, query)
        by_version = [[str(version), *counts(total for number, _, total, _ in sessions if number == version)]
                      for version in sorted({version for version, _, _, _ in sessions}, reverse=True)]
        self.assertEqual([[row[0], int(row[2]), int(row[3]), int(row[1])] for row in versions],
                         by_version if len(by_version) > 1 else [], query)
        self.assertEqual(f"Of all {len(by_version)} versions" in page.data, len(by_version) > 1, query)
        by_day = self.check_by_day(page, [fail, unknown, passed], query)
        if len(by_day) > 1 and len(days) <= 31:
            first, found = by_day[0], collections.Counter(day for _, day, _, _ in sessions)
            self.assertEqual((first[0], first[1]), (str(datetime.date(1970, 1, 1) + datetime.timedelta(max(found))),
                                                    str(found[max(found)])), query)
        return page

    def check_by_day(self, page, expected, query):
        """The table below a curve; returns its rows."""
        rows = [row for row in page.rows if len(row) == 6 and row[5].endswith("%")]
        self.assertEqual([sum(int(row[column]) for row in rows) for column in (3, 4, 2)], expected, query)
        return rows

    def check_lists(self, query):
        """How a list of reports compares with the period before, and its curve."""
        days, query = self.days(query)
        for restriction, product, version, line, result in LISTS:
            def found(within):
                sessions = [session for name in ((product,) if product else ("demo", "other"))
                            for session in self.counted(within, name) if version in (0, session[0])]
                return [results[line - 1] if line else total for _, _, total, results in sessions]

            page = self.page(f"/reports?{query}{restriction}", self.cookie)
            now = found(days)
            self.check_by_day(page, counts(now), query + restriction)
            if not now:
                self.assertIn("No session was judged", page.data, query + restriction)
                continue
            self.assertIn(f"{share(now.count(result), len(now))} of {len(now)} sessions", page.data, query + restriction)
            if days.start > 0:
                old = found(range(days.start - len(days), days.start))
                self.assertIn(f"before it was {share(old.count(result), len(old))} of {len(old)}." if old else "before had none.",
                              page.data, query + restriction)

    def check_overview(self, query):
        days, query = self.days(query)
        arrived = collections.Counter(
            name or "" for day, name in self.database.run(
                "SELECT received / 86400000, coalesce(name, '') FROM report LEFT JOIN referrer ON name = referrer")
            if day in days)
        page = self.page(f"/?{query}", self.cookie)
        self.assertRegex(page.data, rf"Reports [\w\s-]+: {arrived.total()}\b")
        if arrived[""]:
            self.assertIn(f", {arrived['']} of them for no product", page.data, query)
        sessions = [total for referrer in ("demo", "other") for _, _, total, _ in self.counted(days, referrer)]
        if sessions:
            self.assertIn(f"{share(sessions.count('pass'), len(sessions))} of {len(sessions)} sessions", page.data, query)
        self.check_by_day(page, counts(sessions), query)
        shares = {}
        for referrer, newest in (("demo", 4), ("other", 1)):
            sessions = self.counted(days, referrer)
            before = self.counted(range(days.start - len(days), days.start), referrer) if days.start > 0 else []
            (fail, unknown, passed), old = (counts(total for version, _, total, _ in of if version == newest)
                                            for of in (sessions, before))
            judged = fail + unknown + passed
            shares[f"{referrer} T"] = passed / judged if judged else 2
            change = "–"
            if judged and sum(old):
                change = f"{int(share(passed, judged)[:-2]) - int(share(old[2], sum(old))[:-2]):+}".replace("-", "−")
            [row] = [row for row in page.rows if row[0] == f"{referrer} T" and len(row) == 10]
            self.assertEqual(row[2:9], [str(number) for number in (judged, passed, fail, unknown, share(passed, judged),
                                                                   change.replace("+0", "0"), len(sessions) - judged)],
                             (query, referrer))
        sorted_rows = self.page(f"/?{query}&sort=passing", self.cookie).rows
        self.assertEqual([row[0] for row in sorted_rows if row[0] in shares], sorted(shares, key=shares.get), query)

    def check_bars(self, query):
        """The memory of the sessions' machines: how many have at least each amount, and what is asked for."""
        days, query = self.days(query)
        values = [re.search('"71063"><value>([^<]*)', body)[1] for name, _, day, _, _, body in self.database.run(COUNTED)
                  if name == "demo" and day in days]
        sizes = [{"2.0 GB": 2, "7.8 GB": 8, "32.0 GB": 32}.get(value, 0) for value in values]
        _, text = self.visit("GET", f"/products/demo?{query}", cookie=self.cookie)
        [figure] = re.findall(r"<figure[^>]*><figcaption>[^<]*\(71063\).*?</figure>", text)
        bars = re.findall(r'<li>(.*?)</li>', figure)
        shown = [re.sub("<[^>]*>", "", bar) for bar in bars]
        expected = [(label + asked, sum(size >= least for size in sizes)) for label, least, asked in
                    (("2.0 GB", 2, ""), ("8 GB", 8, " – asked for"), ("16 GB", 16, " – asked for"), ("32.0 GB", 32, ""))
                    if asked or least in sizes]
        self.assertEqual(shown, [f"at least {label}{share(count, len(values))}, {count}" for label, count in expected], query)
        shares = re.findall(r'<p class="asked"><b><a href="([^"]*)">(\d+ %)', figure)
        self.assertEqual(len(shares), sum(count > 0 and "asked" in label for label, count in expected), query)
        for link, part in shares:
            self.assertEqual(share(len(self.page(html.unescape(link), self.cookie).cells(4)[1:]), len(values)), part, link)
        widths = [int(width) for width in re.findall(r'width="(\d+)"', figure)]
        self.assertEqual(widths, [max(int(share(count, len(values))[:-2]), 1) for _, count in expected], query)
        rows = re.findall(r'<tr><th scope="row"><bdi>([^<]*)</bdi></th><td[^>]*><a[^>]*>(\d+)', figure)
        self.assertEqual({value: int(count) for value, count in rows}, collections.Counter(values), query)

    def check_links(self, path):
        _, text = self.visit("GET", path, cookie=self.cookie)
        links = set(re.findall(r'<a href="(/reports\?[^"]*)">([\d,]+)</a>', text))
        links |= set(re.findall(r'<a href="(/reports\?[^"]*)" tabindex="-1"><title>[^:]*: (\d+) sessions', text))
        self.assertGreater(len(links), 4, path)
        for link, number in links:
            listed = self.page(html.unescape(link), self.cookie)
            reports = [row for row in listed.rows if len(row) == 5 and row[0].isdigit()]
            self.assertEqual(len(reports), min(int(number), 50), link)  # of which a page has 50

    def test_figures_are_those_of_the_store_and_lead_to_their_reports(self):
        for query in PERIODS:
            self.within_a_day(self.check_product, query)
            self.within_a_day(self.check_overview, query)
            self.within_a_day(self.check_lists, query)
        for query in ("period=90d", "period=all", "from=FROM&until=UNTIL"):
            self.within_a_day(self.check_bars, query)
        for path in ("/products/demo?period=all", "/products/demo?period=90d", "/?period=30d",
                     f"/reports?period=90d{LISTS[-1][0]}"):
            self.within_a_day(self.check_links, path)
        queries = ("period=all", self.days("from=FROM&until=UNTIL")[1])
        kept = [self.page(f"/products/demo?{query}", self.cookie).rows for query in queries]
        self.command("purge", "--older", "20d")
        for rows, query in zip(kept, queries):
            after = self.page(f"/products/demo?{query}", self.cookie).rows
            self.assertEqual([row for row in after if len(row) > 3], [row for row in rows if len(row) > 3], query)


if __name__ == "__main__":
    unittest.main()
