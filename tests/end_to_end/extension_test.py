"""The browser extension in Chromium and Firefox, with the real program behind it, and the deployed service."""

import base64
import hashlib
import json
import os
import struct
import subprocess
import unittest
from pathlib import Path

from bidi import Firefox
from check_page_test import WINDOWS, PageTest
from harness import DLL, NO_SERVICE, PATIENCE, ROOT, write_requirements

KEL, EXTENSION = DLL.parent / "kel.exe", ROOT / "extension"
HOST = "example.keldane.check"
ID = "".join(chr(ord("a") + int(digit, 16)) for digit in hashlib.sha256(
    base64.b64decode(json.loads((EXTENSION / "manifest.json").read_text("ascii"))["key"])).hexdigest()[:32])
ORIGIN = f"chrome-extension://{ID}/"
DECISIONS = """
    return import("./sites.js").then(async ({policyFor, namesOf, covers}) => {
        const policy = {allowedSites: ["https://both", "https://allowed"], deniedSites: ["https://both", "https://denied"]};
        const read = (...more) => {
            chrome.storage.managed.get = async () => ({...policy, deniedSites: [...policy.deniedSites, ...more]});
            return Promise.all(["both", "allowed", "denied", "other"].map((name) => policyFor(`https://${name}`)));
        };
        const agreed = namesOf([{area: "graphics", names: ["name", "memory"]}]);
        const asked = (area, isAllowed = true) => covers({isAllowed, names: agreed}, namesOf([{area, names: ["name"]}]));
        return [await read(), await read("*"), asked("graphics"), asked("displays"), asked("graphics", false)];
    });"""


class ExtensionTest(PageTest):
    """Has requirements, and the program registered as the extension's native host."""

    def setUp(self):
        super().setUp()
        program = self.folder / "host.sh"
        program.write_text(f'#!/bin/sh\nexport HOME="{Path.home()}" http_proxy=http://{self.address}\n'
                           f'exec wine "{KEL}" "$@" 2>/dev/null\n')
        program.chmod(0o755)
        for folder, callers in (("profile/NativeMessagingHosts", {"allowed_origins": [ORIGIN]}),
                                (".mozilla/native-messaging-hosts", {"allowed_extensions": ["check@keldane.example"]})):
            hosts = self.folder / folder
            hosts.mkdir(parents=True, exist_ok=True)
            (hosts / f"{HOST}.json").write_text(json.dumps({
                "name": HOST, "description": "Test", "type": "stdio", "path": str(program), **callers}))
        write_requirements(self.folder, "demo", [(71063, "Memory", "at least", "9000 TB", "Add memory."),
                                                 (71063, "Plenty", "at least", "1 MB")])
        self.command("import", self.folder)


class InFirefox(ExtensionTest):
    def start_browser(self):
        return Firefox(self, WINDOWS[0])

    def test_a_page_gets_lines_and_results_once_the_visitor_agrees(self):
        self.browser.ask("webExtension.install", extensionData={"type": "path", "path": str(EXTENSION)})
        self.write_page("firefox", f"http://{self.address}")
        page = self.browser.page("about:")
        self.browser.ask("browsingContext.navigate", context=page, url=f"{self.origin}/firefox.html", wait="complete")
        self.browser.click(page, "extension")
        self.browser.click(self.browser.page("consent.html"), "allow")
        self.browser.wait(lambda: "does not meet all" in self.browser.run(page, "document.querySelector('main').innerText"))
        self.assertEqual(self.browser.run(page, "document.querySelector('tbody').innerText").split("\n"),
                         ["Memory\tat least 9000 TB\t\u2717 Does not meet", "Add memory.", "",
                          "Plenty\tat least 1 MB\t\u2713 Meets"])


class InChromium(ExtensionTest):
    options = (f"--load-extension={EXTENSION}", "--disable-features=DisableLoadExtensionCommandLineSwitch")

    def answer_question(self, button):
        """Answers the extension's question in its window, and returns its text."""
        self.browser.await_window(2)
        self.browser.await_text("total physical memory")
        question = self.browser.run("return document.querySelector('main').innerText")
        self.browser.await_text("false", script=f"return String(document.getElementById('{button}').disabled)")
        self.browser.click(f"#{button}")
        self.browser.await_window(1)
        return question

    def test_a_page_gets_lines_and_results_once_the_visitor_agrees(self):
        self.show("extension", f"http://{self.address}")
        self.browser.click("#extension")
        question = self.answer_question("refuse")
        for shown in (self.origin, "\u201cdemo\u201d", "analysis.keldane.example, without encryption"):
            self.assertIn(shown, question)
        self.shown("may not check the computer")
        self.browser.click("#extension")
        self.shown("may not check the computer")  # without another question
        self.assertEqual(self.metric("kel_uploads_total"), 0)
        self.browser.go(f"{ORIGIN}sites.html")
        self.browser.await_text(self.origin)
        self.browser.click("tbody button")
        self.browser.await_text("No site has asked.")
        self.assertEqual(self.browser.run(DECISIONS), [["denied", "allowed", "denied", None],
                                                       ["denied", "allowed", "denied", "denied"], True, False, False])
        self.show("extension", f"http://{self.address}")
        self.browser.click("#extension")
        self.answer_question("allow")
        rows = self.shown("does not meet all")[0]
        self.assertEqual(rows, [["Memory", "at least 9000 TB", "\u2013", "\u2717 Does not meet\nAdd memory."],
                                ["Plenty", "at least 1 MB", "\u2013", "\u2713 Meets"]])
        for script, expected in (  # without a click, since the visitor agreed
                ("kelCheck('demo').then((verdict) => Object.keys(verdict.requirements[1]))", ["result", "label", "needed"]),
                ("Promise.allSettled([kelCheck('demo'), kelCheck('demo')]).then((ends) => ends[1].reason.reason)", "busy"),
                ("kelCheck('unknown').catch((error) => error.reason + ': ' + error.state)", "service: unknown product"),
                ("kelCheck('x'.repeat(5000)).catch((error) => error.reason)", "message"),
                ("kelCheck('demo', '1').catch((error) => error.reason)", "message")):
            with self.subTest(script):
                self.assertEqual(self.browser.run(f"return {script};"), expected)


class Program(unittest.TestCase):
    """kel.exe as a browser starts it, without a browser."""

    def run_host(self, *arguments):
        process = subprocess.Popen(["wine", KEL, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, env=os.environ | {"http_proxy": NO_SERVICE})
        self.addCleanup(process.wait)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stdin.close)
        self.addCleanup(process.kill)
        return process

    def test_hostile_input_is_answered_or_ends_it(self):
        process = self.run_host(ORIGIN, "--parent-window=0")
        process.stdin.write(struct.pack("=I", 3) + b'{"\x1A')
        process.stdin.flush()
        answer = process.stdout.read(struct.unpack("=I", process.stdout.read(4))[0])
        self.assertEqual(json.loads(answer), {"type": "error", "reason": "message"})
        process.stdin.write(struct.pack("=I", 4097))
        process.stdin.flush()
        self.assertEqual(process.wait(PATIENCE), 3)
        for name, arguments, data, code in (
                ("end of input", [ORIGIN], b"", 0), ("end within a frame", [ORIGIN], b"\x10\0\0\0{", 0),
                ("another extension", [ORIGIN.replace("/e", "/f")], b"", 3)):
            with self.subTest(name):
                process = self.run_host(*arguments)
                self.assertEqual(process.communicate(data, PATIENCE)[0], b"")
                self.assertEqual(process.returncode, code)
