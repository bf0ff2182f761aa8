#!/usr/bin/env python3
"""Checks that every include points down the floors, and that no two files include each other, not even round a corner."""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
GENERATED = {"BuildSettings.h", "Detection.h"}


def floors():
    lines = (ROOT / "scripts" / "floors.txt").read_text("ascii").splitlines()
    return [line for line in lines if line and not line.startswith("#")]


def sources():
    names = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.cpp", "*.h"], cwd=ROOT,
                           check=True, capture_output=True, text=True).stdout.split()
    return [name for name in names if (ROOT / name).is_file()]


def house(name):
    """The control and the service share nothing."""
    return "service" if name.startswith("server/") else "control"


def check(files, order):
    """The faults of a set of files, each a name and the project's files that it includes."""
    faults = []
    for name, included in files.items():
        folder = str(Path(name).parent)
        if folder not in order:
            if Path(name).parts[0] not in ("tests", "tools", "examples"):
                faults.append(f"{name}: its folder is on no floor")
            continue
        for target in included:
            other = str(Path(target).parent)
            if house(name) != house(target):
                faults.append(f"{name}: includes {target}, which is another house's")
            elif other not in order or order.index(other) > order.index(folder):
                faults.append(f"{name}: includes {target}, which is not below it")
    for start in files:
        seen, waiting = set(), list(files[start])
        while waiting:
            target = waiting.pop()
            if target == start:
                faults.append(f"{start}: includes itself, directly or round a corner")
                break
            if target not in seen:
                seen.add(target)
                waiting += files.get(target, ())
    return faults


def main():
    files = {}
    for name in sources():
        text = (ROOT / name).read_text("utf-8")
        included = re.findall(r'^\s*#\s*include "([^"]+)"', text, re.MULTILINE)
        files[name] = [target for target in included if target not in GENERATED and (ROOT / target).is_file()]
    assert check({"diag/a.h": ["values/b.h"], "values/b.h": []}, floors()), "a check that finds nothing"
    assert check({"diag/a.h": ["diag/b.h"], "diag/b.h": ["diag/a.h"]}, floors()), "a check that finds no circle"
    assert check({"server/base/a.h": ["diag/b.h"], "diag/b.h": []}, floors()), "a check that finds no other house"
    faults = check(files, floors())
    print("\n".join(faults) or f"Includes: {len(files)} files point down.")
    return 1 if faults else 0


sys.exit(main())
