"""The faults that a service can have, by name. Each is one answer, which ends by itself, or when the client leaves."""

import gzip
import select
import socket
import struct
import time

OK = b"HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n"
TEXT = b"71063|71094"
MAX_SECONDS = 75  # seconds after which an endless answer stops
PIECE = b"71063|71094|" * 4096
REDIRECTED_PATH = "/elsewhere"


def close(handler):
    handler.close_connection = True
    handler.connection.close()


def _raw(*pieces, stay=0):
    """Sends these bytes unchanged and closes the connection, after some seconds or when the client leaves."""
    def answer(handler):
        for piece in pieces:
            handler.wfile.write(piece)
        leaving = select.poll()  # select() cannot watch a descriptor past 1023
        leaving.register(handler.connection, select.POLLIN)
        leaving.poll(stay * 1000)
        close(handler)
    return answer


def _for_ever(head, piece, pause=0):
    """Repeats the piece after the head, with a pause of some seconds."""
    def answer(handler):
        handler.close_connection = True
        handler.wfile.write(head)
        end = time.monotonic() + handler.server.longest
        while time.monotonic() < end:
            handler.wfile.write(piece)
            time.sleep(pause)
    return answer


def _plain(status, body):
    return lambda handler: handler.reply(status, body)


def _cut_test_file(handler):
    handler.send_test_file(until=0.5)
    close(handler)


def _reset_test_file(handler):
    """Does not send the length, and resets the connection halfway."""
    handler.wfile.write(OK + b"\r\n" + bytes(100_000))
    time.sleep(0.5)
    handler.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    close(handler)


def _slow(handler):
    time.sleep(2)
    handler.reply(200, TEXT)


def _late_test_file(handler):
    time.sleep(2)
    handler.send_test_file()


def _redirect(status, location=None):
    """Redirects the client; without a location, to the same address."""
    def answer(handler):
        handler.send_response(status)
        handler.send_header("Location", location or handler.path)
        handler.send_header("Content-Length", "0")
        handler.end_headers()
    return answer


def _challenge(handler):
    """Asks for a name and a password."""
    handler.send_response(401)
    for scheme in ("Negotiate", "NTLM", 'Basic realm="x"'):
        handler.send_header("WWW-Authenticate", scheme)
    handler.send_header("Content-Length", str(len(TEXT)))
    handler.end_headers()
    handler.wfile.write(TEXT)


def _length(text, stay=0):
    return _raw(OK + b"Content-Length: " + text + b"\r\n\r\n" + TEXT, stay=stay)


def _chunked(*chunks):
    return _raw(OK + b"Transfer-Encoding: chunked\r\n\r\n", *chunks)


MISBEHAVIOURS = {
    "close": close,
    "cut": _raw(OK + b"Content-Length: 1000\r\n\r\n71063|"),
    "cut-file": _cut_test_file,
    "reset-file": _reset_test_file,
    "late-file": _late_test_file,
    "slow": _slow,
    "404": _plain(404, "nothing here"),
    "500": _plain(500, "broken"),
    "busy": _plain(503, ""),
    "log-in-page": _plain(200, "<html><h1>Log in to this network</h1></html>"),
    "empty": _plain(200, ""),
    "invalid-utf8": _plain(200, b"71063|\xff\xfe|71094"),
    "huge": _plain(200, b"71063|" + b"x" * (10 * 1024 * 1024)),
    "endless": _for_ever(OK + b"\r\n", b"71063|", 0.5),
    "slow-body": _for_ever(OK + b"Content-Length: 1000\r\n\r\n", b"7", 0.2),
    "slow-headers": _for_ever(OK + b"X: ", b"x", 0.2),
    "flood": _for_ever(OK + b"\r\n", PIECE),
    "flood-headers": _for_ever(OK, b"X: 71063|71094|71063|71094|71063|71094\r\n" * 100),
    "flood-header": _for_ever(OK + b"X: ", PIECE),
    "many-ids": _plain(200, "|".join(map(str, [71424, 71218, 71206, 71063, *range(80000, 2200000)]))[:16 * 1024 * 1024]),
    "ones": _plain(200, b"1," * (8 * 1024 * 1024)),
    "longest": _plain(200, b"71063|" + b"x" * (16 * 1024 * 1024 - 6)),
    "100-mb": _raw(OK + b"Content-Length: 104857600\r\n\r\n", *[bytes(1024 * 1024)] * 100),
    "length-small": _length(b"5"),
    "length-large": _length(b"1000", stay=MAX_SECONDS),
    "length-negative": _length(b"-5"),
    "length-overflow": _length(b"99999999999999999999"),
    "length-text": _length(b"many"),
    "length-absent": _raw(OK + b"\r\n" + TEXT),
    "401": _challenge,
    "redirect-own": _redirect(302, "http://ANALYSIS.Keldane.Example" + REDIRECTED_PATH),
    "redirect-self": _redirect(302),
    "redirect-path": _redirect(302, REDIRECTED_PATH),
    "redirect-host": _redirect(302, "http://other.example" + REDIRECTED_PATH),
    "redirect-keep": _redirect(307, REDIRECTED_PATH),
    "redirect-host-keep": _redirect(307, "http://other.example" + REDIRECTED_PATH),
    "redirect-file": _redirect(302, "file:///C:/windows/win.ini"),
    "redirect-ftp": _redirect(302, "ftp://127.0.0.1" + REDIRECTED_PATH),
    "gzip": _raw(OK + b"Content-Encoding: gzip\r\n\r\n" + gzip.compress(TEXT, mtime=0)),
    "chunked": _chunked(b"6\r\n71063|\r\n5\r\n71094\r\n0\r\n\r\n"),
    "chunked-text": _chunked(b"6\r\n71063|\r\nmany\r\n71094\r\n0\r\n\r\n"),
    "chunked-negative": _chunked(b"6\r\n71063|\r\n-5\r\n71094\r\n0\r\n\r\n"),
    "chunked-overflow": _chunked(b"6\r\n71063|\r\nFFFFFFFFFFFFFFFF\r\n71094\r\n0\r\n\r\n"),
    "chunked-endless": _for_ever(OK + b"Transfer-Encoding: chunked\r\n\r\n6\r\n71063|\r\n", b"0" * 4096),
}
