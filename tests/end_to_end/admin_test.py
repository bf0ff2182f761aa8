"""The administration at the operator's door: who gets in, what the pages show, what editors can change."""

import csv
import html
import http.client
import io
import json
import re
import subprocess
import time
import unittest
from html.parser import HTMLParser
from urllib.parse import urlencode

from deployed import SERVER, UPLOAD, DeployedTest, analysis
from webdriver import ENTER, TAB, Browser

PASSWORD = "correct horse battery"
SAFETY = {"Content-Security-Policy": "default-src 'none'; style-src 'self'; img-src 'self' data:; form-action 'self'; "
                                     "frame-ancestors 'none'; base-uri 'none'",
          "X-Content-Type-Options": "nosniff", "Referrer-Policy": "same-origin", "Cache-Control": "no-store"}
HOSTILE = ("<script>alert(1)</script>", '"><img src=x onerror=alert(1)>', "javascript:alert(1)", "</textarea></title><b>'",
           "=cmd|' /C calc'!A0", "\u202etxt.exe\u202c", "&lt;i&gt;")


def report(session, referrer="demo", **values):
    """A report; further values are named v71063 and so on."""
    groups = {71424: session, 71218: referrer, **{name[1:]: value for name, value in values.items()}}
    return "<groups>" + "".join(f'<group index="0" id="{number}"><value>{html.escape(value)}</value></group>'
                                for number, value in groups.items()) + "</groups>"


def requirements(*lines, title="T"):
    names = ("id", "label", "comparison", "needed", "advice")
    return json.dumps({"title": title, "requirements": [dict(zip(names, line)) for line in lines]}, indent=1)


class PageParser(HTMLParser):
    """What a page consists of: kinds of elements with their attributes, the addresses it leads to, rows and texts."""

    def __init__(self, text):
        super().__init__()
        self.kinds, self.links, self.rows, self.fields, self.data, self.cell = set(), [], [], {}, "", False
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.kinds.add((tag, tuple(sorted(values))))
        self.links += [values[name] for name in ("href", "action", "src") if name in values]
        if tag == "tr":
            self.rows.append([])
        if tag in ("th", "td"):
            self.rows[-1].append("")
            self.cell = True
        if tag == "input":
            self.fields[values["name"]] = values["value"]

    def handle_endtag(self, tag):
        self.cell = self.cell and tag not in ("th", "td")

    def handle_data(self, data):
        self.data += data
        if self.cell:
            self.rows[-1][-1] += data

    def cells(self, *columns):
        """Those columns of the rows that are long enough."""
        return [tuple(row[column] for column in columns) for row in self.rows if len(row) > max(columns)]


class AdminTest(DeployedTest):
    """Has an editor, a reader, and requirements of the product "demo"."""

    def setUp(self):
        super().setUp()
        self.account("editor", "Edith")
        self.account("reader", "Rita")
        self.require("demo", (71063, "Memory", "at least", "4 GB", "Add memory."), (71254, "Processors", "at least", "4"))

    def account(self, role, name, password=PASSWORD, code=0):
        ran = self.run_command("user", "add", role, name, given=password + "\n")
        self.assertEqual(ran.returncode, code, ran.stderr)
        return ran.stderr

    def run_command(self, *words, given=""):
        return subprocess.run([SERVER, *words, "--database", self.database.setting], input=given, capture_output=True,
                              text=True, timeout=20)

    def visit(self, verb, path, body="", cookie=None, **headers):
        """The answer and its text. A body of fields is sent as a form."""
        connection = http.client.HTTPConnection(self.admin, timeout=20)
        self.addCleanup(connection.close)
        given = {name.replace("_", "-"): value for name, value in headers.items()}
        if cookie:
            given["Cookie"] = f"other=1; __Host-kel={cookie}"
        connection.request(verb, path, (urlencode(body) if isinstance(body, dict) else body).encode("utf-8"), given)
        answer = connection.getresponse()
        return answer, answer.read().decode()

    def status(self, *arguments, **headers):
        return self.visit(*arguments, **headers)[0].status

    def page(self, path, cookie):
        answer, text = self.visit("GET", path, cookie=cookie)
        self.assertEqual(answer.status, 200, path)
        return PageParser(text)

    def log_in(self, name="Edith", password=PASSWORD):
        answer, _ = self.visit("POST", "/login", {"name": name, "password": password})
        self.assertEqual(answer.status, 303)
        return re.match(r"__Host-kel=([\w-]{43}); Path=/; Secure; HttpOnly; SameSite=Lax$", answer.headers["Set-Cookie"])[1]

    def token(self, cookie):
        return self.page("/", cookie).fields["token"]

    def upload(self, *arguments, **values):
        self.assertEqual(self.ask("POST", UPLOAD, report(*arguments, **values))[0], 200)

    def judged(self, session, referrer="demo"):
        answer = self.ask("POST", f"/service/Analysis/{referrer}", analysis(session))[1].decode()
        return re.search(r'<analysis result="(\w+)"', answer)[1]


class Entry(AdminTest):
    def test_only_who_has_an_account_gets_in(self):
        for name, password, status in (("Edith", "wrong", 403), ("edith", PASSWORD, 403), ("", "", 403), ("Edith", "", 403),
                                       ("Edith", PASSWORD + " ", 403), ("Edith", "x" * 5000, 403), ("Edith", PASSWORD, 303)):
            self.assertEqual(self.status("POST", "/login", {"name": name, "password": password}), status, (name, password))
            self.run_command("user", "list")
        cookie = self.log_in()
        self.assertNotIn(cookie, str(self.database.run("SELECT * FROM login_session")))
        self.assertRegex(self.database.run("SELECT hash FROM account")[0][0], r"^\$argon2id\$v=19\$m=65536,")
        for path, place in (("/", "/login?next=%2F"), ("/reports?from=2026-01-01", "/login?next=%2Freports%3Ffrom%3D2026-01-01")):
            for wrong in (None, "x" * 43, cookie[:-1], ""):
                answer, _ = self.visit("GET", path, cookie=wrong)
                self.assertEqual((answer.status, answer.headers["Location"]), (303, place))
        for following, place in (("/reports?a=b", "/reports?a=b"), ("//evil.example", "/"), ("https://evil.example", "/"),
                                 ("/\\evil.example", "/"), ("/a\r\nSet-Cookie: a=b", "/"), ("", "/")):
            answer, _ = self.visit("POST", "/login", {"name": "Edith", "password": PASSWORD, "next": following})
            self.assertEqual(answer.headers["Location"], place)
            self.assertEqual([re.match("[^=]*", cookie)[0] for cookie in answer.headers.get_all("Set-Cookie")],
                             ["__Host-kel", "__Host-kel-known"])

    def test_a_log_in_ends(self):
        def log_out(cookie):
            self.assertEqual(self.status("POST", "/logout", {"token": self.token(cookie)}, cookie=cookie), 303)
            self.assertIn(("Edith", "logged out"), self.database.run("SELECT account, action FROM audit"))
        for end in (log_out, lambda _: self.account("editor", "Edith"), lambda _: self.run_command("user", "remove", "Edith")):
            self.account("editor", "Edith")
            cookie = self.log_in()
            self.assertEqual(self.status("GET", "/", cookie=cookie), 200)
            end(cookie)
            self.assertEqual(self.status("GET", "/", cookie=cookie), 303)
        cookie = self.log_in("Rita")
        [(ends,)] = self.database.run("SELECT ends FROM login_session")
        self.assertAlmostEqual(ends / 1000, time.time() + 12 * 3600, delta=60)
        token = self.token(cookie)
        self.database.run(f"UPDATE login_session SET ends = {int(time.time() * 1000) - 1}")
        self.assertEqual(self.status("GET", "/", cookie=cookie), 303)
        answer, text = self.visit("POST", "/products/demo/requirements", {"token": token, "text": "long work"}, cookie)
        self.assertEqual((answer.status, "long work" in text), (403, False))  # it goes to nobody who is a stranger by now

    def test_guesses_get_slower(self):
        guess = {"name": "Edith", "password": "wrong"}
        entries = [self.visit("POST", "/login", {"name": "Edith", "password": PASSWORD})[0] for _ in range(2)]
        known, other = (re.match("[^;]*", answer.headers.get_all("Set-Cookie")[1])[0] for answer in entries)

        def seconds(name):
            start = time.monotonic()
            self.visit("POST", "/login", {**guess, "name": name})
            return time.monotonic() - start
        right, unknown = (min(seconds(name) for _ in range(4)) for name in ("Edith", "nobody"))
        self.assertGreater(unknown, right / 2)  # a name that takes no time is no account
        self.assertEqual([self.status("POST", "/login", guess) for _ in range(2)], [403, 429])
        answer, _ = self.visit("POST", "/login", {"name": "Edith", "password": PASSWORD})
        self.assertEqual(answer.status, 429)
        self.assertIn(answer.headers["Retry-After"], ("4", "3", "2", "1"))
        self.assertEqual(self.status("GET", "/login"), 200)
        self.log_in("Rita")  # others are not kept out
        statuses = [self.status("POST", "/login", {**guess, "name": f"n{number}"}) for number in range(30)]
        self.assertEqual((statuses.count(403), statuses[-1]), (30 - 9, 429))
        self.assertEqual(self.status("POST", "/login", {"name": "Rita", "password": PASSWORD}), 429)
        self.assertEqual(len(self.database.run("SELECT 1 FROM audit WHERE action = 'log-in failed'")), 30)
        # Where she has been logged in before, all that keeps Edith out is her own failures.
        for name, cookie, password, status in (
                ("Edith", known, PASSWORD, 303), ("Edith", known + "x", PASSWORD, 429), ("Rita", known, PASSWORD, 429),
                ("Edith", "__Host-kel-known=x", PASSWORD, 429), ("Edith", None, PASSWORD, 429),
                *[("Edith", known, "wrong", 403)] * 5, ("Edith", known, PASSWORD, 429), ("Edith", other, PASSWORD, 303)):
            self.assertEqual(self.status("POST", "/login", {"name": name, "password": password}, Cookie=cookie or "a=b"), status)
        self.account("editor", "Edith")
        self.assertEqual(self.status("POST", "/login", {"name": "Edith", "password": PASSWORD}, Cookie=other), 429)

    def test_other_sites_cannot_use_a_log_in(self):
        cookie, other, reader = self.log_in(), self.log_in(), self.log_in("Rita")
        form = {"token": self.token(cookie), "text": "{}", "revision": 0, "do": "save"}
        host, save = self.admin, "/products/demo/requirements"
        self.stop()
        self.start("--admin-host", "Admin.Example")
        port = self.admin.split(":")[1]
        for changed, headers, status in (
                ({"token": ""}, {}, 403), ({"token": "x" * 43}, {}, 403), ({"token": self.token(other)}, {}, 403),
                ({}, {"Origin": "http://evil.example"}, 403), ({}, {"Origin": "null"}, 403), ({}, {"Origin": ""}, 403),
                ({}, {"Origin": f"http://{host}.evil.example"}, 403), ({}, {"Origin": "http://localhost:1"}, 403),
                ({}, {"Host": "evil.example"}, 421), ({}, {"Host": f"evil.example:{port}"}, 421), ({}, {"Host": ""}, 421),
                ({}, {"Host": "127.0.0.1.evil.example"}, 421), ({"revision": "-1"}, {}, 400), ({"revision": ""}, {}, 400)):
            with self.subTest(f"{changed} {headers}"):
                self.assertEqual(self.status("POST", save, {**form, **changed}, cookie, **headers), status)
        self.assertEqual(self.database.run("SELECT * FROM draft"), [])
        long = "x" * 1_000_000
        for changed, who, headers, status, is_kept in (
                ({"token": ""}, cookie, {}, 403, True), ({"token": ""}, reader, {}, 403, False),
                ({"text": long + long[:99_999]}, cookie, {}, 413, False), ({"text": long}, None, {}, 403, False),
                ({"text": long}, cookie, {"Origin": "http://evil.example"}, 403, False)):
            answer, page = self.visit("POST", save, {**form, **changed}, who, **headers)
            self.assertEqual((answer.status, "<textarea" in page, len(page) < 5000), (status, is_kept, True))
        for revision, headers in enumerate(({}, {"Origin": f"http://{self.admin}"}, {"Host": f"localhost:{port}"},
                                            {"Host": "admin.example", "Origin": "https://admin.example"},
                                            {"Host": f"[::1]:{port}", "Origin": "https://admin.example"})):
            changes = {**form, "revision": revision, "text": "{" + " " * revision}
            self.assertEqual(self.status("POST", save, changes, cookie, **headers), 303, headers)
        entry = {"name": "Edith", "password": PASSWORD}
        self.assertEqual(self.status("POST", "/login", entry, Origin="http://evil.example"), 403)

    def test_forms_of_any_bytes_are_read_or_refused(self):
        for body, status in (("a=1&a=2", 400), ("&".join(f"f{number}=" for number in range(33)), 400), ("&" * 16_000, 400),
                             ("name=%zz%&password=%", 403), ("name=%ff%00%c0%af", 403), ("=", 403), ("", 403), ("name", 403),
                             ("name=" + "%41" * 5000, 403), ("name=" + "a" * 16_380, 413),
                             ("x" * (2 * 1024 * 1024 + 1), 413)):
            self.assertEqual(self.status("POST", "/login", body), status, body[:40])
        names = [name for name, in self.database.run("SELECT account FROM audit WHERE action = 'log-in failed'")]
        self.assertEqual((names, "zz" in self.log_text()), (["unknown name"] * 6, False))  # it may be a password

    def test_a_reader_changes_nothing(self):
        self.upload("s")
        cookie = self.log_in("Rita")
        noted = self.database.run("SELECT count(*) FROM audit")
        form = {"token": self.token(cookie), "text": "{}", "revision": 0, "do": "save"}
        for verb, path in (("POST", "/products/demo/requirements"), ("POST", "/products/demo/publish"), ("GET", "/audit"),
                           ("POST", "/products/demo/drop"), ("POST", "/reports/1/delete"), ("GET", "/reports/1/delete"),
                           ("GET", "/new?referrer=x")):
            answer, text = self.visit(verb, path, form, cookie)
            self.assertEqual((answer.status, "Only editors may do that" in text), (403, True), path)
        for verb, path in (("PUT", "/api/v1/referrers/demo/draft"), ("POST", "/api/v1/referrers/demo/publish")):
            self.assertEqual(self.status(verb, path, "{}", cookie, X_Form_Token=form["token"]), 403)
        self.assertEqual((self.database.run("SELECT count(*) FROM audit"), self.database.run("SELECT * FROM draft")), (noted, []))
        for path in ("/", "/reports", "/reports/1", "/products/demo", "/products/demo/requirements", "/values"):
            page = self.page(path, cookie)
            self.assertFalse({"/audit", "/new", "/products/demo/publish", "/reports/1/delete"} & set(page.links), path)
        self.assertEqual(self.status("GET", "/products/unknown/requirements", cookie=cookie), 404)

    def test_every_answer_is_kept_from_doing_harm(self):
        cookie = self.log_in()
        for path, status in (("/", 200), ("/style.css", 200), ("/login", 303), ("/nothing", 404), ("/reports/9", 404),
                             ("/reports/x", 404), ("/reports/-1", 404), ("/products/%3Cb%3E", 404), ("/products/", 404),
                             ("/products/demo/version?number=9", 404), ("/products/demo/version?number=4294967297", 404),
                             ("/products/demo/requirements?from=4294967297", 404), ("/new?referrer=%22", 400),
                             ("/api/v1/reports", 200),
                             ("/api/v1/nothing", 404), ("/reports/99999999999999999999", 404)):
            answer, _ = self.visit("GET", path, cookie=cookie)
            self.assertEqual(answer.status, status, path)
            self.assertEqual({name: answer.headers[name] for name in SAFETY}, SAFETY)
        for verb, path, allow in (("HEAD", "/login", "GET, POST"), ("OPTIONS", "/", "GET"), ("DELETE", "/reports/1", "GET"),
                                  ("PATCH", "/api/v1/referrers/demo/draft", "GET, PUT"), ("GET", "/logout", "POST"),
                                  ("POST", "/audit", "GET")):
            answer, _ = self.visit(verb, path, cookie=cookie)
            self.assertEqual({name: answer.headers[name] for name in ("Allow", *SAFETY)}, {"Allow": allow, **SAFETY})
            self.assertEqual(answer.status, 405)
        self.assertEqual(self.visit("GET", "/reports?session=" + "x" * 1000)[0].headers["Location"], "/login")
        self.database.run("ALTER TABLE report RENAME TO gone")
        answer, text = self.visit("GET", "/reports", cookie=cookie)
        self.assertEqual((answer.status, "Try again in a moment" in text, "gone" in text), (503, True, False))

    def test_commands_refuse_what_is_no_account(self):
        for role, name, password, reason in (("owner", "A", PASSWORD, "editor or reader"), ("reader", "", PASSWORD, "a name has"),
                                             ("reader", "a\nb", PASSWORD, "a name has"),
                                             ("reader", "a\tb", PASSWORD, "a name has"),
                                             ("reader", "a" * 65, PASSWORD, "a name has"), ("reader", "A", "", "at least 12"),
                                             ("reader", "A", "short ääääé", "at least 12")):
            self.assertIn(reason, self.account(role, name, password, code=1))
        for words, code, output in ((("user", "list"), 0, "editor Edith\nreader Rita\n"), (("user", "remove", "A"), 1, ""),
                                    (("token", "add", "A"), 1, ""), (("token", "add", "Rita", "0"), 1, ""), (("user",), 2, ""),
                                    (("user", "add", "Rita"), 2, "")):
            ran = self.run_command(*words)
            self.assertEqual((ran.returncode, ran.stdout), (code, output), words)


class SignedOn(AdminTest):
    settings = ("--sso-header", "on")

    def test_the_proxy_names_the_account(self):
        page = PageParser(self.visit("GET", "/products/demo/requirements", X_Remote_User="Edith")[1])
        self.assertNotIn("/logout", page.links)
        self.stop()
        self.start()
        form = {"token": page.fields["token"], "text": "{}", "revision": 0, "do": "save"}
        old = self.visit("POST", "/products/demo/requirements", form, X_Remote_User="Edith")
        self.assertEqual(old[0].status, 403)  # the token has a secret of the process in it
        page = PageParser(self.visit("GET", "/products/demo/requirements", X_Remote_User="Edith")[1])
        form["token"] = page.fields["token"]
        for name, changed, status in (("Rita", {}, 403), ("nobody", {}, 403), ("", {}, 403), ("Edith", {"token": ""}, 403),
                                      ("Edith", {}, 303)):
            self.assertEqual(self.status("POST", "/products/demo/requirements", {**form, **changed}, X_Remote_User=name), status)
        self.assertEqual(self.status("GET", "/"), 403)
        self.assertEqual(self.status("POST", "/login", {"name": "Edith", "password": PASSWORD}), 404)
        self.stop()
        self.start("--sso-header", "off")
        self.assertEqual(self.status("GET", "/", X_Remote_User="Edith"), 303)


class Pages(AdminTest):
    def test_reports_are_filtered_and_paged_while_others_come_in(self):
        for number in range(1, 121):
            self.upload(f"s{number % 60}", "demo" if number % 2 else "<b>", v71063=f"{number % 8}.0 GB", v71254="8")
        for number in range(60):
            self.judged(f"s{number}")
        self.database.run("UPDATE report SET received = 1767225600000 WHERE id <= 10")  # 2026-01-01
        cookie = self.log_in()

        def ids(path):
            return [int(cell) for cell, in self.page(path, cookie).cells(0)[1:]]
        for query, expected in (
                ("session=s7", [67, 7]), ("verdict=fail", [n for n in range(120, 60, -1) if n % 8 < 4]),
                ("verdict=pass&referrer=demo", [n for n in range(119, 60, -2) if n % 8 >= 4]), ("verdict=pass&referrer=x", []),
                ("until=2026-01-01", list(range(10, 0, -1))), ("from=2026-01-01&until=2026-01-01&session=s3", [3]),
                ("until=2025-12-31", []), ("session=%22%3E", []), ("referrer=none", []), ("verdict=maybe", []),
                ("before=3", [2, 1]), ("from=2026-02-31&before=2", [1]), ("before=-1&after=x&session=s1", [61, 1])):
            self.assertEqual(ids(f"/reports?{query}"), expected, query)
        seen, path = [], "/reports?referrer=demo"
        for _ in range(2):
            page = self.page(path, cookie)
            seen += [int(cell) for cell, in page.cells(0)[1:]]
            self.upload("later", "demo")
            path = next((link for link in page.links if "before=" in link), None)
        self.assertEqual((seen, path), (list(range(119, 0, -2)), None))
        newer = next(link for link in self.page(f"/reports?referrer=demo&before={21}", cookie).links if "after=" in link)
        self.assertEqual(ids(newer), list(range(119, 20, -2)))

    def test_a_report_shows_what_is_kept_and_its_session_can_be_deleted(self):
        self.upload("s", v71206="u1", v71207="m1", v71063="2.0 GB", v71254="8", v999="odd", v72510="No")
        self.judged("s")
        self.upload("s", v71063="8.0 GB")
        self.upload("t")
        cookie = self.log_in()
        page = self.page("/reports/1", cookie)
        self.assertEqual(page.cells(0, 1, 2, 3)[1:3], [("Memory", "at least 4 GB", "2.0 GB", "✗ failAdd memory."),
                                                       ("Processors", "at least 4", "8", "✓ pass")])
        for row in (("71063", "Ram: total physical memory", "0", "2.0 GB"), ("999", "", "0", "odd"),
                    ("72510", "HardDrive: holds Windows", "0", "No"), ("71207", "OS: machine identifier", "0", "m1")):
            self.assertIn(row, page.cells(0, 1, 2, 3))
        self.assertIn("/reports/1", self.page("/reports/2", cookie).links)
        self.assertNotIn("/reports/2", page.links)
        form = {"token": self.page("/reports/2/delete", cookie).fields["token"]}
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
        self.assertEqual(noted[:3], [("purged", "--older 90d, 0 reports"), ("purged", "--session, 1 reports"),
                                     ("published", "demo, version 1")])

    def test_a_product_shows_its_verdicts_and_machines(self):
        self.upload("s3", v71063="64.0 GB", v71254="64")  # a session's newest report counts
        self.judged("s3")
        memory = ["3.9 GB", "4.0 GB", "7.8 GB", "8.1 GB", "512.0 MB", "", "lots", "2 GHz"]
        for number, text in enumerate(memory):
            self.upload(f"s{number}", v71063=text, v71254=str(2 ** (number % 3)), v72402="1920x1080" if number else " 800x600 ")
            self.judged(f"s{number}")
        for number in range(12):
            self.upload(f"t{number}", v71060=f"System {number}", v71254=str(3 * number))
        cookie = self.log_in()
        page = self.page("/products/demo", cookie)
        self.assertIn("8sessions1pass6fail1unknown13 %passing", page.data)
        self.assertEqual(page.cells(0, 2, 3, 4, 5)[1:3],
                         [("Processors", "6", "0", "2", "75 %"), ("Memory", "2", "3", "3", "25 %")])
        rows = [row for row in page.cells(0, 1, 2) if row[2].endswith("%")]
        for row in (("up to 512 MB", "1", "5 %"), ("up to 4 GB", "2", "10 %"), ("up to 8 GB", "1", "5 %"),
                    ("up to 16 GB", "1", "5 %"), ("1920x1080", "7", "35 %"), ("800x600", "1", "5 %"), ("not told", "15", "75 %"),
                    ("not told", "12", "60 %"), ("other", "2", "10 %")):
            self.assertIn(row, rows)
        kept = [label for label, _, _ in rows]
        self.assertEqual(sum(label.startswith("System") for label in kept), 10)
        self.assertLess(kept.index("up to 512 MB"), kept.index("up to 4 GB"))
        self.assertEqual([label for label in kept if label in ("0", "1", "9", "12")], ["0", "1", "9", "12"])
        self.assertEqual(self.page("/", cookie).cells(0, 3, 4, 5, 6)[1], ("demo", "1", "6", "1", "13 %"))

    def test_stored_texts_come_out_as_texts(self):
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
        """All pages that links lead to, as one, and what the editor's buttons show."""
        cookie = self.log_in(name)
        whole, waiting, seen = PageParser(""), ["/", "/nothing", "/reports?session=%22%3E%3Cb%3E&from=%27"], set()
        while waiting:
            path = waiting.pop().split("#")[0]
            if path in seen or not path.startswith("/") or path == "/style.css":
                continue
            seen.add(path)
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


class Editing(AdminTest):
    def setUp(self):
        super().setUp()
        self.upload("s7", v71063="1.0 GB", v71254="1")
        for number in range(8):
            self.upload(f"s{number}", v71063=f"{number}.0 GB", v71254="8")
        self.cookie = self.log_in()
        self.fields = {"token": self.token(self.cookie), "revision": 0}
        self.stricter = requirements((71063, "Memory", "at least", "6 GB"), (71060, "System", "any")).replace(
            '"any"', '"any", "recommended": true')

    def act(self, action, text, revision=0, path="requirements"):
        form = {**self.fields, "revision": revision, "text": text, "do": action}
        answer, page = self.visit("POST", f"/products/demo/{path}", form, self.cookie)
        return answer.status, page

    def test_a_draft_is_checked_and_keeps_what_was_typed(self):
        begun = self.page("/products/demo/requirements", self.cookie).data
        self.assertIn('[\n    {\n      "id": 71063,\n', begun)  # what came in a single line can be edited
        good = requirements((1, "A", "any"), (2, "B", "any"))
        for text, told in ((good, "can be published. Lines: 2."), (good.replace('"B"', "B"), "line 11, column"),
                           (good.replace('"any"\n  }\n ', '"odd"\n  }\n '), "line 9, requirement 2: &#x27;odd&#x27; is no"),
                           ("{", "line 1, column 2"), ("{}", "title"), (" \n", "no text"),
                           ('{"title": "]{\\"[{",\n"requirements": [{\n}, {}]}', "line 2, requirement 1"),
                           ("<b>\r\n  &amp;", "line 1, column 1"), ("[" * 100_000, "Not right yet")):
            status, page = self.act("check", text)
            self.assertIn(told, page)
            self.assertEqual(status, 400 if text.isspace() else 200)
            kept = html.unescape(re.search("<textarea[^>]*>\n(.*)</textarea>", page, re.DOTALL)[1])
            self.assertEqual(kept, text.replace("\r\n", "\n"))
        self.assertEqual(self.database.run("SELECT * FROM draft"), [])

    def test_a_draft_is_tried_published_and_judges(self):
        self.assertEqual(self.judged("s5"), "pass")
        _, page = self.act("try", self.stricter)
        self.assertIn("Of the last 8 sessions 2 would pass, today 4. 6 would fail, today 4; 0 would be unknown, today 0.", page)
        self.assertEqual(PageParser(page).cells(0, 2, 3, 4, 5)[1:3],
                         [("Memory", "2", "6", "4", "0"), ("System Recommended", "0", "0", "new", "8")])
        self.assertIn("No longer asked: Processors", PageParser(page).data)
        self.assertEqual(self.act("save", self.stricter)[0], 303)
        self.assertEqual(self.judged("s5"), "pass")
        status, page = self.act("publish", self.stricter, 1)
        self.assertEqual((status, "today 4" in page), (200, True))
        self.assertEqual(self.act("", self.stricter, 1, "publish")[0], 303)
        self.assertEqual(self.judged("s5"), "fail")
        versions = self.page("/products/demo/requirements", self.cookie).cells(0, 2, 3)[1:]
        self.assertEqual(versions, [("2", "Edith", "view version 2"), ("1", "import", "view version 1")])
        self.assertIn("at least", self.page("/products/demo/version?number=1", self.cookie).data)
        old = self.page("/products/demo/requirements?from=1", self.cookie)
        self.assertIn("Processors", old.data)
        self.assertEqual((old.fields["revision"], self.database.run("SELECT text FROM draft")), ("0", [("",)]))
        noted = [row for row, in self.database.run("SELECT action || ': ' || subject FROM audit WHERE account = 'Edith'")][1:]
        self.assertEqual(noted, ["saved draft: demo", "published: demo, version 2"])
        self.assertEqual(self.act("save", "{", 0)[0], 303)  # work that is not done can be saved, not published
        self.assertEqual(self.act("", "{", 3, "publish")[0], 400)

    def test_what_takes_long_is_left_out(self):
        self.upload("large", v71060="\u00e9" * 64_000)
        self.judged("large")
        self.database.run("DELETE FROM report WHERE id < 10")
        copies = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 400) INSERT INTO "
        self.database.run(copies + "report (session, referrer, \"user\", received, body) "
                          "SELECT session || i, referrer, '', received, body FROM report, n")
        lines = json.dumps([{"id": number, "result": "fail", "found": "x" * 1000} for number in range(100)])
        self.database.run("INSERT INTO verdict (report, requirement_set, referrer, judged, item, total, lines) "
                          f"SELECT id, 1, 1, 1, '', 'fail', '{lines}' FROM report WHERE id > 10")
        slow = requirements(*((71060, f"L{number}", "contains", f"x{number}") for number in range(10)))
        for ask in (lambda: self.act("try", slow)[1], lambda: self.visit("GET", "/products/demo", cookie=self.cookie)[1]):
            start = time.monotonic()
            page = ask()
            self.assertLess(time.monotonic() - start, 10)
            self.assertRegex(page, r"the last \d{1,3} sessions \(older ones are left out")

    def test_two_editors_lose_nothing(self):
        for action, revision, path in (("save", 0, "requirements"), ("save", 7, "requirements"), ("publish", 0, "requirements"),
                                       ("", 7, "publish"), ("", 7, "drop")):
            self.database.run("DELETE FROM draft")
            self.assertEqual(self.act("save", "their <text>")[0], 303)
            status, page = self.act(action, self.stricter, revision, path)
            texts = [html.unescape(text) for text in re.findall("<textarea[^>]*>\n(.*?)</textarea>", page, re.DOTALL)]
            self.assertEqual((status, texts), (409, ["their <text>", self.stricter]))
            self.assertEqual(PageParser(page).fields["revision"], "1")
            self.assertEqual(self.act("save", self.stricter, 1)[0], 303)
        self.assertEqual(self.act("drop", self.stricter, 2)[0], 200)
        self.assertEqual(self.act("", "", 2, "drop")[0], 303)
        self.assertEqual(self.act("", "mine", 2, "publish")[0], 409)
        self.assertEqual(len(self.database.run("SELECT id FROM requirement_set")), 1)

    def test_a_product_begins_with_a_draft(self):
        answer, _ = self.visit("GET", "/new?referrer=new-1", cookie=self.cookie)
        self.assertEqual((answer.status, answer.headers["Location"]), (303, "/products/new-1/requirements"))
        page = self.page("/products/new-1/requirements", self.cookie)
        text = page.data[page.data.index("{"):page.data.rindex("}") + 1]
        form = {**self.fields, "text": text, "do": "publish"}
        self.assertIn("nothing to try", self.visit("POST", "/products/new-1/requirements", form, self.cookie)[1])
        self.assertIn(("new-1", "–", "draft"), self.page("/", self.cookie).cells(0, 1, 7))
        self.assertEqual(self.status("POST", "/products/new-1/publish", {**self.fields, "revision": 1}, self.cookie), 303)
        self.upload("n", "new-1", v71063="8.0 GB")
        self.assertEqual(self.judged("n", "new-1"), "pass")


class Programs(AdminTest):
    settings = ("--body-kb", "2048")

    def setUp(self):
        super().setUp()
        self.bearer = {"Authorization": "Bearer " + self.run_command("token", "add", "Edith").stdout.strip()}

    def get(self, path, **headers):
        answer, text = self.visit("GET", f"/api/v1/{path}", **(headers or self.bearer))
        return answer.status, json.loads(text) if "json" in answer.headers["Content-Type"] else text

    def test_reports_are_read_by_and_by(self):
        for number in range(5):
            cells = {"v1": "=1+1", "v2": "+1", "v3": "-1", "v4": "@a", "v5": 'say "x", y', "v6": "a\nb", "v7": "\ta"}
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
                         {"1": "'=1+1", "2": "'+1", "3": "'-1", "4": "'@a", "5": 'say "x", y', "6": "a\nb", "7": "'\ta"})
        self.assertEqual({(row["report"], row["session"]) for row in rows}, {("5", "s4")})
        for query in ("after=x", "count=0", "count=-1", "after=-1", "format=xml"):
            self.assertEqual(self.get(f"reports?{query}")[0], 400, query)
        for number in range(3):
            self.upload(f"big{number}", v1="x" * 1_999_000)
        _, answer = self.get("reports?after=5&count=1000")
        self.assertEqual((len(answer["reports"]), answer["last"]), (2, 7))  # an answer has a bound, whatever visitors send
        self.upload("many", v71206="u", **{f"v1{number}": "" for number in range(4_900)})
        self.database.run(f"UPDATE report SET session = '{'s' * 900}', \"user\" = (SELECT body FROM report WHERE id = 6) "
                          "WHERE id > 8")
        for after, form in ((7, "csv"), (8, "csv"), (8, "json")):
            self.assertLess(len(str(self.get(f"reports?after={after}&format={form}"))), 5_000_000, (after, form))

    def test_drafts_are_written_and_published(self):
        draft, publish = "referrers/demo/draft", "referrers/demo/publish"
        good = requirements((71063, "Memory", "any"))
        for verb, path, body, headers, status in (
                ("GET", draft, "", {}, 404), ("PUT", draft, good, {}, 428), ("PUT", draft, "{", {"If-None-Match": "*"}, 422),
                ("PUT", draft, good, {"If-Match": '"0"'}, 412), ("PUT", draft, good, {"If-None-Match": "*"}, 201),
                ("PUT", draft, good, {"If-None-Match": "*"}, 412), ("PUT", draft, good, {"If-Match": '"9"'}, 412),
                ("PUT", draft, good, {"If-Match": "x1x"}, 412), ("PUT", draft, good, {"If-Match": '"99999999999"'}, 412),
                ("PUT", draft, good, {"If-Match": ""}, 412), ("PUT", draft, good + " ", {"If-Match": '"1"'}, 200),
                ("PUT", "referrers/%3Cb%3E/draft", good, {"If-None-Match": "*"}, 404), ("GET", draft, "", {}, 200),
                ("POST", publish, "", {}, 428), ("POST", publish, "", {"If-Match": '"1"'}, 412),
                ("POST", publish, "", {"If-Match": '"2"'}, 200), ("POST", publish, "", {"If-Match": '"2"'}, 412)):
            with self.subTest(f"{verb} {path} {headers}"):
                answer, text = self.visit(verb, f"/api/v1/{path}", body, **headers, **self.bearer)
                self.assertEqual(answer.status, status, text)
                if status == 200 and verb == "GET":
                    self.assertEqual((answer.headers["ETag"], text), ('"2"', good + " "))
        [entry] = self.get("referrers")[1]["referrers"]
        self.assertEqual((entry["referrer"], entry["version"], entry["draft"]), ("demo", 2, False))

    def test_programs_need_a_token_of_somebody_who_may(self):
        reader = {"Authorization": "bearer " + self.run_command("token", "add", "Rita", "1").stdout.strip()}
        cookie = self.log_in()
        form = self.token(cookie)
        good, draft = requirements((1, "A", "any")), "/api/v1/referrers/demo/draft"
        for headers, read, written in (
                ({}, 401, 401), ({"Authorization": "Bearer x"}, 401, 401), ({"Authorization": "Basic eDp5"}, 401, 401),
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


class InABrowser(AdminTest):
    def test_an_editor_at_work(self):
        self.upload("s1", v71063="5.0 GB", v71254="8")
        self.assertEqual(self.judged("s1"), "pass")
        browser = Browser(self)
        browser.go(f"http://{self.admin}/reports")
        browser.press("Edith" + TAB + "wrong" + ENTER, "name")  # the focus is where the first word goes
        browser.await_text("Name or password is wrong.")
        browser.press(PASSWORD + ENTER, "password")
        browser.await_text("✓ pass", "tbody")
        self.assertEqual(browser.run("return document.cookie"), "")  # no script can read it
        self.require("demo", (71063, "Memory", "at least", "6 GB"))
        self.check_looks(browser)
        self.database.run("UPDATE login_session SET ends = 1")
        browser.click("header nav a")
        browser.await_text("Password")
        browser.press("Rita" + TAB + PASSWORD + ENTER, "name")
        browser.await_text("Rita (reader)", "header")
        browser.go(f"http://{self.admin}/products/demo/requirements")
        self.assertEqual(browser.run("return document.querySelectorAll('textarea, main button').length"), 0)

    def check_looks(self, browser):
        """No page scrolls sideways on a telephone; on each the style is in force, and the first stop leads past the menu."""
        self.upload("s2")
        self.upload("w" * 1000, v71063="8.0 GB", v71254="8", v71060="M" * 300, v72402="1920x1080", v71206="W" * 500)
        self.judged("w" * 1000)
        for path in ("/", "/reports", "/reports/3", "/reports/3/delete", "/products/demo", "/products/demo/requirements",
                     "/products/demo/version?number=2", "/audit", "/values", "/nothing"):
            for width, dark in ((390, False), (320, True), (1280, True)):
                browser.resize(width, dark)
                browser.go(f"http://{self.admin}{path}")
                self.assertLessEqual(browser.run("return document.documentElement.scrollWidth"), width, path)
                colour = browser.run("return getComputedStyle(document.body).backgroundColor")
                self.assertEqual(colour, "rgb(18, 23, 30)" if dark else "rgb(244, 246, 249)")
            browser.press(TAB)
            self.assertEqual(browser.run("return document.activeElement.className"), "skip")


if __name__ == "__main__":
    unittest.main()
