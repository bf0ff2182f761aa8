#!/usr/bin/env python3
"""Checks every include against the edges of scripts/floors.txt, and that no two files include each other, directly or
through others."""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
GENERATED = {"BuildSettings.h", "Detection.h"}
FREE = ("tests", "tools", "examples")  # these may include everything


def read_edges(text):
    """For each folder those that it may include, in the order of the file. A folder's first line comes after the lines of the
    folders that it includes, so that no edge leads up."""
    edges = {}
    for line in text.splitlines():
        if not line or line.startswith("#"):
            continue
        folder, targets = line.split(":")
        edges.setdefault(folder, [])
        for target in targets.split():
            if target not in edges or target == folder:
                raise ValueError(f"floors.txt: {folder} may not include {target}, which does not stand above it")
            edges[folder].append(target)
    return edges


def sources():
    names = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.cpp", "*.h"], cwd=ROOT,
                           check=True, capture_output=True, text=True).stdout.split()
    return [name for name in names if (ROOT / name).is_file()]


def check(files, edges):
    """The faults of a set of files, which is given as their names with the project's files that each includes."""
    faults, used = [], set()
    for name, included in files.items():
        folder = str(Path(name).parent)
        if folder not in edges:
            if Path(name).parts[0] not in FREE:
                faults.append(f"{name}: its folder is not in floors.txt")
            continue
        for target in included:
            other = str(Path(target).parent)
            used.add((folder, other))
            if other != folder and other not in edges[folder]:
                faults.append(f"{name}: may not include {target}")
    faults += [f"floors.txt: nothing in {folder} includes {other}" for folder, others in edges.items() for other in others
               if (folder, other) not in used]
    for start in files:
        seen, waiting = set(), list(files[start])
        while waiting:
            target = waiting.pop()
            if target == start:
                faults.append(f"{start}: includes itself, directly or through others")
                break
            if target not in seen:
                seen.add(target)
                waiting += files.get(target, ())
    return faults


def test_check():
    """The check finds each kind of fault."""
    edges = {"low": [], "high": ["low"]}
    for files, fault in (({"low/a.h": ["high/b.h"], "high/b.h": ["low/c.h"]}, "low/a.h: may not include high/b.h"),
                         ({"high/a.h": ["low/b.h", "high/a.h"]}, "high/a.h: includes itself, directly or through others"),
                         ({"low/a.h": []}, "floors.txt: nothing in high includes low"),
                         ({"new/a.h": [], "high/a.h": ["low/b.h"]}, "new/a.h: its folder is not in floors.txt")):
        assert check(files, edges) == [fault], (files, check(files, edges))
    try:
        read_edges("low: high\nhigh:")
    except ValueError:
        return
    raise AssertionError("an edge that leads up is not found")


def main():
    test_check()
    files = {}
    for name in sources():
        text = (ROOT / name).read_text("utf-8")
        included = re.findall(r'^\s*#\s*include "([^"]+)"', text, re.MULTILINE)
        files[name] = [target for target in included if target not in GENERATED and (ROOT / target).is_file()]
    faults = check(files, read_edges((ROOT / "scripts" / "floors.txt").read_text("ascii")))
    print("\n".join(faults) or f"Includes: {len(files)} files keep to the edges of floors.txt.")
    return 1 if faults else 0


sys.exit(main())
