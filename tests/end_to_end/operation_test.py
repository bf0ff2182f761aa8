"""The deployed service as an operator uses it: its metrics, its package, and the proxy in front of it."""

import contextlib
import json
import os
import re
import shlex
import shutil
import socket
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from deployed import LIST, REPORT, SERVER, UPLOAD, DeployedTest, analysis
from harness import API_KEY, PATIENCE, ROOT

MONITORING = ROOT / "packaging" / "server" / "monitoring"
HEAD = f"POST {UPLOAD} HTTP/1.1\r\nHost: x\r\nConnection: close\r\n".encode()
METRICS = re.compile(r'(# HELP (kel_\w+) .+\n# TYPE \2 (?:counter|gauge|histogram)\n'
                     r'(\2(?:_bucket|_sum|_count)?(\{(\w+="[^"\\]*",?)+\})? \d[\d.e+-]*\n)*)+')


class Metrics(DeployedTest):
    settings = ("--request-seconds", "4", "--connections", "100", "--bodies-mb", "4")

    def metrics(self, word=""):
        page = self.ask("GET", "/metrics", address=self.admin)[1].decode("ascii")
        self.assertIsNotNone(METRICS.fullmatch(page), page)
        samples = dict(line.rsplit(" ", 1) for line in page.splitlines() if not line.startswith("#"))
        return {name: float(value) for name, value in samples.items() if word in name and 'endpoint="admin"' not in name}

    def test_what_clients_do_is_counted(self):
        self.require("r", (71063, "M", "at least", "4 GB"))
        forbidden = REPORT.format("s").replace("</groups>", '<group id="2"><value>\1&#2;</value></group></groups>')
        for verb, path, body in (("POST", UPLOAD, forbidden), ("POST", UPLOAD, "<groups/>"), ("GET", '/"no', ""),
                                 ("POST", "/service/Analysis/r", analysis("s")), ("BREW", UPLOAD, ""),
                                 ("POST", "/service/Analysis/x", analysis("s")), ("GET", f"{LIST}?refid=x&apikey={API_KEY}", "")):
            self.ask(verb, path, body)
        for rest in (b"Content-Length: 3000000\r\n\r\n", b"\0\r\n\r\n", b"X: " + b"x" * 9000, b"Content-Length: 5\r\n\r\n<"):
            self.talk(HEAD + rest)
        route = 'kel_http_requests_total{endpoint="public",method="%s",route="%s",status="%d"}'
        self.assertEqual(self.metrics("requests_total"), {
            route % ("POST", "/Data/Service.svc/upload", 200): 1, route % ("POST", "/Data/Service.svc/upload", 400): 1,
            route % ("POST", "/service/Analysis/*", 200): 1, route % ("POST", "/service/Analysis/*", 404): 1,
            route % ("GET", LIST, 404): 1, route % ("other", "other", 404): 2})
        self.assertEqual(self.metrics("refusals_total"), {
            f'kel_http_refusals_total{{endpoint="public",status="{status}"}}': 1 for status in (400, 408, 413, 431)})
        self.assertEqual([*self.metrics("verdicts_total").values(), *self.metrics("uploads").values()], [1, 0, 0, 1, 1])
        self.assertEqual(self.metrics("unknown_products"), {
            f'kel_unknown_products_total{{request="{name}"}}': 1 for name in ("group list", "analysis")})
        self.assertEqual(self.metrics("replaced"), {"kel_characters_replaced_total": 2})
        times = list(self.metrics("seconds_bucket").values())
        self.assertEqual((times, times[-2:]), (sorted(times), [7, 7]))  # none took ten seconds

    def test_the_dashboard_and_the_alerts_name_its_metrics(self):
        page = self.ask("GET", "/metrics", address=self.admin)[1].decode("ascii")
        written = set(re.findall(r"# TYPE (\w+) ", page))
        dashboard = json.loads((MONITORING / "kel-dashboard.json").read_text("ascii"))
        expressions = [target["expr"] for panel in dashboard["panels"] for target in panel["targets"]]
        expressions += re.findall("expr: (.*)", (MONITORING / "kel-alerts.yml").read_text("ascii"))
        self.assertGreater(len(expressions), 25)
        for expression in expressions:
            for name in re.findall(r"\bkel_\w+", expression):
                self.assertIn(name.removesuffix("_bucket"), written, expression)

    @unittest.skipUnless(shutil.which("promtool"), "promtool could not be fetched")
    def test_promtool_reads_the_dashboard_and_the_alerts(self):
        dashboard = json.loads((MONITORING / "kel-dashboard.json").read_text("ascii"))
        expressions = [target["expr"] for panel in dashboard["panels"] for target in panel["targets"]]
        rules = self.folder / "dashboard.yml"  # JSON, which YAML contains
        rules.write_text(json.dumps({"groups": [{"name": "dashboard", "rules": [
            {"record": f"panel:{number}", "expr": expression} for number, expression in enumerate(expressions)]}]}), "ascii")
        for file in (rules, MONITORING / "kel-alerts.yml"):
            ran = subprocess.run(["promtool", "check", "rules", file], capture_output=True, text=True)
            self.assertEqual(ran.returncode, 0, f"{file.name}: {ran.stderr}")

    def test_in_flight_gauges_return_to_zero(self):
        crowd = [self.connect(HEAD + b"Content-Length: 100000\r\n\r\n" + b" " * 16_000) for _ in range(100)]
        self.await_answer(lambda: [*self.metrics("bodies").values(), *self.metrics("connections{").values()], [100 * 16_384, 100])
        self.assertEqual((self.connect().recv(1), self.metrics("connections_refused").popitem()[1]), (b"", 1))
        for connection in crowd:
            connection.close()
        self.await_answer(lambda: [*self.metrics("bodies").values(), *self.metrics("connections{").values()], [0, 0])

    def test_a_service_without_its_database_runs_but_is_not_ready(self):
        self.assertEqual(self.ask("GET", "/readyz", address=self.admin), (200, b"ready\n"))
        self.database.run("ALTER TABLE requirement_set RENAME TO gone")
        self.ask("GET", f"{LIST}?refid=r&apikey={API_KEY}")
        for path, answer in (("/healthz", (200, b"ok\n")), ("/readyz", (503, b"the database does not answer\n"))):
            self.assertEqual((self.ask("GET", path, address=self.admin), self.ask("GET", path)), (answer, (404, b"")))
        self.assertEqual(self.metrics("errors"), {"kel_database_errors_total": 2})


class FirstTry(unittest.TestCase):
    def test_the_script_prints_what_leads_to_an_account_and_to_a_verdict(self):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for part in ("scripts", "build/server"):
            (folder / part).mkdir(parents=True)
        shutil.copy(ROOT / "scripts" / "serve.sh", folder / "scripts")
        (folder / "scripts" / "build.sh").symlink_to("/bin/true")  # built already
        (folder / "build" / "server" / "kel_server").symlink_to(SERVER)
        (folder / "examples").symlink_to(ROOT / "examples")
        with contextlib.ExitStack() as sockets:
            ports = [sockets.enter_context(socket.create_server(("127.0.0.1", 0))).getsockname()[1] for _ in range(2)]
        output = self.enterContext(open(folder / "output", "w+", encoding="ascii"))
        environment = {name: value for name, value in os.environ.items() if not name.startswith("KEL_")}
        service = subprocess.Popen([folder / "scripts" / "serve.sh", "--port", str(ports[0]), "--admin-port", str(ports[1])],
                                   stdout=output, stderr=output, env=environment)
        self.addCleanup(service.wait)
        self.addCleanup(service.kill)
        end = time.monotonic() + PATIENCE
        while "event=listening" not in (printed := Path(output.name).read_text("ascii")):
            self.assertIsNone(service.poll(), printed)
            self.assertLess(time.monotonic(), end, printed)
            time.sleep(0.02)
        service_address, admin = re.findall(r"http://127\.0\.0\.1:\d+/", printed)
        [command] = re.findall(r"^  (KEL_DATABASE=.* user add editor) NAME$", printed, re.MULTILINE)
        subprocess.run(["sh", "-ec", command + " Edith"], cwd=folder, input=b"a long password\n", check=True)
        entered = subprocess.run(["curl", "-sS", "-o", os.devnull, "-w", "%{http_code}", "-d",
                                  "name=Edith&password=a+long+password", admin + "login"], capture_output=True, text=True)
        self.assertEqual(entered.stdout, "303", "the account cannot log in")
        self.assertIn("docs/service.md has requests to try", printed)
        requests = re.search(r"^key=.*?(?=^```)", (ROOT / "docs" / "service.md").read_text("utf-8"), re.DOTALL | re.MULTILINE)[0]
        requests = requests.replace("http://127.0.0.1:8080/", service_address).replace("curl", "curl -sS")
        answers = subprocess.run(["sh", "-ec", requests], capture_output=True, text=True, check=True).stdout
        self.assertRegex(answers, r'(?s)71063.*OK.*<analysis result="unknown"', "the requests of docs/service.md")


class Packaged(unittest.TestCase):
    def test_a_copy_of_this_machine_says_what_operation_txt_expects(self):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory(dir=ROOT / "build")))
        for name, version in (("now", ""), ("again", ""), ("later", "99.0.0")):
            subprocess.run([ROOT / "scripts" / "package_service.sh", version, folder / name], check=True, capture_output=True)
            if (ROOT / ".git").exists():  # whose untracked files the later packages leave out
                note = ROOT / "packaging" / "server" / "monitoring" / "a note.txt"
                self.addCleanup(note.unlink, missing_ok=True)
                note.write_text("untracked")
        [now], [again] = ([path.read_bytes() for path in (folder / name).glob("*.deb")] for name in ("now", "again"))
        self.assertTrue(now == again, "the packages differ")
        for name in ("crowd.py", "deaf.py"):
            shutil.copy(Path(__file__).parent / name, folder)
        expected = (Path(__file__).parent / "operation.txt").read_text("ascii")
        lines = (line for line in expected.splitlines() if line[:1] in ("", "#", "$"))
        script = "".join(f"printf '%s\\n' {shlex.quote(line)}\n{line.removeprefix('$ ')}\n" for line in lines)
        ran = subprocess.run([ROOT / "scripts" / "in_copy.sh", "sh", "-c", script], cwd=folder, text=True,
                             timeout=10 * PATIENCE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if "needs the right to mount" in ran.stdout:
            self.skipTest(ran.stdout)
        self.maxDiff = None
        self.assertEqual(ran.stdout, expected)


if __name__ == "__main__":
    unittest.main()
