"""The service's Debian package, on a copy of this machine: an overlay in a mount namespace."""

import configparser
import os
import re
import stat
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from deployed import LIST, REPORT, UPLOAD, Client, analysis
from harness import API_KEY, ROOT

COPY = """set -e
mount -t tmpfs kel "$1"
mkdir "$1/upper" "$1/work" "$1/root"
mount -t overlay kel -o "lowerdir=/,upperdir=$1/upper,workdir=$1/work" "$1/root"
mount --rbind /dev "$1/root/dev"
mount --rbind /proc "$1/root/proc"
echo ready
read -r line"""
INVOKE = '#!/bin/sh\necho "$*" >>/calls\n'  # in place of what asks the system manager, which a copy has not
UNIT = "/lib/systemd/system/kel-server.service"
DOC = "usr/share/doc/kel-server"
# What a system's own tools write when any package comes and goes.
BOOKS = re.compile(r"(var/(lib/(dpkg|systemd)|log|cache)|run|etc/(\.pwd\.lock|(passwd|g?shadow|group|subuid|subgid)-?))(/|$)")


def package(folder, *version):
    """Makes the package: its path."""
    subprocess.run([ROOT / "scripts" / "package_service.sh", *(version or ("",)), folder], check=True, capture_output=True)
    [path] = Path(folder).glob("*.deb")
    return path


class ServicePackage(Client, unittest.TestCase):
    """Has the package of this version and of a later one, and a copy of the machine."""

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.now, cls.later = package(cls.folder / "now"), package(cls.folder / "later", "99.0.0")

    def setUp(self):
        place = self.enterContext(tempfile.TemporaryDirectory())
        users = [] if os.getuid() == 0 else ["--map-root-user", "--map-auto"]
        holder = subprocess.Popen(["unshare", "--mount", *users, "sh", "-c", COPY, "sh", place], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(holder.communicate)
        if holder.stdout.readline() != "ready\n":
            self.fail("This test needs a system that lets it mount an overlay (root in a container: its right SYS_ADMIN): "
                      + holder.stderr.read())
        namespaces = ["--mount", *(["--user"] if users else ())]
        self.enter = ["nsenter", "--target", str(holder.pid), *namespaces, "chroot", f"{place}/root"]
        self.copy, self.upper = (Path(f"/proc/{holder.pid}/root{place}/{name}") for name in ("root", "upper"))
        (self.copy / "run/systemd/system").mkdir(parents=True, exist_ok=True)
        self.write("usr/local/bin/deb-systemd-invoke", INVOKE).chmod(0o755)
        self.write("calls", "")

    def write(self, name, text):
        (self.copy / name).write_text(text)
        return self.copy / name

    def run_there(self, *command, code=0):
        ran = subprocess.run([*self.enter, *command], capture_output=True, text=True, timeout=60,
                             env={"PATH": "/usr/local/bin:/usr/local/sbin:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C"})
        self.assertEqual(ran.returncode, code, ran.stdout + ran.stderr)
        return ran.stdout + ran.stderr

    def install(self, path):
        (self.copy / "package.deb").write_bytes(path.read_bytes())
        return self.run_there("dpkg", "--force-unsafe-io", "--install", "/package.deb")

    def calls(self):
        """What was asked of the system manager since the last time."""
        calls = (self.copy / "calls").read_text().splitlines()
        self.write("calls", "")
        return calls

    def as_user(self, *command):
        return "setpriv", "--reuid=kel", "--regid=kel", "--init-groups", "--no-new-privs", *command

    def start(self):
        """What the unit starts, as its user."""
        unit = configparser.RawConfigParser(strict=False)
        unit.optionxform = str
        unit.read(self.copy / UNIT.lstrip("/"))
        (self.copy / "var/lib/kel/port").unlink(missing_ok=True)
        self.assertEqual(unit["Service"]["User"], "kel")
        process = subprocess.Popen([*self.enter, *self.as_user(*unit["Service"]["ExecStart"].split())], stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        end = time.monotonic() + 20
        while not (self.copy / "var/lib/kel/port").exists():
            self.assertIsNone(process.poll(), "the service ended at once")
            self.assertLess(time.monotonic(), end)
            time.sleep(0.02)
        self.address = "127.0.0.1:" + (self.copy / "var/lib/kel/port").read_text()
        return process

    def stop(self, process):
        process.terminate()
        self.assertEqual(process.wait(20), 0)

    def left(self):
        """What changed on the copy since it was made, without the system's books."""
        paths = (path for path in self.upper.rglob("*") if not path.is_dir() or "kel" in path.name)
        return sorted(name for path in paths if not BOOKS.match(name := str(path.relative_to(self.upper))))

    def test_it_comes_serves_is_upgraded_and_goes(self):
        self.write("package.deb", "")
        before = self.left()
        self.assertIn("event=migrated", self.install(self.now))
        self.assertEqual(self.calls(), ["restart kel-server.service"])
        self.assertEqual(self.run_there("dpkg", "--verify", "kel-server"), "")
        for path, mode, owner in (("usr/bin/kel_server", 0o755, "root"), ("etc/kel/kel.conf", 0o644, "root"),
                                  ("var/lib/kel", 0o750, "kel"), ("var/lib/kel/kel.db", 0o640, "kel"),
                                  (f"{DOC}/examples/nginx.conf", 0o644, "root"), (f"{DOC}/copyright", 0o644, "root")):
            with self.subTest(path):
                self.assertEqual(stat.S_IMODE((self.copy / path).stat().st_mode), mode)
                self.assertEqual(self.run_there("stat", "-c", "%U:%G", f"/{path}"), f"{owner}:{owner}\n")
        self.assertTrue((self.copy / "etc/systemd/system/multi-user.target.wants/kel-server.service").is_symlink())

        with open(self.copy / "etc/kel/kel.conf", "a", encoding="ascii") as settings:
            settings.write("port = 0\nadmin_port = 0\nport_file = /var/lib/kel/port\n")
        import_it = self.as_user("kel_server", "import", f"/{DOC}/examples/requirements", "--config", "/etc/kel/kel.conf")
        self.assertIn("referrer=demo version=1", self.run_there(*import_it))
        process = self.start()
        self.assertEqual(self.ask("GET", f"{LIST}?refid=demo&apikey={API_KEY}")[0], 200)
        self.assertEqual(self.ask("POST", UPLOAD, REPORT.format("s")), (200, b"OK"))
        verdict = self.ask("POST", "/service/Analysis/demo", analysis("s"))
        self.assertEqual((verdict[0], verdict[1][:9]), (200, b"<analysis"))
        self.stop(process)

        changed = (self.copy / "etc/kel/kel.conf").read_text()
        self.assertIn("version=", self.install(self.later))
        self.assertEqual(self.calls(), ["stop kel-server.service", "restart kel-server.service"])
        self.assertEqual((self.copy / "etc/kel/kel.conf").read_text(), changed)
        process = self.start()
        self.assertEqual(self.ask("POST", "/service/Analysis/demo", analysis("s")), verdict)
        self.stop(process)

        self.run_there("dpkg", "--remove", "kel-server")
        self.assertEqual(self.calls(), ["stop kel-server.service"])
        for path, stays in (("usr/bin/kel_server", False), ("var/lib/kel/kel.db", True), ("etc/kel/kel.conf", True)):
            self.assertEqual((self.copy / path).exists(), stays, path)
        self.run_there("dpkg", "--purge", "kel-server")
        self.assertEqual(self.left(), before)
        self.run_there("getent", "passwd", "kel", code=2)
        self.run_there("getent", "group", "kel", code=2)
        self.assertEqual(list(self.copy.glob("var/lib/systemd/deb-systemd-helper-*/**/*kel*")), [])

    def test_it_comes_to_a_machine_that_no_system_manager_runs(self):
        (self.copy / "run/systemd/system").rmdir()
        self.install(self.now)
        self.run_there("dpkg", "--purge", "kel-server")
        self.assertEqual(self.calls(), [])

    def test_its_unit_is_right_and_shut_in(self):
        self.install(self.now)
        self.assertEqual(self.run_there("/usr/bin/systemd-analyze", "verify", UNIT), "")
        self.run_there("/usr/bin/systemd-analyze", "security", "--offline=true", "--threshold=15", UNIT)

    def test_it_is_the_same_each_time(self):
        self.assertEqual(package(self.folder / "again").read_bytes(), self.now.read_bytes())


if __name__ == "__main__":
    unittest.main()
