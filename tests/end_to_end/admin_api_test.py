"""The administration's API for programs: reports, products, drafts."""

import csv
import http.client
import io
import json
import re
import unittest
from pathlib import Path

from administration import AdminTest, requirements
from databases import KIND
from harness import PATIENCE


class Programs(AdminTest):
    settings = ("--body-kb", "2048")

    def setUp(self):
        super().setUp()
        self.bearer = {"Authorization": "Bearer " + self.run_command("token", "add", "Edith").stdout.strip()}

    def get(self, path, **headers):
        answer, text = self.visit("GET", f"/api/v1/{path}", **(headers or self.bearer))
        return answer.status, json.loads(text) if "json" in answer.headers["Content-Type"] else text

    def test_api_pages_through_all_reports(self):
        for number in range(5):
            cells = {"v1": "=1+1", "v2": "+1", "v3": "-1", "v4": "@a", "v5": 'say "x", y', "v6": "a\nb", "v7": "\ta", "v8": ""}
            self.upload(f"s{number}", v71063=f"{number}.0 GB", **cells)
        self.judged("s0")
        status, first = self.get("reports?count=2")
        self.assertEqual([entry["session"] for entry in first["reports"]], ["s0", "s1"])
        entry = first["reports"][0]
        self.assertEqual((entry["id"], entry["referrer"], entry["total"], first["last"]), (1, "demo", "fail", 2))
        self.assertIn({"id": "71063", "index": 0, "value": "0.0 GB"}, entry["values"])
        self.assertEqual([entry["id"] for entry in self.get("reports?after=2&count=1000000")[1]["reports"]], [3, 4, 5])
        self.assertEqual(self.get("reports?after=5"), (200, {"reports": [], "last": 5}))
        rows = list(csv.DictReader(io.StringIO(self.get("reports?after=4&format=csv")[1], newline="")))
        self.assertEqual({row["id"]: row["value"] for row in rows if len(row["id"]) == 1},
                         {"1": "'=1+1", "2": "'+1", "3": "'-1", "4": "'@a", "5": 'say "x", y', "6": "a\nb", "7": "'\ta", "8": ""})
        self.assertEqual({(row["report"], row["session"]) for row in rows}, {("5", "s4")})
        for query in ("after=x", "count=0", "count=-1", "after=-1", "format=xml"):
            self.assertEqual(self.get(f"reports?{query}")[0], 400, query)
        self.database.run("UPDATE report SET body = '' WHERE id = 1")  # an older program may have accepted it
        [unreadable] = self.get("reports?count=1")[1]["reports"]
        self.assertEqual((unreadable["session"], unreadable["values"]), ("s0", []))
        for number in range(3):
            self.upload(f"big{number}", v1="x" * 1_900_000)
        self.upload("many", v71206="u", **{f"v1{number}": "" for number in range(4_900)})
        _, answer = self.get("reports?after=5&count=1000")
        self.assertEqual((len(answer["reports"]), answer["last"]), (2, 7))  # an answer has a bound, whatever visitors send
        self.database.run(f"UPDATE report SET session = '{'s' * 900}', \"user\" = (SELECT body FROM report WHERE id = 6) "
                          "WHERE id > 8")
        for after, form in ((7, "csv"), (8, "csv"), (8, "json")):
            self.assertLess(len(str(self.get(f"reports?after={after}&format={form}"))), 5_000_000, (after, form))

    def test_filters_by_value_and_streams(self):
        for number, memory in enumerate(("2.0 GB", "7.8 GB", "lots", "16.0 GB", "")):
            self.upload(f"s{number}", v71063=memory, v2=f"Vendor {number}", v3="first", v3_1=f"second {number}",
                        v73226="No" if number == 1 else "Yes")
            self.database.run(f"UPDATE report SET received = received - {(5 - number) * 2 * 86400000} "
                              f"WHERE session = 's{number}'")  # a search by line looks at these days alone
            self.judged(f"s{number}")
        for query, sessions in (
                ("value=71063&comparison=at%20least&text=8%20GB", ["s1", "s3"]),
                ("value=71063&comparison=at%20least&text=8%20GB&outcome=fail", ["s0"]),
                ("value=71063&comparison=at%20least&text=8%20GB&outcome=unknown", ["s2", "s4"]),
                ("value=73227&comparison=at%20least%20version&text=22&outcome=fail", ["s1"]),  # not installed
                ("value=71063&comparison=any", ["s0", "s1", "s2", "s3"]),
                ("value=3&comparison=contains&text=second%203", []),
                ("value=3&comparison=contains&text=second%203&of=any", ["s3"]),
                ("value=2&comparison=contains&text=vendor%204", ["s4"]), ("value=7&comparison=any", []), ("session=s2", ["s2"]),
                ("referrer=demo&version=1&line=1&result=unknown", ["s2", "s4"]),
                ("referrer=demo&version=1&line=1&result=unknown&once=1", ["s2", "s4"]),
                ("referrer=demo&version=1&line=2&result=pass&once=1", []), ("referrer=demo&failing=memory", ["s0"]),
                ("referrer=demo&failing=memory&value=71063&comparison=at%20most&text=4%20GB", ["s0"]), ("user=u", [])):
            for way in (query, query + "&all=1", query + "&count=1"):
                found, after, last = [], -1, 0
                while after != last:
                    after = last
                    answer = self.get(f"reports?{way}&after={after}")[1]
                    found, last = found + [entry["session"] for entry in answer["reports"]], answer["last"]
                self.assertEqual(found, sessions, way)
        for query in ("value=x", "value=71063", "value=1&comparison=most&text=1", "value=1&comparison=at%20least&text=x",
                      "comparison=any&text=x", "value=1&comparison=any&of=all", "value=1&comparison=any&outcome=no", "all=2",
                      "all=1&count=5", "values=1"):
            self.assertEqual(self.get(f"reports?{query}")[0], 400, query)
        cookie = self.log_in()
        listed = self.page("/reports?value=71063&comparison=at%20least&text=8%20GB", cookie)
        self.assertEqual([row[0] for row in listed.cells(3, 4)[1:]], ["s3", "s1"])
        for link, begin in ((link, begin) for link in listed.links if link.startswith("/download")
                            for begin in (['"report"', '"4"', '"2"'] if "csv" in link else ['{"reports":'])):
            answer, text = self.visit("GET", link, cookie=cookie)
            self.assertIn("attachment", answer.headers["Content-Disposition"])
            self.assertIn(begin, text)
        self.assertEqual(len([link for link in listed.links if link.startswith("/download")]), 2)

    def test_what_is_streamed_or_searched_has_bounds(self):
        self.upload("s1", v1="x" * 1_900_000)
        self.database.run('INSERT INTO report (id, session, referrer, "user", received, body) SELECT number, session, referrer, '
                          '"user", received, body FROM report, (VALUES ' + ", ".join(f"({n})" for n in range(1001, 1041))
                          + ") AS numbers (number)" if KIND == "postgresql" else
                          'INSERT INTO report (id, session, referrer, "user", received, body) SELECT value, session, referrer, '
                          f'"user", received, body FROM report, json_each(\'{list(range(1001, 1041))}\')')
        first = self.get("reports?value=9&comparison=any&count=5")[1]
        self.assertEqual(first["reports"], [])
        [(newest,)] = self.database.run("SELECT max(id) FROM report")
        self.assertLess(first["last"], newest)  # 32 MB at a time
        page = self.page("/reports?value=9&comparison=any", self.log_in())
        self.assertIn("No reports so far", page.data)
        self.assertIn("Search on", page.data)
        before = self.peak()
        connection = http.client.HTTPConnection(self.admin, timeout=PATIENCE)
        self.addCleanup(connection.close)
        connection.request("GET", "/api/v1/reports?all=1", headers=self.bearer)
        answer = connection.getresponse()
        size = sum(iter(lambda: len(answer.read(1_000_000)), 0))
        self.assertGreater(size, 76_000_000)
        self.assertLess(self.peak() - before, 38_000_000)

    def peak(self):
        return int(re.search(r"VmHWM:\s*(\d+)", Path(f"/proc/{self.process.pid}/status").read_text("ascii"))[1]) * 1024

    def test_no_cell_is_computed_with_any_separator(self):
        texts = ("=1", "+1", "-1", "@a", "\uff1d1", "\uff0b1", "\uff0d1", "\uff20a", ' =1', '"=1')
        values = [*texts, *(f"x{separator}{text}" for separator in ";\t\n" for text in texts)]
        for number, value in enumerate(values):
            self.upload(f"x;{texts[number % len(texts)]}", v71063=value)
        exported = self.get("reports?format=csv")[1]
        cells = {row["value"] for row in csv.DictReader(io.StringIO(exported, newline="")) if row["id"] == "71063"}
        self.assertEqual({cell.replace("'", "") for cell in cells}, set(values))  # nothing but apostrophes is added
        for separator in ",;\t":
            for row in csv.reader(io.StringIO(exported, newline=""), delimiter=separator):
                for cell in row:
                    self.assertNotRegex(cell, '^[ "]*[-=+@\uff1d\uff0b\uff0d\uff20]', f"separated by {separator!r}")

    def test_programs_need_a_token_with_the_right_role(self):
        reader = {"Authorization": "bearer " + self.run_command("token", "add", "Rita", "1").stdout.strip()}
        cookie = self.log_in()
        form = self.token(cookie)
        good, draft = requirements((71063, "A", "any")), "/api/v1/referrers/demo/draft"
        for headers, read, written in (
                ({}, 401, 401), ({"Authorization": "Bearer x"}, 401, 401), ({"Authorization": "Basic eDp5"}, 401, 401),
                ({"Authorization": "x"}, 401, 401),
                ({"Authorization": self.bearer["Authorization"].replace("Bearer", "Digest")}, 401, 401),
                (reader, 200, 403), ({"cookie": cookie}, 200, 403), ({"cookie": cookie, "X-Form-Token": form}, 200, 201),
                ({"cookie": cookie, "X-Form-Token": form, "Origin": "http://evil.example"}, 200, 403), (self.bearer, 200, 201)):
            with self.subTest(headers):
                self.database.run("DELETE FROM draft")
                self.assertEqual(self.status("GET", "/api/v1/reports", **headers), read)
                self.assertEqual(self.status("PUT", draft, good, If_None_Match="*", **headers), written)
        self.assertEqual(self.visit("GET", "/api/v1/reports")[0].headers["WWW-Authenticate"], "Bearer")
        token, held = self.bearer["Authorization"].split()[1], {"Authorization": f"Bearer {cookie}"}
        for path, way, status in (("/", self.bearer, 303), ("/", {"cookie": token}, 303), ("/api/v1/reports", held, 401),
                                  ("/api/v1/reports", {"cookie": token}, 401)):
            self.assertEqual(self.status("GET", path, **way), status)  # a program's token opens no pages, and a cookie is none
        self.stop()
        self.start("--sso-header", "on")
        for headers, status in ((self.bearer, 200), (held, 403), ({"cookie": cookie}, 403)):
            self.assertEqual(self.status("GET", "/api/v1/reports", **headers), status)
        self.database.run("UPDATE login_session SET ends = 1")
        self.assertEqual(self.get("reports")[0], 403)


if __name__ == "__main__":
    unittest.main()
