#!/usr/bin/env python3
"""Converts the catalogue of values, catalogue/values.tsv: into the tables of docs/value-ids.md (--write writes them, --check
compares), into C++ for verdicts and for programs that show values (--table FILE), with the additions of
catalogue/requirements.tsv and areas.tsv, and into what authors of requirements need to know (--kinds FILE), with those of
kinds.tsv."""

import argparse
import csv
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PAGE = ROOT / "docs" / "value-ids.md"
HEAD = "| id | name | type | unit or form | source | stored by |\n|---|---|---|---|---|---|\n"
# A table is between these marks; the first one names the detectors whose values it lists.
TABLE = re.compile(r"(<!-- values: ([\w ]+) -->\n).*?(<!-- end -->\n)", re.DOTALL)


SOLD = ("", "Memory", "GraphicsMemory", "Disk")  # as verdict/Catalogue.h names them
# The ValueType of verdict/ValueKinds.h for each type of the control, and an example of it.
TYPES = {"text": ("Text", ""), "Name": ("Text", ""), "DeviceID": ("Text", ""), "Exists": ("YesNo", "Yes"),
         "Count": ("Number", "1"), "Size": ("Size", "15.8 GB"), "Speed": ("Speed", "2.4 GHz"),
         "Bandwidth": ("Bandwidth", "94.3 Mbps"), "Resolution": ("Resolution", "1920x1080"),
         "Version": ("Version", "10.0.19045")}


def read_values(name="values.tsv"):
    with open(ROOT / "catalogue" / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))


def table_row(value):
    name = value["name"] + ("*" if value["each"] else "") + ("+" if value["gated"] else "")
    kind = value["type"] if value["type"] == "text" else f"`{value['type']}`"
    form = "; ".join(filter(None, (value["form"], value["exists"] and f"there: {value['exists']}")))
    cells = (value["id"], name, kind, form, value["source"], f"`kel::{value['detector']}`")
    return "".join(f"| {cell} " if cell else "| " for cell in cells) + "|\n"


def make_page(page, values):
    def make_table(match):
        detectors = match[2].split()
        return match[1] + HEAD + "".join(table_row(value) for value in values if value["detector"] in detectors) + match[3]

    return TABLE.sub(make_table, page)


def find_wrong_companions(values):
    """Ids of versions whose companion is not a value that says whether the product is installed."""
    existences = {value["id"] for value in values if value["type"] == "Exists" and not value["each"]}
    return [value["id"] for value in values if value["exists"] and value["exists"] not in existences]


def find_wrong_advice(values, advice):
    """Ids of catalogue/requirements.tsv that are not values, or whose rows name such ids, are empty or have an unknown word."""
    ids = {value["id"] for value in values}
    return [row["id"] for row in advice
            if not ids.issuperset([row["id"], *re.findall(r"\b\d{5}\b", row["caution"])])
            or row["sold as"] not in SOLD or not (row["sold as"] or row["caution"])]


def find_wrong_kinds(values, kinds):
    """Ids of catalogue/kinds.tsv that are not values, or whose rows have an unknown word or an example that is not a choice."""
    ids = {value["id"] for value in values}
    return [row["id"] for row in kinds
            if row["id"] not in ids or row["type"] not in ("", *TYPES) or row["falls short of"] not in SOLD
            or (row["choices"] and row["example"] not in row["choices"].split(", "))]


def make_kinds(values, kinds):
    """In the order of the catalogue."""
    rows = {row["id"]: row for row in kinds}

    def make_row(value):
        row = rows.get(value["id"], {"type": "", "example": "", "choices": "", "falls short of": ""})
        kind, example = TYPES[row["type"] or value["type"]]
        texts = ", ".join(f'R"embedded({text})embedded"' for text in (row["example"] or example, value["form"], row["choices"]))
        return f'    {{ValueType::{kind}, SoldAs::{row["falls short of"] or "Nothing"}, {texts}}},\n'

    return f"""#include "verdict/ValueKinds.h"

namespace kel {{

static constexpr ValueKind KindRows[] = {{
{"".join(map(make_row, values))}}};

const std::span<const ValueKind> ValueKinds = KindRows;

}}  // namespace kel
"""


class Texts:
    """One array for all texts, in which a row has the place of each of its own: no pointers, and no text twice."""

    def __init__(self):
        self.places, self.literals, self.size = {}, [], 0

    def place(self, text):
        if text not in self.places:
            self.places[text] = self.size
            self.literals.append(f'    R"embedded({text})embedded" "\\0"\n')
            self.size += len(text.encode()) + 1
        return self.places[text]


def make_rows(values, advice, areas):
    said = {row["id"]: row for row in advice}
    texts = Texts()

    def make_row(value):
        row = said.get(value["id"], {"sold as": "", "caution": ""})
        places = ", ".join(str(texts.place(text)) for text in
                           (value["detector"], areas[value["detector"]], value["name"], value["source"], row["caution"]))
        flags = ", ".join("true" if value[column] else "false" for column in ("each", "gated"))
        return (f'    {{{value["id"]}, {value["exists"] or 0}, {places}, {flags}, '
                f'SoldAs::{row["sold as"] or "Nothing"}}},\n')

    rows = "".join(make_row(value) for value in values)
    if texts.size > 0xFFFF:
        sys.exit("The texts of the catalogue are too long for their places.")
    return f"""#include "verdict/Catalogue.h"

namespace kel {{

static constexpr char Texts[] =
{"".join(texts.literals)};

static constexpr CatalogueValue CatalogueRows[] = {{
{rows}}};

const std::span<const CatalogueValue> CatalogueValues = CatalogueRows;

const char* CatalogueText(std::uint16_t place)
{{
    return Texts + place;
}}

}}  // namespace kel
"""


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    action = parser.add_mutually_exclusive_group(required=True)
    action.add_argument("--write", action="store_true")
    action.add_argument("--check", action="store_true")
    action.add_argument("--table", type=Path, metavar="FILE")
    action.add_argument("--kinds", type=Path, metavar="FILE")
    arguments = parser.parse_args()
    values, advice = read_values(), read_values("requirements.tsv")
    areas = {row["detector"]: row["area"] for row in read_values("areas.tsv")}
    if missing := sorted({value["detector"] for value in values}.difference(areas)):
        print(f"catalogue/areas.tsv has no area for: {', '.join(missing)}", file=sys.stderr)
        return 1
    if arguments.table:
        arguments.table.write_text(make_rows(values, advice, areas), "utf-8")
        return 0
    kinds = read_values("kinds.tsv")
    if arguments.kinds:
        arguments.kinds.write_text(make_kinds(values, kinds), "utf-8")
        return 0
    page = PAGE.read_text("utf-8")
    listed = [detector for match in TABLE.finditer(page) for detector in match[2].split()]
    if wrong := find_wrong_companions(values):
        print(f"catalogue/values.tsv: the column exists holds no `Exists` of index 0 for: {', '.join(wrong)}", file=sys.stderr)
        return 1
    if wrong := find_wrong_advice(values, advice):
        print(f"catalogue/requirements.tsv: unknown id or word, or nothing is said of: {', '.join(wrong)}", file=sys.stderr)
        return 1
    if wrong := find_wrong_kinds(values, kinds):
        print(f"catalogue/kinds.tsv: unknown id or word, or the example is not a choice: {', '.join(wrong)}", file=sys.stderr)
        return 1
    missing = sorted({value["detector"] for value in values}.difference(listed))
    if missing:
        print(f"docs/value-ids.md has no table for: {', '.join(missing)}", file=sys.stderr)
        return 1
    if arguments.write:
        PAGE.write_text(make_page(page, values), "utf-8")
    elif make_page(page, values) != page:
        print("docs/value-ids.md differs from catalogue/values.tsv: run tools/catalogue.py --write", file=sys.stderr)
        return 1
    return 0


sys.exit(main())
