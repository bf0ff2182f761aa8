"""The detectors of devices and software: on planted machines of several sizes, on this machine, and graphics drivers."""

import math
import subprocess
import tempfile
from contextlib import contextmanager

DEVICES, LETTERS, ENTRIES = (1, 10, 100), (1, 10, 26), (1, 100, 10000)
SIZES = {**dict.fromkeys(("GPU", "CDRom", "DirectX", "DVD", "Graphics", "HardDrive"), DEVICES), "LogicalDrive": LETTERS,
         **dict.fromkeys(("NetworkDevice", "Sound"), DEVICES), **dict.fromkeys(("Software", "Browser"), ENTRIES),
         "Monitor": DEVICES, "Applications": ENTRIES, "SCSI": DEVICES}
# The facts for which a driver's code runs, with what it is asked for.
GATES = {"": "nothing", "72008,72203": "the feature level", "72204": "the shader model", "72014,72015": "chip and DAC"}
PROBES = {"dxgi": "DXGI", "cache": "the adapter cache", "setup": "the Setup API", "d3d9": "Direct3D 9",
          "d3d10": "Direct3D 10", "d3d11": "Direct3D 11", "d3d12": "Direct3D 12", "model": "the shader model",
          "dxdiag": "DxDiag",
          "dxcore": "DXCore, for one adapter", "paths": "`QueryDisplayConfig`"}
UNGATED = ("dxgi", "cache", "setup", "dxcore", "paths")
FLOOR = 1  # milliseconds; smaller figures count as this when growth is judged

LABELS = {
    "Detectors on this machine, their libraries loaded": {
        **{f"here.{name}": (f"`{name}`", "ms") for name in SIZES},
        "here.all": ("**all**", "ms"),
    },
    "Graphics, with a virtual display": {
        **{f"probe.{call}.{probe}": (f"{label}, {phrase}" + ("" if probe in UNGATED else "; only for facts that are wanted"),
                                     "ms")
           for probe, label in PROBES.items() for call, phrase in (("first", "first call"), ("again", "each later one"))},
        **{f"gate.{ids}": (f"`GPU`, {phrase} of the graphics driver wanted", "ms") for ids, phrase in GATES.items()},
    },
    "10,000 controls in a process that has the graphics libraries": {
        "life.libraries": ("graphics libraries in it, of five", "libraries"),
        "life.each": ("each control: made, read and released", "ms"),
        "life.handles": ("handles more at the end", "handles"),
        "life.threads": ("threads more at the end", "threads"),
    },
}


def measure_detectors(programs, rows):
    for name, sizes in SIZES.items():
        for size in sizes:
            rows.add(f"planted.{name}.{size}", programs.run("detector_bench", "planted", name, str(size))[0]["took"])
    rows.add("planted.all", programs.run("detector_bench", "planted", ",".join(SIZES), "10")[0]["took"])
    here = programs.run("detector_bench", "here")[0]
    rows.add_all("here.", {**here, "all": sum(here.values())})


def measure_graphics(programs, rows):
    rows.add_all("probe.", programs.run("detector_bench", "probes")[0])
    for ids in GATES:
        rows.add(f"gate.{ids}", programs.run("detector_bench", "here", "GPU", ids)[0]["GPU"])
    rows.add_all("life.", programs.run("control_bench", "life")[0])


@contextmanager
def display(programs):
    """A virtual display with a separate Wine server, since a server keeps the display that it saw first."""
    with tempfile.TemporaryDirectory() as prefix, subprocess.Popen(
            ["Xvfb", "-displayfd", "1", "-screen", "0", "1920x1080x24", "-nolisten", "tcp"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True) as server:
        before = programs.environment
        programs.environment = dict(before, DISPLAY=f":{server.stdout.readline().strip()}", WINEPREFIX=prefix)
        try:
            programs.wine("wineboot", "-i")
            yield
        finally:
            subprocess.run(["wineserver", "-k"], env=programs.environment, check=False)
            server.terminate()
            programs.environment = before


def measure(programs, rows, quick):
    """Few rounds: planting is slow, as are graphics drivers, and most figures are medians within a program already."""
    for _ in range(1 if quick else 5):
        measure_detectors(programs, rows)
    with display(programs):
        for _ in range(1 if quick else 3):
            measure_graphics(programs, rows)


def growth(rows, name, less, more, floor=0):
    """The cost of ten times as many devices, at the rate between two sizes."""
    ratio = rows.median(f"planted.{name}.{more}") / max(rows.median(f"planted.{name}.{less}"), floor)
    return ratio ** (1 / math.log10(more / less))


def planted_markdown(rows, shown):
    lines = ["| detector, on planted machines | devices or entries | ms | ten times as many |", "|---|---|---|---|"]
    for name, sizes in SIZES.items():
        times = [shown(rows.median(f"planted.{name}.{size}")) for size in sizes]
        factors = [shown(growth(rows, name, *pair)) for pair in zip(sizes, sizes[1:])]
        lines.append(f"| `{name}` | {', '.join(f'{size:,}' for size in sizes)} | {' / '.join(times)} "
                     f"| {' / '.join(factors)} times |")
    return lines + [f"| **all, in one machine** | 10 | {shown(rows.median('planted.all'))} | |"]


def aims(rows):
    """The aims, each with its name, the measured figure, its unit, and the limit."""
    planted = {name: rows.median(f"planted.{name}.{sizes[1]}") for name, sizes in SIZES.items()}
    here = {name: rows.median(f"here.{name}") for name in SIZES}
    factors = {(name, less, more): growth(rows, name, less, more, FLOOR) for name, sizes in SIZES.items()
               for less, more in zip(sizes, sizes[1:])}
    slow, slow_here, steep = (max(found, key=found.get) for found in (planted, here, factors))
    entries = max(("Software", "Browser", "Applications"), key=lambda name: rows.median(f"planted.{name}.10000"))
    return (
        (f"the slowest detector with ten devices, or a hundred entries (`{slow}`)", planted[slow], "ms", 20),
        (f"the slowest detector on this machine (`{slow_here}`)", here[slow_here], "ms", 20),
        ("all with ten devices of each kind, no fact wanted that needs a driver, to the C++ program",
         rows.median("planted.all") / rows.median("wmi.all"), "times", 3.5),
        ("all on this machine, likewise", rows.median("here.all") / rows.median("wmi.all"), "times", 3.5),
        (f"ten times as many devices, less than a millisecond counting as one (`{steep[0]}`, {steep[1]:,} to {steep[2]:,})",
         factors[steep], "times", 10),
        (f"10,000 entries of programs (`{entries}`)", rows.median(f"planted.{entries}.10000"), "ms", 1000),
        ("handles left by 10,000 controls", rows.median("life.handles"), "handles", 0),
        ("threads left by 10,000 controls", rows.median("life.threads"), "threads", 0))
