"""Sessions with the deployed service, played again: each file of transcripts/ has what is done and all that comes of it."""

import codecs
import http.client
import os
import re
import shlex
import subprocess
import unittest
from pathlib import Path
from urllib.parse import quote_plus

from administration import report
from deployed import SERVER, UPLOAD, DeployedTest, analysis
from harness import API_KEY, PATIENCE

TRANSCRIPTS = sorted((Path(__file__).parent / "transcripts").glob("*.txt"))
HEADERS = ("Content-Type", "Location", "Allow", "ETag", "WWW-Authenticate", "Retry-After", "Set-Cookie")
PAGE_HEADERS = ("Vary", "Access-Control-Allow-Origin", "Access-Control-Allow-Methods", "Content-Disposition", "Content-Range",
                "Accept-Ranges", "Referrer-Policy", "X-Content-Type-Options", "Cache-Control")  # shown for /v1/
# What differs from run to run. Moments of 2025 are the transcripts' own.
MASKS = ((r"^time=\S+ ", ""), (r"(?!2025)20\d\d-\d\d-\d\d([T ])\d\d:\d\d:\d\d", r"0000-00-00\g<1>00:00:00"),
         (r"(?!2025)20\d\d-\d\d-\d\d", "0000-00-00"), (r"just now|[\d,]+ \w+ ago", "lately"),
         (r"(?<=00:00:00)\.\d{3}Z", ".000Z"), (r"(?<![\w-])[\w-]{43}(?![\w-])", "SECRET"), (r"\b[\da-f]{64}\b", "HASH"),
         (r"(port=|127\.0\.0\.1:)\d+", r"\1N"), (r"^(\w*(?:seconds_(?:bucket|sum)|_bytes|start_time_seconds)\b.*) \S+$", r"\1 N"),
         (r"^(kel_connections\{.*) \d+$", r"\1 N"), (r"^.*kel_database_free_bytes.*\n", ""), (API_KEY, "KEY"),
         (r'((?:version="|^kel_server ))[\d.]+', r"\1N"), (r"^(<style>.*)\n[^<]*", r"\1\n"))
INLINE = "a|b|bdi|span|time"


class Transcripts(DeployedTest):
    """A line "$ what is done" is a request to the administration (with the log-in that came last), one to the public
    endpoint after "public", SQL, or a command of the program. KEL_WRITE=1 writes the files anew."""

    settings = ("--keep-days", "0")  # nothing is logged in between
    maxDiff = None

    def replay(self, path):
        self.cookie, self.token, self.read = "", "", len(self.log_text())
        expected = path.read_text("utf-8")
        steps = (line for line in expected.splitlines() if line.startswith(("$ ", "## ")))
        said = "".join(f"{line}\n{self.play(line)}" for line in steps)
        if os.environ.get("KEL_WRITE"):
            path.write_text(said, "utf-8")
        self.assertEqual(said, expected)

    def play(self, line):
        """What comes of a line: an answer or an output, and what the service logs meanwhile."""
        word, _, rest = line.replace("FOLDER", str(self.folder)).removeprefix("$ ").partition(" ")
        if word in ("GET", "POST", "PUT", "DELETE", "HEAD"):
            said = self.request(self.admin, word, *rest.partition(" ")[::2])
        elif word == "public":
            verb, path, body = (rest + " ").split(" ", 2)
            said = self.request(self.address, verb, path.replace("KEY", API_KEY), body.strip())
        elif word == "upload":
            words = shlex.split(rest)
            said = self.request(self.address, "POST", UPLOAD, report(*words[:2], **dict(v.split("=", 1) for v in words[2:])))
        elif word == "analysis":
            session, referrer, form = rest.split()
            said = self.request(self.address, "POST", f"/service/Analysis/{referrer}", analysis(session, form))
        elif word == "sql":
            said = "".join(" | ".join(map(str, row)) + "\n" for row in self.database.run(rest))
        elif word == "write":
            name, text = rest.split(" ", 1)
            (self.folder / name).write_text(text, "utf-8")
            said = ""
        elif word == "restart":
            said = f"stopped with {self.stop()}\n"
            self.start(*rest.split())
        else:
            said = "" if word == "##" else self.run_command(f"{word} {rest}")
        log, start = self.log_text(), self.read
        self.read = len(log)
        said += log[start:]
        for pattern, mask in MASKS:
            said = re.sub(pattern, mask, said, flags=re.MULTILINE)
        return said.replace(str(self.folder), "FOLDER").replace(str(self.database.setting), "DATABASE")

    def run_command(self, line):
        line, _, given = line.partition(" < ")
        words = shlex.split(line)
        if "--database" not in words:
            words += ["--database", str(self.database.setting)]
        ran = subprocess.run([SERVER, *words], input=given + "\n", capture_output=True, text=True, timeout=PATIENCE)
        said = ran.stdout
        if words[0] != "--help":
            said += ran.stderr
            said = re.sub(r"^(usage: .*\n)(?: .*\n)+", r"\1", said)
        return said + (f"exit {ran.returncode}\n" if ran.returncode else "")

    def request(self, address, verb, path, body):
        """The status, the headers that matter, and the body with an element on each line."""
        path, *headers = path.split("|")
        given = dict(header.split(":", 1) for header in headers) | {"X-Form-Token": self.token}
        if self.cookie and address == self.admin:
            given["Cookie"] = self.cookie
        connection = http.client.HTTPConnection(address, timeout=PATIENCE)
        self.addCleanup(connection.close)
        sent = codecs.escape_decode(body.replace("TOKEN", quote_plus(self.token)).encode())[0]
        connection.request(verb, path, sent, given)
        answer = connection.getresponse()
        text = answer.read().decode("utf-8", "backslashreplace")
        if cookies := answer.headers.get_all("Set-Cookie"):
            self.cookie = "; ".join(cookie.split(";")[0] for cookie in cookies)
        if found := re.search(r'name="token" value="([^"]+)"', text):
            self.token = found[1]
        shown = HEADERS + PAGE_HEADERS if path.startswith("/v1/") else HEADERS
        lines = [str(answer.status)] + [f"{name}: {value}" for name in shown for value in answer.headers.get_all(name, ())]
        if "html" in answer.headers.get("Content-Type", ""):
            text = re.sub(rf"(?<!\n)<(?!/|(?:{INLINE})\b)", "\n<", text)
        return "\n".join([*lines, *text.strip("\n").splitlines()]) + "\n"


for file in TRANSCRIPTS:
    setattr(Transcripts, f"test_{file.stem}", lambda case, file=file: case.replay(file))


if __name__ == "__main__":
    unittest.main()
