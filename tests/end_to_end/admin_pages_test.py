"""The administration's pages: reports, products, and strangers' texts on all of them."""

import html
import re
import unittest
from urllib.parse import quote_plus

from administration import AdminTest, PageParser, report, requirements
from deployed import UPLOAD, analysis

HOSTILE = ("<script>alert(1)</script>", '"><img src=x onerror=alert(1)>', "javascript:alert(1)", "</textarea></title><b>'",
           "=cmd|' /C calc'!A0", "\u202etxt.exe\u202c", "&lt;i&gt;")


class Pages(AdminTest):
    def test_reports_are_filtered_and_paged_during_uploads(self):
        for number in range(1, 121):
            self.upload(f"s{number % 60}", "demo" if number % 2 else "<b>", v71063=f"{number % 8}.0 GB", v71254="8")
        for number in range(60):
            self.judged(f"s{number}")
        self.database.run("UPDATE report SET received = 1767225600000 WHERE id <= 10")  # 2026-01-01
        cookie = self.log_in()

        def ids(path):
            return [int(row[0]) for row in self.page(path, cookie).rows if row[0].isdigit()]
        for query, expected in (
                ("session=s7", [67, 7]), ("verdict=fail", [n for n in range(120, 60, -1) if n % 8 < 4]),
                ("verdict=pass&referrer=demo", [n for n in range(119, 60, -2) if n % 8 >= 4]), ("verdict=pass&referrer=x", []),
                ("until=2026-01-01", list(range(10, 0, -1))), ("from=2026-01-01&until=2026-01-01&session=s3", [3]),
                ("until=2025-12-31", []), ("session=%22%3E", []), ("referrer=none", []), ("verdict=maybe", []),
                ("before=3", [2, 1]), ("from=2026-02-31&before=2", []), ("before=-1&after=x&session=s1", [61, 1])):
            self.assertEqual(ids(f"/reports?{query}"), expected, query)
        overview, (_, listed) = self.page("/", cookie), self.visit("GET", "/reports", cookie=cookie)
        self.assertEqual([link for link in overview.links if re.fullmatch(r"/reports/\d+", link)][1:],
                         [f"/reports/{number}" for number in range(120, 115, -1)])
        self.assertIn('href="/reports" aria-current="page"', listed)
        seen, path = [], "/reports?referrer=demo"
        for _ in range(2):
            page = self.page(path, cookie)
            seen += [int(row[0]) for row in page.rows if row[0].isdigit()]
            self.upload("later", "demo")
            path = next((link for link in page.links if "before=" in link), None)
        self.assertEqual((seen, path), (list(range(119, 0, -2)), None))
        for length, shown in ((60, "x" * 60), (61, "x" * 60 + "…")):
            self.upload("x" * length)
            newest = next(row for row in self.page("/reports", cookie).rows if len(row) == 5 and row[0].isdigit())
            self.assertEqual(newest[3], shown)
        newer = next(link for link in self.page(f"/reports?referrer=demo&before={21}", cookie).links if "after=" in link)
        self.assertEqual(ids(newer), list(range(119, 20, -2)))

    def test_a_report_shows_all_stored_data_and_its_session_can_be_deleted(self):
        self.upload("s", v71206="u1", v71207="m1", v71063="2.0 GB", v71254="8", v999="odd", v72510="No")
        self.judged("s")
        self.upload("s", v71063="8.0 GB")
        self.upload("t")
        cookie = self.log_in()
        page = self.page("/reports/1", cookie)
        asked = self.page("/reports/2/delete", cookie)
        self.assertIn("/reports/2/delete", asked.links)
        self.assertIn("demo T", asked.data)
        form = {"token": asked.fields["token"]}
        self.assertEqual(self.status("POST", "/reports/2/delete", form, cookie), 303)
        self.assertEqual((self.database.run("SELECT id FROM report"), self.database.run("SELECT * FROM verdict")), ([(3,)], []))
        self.assertEqual(self.status("POST", "/reports/2/delete", form, cookie), 404)
        self.assertEqual(self.page("/audit", cookie).cells(1, 2, 3)[1], ("Edith", "deleted session", "s, 2 reports"))
        self.database.run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5100) INSERT INTO report "
                          "(session, referrer, \"user\", received, body) SELECT '&s', '', '', 1, '' FROM n")
        for left, place in ((100, "/reports?note=left&session=%26s"), (0, "/reports?note=deleted")):
            [(last,)] = self.database.run("SELECT max(id) FROM report")
            answer, _ = self.visit("POST", f"/reports/{last}/delete", form, cookie)
            [(kept,)] = self.database.run("SELECT count(*) - 1 FROM report")
            self.assertEqual((answer.headers["Location"], kept), (place, left))
        for words in (("purge", "--session", "t"), ("purge", "--older", "90d"), ("import", self.folder)):
            self.command(*words)  # of these the import changes nothing
        noted = [row[1:] for row in self.page("/audit", cookie).cells(1, 2, 3)[1:] if row[0] == "command line"]
        self.database.run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100) INSERT INTO audit "
                          "(time, account, action, subject) SELECT 9999999999999, 'later', '', '' FROM n")
        older = next(link for link in self.page("/audit", cookie).links if "before=" in link)
        self.assertEqual(self.page(older, cookie).cells(1, 3)[1], ("command line", "--older 90d, 0 reports"))
        self.upload("many", **{f"v1{number}": "x" for number in range(1_997)}, v71060="x", v71063="x")
        [(last,)] = self.database.run("SELECT max(id) FROM report")
        page = self.page(f"/reports/{last}", cookie)
        self.assertIn("The first 2,000 of 2,001 values.", page.data)
        self.judged("many")
        _, product = self.visit("GET", "/products/demo?period=all", cookie=cookie)
        offered = [int(option) for option in re.findall(r'<option value="(\d+)"', product)]
        self.assertEqual((len(offered), offered[-2:]), (502, [71060, 71063]), "strangers' ids displace those of the catalogue")
        self.assertEqual(len(page.cells(3)), 2000 + 1)
        self.assertEqual(noted[:3], [("purged", "--older 90d, 0 reports"), ("purged", "--session, 1 reports"),
                                     ("published", "demo, version 1")])

    def test_charts_take_sizes_as_sold_and_texts_without_spaces(self):
        memory = ["3.4 GB", "4.0 GB", "7.8 GB", "8.1 GB", "512.0 MB", "", "lots", "2 GHz"]
        for number, text in enumerate(memory):
            self.upload(f"s{number}", v71063=text, v72402="1920x1080" if number else " 800x600 ")
            self.judged(f"s{number}")
        for number in range(12):
            self.upload(f"t{number}", v71060=f"System {number}")
            self.judged(f"t{number}")
        cookie = self.log_in()
        _, text = self.visit("GET", "/products/demo", cookie=cookie)
        bars = [(re.sub("<[^>]*>", "", name), count) for name, count in re.findall(
            r'<li><span class="name">(.*?)</span>.*?<span class="number">\d+ %, (?:<a[^>]*>)?(\d+)', text)]
        for bar in (("at least 512.0 MB", "5"), ("at least 3.4 GB", "4"), ("at least 4 GB – asked for", "3"),
                    ("at least 8 GB", "2"), ("at least 8.1 GB", "1"), ("1920x1080", "7"), ("800x600", "1")):
            self.assertIn(bar, bars)
        self.assertEqual(sum(name.startswith("System") for name, _ in bars), 10)
        self.assertIn(("System 11", "1", "8 %"), PageParser(text).cells(0, 1, 2))
        _, text = self.visit("GET", "/values?find=71060", cookie=cookie)
        [(link, count)] = re.findall(r'<a href="(/reports\?[^"]*)">(\d+)</a>', text)
        self.assertEqual((count, len(self.page(html.unescape(link), cookie).cells(4)[1:])), ("12", 12), link)
        _, text = self.visit("GET", "/products/demo?value=71060", cookie=cookie)
        self.assertLess(text.index("(71060)"), text.index("(71063)"))  # what was chosen is first

    def test_the_overview_sorts_its_products_and_has_pages_of_twenty(self):
        names = [f"p{number:02}" for number in range(24)]
        for name in names:
            (self.folder / f"{name}.json").write_text(requirements((71063, "Memory", "at least", "4 GB")))
        self.command("import", self.folder)
        cookie = self.log_in()

        def judge(name, *sizes):
            for size in sizes:
                self.upload(f"{name} {size}", name, v71063=f"{size}.0 GB")
                self.judged(f"{name} {size}", name)
        judge("p05", 8)
        judge("p10", 9, 8)
        self.database.run("UPDATE day_verdicts SET day = day - 8")  # the week before
        judge("p05", 1)
        judge("p10", 2, 7)
        judge("p20", 5, 6, 7)

        def listed(query):
            page = self.page(f"/?period=7d&{query}", cookie)
            return [name.split()[0] for name, _ in page.cells(0, 9)[1:]], page
        for order, first in (("name", ["demo", "p00", "p01"]), ("sessions", ["p20", "p10", "p05", "demo"]),
                             ("passing", ["p05", "p10", "p20", "demo"]), ("change", ["p05", "p10", "demo", "p00"])):
            found, page = listed(f"sort={order}")
            self.assertEqual((found[:len(first)], len(found)), (first, 20), order)
            following = f"/?period=7d&sort={order}&page=2"
            self.assertEqual([link for link in page.links if "page=" in link], [following], order)
            rest, page = listed(f"sort={order}&page=2")
            self.assertEqual(sorted(found + rest), ["demo", *names], order)
            self.assertIn("21 to 25 of 25", page.data)
            self.assertIn(f"/?period=7d&sort={order}", page.links)
            self.assertEqual(listed(f"sort={order}&page=3")[0], rest, "behind the last page")

    def test_values_are_found_by_type_unit_and_example(self):
        cookie = self.log_in()
        for words, found, other in (("memory amount", "71063", "71062"), ("processors decimal", "71254", "71062"),
                                    ("visitor-17", "71206", "71207")):
            ids = [cell for cell, in self.page(f"/values?find={quote_plus(words)}", cookie).cells(0)]
            self.assertEqual((found in ids, other in ids), (True, False), words)

    def test_stored_texts_never_become_markup(self):
        names = ["plain"]
        for kind, texts in (("clean", ["plain"] * len(HOSTILE)), ("hostile", HOSTILE)):
            if kind == "hostile":
                clean, names = self.walk(), HOSTILE
            for number, text in enumerate(texts):
                values = {"v71206": text, "v71207": text, "v71063": text, "v71060": text, "v72402": text, "v71254": text}
                body = report(f"{text}{number}", text if kind == "hostile" else "demo", **values)
                self.ask("POST", UPLOAD, body.replace('id="71254"', f'id="{html.escape(text)}"'))
                self.upload(f"{text}{number}", **values)
                lines = requirements((71063, text, "at least", "4 GB", text), (71060, text, "equals", text, text), title=text)
                (self.folder / "demo.json").write_text(lines)
                self.command("import", self.folder)
                self.ask("POST", "/service/Analysis/demo", analysis(html.escape(f"{text}{number}")))
                self.account("editor", text)
        cookie = self.log_in(HOSTILE[0])
        self.visit("POST", "/products/demo/requirements", {"token": self.token(cookie), "text": f"{lines}{HOSTILE[3]}",
                                                           "revision": 0, "do": "save"}, cookie)
        self.visit("POST", "/login", {"name": HOSTILE[1], "password": "wrong"})
        hostile = self.walk(HOSTILE[1])
        self.assertEqual(hostile.kinds - clean.kinds, set())
        self.assertEqual({link for link in hostile.links if not re.match(r"/(?!/)|#content$|data:,$", link)}, set())
        for text in names:
            self.assertGreater(hostile.data.count(text), 20, text)

    def walk(self, name="Edith"):
        """All pages that links lead to, and those of the editor's buttons, as one."""
        cookie = self.log_in(name)
        whole, waiting, seen = PageParser(""), ["/", "/nothing", "/reports?session=%22%3E%3Cb%3E&from=%27"], set()
        while waiting:
            path = waiting.pop().split("#")[0]
            kind = re.sub("=[^&]*", "", path) if path.startswith("/reports?") else path  # one list of each kind of filter
            if kind in seen or not path.startswith("/") or path == "/style.css" or path.startswith("/download"):
                continue
            seen.add(kind)
            answer, text = self.visit("GET", path, cookie=cookie)
            self.assertIn(answer.status, (200, 400, 404), path)
            page = PageParser(text)
            waiting += [link for link in page.links if link not in ("/logout", "/login") and "/publish" not in link]
            self.add(whole, page)
        editor = self.page("/products/demo/requirements", cookie)
        for action in ("check", "try", "publish", "drop"):
            answer, text = self.visit("POST", "/products/demo/requirements",
                                      {**editor.fields, "do": action, "text": (self.folder / "demo.json").read_text()}, cookie)
            self.add(whole, PageParser(text))
        _, text = self.visit("POST", "/products/demo/publish", {**editor.fields, "revision": 77, "text": HOSTILE[3]}, cookie)
        self.add(whole, PageParser(text))
        return whole

    @staticmethod
    def add(whole, page):
        whole.kinds |= page.kinds
        whole.links += page.links
        whole.data += page.data + " ".join(page.fields.values())


if __name__ == "__main__":
    unittest.main()
