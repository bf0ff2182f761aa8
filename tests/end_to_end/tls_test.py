"""The check by HTTPS: answered where the system trusts the service's certificate, and otherwise never sent."""

import contextlib
import hashlib
import http.server
import re
import ssl
import subprocess
import tempfile
import threading
import unittest
from pathlib import Path

from harness import wine
from program_test import kel

HOST = "analysis.example"
STORE = r"HKCU\Software\Microsoft\SystemCertificates\Root\Certificates"
CERTIFICATE = 32  # CERT_CERT_PROP_ID, under which a store's value holds the certificate itself


def openssl(*arguments):
    subprocess.run(["openssl", *map(str, arguments)], check=True, capture_output=True, timeout=60)


class Authority:
    """A root of the test's own, and the certificates that it signs."""

    def __init__(self, folder):
        self.folder = folder
        openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", folder / "root.key", "-out", folder / "root.crt",
                "-days", "30", "-subj", "/CN=A root of the tests", "-addext", "keyUsage=critical,keyCertSign,cRLSign")

    def sign(self, name, host, *validity):
        """A file with a certificate for a host and its key."""
        path = self.folder / name
        openssl("req", "-newkey", "rsa:2048", "-nodes", "-keyout", f"{path}.key", "-out", f"{path}.csr", "-subj", f"/CN={host}",
                "-addext", f"subjectAltName=DNS:{host}")
        (self.folder / "serial").write_text("01\n")
        (self.folder / "index").write_text("")
        (self.folder / "ca.cnf").write_text(
            f"[ca]\ndefault_ca=own\n[own]\ndatabase={self.folder}/index\nserial={self.folder}/serial\n"
            f"new_certs_dir={self.folder}\ndefault_md=sha256\npolicy=any\ncopy_extensions=copy\n[any]\ncommonName=supplied\n")
        openssl("ca", "-batch", "-notext", "-config", self.folder / "ca.cnf", "-cert", self.folder / "root.crt", "-keyfile",
                self.folder / "root.key", "-in", f"{path}.csr", "-out", f"{path}.crt", *validity)
        path.write_text(Path(f"{path}.crt").read_text() + Path(f"{path}.key").read_text())
        return path

    @contextlib.contextmanager
    def trusted(self):
        """Wine trusts the root meanwhile."""
        der = ssl.PEM_cert_to_DER_cert((self.folder / "root.crt").read_text())
        blob = b"".join(number.to_bytes(4, "little") for number in (CERTIFICATE, 1, len(der))) + der
        key = STORE + "\\" + hashlib.sha1(der).hexdigest().upper()
        wine("reg", "add", key, "/v", "Blob", "/t", "REG_BINARY", "/d", blob.hex(), "/f")
        try:
            yield
        finally:
            wine("reg", "delete", key, "/f")


class Handler(http.server.BaseHTTPRequestHandler):
    """A proxy that answers for every host itself, by TLS where it is asked for a connection."""

    protocol_version = "HTTP/1.1"

    def do_CONNECT(self):
        self.server.lines.append(self.requestline)
        self.send_response(200)
        self.end_headers()
        try:
            self.request = self.server.tls.wrap_socket(self.connection, server_side=True)
            self.setup()
        except OSError:  # the client does not trust the certificate
            self.close_connection = True

    def answer(self):
        self.server.lines.append(self.requestline)
        self.rfile.read(int(self.headers.get("Content-Length", 0)))
        if self.server.redirects:
            self.send_response(302)
            self.send_header("Location", f"http://{HOST}/plain")
            self.send_header("Content-Length", "0")
            self.end_headers()
            return
        body = b"71060" if "Group/list" in self.path else b"{}"
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    do_GET = do_POST = answer

    def finish(self):
        super().finish()
        self.request.close()

    def log_message(self, *_):
        pass


class Tls(unittest.TestCase):
    def check(self, certificate, redirects=False, service="https://" + HOST):
        """What kel says to a check, and the request lines that reach the proxy and the service."""
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        server.daemon_threads = True
        server.lines, server.redirects = [], redirects
        server.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        server.tls.load_cert_chain(certificate)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        _, _, error = kel("check", "demo", "--service", service, proxy=f"http://127.0.0.1:{server.server_port}")
        return error, [re.sub(r"\?\S+", "", line) for line in server.lines]

    def test_the_service_is_reached_by_a_trusted_certificate_alone(self):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        authority = Authority(folder)
        own = authority.sign("own", HOST, "-days", "10")
        with self.subTest("a root that is not trusted"):
            self.refused("120(45|57)", self.check(own))  # Wine reports the latter
        with authority.trusted():
            with self.subTest("its own name"):
                error, lines = self.check(own)
                self.assertIn('answered: "{}"', error)
                self.assertEqual([line for line in lines if not line.startswith("CONNECT ")],
                                 ["GET /Data/Service.svc/Group/list HTTP/1.1", "POST /Data/Service.svc/upload HTTP/1.1",
                                  "POST /service/Analysis/demo HTTP/1.1"])
            with self.subTest("a redirect to plain HTTP"):
                error, lines = self.check(own, redirects=True)
                self.assertEqual([line for line in lines if "/plain" in line], [])
                self.assertIn("another host answered", error)
            with self.subTest("another name"):
                self.refused("12038", self.check(authority.sign("other", "other.example", "-days", "10")))
            with self.subTest("out of date"):
                self.refused("12037", self.check(authority.sign("old", HOST, "-startdate", "20200101000000Z", "-enddate",
                                                                "20200201000000Z")))

    def refused(self, code, answer):
        error, lines = answer
        self.assertRegex(error, rf"not reached: {code}\.")
        self.assertEqual(set(lines), {f"CONNECT {HOST}:443 HTTP/1.1"})  # and nothing by plain HTTP


if __name__ == "__main__":
    unittest.main()
