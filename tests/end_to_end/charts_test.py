"""The administration's curves, charts, drafts that are tried, values and answers for programs, compared with what SQL and
calculations of the test's own find in a random store."""

import collections
import html
import json
import re
import unittest
from urllib.parse import quote

from administration import PageParser
from random_store import AMOUNTS, LINES, PERIODS, TEXTS, Line, RandomStore, counts, day_text, judge, share, text_of, values_of

LEFT, RIGHT, BOTTOM = 76, 592, 122  # of the curve's picture; 100 % are 96 units above its bottom
DRAFT = (Line("Minimum", 71063, "2 GB"), Line("Processors", 71254, "2"), Line("Graphics", 72004, "8 GB", False, True),
         Line("System", 71060, ""))


class Charts(RandomStore):
    def text(self, path):
        return self.visit("GET", path, cookie=self.cookie)[1]

    def steps(self, query, days, sessions):
        """The days, weeks or four weeks of a curve that have sessions: the first day, the end, and the totals."""
        found = [day for _, day, _, _ in sessions]
        first, end = days.start or min(found), max(found) + 1 if "all" in query else days.stop
        length = 1 if end - first <= 31 else 7 if end - first <= 728 else 28
        steps = [(max(last - length, first), last) for last in range(end, first, -length)]
        totals = [(*step, [total for _, day, total, _ in sessions if day in range(*step)]) for step in steps]
        return first, end, [step for step in totals if step[2]]

    def check_curve(self, referrer, query):
        """The rows below a curve, the heights of its points and bars, and the places of the publications."""
        days, query = self.days(query)
        sessions = self.counted(days, referrer)
        if not sessions:
            return
        first, end, steps = self.steps(query, days, sessions)
        text = self.text(f"/products/{referrer}?{query}")
        where = f"{referrer} {query}"
        names, expected = {}, []
        for start, stop, totals in steps:
            fail, unknown, passed = counts(totals)
            names[start] = day_text(start) + (f" to {day_text(stop - 1)}" if stop - start > 1 else "")
            expected.append([names[start], *map(str, (len(totals), passed, fail, unknown)), share(passed, len(totals))])
        self.assertEqual([row for row in PageParser(text).rows if len(row) == 6 and row[5] != "Passing"], expected,
                         f"figures by day, {where}")

        def place(day):
            return LEFT + (RIGHT - LEFT) * (day - first) / (end - first)
        points = [(f"{(place(start) + place(stop)) / 2:.1f}", f"{BOTTOM - 96 * totals.count('pass') / len(totals):.1f}")
                  for start, stop, totals in reversed(steps)]
        [curve] = re.findall(r'<figure class="curve">.*?</svg>', text, re.DOTALL)
        self.assertEqual(re.findall(r'<circle class="point" cx="([\d.]+)" cy="([\d.]+)"', curve), points, f"points, {where}")
        self.assertIn(f'points="{" ".join(map(",".join, points))}"', curve, f"line, {where}")
        highest = max(len(totals) for _, _, totals in steps)
        bars = [(f"{names[start]}: {len(totals)} sessions, {share(totals.count('pass'), len(totals))} pass",
                 f"{44 * len(totals) / highest:.1f}") for start, _, totals in reversed(steps)]
        self.assertEqual(re.findall(r'<title>([^<]*)</title><rect class="bar"[^>]* height="([\d.]+)"', curve), bars,
                         f"bars, {where}")
        self.assertIn(f">{highest}</text>", curve, f"the bars' scale, {where}")
        marks = sorted(f"{place(day):.1f}" for (name, _), day in self.published.items()
                       if name == referrer and first <= day < end)
        self.assertEqual(sorted(re.findall(r'class="mark" x1="([\d.]+)"', curve)), marks, f"publications, {where}")

    def check_sparks(self, query):
        days, query = self.days(query)
        [(oldest,)] = self.database.run("SELECT min(day) FROM day_verdicts")
        days = range(days.start or oldest, days.stop)
        length = -(-len(days) // 30)
        text = self.text(f"/?{query}")
        for referrer in LINES:
            steps = collections.defaultdict(list)
            for _, day, total, _ in self.counted(days, referrer):
                steps[(day - days.start) // length].append(total)
            heights = [totals.count("pass") / len(totals) for _, totals in sorted(steps.items())]
            ends = [share(totals.count("pass"), len(totals)) for _, totals in sorted(steps.items())]
            row = re.search(rf'<a href="/products/{referrer}\?.*?</tr>', text, re.DOTALL)[0]
            self.assertEqual(re.findall(r"[\d.]+,([\d.]+)", row.partition('points="')[2].partition('"')[0]),
                             [f"{3 + 18 * (1 - height):.1f}" for height in heights], f"trend, {referrer} {query}")
            if ends:
                self.assertIn(f"passes, from {ends[0]} to {ends[-1]}", row, f"trend, {referrer} {query}")

    def check_bars(self, query):
        """What the sessions' machines have: how many at least each amount, or each text, and what is asked for."""
        days, query = self.days(query)
        reports = self.reported(days)
        if not reports:
            return
        text = self.text(f"/products/demo?{query}")
        newest = [results for version, _, _, results in self.counted(days) if version == 4]
        unmet = [sum(results[place] != "pass" for results in newest) for place in range(len(LINES["demo"]))]
        asked = [line.id for _, line in sorted(zip(unmet, LINES["demo"]), key=lambda pair: -pair[0])]
        self.assertEqual(re.findall(r"<figcaption>[^<]*\((\d+)\)", text), [*map(str, dict.fromkeys([*asked, 71060]))],
                         f"order of the charts, {query}")
        for number in (71063, 71254, 72004, 71060):
            where = f"{number}, {query}"
            asked = [line for line in LINES["demo"] if line.id == number]
            of_any = any(line.any for line in asked)
            found = [texts if of_any else texts[:1] for texts in (values.get(number) for values in reports) if texts]
            [figure] = re.findall(rf"<figure[^>]*><figcaption>[^<]*\({number}\).*?</figure>", text, re.DOTALL)
            if not found:
                self.assertIn("No session reports it.", figure, where)
                continue
            missing = len(reports) - len(found)
            self.assertIn(f"Of {len(found)} sessions that report it" + (f"; {missing} do not" if missing else ""), figure, where)
            every = collections.Counter(one for texts in found for one in set(texts))
            if number == 71060:
                expected = [(one, count, False) for one, count in sorted(every.items(), key=lambda item: (-item[1], item[0]))]
            else:
                labels = {AMOUNTS[one]: "8 GB" if one == "7.8 GB" else one for one in every if one in AMOUNTS}
                needed = {int(line.needed.split()[0]): line.needed for line in asked}
                best = [max((AMOUNTS.get(one, 0) for one in texts)) for texts in found]
                expected = [(f"at least {(labels | needed)[least]}" + " – asked for" * (least in needed),
                             sum(amount >= least for amount in best), least in needed) for least in sorted(labels | needed)]
            shown = [re.sub("<[^>]*>", "", bar) for bar in re.findall(r"<li>(.*?)</li>", figure, re.DOTALL)]
            self.assertEqual(shown, [f"{label}{share(count, len(found))}, {count}" for label, count, _ in expected],
                             f"bars, {where}")
            widths = [int(width) for width in re.findall(r'width="(\d+)"', figure)]
            self.assertEqual(widths, [max(int(share(count, len(found))[:-2]), 1) for _, count, _ in expected],
                             f"lengths of the bars, {where}")
            sentences = [re.sub("<[^>]*>", "", one) for one in re.findall(r'<p class="asked">.*?</p>', figure, re.DOTALL)]
            meeting = [sum(judge(line, values) == "pass" for values in reports) for line in asked]
            self.assertEqual(sentences, [
                f"{share(count, len(found))} have what is asked for: at least {line.needed}{' on any device' * line.any} "
                f"({line.label})." for line, count in zip(asked, meeting)], f"what is asked for, {where}")
            for link, part in re.findall(r'<p class="asked"><b><a href="([^"]*)">(\d+ %)', figure):
                listed = sum(len(row) == 5 and row[0].isdigit() for row in self.page(html.unescape(link), self.cookie).rows)
                self.assertEqual(share(listed, len(found)), part, link)
            rows = re.findall(r'<tr><th scope="row"><bdi>([^<]*)</bdi></th><td[^>]*><a[^>]*>(\d+)', figure)
            self.assertEqual({value: int(count) for value, count in rows}, every, f"values, {where}")
            offered = re.search(rf'<option value="{number}"[^>]*>[^<]*\((\d+)\)<', text)
            self.assertEqual(offered[1], str(sum(number in values for values in reports)), f"values to choose from, {where}")

    def newest(self, condition=""):
        """The newest report of each session, newest first: its id and values."""
        rows = self.database.run(f"SELECT id, body FROM report WHERE id IN (SELECT max(id) FROM report {condition} "
                                 "GROUP BY session) ORDER BY id DESC")
        return [(number, values_of(body)) for number, body in rows]

    def test_curves_and_trends_have_the_heights_of_their_figures(self):
        for query in PERIODS:
            for referrer in LINES:
                self.within_a_day(self.check_curve, referrer, query)
            self.within_a_day(self.check_sparks, query)

    def test_charts_count_what_the_reports_have(self):
        for query in ("period=90d", "period=all", "from=FROM&until=UNTIL"):
            self.within_a_day(self.check_bars, query)

    def test_a_tried_draft_counts_what_it_would_do_to_the_newest_reports(self):
        fields = {"token": self.token(self.cookie), "revision": 0, "do": "try", "text": text_of(DRAFT)}
        page = PageParser(self.visit("POST", "/products/demo/requirements", fields, self.cookie)[1])
        machines = self.newest("WHERE referrer = 'demo'")

        def judged(lines):
            return [[judge(line, values) for line in lines] for _, values in machines]

        def totals(lines, results):
            kept = [[result for line, result in zip(lines, row) if not line.recommended] for row in results]
            return [next((result for result in ("fail", "unknown") if result in row), "pass") for row in kept]
        now, then = judged(LINES["demo"]), judged(DRAFT)
        today, draft = totals(LINES["demo"], now), totals(DRAFT, then)
        (failed, unsure, passed), (fail, unknown, kept) = counts(today), counts(draft)
        self.assertIn(f"{share(kept, len(machines))} would pass; today it is {share(passed, len(machines))}.", page.data)
        self.assertIn(f"Of the last {len(machines)} sessions {kept} would pass, today {passed}. {fail} would fail, "
                      f"today {failed}; {unknown} would be unknown, today {unsure}.", page.data)

        def passing(results, place):
            return [row[place] for row in results].count("pass")
        changes = [["Minimum", "changed", "at least 8 GB → at least 2 GB", f"{passing(now, 0)} → {passing(then, 0)}"],
                   ["Processors", "changed", "at least 4 → at least 2", f"{passing(now, 2)} → {passing(then, 1)}"],
                   ["Graphics", "changed", "at least 4 GB (any of them) → at least 8 GB (any of them)",
                    f"{passing(now, 3)} → {passing(then, 2)}"],
                   ["System", "new", "any", f"{passing(then, 3)}"],
                   ["Ideal Recommended", "removed", "at least 16 GB", f"{passing(now, 1)}"]]
        self.assertEqual([row for row in page.rows if len(row) == 4 and row[1] in ("changed", "new", "removed")], changes)
        marks = {"pass": "✓ pass", "fail": "✗ fail", "unknown": "? unknown"}
        changed = [[f"Report {number}", marks[before], marks[after], ", ".join(
            line.label for line, result in zip(*((LINES["demo"], old) if after == "pass" else (DRAFT, new)))
            if result != "pass" and not line.recommended)]
            for (number, _), before, after, old, new in zip(machines, today, draft, now, then) if before != after]
        self.assertEqual([row for row in page.rows if row[0].startswith("Report ")], changed[:20], "machines with another result")
        self.assertLessEqual({row[0].replace("Report ", "/reports/") for row in changed[:20]}, set(page.links))
        self.assertIn(f"Machines with another result: {len(changed)}", page.data)
        by_line = []
        for place, (line, old) in enumerate(zip(DRAFT, (0, 2, 3, None))):
            fail, unknown, passed = counts(row[place] for row in then)
            before = "new" if old is None else [row[old] for row in now].count("fail")
            by_line.append([line.label, *map(str, (passed, fail, before, unknown))])
        self.assertEqual([row[:1] + row[2:] for row in page.rows if len(row) == 6 and row[0] != "Requirement"][:4], by_line)
        bodies = [values_of(body) for [body] in self.database.run("SELECT body FROM report WHERE referrer = 'demo'")]
        for line, row in zip(DRAFT[:3], by_line):
            for result, number in zip(("pass", "fail", "unknown"), (row[1], row[2], row[4])):
                filters = (f"referrer=demo&value={line.id}&comparison=at%20least&text={quote(line.needed)}" + "&of=any" * line.any
                           + f"&outcome={result}" * (result != "pass"))
                self.assertEqual(f"/reports?period=all&{filters}" in page.links, number != "0", filters)
                listed = json.loads(self.text(f"/api/v1/reports?{filters}&all=1"))["reports"]
                self.assertEqual(len(listed), [judge(line, values) for values in bodies].count(result), filters)
        reported = [(str(line.id), f"{sum(line.id in values for _, values in machines)} of {len(machines)}") for line in DRAFT]
        self.assertEqual([(row[0], row[2]) for row in page.rows if len(row) == 4 and row[0].isdigit()], reported)

    def test_values_and_programs_get_the_same_figures(self):
        for number in sorted({name.partition("_")[0] for name in TEXTS}):
            [row] = [row for row in self.page(f"/values?find={number}", self.cookie).rows if row[0] == number]
            self.assertEqual(row[5], str(sum(int(number) in values for _, values in self.newest())), f"/values, {number}")
        for query in PERIODS:
            self.within_a_day(self.check_referrers, query)

    def check_referrers(self, query):
        days, query = self.days(query)
        arrived = collections.Counter(name for name, day in self.database.run("SELECT referrer, received / 86400000 FROM report")
                                      if day in days)
        answered = {one["referrer"]: one for one in json.loads(self.text(f"/api/v1/referrers?{query}"))["referrers"]}
        for referrer in LINES:
            sessions = self.counted(days, referrer)
            expected = [{"version": version, **{result: sum(one[0] == version and one[2] == result for one in sessions)
                                                for result in ("pass", "fail", "unknown")}}
                        for version in sorted({one[0] for one in sessions}, reverse=True)]
            self.assertEqual(answered[referrer]["sessions"], expected, f"sessions, {referrer} {query}")
            self.assertEqual(answered[referrer]["reports"], arrived[referrer], f"reports, {referrer} {query}")


if __name__ == "__main__":
    unittest.main()
