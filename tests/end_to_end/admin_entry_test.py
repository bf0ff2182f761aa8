"""Access to the administration: log-ins, single sign-on, and the protection against everything else."""

import re
import socket
import time
import unittest

from administration import PASSWORD, AdminTest, PageParser

SAFETY = {"Content-Security-Policy": "default-src 'none'; style-src 'self'; img-src 'self' data:; form-action 'self'; "
                                     "frame-ancestors 'none'; base-uri 'none'",
          "X-Content-Type-Options": "nosniff", "Referrer-Policy": "same-origin", "Cache-Control": "no-store"}


class Entry(AdminTest):
    settings = ("--session-hours", "7")

    def test_only_accounts_can_log_in(self):
        for name, password, status in (("Edith", "wrong", 403), ("edith", PASSWORD, 403), ("", "", 403), ("Edith", "", 403),
                                       ("Edith", PASSWORD + " ", 403), ("Edith", "x" * 5000, 403), ("Edith", PASSWORD, 303)):
            self.assertEqual(self.status("POST", "/login", {"name": name, "password": password}), status, (name, password))
            self.run_command("user", "list")
        cookie = self.log_in()
        self.assertNotIn(cookie, str(self.database.run("SELECT * FROM login_session")))
        self.assertRegex(self.database.run("SELECT hash FROM account")[0][0], r"^\$argon2id\$v=19\$m=65536,t=2,p=1\$")
        for path, place in (("/", "/login?next=%2F"), ("/reports?from=2026-01-01", "/login?next=%2Freports%3Ffrom%3D2026-01-01")):
            for wrong in (None, "x" * 43, cookie[:-1], ""):
                answer, _ = self.visit("GET", path, cookie=wrong)
                self.assertEqual((answer.status, answer.headers["Location"]), (303, place))
        for following, place in (("/reports?a=b", "/reports?a=b"), ("//evil.example", "/"), ("https://evil.example", "/"),
                                 ("/\\evil.example", "/"), ("/a\r\nSet-Cookie: a=b", "/"), ("", "/")):
            answer, _ = self.visit("POST", "/login", {"name": "Edith", "password": PASSWORD, "next": following})
            self.assertEqual(answer.headers["Location"], place)
            self.assertEqual([re.sub("=[^;]*", "", cookie, count=1) for cookie in answer.headers.get_all("Set-Cookie")],
                             [f"__Host-kel{rules}; Path=/; Secure; HttpOnly; SameSite=Lax" for rules in (
                                 "", "-known; Max-Age=31536000")])

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
        self.assertAlmostEqual(ends / 1000, time.time() + 7 * 3600, delta=60)
        token = self.token(cookie)
        self.database.run(f"UPDATE login_session SET ends = {int(time.time() * 1000) - 1}")
        self.assertEqual(self.status("GET", "/", cookie=cookie), 303)
        answer, text = self.visit("POST", "/products/demo/requirements", {"token": token, "text": "long work"}, cookie)
        self.assertEqual((answer.status, "long work" in text), (403, False))  # its session has ended meanwhile

    def test_a_second_log_in_in_a_browser_ends_the_first(self):
        first, other = self.log_in(), self.log_in()
        answer, _ = self.visit("POST", "/login", {"name": "Rita", "password": PASSWORD}, first)
        second = re.match("__Host-kel=([^;]*)", answer.headers["Set-Cookie"])[1]
        for name, cookie, status in (("the first", first, 303), ("the second", second, 200), ("another browser's", other, 200)):
            self.assertEqual(self.status("GET", "/", cookie=cookie), status, name)
        self.assertEqual(self.status("POST", "/login", {"name": "Rita", "password": "wrong"}, second), 403)
        self.assertEqual(self.status("GET", "/", cookie=second), 200)  # a log-in that failed ends nothing

    def test_guesses_are_slowed_down(self):
        guess = {"name": "Edith", "password": "wrong"}
        entries = [self.visit("POST", "/login", {"name": "Edith", "password": PASSWORD})[0] for _ in range(2)]
        known, other = (re.match("[^;]*", answer.headers.get_all("Set-Cookie")[1])[0] for answer in entries)

        def work_on(name):
            start = self.work()
            for _ in range(4):
                self.visit("POST", "/login", {**guess, "name": name})
            return self.work() - start
        right, unknown = work_on("Edith"), work_on("nobody")
        self.assertGreater(unknown, right / 2)  # a name that is refused quickly is not an account
        self.assertEqual(self.status("GET", "/login"), 200)

        def keep_out(name, cookie="a=b", guesser="a=b"):
            """The status for the right password right after too many wrong ones."""
            for _ in range(6):
                answer, _ = self.visit("POST", "/login", {**guess, "name": name}, Cookie=guesser)
                self.assertEqual(int(answer.headers["Retry-After"] or 0) > 0, answer.status == 429)
            return self.status("POST", "/login", {"name": name, "password": PASSWORD}, Cookie=cookie)
        for name, cookie in (("Edith", "a=b"), ("Edith", known + "x"), ("Edith", "__Host-kel-known=x"), ("Rita", known)):
            self.await_answer(lambda: keep_out(name, cookie), 429)  # a busy machine may take longer than the wait
        # In a browser in which she has logged in before, only her own failures keep Edith out.
        self.assertEqual(keep_out("Edith", known), 303)
        self.await_answer(lambda: keep_out("Edith", known, known), 429)
        self.assertEqual(keep_out("Edith", other, known), 303)
        self.account("editor", "Edith")
        self.await_answer(lambda: keep_out("Edith", other), 429)

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
        for host, status in (("evil.example", 421), ("127.0.0.1.evil.example:1", 421), ("[::1].evil.example", 421), ("", 421),
                             ("1.2.3", 421), ("localhost", 200), (f"127.0.0.1:{port}", 200), (f"[::1]:{port}", 200),
                             ("192.0.2.1:9100", 200), ("[2001:db8::1]", 200), ("admin.example:443", 200)):
            for path in ("/metrics", "/healthz", "/readyz", "/login"):
                self.assertEqual(self.status("GET", path, Host=host), status, (host, path))
        with socket.create_connection(self.admin.split(":"), 10) as connection:  # what a proxy's check sends
            connection.sendall(b"GET /readyz HTTP/1.0\r\n\r\n")
            self.assertIn(b" 200 OK\r\n", connection.recv(1000))

    def test_forms_of_any_bytes_are_read_or_refused(self):
        for body, status in (("a=1&a=2", 400), ("&".join(f"f{number}=" for number in range(33)), 400), ("&" * 16_000, 400),
                             ("name=%zz%&password=%", 403), ("name=%ff%00%c0%af", 403), ("=", 403), ("", 403), ("name", 403),
                             ("name=" + "%41" * 5000, 403), ("name=" + "a" * 16_380, 413),
                             ("x" * (4 * 1024 * 1024 + 1), 413)):
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

    def test_every_answer_has_safe_headers(self):
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


if __name__ == "__main__":
    unittest.main()
