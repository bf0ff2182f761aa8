"""The administration under test: its accounts, its pages as a browser reads them, and reports to show on them."""

import html
import http.client
import json
import re
import subprocess
from html.parser import HTMLParser
from urllib.parse import urlencode

from deployed import SERVER, UPLOAD, DeployedTest, analysis
from harness import PATIENCE

PASSWORD = "correct horse battery"


def report(session, referrer="demo", **values):
    """A report; further values are named v71063 and so on, v72004_1 with the index 1."""
    groups = {"71424": session, "71218": referrer, **{name[1:]: value for name, value in values.items()}}
    places = ((*name.split("_"), "0")[:2] + (html.escape(value),) for name, value in groups.items())
    return "<groups>" + "".join('<group index="{1}" id="{0}"><value>{2}</value></group>'.format(*place)
                                for place in places) + "</groups>"


def requirements(*lines, title="T"):
    names = ("id", "label", "comparison", "needed", "advice")
    return json.dumps({"title": title, "requirements": [dict(zip(names, line)) for line in lines]}, indent=1)


class PageParser(HTMLParser):
    """The contents of a page: kinds of elements with their attributes, link addresses, rows and texts."""

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
                              text=True, timeout=PATIENCE)

    def visit(self, verb, path, body="", cookie=None, **headers):
        """The answer and its text. A body of fields is sent as a form."""
        connection = http.client.HTTPConnection(self.admin, timeout=PATIENCE)
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
