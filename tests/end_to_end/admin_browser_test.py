"""The administration in a real browser."""

import unittest

from administration import PASSWORD, AdminTest
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


if __name__ == "__main__":
    unittest.main()
