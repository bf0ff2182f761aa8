"""The example of a proxy in front of the deployed service, in the proxy itself."""

import http.client
import os
import re
import socket
import ssl
import subprocess
import threading
import time
import unittest

from deployed import INFORMATION, LIST, REPORT, UPLOAD, DeployedTest, analysis
from harness import API_KEY, ROOT

WANTED = f"{LIST}?refid=r&apikey={API_KEY}"
KEY = API_KEY.encode()
LARGEST = 2 * 1024 * 1024
FRAME = """daemon off; master_process off; pid {0}/pid; error_log {0}/error.txt;
events {{ worker_connections 200; }}
http {{ access_log {0}/access.txt; client_body_temp_path {0}/body; proxy_temp_path {0}/proxy; fastcgi_temp_path {0}/fastcgi;
uwsgi_temp_path {0}/uwsgi; scgi_temp_path {0}/scgi;
{1} }}"""


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as listener:
        return listener.getsockname()[1]


class Proxied(DeployedTest):
    """Has the proxy before the service, with a certificate of its own."""

    def setUp(self):
        super().setUp()
        self.require("r", (1, "M", "at least", "4 GB"))
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", self.folder / "admin.key", "-out",
                        self.folder / "admin.pem", "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1"],
                       check=True, capture_output=True)
        self.start_proxy(self.admin)

    def start_proxy(self, admin):
        text = (ROOT / "packaging" / "server" / "nginx.conf").read_text("ascii")
        self.proxy, self.secure = (f"127.0.0.1:{free_port()}" for _ in range(2))
        for old, new in (("listen 80;", f"listen {self.proxy};"), ("listen 443 ssl", f"listen {self.secure} ssl"),
                         ("127.0.0.1:8080", self.address), ("127.0.0.1:8081", admin), ("/etc/ssl/kel", str(self.folder))):
            self.assertIn(old, text)
            text = text.replace(old, new)
        (self.folder / "nginx.conf").write_text(FRAME.format(self.folder, text))
        process = subprocess.Popen(["nginx", "-c", self.folder / "nginx.conf", "-e", self.folder / "error.txt"],
                                   env=os.environ | {"PATH": os.environ["PATH"] + ":/usr/sbin"})
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        end = time.monotonic() + 10
        while not (self.folder / "pid").exists() or not (self.folder / "pid").read_text():
            self.assertIsNone(process.poll(), "the proxy ended at once")
            self.assertLess(time.monotonic(), end)
            time.sleep(0.01)

    def through(self, target):
        """The status and body of a request line's target, given as bytes, from the service and by way of the proxy."""
        answers = []
        for address in (self.service_address, self.proxy):
            self.address = address
            answer = self.talk(b"GET " + target + b" HTTP/1.1\r\nHost: analysis.keldane.example\r\nConnection: close\r\n\r\n")
            answers.append((int(answer[9:12]), answer.partition(b"\r\n\r\n")[2]))
        return answers

    def administer(self, path, headers=None):
        context = ssl.create_default_context(cafile=self.folder / "admin.pem")
        connection = http.client.HTTPSConnection(self.secure, timeout=10, context=context)
        self.addCleanup(connection.close)
        connection.request("GET", path, headers=headers or {})
        answer = connection.getresponse()
        return answer.status, answer.read()

    def test_the_controls_requests_pass_unchanged(self):
        report = REPORT.format("s")
        information = f"<SystemInformation><Data>{report.replace('<', '&lt;')}</Data></SystemInformation>"
        for verb, target, body in (
                ("GET", WANTED, ""), ("POST", UPLOAD, report), ("POST", INFORMATION, information),
                ("POST", "/service/Analysis/r", analysis("s")), ("POST", "/service/Analysis/r", analysis("s", "html")),
                ("GET", "/global/tests/test_2.bin", ""), ("POST", UPLOAD, report.ljust(LARGEST))):
            with self.subTest(target):
                answer = self.ask(verb, target, body)
                self.assertEqual(self.ask(verb, target, body, self.proxy), answer)
                self.assertEqual(answer[0], 200)

    def test_odd_targets_pass_byte_for_byte(self):
        self.service_address = self.address
        odd = LIST.encode() + b"?apikey=" + KEY + b"&refid="
        for target in (b"/\xe9\xff", b"/a%2fb%2F%41", b"//a//b", b"/a/./b", b"/a/../b", b"/a#b?c#d", b"/+%20%0d%0a",
                       b"/\"<>|\\^`{}", b"/?x=%zz&&=&#%00", odd + b"r&x", odd + b"r#x", odd + b"\xff", odd + b"%C3%A9%26",
                       odd + b"../r"):
            with self.subTest(target):
                direct, proxied = self.through(target)
                self.assertEqual((direct, proxied), ((404, b""),) * 2)
                own, other = re.findall(r"target=(.*) reason", self.log_text())[-2:]
                self.assertEqual(own, other)
        for target in (b"/%", b"/%zz", b"/%00", b"/../a", b"/a\tb", b"/" + b"x" * 9000, b"*"):  # which the proxy itself refuses
            with self.subTest(target):
                proxied = self.through(target)[1]
                self.assertIn(proxied, ((400, b""), (414, b"")))

    def test_an_error_of_the_proxy_has_no_body(self):
        self.assertEqual(self.ask("POST", UPLOAD, " " * (LARGEST + 1), self.proxy), (413, b""))
        self.assertEqual(self.stop(), 0)
        for verb, path, body in (("GET", WANTED, ""), ("POST", UPLOAD, REPORT.format("s"))):
            self.assertEqual(self.ask(verb, path, body, self.proxy), (502, b""))

    def test_administration_is_there_over_tls_alone(self):
        self.assertEqual(self.administer("/none"), self.ask("GET", "/none", address=self.admin))
        for path in ("/healthz", "/readyz", "/metrics"):
            self.assertEqual(self.ask("GET", path, address=self.admin)[0], 200)
            self.assertEqual((self.administer(path)[0], self.ask("GET", path, address=self.proxy)[0]), (404, 404))
        self.assertIn(429, [self.administer("/none")[0] for _ in range(70)])

    def test_nobody_outside_says_who_has_logged_in(self):
        heads = []

        def answer():
            with listener.accept()[0] as connection:
                heads.append(connection.recv(65536).decode().lower())
                connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok")
        with socket.create_server(("127.0.0.1", 0)) as listener:
            listener.settimeout(10)
            thread = threading.Thread(target=answer)
            thread.start()
            (self.folder / "pid").unlink()
            self.start_proxy(f"127.0.0.1:{listener.getsockname()[1]}")
            headers = {"X-Remote-User": "chief", "x_remote_user": "chief", "X-Forwarded-For": "1.2.3.4", "Cookie": "a=b"}
            self.assertEqual(self.administer("/admin?a=%20b", headers), (200, b"ok"))
            thread.join()
        self.assertTrue(heads[0].startswith("get /admin?a=%20b http/1.1"))
        self.assertNotIn("chief", heads[0])
        self.assertIn("\r\nx-forwarded-for: 127.0.0.1\r\n", heads[0])
        self.assertIn("\r\ncookie: a=b\r\n", heads[0])


if __name__ == "__main__":
    unittest.main()
