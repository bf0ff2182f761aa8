"""The administration in a real browser."""

import json
import unittest

from administration import PASSWORD, AdminTest, requirements
from databases import KIND
from webdriver import ENTER, TAB, Browser


class InABrowser(AdminTest):
    def test_an_editor_at_work(self):
        self.upload("s1", v71063="5.0 GB", v71254="8")
        self.assertEqual(self.judged("s1"), "pass")
        browser = Browser(self)
        browser.go(f"http://{self.admin}/reports")
        browser.press("Edith" + TAB + "wrong" + ENTER, "name")  # the focus is where the first word goes
        browser.await_text("Name or password is wrong.")
        browser.press(PASSWORD + ENTER, "password")
        browser.await_text("✓ pass", "main > table tbody")
        self.assertEqual(browser.run("return document.cookie"), "")  # no script can read it
        self.require("demo", (71063, "Memory", "at least", "6 GB"))
        self.check_answers(browser)
        self.check_looks(browser)
        self.database.run("UPDATE login_session SET ends = 1")
        browser.click("header nav a")
        browser.await_text("Password")
        browser.press("Rita" + TAB + PASSWORD + ENTER, "name")
        browser.await_text("Rita (reader)", "header")
        browser.go(f"http://{self.admin}/products/demo/requirements")
        self.assertEqual(browser.run("return document.querySelectorAll('textarea, main button').length"), 0)

    def test_an_overview_of_many_products(self):
        for number in range(200):
            text = requirements((71063, "M", "any"), title=f"Requirements of the product number {number}")
            (self.folder / f"product-{number}.json").write_text(text)
        self.command("import", self.folder)
        self.upload("s1", v71063="8.0 GB")
        part, zero = (", part", ", 0") if KIND == "postgresql" else ("", "")
        self.database.run(f"INSERT INTO day_verdicts (referrer, day, requirement_set, pass, fail, unknown{part}) "
                          f"SELECT referrer, published / 86400000 - 1, id, 7200, 2400, 480{zero} FROM requirement_set")
        for number in range(10):
            self.upload(f"s{number}", f"product-{number}")
        browser = Browser(self)
        browser.go(f"http://{self.admin}/")
        browser.press("Edith" + TAB + PASSWORD + ENTER, "name")
        browser.await_text("1 to 20 of 201")
        for width, height in ((1280, 2500), (390, 6000)):
            browser.resize(width)
            browser.go(f"http://{self.admin}/")
            self.assertEqual(browser.run("return document.querySelectorAll('svg.spark:has(polyline)').length"), 20)
            for period in ("30d", "all"):
                browser.go(f"http://{self.admin}/?period={period}")
                self.assertLessEqual(browser.run("return document.documentElement.scrollHeight"), height, f"{width} {period}")
                edges = browser.run("return ['main > table', 'main > h1'].map(e => "
                                    "document.querySelector(e).getBoundingClientRect().right)")
                self.assertLessEqual(edges[0], edges[1] + 1, f"{width} {period}: the table is wider than its page")
            cut = browser.run("return [...document.querySelectorAll('.kind')].filter(e => e.scrollWidth > e.clientWidth + 1 && "
                              "e.clientWidth && (e.title != e.textContent || innerWidth < 400)).map(e => e.textContent)")
            self.assertEqual(cut, [], f"{width}: titles are cut, and nothing shows the rest")
        browser.click("#find")
        browser.press("NUMBER 77" + ENTER, "find")
        browser.await_text("product-77", "main > table tbody")
        self.assertEqual(browser.run("return document.querySelectorAll('svg.spark').length"), 2)  # and 177

    def check_answers(self, browser):
        """The answer to each question is on the first screen of its page; paper has the texts and no forms."""
        self.upload("s0", v71063="1.0 GB", v71254="8")
        self.assertEqual(self.judged("s0"), "fail")
        browser.resize(1280)
        for path, seen in (("/products/demo?period=today", (".answer", ".answer + p", ".figures", "figure.curve svg")),
                           ("/products/demo/requirements?try", (".answer", ".notice + table"))):
            browser.go(f"http://{self.admin}{path}")
            if "?try" in path:
                text = requirements((71063, "Memory", "at least", "9 GB"))
                browser.run(f"document.querySelector('textarea').value = {json.dumps(text)}")
                browser.click("button[value=try]")
                browser.await_text("would pass")
            for selector in seen:
                bottom = browser.run(f"return document.querySelector('{selector}').getBoundingClientRect().bottom")
                self.assertLessEqual(bottom, 800, f"{path} {selector}")
            browser.command("Emulation.setEmulatedMedia", {"media": "print"})
            shown = browser.run("return [...document.querySelectorAll('nav, select, button, .button, input')]"
                                ".filter(e => e.getClientRects().length).map(e => e.outerHTML)")
            self.assertEqual(shown, [], path)
            for selector, style, value in (("tr, figure, .card, .notice", "breakInside", "avoid"),
                                           ("pre:not(.numbers)", "whiteSpace", "pre-wrap")):
                wrong = browser.run(f"return [...document.querySelectorAll('{selector}')]"
                                    f".filter(e => getComputedStyle(e).{style} != '{value}').map(e => e.outerHTML)")
                self.assertEqual(wrong, [], f"{path} on paper: {style}")
            browser.command("Emulation.setEmulatedMedia", {"media": ""})
        long = "\n".join(f'"{number}": "{"x" * 200}",' for number in range(100))
        browser.run(f"document.querySelector('textarea').value = {json.dumps(long)}")
        browser.command("Emulation.setEmulatedMedia", {"media": "print"})
        cut = browser.run("return ['textarea', '.numbered'].filter(s => (e => !e.clientHeight || e.scrollHeight > e.clientHeight)"
                          "(document.querySelector(s)))")
        self.assertEqual(cut, [], "parts of the requirements are not on paper")

    def check_looks(self, browser):
        """No page scrolls sideways on a phone; each has the style, and its first tab stop skips the menu."""
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
        browser.resize(390)
        browser.go(f"http://{self.admin}/values")
        self.assertLessEqual(browser.run("return document.documentElement.scrollHeight"), 3000, "the areas are not folded")
        browser.run("document.querySelectorAll('.area').forEach(area => area.open = true)")
        self.assertLessEqual(browser.run("return document.documentElement.scrollWidth"), 390, "an unfolded area is too wide")
        browser.go(f"http://{self.admin}/values?find=71063")
        browser.await_text("amount of bytes", ".area")


if __name__ == "__main__":
    unittest.main()
