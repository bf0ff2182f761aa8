"""The rows with their labels, their medians and spreads, and the aims."""

import json
import re
from statistics import median

import devices
from figures import DETECTORS, GROUPS

UNITS = {"ms": 1, "µs": 1000, "ns": 1000 * 1000, "KB": 1, "lines": 1, "times": 1, "libraries": 1, "handles": 1, "threads": 1}
LEVELS = {1: "ERR", 2: "WARN", 3: "TRACE", 4: "MARK", 5: "DUMP"}

LABELS = {
    "Size": {
        "size.dll": ("the DLL", "KB"),
        "size.cabinet": ("the DLL in a cabinet (MSZIP)", "KB"),
    },
    "Start": {
        "load": ("load the DLL", "ms"),
        "create": ("create the control", "ms"),
        "property": ("first property (`SessionID`, which makes the session)", "ms"),
        "start": ("all three", "ms"),
    },
    "First `Detect`": {
        "detect": ("whole", "ms"),
        "clock": ("of it the clock measurement", "ms"),
        "service": ("of it the service's own time, two requests", "ms"),
        "lines": ("log lines in it", "lines"),
        "output": ("of it their debugger output", "ms"),
        "rest": ("**less these three**", "ms"),
        "exchanges": ("of the rest: the HTTP client, around the service's time", "ms"),
        "rest.alone": ("the rest without it", "ms"),
        "connection": ("of that: the connection to WMI", "ms"),
        "report": ("instead, the first `SysInfo` with the log off", "ms"),
        "report.rest": ("this, less the second and the service's own time", "ms"),
    },
    "Each detector in it, less its debugger output": {
        **{f"detector.{name}": (f"`{name}`", "ms") for name in DETECTORS},
        "detector.CPU": ("`CPU`, which connects to WMI; less the clock measurement", "ms"),
    },
    "Side by side, in fresh processes": {
        "wmi.locator": ("C++ program: WMI locator", "ms"),
        "wmi.connected": ("C++ program: locator and connection", "ms"),
        "wmi.processor": ("C++ program: processor query", "ms"),
        "wmi.bios": ("C++ program: BIOS query", "ms"),
        "wmi.board": ("C++ program: board query", "ms"),
        "wmi.all": ("**C++ program: all**", "ms"),
        "http": ("C++ program: two plain HTTP exchanges, around the service's time", "ms"),
        "script.empty": ("an empty VBScript", "ms"),
        "script.facts": ("a VBScript that asks WMI for the facts", "ms"),
        "script.control": ("a VBScript that asks the control (with its second)", "ms"),
        "script.program": ("`kel facts`, with the values that load a graphics driver", "ms"),
    },
    **devices.LABELS,
    "Reads after the first": {
        "sysinfo.quiet": ("`SysInfo`, log off", "ms"),
        "sysinfo.loud": ("`SysInfo`, log at 7", "ms"),
        "value": ("`Value`, which turns the log on", "ms"),
        "detect.again": ("`Detect`, which turns the log on", "ms"),
        "sysinfo.long": ("`SysInfo`, log off, after 8 MB of log", "ms"),
    },
    "`Configure`": {
        **{f"configure.quiet.{groups}.first": (f"{groups:,} groups, log off", "ms") for groups in GROUPS},
        **{f"configure.quiet.{groups}.again": (f"the same {groups:,} again, log off", "ms") for groups in GROUPS},
        **{f"configure.loud.{groups}.first": (f"{groups:,} groups, log at 7", "ms") for groups in GROUPS},
        **{f"growth.quiet.{groups}": (f"growth from {groups // 10:,} to {groups:,} groups, log off", "times")
           for groups in GROUPS[1:]},
    },
    "Inside": {
        "render": ("rendering a report, each value", "µs"),
        "output.first": ("a process's first line of debugger output", "µs"),
        "output.each": ("each later one", "µs"),
        **{f"line.on.{level}": (f"a log line at level {level} ({word}), on", "µs") for level, word in LEVELS.items()},
        **{f"line.off.{level}": (f"a log line at level {level} ({word}), off", "ns") for level, word in LEVELS.items()},
    },
}


def shown(value):
    """Three significant digits, or all digits before the point if there are more, and at most three after it."""
    value = round(value, 3) + 0.0  # no negative zero
    if abs(value) >= 100 or value == 0:
        return f"{value:,.0f}"
    return f"{value:.1f}" if abs(value) >= 10 else f"{value:.2f}" if abs(value) >= 0.1 else f"{value:.3f}"


class Rows:
    def __init__(self):
        self.samples = {}

    def add(self, name, value):
        self.samples.setdefault(name, []).append(value)

    def add_all(self, prefix, figures):
        for name, value in figures.items():
            self.add(prefix + name, value)

    def last(self, name):
        return self.samples[name][-1]

    def median(self, name):
        return median(self.samples[name])

    def described(self):
        for group, labels in LABELS.items():
            for name, (label, unit) in labels.items():
                yield group, name, label, unit, [value * UNITS[unit] for value in self.samples[name]]

    def markdown(self):
        lines = ["| what | median | lowest to highest |", "|---|---:|---:|"]
        group = None
        for heading, _, label, unit, values in self.described():
            if heading != group:
                group = heading
                lines.append(f"| *{heading}* | | |")
            spread = f"{shown(min(values))} to {shown(max(values))}" if len(values) > 1 else ""
            lines.append(f"| {label} | {shown(median(values))} {unit} | {spread} |")
        return lines + ["", *devices.planted_markdown(self, shown)]

    def json(self):
        return [{"group": group, "name": name, "label": label.strip("*"), "unit": unit, "median": median(values),
                 "lowest": min(values), "highest": max(values), "runs": values}
                for group, name, label, unit, values in self.described()] + [
                    {"group": "Planted machines", "name": name, "unit": "ms", "median": median(values), "runs": values}
                    for name, values in self.samples.items() if name.startswith("planted.")]


class Aims:
    """The aims, judged by the medians. Nothing fails when an aim is missed."""

    def __init__(self, rows):
        growth = max(rows.median(f"growth.quiet.{groups}") for groups in GROUPS[1:])
        self.aims = [(aim, measured, unit, limit, measured * UNITS[unit] <= limit) for aim, measured, unit, limit in (
            ("first `Detect`, less clock, service and debugger output, to the C++ program with two plain HTTP exchanges",
             rows.median("rest") / (rows.median("wmi.all") + rows.median("http")), "times", 3.3),
            ("a read after the first, log off", rows.median("sysinfo.quiet"), "ms", 1),
            ("the same where the read turns the log on (`Value`)", rows.median("value"), "ms", 1),
            ("the same where the read turns the log on (`Detect`)", rows.median("detect.again"), "ms", 1),
            ("`Configure` grows no faster than the square: tenfold groups", growth, "times", 100),
            ("`Configure` with 10,000 groups, log off", rows.median("configure.quiet.10000.first"), "ms", 1000),
            ("a line that is off is not formatted: it costs less than one number's text",
             max(rows.median(f"line.off.{level}") for level in LEVELS), "ns", 50),
            *devices.aims(rows),
            ("the DLL", rows.median("size.dll"), "KB", 1750),
            ("the DLL in a cabinet", rows.median("size.cabinet"), "KB", 350))]

    def markdown(self):
        return ["| aim | measured | at most | |", "|---|---:|---:|---|"] + [
            f"| {aim} | {shown(measured * UNITS[unit])} {unit} | {shown(limit)} {unit} | {'met' if met else 'missed'} |"
            for aim, measured, unit, limit, met in self.aims]

    def json(self):
        return [{"aim": aim, "measured": measured * UNITS[unit], "limit": limit, "unit": unit, "met": met}
                for aim, measured, unit, limit, met in self.aims]


def save(path, about, rows, aims):
    path.write_text(json.dumps({"about": about, "rows": rows.json(), "aims": aims.json()}, indent=1,
                               ensure_ascii=False) + "\n", encoding="utf-8")


def write_page(path, about, rows, aims):
    """Replaces the text between the page's marks."""
    page = path.read_text(encoding="utf-8")
    for name, lines in (("figures", [about + ".", "", *rows.markdown()]), ("aims", aims.markdown())):
        page = re.sub(rf"(<!-- {name} -->\n).*?(<!-- end of {name} -->)",
                      lambda mark, lines=lines: mark.group(1) + "\n".join(lines) + "\n" + mark.group(2), page,
                      flags=re.DOTALL)
    path.write_text(page, encoding="utf-8")
