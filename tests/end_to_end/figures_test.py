"""The figures of the administration, compared with what SQL of the test's own finds in a random store."""

import collections
import html
import re
import unittest

from random_store import LINES, PERIODS, RandomStore, counts, day_text, share

# Lists of reports: their restrictions, and the product, version and line, from 1 on, whose sessions they are about.
LISTS = (("", None, 0, 0, "pass"), ("&referrer=demo", "demo", 0, 0, "pass"), ("&verdict=unknown", None, 0, 0, "unknown"),
         ("&referrer=demo&version=3&verdict=fail", "demo", 3, 0, "fail"),
         ("&referrer=demo&version=2&line=4&result=unknown", "demo", 2, 4, "unknown"))


class Figures(RandomStore):
    def check_product(self, referrer, query):
        days, query = self.days(query)
        sessions = self.counted(days, referrer)
        page = self.page(f"/products/{referrer}?{query}", self.cookie)
        where = f"{referrer} {query}"
        fail, unknown, passed = counts(total for _, _, total, _ in sessions)
        if not sessions:
            return self.assertIn("No session was judged", page.data)
        self.assertIn(f"{len(sessions)}sessions{passed}pass{fail}fail{unknown}unknown{share(passed, len(sessions))}passing",
                      page.data, where)
        if days.start > 0:
            before = self.counted(range(days.start - len(days), days.start), referrer)
            old = share(sum(total == "pass" for _, _, total, _ in before), len(before))
            self.assertIn(f"before it was {old} of {len(before)}." if before else "before had none.", page.data, where)
        by_version = {version: [one for one in sessions if one[0] == version]
                      for version in sorted({version for version, _, _, _ in sessions}, reverse=True)}
        expected, worst = [], None
        for version, own in by_version.items():
            lines = [(line.label + " Recommended" * line.recommended, version, counts(one[3][place] for one in own))
                     for place, line in enumerate(LINES[referrer])]
            lines.sort(key=lambda line: ("Recommended" in line[0], -line[2][0] - line[2][1], -line[2][0]))
            expected += [[label, *map(str, found), share(found[0] + found[1], len(own))] for label, _, found in lines]
            worst = worst or (lines[0] if lines[0][2][0] + lines[0][2][1] else None)
        rows = [row for row in page.rows if len(row) == 7 and row[0] != "Version" and row[6] != "Not met"]
        self.assertEqual([row[:1] + row[3:] for row in rows if not row[0].isdigit()], expected, f"lines, {where}")
        stopped = re.findall(r"What stops most of the others: (.+), which (\d+) fail and (\d+) leave unknown, by version (\d)",
                             page.data)
        self.assertEqual(stopped, [(worst[0], *map(str, worst[2][:2]), str(worst[1]))] if worst else [], f"what stops, {where}")
        expected = []
        for version, own in by_version.items():
            fail, unknown, passed = counts(total for _, _, total, _ in own)
            day = day_text(self.published[referrer, version])
            expected.append([str(version), day, *map(str, (len(own), passed, fail, unknown)), share(passed, len(own))])
        self.assertEqual([[row[0], row[1][:10], *row[2:]] for row in rows if row[0].isdigit()],
                         expected if len(expected) > 1 else [], f"versions, {where}")
        self.assertEqual(f"Of all {len(by_version)} versions" in page.data, len(by_version) > 1, where)

    def check_by_day(self, page, expected, query):
        """The table below a curve."""
        rows = [row for row in page.rows if len(row) == 6 and row[5].endswith("%")]
        self.assertEqual([sum(int(row[column]) for row in rows) for column in (3, 4, 2)], expected, query)

    def check_lists(self, query):
        """How a list of reports compares with the period before, and its curve."""
        days, query = self.days(query)
        for restriction, product, version, line, result in LISTS:
            def found(within):
                sessions = [session for name in ((product,) if product else LINES)
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
            for referrer in LINES:
                self.within_a_day(self.check_product, referrer, query)
            self.within_a_day(self.check_overview, query)
            self.within_a_day(self.check_lists, query)
        for path in ("/products/demo?period=all", "/products/demo?period=90d", "/?period=30d",
                     f"/reports?period=all{LISTS[-1][0]}"):
            self.within_a_day(self.check_links, path)
        self.assertIn(" sessions in the last 30 days ", self.page("/?period=week", self.cookie).data, "a period of no name")
        queries = ("period=all", self.days("from=FROM&until=UNTIL")[1])
        kept = [self.page(f"/products/demo?{query}", self.cookie).rows for query in queries]
        self.command("purge", "--older", "20d")
        for rows, query in zip(kept, queries):
            after = self.page(f"/products/demo?{query}", self.cookie).rows
            self.assertEqual([row for row in after if len(row) > 3], [row for row in rows if len(row) > 3], query)


if __name__ == "__main__":
    unittest.main()
