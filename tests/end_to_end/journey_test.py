"""From a page's script to the operator's screen: the real control, the deployed service, and its pages in a real browser."""

import unittest

from administration import PASSWORD, AdminTest, requirements
from harness import CSCRIPT, PROG_ID, ControlTest, windows_path, wine
from webdriver import ENTER, TAB, Browser


class Journey(AdminTest):
    setUpClass = ControlTest.setUpClass

    def check_machine(self):
        """The values that a script gets from the control."""
        script = self.folder / "check.js"
        script.write_text(f'var control = new ActiveXObject("{PROG_ID}"); control.ReferrerID = "demo";'
                          r'control.UserID = "Zo\u00eb>"; WScript.Echo(control.Analysis("i", "xml", "1"));', "ascii")
        return wine(*CSCRIPT, windows_path(script), proxy=f"http://{self.address}").output

    def publish(self, browser, needed, message):
        browser.go(f"http://{self.admin}/products/demo/requirements")
        browser.write("textarea", requirements((71063, "Memory", "at least", needed)))
        browser.click("button[value=try]")
        browser.await_text(message)
        browser.click("button[value=publish]")
        browser.await_text("The draft is saved.")
        browser.click("main button.primary")
        browser.await_text("The draft is published.")

    def test_published_requirements_decide_the_next_verdict(self):
        browser = Browser(self)
        browser.go(f"http://{self.admin}/")
        browser.press("Edith" + TAB + PASSWORD + ENTER, "name")
        browser.await_text("demo")
        self.publish(browser, "1 MB", "there is nothing to try this on")
        self.assertRegex(self.check_machine(), r'^<analysis result="pass" item="i" .*<needed>at least 1 MB</needed>')
        browser.go(f"http://{self.admin}/reports/1")
        for shown in ("Zo\u00eb>", "total physical memory", "session id", "✓ pass"):
            browser.await_text(shown)
        self.publish(browser, "9000 TB", "Of the last 1 sessions 0 would pass, today 1.")
        self.assertRegex(self.check_machine(), '^<analysis result="fail" ')
        browser.go(f"http://{self.admin}/reports?verdict=fail")
        browser.await_text("✗ fail", "main > table tbody")


if __name__ == "__main__":
    unittest.main()
