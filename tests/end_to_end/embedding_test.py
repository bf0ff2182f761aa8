"""kel.exe as the class's local server, which COM starts for programs that cannot load the DLL.

Here the 64-bit script host asks for it, as the DLL is taken out of the registration. 32-bit programs need Wine with both widths:
scripts/in_copy.sh --install wine32:i386 env WINEPREFIX=/tmp/prefix python3 tests/end_to_end/embedding_test.py"""

import os
import subprocess
import time
import unittest
from pathlib import Path

from harness import CLASS_ID, DLL, PATIENCE, PROG_ID, PROGRAMS, ControlTest, windows_path, wine

KEL = DLL.parent / "kel.exe"
CSCRIPT_32 = r"C:\windows\syswow64\cscript.exe"
CLASS = rf"HKLM\Software\Classes\CLSID\{CLASS_ID}"
# Where Wine looks for a library whose interface crosses processes: only among those of no language.
LIBRARY = r"HKLM\Software\Classes\TypeLib\{386EBC54-4F11-4853-BB50-316281E41CFF}\1.0\0"


def processes(program):
    """The ids of the running programs of this name in this prefix."""
    found = []
    for folder in Path("/proc").glob("[0-9]*"):
        try:
            words = (folder / "cmdline").read_bytes().lower().split(b"\0")
            if any(program in word for word in words[:2]) and \
                    f"WINEPREFIX={os.environ['WINEPREFIX']}".encode() in (folder / "environ").read_bytes().split(b"\0"):
                found.append(int(folder.name))
        except OSError:
            pass  # it has ended
    return found


LEFT = processes(b"kel.exe")  # by a run that was interrupted


def servers():
    return [process for process in processes(b"kel.exe") if process not in LEFT]


class LocalServer(ControlTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.addClassCleanup(wine, KEL, "-unregserver")
        assert wine(KEL, "/RegServer").code == 0
        wine("reg", "delete", CLASS + r"\InprocServer32", "/f")
        cls.addClassCleanup(super().setUpClass)
        wine("reg", "add", LIBRARY + r"\win64", "/ve", "/d", windows_path(DLL), "/f")
        cls.addClassCleanup(wine, "reg", "delete", LIBRARY, "/f")

    def wait(self, condition, reason):
        end = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), end, reason)
            time.sleep(0.02)

    def setUp(self):
        super().setUp()
        self.wait(lambda: not servers(), "a server of another test does not end")

    def hold(self):
        """Starts a program that holds an object. Wine sometimes connects before a new server listens: 800706BA."""
        for _ in range(3):
            process = self.enterContext(subprocess.Popen(["wine", PROGRAMS / "plain_program.exe", "hold"], stdin=subprocess.PIPE,
                                                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True))
            self.addCleanup(process.kill)
            line = process.stdout.readline()
            if line != "800706BA\n":
                break
        self.assertEqual(line, "00000000\n")
        return process

    def test_scripts_and_programs_get_every_member_from_it(self):
        lines = self.run_script("""
            control.Logging = "0"; control.Configure("<x/>"); control.Debug = "0"; control.SysInfo = "nothing";
            control.ReferrerID = "demo"; control.UserID = "Zo\\u00eb"; control.SessionID = "s";
            control.Detect();
            WScript.Echo([control.Value("73003"), control.Version, control.ReferrerID, control.UserID.length,
                          control.Debug, control.Logging].join("|"));
            WScript.Echo(control.Analysis("requirements", "json", "1.0").match(/"result": ?"(\\w+)"/)[1]);
            WScript.Echo(control.SysInfo == control.System(""), control.SysInfo.length > 100);""")
        self.assertEqual(lines, ["kel.exe|4.5.1.0|demo|3|0|7", "pass", "-1 -1"])
        self.wait(lambda: not servers(), "the server does not end after a script")
        # Through the interface's own table of functions.
        self.assertEqual(wine(PROGRAMS / "check_example.exe", proxy=f"http://{self.address}").output.splitlines()[0],
                         "Verdict: pass")
        self.wait(lambda: not servers(), "the server does not end after a program")

    def release(self, process):
        """Has such a program release its object. It then waits for another line."""
        process.stdin.write("\n")
        process.stdin.flush()
        self.assertEqual(process.stdout.readline(), "00000000 visitor\n")

    def test_it_ends_with_the_last_object(self):
        client = self.hold()
        self.release(client)
        self.wait(lambda: not servers(), "the server does not end after the last release")
        self.assertIsNone(client.poll())

    def test_it_ends_with_the_last_client(self):
        killed = self.hold()
        [server] = servers()
        left = self.hold()
        killed.kill()
        killed.wait()
        killed_later = self.hold()  # which takes the server many looks at its clients
        self.assertEqual(servers(), [server])
        self.release(left)
        left.communicate("\n")
        self.assertEqual(servers(), [server])
        killed_later.kill()
        self.wait(lambda: not servers(), "the server does not end after its clients")

    def test_a_32_bit_script_host_gets_it(self):
        if not Path(os.environ["WINEPREFIX"], "drive_c/windows/syswow64/cscript.exe").exists():
            self.skipTest("This Wine runs no 32-bit programs; scripts/in_copy.sh installs one that does (see above).")
        script = self.folder / "narrow.js"
        script.write_text(f"""var control = new ActiveXObject("{PROG_ID}"); control.ReferrerID = "demo";
            var verdict = control.Analysis("requirements", "json", "1.0").match(/"result": ?"(\\w+)"/)[1];
            WScript.Echo([verdict, control.Value("73003"), control.Value("71063").replace(/[\\d.]+/, "N")].join("|"));""")
        ran = wine(CSCRIPT_32, "//nologo", windows_path(script), proxy=f"http://{self.address}")
        self.assertEqual(ran.output, "pass|kel.exe|N GB\n")
        self.wait(lambda: not servers(), "the server does not end after a 32-bit client")


if __name__ == "__main__":
    unittest.main()
