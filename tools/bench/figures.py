"""Splits the first Detect into parts by the times of its log lines."""

import re

GROUPS = (10, 100, 1000, 10000)
CLOCK = 1000  # milliseconds; the processor's clock is measured over one second of the performance counter at least
DETECTORS = ("CPU GPU Bios CDRom Chassis DirectX DVD Graphics HardDrive LogicalDrive MotherBoard NetworkDevice OS Ram "
             "Sound Software Browser Monitor Applications SCSI").split()


def scopes(lines, output):
    """Milliseconds that each traced scope took, less its debugger output; scopes with the same name are added up.

    A line is timed when it is handed to the debugger: from a scope's entry line to its exit line lies the output
    of the entry line and of all lines between.
    """
    entered, took = [], {}
    for number, (milliseconds, text) in enumerate(lines):
        mark = re.search(r"(Entering|Exiting): (.*)", text)
        if mark and mark.group(1) == "Entering":
            entered.append((number, milliseconds))
        elif mark:
            first, start = entered.pop()
            name = mark.group(2)
            took[name] = took.get(name, 0) + milliseconds - start - output * (number - first)
    return took


def first_run(figures, lines, service):
    """The rows of a first Detect."""
    output = figures["output.each"]
    took = scopes(lines, output)
    rows = {name: figures[name] for name in ("load", "create", "property", "detect", "output.first", "output.each")}
    rows["start"] = rows["load"] + rows["create"] + rows["property"]
    # The longest time between two lines; on a busy machine it is more than the second.
    rows["clock"] = max(later - earlier for (earlier, _), (later, _) in zip(lines, lines[1:]))
    rows["service"] = service
    rows["lines"] = len(lines)
    rows["output"] = figures["output.first"] + output * (len(lines) - 1)
    rows["rest"] = rows["detect"] - rows["clock"] - service - rows["output"]
    rows["exchanges"] = took["kel::WebService::Call"] - service
    rows["rest.alone"] = rows["rest"] - rows["exchanges"]
    rows["connection"] = took["kel::WMI::Init"]
    for name in DETECTORS:
        rows[f"detector.{name}"] = took[f"kel::{name}::Detect"] - (rows["clock"] if name == "CPU" else 0)
    return rows
