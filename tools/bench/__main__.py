"""Measures what the control costs, compared with plain programs that ask WMI for the same."""

import argparse
import tempfile
from pathlib import Path

import devices
from figures import CLOCK, GROUPS, first_run
from programs import BUILD, DLL, ROOT, Programs, cabinet_size, machine
from table import Aims, Rows, save, write_page

REQUIREMENTS = """{"title": "Bench", "requirements": [
  {"id": 71063, "label": "Memory", "comparison": "at least", "needed": "1 MB"},
  {"id": 71060, "label": "System", "comparison": "contains", "needed": "Windows"}]}"""
GRAPHICS = """{"title": "Graphics", "requirements": [
  {"id": 72008, "label": "Level", "comparison": "at least", "needed": "1.0"},
  {"id": 72204, "label": "Shaders", "comparison": "at least", "needed": "1.0"},
  {"id": 72015, "label": "DAC", "comparison": "any", "needed": ""}]}"""


def measure_first_run(programs, rows):
    """A first Detect, and the plain programs beside it."""
    figures, lines = programs.run("control_bench", "first")
    service = programs.service_milliseconds()
    figures.update(programs.run("control_bench", "output")[0])
    rows.add_all("", first_run(figures, lines, service))
    rows.add_all("wmi.", programs.run("wmi_bench")[0])
    exchanges = programs.run("http_bench")[0]["exchanges"]
    rows.add("http", exchanges - programs.service_milliseconds())


def measure(programs, rows, times):
    """One round: everything side by side; figures that other work on the machine disturbs most are taken several times."""
    for _ in range(times):
        measure_first_run(programs, rows)
    rows.add_all("", programs.run("control_bench", "quiet")[0])
    rows.add("report.rest", rows.last("report") - CLOCK - programs.service_milliseconds())
    rows.add_all("", programs.run("control_bench", "again")[0])
    for level, name in (("0", "quiet"), ("7", "loud")):
        for groups in GROUPS:
            rows.add_all(f"configure.{name}.{groups}.", programs.run("control_bench", "configure", str(groups), level)[0])
        for less, more in zip(GROUPS, GROUPS[1:]):
            rows.add(f"growth.{name}.{more}", rows.last(f"configure.{name}.{more}.first") /
                     rows.last(f"configure.{name}.{less}.first"))
    rows.add_all("", programs.run("library_bench")[0])
    for script in ("empty", "facts", "control"):
        rows.add(f"script.{script}", programs.script_milliseconds(script))
    rows.add("script.program", programs.milliseconds(str(BUILD / "kel.exe"), "facts", "--json"))


def main():
    parser = argparse.ArgumentParser(prog="bench", description=__doc__)
    parser.add_argument("--runs", type=int, default=9, help="how often everything is run; at least 7")
    parser.add_argument("--page", action="store_true", help="put the tables into docs/generated/performance.md")
    parser.add_argument("--quick", action="store_true", help="run everything once, to see that it works")
    arguments = parser.parse_args()
    if arguments.quick and arguments.page:
        parser.error("--page needs all runs")
    output = ROOT / "build" / "bench"
    output.mkdir(parents=True, exist_ok=True)

    about = machine()
    rows = Rows()
    rows.add("size.dll", DLL.stat().st_size / 1024)
    rows.add("size.cabinet", cabinet_size(output) / 1024)
    with tempfile.TemporaryDirectory() as folder:
        (Path(folder) / "bench.json").write_text(REQUIREMENTS)
        (Path(folder) / "graphics.json").write_text(GRAPHICS)
        with Programs(Path(folder)) as programs:
            programs.run("wmi_bench")  # so that work which happens once per Wine server is not in the first round
            for turn in range(1 if arguments.quick else max(arguments.runs, 7)):
                measure(programs, rows, 1 if arguments.quick else 3)
                print(f"round {turn + 1} done", flush=True)
            devices.measure(programs, rows, arguments.quick)

    aims = Aims(rows)
    print("\n".join(["", about, "", *rows.markdown(), "", *aims.markdown()]))
    save(output / "bench.json", about, rows, aims)
    if arguments.page:
        write_page(ROOT / "docs" / "generated" / "performance.md", about, rows, aims)


main()
