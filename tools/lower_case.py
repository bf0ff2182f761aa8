#!/usr/bin/env python3
"""Writes verdict/text/LowerCaseTable.h from the character data of this Python. A verdict has to be the same on every
system, so the table is part of the sources: run this only to adopt a newer version of Unicode."""

import unicodedata
from pathlib import Path

TABLE = Path(__file__).resolve().parents[1] / "verdict" / "text" / "LowerCaseTable.h"
HEAD = """#pragma once

namespace kel {

/// Letters that have a lower-case form: every stride-th from first to last, each the same distance from its form.
struct LowerCaseRange {
    char32_t first, last;
    int stride;  // 1, or 2 where upper and lower case alternate
    int distance;
};

/// Those of Unicode %s, in ascending order. Made by tools/lower_case.py.
// clang-format off
inline constexpr LowerCaseRange LowerCaseRanges[] = {
"""


def distances():
    """Each letter's distance from its lower-case form, which is one character: "İ" would have two in full case mapping."""
    letters = ((number, chr(number).lower()[0]) for number in range(0x110000))
    return {number: ord(lower) - number for number, lower in letters if ord(lower) != number}


def ranges(letters):
    found = []  # first, last, stride, distance
    for number, distance in letters.items():
        if found and found[-1][3] == distance:
            first, last, stride, _ = found[-1]
            step = number - last
            if step == stride or (first == last and step in (1, 2)):
                found[-1] = (first, number, step, distance)
                continue
        found.append((number, number, 1, distance))
    return found


def main():
    rows = [f"{{0x{first:X}, 0x{last:X}, {stride}, {distance}}}," for first, last, stride, distance in ranges(distances())]
    lines = ["    " + " ".join(rows[start:start + 4]) for start in range(0, len(rows), 4)]
    TABLE.write_text(HEAD % unicodedata.unidata_version + "\n".join(lines) + "\n};\n// clang-format on\n\n}  // namespace kel\n",
                     "ascii")


if __name__ == "__main__":
    main()
